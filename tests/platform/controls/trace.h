#pragma once

#include "platform/controls/event.h"

#include <string>
#include <utility>

namespace quillary::controls::testing {

// Gathers the names of the event routines that run, without the form's name, each followed by a blank.
class Trace {
public:
    Trace() {
        SetEventTrace(
            [this](const std::string& routine) { text_ += routine.substr(routine.find('.') + 1) + " "; });
    }
    ~Trace() { SetEventTrace({}); }
    Trace(const Trace&) = delete;
    Trace& operator=(const Trace&) = delete;

    // What has run since the last call.
    std::string Take() { return std::exchange(text_, {}); }

private:
    std::string text_;
};

} // namespace quillary::controls::testing
