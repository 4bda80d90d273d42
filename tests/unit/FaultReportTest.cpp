#include <functional>
#include <new>
#include <stdexcept>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "base/RunTimeError.h"
#include "startup/FaultReport.h"
#include "tests/unit/CoreSupport.h"

namespace corvane {
namespace {

using testing::ElementsAre;

FakeSeat::Box FaultBox(const std::string& description) {
    return test::Critical("Orvella Corvane",
                          "ERROR! What was being done may not have been carried out to its end.\r\n"
                          "\r\n"
                          "Description: " +
                              description +
                              "\r\n"
                              "\r\n"
                              "Click OK to continue");
}

/// Does something else while a box is open.
class BusySeat : public FakeSeat {
 public:
    std::function<void()> whileOpen;

    BoxAnswer ShowBox(const std::string& title, const std::string& text, BoxIcon icon,
                      BoxButtons buttons) override {
        const BoxAnswer answer = FakeSeat::ShowBox(title, text, icon, buttons);
        if (whileOpen) whileOpen();
        return answer;
    }
};

class FaultReportTest : public testing::Test {
 protected:
    template <class Exception>
    void Report(const Exception& exception) {
        try {
            throw exception;
        } catch (...) {
            report_.Show();
        }
    }

    FakeMachine machine_;
    BusySeat seat_;
    ScopedSeat installed_{seat_};
    FaultReport report_;
};

TEST_F(FaultReportTest, ShowsWhatAnExceptionSaysAndItsNumber) {
    Report(RunTimeError(RunTimeError::kFileNotFound, "The vendor list is missing."));
    EXPECT_THAT(seat_.boxes, ElementsAre(FaultBox("The vendor list is missing. (53)")));
}

TEST_F(FaultReportTest, ShowsEveryKindOfException) {
    Report(std::bad_alloc());
    Report(std::out_of_range("vector::_M_range_check"));
    Report(7);
    EXPECT_THAT(seat_.boxes, ElementsAre(FaultBox("Out of memory (7)"),
                                         FaultBox("vector::_M_range_check (51)"), FaultBox("unknown (51)")));
}

TEST_F(FaultReportTest, ShowsNoSecondBoxOverAnOpenOne) {
    seat_.whileOpen = [this] {
        seat_.whileOpen = nullptr;
        Report(std::runtime_error("under the box"));
    };
    Report(std::runtime_error("first"));
    Report(std::runtime_error("after it"));
    EXPECT_THAT(seat_.boxes, ElementsAre(FaultBox("first (51)"), FaultBox("after it (51)")));
}

TEST_F(FaultReportTest, GivesUpABoxThatCannotBeShown) {
    seat_.whileOpen = [] { throw std::runtime_error("no display"); };
    Report(std::runtime_error("first"));
    seat_.whileOpen = nullptr;
    seat_.boxes.clear();
    Report(std::runtime_error("second"));
    EXPECT_THAT(seat_.boxes, ElementsAre(FaultBox("second (51)")));
}

}  // namespace
}  // namespace corvane
