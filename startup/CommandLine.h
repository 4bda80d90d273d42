#pragma once

#include <string>

#include "presets/PresetRecord.h"

namespace corvane {

/// What a command line asks for.
struct CommandLine {
    enum class Outcome {
        kNone,              ///< No arguments: window mode.
        kHelp,              ///< One of the help forms.
        kInvalidParameter,  ///< `invalidName` is no option.
        kParsed,
    };
    Outcome outcome = Outcome::kNone;
    std::string invalidName;        ///< As typed.
    std::string connectionName;     ///< -n, case kept; empty when not given.
    PresetRecord record;            ///< -m -r -h -i -g -d.
    std::string presetName;         ///< -p, in lower case; empty when not given.
    bool silent = false;            ///< -s
    bool restart = false;           ///< -re
    bool disable = false;           ///< -di
    bool release = false;           ///< -rl
    bool renew = false;             ///< -rn
    bool shortVendorList = false;   ///< -sv
    bool resetOriginalMac = false;  ///< -ro

    /// The main window is wanted: no arguments, or one of the switches that overpower the others.
    [[nodiscard]] bool WantsWindow() const {
        return outcome == Outcome::kNone ||
               (outcome == Outcome::kParsed && (shortVendorList || resetOriginalMac));
    }
};

/// Parses the whole argument text. "/" stands for "-"; the text is cut at every "-", so neither a name nor a
/// value can hold one. A later option of the same kind replaces the earlier one's value; flag bits only add
/// up.
CommandLine ParseCommandLine(const std::string& text);

/// The usage text that the help forms show, lines joined by CR LF.
std::string CommandLineHelp();

}  // namespace corvane
