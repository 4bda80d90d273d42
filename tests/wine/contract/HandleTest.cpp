#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "platform/windows/Handle.h"

namespace corvane {
namespace {

std::vector<int> closed;

struct NumberTraits {
    using Type = int;
    static int Invalid() { return -1; }
    static void Close(int number) { closed.push_back(number); }
};
using Number = UniqueHandle<NumberTraits>;
using Numbers = std::vector<int>;

class UniqueHandleTest : public testing::Test {
 protected:
    UniqueHandleTest() { closed.clear(); }
};

TEST_F(UniqueHandleTest, IsClosedOnceAtTheEndOfItsScope) {
    {
        const Number handle(3);
        EXPECT_TRUE(handle.IsOpen());
        EXPECT_EQ(handle.Get(), 3);
    }
    EXPECT_EQ(closed, Numbers{3});
}

TEST_F(UniqueHandleTest, WhatIsNotOpenIsNotClosed) {
    {
        const Number none;
        EXPECT_FALSE(none.IsOpen());
        const Number invalid(-1);
        EXPECT_FALSE(invalid.IsOpen());
    }
    EXPECT_EQ(closed, Numbers());
}

TEST_F(UniqueHandleTest, MovingHandsItOn) {
    {
        Number first(3);
        const Number second(std::move(first));
        EXPECT_EQ(second.Get(), 3);
        EXPECT_EQ(closed, Numbers());
    }
    EXPECT_EQ(closed, Numbers{3});
}

TEST_F(UniqueHandleTest, AssigningClosesWhatWasThere) {
    {
        Number first(3);
        Number second(4);
        second = std::move(first);
        EXPECT_EQ(closed, Numbers{4});
        EXPECT_EQ(second.Get(), 3);
        Number& same = second;
        second = std::move(same);
        EXPECT_EQ(second.Get(), 3);
    }
    EXPECT_EQ(closed, (Numbers{4, 3}));
}

TEST_F(UniqueHandleTest, ReleasingGivesItUpAndResettingClosesIt) {
    {
        Number handle(3);
        EXPECT_EQ(handle.Release(), 3);
        EXPECT_FALSE(handle.IsOpen());
        handle.Reset(4);
        handle.Reset(5);
        EXPECT_EQ(closed, Numbers{4});
        handle.Reset();
        EXPECT_FALSE(handle.IsOpen());
    }
    EXPECT_EQ(closed, (Numbers{4, 5}));
}

TEST_F(UniqueHandleTest, FilesAreClosed) {
    const HANDLE file = CreateFileW(L"NUL", GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(file, INVALID_HANDLE_VALUE);
    { const FileHandle owner(file); }
    EXPECT_EQ(CloseHandle(file), 0);
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_INVALID_HANDLE));
}

}  // namespace
}  // namespace corvane
