#pragma once

#include "platform/runtime/run_time_error.h"

#include <functional>
#include <optional>

// Errors must not pass through the toolkit's event loop. Whatever the view calls of the controls runs in a
// guard, which takes what is raised out of the loop.
namespace quillary::qt {

// Runs what the user did. What it raises goes to the handler.
void Guarded(const std::function<void()>& gesture);

// Who is told. Without one the first error is kept for TakeError, and the loops of modal forms end.
using ErrorHandler = std::function<void(const runtime::RunTimeError&)>;
void SetErrorHandler(ErrorHandler handler);

// The error that was kept; there is none afterwards.
std::optional<runtime::RunTimeError> TakeError();
bool HasError();

} // namespace quillary::qt
