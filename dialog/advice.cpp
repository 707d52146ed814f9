#include "dialog/advice.h"

#include "base/error.h"
#include "engine/error_numbers.h"

namespace kxrestore::dialog {

Phrase AdviceFor(int errorNumber) {
  namespace engine_error = engine::error_number;
  switch (errorNumber) {
    case engine_error::kFileNotFound:
    case engine_error::kCannotOpen:
    case engine_error::kDiskError:
      return Phrase::kAdviceFindCatalog;
    case engine_error::kFileInUse:
    case engine_error::kRecordLocked:
    case engine_error::kRowLocked:
      return Phrase::kAdviceWait;
    case engine_error::kReadOnly:
      return Phrase::kAdvicePermission;
    case engine_error::kDiskFull:
      return Phrase::kAdviceMakeRoom;
    case engine_error::kDamaged:
    case engine_error::kUnrecognizedFormat:
      return Phrase::kAdviceDamaged;
    case engine_error::kOdbcConnectionFailed:
      return Phrase::kAdviceServer;
    case engine_error::kRecordDeleted:
    case engine_error::kDataHasChanged:
      return Phrase::kAdviceRefresh;
    case engine_error::kCannotCreateObject:
      return Phrase::kAdviceEngine;
    case error_number::kOutOfMemory:
      return Phrase::kAdviceMemory;
    default:
      return Phrase::kAdviceAsk;
  }
}

}  // namespace kxrestore::dialog
