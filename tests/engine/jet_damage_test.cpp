// Damaged files of the desktop engine give an answer or a clear error in bounded time.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>

#include "tests/engine/desktop_samples.h"

namespace kxrestore::engine::testing {
namespace {

// Opens a file, reads everything and marks rows. Returns the number of the last error, or 0.
int Use(const OpenRequest& request) {
  const auto workspace = MakeReaderWorkspace();
  int error = 0;
  const auto attempt = [&](auto operation) {
    try {
      operation();
    } catch (const Error& caught) {
      error = caught.Number();
      EXPECT_FALSE(caught.Description().empty());
    }
  };
  attempt([&] {
    const auto database = workspace->OpenDatabase(request);
    for (const char* source :
         {"Catalog", "SetNames", "LongPaths", "BackupAudit", "FullCatalog", "Table1",
          "SELECT Count(*) FROM LongPaths RIGHT JOIN Catalog ON LongPaths.PathID = Catalog.LongPathID WHERE "
          "SetNameID = 1 AND Extension = '001'"}) {
      attempt([&] { Rows(*database, source); });
    }
    attempt([&] { database->Execute("UPDATE Catalog SET Restore = True WHERE SetNameID = 1"); });
  });
  return error;
}

TEST(DesktopDamage, IsReportedWithItsPlace) {
  const auto workspace = MakeReaderWorkspace();
  const auto zeroed = workspace->OpenDatabase({.name = DesktopSample("zeroed-page-2003.mdb")});
  ExpectError(error_number::kDamaged, "page 91", [&] { Rows(*zeroed, "Catalog"); });
  EXPECT_EQ(Rows(*zeroed, "SetNames").size(), 9u) << "other tables can be read";
  ExpectError(error_number::kDamaged, "beyond its end",
              [&] { workspace->OpenDatabase({.name = DesktopSample("truncated-2003.mdb")}); });
}

TEST(DesktopDamage, OfDataPagesIsNotReadAsRows) {
  constexpr std::size_t kPage = 91 * 4096, kTable = kPage + 4, kFirstRow = kPage + 14;
  constexpr std::size_t kNextPiece = 0x998F5;  // where a piece of a memo names the page of the next one
  const struct {
    const char* name;
    std::size_t place;
    std::string_view changed;
    const char* piece;
  } cases[] = {
      {"telling-2003.mdb", kPage, "\x02", "page 91 is of type 2"},
      {"telling-2003.mdb", kTable, "\x7F", "page 91 is not of the table 'Catalog'"},
      // The first row begins where the page stores the places of its rows.
      {"telling-2003.mdb", kFirstRow, {"\x10\0", 2}, "row 0 of page 91"},
      {"made-2003.mdb", kNextPiece, {"\0", 1}, "a long value ends before its length"},
  };
  for (const auto& [name, place, changed, piece] : cases) {
    const SampleCopy copy(name);
    copy.Change(
        [&, at = place, with = changed](std::string& bytes) { bytes.replace(at, with.size(), with); });
    const auto workspace = MakeReaderWorkspace();
    ExpectError(error_number::kDamaged, piece,
                [&] { Rows(*workspace->OpenDatabase(copy.Request()), "Catalog"); });
  }
}

TEST(DesktopDamage, OfADefinitionThatTwoTablesClaim) {
  const SampleCopy copy("telling-2003.mdb");
  constexpr std::size_t kSetNames = 0xE6C3, kLongPaths = 0xE61D;  // the page numbers of their definitions
  copy.Change([](std::string& bytes) { std::copy_n(&bytes[kSetNames], 4, &bytes[kLongPaths]); });
  const auto workspace = MakeReaderWorkspace();
  const auto database = workspace->OpenDatabase(copy.Request());
  EXPECT_EQ(Rows(*database, "SetNames").size(), 9u);
  ExpectError(error_number::kDamaged, "belongs to two tables", [&] { Rows(*database, "LongPaths"); });
}

TEST(DesktopDamage, OfHeadersIsRefused) {
  const struct {
    std::size_t place;
    unsigned char changed;
    int number;
    const char* piece;
  } cases[] = {{0x14, 0x40, error_number::kUnrecognizedFormat, "version"},
               {0x3E, 0x01, error_number::kCannotCreateObject, "encrypted"},
               {0x42, 0x01, error_number::kPassword, "password"},
               {2 * 4096, 0x01, error_number::kDamaged, "page 2"}};
  const auto workspace = MakeReaderWorkspace();
  for (const auto& [place, changed, number, piece] : cases) {
    const SampleCopy copy("telling-2007.accdb");
    copy.Change([&, at = place, bits = changed](std::string& bytes) { bytes[at] ^= bits; });
    ExpectError(number, piece, [&] { workspace->OpenDatabase(copy.Request()); });
  }
  for (const std::size_t size : {0, 20, 100, 4096, 9000}) {
    const SampleCopy copy("telling-2003.mdb");
    copy.Change([&](std::string& bytes) { bytes.resize(size); });
    const int error = Use(copy.Request());
    EXPECT_TRUE(error == error_number::kDamaged || error == error_number::kUnrecognizedFormat)
        << size << " " << error;
  }
}

// The environment variable KX_DAMAGES sets how often each file is damaged. The time limit allows for the
// sanitizers; without them the slowest case takes less than 2 s.
TEST(DesktopDamage, AtRandomPlacesEndsInAnAnswerOrAnError) {
  const char* asked = std::getenv("KX_DAMAGES");
  const int damages = asked == nullptr ? 12 : std::atoi(asked);
  std::mt19937 random(20260101);
  const auto below = [&](std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
  };
  for (const char* name :
       {"telling-2000.mdb", "telling-2003.mdb", "telling-2007.accdb", "telling-2010.accdb",
        "telling-2019.accdb", "overflow-2003.mdb", "added-column-2003.mdb", "sample-1997.mdb"}) {
    const SampleCopy copy(name);
    const std::size_t pageSize = std::string_view(name).starts_with("sample") ? 2048 : 4096;
    const std::size_t pages = copy.Original().size() / pageSize;
    Clock::duration longest{};
    for (int i = 0; i < damages; ++i) {
      copy.Change([&](std::string& bytes) {
        const auto page = bytes.begin() + static_cast<std::ptrdiff_t>(below(pages) * pageSize);
        const auto scribble = [&](int count, auto place) {
          for (; count > 0; --count)
            page[static_cast<std::ptrdiff_t>(place())] = static_cast<char>(below(256));
        };
        switch (below(5)) {
          case 0:
            return scribble(1, [&] { return below(64); });  // one number near the page's head
          case 1:
            return scribble(40, [&] { return below(pageSize); });
          case 2:
            return scribble(8,
                            [&] { return pageSize - 1 - below(600); });  // rows end with numbers of their own
          case 3: {
            const auto other = bytes.begin() + static_cast<std::ptrdiff_t>(below(pages) * pageSize);
            if (other != page) std::copy_n(other, pageSize, page);
            return;
          }
          default:
            std::fill_n(page + static_cast<std::ptrdiff_t>(below(pageSize - 200)), 1 + below(200),
                        static_cast<char>(below(2) * 255));
        }
      });
      const auto start = Clock::now();
      Use(copy.Request());
      longest = std::max(longest, Clock::now() - start);
      ASSERT_LT(longest, std::chrono::seconds(20)) << name << " " << i;
    }
    std::printf(
        "%-24s %d damages, the longest %lld ms\n", name, damages,
        static_cast<long long>(std::chrono::duration_cast<std::chrono::milliseconds>(longest).count()));
  }
}

}  // namespace
}  // namespace kxrestore::engine::testing
