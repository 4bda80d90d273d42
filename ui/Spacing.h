#pragma once

/// Distances between the controls of the forms, in device-independent pixels.
namespace corvane {

inline constexpr int kTightGap = 4;  ///< Between what belongs together in one row.
inline constexpr int kGap = 6;       ///< Between rows and columns of a panel.
inline constexpr int kWideGap = 10;  ///< Around the contents of a dialog.

}  // namespace corvane
