// Reads the tables of cases in tests/data/cases. After a heading in brackets, each case is one line, followed
// by indented lines with the expected result. A line that begins with "#" is a comment.
#pragma once

#include <fstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace kxrestore::engine::testing {

struct Case {
  std::string text;
  std::vector<std::string> expected;
};

struct CaseGroup {
  std::string heading;
  std::vector<Case> cases;
};

inline std::vector<CaseGroup> ReadCases(std::string_view name) {
  std::ifstream file(std::string(KX_TEST_DATA "/cases/").append(name));
  std::vector<CaseGroup> groups;
  for (std::string line; std::getline(file, line);) {
    if (line.empty() || line.starts_with('#')) continue;
    if (line.front() == '[' && line.back() == ']') {
      groups.push_back({line.substr(1, line.size() - 2), {}});
    } else if (line.starts_with("  ")) {
      groups.back().cases.back().expected.push_back(line.substr(2));
    } else {
      groups.back().cases.push_back({line, {}});
    }
  }
  if (groups.empty()) throw std::runtime_error("no cases in " + std::string(name));
  return groups;
}

// The cases under one heading.
inline std::vector<Case> ReadCases(std::string_view name, std::string_view heading) {
  for (CaseGroup& group : ReadCases(name)) {
    if (group.heading == heading) return std::move(group.cases);
  }
  throw std::runtime_error("no cases under " + std::string(heading));
}

}  // namespace kxrestore::engine::testing
