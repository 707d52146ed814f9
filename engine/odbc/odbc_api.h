// The driver manager's interface, wide characters only, with its handles owned and its texts converted. Every
// other header of the engine is free of it.
#pragma once

#ifdef _WIN32
#include <windows.h>
#endif
#include <sql.h>
#include <sqlext.h>
#include <sqlucode.h>

#include <string>
#include <string_view>
#include <utility>

#include "base/utf16.h"

namespace kxrestore::engine::odbc {

static_assert(sizeof(SQLWCHAR) == sizeof(char16_t), "the driver manager's characters are UTF-16");

inline SQLWCHAR* WideBuffer(char16_t* text) {
  return reinterpret_cast<SQLWCHAR*>(text);
}

// A UTF-16 text to hand over: Data() is what the interface takes, though it does not change it.
class WideText {
 public:
  explicit WideText(std::string_view text) : m_text(ToUtf16<char16_t>(text)) {}
  SQLWCHAR* Data() { return WideBuffer(m_text.data()); }
  std::size_t Size() const { return m_text.size(); }

 private:
  std::u16string m_text;
};

template <SQLSMALLINT kType>
class Handle {
 public:
  Handle() = default;
  Handle(Handle&& other) noexcept : m_handle(std::exchange(other.m_handle, nullptr)) {}
  Handle& operator=(Handle&& other) noexcept {
    std::swap(m_handle, other.m_handle);
    return *this;
  }
  ~Handle() {
    if (m_handle != nullptr) SQLFreeHandle(kType, m_handle);
  }

  SQLHANDLE Get() const { return m_handle; }
  bool Allocate(SQLHANDLE parent) { return SQL_SUCCEEDED(SQLAllocHandle(kType, parent, &m_handle)); }

 private:
  SQLHANDLE m_handle = nullptr;
};
using Environment = Handle<SQL_HANDLE_ENV>;
using Connection = Handle<SQL_HANDLE_DBC>;
using StatementHandle = Handle<SQL_HANDLE_STMT>;

}  // namespace kxrestore::engine::odbc
