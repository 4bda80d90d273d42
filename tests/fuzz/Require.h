#pragma once

#include <stdexcept>
#include <string>

/// For the checks that the fuzzers and the tests over the seeds share.
namespace corvane::fuzz {

/// A rule that the product's code broke. Nothing catches it in a fuzzer, which makes it a finding; in a test
/// it is a failure.
class BrokenRule : public std::logic_error {
 public:
    using std::logic_error::logic_error;
};

/// `rule` says in words what must hold.
inline void Require(bool holds, const char* rule) {
    if (!holds) throw BrokenRule(rule);
}

}  // namespace corvane::fuzz
