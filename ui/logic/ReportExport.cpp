#include "ui/logic/ReportExport.h"

#include <system_error>

#include "base/Text.h"
#include "platform/CodePage.h"
#include "platform/Files.h"
#include "platform/Seat.h"
#include "ui/logic/TextReport.h"

namespace corvane {

bool ExportTextReport(const std::string& path) {
    if (path.empty()) return false;
    const std::error_code failure = ReplaceFileContents(path, ToCodePage(TextReport()));
    if (!failure) return true;
    CurrentSeat().ShowBox(kApplicationTitle,
                          "Error! The text report could not be written to '" + path + "'." + kCrLf + kCrLf +
                              "Description: " + failure.message() + kCrLf + kCrLf +
                              "Choose another file, or remove what stands in the way, and export the report "
                              "again. A file that was there before is as it was.",
                          BoxIcon::kCritical, BoxButtons::kOk);
    return false;
}

}  // namespace corvane
