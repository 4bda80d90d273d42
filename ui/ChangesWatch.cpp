#include "ui/ChangesWatch.h"

#include <utility>

#include <wx/evtloop.h>

#include "platform/Platform.h"

namespace corvane {

ChangesWatch::ChangesWatch(std::function<void()> onChange) : onChange_(std::move(onChange)) {
    const int descriptor = CurrentPlatform().changes->Descriptor();
    if (descriptor < 0) return;
    source_.reset(wxEventLoopBase::AddSourceForFD(descriptor, this, wxEVENT_SOURCE_INPUT));
}

ChangesWatch::~ChangesWatch() = default;

void ChangesWatch::OnReadWaiting() {
    if (CurrentPlatform().changes->TakeChanges()) onChange_();
}

}  // namespace corvane
