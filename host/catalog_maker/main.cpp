// make_catalog PATH | --connect STRING [--rows N] [--seed S] [--flat] [--one-run] [--archive FILE] [--disc
// FOLDER]: makes a sample catalog file or fills a catalog on a server; also makes a sample archive database
// and disc.
#include <charconv>
#include <cstdint>
#include <iostream>
#include <optional>
#include <string>
#include <string_view>

#include "base/error.h"
#include "host/catalog_maker/sample_archive.h"
#include "host/catalog_maker/sample_catalog.h"
#include "host/catalog_maker/server_writer.h"

namespace {

constexpr std::string_view kUsage =
    "usage: make_catalog PATH [--rows N] [--seed S] [--flat] [--one-run]\n"
    "                    [--archive FILE] [--disc FOLDER]\n"
    "       make_catalog --connect STRING ...\n"
    "  PATH       the catalog file; replaced when it is there\n"
    "  --connect STRING  of a server instead: the ODBC driver and what it wants to know; the catalog is\n"
    "             the one that host/sql/ has made there, still empty\n"
    "  --rows N   rows of the table Catalog (20000; 1 to 100000000)\n"
    "  --seed S   another catalog of the same kind (1)\n"
    "  --flat     the plain files of a run all in one folder\n"
    "  --one-run  nothing but N live plain files in one run of set 1\n"
    "  --archive FILE  an archive database of backups on CD, too\n"
    "  --disc FOLDER   a disc for it, whose backups it mostly lacks\n";

constexpr std::uint64_t kMaxRows = 100'000'000;

struct Arguments {
  std::string path, connect, archive, disc;
  kxrestore::sample::SampleOptions options;
};

bool ReadNumber(std::string_view text, std::uint64_t& value) {
  const auto [end, problem] = std::from_chars(text.data(), text.data() + text.size(), value);
  return problem == std::errc() && end == text.data() + text.size();
}

std::optional<Arguments> Read(int count, char** words) {
  Arguments arguments;
  for (int i = 1; i < count; ++i) {
    const std::string_view word = words[i];
    if (word == "--flat") {
      arguments.options.flat = true;
    } else if (word == "--one-run") {
      arguments.options.oneRun = true;
    } else if (word == "--rows" || word == "--seed") {
      std::uint64_t& value = word == "--rows" ? arguments.options.rows : arguments.options.seed;
      if (++i == count || !ReadNumber(words[i], value)) return std::nullopt;
    } else if (word == "--connect" || word == "--archive" || word == "--disc") {
      std::string& text = word == "--connect"   ? arguments.connect
                          : word == "--archive" ? arguments.archive
                                                : arguments.disc;
      if (++i == count || (text = words[i]).empty()) return std::nullopt;
    } else if (word.empty() || word.starts_with("--") || !arguments.path.empty()) {
      return std::nullopt;
    } else {
      arguments.path = word;
    }
  }
  const std::uint64_t rows = arguments.options.rows;
  if (arguments.path.empty() == arguments.connect.empty() || rows < 1 || rows > kMaxRows) return std::nullopt;
  return arguments;
}

}  // namespace

int main(int count, char** words) {
  const std::optional<Arguments> arguments = Read(count, words);
  if (!arguments) {
    std::cerr << kUsage;
    return 2;
  }
  try {
    if (arguments->connect.empty()) {
      kxrestore::sample::MakeCatalog(arguments->path, arguments->options);
    } else {
      kxrestore::sample::FillServerCatalog(arguments->connect, [&](kxrestore::sample::CatalogSink& sink) {
        kxrestore::sample::Generate(arguments->options, sink);
      });
    }
    if (!arguments->archive.empty()) kxrestore::sample::MakeArchive(arguments->archive);
    if (!arguments->disc.empty()) kxrestore::sample::MakeDisc(arguments->disc);
  } catch (const kxrestore::Error& error) {
    std::cerr << "make_catalog: (" << error.Number() << ") " << error.Description() << '\n';
    return 1;
  }
  std::cout << (arguments->connect.empty() ? arguments->path : "the server's catalog") << ": "
            << arguments->options.rows << " rows\n";
  return 0;
}
