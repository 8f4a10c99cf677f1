#include "platform/qt/guard.h"

#include <QCoreApplication>

#include <utility>

namespace quillary::qt {

namespace {

struct Errors {
    ErrorHandler handler;
    std::optional<runtime::RunTimeError> kept;
};
Errors& State() {
    static Errors errors;
    return errors;
}

void Tell(const runtime::RunTimeError& error) {
    if (State().handler)
        State().handler(error);
    else if (!State().kept) {
        State().kept = error;
        QCoreApplication::exit(1); // ends the loops that are running now
    }
}

} // namespace

void Guarded(const std::function<void()>& gesture) {
    try {
        gesture();
    } catch (const runtime::RunTimeError& error) {
        Tell(error);
    } catch (const std::exception& error) {
        Tell({runtime::kErrInvalidProcedureCall, "View", error.what()});
    }
}

void SetErrorHandler(ErrorHandler handler) {
    State().handler = std::move(handler);
}

std::optional<runtime::RunTimeError> TakeError() {
    return std::exchange(State().kept, std::nullopt);
}

bool HasError() {
    return State().kept.has_value();
}

} // namespace quillary::qt
