#include "ui/logic/OpenPages.h"

#include "platform/Platform.h"
#include "platform/Seat.h"
#include "ui/logic/Maker.h"

namespace corvane {

namespace {

void Open(const std::string& target, const std::string& remedy) {
    const Refusal refusal = CurrentPlatform().shell->OpenDocument(target);
    if (!refusal) return;
    CurrentSeat().ShowBox(kApplicationTitle,
                          "Error! Could not open '" + target + "'." + kCrLf + kCrLf +
                              "Description: " + refusal.Words() + kCrLf + kCrLf + remedy,
                          BoxIcon::kCritical, BoxButtons::kOk);
}

void OpenPage(const std::string& target) {
    Open(target, "Please open it by hand: start your web browser and enter '" + target + "'.");
}

}  // namespace

void OpenHelp(const std::string& programFolder) { OpenPage(programFolder + "help.html"); }

void OpenWebsite() { OpenPage(kMakerWebsite); }

void OpenUpdates() { OpenPage(kMakerUpdates); }

void OpenDonations() { OpenPage(kMakerDonations); }

void OpenMail() {
    const std::string address = kMakerMail;
    Open("mailto:" + address,
         "Please write by hand: start your mail program and send your mail to '" + address + "'.");
}

}  // namespace corvane
