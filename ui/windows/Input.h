#pragma once

namespace corvane {

/// Whether an InputHold (ui/Desktop.h) lives: what comes from the user by other ways than keys and the mouse,
/// such as the tray icon's messages, is to be dropped too.
bool InputIsHeld();

}  // namespace corvane
