#pragma once

/// Exceptions that nothing nearer has caught.
namespace corvane {

class FaultReport {
 public:
    /// Tells the user in one critical box of the exception that is being handled; to be called in a catch
    /// block only. While the box is open further ones are dropped: a timer that fails each second would pile
    /// boxes up. A box that cannot be shown is given up.
    void Show() noexcept;

 private:
    bool open_ = false;
};

}  // namespace corvane
