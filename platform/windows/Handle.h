#pragma once

#include <utility>

#include "platform/windows/Windows.h"

namespace corvane {

/// A native handle that is closed once, at the end of its owner. `Traits` gives Type, Invalid() and Close().
template <class Traits>
class UniqueHandle {
 public:
    using Type = typename Traits::Type;

    UniqueHandle() = default;
    explicit UniqueHandle(Type handle) : handle_(handle) {}
    ~UniqueHandle() { Reset(); }
    UniqueHandle(UniqueHandle&& other) noexcept : handle_(other.Release()) {}
    UniqueHandle& operator=(UniqueHandle&& other) noexcept {
        if (this != &other) Reset(other.Release());
        return *this;
    }
    UniqueHandle(const UniqueHandle&) = delete;
    UniqueHandle& operator=(const UniqueHandle&) = delete;

    [[nodiscard]] Type Get() const { return handle_; }
    [[nodiscard]] bool IsOpen() const { return handle_ != Traits::Invalid(); }
    Type Release() { return std::exchange(handle_, Traits::Invalid()); }
    void Reset(Type handle = Traits::Invalid()) {
        const Type former = std::exchange(handle_, handle);
        if (former != Traits::Invalid()) Traits::Close(former);
    }

 private:
    Type handle_ = Traits::Invalid();
};

struct FileHandleTraits {
    using Type = HANDLE;
    static HANDLE Invalid() { return INVALID_HANDLE_VALUE; }
    static void Close(HANDLE handle) { CloseHandle(handle); }
};
/// What CreateFileW gives.
using FileHandle = UniqueHandle<FileHandleTraits>;

struct FindHandleTraits {
    using Type = HANDLE;
    static HANDLE Invalid() { return INVALID_HANDLE_VALUE; }
    static void Close(HANDLE handle) { FindClose(handle); }
};
/// What FindFirstFileW gives.
using FindHandle = UniqueHandle<FindHandleTraits>;

}  // namespace corvane
