#pragma once

#include <utility>

#include <unistd.h>

namespace corvane {

/// Owner of an open file descriptor, which it closes.
class Descriptor {
 public:
    Descriptor() = default;
    /// Takes over `value`; a negative one means none.
    explicit Descriptor(int value) : value_(value) {}
    ~Descriptor() { Reset(); }
    Descriptor(Descriptor&& other) noexcept : value_(std::exchange(other.value_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) Reset(std::exchange(other.value_, -1));
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    /// The descriptor, -1 when there is none.
    [[nodiscard]] int Get() const { return value_; }
    [[nodiscard]] bool IsOpen() const { return value_ >= 0; }

    /// Closes what it had and takes over `value`.
    void Reset(int value = -1) {
        if (value_ >= 0) close(value_);
        value_ = value < 0 ? -1 : value;
    }

 private:
    int value_ = -1;
};

}  // namespace corvane
