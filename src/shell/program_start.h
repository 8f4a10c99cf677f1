#pragma once

#include <string>

namespace quillary::shell {

// The process's entry: decides whether the program can run at all, and shows the screen. commandTail: what
// stands behind the program's name. Returns once the screen is shown, or after the message that says what
// is missing (then no form exists). A missing, locked or damaged main database, and any other error, is
// raised on as it came and is to end the process; nothing has been written by then.
void SubMain(const std::string& commandTail);

// Lets go of the screen and of everything of this run, whether it was closed or not. After it SubMain may be
// called again.
void EndProgram();

} // namespace quillary::shell
