#include "farm/planner_page.h"

#include "common/enter_key.h"
#include "common/error_report.h"
#include "common/farm_details.h"
#include "common/messages.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "config/settings.h"
#include "config/tokens.h"
#include "farm/year_entry.h"
#include "platform/runtime/conversions.h"

#include <cmath>

namespace quillary::farm {

using runtime::Variant;

namespace {

constexpr int kSeasonBase = 1900;      // seasons are stored as the year less 1900
constexpr int kLastRefusedSeason = 89; // a stored season up to it counts as none
constexpr const char* kDefaultTaxHeading = "4670";

// The leading number of a text as a whole number: "2005a" counts as 2005, "" as 0.
std::int32_t WholeNumber(const std::string& text) {
    return runtime::CLng(runtime::Val(text));
}

std::int16_t SeasonYear(const Variant& layerSeason) {
    return runtime::CInt(runtime::Val(runtime::TextOf(layerSeason)) + kSeasonBase);
}

} // namespace

PlannerPage::PlannerPage(common::Screen& screen, controls::Panel& panel)
    : Page(screen, panel, "planner_page"), lbl_bgtseason(screen.ScreenForm(), "lbl_bgtseason"),
      txt_season(screen.ScreenForm(), "txt_season"), css_bgtseason(screen.ScreenForm(), "css_bgtseason"),
      lbl_bgtstart(screen.ScreenForm(), "lbl_bgtstart"),
      txt_BudgetYear(screen.ScreenForm(), "txt_BudgetYear"),
      DatePicker_BudgetYear(screen.ScreenForm(), "DatePicker_BudgetYear"),
      txt_odinterestrate(screen.ScreenForm(), "txt_odinterestrate"),
      txt_ODLimit(screen.ScreenForm(), "txt_ODLimit"), lbl_OpBalance(screen.ScreenForm(), "lbl_OpBalance"),
      txt_OpBalance(screen.ScreenForm(), "txt_OpBalance"),
      vse_PlannerGST(screen.ScreenForm(), "vse_PlannerGST"),
      lbl_plannerGSt(screen.ScreenForm(), "lbl_plannerGSt"),
      chk_PlannerGST(screen.ScreenForm(), "chk_PlannerGST"),
      lbl_GSTHeading(screen.ScreenForm(), "lbl_GSTHeading"),
      txt_GSTAccount(screen.ScreenForm(), "txt_GSTAccount"),
      lbl_AccountName(screen.ScreenForm(), "lbl_AccountName"),
      cmd_ChangeGSTAcct(screen.ScreenForm(), "cmd_ChangeGSTAcct") {
    for (controls::Control* inTaxPanel :
         std::initializer_list<controls::Control*>{&lbl_plannerGSt, &chk_PlannerGST, &lbl_GSTHeading,
                                                   &txt_GSTAccount, &lbl_AccountName, &cmd_ChangeGSTAcct})
        inTaxPanel->PlaceIn(vse_PlannerGST);

    lbl_bgtseason.Caption = "Budget Season";
    lbl_bgtstart.Caption = "Budget Year Start";
    lbl_OpBalance.Caption = "Opening Balance";
    cmd_ChangeGSTAcct.Caption = "&Change";
    // The tax's name is the user's, and may hold an "&".
    lbl_plannerGSt.UseMnemonic = chk_PlannerGST.UseMnemonic = lbl_GSTHeading.UseMnemonic = false;
    txt_season.SetBuddy(&lbl_bgtseason);
    txt_BudgetYear.SetBuddy(&lbl_bgtstart);
    txt_OpBalance.SetBuddy(&lbl_OpBalance);
    txt_GSTAccount.SetBuddy(&lbl_GSTHeading);
    txt_odinterestrate.AccessibleName = "Percent Interest on overdraft";
    txt_ODLimit.AccessibleName = "Overdraft limit";
    css_bgtseason.AccessibleName = "Budget season up or down";
    DatePicker_BudgetYear.AccessibleName = "Pick the start of the budget year";
    txt_GSTAccount.Locked = true;
    css_bgtseason.BuddyControl = &txt_season;
    css_bgtseason.SyncBuddy = true;
    chk_PlannerGST.Bind(screen.FarmDetails(), "Budget GST");
    txt_GSTAccount.Bind(screen.FarmDetails(), "Bgt GST Account");

    txt_season.GotFocus = [this] { keptSeason_ = txt_season.Text; };
    txt_season.Validate = [this](bool&) { txt_season_Validate(); };
    txt_season.KeyPress = [this](int& keyAscii) {
        MoveOnEnter("frm_setup.txt_season_KeyPress", keyAscii, txt_BudgetYear);
    };
    css_bgtseason.Change = [this] { css_bgtseason_Change(); };
    txt_BudgetYear.Validate = [this](bool&) { AcceptBudgetYear("frm_setup.txt_BudgetYear_Validate"); };
    txt_BudgetYear.LostFocus = [this] { AcceptBudgetYear("frm_setup.txt_BudgetYear_LostFocus"); };
    txt_BudgetYear.KeyPress = [this](int& keyAscii) {
        MoveOnEnter("frm_setup.txt_BudgetYear_KeyPress", keyAscii, txt_odinterestrate);
    };
    DatePicker_BudgetYear.DateChanged = [this] {
        common::Trap("frm_setup.DatePicker_BudgetYear_DateChanged",
                     [&] { ShowPickedDate(DatePicker_BudgetYear, txt_BudgetYear); });
    };
    txt_odinterestrate.Validate = [this](bool& cancel) { txt_odinterestrate_Validate(cancel); };
    txt_odinterestrate.KeyPress = [this](int& keyAscii) {
        MoveOnEnter("frm_setup.txt_odinterestrate_KeyPress", keyAscii, txt_ODLimit);
    };
    txt_ODLimit.Validate = [this](bool&) { txt_ODLimit_Validate(); };
    txt_ODLimit.KeyPress = [this](int& keyAscii) {
        if (keyAscii == common::kEnter)
            txt_ODLimit_Validate();
        MoveOnEnter("frm_setup.txt_ODLimit_KeyPress", keyAscii, txt_OpBalance);
    };
    txt_OpBalance.Validate = [this](bool&) { txt_OpBalance_Validate(); };
    txt_OpBalance.KeyPress = [this](int& keyAscii) {
        if (keyAscii != common::kEnter)
            return;
        txt_OpBalance_Validate();
        if (config::GetValueAddedTax()) // meant: without the tax the key is not even swallowed
            MoveOnEnter("frm_setup.txt_OpBalance_KeyPress", keyAscii, chk_PlannerGST);
    };
    chk_PlannerGST.Click = [this] { chk_PlannerGST_Click(); };
    chk_PlannerGST.KeyPress = [this](int& keyAscii) {
        MoveOnEnter("frm_setup.chk_PlannerGST_KeyPress", keyAscii, cmd_ChangeGSTAcct);
    };
}

void PlannerPage::SetSeasonRange(std::int16_t& seasonMax, std::int16_t& seasonMin) {
    auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
    const auto stored = runtime::CInt(common::GetCurrentSeason(*db) + kSeasonBase);
    seasonMin = seasonMax = stored;
    auto layers = db->OpenRecordset("SELECT DISTINCTROW [Map Layers].Season "
                                    "FROM [Map Layers] "
                                    "WHERE ([Map Layers].Use='C') "
                                    "ORDER BY [Map Layers].Season;",
                                    database::RecordsetType::Dynaset);
    if (!layers->EOF_()) {
        // Meant: the first and the last row alone, though the season sorts as text.
        const auto widen = [&] {
            const std::int16_t year = SeasonYear((*layers)["Season"].Value());
            if (year < seasonMin)
                seasonMin = year;
            else if (year > seasonMax)
                seasonMax = year;
        };
        layers->MoveFirst();
        widen();
        layers->MoveLast();
        widen();
    }
    layers->Close();
    db->Close();
    css_bgtseason.Max = seasonMax;
    css_bgtseason.Min = seasonMin;
    css_bgtseason.Value = stored;
}

void PlannerPage::saveseason() {
    common::Trap("frm_setup.saveseason", [&] {
        auto& farmDetails = screen_.FarmDetails().Recordset();
        farmDetails.Edit();
        farmDetails["Current Season"] = runtime::CInt(WholeNumber(txt_season.Text) - kSeasonBase);
        farmDetails.Update();
    });
}

void PlannerPage::ShowTaxPanel(bool valueAddedTax) {
    if (valueAddedTax) {
        const std::vector<std::string> tokens = {config::GetTaxName()};
        lbl_plannerGSt.Caption = config::TranslateTokens("Budget |0|", tokens);
        chk_PlannerGST.Caption = config::TranslateTokens("Calculate |0| in Budget", tokens);
        lbl_GSTHeading.Caption = config::TranslateTokens("|0| Heading", tokens);
    }
    vse_PlannerGST.Visible = valueAddedTax;
}

void PlannerPage::ShowBudgetGstHeading() {
    common::Trap("ShowBudgetGstHeading", [&] {
        const std::int16_t code = runtime::CInt(runtime::Val(txt_GSTAccount.Text.Get()));
        // Meant: the default is written, and its name is looked up only at the next call.
        if (code == 0)
            txt_GSTAccount.Text = kDefaultTaxHeading;
        if (code <= 0)
            return;
        auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
        auto heading = db->OpenRecordset("SELECT DISTINCTROW [Account Codes].[Account Name] "
                                         "From [Account Codes] "
                                         "WHERE [Account Codes].[Account Code] = " +
                                         std::to_string(code) + ";");
        if (!heading->EOF_())
            lbl_AccountName.Caption = common::EscapeAmpersands((*heading)["Account Name"].Value());
        heading->Close();
        db->Close();
    });
}

void PlannerPage::Refresh(bool valueAddedTax) {
    if (valueAddedTax && chk_PlannerGST.Value == controls::kChecked)
        ShowBudgetGstHeading();
    // Unsaved typing in the two boxes is replaced by what is stored.
    const Variant limit = screen_.FarmDetails().FieldOrNull("ODLIMIT");
    txt_ODLimit.Text = runtime::IsNumeric(limit) ? runtime::CStr(limit) : "0";
    const Variant balance = screen_.FarmDetails().FieldOrNull("Budget Open Balance");
    txt_OpBalance.Text = runtime::IsNumeric(balance) ? runtime::CStr(balance) : "0";
}

common::SaveResult PlannerPage::Save(common::SaveContext& context) {
    auto& farmDetails = context.dat_FarmDetails.Recordset();
    auto result = common::SaveResult::Saved;
    const std::int32_t season = WholeNumber(txt_season.Text);
    const bool hasBudgetDate = runtime::IsDate(txt_BudgetYear.Text);
    const runtime::Date budgetDate =
        runtime::CDate(hasBudgetDate ? txt_BudgetYear.Text.Get() : common::GetFinancialYear(context.db));

    const Variant stored = farmDetails["Current Season"].Value();
    if (config::HasMapAndArea() && !stored.IsNull() && runtime::CLng(stored) <= kLastRefusedSeason) {
        result = common::SaveResult::Refused;
        context.tokens = {"Current Season"};
    }

    if (hasBudgetDate || !runtime::IsDate(farmDetails["Budget Year"].Value())) {
        farmDetails.Edit();
        farmDetails["Budget Year"] = budgetDate;
        farmDetails.Update();
    }
    const runtime::Date budgetYear = runtime::CDate(farmDetails["Budget Year"].Value());

    if (runtime::IsNumeric(txt_odinterestrate.Text)) {
        farmDetails.Edit();
        farmDetails["OD Interest Rate"] = runtime::CSng(txt_odinterestrate.Text);
        farmDetails.Update();
    }

    // Meant: the farm edition alone; the diary is left out. The season is the four-digit number as typed.
    if (config::gModuleID == config::kFarmEdition)
        context.db.Execute("Update distinctrow [BudgetStart] set BudgetStart.BgtStartDate = '" +
                               runtime::CStr(budgetYear) +
                               "' Where BudgetStart.Season = " + std::to_string(season),
                           database::kFailOnError);
    return result;
}

void PlannerPage::FocusFirst(int /*frame*/) {
    if (txt_season.Visible)
        txt_season.SetFocus();
    else
        txt_odinterestrate.SetFocus();
}

void PlannerPage::txt_season_Validate() {
    common::Trap("frm_setup.txt_season_Validate", [&] {
        const double year = runtime::Val(txt_season.Text.Get());
        if (year >= config::gSeasonMin && year <= config::gSeasonMax) {
            saveseason();
            return;
        }
        const std::vector<std::string> tokens = {std::to_string(config::gSeasonMin),
                                                 std::to_string(config::gSeasonMax)};
        const std::string text =
            config::TranslateTokens("The value entered is incorrect.  Season range is |0| to |1|.", tokens) +
            "\r\rYou may create more 'Seasons' in the " + screen_.CurrentTabName() + ".";
        common::ShowMessage(common::Message(text, "Invalid Entry"));
        txt_season.Text = keptSeason_; // meant: the entry goes, the focus may go too
    });
}

void PlannerPage::css_bgtseason_Change() {
    common::Trap("frm_setup.css_bgtseason_Change", [&] {
        // Meant: stepping down onto the lowest season does not store it; leaving the text box does.
        if (runtime::Val(txt_season.Text.Get()) <= config::gSeasonMin)
            return;
        css_bgtseason.BuddyControl = &txt_season;
        css_bgtseason.SyncBuddy = true;
        saveseason();
    });
}

void PlannerPage::AcceptBudgetYear(const char* routine) {
    common::Trap(routine, [&] { AcceptTextDate(txt_BudgetYear, DatePicker_BudgetYear, "Budget Year"); });
}

void PlannerPage::txt_odinterestrate_Validate(bool& cancel) {
    common::Trap("frm_setup.txt_odinterestrate_Validate", [&] {
        if (runtime::IsNumeric(txt_odinterestrate.Text))
            return;
        const Variant stored = screen_.FarmDetails().FieldOrNull("OD Interest Rate");
        txt_odinterestrate.Text = runtime::IsNumeric(stored) ? runtime::CStr(stored) : "0";
        cancel = true;
    });
}

void PlannerPage::txt_ODLimit_Validate() {
    common::Trap("frm_setup.txt_ODLimit_Validate", [&] {
        auto& farmDetails = screen_.FarmDetails().Recordset();
        if (runtime::IsNumeric(txt_ODLimit.Text)) {
            // A limit is a negative balance, however it is typed.
            const runtime::Currency limit = runtime::CCur(txt_ODLimit.Text);
            farmDetails.Edit();
            farmDetails["ODLimit"] = runtime::Currency{-std::abs(limit.scaled)};
            farmDetails.Update();
            return;
        }
        common::ShowMessage(common::Message("Overdraft limit needs to be a number", "Invalid Entry"));
        const Variant stored = farmDetails["ODLimit"].Value();
        txt_ODLimit.Text =
            stored.IsNull() ? "0" : runtime::CStr(runtime::Currency{-runtime::CCur(stored).scaled});
    });
}

void PlannerPage::txt_OpBalance_Validate() {
    common::Trap("frm_setup.txt_OpBalance_Validate", [&] {
        auto& farmDetails = screen_.FarmDetails().Recordset();
        if (runtime::IsNumeric(txt_OpBalance.Text)) {
            farmDetails.Edit();
            farmDetails["Budget Open Balance"] = runtime::CCur(txt_OpBalance.Text);
            farmDetails.Update();
            return;
        }
        common::ShowMessage(common::Message("Opening Balance needs to be a number", "Invalid Entry"));
        // Meant: the overdraft's box takes the stored balance, and the bad text stays in its own.
        const Variant stored = farmDetails["Budget Open Balance"].Value();
        txt_ODLimit.Text = stored.IsNull() ? "0" : runtime::CStr(stored);
    });
}

void PlannerPage::chk_PlannerGST_Click() {
    common::Trap("frm_setup.chk_PlannerGST_Click", [&] {
        if (chk_PlannerGST.Value == controls::kChecked)
            ShowBudgetGstHeading();
        else
            lbl_AccountName.Caption = "";
    });
}

void PlannerPage::MoveOnEnter(const char* routine, int& keyAscii, controls::Control& next) {
    common::Trap(routine, [&] { common::MoveOnEnter(keyAscii, next); });
}

} // namespace quillary::farm
