#pragma once

#include <string>
#include <utility>

namespace corvane {

/// The outcome of something that can be refused where no error number says why: done, or the reason in words
/// for the user. Made by `return {};` and `return Refusal("...");`, asked by `if (const Refusal refusal =
/// ...)`.
class [[nodiscard]] Refusal {
 public:
    /// Nothing was refused: it is done.
    Refusal() = default;
    /// `words` are not empty.
    explicit Refusal(std::string words) : words_(std::move(words)) {}

    /// True when it was refused.
    [[nodiscard]] explicit operator bool() const { return !words_.empty(); }
    /// The reason; empty when nothing was refused.
    [[nodiscard]] const std::string& Words() const { return words_; }

    bool operator==(const Refusal&) const = default;

 private:
    std::string words_;
};

}  // namespace corvane
