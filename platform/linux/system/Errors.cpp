#include "platform/linux/system/Errors.h"

#include <cerrno>

namespace corvane {

namespace {

/// ERROR_DISK_FULL of winerror.h, which the portable code does not name.
constexpr Win32Error kDiskFull{112};

}  // namespace

Win32Error FromErrno(int errnoValue) {
    switch (errnoValue) {
        case 0:
            return Win32Error::kSuccess;
        case EPERM:
        case EACCES:
        case EROFS:
            return Win32Error::kAccessDenied;
        case ENOENT:
            return Win32Error::kFileNotFound;
        case ESRCH:
            return Win32Error::kNotFound;
        case EBADF:
            return Win32Error::kInvalidHandle;
        case ENOMEM:
        case ENOBUFS:
            return Win32Error::kNotEnoughMemory;
        case EINVAL:
        case ENODEV:
        case ENXIO:
        case ERANGE:
        case EADDRNOTAVAIL:
            return Win32Error::kInvalidParameter;
        case EEXIST:
            return Win32Error::kObjectAlreadyExists;
        case EBUSY:
        case EADDRINUSE:
            return Win32Error::kBusy;
        case ENOSPC:
            return kDiskFull;
        case ENOSYS:
        case EOPNOTSUPP:
        case EAFNOSUPPORT:
        case EPROTONOSUPPORT:
            return Win32Error::kNotSupported;
        case ENODATA:
            return Win32Error::kNoData;
        case ETIMEDOUT:
            return Win32Error::kSemTimeout;
        case ENETDOWN:
        case ENETUNREACH:
            return Win32Error::kNetworkUnreachable;
        case EHOSTDOWN:
        case EHOSTUNREACH:
            return Win32Error::kHostUnreachable;
        default:
            return Win32Error::kGenFailure;
    }
}

std::string Win32Text(Win32Error code) {
    const char* text = nullptr;
    switch (Number(code)) {
        case Number(Win32Error::kSuccess):
            text = "The operation completed successfully.";
            break;
        case Number(Win32Error::kFileNotFound):
            text = "The system cannot find the file specified.";
            break;
        case Number(Win32Error::kAccessDenied):
            text = "Access is denied.";
            break;
        case Number(Win32Error::kInvalidHandle):
            text = "The handle is invalid.";
            break;
        case Number(Win32Error::kNotEnoughMemory):
            text = "Not enough memory is available to process this command.";
            break;
        case Number(Win32Error::kGenFailure):
            text = "A device attached to the system is not functioning.";
            break;
        case Number(Win32Error::kNotSupported):
            text = "The request is not supported.";
            break;
        case Number(Win32Error::kInvalidParameter):
            text = "The parameter is incorrect.";
            break;
        case Number(kDiskFull):
            text = "There is not enough space on the disk.";
            break;
        case Number(Win32Error::kSemTimeout):
            text = "The semaphore timeout period has expired.";
            break;
        case Number(Win32Error::kInsufficientBuffer):
            text = "The data area passed to a system call is too small.";
            break;
        case Number(Win32Error::kBusy):
            text = "The requested resource is in use.";
            break;
        case Number(Win32Error::kNoData):
            text = "There is no data.";
            break;
        case Number(Win32Error::kMoreData):
            text = "More data is available.";
            break;
        case Number(Win32Error::kNoMoreItems):
            text = "No more data is available.";
            break;
        case Number(Win32Error::kBadDatabase):
            text = "The configuration registry database is corrupt.";
            break;
        case Number(Win32Error::kBadKey):
            text = "The configuration registry key is invalid.";
            break;
        case Number(Win32Error::kCantOpen):
            text = "The configuration registry key could not be opened.";
            break;
        case Number(Win32Error::kCantRead):
            text = "The configuration registry key could not be read.";
            break;
        case Number(Win32Error::kCantWrite):
            text = "The configuration registry key could not be written.";
            break;
        case Number(Win32Error::kRegistryCorrupt):
            text = "The registry is corrupted.";
            break;
        case Number(Win32Error::kNotFound):
            text = "Element not found.";
            break;
        case Number(Win32Error::kNetworkUnreachable):
            text = "The network location cannot be reached.";
            break;
        case Number(Win32Error::kHostUnreachable):
            text = "The network location cannot be reached: no way leads to the host.";
            break;
        case Number(Win32Error::kObjectAlreadyExists):
            text = "The object already exists.";
            break;
        default:
            return {};
    }
    return std::string(text) + "\r\n";
}

}  // namespace corvane
