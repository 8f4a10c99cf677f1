#pragma once

#include <string_view>

// Dialogs by their names, for whoever shows one that no button of the moment opens: a suite module that
// asks for it, a scenario.
namespace quillary::shell {

// Shows the dialog modally over the screen and returns when it has closed. False: no dialog has this name
// (case does not count).
bool OpenDialog(std::string_view name);

} // namespace quillary::shell
