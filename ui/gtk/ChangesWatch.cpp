#include "ui/ChangesWatch.h"

#include <utility>

#include <wx/evtloop.h>
#include <wx/evtloopsrc.h>

#include "platform/Platform.h"
#include "platform/linux/ChangesDescriptor.h"
#include "ui/gtk/Callback.h"

namespace corvane {

/// The event loop watches the descriptor.
class ChangesWatch::Source : public wxEventLoopSourceHandler {
 public:
    explicit Source(std::function<void()> onChange) : onChange_(std::move(onChange)) {
        auto* const changes = dynamic_cast<DescribedChanges*>(CurrentPlatform().changes.get());
        const int descriptor = changes == nullptr ? -1 : changes->Descriptor();
        if (descriptor < 0) return;
        source_.reset(wxEventLoopBase::AddSourceForFD(descriptor, this, wxEVENT_SOURCE_INPUT));
    }

    void OnReadWaiting() override {
        RunCallback([this] {
            if (CurrentPlatform().changes->TakeChanges()) onChange_();
        });
    }
    void OnWriteWaiting() override {}
    void OnExceptionWaiting() override { source_.reset(); }

 private:
    std::function<void()> onChange_;
    std::unique_ptr<wxEventLoopSource> source_;
};

ChangesWatch::ChangesWatch(std::function<void()> onChange)
    : source_(std::make_unique<Source>(std::move(onChange))) {}

ChangesWatch::~ChangesWatch() = default;

}  // namespace corvane
