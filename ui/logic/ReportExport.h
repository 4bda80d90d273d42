#pragma once

#include <string>

/// The command that writes the text report to a file.
namespace corvane {

/// Title and filter of the save dialog.
inline constexpr char kExportTitle[] = "Export Text Report As ...";
inline constexpr char kExportFilter[] = "Text File (*.txt)|*.txt";

/// Writes the report of Nics as last read to `path` in the code page, replacing an existing file in one step.
/// An empty path (the dialog was cancelled) does nothing. A failure is shown in a box that names the file,
/// the reason and what to do; the file is then as it was. True when the file was written.
bool ExportTextReport(const std::string& path);

}  // namespace corvane
