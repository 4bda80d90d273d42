#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "presets/PresetsFile.h"
#include "tests/unit/PresetsSupport.h"
#include "tests/unit/TempFolder.h"

namespace corvane::test {

/// A presets file in a folder of its own, and a user who remembers what is shown.
class SavePresetsTest : public testing::Test {
 protected:
    /// Saves `list` and expects no box.
    void Save(const std::vector<PresetRecord>& list) {
        Presets() = list;
        EXPECT_TRUE(SavePresets(folder_ / ""));
        EXPECT_TRUE(seat_.boxes.empty());
    }

    [[nodiscard]] std::string Path() const { return folder_ / "presets.npf"; }

    /// Expects one box, the report of a failed save.
    void ExpectBox(int number, const std::string& description, const std::string& path) const {
        ASSERT_EQ(seat_.boxes.size(), 1U);
        EXPECT_EQ(seat_.boxes[0].title, "Orvella Corvane");
        EXPECT_EQ(seat_.boxes[0].text, SaveFailureText(number, description, path));
        EXPECT_EQ(seat_.boxes[0].icon, BoxIcon::kCritical);
        EXPECT_EQ(seat_.boxes[0].buttons, BoxButtons::kOk);
    }

    FreshPresets fresh_;
    TempFolder folder_;
    BoxSeat seat_;
    ScopedSeat scope_{seat_};
};

}  // namespace corvane::test
