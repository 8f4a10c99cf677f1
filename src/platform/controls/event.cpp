#include "platform/controls/event.h"

namespace quillary::controls {

namespace {
EventTrace& Trace() {
    static EventTrace trace;
    return trace;
}
} // namespace

void SetEventTrace(EventTrace trace) {
    Trace() = std::move(trace);
}

void TraceEvent(const EventSource& source, std::string_view event) {
    if (Trace())
        Trace()(source.EventName(event));
}

} // namespace quillary::controls
