#include "base/RunTimeError.h"

#include <exception>
#include <new>

namespace corvane {

namespace {

int NumberOf(const std::error_code& reason) {
    if (reason == std::errc::no_such_file_or_directory || reason == std::errc::not_a_directory)
        return RunTimeError::kFileNotFound;
    if (reason == std::errc::permission_denied || reason == std::errc::operation_not_permitted)
        return RunTimeError::kPermissionDenied;
    if (reason == std::errc::io_error) return RunTimeError::kDeviceIoError;
    if (reason == std::errc::not_enough_memory) return RunTimeError::kOutOfMemory;
    return RunTimeError::kPathFileAccess;
}

}  // namespace

RunTimeError UnreadableFile(const std::string& file, const std::error_code& reason,
                            const std::string& remedy) {
    return {NumberOf(reason), file + " cannot be read: " + reason.message() + ". " + remedy};
}

Fault CurrentFault() {
    try {
        throw;
    } catch (const RunTimeError& error) {
        return {error.Number(), error.what()};
    } catch (const std::bad_alloc&) {
        return {RunTimeError::kOutOfMemory, "Out of memory"};
    } catch (const std::exception& error) {
        return {RunTimeError::kInternalError, error.what()};
    } catch (...) {
        return {RunTimeError::kInternalError, "unknown"};
    }
}

}  // namespace corvane
