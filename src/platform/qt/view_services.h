#pragma once

#include "platform/runtime/run_time_error.h"
#include "platform/system/services.h"

#include <functional>
#include <string>

class QDialog;
class QWidget;

namespace quillary::qt {

class QtFormHost;

// What the view gives to the services of the process: boxes, reports, keyboard, help and file dialogs.
// reportFile: the path of the file that error reports are appended to; asked at each report, may be empty.
// The host must live as long as the services.
void AddViewServices(system::Services& services, const QtFormHost& host,
                     std::function<std::string()> reportFile);

// The message of a run-time error that nobody took: the last thing that the user sees of the program.
// atStart: nothing can have been written yet, and it says so.
void ShowFatalError(const runtime::RunTimeError& error, bool atStart);

// Runs boxes as the user meets them. Tests put their own answers in its place.
using BoxRunner = std::function<void(QDialog&)>;
void SetBoxRunner(BoxRunner runner);

} // namespace quillary::qt
