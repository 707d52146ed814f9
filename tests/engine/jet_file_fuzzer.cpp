// libFuzzer target: reads and marks a sample file of the desktop engine in which some bytes have changed. It
// may raise errors but not crash. The input is a list of changes, so that short inputs reach every byte of a
// file. The first byte selects the file. Each change takes six bytes: page (2), offset in the page (2),
// number of bytes, new value.
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>

#include "base/error.h"
#include "engine/jet_file/decode.h"
#include "engine/jet_file/marks.h"
#include "tests/engine/desktop_samples.h"

using kxrestore::engine::testing::SampleCopy;
namespace jet_file = kxrestore::engine::jet_file;

namespace {

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
  static const SampleCopy samples[] = {SampleCopy("sample-1997.mdb"), SampleCopy("telling-2000.mdb"),
                                       SampleCopy("overflow-2003.mdb"), SampleCopy("telling-2019.accdb")};
  if (size < 7) return 0;
  const std::size_t number = data[0] % std::size(samples), pageSize = number == 0 ? 2048 : 4096;
  samples[number].Change([&](std::string& bytes) {
    for (std::size_t i = 1; i + 6 <= size; i += 6) {
      const std::size_t page = (data[i] | data[i + 1] << 8) % (bytes.size() / pageSize);
      const std::size_t place = page * pageSize + (data[i + 2] | data[i + 3] << 8) % pageSize;
      for (std::size_t k = 0; k < 1u + data[i + 4] % 8 && place + k < bytes.size(); ++k) {
        bytes[place + k] = static_cast<char>(data[i + 5]);
      }
    }
  });
  Use(samples[number].Path());
  return 0;
}
