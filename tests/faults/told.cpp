#include "tests/faults/told.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <map>

namespace kxrestore::faults {
namespace {

unsigned Number(const char* variable) {
  const char* const text = std::getenv(variable);
  const unsigned long number = text == nullptr ? 0 : std::strtoul(text, nullptr, 10);
  return number == 0 ? 1 : static_cast<unsigned>(number);
}

std::map<std::string, std::pair<int, int>> g_counts;  // tried and held

class Table : public ::testing::Environment {
  void TearDown() override {
    const char* const file = std::getenv("KX_FAULTS_TABLE");
    if (file == nullptr) return;
    std::ofstream table(file, std::ios::app);
    for (const auto& [name, count] : g_counts) {
      table << name << '\t' << count.first << '\t' << count.second << '\n';
    }
  }
};

[[maybe_unused]] const auto* const g_table = ::testing::AddGlobalTestEnvironment(new Table);

}  // namespace

unsigned Seed() {
  static const unsigned seed = Number("KX_FAULTS_SEED");
  return seed;
}

unsigned Times() {
  static const unsigned times = Number("KX_FAULTS_TIMES");
  return times;
}

void Tell(const std::string& name, bool held) {
  auto& [tried, whole] = g_counts[name];
  ++tried;
  whole += held ? 1 : 0;
}

}  // namespace kxrestore::faults
