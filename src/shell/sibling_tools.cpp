#include "shell/sibling_tools.h"

#include "common/error_report.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "config/suite_files.h"
#include "platform/system/paths.h"

namespace quillary::shell {

namespace {

// On this system a program may stand without the ending of its name.
bool ProgramExists(const std::string& path) {
    return system::FileExists(path) || system::FileExists(path.substr(0, path.rfind('.')));
}

} // namespace

system::Window FindProcessWindow(system::ProcessId process) {
    return process == 0 ? 0 : system::TheServices().processes->FindWindow(process);
}

void ActivateWindow(system::Window window) {
    system::TheServices().processes->Activate(window);
}

void CloseWindow(system::Window window) {
    if (window != 0)
        system::TheServices().processes->CloseWindow(window);
}

void StockTagTool::cmd_AddBulk_Click(controls::Form& screen) {
    common::Trap("frm_setup.cmd_AddBulk_Click", [&] {
        // Meant: an error leaves the hourglass behind.
        screen.MousePointer = controls::kPointerHourglass;
        config::gLaunchTarget = "Internet";
        const std::string path = system::Join(config::GetProgramDirectory(), config::files::kStockTool);
        if (!ProgramExists(path)) {
            // Nothing is said.
        } else if (window_ != 0 && FindProcessWindow(process_) == window_) {
            ActivateWindow(window_);
        } else {
            process_ =
                system::TheServices().processes->Launch(path, config::gShellLaunch ? " /true" : " /false");
            window_ = FindProcessWindow(process_);
        }
        screen.MousePointer = controls::kPointerDefault;
    });
}

void StockTagTool::Close() {
    CloseWindow(window_);
    process_ = 0;
    window_ = 0;
}

} // namespace quillary::shell
