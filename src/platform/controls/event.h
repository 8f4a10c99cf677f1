#pragma once

#include <concepts>
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>
#include <utility>

namespace quillary::controls {

// Whoever raises events: it knows under which name an event routine stands.
class EventSource {
public:
    // "frm_setup.txt_FinYear_Validate"; an element of an array: "frm_setup.txt_FarmName_KeyPress(4)".
    virtual std::string EventName(std::string_view event) const = 0;

protected:
    ~EventSource() = default;
};

// Told of each event routine before it runs. Events without a routine are not told. An empty function
// switches the trace off.
using EventTrace = std::function<void(const std::string& routine)>;
void SetEventTrace(EventTrace trace);
void TraceEvent(const EventSource& source, std::string_view event);

// An event of a control or form. Page code assigns its routine; the control raises it. One routine an
// event: assigning again replaces it. A routine takes no more arguments than the event gives; those that
// are references it may change.
template <class... Args>
class Event {
public:
    using Routine = std::function<void(Args...)>;

    // name: a literal, as in control_Name.
    Event(const EventSource& source, std::string_view name) : source_(source), name_(name) {}
    Event(const Event&) = delete;
    Event& operator=(const Event&) = delete;

    template <class F>
    requires std::constructible_from<Routine, F> Event& operator=(F&& routine) {
        routine_ = Routine(std::forward<F>(routine));
        return *this;
    }
    Event& operator=(std::nullptr_t) {
        routine_ = nullptr;
        return *this;
    }

    explicit operator bool() const noexcept { return static_cast<bool>(routine_); }
    std::string_view Name() const noexcept { return name_; }

    // Runs the routine, where there is one. What it throws passes through.
    void Raise(Args... args) const {
        if (!routine_)
            return;
        TraceEvent(source_, name_);
        // A copy: the routine may assign another one to this event.
        const Routine running = routine_;
        running(std::forward<Args>(args)...);
    }
    // The same without the trace, for events that come with each drawn cell.
    void RaiseUntraced(Args... args) const {
        if (routine_)
            routine_(std::forward<Args>(args)...);
    }

private:
    const EventSource& source_;
    std::string_view name_;
    Routine routine_;
};

} // namespace quillary::controls
