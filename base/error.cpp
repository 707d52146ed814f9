#include "base/error.h"

#include <new>

namespace kxrestore {

namespace {

constexpr int kInternalError = 51;

}  // namespace

Error CurrentError() {
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
}

}  // namespace kxrestore
