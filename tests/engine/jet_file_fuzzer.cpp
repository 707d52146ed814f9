// libFuzzer target: a sample file of the desktop engine with bytes changed is read and marked, or refused,
// never more. The input is a list of changes, so that short inputs reach every place of a file: one byte for
// the file, then six bytes a change: page (2), place in it (2), count of bytes, byte.
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "base/error.h"
#include "engine/jet_file/decode.h"
#include "engine/jet_file/marks.h"
#include "tests/engine/desktop_samples.h"

namespace desktop = kxrestore::engine::testing;
namespace jet_file = kxrestore::engine::jet_file;

namespace {

const std::vector<desktop::FileBytes>& Samples() {
  static const std::vector<desktop::FileBytes> samples = [] {
    std::vector<desktop::FileBytes> read;
    for (const char* name :
         {"sample-1997.mdb", "telling-2000.mdb", "overflow-2003.mdb", "telling-2019.accdb"}) {
      read.push_back(desktop::ReadBytes(desktop::DesktopSample(name)));
    }
    return read;
  }();
  return samples;
}

std::string WorkFile() {
  static const std::string path = "/dev/shm/kxrestore-fuzz-" + std::to_string(getpid()) + ".mdb";
  return path;
}

void Use(const std::string& path) {
  try {
    jet_file::JetFile file(path);
    jet_file::Marks marks(file, [](bool) { return false; });
    std::string text;
    for (const auto& table : file.Tables()) {
      try {
        marks.Begin();
        jet_file::FoundRow found;
        for (jet_file::Table::Walk walk(*table); walk.Next(found);) {
          for (const jet_file::Column& column : table->Definition().columns) {
            if (!jet_file::CanDecode(column.type)) continue;
            jet_file::DecodeColumn(*table, found, column, text);
            if (column.type == jet_file::ColumnType::kYesNo && found.row.HasBit(column)) {
              marks.Set(*table, found, column, !marks.At(found, column));
            }
          }
        }
        marks.Write();
      } catch (const kxrestore::Error&) {
      }
      marks.End();
    }
  } catch (const kxrestore::Error&) {
  }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  if (size < 7) return 0;
  desktop::FileBytes bytes = Samples()[data[0] % Samples().size()];
  const std::size_t pageSize = data[0] % Samples().size() == 0 ? 2048 : 4096;
  for (std::size_t i = 1; i + 6 <= size; i += 6) {
    const std::size_t page = (data[i] | data[i + 1] << 8) % (bytes.size() / pageSize);
    const std::size_t place = (data[i + 2] | data[i + 3] << 8) % pageSize;
    for (std::size_t k = 0; k < 1u + data[i + 4] % 8; ++k) {
      bytes[std::min(page * pageSize + place + k, bytes.size() - 1)] = static_cast<char>(data[i + 5]);
    }
  }
  desktop::WriteBytes(WorkFile(), bytes);
  Use(WorkFile());
  return 0;
}
