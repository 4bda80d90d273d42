#pragma once

#include <string>

/// What the program needs to tell this desktop's libraries at its start.
namespace corvane {

/// The threads of the desktop's own libraries share one heap from now on, since they hardly need any: half a
/// mebibyte less. To be called before the toolkit is started.
void ShareHeap();

/// From now on a display that goes away ends the program with `words` on standard error and `exitCode`. To be
/// called when the toolkit has been started.
void EndWhenDisplayIsLost(const std::string& words, int exitCode);

/// Keeps the desktop library's complaints about layouts before the first size off standard error; all other
/// messages go there.
void DropLayoutMessages();

}  // namespace corvane
