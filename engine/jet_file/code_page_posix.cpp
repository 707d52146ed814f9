#include <iconv.h>

#include <cerrno>

#include "base/text.h"
#include "engine/jet_file/text_decoder.h"

namespace kxrestore::engine::jet_file {
namespace {

class SystemCodePage final : public CodePage {
 public:
  explicit SystemCodePage(iconv_t converter) : m_converter(converter) {}
  ~SystemCodePage() override { iconv_close(m_converter); }
  SystemCodePage(const SystemCodePage&) = delete;
  SystemCodePage& operator=(const SystemCodePage&) = delete;

  void Append(std::string& out, Bytes stored) override {
    iconv(m_converter, nullptr, nullptr, nullptr, nullptr);
    std::string source(stored.Text());
    char* from = source.data();
    std::size_t left = source.size();
    // The last call delivers a character that was held back because an accent could have followed.
    for (bool last = false; !last;) {
      last = left == 0;
      char buffer[256];
      char* to = buffer;
      std::size_t room = sizeof buffer;
      const std::size_t result =
          iconv(m_converter, last ? nullptr : &from, last ? nullptr : &left, &to, &room);
      out.append(buffer, sizeof buffer - room);
      if (last || result != static_cast<std::size_t>(-1) || errno == E2BIG) continue;
      AppendCharacter(out, 0xFFFD);
      if (left == 0) continue;
      ++from;
      --left;
    }
  }

 private:
  iconv_t m_converter;
};

}  // namespace

std::unique_ptr<CodePage> FindSystemCodePage(std::uint16_t number) {
  for (const char* prefix : {"CP", "WINDOWS-", "IBM"}) {
    const iconv_t converter = iconv_open("UTF-8", (prefix + std::to_string(number)).c_str());
    if (converter != reinterpret_cast<iconv_t>(-1)) return std::make_unique<SystemCodePage>(converter);
  }
  return nullptr;
}

}  // namespace kxrestore::engine::jet_file
