// A registry in memory, with keys that can deny access and operations that can fail.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "platform/registry.h"

namespace kxrestore::platform {

class HeadlessRegistry : public Registry {
 public:
  static constexpr long kFileNotFound = 2;
  static constexpr long kAccessDenied = 5;
  static constexpr long kInvalidHandle = 6;

  struct Value {
    std::uint32_t type = 0;
    std::vector<std::uint8_t> data;
  };

  // Stores a value, creating its key. A string is stored with its NUL.
  void Put(std::uint32_t root, const std::string& path, const std::string& name, Value value);
  void Put(std::uint32_t root, const std::string& path, const std::string& name, const std::string& text);
  const Value* Get(std::uint32_t root, const std::string& path, const std::string& name) const;

  // Grants only these rights on a key from now on; opening it with others is refused.
  void Grant(std::uint32_t root, const std::string& path, std::uint32_t access);

  // Called before each operation with its name; a result other than 0 becomes the operation's result. It may
  // throw.
  std::function<long(std::string_view operation)> fault;

  std::size_t OpenKeys() const { return m_open.size(); }

  long OpenKey(std::uint32_t root, const std::string& path, std::uint32_t access, Key& key) override;
  long CreateKey(std::uint32_t root, const std::string& path, std::uint32_t access, Key& key) override;
  long QueryValue(Key key, const std::string& name, std::uint32_t& type, std::uint32_t& size) override;
  long ReadValue(Key key, const std::string& name, std::vector<std::uint8_t>& data) override;
  long SetValue(Key key, const std::string& name, std::uint32_t type,
                const std::vector<std::uint8_t>& data) override;
  void CloseKey(Key key) override { m_open.erase(key); }

 private:
  struct StoredKey {
    std::uint32_t granted = 0xFFFFFFFF;
    std::map<std::string, Value> values;  // by folded name
  };
  using Place = std::pair<std::uint32_t, std::string>;  // root and folded path

  static Place PlaceOf(std::uint32_t root, const std::string& path);
  long Fault(std::string_view operation) const { return fault ? fault(operation) : 0; }
  long Open(StoredKey& stored, std::uint32_t access, Key& key);
  long Find(Key key, const std::string& name, Value*& value);

  std::map<Place, StoredKey> m_keys;
  std::map<Key, StoredKey*> m_open;
  Key m_lastKey = 0;
};

}  // namespace kxrestore::platform
