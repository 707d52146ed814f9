// Measures what the component does against the least that the work can cost: every comparison runs `ours` and
// `bare` by turns in one process and takes the medians, of the ratio that of each two runs side by side, so
// that what else the machine does hits both. A figure is a number other than a time (bytes a node, syncs a
// file).
//
// A program registers its comparisons and ends in RunBenchmarks(). Times are seconds. Limits are the most
// that a ratio or a figure may be; what is over its limit makes the program end with 1.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace kxrestore::bench {

// The two sides of a comparison, and what has to be put right before each run of either (not measured).
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

// Of a class whose constructor takes the row count and then these arguments.
template <typename T, typename... Arguments>
MakeComparison Make(Arguments... arguments) {
  return [=](std::int64_t rows) { return std::make_unique<T>(rows, arguments...); };
}

// `make` is called when the comparison's turn comes, and what it made goes away after it.
void Compare(Terms terms, MakeComparison make);

// A time of ours that has nothing to be compared with; the limit is in seconds.
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

// A figure that a comparison found out while it ran; the last one of a name and row count counts.
void Figure(const std::string& name, std::int64_t rows, double value, const std::string& unit,
            std::optional<double> limit = std::nullopt);

// Keeps the compiler from dropping work whose result nobody needs.
void Use(std::uint64_t value);

// Besides the library's own options: --report=FILE for the results, one JSON object a line.
int RunBenchmarks(int count, char** words);

}  // namespace kxrestore::bench
