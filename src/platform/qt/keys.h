#pragma once

#include "platform/controls/gesture.h"

class QKeyEvent;

namespace quillary::qt {

// A key press of the toolkit as the controls know it. Code and character are 0 for a modifier alone and
// for keys that the controls have no name for.
controls::Key KeyOf(const QKeyEvent& event);

// The reverse, for keys that are sent to a widget: the toolkit's number of a virtual key code, 0 for none.
int QtKeyOf(int virtualKey);

} // namespace quillary::qt
