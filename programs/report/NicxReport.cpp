#include <exception>
#include <iostream>
#include <string>
#include <system_error>

#include <getopt.h>

#include "base/Refusal.h"
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

struct Arguments {
    enum class Wish { kReport, kHelp, kVersion };
    Wish wish = Wish::kReport;
    bool json = false;
    std::string file;  ///< Empty: standard output.
};

Refusal TakeFile(const std::string& name, Arguments& arguments) {
    if (!arguments.file.empty())
        return Refusal("more than one file given: '" + arguments.file + "' and '" + name + "'");
    if (name.empty()) return Refusal("the file name is empty");
    if (name != "-") arguments.file = name;
    return {};
}

/// Help and version are given at once, whatever comes behind them.
Refusal ReadArguments(int count, char** words, Arguments& arguments) {
    // Above every character, so that they are told from short options.
    enum : int { kFile = 1, kJson = 256, kHelp, kVersion };
    static constexpr option kOptions[] = {{"json", no_argument, nullptr, kJson},
                                          {"help", no_argument, nullptr, kHelp},
                                          {"version", no_argument, nullptr, kVersion},
                                          {}};
    opterr = 0;
    for (;;) {
        // "-": files come in their place among the options, so that this is the word that is read next.
        const char* const word = words[optind];
        const int found = getopt_long(count, words, "-", kOptions, nullptr);
        if (found == -1) break;
        switch (found) {
            case kFile:
                if (Refusal refusal = TakeFile(optarg, arguments)) return refusal;
                break;
            case kJson:
                arguments.json = true;
                break;
            case kHelp:
                arguments.wish = Arguments::Wish::kHelp;
                return {};
            case kVersion:
                arguments.wish = Arguments::Wish::kVersion;
                return {};
            default:
                return Refusal("unknown option '" + std::string(word) + "'");
        }
    }
    for (int i = optind; i < count; ++i) {
        if (Refusal refusal = TakeFile(words[i], arguments)) return refusal;
    }
    return {};
}

int Run(int count, char** words) {
    Arguments arguments;
    if (const Refusal refusal = ReadArguments(count, words, arguments)) return Usage(refusal.Words());
    if (arguments.wish == Arguments::Wish::kHelp) {
        std::cout << kUsage;
        return kExitDone;
    }
    if (arguments.wish == Arguments::Wish::kVersion) {
        std::cout << "nicx-report " << kProgramVersion << '\n';
        return kExitDone;
    }
    InstallPlatform(MakeSystemPlatform());
    ConsoleSeat console(std::cin, std::cout, std::cerr, false);
    CommandSeat seat(console, false);
    const ScopedSeat installed(seat);
    HostApi& host = *CurrentPlatform().host;
    Vendors() = LoadVendorList(host.ProgramFolder() + host.Separator());
    RefreshNicInfo();
    const std::string report = arguments.json           ? ReportJson()
                               : arguments.file.empty() ? TextReport()
                                                        : ToCodePage(TextReport());
    const int code = WriteReport(report, arguments.file);
    return code == kExitDone && seat.SawFailure() ? kExitActionFailed : code;
}

}  // namespace
}  // namespace corvane

int main(int count, char** words) {
    try {
        return corvane::Run(count, words);
    } catch (const corvane::RunTimeError& error) {
        std::cerr << "nicx-report: " << error.what() << '\n';
    } catch (const std::exception& error) {
        std::cerr << "nicx-report: " << error.what() << '\n';
    }
    return corvane::kExitRunTimeError;
}
