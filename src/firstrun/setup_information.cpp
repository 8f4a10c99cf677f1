#include "firstrun/setup_information.h"

#include "common/error_report.h"
#include "common/farm_details.h"
#include "common/messages.h"
#include "common/tax_records.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "config/settings.h"
#include "config/tokens.h"
#include "firstrun/field_definitions.h"
#include "firstrun/paye_defaults.h"
#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"

#include <vector>

namespace quillary::firstrun {

namespace {

constexpr const char* kModule = "frm_units"; // as error reports name the form
constexpr int kImperial = 0, kMetric = 1;    // elements of opt_diary
constexpr int kPaymentBasis = 0, kInvoiceBasis = 1;
constexpr int kNameLimit = 50; // of the farm's name and the tax office's
constexpr int kNumberLimit = 15;

std::string Filled(const char* text, const std::string& token) {
    return config::TranslateTokens(text, std::vector<std::string>{token});
}

void SelectText(controls::TextBox& box) {
    box.SelStart = 0;
    box.SelLength = static_cast<int>(runtime::CharCount(runtime::Trim(box.Text.Get())));
}

// The name that is missing, in the words of the edition.
const char* MissingName() {
    switch (config::gModuleID) {
    case config::kBusinessEdition:
        return "|0| Business Name";
    case config::kClubEdition:
        return "|0| Club Name";
    default:
        return "|0| Farm Name";
    }
}

} // namespace

bool IsNewFarmFile() {
    bool isNew = false;
    common::IgnoreErrors([&] {
        const auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
        const auto farmDetails = db->OpenRecordset("Farm Details");
        if (farmDetails->EOF_())
            return;
        const auto isEmpty = [&](const char* field) {
            return runtime::TextOf((*farmDetails)[field].Value()).empty();
        };
        isNew = isEmpty("Farm Name") && isEmpty("GST Rate") && isEmpty("Diary Units");
    });
    return isNew;
}

FrmUnits::FrmUnits(common::Screen& screen)
    : controls::Form("frm_Units"), lbl_name(*this, "lbl_name"), txt_farmname(*this, "txt_farmname"),
      lbl_area(*this, "lbl_area"), txt_farmarea(*this, "txt_farmarea"), lbl_taxrate(*this, "lbl_taxrate"),
      txt_taxrate(*this, "txt_taxrate"), lbl_taxBasis(*this, "lbl_taxBasis"),
      cmb_taxbasis(*this, "cmb_taxbasis"), Label1(*this, "Label1"), txtTaxoffice(*this, "txtTaxoffice"),
      lbl_diary(*this, "lbl_diary"), opt_diary(*this, "opt_diary", {kImperial, kMetric}),
      lbl_optDiary(*this, "lbl_optDiary", {kImperial, kMetric}), cmd_Okay(*this, "cmd_Okay"),
      screen_(screen) {
    Layout = "setup_information";
    Caption = "Setup Information";
    lbl_name.Caption = "Farm name";
    lbl_area.Caption = "Area ";
    lbl_taxrate.Caption = "Rate";
    lbl_taxBasis.Caption = "Basis";
    Label1.Caption = "Tax Office Name";
    lbl_diary.Caption = "Units of measure";
    lbl_optDiary(kImperial).Caption = "Imperial (Acres, Pounds, Yards)";
    lbl_optDiary(kMetric).Caption = "Metric (Hectares, Kgs, Metres)";
    cmd_Okay.Caption = "&OK";
    lbl_taxrate.UseMnemonic = lbl_taxBasis.UseMnemonic = false; // the tax's name may hold an "&"
    txt_farmname.SetBuddy(&lbl_name);
    txt_farmarea.SetBuddy(&lbl_area);
    txt_taxrate.SetBuddy(&lbl_taxrate);
    cmb_taxbasis.SetBuddy(&lbl_taxBasis);
    txtTaxoffice.SetBuddy(&Label1);
    opt_diary.Each([this](controls::OptionButton& option, int i) { option.SetBuddy(&lbl_optDiary(i)); });
    lbl_taxrate.UseMnemonic = lbl_taxBasis.UseMnemonic = false; // the tax's name may hold an "&"
    lbl_area.Visible = txt_farmarea.Visible = false;
    txt_farmname.MaxLength = txtTaxoffice.MaxLength = kNameLimit;
    txt_farmarea.MaxLength = txt_taxrate.MaxLength = kNumberLimit;

    Load = [this] { Form_Load(); };
    Unload = [this](bool& cancel) { Form_Unload(cancel); };
    for (controls::TextBox* box : {&txt_farmname, &txt_taxrate, &txtTaxoffice})
        box->GotFocus = [box] { SelectText(*box); };
    txt_farmarea.GotFocus = [this] {
        txt_farmarea.SelLength = static_cast<int>(runtime::CharCount(txt_farmarea.Text.Get()));
    };
    opt_diary.On(&controls::OptionButton::Click, [this](int) { opt_diary_Click(); });
    // The text beside an option belongs to it.
    lbl_optDiary.On(&controls::Label::Click, [this](int i) { opt_diary(i).Press(); });
    cmd_Okay.Click = [this] { UnloadForm(); };
}

void FrmUnits::Form_Load() {
    bool found = false;
    MousePointer = controls::kPointerHourglass;
    common::Trap("frm_Units.Form_Load", [&] {
        database_ = config::DbEngine().OpenDatabase(config::GetDataFileName());
        const auto farmDetails = database_->OpenRecordset("Farm Details");
        lbl_taxrate.Caption = Filled("|0| rate", config::GetTaxName());
        lbl_taxBasis.Caption = Filled("|0| basis", config::GetTaxName());
        if (!farmDetails->EOF_()) {
            ShowDetails(*farmDetails);
            found = true;
        }
        farmDetails->Close();
        screen_.Decorate(*this);
    });
    MousePointer = controls::kPointerDefault;
    if (!found)
        GiveUp();
}

// Without the farm's row there is nothing to ask for: the form goes before it is seen, and stores nothing.
void FrmUnits::GiveUp() {
    database_.reset();
    UnloadForm();
}

void FrmUnits::ShowDetails(database::Recordset& farmDetails) {
    farmDetails.MoveFirst();
    if (config::HasMapAndArea()) {
        // Meant: all but "I" counts as metric here.
        metric_ = runtime::TextOf(farmDetails["Diary Units"].Value()) != "I";
        opt_diary(metric_ ? kMetric : kImperial).Value = true;
        lbl_area.Visible = txt_farmarea.Visible = true;
        txt_farmarea.Text = std::to_string(common::GetEffectiveArea(*database_));
        ShowAreaUnit(metric_ ? "hectares" : "acres");
    } else {
        lbl_name.Caption = config::gModuleID == config::kBusinessEdition ? "Business Name" : "Club Name";
        lbl_diary.Visible = false;
        opt_diary.Each([](controls::OptionButton& option, int) { option.Visible = false; });
        lbl_optDiary.Each([](controls::Label& label, int) { label.Visible = false; });
    }
    txt_farmname.Text = common::GetFarmName(*database_);
    txt_taxrate.Text = config::GetGSTRate();
    txtTaxoffice.Text = config::GetTaxofficename();
    cmb_taxbasis.Clear();
    cmb_taxbasis.AddItem(config::GetPaymentBasis());
    cmb_taxbasis.AddItem(config::GetInvoiceBasis());
    cmb_taxbasis.ListIndex = config::GetCashBasis() ? kPaymentBasis : kInvoiceBasis;
}

void FrmUnits::ShowAreaUnit(const char* unit) {
    lbl_area.Caption = Filled("Area (|0|)", unit);
}

void FrmUnits::opt_diary_Click() {
    common::Trap("frm_Units.opt_diary_Click", [&] {
        metric_ = !opt_diary(kImperial).Value;
        updatefielddefs(metric_ ? "Metric" : "Imperial");
        ShowAreaUnit(metric_ ? "hectare" : "acre"); // meant: in the singular here, in the plural at first
    });
}

void FrmUnits::Form_Unload(bool& cancel) {
    if (!database_)
        return;
    bool ok = false;
    const bool result = UpdateFarmDetails(ok);
    if (!ok && result) {
        cancel = true;
        common::IgnoreErrors([&] { txt_farmname.SetFocus(); }); // where the answer goes
        return;
    }
    config::SetUpInfoFailed = !UpdatePAYEInfo(*database_, txtTaxoffice.Text);
    common::IgnoreErrors([&] {
        database_->Flush();
        database_->Close();
    });
    database_.reset();
}

bool FrmUnits::UpdateFarmDetails(bool& ok) {
    bool result = false;
    std::unique_ptr<database::Recordset> farmDetails;
    common::Trap(
        "UpdateFarmDetails",
        [&] {
            std::string rate = config::GetGSTRate();
            farmDetails = database_->OpenRecordset("Farm Details");
            ok = !runtime::Trim(txt_farmname.Text.Get()).empty();
            if (runtime::IsNumeric(txt_taxrate.Text.Get()))
                rate = txt_taxrate.Text; // meant: what is no number gives way to the default in silence
            float area = 0;
            if (config::HasMapAndArea()) {
                const std::string& typed = txt_farmarea.Text;
                if (runtime::IsNumeric(typed) && runtime::CDbl(typed) > 0)
                    area = runtime::CSng(typed);
                if (area == 0)
                    area = 1;
            }
            if (ok) {
                StoreFarmDetails(*farmDetails, txt_farmname.Text, area, runtime::CSng(rate));
                result = true;
                return;
            }
            common::Message message(Filled(MissingName(), "Need"), "Please Confirm");
            message.buttons = common::kButtonsOkCancel;
            message.icon = common::kIconQuestion;
            result = common::ShowMessage(message) == common::kAnswerOk;
        },
        kModule);
    if (farmDetails)
        common::IgnoreErrors([&] { farmDetails->Close(); });
    return result;
}

void FrmUnits::StoreFarmDetails(database::Recordset& farmDetails, const std::string& name, float area,
                                float rate) {
    farmDetails.Edit();
    // Meant: the editions without units store "I".
    farmDetails["Diary Units"] = metric_ ? "M" : "I";
    farmDetails["Farm Name"] = name;
    farmDetails["Effective Area"] = area; // 0 in the editions without an area
    farmDetails["GST Rate"] = rate;
    farmDetails.Update();
    common::UpdatePartnerField(name, "PartnerName");
    // Meant: every rate but the zero rates takes the one rate.
    database_->Execute("UPDATE DISTINCTROW TaxRates SET TaxRates.[Rate %] = " + runtime::NumberText(rate) +
                           " WHERE (((TaxRates.[Rate %])>0));",
                       database::kFailOnError);
    config::WriteSuiteValue("TAX", "CashBasis", cmb_taxbasis.ListIndex == kPaymentBasis ? "Y" : "N");
}

} // namespace quillary::firstrun
