#pragma once

#include "platform/runtime/run_time_error.h"

#include <exception>
#include <functional>
#include <string>
#include <string_view>

// Where errors end: the common reporter, the common report box, and the trap that every event routine is
// run in.
namespace quillary::common {

// The common reporter: hands the error to the suite's error-reporting object (a window with the report, and
// a line in the report file) under the module's and the routine's name. routine:
// "frm_setup.cmd_AddBulk_Click". further: what else the routine tells.
void ReportError(const runtime::RunTimeError& error, std::string_view routine, std::string_view module = {},
                 std::string_view further = {});

// The common report box: the error's text and number and the place, in a message box of its own look. key:
// what the error was about, behind the number in the sub-heading.
void ShowErrorBox(const runtime::RunTimeError& error, std::string_view place, std::string_view key = {});

// Runs the body of an event routine; an error is reported under the routine's name, and the program goes on
// behind the routine. False when there was an error.
bool Trap(std::string_view routine, const std::function<void()>& body, std::string_view module = {});

// Runs a statement and passes over any error that it raises, as a routine does that ignores errors from
// here on: called once for each statement that may fail. False when there was an error.
template <class Statement>
bool IgnoreErrors(Statement&& statement) {
    try {
        statement();
        return true;
    } catch (const runtime::RunTimeError&) {
        return false;
    }
}

// Any exception as a run-time error: memory gone is 7, everything unforeseen 5.
runtime::RunTimeError AsRunTimeError(std::exception_ptr exception);

} // namespace quillary::common
