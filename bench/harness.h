// Compares the component's work with the least that the work can cost: every comparison alternates `ours` and
// `bare` in one process and takes medians (for the ratio, of pairs of adjacent runs), so that other load on
// the machine affects both. A figure is a number other than a time (bytes a node, syncs a file).
//
// A program registers its comparisons and ends in RunBenchmarks(). Times are seconds. A limit is the maximum
// of a ratio or figure; exceeding one makes the exit code 1.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace kxrestore::bench {

// The two sides of a comparison, and the preparation before each run of either, which is not measured.
class Comparison {
 public:
  virtual ~Comparison() = default;
  virtual void Prepare() {}
  virtual void Ours() = 0;
  virtual void Bare() = 0;
};

struct Terms {
  std::string name;
  std::int64_t rows = 0;
  std::optional<double> limit;  // of ours / bare
  int repetitions = 7;
};

using MakeComparison = std::function<std::unique_ptr<Comparison>(std::int64_t rows)>;

// For a class whose constructor takes the row count and then these arguments.
template <typename T, typename... Arguments>
MakeComparison Make(Arguments... arguments) {
  return [=](std::int64_t rows) { return std::make_unique<T>(rows, arguments...); };
}

// `make` is called at the start of the comparison; its result is destroyed at the end.
void Compare(Terms terms, MakeComparison make);

// A time of ours without a baseline; the limit is in seconds.
struct TimeTerms {
  std::string name;
  std::int64_t rows = 0;
  std::optional<double> limit;
  int repetitions = 7;
};

class Timed {
 public:
  virtual ~Timed() = default;
  virtual void Prepare() {}
  virtual void Ours() = 0;
};

void Time(TimeTerms terms, std::function<std::unique_ptr<Timed>(std::int64_t rows)> make);

// Records a figure during a comparison; the last value for a name and row count is reported.
void Figure(const std::string& name, std::int64_t rows, double value, const std::string& unit,
            std::optional<double> limit = std::nullopt);

// Keeps the compiler from removing work whose result is unused.
void Use(std::uint64_t value);

// Accepts the library's own options, and --report=FILE for the results, one JSON object a line.
int RunBenchmarks(int count, char** words);

}  // namespace kxrestore::bench
