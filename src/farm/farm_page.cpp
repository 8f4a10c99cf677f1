#include "farm/farm_page.h"

#include "common/enter_key.h"
#include "common/error_report.h"
#include "common/farm_details.h"
#include "common/messages.h"
#include "common/pictures.h"
#include "common/tax_records.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "farm/invoice_logo.h"
#include "farm/year_entry.h"
#include "platform/runtime/conversions.h"
#include "platform/system/paths.h"
#include "platform/system/services.h"

#include <map>

namespace quillary::farm {

using runtime::Variant;

namespace {

// Where Enter leads within the name, address and contacts.
const std::map<int, int> kNextOnEnter = {{0, 4}, {4, 3}, {3, 2}, {2, 6}, {6, 1}, {1, 5}};

struct BoundText {
    int index;
    const char* field;
    int limit;
};
constexpr BoundText kBoundTexts[] = {
    {0, "Farm Name", 50}, {4, "Address1", 50}, {3, "Address2", 50}, {2, "Address3", 50},
    {1, "Phone", 25},     {5, "Fax", 25},      {6, "Email", 50},
};
constexpr int kAreaLimit = 50;
constexpr float kSmallestArea = 1;

} // namespace

FarmPage::FarmPage(common::Screen& screen, controls::Panel& panel)
    : Page(screen, panel, "farm_page"), lbl_name(screen.ScreenForm(), "lbl_name"),
      txt_FarmName(screen.ScreenForm(), "txt_FarmName", {0, 4, 3, 2, 6, 1, 5}),
      txt_FinYear(screen.ScreenForm(), "txt_FinYear"),
      DatePicker_FinYear(screen.ScreenForm(), "DatePicker_FinYear"),
      lbl_area(screen.ScreenForm(), "lbl_area"), txt_area(screen.ScreenForm(), "txt_area"),
      cboUnits(screen.ScreenForm(), "cboUnits"), lblInvoiceLogo(screen.ScreenForm(), "lblInvoiceLogo"),
      picInvoiceLogo(screen.ScreenForm(), "picInvoiceLogo"),
      cmd_Selectlogo(screen.ScreenForm(), "cmd_Selectlogo") {
    lbl_name.Caption = "Farm Name";
    lbl_area.Caption = "Effective Area";
    lblInvoiceLogo.Caption = "Invoice Logo";
    cmd_Selectlogo.Caption = "...";
    cmd_Selectlogo.ToolTip = "Choose the picture that is printed on invoices";
    cmd_Selectlogo.AccessibleName = "Choose the invoice logo";
    cboUnits.AccessibleName = "Unit of area";
    DatePicker_FinYear.AccessibleName = "Pick the start of the financial year";
    picInvoiceLogo.AccessibleName = "Invoice logo";
    txt_FarmName(0).SetBuddy(&lbl_name);
    txt_area.SetBuddy(&lbl_area);
    txt_area.MaxLength = kAreaLimit;
    for (const BoundText& bound : kBoundTexts) {
        txt_FarmName(bound.index).MaxLength = bound.limit;
        txt_FarmName(bound.index).Bind(screen.FarmDetails(), bound.field);
    }
    txt_area.Bind(screen.FarmDetails(), "Effective Area");

    txt_FarmName.On(&controls::TextBox::KeyPress,
                    [this](int index, int& keyAscii) { txt_FarmName_KeyPress(index, keyAscii); });
    txt_FinYear.KeyPress = [this](int& keyAscii) { txt_FinYear_KeyPress(keyAscii); };
    txt_FinYear.Validate = [this](bool&) { txt_FinYear_Validate(); };
    txt_FinYear.LostFocus = [this] { txt_FinYear_LostFocus(); };
    DatePicker_FinYear.DateChanged = [this] { DatePicker_FinYear_DateChanged(); };
    txt_area.GotFocus = [this] { txt_area_GotFocus(); };
    txt_area.Validate = [this](bool&) { txt_area_Validate(); };
    txt_area.KeyPress = [this](int& keyAscii) { txt_area_KeyPress(keyAscii); };
    cmd_Selectlogo.Click = [this] { cmd_Selectlogo_Click(); };
    ShowLogo();
}

void FarmPage::ShowFinancialYear(const Variant& date) {
    txt_FinYear.Text = runtime::CStr(date);
    DatePicker_FinYear.Value = ShortDateText(date);
}

void FarmPage::ShowUnit(std::string_view unit) {
    unit_ = unit;
    cboUnits.ListIndex = cboUnits.FindText(unit);
}

void FarmPage::FillUnits() {
    cboUnits.AddItem("acres");
    cboUnits.AddItem("hectares");
    ShowUnit(unit_);
}

common::SaveResult FarmPage::Save(common::SaveContext& context) {
    auto& farmDetails = context.dat_FarmDetails.Recordset();
    auto result = common::SaveResult::Saved;

    // A missing name refuses the page but does not stop the steps behind it. Null <> "" does not hold.
    const Variant name = farmDetails["Farm Name"].Value();
    if (!runtime::TextOf(name).empty()) {
        common::UpdatePartnerField(name, "PartnerName");
    } else {
        result = common::SaveResult::Refused;
        context.tokens = {config::HasMapAndArea() ? "Farm Name" : "Name"};
    }

    const Variant area = farmDetails["Effective Area"].Value();
    if (config::HasMapAndArea() && !area.IsNull() && runtime::CSng(area) < kSmallestArea) {
        // Meant: the correction is silent.
        farmDetails.Edit();
        farmDetails["Effective Area"] = kSmallestArea;
        farmDetails.Update();
        context.dat_FarmDetails.UpdateControls();
    }

    // Meant: an empty field stays empty, whatever the list shows; nothing shown counts as metric.
    if (!runtime::TextOf(farmDetails["Diary Units"].Value()).empty()) {
        farmDetails.Edit();
        farmDetails["Diary Units"] = cboUnits.Text == "acres" ? "I" : "M";
        farmDetails.Update();
    }

    if (runtime::IsDate(txt_FinYear.Text)) {
        farmDetails.Edit();
        farmDetails["Financial Year"] = runtime::CDate(txt_FinYear.Text);
        farmDetails.Update();
    } else if (!runtime::IsDate(farmDetails["Financial Year"].Value())) {
        const std::string defaultYear = common::GetFinancialYear(context.db);
        farmDetails.Edit();
        farmDetails["Financial Year"] = runtime::CDate(defaultYear);
        farmDetails.Update();
    }
    return result;
}

void FarmPage::FocusFirst(int /*frame*/) {
    if (txt_FarmName(0).Enabled)
        txt_FarmName(0).SetFocus();
}

void FarmPage::optDiaryChange() {
    common::Trap("optDiaryChange", [&] {
        auto* metric = dynamic_cast<controls::OptionButton*>(screen_.ScreenForm().Find("opt_diary", 0));
        // Meant: the screen has no such pair, so the call ends here.
        if (metric == nullptr)
            throw runtime::RunTimeError(runtime::kErrObjectNotSet);
        auto& farmDetails = screen_.FarmDetails().Recordset();
        farmDetails.Edit();
        farmDetails["Diary Units"] = metric->Value ? "M" : "I";
        farmDetails.Update();
    });
}

void FarmPage::txt_FarmName_KeyPress(int index, int& keyAscii) {
    common::Trap("frm_setup.txt_FarmName_KeyPress", [&] {
        const auto next = kNextOnEnter.find(index);
        common::MoveOnEnter(keyAscii, next != kNextOnEnter.end() ? txt_FarmName(next->second) : txt_FinYear);
    });
}

void FarmPage::txt_FinYear_KeyPress(int& keyAscii) {
    common::Trap("frm_setup.txt_FinYear_KeyPress", [&] {
        common::MoveOnEnter(keyAscii, config::HasMapAndArea() ? txt_area : txt_FarmName(0));
    });
}

void FarmPage::txt_FinYear_Validate() {
    common::Trap("frm_setup.txt_FinYear_Validate",
                 [&] { AcceptTextDate(txt_FinYear, DatePicker_FinYear, "Financial year start"); });
}

void FarmPage::txt_FinYear_LostFocus() {
    common::Trap("frm_setup.txt_FinYear_LostFocus",
                 [&] { AcceptTextDate(txt_FinYear, DatePicker_FinYear, "Financial year start"); });
}

void FarmPage::DatePicker_FinYear_DateChanged() {
    common::Trap("frm_setup.DatePicker_FinYear_DateChanged",
                 [&] { ShowPickedDate(DatePicker_FinYear, txt_FinYear); });
}

void FarmPage::txt_area_GotFocus() {
    keptArea_ = txt_area.Text;
}

void FarmPage::txt_area_Validate() {
    common::Trap("frm_setup.txt_area_Validate", [&] {
        if (!runtime::IsNumeric(txt_area.Text))
            txt_area.Text = keptArea_;
    });
}

void FarmPage::txt_area_KeyPress(int& keyAscii) {
    common::Trap("frm_setup.txt_area_KeyPress", [&] { common::MoveOnEnter(keyAscii, txt_FarmName(0)); });
}

void FarmPage::cmd_Selectlogo_Click() {
    common::Trap("frm_setup.cmd_Selectlogo_Click", [&] {
        const auto chosen = system::TheServices().fileDialogs->ChooseFile(
            "Invoice Logo", {{"Pictures", {"*.bmp", "*.png", "*.jpg", "*.jpeg", "*.gif"}}},
            config::GetDataRoot());
        if (!chosen)
            return;
        if (!common::IsPicture(*chosen)) {
            common::ShowMessage(common::Message(
                "\"" + *chosen + "\" is not a picture. Please choose a BMP, PNG, JPEG or GIF file.",
                "Invalid Selection"));
            return;
        }
        StoreInvoiceLogo(*chosen);
        ShowLogo();
    });
}

void FarmPage::ShowLogo() {
    const std::string logo = InvoiceLogoPath();
    picInvoiceLogo.Picture = "";
    if (system::FileExists(logo))
        picInvoiceLogo.Picture = logo;
}

} // namespace quillary::farm
