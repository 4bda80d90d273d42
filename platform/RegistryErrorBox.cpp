#include "platform/RegistryErrorBox.h"

#include "platform/Registry.h"
#include "platform/Seat.h"

namespace corvane {

void ShowRegistryError(const std::string& title, const std::string& firstLine, const std::string& path,
                       Win32Error code) {
    CurrentSeat().ShowBox(title,
                          firstLine + kCrLf + kCrLf + "Registry Path: HKEY_LOCAL_MACHINE\\" + path + kCrLf +
                              kCrLf + "Error: " + RegErrorText(code) + kCrLf + kCrLf + "Click OK to continue",
                          BoxIcon::kCritical, BoxButtons::kOk);
}

}  // namespace corvane
