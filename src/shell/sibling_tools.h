#pragma once

#include "platform/controls/form.h"
#include "platform/system/services.h"

namespace quillary::shell {

// The stock tag tool, the one program of the suite that is started from here. It is held by its process: its
// handle stands for whatever window it has when it is used, also one that comes late or is made anew, so the
// caption in gLaunchTarget is compared with none of them. Where the desktop lets no program raise another's
// window, bringing it forward is passed over; where it lets none close it, the tool is asked to end.
class StockTagTool {
public:
    // Starts the tool, or brings it forward while it runs. A missing program is passed over in silence.
    // Errors are reported under "frm_setup.cmd_AddBulk_Click"; the screen then keeps its hourglass.
    void cmd_AddBulk_Click(controls::Form& screen);
    // Asks the tool to close, where it has been started and still runs.
    void Close();

private:
    system::ProcessId process_ = 0; // 0 until it is first started
    system::Window window_ = 0;
};

// The window of a process that was started here; 0 once it has ended.
system::Window FindProcessWindow(system::ProcessId process);
// To the front, restored if it lay below as a symbol.
void ActivateWindow(system::Window window);
// 0 is passed over.
void CloseWindow(system::Window window);

} // namespace quillary::shell
