#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

namespace corvane::fuzz {

/// Makes copies of bytes with one to four damages. The same seed and words give the same damages.
class Damager {
 public:
    /// `words` are pieces that lead deeper than single bytes would.
    Damager(std::uint32_t seed, std::vector<std::string> words) : random_(seed), words_(std::move(words)) {}

    std::string Damage(std::string bytes) {
        for (std::size_t count = 1 + Below(4); count > 0; --count) DamageOnce(bytes);
        return bytes;
    }

    std::string RandomBytes() {
        std::string bytes(Below(300), '\0');
        for (char& byte : bytes) byte = static_cast<char>(Below(256));
        return bytes;
    }

 private:
    std::size_t Below(std::size_t bound) {
        return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random_);
    }

    void DamageOnce(std::string& bytes) {
        // The beginning decides most: it is hit more often than other places.
        const std::size_t place =
            Below(4) == 0 ? Below(std::min<std::size_t>(bytes.size(), 4) + 1) : Below(bytes.size() + 1);
        switch (Below(7)) {
            case 0:
                bytes.resize(place);
                break;
            case 1:
                bytes.erase(place, 1 + Below(8));
                break;
            case 2:
                bytes.insert(place, bytes.substr(Below(bytes.size() + 1), 1 + Below(40)));
                break;
            case 3:
                if (!words_.empty()) bytes.insert(place, words_[Below(words_.size())]);
                break;
            case 4:
                if (place < bytes.size()) bytes[place] = static_cast<char>(bytes[place] ^ (1 << Below(8)));
                break;
            case 5:
                if (place < bytes.size()) bytes[place] = static_cast<char>(Below(256));
                break;
            default:
                PutNumber(bytes, place);
        }
    }

    /// Puts a number of two or four bytes that lies at a border.
    void PutNumber(std::string& bytes, std::size_t place) {
        constexpr std::array<std::uint32_t, 16> kBorders = {
            0,      1,      2,      3,       4,          7,          8,          16,
            0x7FFF, 0x8000, 0xFFFF, 0x10000, 0x77359400, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
        const std::uint32_t number = kBorders[Below(kBorders.size())];
        const std::size_t size = std::min<std::size_t>(Below(2) == 0 ? 2 : 4, bytes.size() - place);
        for (std::size_t i = 0; i < size; ++i) bytes[place + i] = static_cast<char>(number >> (8 * i));
    }

    std::mt19937 random_;
    std::vector<std::string> words_;
};

/// Memory whose last byte lies before a page that must not be touched, so that reading past the end is a
/// crash even in code that no sanitizer watches.
class GuardedBytes {
 public:
    GuardedBytes() : page_(static_cast<std::size_t>(sysconf(_SC_PAGESIZE))) {
        void* memory =
            mmap(nullptr, kRoom + page_, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED || mprotect(static_cast<char*>(memory) + kRoom, page_, PROT_NONE) != 0)
            std::abort();
        memory_ = static_cast<char*>(memory);
    }
    ~GuardedBytes() { munmap(memory_, kRoom + page_); }
    GuardedBytes(const GuardedBytes&) = delete;
    GuardedBytes& operator=(const GuardedBytes&) = delete;

    /// A copy of the bytes, 64 KiB of them at most, at the very end; valid until the next one.
    std::string_view Place(std::string_view bytes) {
        if (bytes.size() > kRoom) std::abort();
        char* start = memory_ + kRoom - bytes.size();
        if (!bytes.empty()) std::memcpy(start, bytes.data(), bytes.size());
        return {start, bytes.size()};
    }

 private:
    static constexpr std::size_t kRoom = 65536;

    std::size_t page_;
    char* memory_ = nullptr;
};

}  // namespace corvane::fuzz
