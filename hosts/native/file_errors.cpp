#include "hosts/native/file_errors.h"

#include <cerrno>

namespace tof::native {
namespace {

AutomationError Standard(RunTimeError error) {
  return {static_cast<std::int32_t>(error), DescriptionOf(error)};
}

}  // namespace

AutomationError ErrorOfErrno(int error_code) {
  switch (error_code) {
    case ENOENT:  // a file is made when it is missing, so a folder of its path is
    case ENOTDIR:
      return Standard(RunTimeError::kPathNotFound);
    case EACCES:
    case EPERM:
    case EROFS:
    case EISDIR:
    case ETXTBSY:
      return Standard(RunTimeError::kPermissionDenied);
    case ENOSPC:
#ifdef EDQUOT  // Windows has no disk quotas of its own number
    case EDQUOT:
#endif
    case EFBIG:
      return {61, "Disk full"};
    case EMFILE:
    case ENFILE:
      return {67, "Too many files"};
    case ENAMETOOLONG:
    case EINVAL:
      return {52, "Bad file name or number"};
    default:
      return {57, "Device I/O error"};
  }
}

}  // namespace tof::native
