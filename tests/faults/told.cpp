#include "tests/faults/told.h"

#include <gtest/gtest.h>

#include <algorithm>
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

struct Count {
  int tried = 0, held = 0;
};

std::map<std::string, Count>& Counts() {
  static std::map<std::string, Count> counts;
  return counts;
}

class Table : public ::testing::Environment {
  void TearDown() override {
    const char* const file = std::getenv("KX_FAULTS_TABLE");
    if (file == nullptr) return;
    std::ofstream table(file, std::ios::app);
    for (const auto& [name, count] : Counts())
      table << name << '\t' << count.tried << '\t' << count.held << '\n';
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

unsigned Sparsely(unsigned sample) {
  return std::max(sample / Times(), 1u);
}

void Tell(const std::string& name, bool held) {
  Count& count = Counts()[name];
  ++count.tried;
  if (held) ++count.held;
}

}  // namespace kxrestore::faults
