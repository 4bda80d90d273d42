#include "startup/Startup.h"

#include "base/RunTimeError.h"
#include "inventory/NicInfo.h"
#include "mac/SetConnectionState.h"
#include "platform/Registry.h"
#include "platform/RegistryKeys.h"
#include "platform/RegistryValues.h"
#include "platform/Seat.h"
#include "presets/PresetsFile.h"
#include "startup/Actions.h"
#include "startup/CommandLine.h"
#include "vendors/VendorList.h"

namespace corvane {

namespace {

std::string FolderWithSeparator(std::string folder, char separator) {
    if (folder.empty() || folder.back() != separator) folder += separator;
    return folder;
}

int ShowError(const Fault& fault) {
    CurrentSeat().ShowUnsilencedBox(
        "ERROR",
        std::string(
            "ERROR! This may be caused due to invalid command line parameters. Please check command line "
            "paramaters if passed.") +
            kCrLf + kCrLf + "Description: " + fault.description + " (" + std::to_string(fault.number) + ")" +
            kCrLf + kCrLf + "Click OK to Quit",
        BoxIcon::kCritical);
    return kExitRunTimeError;
}

int RefuseSystem(bool silent) {
    if (!silent) {
        CurrentSeat().ShowBox(
            "Current Windows Version Not Supported",
            std::string("We are sorry to inform you that Orvella Corvane (NICX) v4 cannot run on Windows 9X "
                        "versions.") +
                kCrLf + kCrLf + "The Windows version you are running is '" + OsDescription.description +
                "' is not supported." + kCrLf + kCrLf + "Click OK to quit.",
            BoxIcon::kCritical, BoxButtons::kOk);
    }
    return kExitRunTimeError;
}

int Sequence(const std::string& commandLine, const StartupHooks& hooks) {
    HostApi& host = *CurrentPlatform().host;
    Seat& seat = CurrentSeat();
    ProgramFolder = FolderWithSeparator(host.ProgramFolder(), host.Separator());

    const CommandLine line = ParseCommandLine(commandLine);
    if (line.outcome == CommandLine::Outcome::kHelp) {
        hooks.showHelp(CommandLineHelp());
        return kExitDone;
    }
    if (line.outcome == CommandLine::Outcome::kInvalidParameter) {
        seat.ShowUnsilencedBox("Invalid Parameter - Orvella Corvane v4",
                               "ERROR! Invalid paramater : " + line.invalidName, BoxIcon::kCritical);
        return kExitUsage;
    }
    ShortVendorList = line.shortVendorList;
    ResetOriginalMac = line.resetOriginalMac;

    OsDescription = Version(host.Os());
    seat.SplashSystem(" System: " + OsDescription.description);
    if (line.WantsWindow()) {
        seat.ShowSplash();
        seat.LetEventsRun();
    }
    if (OsDescription.unsupported) return RefuseSystem(line.silent);

    std::string folderName;
    if (Ok(RegQueryString(kHkeyLocalMachine, kProgramKey, kNetworkFolderValue, folderName))) {
        NetworkFolderName = folderName;
    }
    seat.SplashStatus("Loading Data ...");
    seat.LetEventsRun();
    if (!line.WantsWindow()) return RunActions(line);

    ReadPresets(ProgramFolder);
    Vendors() = LoadVendorList(ProgramFolder);
    hooks.loadMainWindow();
    seat.LetEventsRun();
    return kExitDone;
}

}  // namespace

int RunStartup(const std::string& commandLine, const StartupHooks& hooks) {
    try {
        return Sequence(commandLine, hooks);
    } catch (...) {
        return ShowError(CurrentFault());
    }
}

}  // namespace corvane
