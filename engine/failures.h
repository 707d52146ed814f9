// Collects the failures of several independent steps and raises them together at the end.
#pragma once

#include <exception>
#include <string>
#include <utility>

#include "base/error.h"

namespace kxrestore::engine {

class Failures {
 public:
  template <class Step>
  void Try(Step step) {
    try {
      step();
    } catch (const Error& error) {
      Keep(&error);
    } catch (...) {
      Keep(nullptr);
    }
  }

  // Raises the first failure with the descriptions of all. Does nothing if there was none.
  void Raise() {
    if (!m_first) return;
    if (m_more.empty()) std::rethrow_exception(std::exchange(m_first, nullptr));
    try {
      std::rethrow_exception(std::exchange(m_first, nullptr));
    } catch (const Error& error) {
      throw Error(error.Number(), error.Description() + std::exchange(m_more, {}), error.Source());
    }
  }

 private:
  void Keep(const Error* error) {
    if (!m_first) {
      m_first = std::current_exception();
      m_firstText = error == nullptr ? std::string() : error->Description();
    } else if (error != nullptr && error->Description() != m_firstText) {
      m_more += ' ' + error->Description();
    }
  }

  std::exception_ptr m_first;
  std::string m_firstText, m_more;
};

}  // namespace kxrestore::engine
