#include "tax/gst_dates.h"

#include "common/error_report.h"
#include "config/settings.h"
#include "config/tokens.h"
#include "farm/year_entry.h"
#include "platform/runtime/conversions.h"

namespace quillary::tax {

namespace {

constexpr int kBlack = 0;

void AcceptDate(controls::TextBox& box, controls::DatePicker& picker) {
    farm::AcceptTextDate(box, picker,
                         config::TranslateTokens("|0| start date", std::vector{config::GetTaxName()}));
}

} // namespace

void AttachGSTDateRoutines(controls::TextBoxArray& txt_GSTDate,
                           controls::DatePickerArray& DatePicker_GSTDate) {
    // Meant: a text that is no date turns red and may be left; saving the page deals with it.
    txt_GSTDate.On(&controls::TextBox::Validate, [&](int index, bool&) {
        common::Trap("frm_setup.txt_GSTDate_Validate",
                     [&] { AcceptDate(txt_GSTDate(index), DatePicker_GSTDate(index)); });
    });
    txt_GSTDate.On(&controls::TextBox::LostFocus, [&](int index) {
        common::Trap("frm_setup.txt_GSTDate_LostFocus",
                     [&] { AcceptDate(txt_GSTDate(index), DatePicker_GSTDate(index)); });
    });
    DatePicker_GSTDate.On(&controls::DatePicker::DateChanged, [&](int index) {
        common::Trap("frm_setup.DatePicker_GSTDate_DateChanged",
                     [&] { farm::ShowPickedDate(DatePicker_GSTDate(index), txt_GSTDate(index)); });
    });
}

void ShowGSTDate(controls::TextBox& box, controls::DatePicker& picker, const runtime::Variant& date) {
    box.Text = farm::ShortDateText(date);
    if (!runtime::IsDate(runtime::Variant(box.Text.Get())))
        return;
    box.ForeColor = kBlack;
    picker.DateSelected = box.Text.Get();
}

} // namespace quillary::tax
