#pragma once

#include "common/page.h"

namespace quillary::farm {

// What a refused page raises while the screen closes; its source is "ResetVars".
inline constexpr int kErrPageRefused = -2147221405;

// What a page raises that cannot write what is pending on it, as a data control does that cannot store what a
// bound control holds: the page is not left.
inline constexpr int kErrBoundValue = 524;

// The one routine that closes a page of the screen: it brings the bound data up to date, runs the save of
// the page at frameIndex of gFrames, and tells what was refused or failed. True: the page may be left. While
// the screen is closing a refused page raises kErrPageRefused with its message; else the message is shown.
bool SaveFrame(common::Screen& screen, int frameIndex, bool closing);

} // namespace quillary::farm
