#include "bench/harness.h"

#include <benchmark/benchmark.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <iostream>
#include <map>
#include <utility>
#include <vector>

#include "base/error.h"

namespace kxrestore::bench {

namespace {

struct Result {
  std::string name;
  std::int64_t rows = 0;
  std::optional<double> ours;  // seconds
  std::optional<double> bare;  // seconds
  std::optional<double> ratio;
  std::optional<double> value;
  std::string unit;
  std::optional<double> limit;

  // The value that is limited: the ratio, else the figure, else the time.
  double Measured() const {
    if (value) return *value;
    return ratio ? *ratio : *ours;
  }
  bool OverLimit() const { return limit && Measured() > *limit; }
};

std::vector<Result>& Results() {
  static std::vector<Result> results;
  return results;
}

// A repeated benchmark replaces its earlier result.
void Keep(Result result) {
  std::vector<Result>& all = Results();
  const auto same = std::find_if(all.begin(), all.end(), [&](const Result& other) {
    return other.name == result.name && other.rows == result.rows;
  });
  if (same == all.end()) {
    all.push_back(std::move(result));
  } else {
    *same = std::move(result);
  }
}

template <typename Function>
double Seconds(Function function) {
  const auto start = std::chrono::steady_clock::now();
  function();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const std::size_t middle = values.size() / 2;
  return values.size() % 2 == 1 ? values[middle] : (values[middle - 1] + values[middle]) / 2;
}

void RunComparison(benchmark::State& state, const Terms& terms, const MakeComparison& make) {
  try {
    const std::unique_ptr<Comparison> comparison = make(terms.rows);
    std::vector<double> ours, bare, ratios;
    const auto runOurs = [&] {
      comparison->Prepare();
      ours.push_back(Seconds([&] { comparison->Ours(); }));
    };
    const auto runBare = [&] {
      comparison->Prepare();
      bare.push_back(Seconds([&] { comparison->Bare(); }));
    };
    for ([[maybe_unused]] auto _ : state) {
      // The order alternates, so that neither side always finds warm caches.
      if (ours.size() % 2 == 0) {
        runBare();
        runOurs();
      } else {
        runOurs();
        runBare();
      }
      state.SetIterationTime(ours.back());
      ratios.push_back(ours.back() / bare.back());
    }
    Result result{.name = terms.name,
                  .rows = terms.rows,
                  .ours = Median(ours),
                  .bare = Median(bare),
                  // From adjacent runs, because the speed of a shared machine changes from one second to the
                  // next.
                  .ratio = Median(ratios),
                  .value = {},
                  .unit = {},
                  .limit = terms.limit};
    state.counters["ours"] = *result.ours;
    state.counters["bare"] = *result.bare;
    state.counters["ratio"] = result.Measured();
    Keep(std::move(result));
  } catch (const Error& error) {
    state.SkipWithError(("(" + std::to_string(error.Number()) + ") " + error.Description()).c_str());
  }
}

void RunTimed(benchmark::State& state, const TimeTerms& terms,
              const std::function<std::unique_ptr<Timed>(std::int64_t)>& make) {
  try {
    const std::unique_ptr<Timed> timed = make(terms.rows);
    std::vector<double> ours;
    for ([[maybe_unused]] auto _ : state) {
      timed->Prepare();
      ours.push_back(Seconds([&] { timed->Ours(); }));
      state.SetIterationTime(ours.back());
    }
    Result result{.name = terms.name,
                  .rows = terms.rows,
                  .ours = Median(ours),
                  .bare = {},
                  .ratio = {},
                  .value = {},
                  .unit = {},
                  .limit = terms.limit};
    state.counters["ours"] = *result.ours;
    Keep(std::move(result));
  } catch (const Error& error) {
    state.SkipWithError(("(" + std::to_string(error.Number()) + ") " + error.Description()).c_str());
  }
}

std::string Number(double value) {
  char text[40];
  std::snprintf(text, sizeof text, "%.6g", value);
  return text;
}

std::string Json(const Result& result) {
  std::string line = "{\"name\": \"" + result.name + "\", \"rows\": " + std::to_string(result.rows);
  const auto add = [&line](const char* key, double value) {
    line += std::string(", \"") + key + "\": " + Number(value);
  };
  if (result.ours) add("ours", *result.ours);
  if (result.bare) {
    add("bare", *result.bare);
    add("ratio", result.Measured());
  }
  if (result.value) {
    add("value", *result.value);
    line += ", \"unit\": \"" + result.unit + "\"";
  }
  if (result.limit) add("limit", *result.limit);
  return line + "}";
}

void PrintTable() {
  std::printf("\n%-44s %9s %11s %11s %12s %8s\n", "", "rows", "ours", "bare", "ratio/value", "limit");
  for (const Result& result : Results()) {
    const std::string ours = result.ours ? Number(*result.ours) + " s" : "";
    const std::string bare = result.bare ? Number(*result.bare) + " s" : "";
    const std::string ratio = result.value  ? Number(*result.value)
                              : result.bare ? Number(result.Measured())
                                            : "";
    const std::string limit = result.limit ? Number(*result.limit) : "";
    const std::string name = result.unit.empty() ? result.name : result.name + " (" + result.unit + ")";
    std::printf("%-44s %9lld %11s %11s %12s %8s%s\n", name.c_str(), static_cast<long long>(result.rows),
                ours.c_str(), bare.c_str(), ratio.c_str(), limit.c_str(),
                result.OverLimit() ? "  OVER THE LIMIT" : "");
  }
}

// Reports to the console and remembers failures, which the library does not turn into an exit code.
class Reporter : public benchmark::ConsoleReporter {
 public:
  Reporter() : benchmark::ConsoleReporter(isatty(STDOUT_FILENO) != 0 ? OO_Color : OO_None) {}

  void ReportRuns(const std::vector<Run>& runs) override {
    for (const Run& run : runs) m_failed = m_failed || run.error_occurred;
    ConsoleReporter::ReportRuns(runs);
  }
  bool Failed() const { return m_failed; }

 private:
  bool m_failed = false;
};

}  // namespace

void Compare(Terms terms, MakeComparison make) {
  const std::string label = terms.name + "/" + std::to_string(terms.rows);
  const int repetitions = terms.repetitions;
  benchmark::RegisterBenchmark(label.c_str(),
                               [terms = std::move(terms), make = std::move(make)](benchmark::State& state) {
                                 RunComparison(state, terms, make);
                               })
      ->UseManualTime()
      ->Iterations(repetitions)
      ->Unit(benchmark::kMillisecond);
}

void Time(TimeTerms terms, std::function<std::unique_ptr<Timed>(std::int64_t)> make) {
  const std::string label = terms.name + "/" + std::to_string(terms.rows);
  const int repetitions = terms.repetitions;
  benchmark::RegisterBenchmark(label.c_str(), [terms = std::move(terms), make = std::move(make)](
                                                  benchmark::State& state) { RunTimed(state, terms, make); })
      ->UseManualTime()
      ->Iterations(repetitions)
      ->Unit(benchmark::kMillisecond);
}

void Figure(const std::string& name, std::int64_t rows, double value, const std::string& unit,
            std::optional<double> limit) {
  Keep(Result{.name = name,
              .rows = rows,
              .ours = {},
              .bare = {},
              .ratio = {},
              .value = value,
              .unit = unit,
              .limit = limit});
}

void Use(std::uint64_t value) {
  benchmark::DoNotOptimize(value);
}

int RunBenchmarks(int count, char** words) {
  std::string reportPath;
  std::vector<char*> rest;
  constexpr char kReport[] = "--report=";
  for (int i = 0; i < count; ++i) {
    if (std::strncmp(words[i], kReport, sizeof kReport - 1) == 0) {
      reportPath = words[i] + sizeof kReport - 1;
    } else {
      rest.push_back(words[i]);
    }
  }
  int restCount = static_cast<int>(rest.size());
  benchmark::Initialize(&restCount, rest.data());
  if (benchmark::ReportUnrecognizedArguments(restCount, rest.data())) return 2;
  Reporter reporter;
  benchmark::RunSpecifiedBenchmarks(&reporter);
  PrintTable();

  bool over = false;
  for (const Result& result : Results()) over = over || result.OverLimit();
  if (!reportPath.empty()) {
    std::ofstream report(reportPath);
    for (const Result& result : Results()) report << Json(result) << '\n';
    report.close();
    if (!report) {
      std::cerr << reportPath << " cannot be written\n";
      return 2;
    }
  }
  return reporter.Failed() ? 2 : over ? 1 : 0;
}

}  // namespace kxrestore::bench
