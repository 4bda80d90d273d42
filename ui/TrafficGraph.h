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

 private:
    void OnPaint();

    TrafficHistory history_;
};

}  // namespace corvane
