#pragma once

#include <functional>
#include <memory>

#include <wx/evtloopsrc.h>

/// Calls back from the event loop when links, addresses or routes changed (ChangesApi).
namespace corvane {

class ChangesWatch : private wxEventLoopSourceHandler {
 public:
    /// Watches from now on, as long as it lives. The event loop need not run yet.
    explicit ChangesWatch(std::function<void()> onChange);
    ~ChangesWatch() override;

 private:
    void OnReadWaiting() override;
    void OnWriteWaiting() override {}
    void OnExceptionWaiting() override { source_.reset(); }

    std::function<void()> onChange_;
    std::unique_ptr<wxEventLoopSource> source_;
};

}  // namespace corvane
