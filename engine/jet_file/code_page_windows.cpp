#include <windows.h>

#include <string_view>

#include "base/utf16.h"
#include "engine/jet_file/text_decoder.h"

namespace kxrestore::engine::jet_file {
namespace {

class SystemCodePage final : public CodePage {
 public:
  explicit SystemCodePage(UINT number) : m_number(number) {}

  void Append(std::string& out, Bytes stored) override {
    const int size = static_cast<int>(stored.Size());
    if (size == 0) return;
    std::wstring wide(stored.Size(), L'\0');
    const int count = MultiByteToWideChar(m_number, 0, stored.Text().data(), size, wide.data(),
                                          static_cast<int>(wide.size()));
    AppendUtf8(out, std::wstring_view(wide).substr(0, static_cast<std::size_t>(count)));
  }

 private:
  UINT m_number;
};

}  // namespace

std::unique_ptr<CodePage> FindSystemCodePage(std::uint16_t number) {
  if (!IsValidCodePage(number)) return nullptr;
  return std::make_unique<SystemCodePage>(number);
}

}  // namespace kxrestore::engine::jet_file
