// The backup sets and runs of the sample catalog. Set identifiers are not contiguous, and the same run
// extension occurs in several sets, so that mixing any two of them up shows.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace kxrestore::sample {

struct SampleSet {
  std::int64_t id;
  std::string_view name;
};

inline constexpr SampleSet kSampleSets[] = {
    {1, "Daily Documents"},
    {2, "O'Brien's Laptop"},
    {3, "Büro – Müller & Söhne"},
    {4, "資料バックアップ"},
    {7, "Mail and Database Server"},
    {8, "Network Shares"},
    {9, "Archived Projects"},     // its only run is x01: never shown
    {12, "Interrupted Backups"},  // no completed run
    {15, "New Set"},              // no run at all
};

enum class Run {
  kDailyFirst,
  kDailySecond,
  kDailyHidden,    // x01
  kDailyMidnight,  // at midnight, whether it is permanent is not known
  kDailyFailed,    // not completed
  kDailyNewest,    // most rows of the catalog
  kLaptopFirst,
  kLaptopEmpty,  // completed, but none of its rows is live
  kLaptopNewest,
  kOfficeFirst,
  kOfficeNewest,
  kJapanese,
  kServerFirst,
  kServerNewest,
  kNetwork,
  kArchived,
  kInterrupted,
  kUnknownState,
  kCount
};

struct SampleRun {
  Run run;
  std::int64_t setId;
  std::string_view dateStamp;
  std::string_view extension;
  std::optional<bool> permanent;
  std::optional<int> status;
  std::uint32_t perMille;  // of the plain rows; the newest daily run takes what is left
  std::uint64_t walk;      // runs with the same number saw the same files
};

inline constexpr std::array<SampleRun, static_cast<std::size_t>(Run::kCount)> kSampleRuns = {{
    {Run::kDailyFirst, 1, "2026-09-07 22:00:00", "001", true, 6, 8, 1},
    {Run::kDailySecond, 1, "2026-10-05 22:00:05", "002", false, 6, 8, 1},
    {Run::kDailyHidden, 1, "2026-10-12 00:30:00", "x01", false, 6, 1, 1},
    {Run::kDailyMidnight, 1, "2026-11-02 00:00:00", "003", std::nullopt, 6, 8, 1},
    {Run::kDailyFailed, 1, "2026-11-09 22:00:01", "004", false, 3, 1, 1},
    {Run::kDailyNewest, 1, "2026-11-16 02:25:30", "005", false, 6, 0, 1},
    {Run::kLaptopFirst, 2, "2026-10-20 18:15:00", "001", true, 6, 3, 2},
    {Run::kLaptopEmpty, 2, "2026-11-14 18:15:10", "002", false, 6, 0, 2},
    {Run::kLaptopNewest, 2, "2026-11-15 18:15:10", "003", false, 6, 3, 2},
    {Run::kOfficeFirst, 3, "2026-11-03 07:05:09", "001", false, 6, 2, 3},
    {Run::kOfficeNewest, 3, "2026-11-10 07:05:09", "002", false, 6, 2, 3},
    {Run::kJapanese, 4, "2026-11-12 23:59:59", "001", false, 6, 2, 4},
    {Run::kServerFirst, 7, "2026-11-08 03:00:00", "001", true, 6, 0, 5},
    {Run::kServerNewest, 7, "2026-11-15 03:00:00", "002", false, 6, 1, 5},
    {Run::kNetwork, 8, "2026-11-01 12:00:00", "001", false, 6, 0, 6},
    {Run::kArchived, 9, "2026-08-01 09:30:00", "x01", false, 6, 1, 7},
    {Run::kInterrupted, 12, "2026-11-13 21:00:00", "001", false, 2, 1, 8},
    {Run::kUnknownState, 12, "2026-11-14 21:00:00", "002", false, std::nullopt, 0, 8},
}};

inline constexpr const SampleRun& RunOf(Run run) {
  return kSampleRuns[static_cast<std::size_t>(run)];
}

}  // namespace kxrestore::sample
