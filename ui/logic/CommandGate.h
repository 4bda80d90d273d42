#pragma once

/// One command at a time, and refreshes for changes from outside only in between.
namespace corvane {

class CommandGate {
 public:
    /// Holds the gate while a command runs. Converts to false when another one is running: then nothing may
    /// be done.
    class Scope {
     public:
        explicit Scope(CommandGate& gate) : gate_(gate), entered_(!gate.busy_) { gate_.busy_ = true; }
        ~Scope() {
            if (entered_) gate_.busy_ = false;
        }
        Scope(const Scope&) = delete;
        Scope& operator=(const Scope&) = delete;
        explicit operator bool() const { return entered_; }

     private:
        CommandGate& gate_;
        bool entered_;
    };

    [[nodiscard]] bool Busy() const { return busy_; }

    /// Something changed outside the program.
    void NoteChange() { changed_ = true; }

    /// Whether to refresh now: something changed, no command runs and no entry panel is open. Answering true
    /// takes the change.
    [[nodiscard]] bool TakeChange(bool panelOpen) {
        if (!changed_ || busy_ || panelOpen) return false;
        changed_ = false;
        return true;
    }

    /// The adapters were read anew: what was noted before is shown.
    void ForgetChange() { changed_ = false; }

 private:
    bool busy_ = false;
    bool changed_ = false;
};

}  // namespace corvane
