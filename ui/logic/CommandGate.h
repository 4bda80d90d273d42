#pragma once

/// One command at a time; a refresh for changes from outside is one, too: a box that either of them shows
/// lets timers run, and nothing may read the adapters anew under it.
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

    /// Runs `refresh` as a command of its own when something changed outside, no command runs and no entry
    /// panel is open; otherwise the change waits for the next call. True when something changed again while
    /// it ran: call it again, a little later.
    template <class Refresh>
    [[nodiscard]] bool RefreshForChange(bool panelOpen, const Refresh& refresh) {
        if (!changed_ || panelOpen) return false;
        const Scope scope(*this);
        if (!scope) return false;
        changed_ = false;
        refresh();
        return changed_;
    }

    /// The adapters were read anew: what was noted before is shown.
    void ForgetChange() { changed_ = false; }

 private:
    bool busy_ = false;
    bool changed_ = false;
};

}  // namespace corvane
