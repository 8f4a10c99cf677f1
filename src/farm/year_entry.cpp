#include "farm/year_entry.h"

#include "common/error_report.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/format.h"

namespace quillary::farm {

namespace {

constexpr int kBlack = 0;
constexpr int kRed = 255;

} // namespace

bool CheckTextDate(std::string_view text, std::string_view /*caption*/) {
    bool isDate = false;
    common::Trap("frm_setup.CheckTextDate", [&] { isDate = runtime::IsDate(runtime::Variant(text)); });
    return isDate;
}

void AcceptTextDate(controls::TextBox& box, controls::DatePicker& picker, std::string_view caption) {
    if (!CheckTextDate(box.Text.Get(), caption)) {
        box.ForeColor = kRed;
        return;
    }
    box.ForeColor = kBlack;
    box.Text = ShortDateText(box.Text.Get());
    picker.Value = box.Text.Get();
}

void ShowPickedDate(const controls::DatePicker& picker, controls::TextBox& box) {
    box.ForeColor = kBlack; // red may have been left by a text that was no date
    box.Text = ShortDateText(picker.Value.Get());
}

std::string ShortDateText(const runtime::Variant& value) {
    return runtime::IsDate(value) ? runtime::ShortDate(runtime::CDate(value)) : runtime::TextOf(value);
}

} // namespace quillary::farm
