#include "common/error_report.h"

#include "common/messages.h"
#include "config/profile_store.h"
#include "platform/runtime/conversions.h"
#include "platform/system/services.h"

#include <new>

namespace quillary::common {

namespace {

constexpr int kErrOutOfMemory = 7;
// A constant of the error-reporting object's interface.
constexpr int kReportKind = 3;

} // namespace

void ReportError(const runtime::RunTimeError& error, std::string_view routine, std::string_view module,
                 std::string_view further) {
    system::ErrorReportText report;
    report.description = error.Description();
    report.number = error.Number();
    report.module = module;
    report.routine = routine;
    report.where = std::string(module) + " " + std::string(routine);
    report.source = error.Source();
    report.appName = "QYSettings";
    report.kind = kReportKind;
    report.extra = further;
    system::TheServices().errorReports->Report(report);
}

void ShowErrorBox(const runtime::RunTimeError& error, std::string_view place, std::string_view key) {
    const std::string number = std::to_string(error.Number());
    Message message("Description - " + error.Description() + "(" + number + ") was generated in " +
                    std::string(place));
    message.caption = config::GetFirm() + " Error";
    message.heading = "An Error has Occurred";
    message.subHeading = "Error " + number + (key.empty() ? "" : " " + std::string(key));
    message.icon = kIconNotice;
    ShowMessage(message);
}

runtime::RunTimeError AsRunTimeError(std::exception_ptr exception) {
    try {
        std::rethrow_exception(exception);
    } catch (const runtime::RunTimeError& error) {
        return error;
    } catch (const std::bad_alloc&) {
        return runtime::RunTimeError(kErrOutOfMemory);
    } catch (const std::exception& error) {
        return {runtime::kErrInvalidProcedureCall, "QYSettings", error.what()};
    }
}

bool Trap(std::string_view routine, const std::function<void()>& body, std::string_view module) {
    try {
        body();
        return true;
    } catch (const std::exception&) {
        ReportError(AsRunTimeError(std::current_exception()), routine, module);
        return false;
    }
}

} // namespace quillary::common
