#include "platform/qt/keys.h"

#include <QKeyEvent>

namespace quillary::qt {

namespace {

struct KeyPair {
    int qt;
    controls::Key key;
};
constexpr KeyPair kKeys[] = {
    {Qt::Key_Return, {controls::kKeyReturn, 0, 13}}, {Qt::Key_Enter, {controls::kKeyReturn, 0, 13}},
    {Qt::Key_Escape, {controls::kKeyEscape, 0, 27}}, {Qt::Key_Tab, {controls::kKeyTab, 0, 0}},
    {Qt::Key_Backtab, {controls::kKeyTab, 0, 0}},    {Qt::Key_Backspace, {controls::kKeyBack, 0, 8}},
    {Qt::Key_Up, {controls::kKeyUp, 0, 0}},          {Qt::Key_Down, {controls::kKeyDown, 0, 0}},
    {Qt::Key_Left, {controls::kKeyLeft, 0, 0}},      {Qt::Key_Right, {controls::kKeyRight, 0, 0}},
    {Qt::Key_Home, {controls::kKeyHome, 0, 0}},      {Qt::Key_End, {controls::kKeyEnd, 0, 0}},
    {Qt::Key_PageUp, {controls::kKeyPageUp, 0, 0}},  {Qt::Key_PageDown, {controls::kKeyPageDown, 0, 0}},
    {Qt::Key_Insert, {controls::kKeyInsert, 0, 0}},  {Qt::Key_Delete, {controls::kKeyDelete, 0, 0}},
    {Qt::Key_Space, {controls::kKeySpace, 0, 32}},
};
constexpr int kFunctionKeys = 12;
constexpr char32_t kFirstPrintable = 0x20, kDel = 0x7F;

int ShiftOf(Qt::KeyboardModifiers modifiers) {
    return (modifiers & Qt::ShiftModifier ? controls::kShiftMask : 0) |
           (modifiers & Qt::ControlModifier ? controls::kCtrlMask : 0) |
           (modifiers & Qt::AltModifier ? controls::kAltMask : 0);
}

bool IsLetterOrDigit(int key) {
    return (key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9);
}

} // namespace

controls::Key KeyOf(const QKeyEvent& event) {
    controls::Key key;
    const int shift =
        ShiftOf(event.modifiers()) | (event.key() == Qt::Key_Backtab ? controls::kShiftMask : 0);
    for (const KeyPair& pair : kKeys)
        if (pair.qt == event.key())
            key = pair.key;
    if (key.code == 0 && event.key() >= Qt::Key_F1 && event.key() < Qt::Key_F1 + kFunctionKeys)
        key.code = controls::kKeyF1 + event.key() - Qt::Key_F1;
    if (key.code == 0) {
        const auto typed = event.text().toUcs4();
        if (typed.size() == 1 && typed[0] >= kFirstPrintable && typed[0] != kDel &&
            !(shift & (controls::kCtrlMask | controls::kAltMask)))
            key = controls::KeyOfCharacter(typed[0]);
        else if (IsLetterOrDigit(event.key()))
            key.code = event.key();
    }
    key.shift = shift;
    if (shift & (controls::kCtrlMask | controls::kAltMask))
        key.character = 0;
    return key;
}

int QtKeyOf(int virtualKey) {
    for (const KeyPair& pair : kKeys)
        if (pair.key.code == virtualKey)
            return pair.qt;
    if (virtualKey >= controls::kKeyF1 && virtualKey < controls::kKeyF1 + kFunctionKeys)
        return Qt::Key_F1 + virtualKey - controls::kKeyF1;
    return IsLetterOrDigit(virtualKey) ? virtualKey : 0;
}

} // namespace quillary::qt
