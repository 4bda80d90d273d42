#pragma once

#include <functional>
#include <memory>

/// Calls back from the event loop when links, addresses or routes changed (ChangesApi).
namespace corvane {

class ChangesWatch {
 public:
    /// Watches from now on, as long as it lives. The event loop need not run yet.
    explicit ChangesWatch(std::function<void()> onChange);
    ~ChangesWatch();

 private:
    class Source;

    std::unique_ptr<Source> source_;
};

}  // namespace corvane
