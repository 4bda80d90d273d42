#include "ui/ChangesWatch.h"

#include <utility>

#include <wx/timer.h>

#include "platform/Platform.h"

namespace corvane {

namespace {

constexpr int kAskMilliseconds = 1000;

}  // namespace

/// There is no descriptor that the event loop could wait on, so the platform is asked again and again.
class ChangesWatch::Source : private wxTimer {
 public:
    explicit Source(std::function<void()> onChange) : onChange_(std::move(onChange)) {
        Start(kAskMilliseconds);
    }

 private:
    void Notify() override {
        if (CurrentPlatform().changes->TakeChanges()) onChange_();
    }

    std::function<void()> onChange_;
};

ChangesWatch::ChangesWatch(std::function<void()> onChange)
    : source_(std::make_unique<Source>(std::move(onChange))) {}

ChangesWatch::~ChangesWatch() = default;

}  // namespace corvane
