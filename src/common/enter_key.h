#pragma once

#include "platform/controls/control.h"

namespace quillary::common {

inline constexpr int kEnter = 13; // as KeyPress tells it

// Enter in a box leads on to the next control, and is swallowed: nothing beeps.
inline void MoveOnEnter(int& keyAscii, controls::Control& next) {
    if (keyAscii != kEnter)
        return;
    keyAscii = 0;
    next.SetFocus();
}

} // namespace quillary::common
