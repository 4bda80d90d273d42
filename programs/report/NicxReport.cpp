#include <exception>
#include <iostream>
#include <string>
#include <system_error>
#include <vector>

#include "base/RunTimeError.h"
#include "base/Text.h"
#include "inventory/GetNicInfo.h"
#include "platform/CodePage.h"
#include "platform/Files.h"
#include "platform/Platform.h"
#include "programs/report/ReportJson.h"
#include "startup/CommandSeat.h"
#include "startup/ConsoleSeat.h"
#include "startup/Startup.h"
#include "startup/Version.h"
#include "ui/logic/TextReport.h"
#include "vendors/VendorList.h"

namespace corvane {
namespace {

constexpr char kUsage[] =
    "Usage: nicx-report [--json] [FILE]\n"
    "Reports every network connection as text, or as JSON with --json, to FILE or to standard output.\n"
    "  --json     the same data as one JSON object, UTF-8\n"
    "  --help     this text\n"
    "  --version  the program's version\n"
    "Text in FILE is in code page 1252, on standard output in UTF-8; its lines end in CR LF.\n"
    "Exit codes: 0 done, 1 something could not be read or written, 2 wrong arguments, 4 no vendor list.\n";

int Usage(const std::string& reason) {
    std::cerr << "nicx-report: " << reason << "\nTry 'nicx-report --help'.\n";
    return kExitUsage;
}

int WriteReport(const std::string& report, const std::string& file) {
    if (file.empty()) {
        std::cout << report << std::flush;
        if (std::cout) return kExitDone;
        std::cerr << "nicx-report: standard output could not be written\n";
        return kExitActionFailed;
    }
    const std::error_code error = ReplaceFileContents(file, report);
    if (!error) return kExitDone;
    std::cerr << "nicx-report: '" << file << "' could not be written: " << error.message()
              << ". Give another file; the old one is as it was.\n";
    return kExitActionFailed;
}

int Run(const std::vector<std::string>& arguments) {
    bool json = false;
    bool optionsEnded = false;
    std::string file;
    for (const std::string& argument : arguments) {
        if (!optionsEnded && argument == "--") {
            optionsEnded = true;
        } else if (!optionsEnded && argument == "--json") {
            json = true;
        } else if (!optionsEnded && argument == "--help") {
            std::cout << kUsage;
            return kExitDone;
        } else if (!optionsEnded && argument == "--version") {
            std::cout << "nicx-report " << kProgramVersion << '\n';
            return kExitDone;
        } else if (!optionsEnded && argument.size() > 1 && argument.front() == '-') {
            return Usage("unknown option '" + argument + "'");
        } else if (!file.empty()) {
            return Usage("more than one file given: '" + file + "' and '" + argument + "'");
        } else if (argument.empty()) {
            return Usage("the file name is empty");
        } else if (argument != "-") {
            file = argument;
        }
    }
    InstallPlatform(MakeSystemPlatform());
    ConsoleSeat console(std::cin, std::cout, std::cerr, false);
    CommandSeat seat(console, false);
    const ScopedSeat installed(seat);
    HostApi& host = *CurrentPlatform().host;
    Vendors() = LoadVendorList(host.ProgramFolder() + host.Separator());
    RefreshNicInfo();
    const std::string report = json ? ReportJson() : file.empty() ? TextReport() : ToCodePage(TextReport());
    const int code = WriteReport(report, file);
    return code == kExitDone && seat.SawFailure() ? kExitActionFailed : code;
}

}  // namespace
}  // namespace corvane

int main(int count, char** arguments) {
    try {
        return corvane::Run(std::vector<std::string>(arguments + 1, arguments + count));
    } catch (const corvane::RunTimeError& error) {
        std::cerr << "nicx-report: " << error.what() << '\n';
    } catch (const std::exception& error) {
        std::cerr << "nicx-report: " << error.what() << '\n';
    }
    return corvane::kExitRunTimeError;
}
