#include "base/error.h"

#include <new>

namespace kxrestore {

namespace {

constexpr int kInternalError = 51;

}  // namespace

Error CurrentError() noexcept {
  try {
    try {
      throw;
    } catch (const Error& error) {
      return error;
    } catch (const std::bad_alloc&) {
      return {error_number::kOutOfMemory, "Out of memory"};
    } catch (const std::exception& exception) {
      return {kInternalError, std::string("Internal error: ") + exception.what()};
    } catch (...) {
      return {kInternalError, "Internal error"};
    }
  } catch (...) {
    // There is no memory for a copy. This text needs none.
    return {error_number::kOutOfMemory, "Out of memory"};
  }
}

}  // namespace kxrestore
