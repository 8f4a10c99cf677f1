#pragma once

#include <string>
#include <string_view>
#include <utility>

namespace quillary::controls {

// What became of something that the user did.
//   Done: it took place.
//   Refused: the program's own rules kept it from happening (a Validate that was cancelled kept the focus,
//     a locked cell, a cancelled edit): what a user meets every day, no fault of who made the gesture.
//   Impossible: no user could have done it (the control is hidden or disabled, or takes no such gesture).
class Outcome {
public:
    static Outcome Done() { return {Kind::Done, {}}; }
    static Outcome Refused(std::string reason) { return {Kind::Refused, std::move(reason)}; }
    static Outcome Impossible(std::string reason) { return {Kind::Impossible, std::move(reason)}; }

    bool IsDone() const noexcept { return kind_ == Kind::Done; }
    bool IsRefused() const noexcept { return kind_ == Kind::Refused; }
    bool IsImpossible() const noexcept { return kind_ == Kind::Impossible; }
    explicit operator bool() const noexcept { return IsDone(); }
    const std::string& Reason() const noexcept { return reason_; }

private:
    enum class Kind { Done, Refused, Impossible };
    Outcome(Kind kind, std::string reason) : kind_(kind), reason_(std::move(reason)) {}
    Kind kind_;
    std::string reason_;
};

inline constexpr int kShiftMask = 1, kCtrlMask = 2, kAltMask = 4;

// Key codes as KeyDown gives them; letters and digits are their capital's character code.
inline constexpr int kKeyBack = 8, kKeyTab = 9, kKeyReturn = 13, kKeyEscape = 27, kKeySpace = 32,
                     kKeyPageUp = 33, kKeyPageDown = 34, kKeyEnd = 35, kKeyHome = 36, kKeyLeft = 37,
                     kKeyUp = 38, kKeyRight = 39, kKeyDown = 40, kKeyInsert = 45, kKeyDelete = 46,
                     kKeyF1 = 112; // F2 is 113, and so on to F12

// One key press.
struct Key {
    int code = 0;      // for KeyDown; 0 where the character has no key of its own
    int shift = 0;     // kShiftMask | kCtrlMask | kAltMask
    int character = 0; // for KeyPress, a Unicode code point; 0 for keys that give none
};

// Enter, Escape, Tab, Up, Down, Left, Right, Home, End, PageUp, PageDown, Insert, Delete, Backspace,
// Space, F1 to F12, or one character; before it any of Ctrl+, Alt+, Shift+. Case does not count but in
// the character itself. Raises 5 for anything else.
Key ParseKey(std::string_view name);
// The key that types a character (a line feed or carriage return is Enter).
Key KeyOfCharacter(char32_t character);

} // namespace quillary::controls
