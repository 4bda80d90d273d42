#include "base/RunTimeError.h"

#include <exception>
#include <new>

namespace corvane {

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
