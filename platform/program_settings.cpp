#include "platform/program_settings.h"

#include <new>
#include <vector>

#include "base/error.h"

namespace kxrestore::platform {

namespace {

class OpenedKey {
 public:
  OpenedKey(Registry& registry, Registry::Key key) : m_registry(registry), m_key(key) {}
  ~OpenedKey() { m_registry.CloseKey(m_key); }
  OpenedKey(const OpenedKey&) = delete;
  OpenedKey& operator=(const OpenedKey&) = delete;

 private:
  Registry& m_registry;
  Registry::Key m_key;
};

}  // namespace

// Shows one message box per call, then continues after the failed step.
template <std::invocable Work>
void CProgramSettings::Guarded(const char* routine, Work work) const {
  int number = 0;
  std::string description;
  try {
    work();
    return;
  } catch (const Error& error) {
    number = error.Number();
    description = error.Description();
  } catch (const std::bad_alloc&) {
    number = error_number::kOutOfMemory;
    description = "Out of memory";
  }
  m_desktop.MessageBox("Error: " + std::to_string(number) + ". " + description, MessageStyle::kPlain,
                       routine);
}

std::string CProgramSettings::KeyPath() const {
  std::string path = m_mainBranch + "\\" + m_regBase + "\\" + m_program + "\\" + m_section;
  if (path.ends_with('\\')) path.pop_back();
  return path;
}

std::string CProgramSettings::ReadEntry(const std::string& strEntry, const std::string& strDefault) const {
  std::string text;
  Guarded("ReadEntry", [&] {
    const Value value = GetKeyValue(m_rootKey, KeyPath(), strEntry);
    if (const auto* number = std::get_if<std::int32_t>(&value)) {
      text = std::to_string(*number);
    } else if (const auto* stored = std::get_if<std::string>(&value)) {
      text = *stored;
    }
  });
  return text.empty() ? strDefault : text;
}

void CProgramSettings::WriteEntry(const std::string& strEntry, const std::string& strValue) const {
  Guarded("WriteEntry", [&] { SetKeyValue(m_rootKey, KeyPath(), strEntry, strValue); });
}

CProgramSettings::Value CProgramSettings::GetKeyValue(std::uint32_t root, const std::string& path,
                                                      const std::string& name) const {
  Value result;
  Guarded("GetKeyValue", [&] {
    Registry::Key key = 0;
    if (m_registry.OpenKey(root, path, kKeyAllAccess, key) != 0) return;
    const OpenedKey opened(m_registry, key);
    std::uint32_t type = 0;
    std::uint32_t size = 0;
    if (m_registry.QueryValue(key, name, type, size) != 0) return;
    if (type != kRegSz && type != kRegDword) return;
    std::vector<std::uint8_t> data;
    if (m_registry.ReadValue(key, name, data) != 0) return;
    if (type == kRegSz) {
      if (!data.empty() && data.back() == 0) data.pop_back();
      result = std::string(data.begin(), data.end());
    } else if (data.size() >= 4) {
      result = static_cast<std::int32_t>(data[0] | std::uint32_t{data[1]} << 8 |
                                         std::uint32_t{data[2]} << 16 | std::uint32_t{data[3]} << 24);
    }
  });
  return result;
}

void CProgramSettings::SetKeyValue(std::uint32_t root, const std::string& path, const std::string& name,
                                   const Value& value) const {
  Guarded("SetKeyValue", [&] {
    Registry::Key key = 0;
    if (m_registry.CreateKey(root, path, kKeyAllAccess, key) != 0) return;
    const OpenedKey opened(m_registry, key);
    std::vector<std::uint8_t> data;
    std::uint32_t type = kRegSz;
    if (const auto* number = std::get_if<std::int32_t>(&value)) {
      type = kRegDword;
      for (unsigned shift = 0; shift < 32; shift += 8) {
        data.push_back(static_cast<std::uint8_t>(static_cast<std::uint32_t>(*number) >> shift));
      }
    } else {
      const auto* const text = std::get_if<std::string>(&value);
      if (text != nullptr) data.assign(text->begin(), text->end());
      data.push_back(0);
    }
    static_cast<void>(m_registry.SetValue(key, name, type, data));  // a setting that cannot be saved is lost
  });
}

}  // namespace kxrestore::platform
