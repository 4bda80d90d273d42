#include <string>
#include <system_error>

#include <gtest/gtest.h>

#include "base/RunTimeError.h"

namespace corvane {
namespace {

TEST(UnreadableFile, SaysWhatTheSystemSaidAndWhatToDo) {
    const std::error_code reason = std::make_error_code(std::errc::permission_denied);
    EXPECT_EQ(std::string(UnreadableFile("The list a.log", reason, "Give it back.").what()),
              "The list a.log cannot be read: " + reason.message() + ". Give it back.");
}

TEST(UnreadableFile, HasTheNumberOfItsReason) {
    const struct {
        std::errc reason;
        int number;
    } cases[] = {
        {std::errc::no_such_file_or_directory, RunTimeError::kFileNotFound},
        {std::errc::not_a_directory, RunTimeError::kFileNotFound},
        {std::errc::permission_denied, RunTimeError::kPermissionDenied},
        {std::errc::operation_not_permitted, RunTimeError::kPermissionDenied},
        {std::errc::io_error, RunTimeError::kDeviceIoError},
        {std::errc::not_enough_memory, RunTimeError::kOutOfMemory},
        {std::errc::is_a_directory, RunTimeError::kPathFileAccess},
        {std::errc::too_many_symbolic_link_levels, RunTimeError::kPathFileAccess},
    };
    for (const auto& [reason, number] : cases) {
        EXPECT_EQ(UnreadableFile("", std::make_error_code(reason), "").Number(), number)
            << std::make_error_code(reason).message();
    }
}

}  // namespace
}  // namespace corvane
