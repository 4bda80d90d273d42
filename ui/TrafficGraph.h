#pragma once

#include <wx/panel.h>

#include "ui/logic/Traffic.h"

/// The picture of both rates over the last two minutes: received as a filled area, sent as a dashed line, the
/// newest at the right.
namespace corvane {

class TrafficGraph : public wxPanel {
 public:
    explicit TrafficGraph(wxWindow* parent);

    void Add(const TrafficRates& rates);
    void Clear();

    /// There is nothing to do in it with keys.
    [[nodiscard]] bool AcceptsFocus() const override { return false; }
    [[nodiscard]] bool AcceptsFocusFromKeyboard() const override { return false; }

 private:
    void OnPaint();

    TrafficHistory history_;
};

}  // namespace corvane
