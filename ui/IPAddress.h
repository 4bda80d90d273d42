#pragma once

#include <array>
#include <memory>

#include <wx/panel.h>

#include "ui/logic/IPAddressEntry.h"

class wxTextCtrl;

namespace corvane {

/// The entry control for one IPv4 address: four boxes with dots between them, drawn as one field. Registered
/// with the toolkit under kProgrammaticId, so that wxCreateDynamicObject makes one; Create gives it its
/// window.
class IPAddress : public wxPanel, private QuadBoxesView {
 public:
    static constexpr char kProgrammaticId[] = "NICX.IPAddress";

    IPAddress() = default;
    ~IPAddress() override;

    /// Makes one by its programmatic id. `name` is the accessible name: each box has it, and its number.
    /// Whoever hears its events must outlive it.
    static IPAddress* Make(wxWindow* parent, const wxString& name,
                           IPAddressEvents& events = IPAddressEvents::Unheard());
    bool Create(wxWindow* parent, const wxString& name, IPAddressEvents& events);

    /// The value and its rules.
    [[nodiscard]] IPAddressEntry& Entry() { return entry_; }

    /// The control as a whole takes the focus in its first box.
    void SetFocus() override;

    [[nodiscard]] wxClassInfo* GetClassInfo() const override { return &ms_classInfo; }
    static wxClassInfo ms_classInfo;

 private:
    // QuadBoxesView
    [[nodiscard]] std::string BoxText(int box) const override;
    void SetBoxText(int box, const std::string& text) override;
    [[nodiscard]] TextSelection Selection(int box) const override;
    void Select(int box, TextSelection selection) override;
    void Focus(int box) override;
    void Beep() override;

    [[nodiscard]] wxTextCtrl& Box(int box) const { return *boxes_.at(static_cast<std::size_t>(box)); }
    void LayBoxes();
    void BindBox(int box);
    /// Whether the key was one for the rules, and taken.
    bool TakesKey(int box, const wxKeyEvent& event);
    /// Whether the character was one for the rules, and taken.
    bool TakesCharacter(int box, int character);
    void OnPaint();

    std::array<wxTextCtrl*, kQuadBoxes> boxes_{};
    /// The character that the rules were asked for when its key went down, and let through; 0: none.
    int letThrough_ = 0;
    /// The box that Focus has told of its focus already; -1: none.
    int toldFocus_ = -1;
    wxSize size_;  ///< Size of the frame around the boxes.
    IPAddressEvents* events_ = &IPAddressEvents::Unheard();
    IPAddressEntry entry_{*this};
};

}  // namespace corvane
