// The one exception type of the component: a number, a description and a source, as the desktop engine and
// the controls raise them and as the error report shows them.
#pragma once

#include <exception>
#include <string>
#include <utility>

namespace kxrestore {

class Error : public std::exception {
 public:
  Error(int number, std::string description, std::string source = {})
      : m_number(number), m_description(std::move(description)), m_source(std::move(source)) {}

  int Number() const { return m_number; }
  const std::string& Description() const { return m_description; }
  const std::string& Source() const { return m_source; }
  const char* what() const noexcept override { return m_description.c_str(); }

 private:
  int m_number;
  std::string m_description;
  std::string m_source;
};

// The exception being handled, as an Error: error 7 for lack of memory, error 51 for any other foreign
// exception. Call it in a catch block only.
[[nodiscard]] Error CurrentError() noexcept;

// Numbers that code outside the engine raises or tests for. engine/error_numbers.h has the engine's own.
namespace error_number {
inline constexpr int kOverflow = 6;
inline constexpr int kOutOfMemory = 7;
inline constexpr int kSubscriptOutOfRange = 9;
inline constexpr int kTypeMismatch = 13;
inline constexpr int kObjectVariableNotSet = 91;
inline constexpr int kInvalidPropertyValue = 380;
inline constexpr int kIndexOutOfBounds = 35600;
inline constexpr int kElementNotFound = 35601;
inline constexpr int kKeyNotUnique = 35602;
}  // namespace error_number

}  // namespace kxrestore
