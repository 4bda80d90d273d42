#include <array>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>
#include <wx/button.h>
#include <wx/evtloop.h>
#include <wx/frame.h>
#include <wx/init.h>
#include <wx/timer.h>

#include "fakes/Fakes.h"
#include "platform/linux/ChangesDescriptor.h"
#include "programs/WindowApp.h"
#include "ui/ChangesWatch.h"
#include "ui/RowList.h"

/// Exceptions on their way to the real event loop. Needs a display.
namespace corvane {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr int kPatienceMilliseconds = 20000;

class EventLoopFaults : public testing::Test {
 protected:
    /// Runs an event loop in which `start` is called, until `done` says so or patience ends. True when the
    /// loop was still running when it was done.
    bool RunLoop(const std::function<void()>& start, const std::function<bool()>& done) {
        wxGUIEventLoop loop;
        wxTimer starter;
        starter.Bind(wxEVT_TIMER, [&](wxTimerEvent&) { start(); });
        starter.StartOnce(1);
        wxTimer watch;
        int waited = 0;
        bool reached = false;
        watch.Bind(wxEVT_TIMER, [&](wxTimerEvent&) {
            reached = done();
            if (reached || (waited += 10) > kPatienceMilliseconds) loop.Exit();
        });
        watch.Start(10);
        loop.Run();
        return reached;
    }

    bool RunUntilABox(const std::function<void()>& start) {
        return RunLoop(start, [this] { return !machine_.seat.boxes.empty(); });
    }

    void ExpectOneBox(const std::string& description) {
        ASSERT_EQ(machine_.seat.boxes.size(), 1U);
        EXPECT_THAT(machine_.seat.boxes[0].text, HasSubstr("Description: " + description));
    }

    FakeMachine machine_;
};

TEST_F(EventLoopFaults, OutOfATimerBecomeABoxAndTheLoopGoesOn) {
    EXPECT_TRUE(RunUntilABox([] { throw std::runtime_error("timer"); }));
    ExpectOneBox("timer (51)");
}

TEST_F(EventLoopFaults, OutOfAButtonBecomeABoxAndTheLoopGoesOn) {
    wxFrame frame(nullptr, wxID_ANY, "faults");
    auto* const button = new wxButton(&frame, wxID_ANY, "Fail");
    button->Bind(wxEVT_BUTTON, [](wxCommandEvent&) { throw std::runtime_error("button"); });
    frame.Show();
    EXPECT_TRUE(RunUntilABox([&] {
        wxCommandEvent event(wxEVT_BUTTON, button->GetId());
        button->GetEventHandler()->SafelyProcessEvent(event);
    }));
    ExpectOneBox("button (51)");
}

TEST_F(EventLoopFaults, OutOfAPostponedCallBecomeABoxAndTheOtherCallsAreMade) {
    bool made = false;
    EXPECT_TRUE(RunLoop(
        [&] {
            wxTheApp->CallAfter([] { throw std::runtime_error("call"); });
            wxTheApp->CallAfter([&] { made = true; });
        },
        [&] { return made; }));
    ExpectOneBox("call (51)");
}

TEST_F(EventLoopFaults, OutOfTheWatchForChangesBecomeABoxAndTheLoopGoesOn) {
    std::array<int, 2> ends{};
    ASSERT_EQ(pipe(ends.data()), 0);
    struct Changes : DescribedChanges {
        int descriptor = -1;
        bool TakeChanges() override {
            char byte = 0;
            return read(descriptor, &byte, 1) == 1;
        }
        int Descriptor() override { return descriptor; }
    };
    const auto changes = std::make_shared<Changes>();
    changes->descriptor = ends[0];
    Platform platform = CurrentPlatform();
    platform.changes = changes;
    const ScopedPlatform installed(std::move(platform));
    {
        const ChangesWatch watch([] { throw std::runtime_error("change"); });
        EXPECT_TRUE(RunUntilABox([&] { ASSERT_EQ(write(ends[1], "x", 1), 1); }));
    }
    ExpectOneBox("change (51)");
    for (const int end : ends) close(end);
}

}  // namespace
}  // namespace corvane

int main(int count, char** arguments) {
    testing::InitGoogleTest(&count, arguments);
    wxApp::SetInstance(new corvane::WindowApp(""));
    const corvane::Toolkit toolkit([&] { return wxEntryStart(count, arguments); });
    if (!toolkit.Started()) return 1;
    wxTheApp->CallOnInit();
    return RUN_ALL_TESTS();
}
