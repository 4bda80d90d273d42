#pragma once

#include <string>

/// A second memory of the original addresses of virtual links, in the run-time folder: the driver of such a
/// link knows none, so a lost store would take the address that the program set for the link's own. A note
/// lives as long as its kernel object: it is named by the incarnation (boot, namespace and index).
namespace corvane {

/// Notes twelve digits as the original of a kernel object. Without the right to write there is no note.
void NoteOriginal(const std::string& incarnation, const std::string& digits);

/// The noted digits; empty when there is no note.
std::string NotedOriginal(const std::string& incarnation);

void ForgetOriginal(const std::string& incarnation);

}  // namespace corvane
