#include "platform/headless/headless_registry.h"

#include "base/text.h"

namespace kxrestore::platform {

HeadlessRegistry::Place HeadlessRegistry::PlaceOf(std::uint32_t root, const std::string& path) {
  return {root, FoldCase(path)};
}

void HeadlessRegistry::Put(std::uint32_t root, const std::string& path, const std::string& name,
                           Value value) {
  m_keys[PlaceOf(root, path)].values[FoldCase(name)] = std::move(value);
}

void HeadlessRegistry::Put(std::uint32_t root, const std::string& path, const std::string& name,
                           const std::string& text) {
  Value value{kRegSz, {text.begin(), text.end()}};
  value.data.push_back(0);
  Put(root, path, name, std::move(value));
}

const HeadlessRegistry::Value* HeadlessRegistry::Get(std::uint32_t root, const std::string& path,
                                                     const std::string& name) const {
  const auto key = m_keys.find(PlaceOf(root, path));
  if (key == m_keys.end()) return nullptr;
  const auto value = key->second.values.find(FoldCase(name));
  return value == key->second.values.end() ? nullptr : &value->second;
}

void HeadlessRegistry::Grant(std::uint32_t root, const std::string& path, std::uint32_t access) {
  m_keys[PlaceOf(root, path)].granted = access;
}

long HeadlessRegistry::Open(StoredKey& stored, std::uint32_t access, Key& key) {
  if ((access & ~stored.granted) != 0) return kAccessDenied;
  key = ++m_lastKey;
  m_open[key] = &stored;
  return 0;
}

long HeadlessRegistry::OpenKey(std::uint32_t root, const std::string& path, std::uint32_t access, Key& key) {
  if (const long result = Fault("OpenKey")) return result;
  const auto stored = m_keys.find(PlaceOf(root, path));
  return stored == m_keys.end() ? kFileNotFound : Open(stored->second, access, key);
}

long HeadlessRegistry::CreateKey(std::uint32_t root, const std::string& path, std::uint32_t access,
                                 Key& key) {
  if (const long result = Fault("CreateKey")) return result;
  return Open(m_keys[PlaceOf(root, path)], access, key);
}

long HeadlessRegistry::Find(Key key, const std::string& name, Value*& value) {
  const auto open = m_open.find(key);
  if (open == m_open.end()) return kInvalidHandle;
  const auto place = open->second->values.find(FoldCase(name));
  if (place == open->second->values.end()) return kFileNotFound;
  value = &place->second;
  return 0;
}

long HeadlessRegistry::QueryValue(Key key, const std::string& name, std::uint32_t& type,
                                  std::uint32_t& size) {
  if (const long result = Fault("QueryValue")) return result;
  Value* value = nullptr;
  if (const long result = Find(key, name, value)) return result;
  type = value->type;
  size = static_cast<std::uint32_t>(value->data.size());
  return 0;
}

long HeadlessRegistry::ReadValue(Key key, const std::string& name, std::vector<std::uint8_t>& data) {
  if (const long result = Fault("ReadValue")) return result;
  Value* value = nullptr;
  if (const long result = Find(key, name, value)) return result;
  data = value->data;
  return 0;
}

long HeadlessRegistry::SetValue(Key key, const std::string& name, std::uint32_t type,
                                const std::vector<std::uint8_t>& data) {
  if (const long result = Fault("SetValue")) return result;
  const auto open = m_open.find(key);
  if (open == m_open.end()) return kInvalidHandle;
  open->second->values[FoldCase(name)] = {type, data};
  return 0;
}

}  // namespace kxrestore::platform
