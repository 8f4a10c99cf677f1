#include "tax/gst_page.h"

#include "common/binding.h"
#include "common/enter_key.h"
#include "common/error_report.h"
#include "common/farm_details.h"
#include "common/tax_records.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "config/settings.h"
#include "config/tokens.h"
#include "platform/runtime/conversions.h"
#include "tax/gst_dates.h"
#include "tax/tax_entities.h"
#include "tax/tax_returns.h"

#include <array>

namespace quillary::tax {

using runtime::Variant;

namespace {

constexpr int kGridFrame = 9;
constexpr int kShortFrame = 3;
constexpr int kRegistLimit = 30;
constexpr int kHeadLines = 2;              // a long tax word wraps
constexpr std::int16_t kDefaultPeriod = 2; // months
constexpr double kHighestRate = 100;

// Meant: not the rates that the settings give for the same countries.
double DefaultRate() {
    switch (config::GetCountryCode()) {
    case config::kAustralia:
        return 10;
    case config::kUruguay:
        return 23;
    default:
        return 12.5;
    }
}

void SetField(database::Recordset& farmDetails, std::string_view field, const Variant& value) {
    farmDetails.Edit();
    farmDetails[field] = value;
    farmDetails.Update();
}

} // namespace

GstPage::GstPage(common::Screen& screen, controls::Panel& panel, controls::Panel& olderPanel)
    : Page(screen, panel, "gst_page"), lbl_GSTReg(screen.ScreenForm(), "lbl_GSTReg", {0, 1}),
      txt_Regist(screen.ScreenForm(), "txt_Regist", {0, 1}),
      cmdPartners(screen.ScreenForm(), "cmdPartners", {0}),
      txt_GSTRate(screen.ScreenForm(), "txt_GSTRate", {0, 1}),
      lbl_gstStart(screen.ScreenForm(), "lbl_gstStart", {0, 1}),
      txt_GSTDate(screen.ScreenForm(), "txt_GSTDate", {0, 1}),
      DatePicker_GSTDate(screen.ScreenForm(), "DatePicker_GSTDate", {0, 1}),
      Label5(screen.ScreenForm(), "Label5"),
      lst_ReturnPeriod(screen.ScreenForm(), "lst_ReturnPeriod", {0, 1}),
      lbl_GSTRates(screen.ScreenForm(), "lbl_GSTRates", {0, 1}),
      dat_GSTRates(screen.ScreenForm(), "dat_GSTRates"), tgrd_GSTRates(screen.ScreenForm(), "tgrd_GSTRates"),
      tgrd_GSTTypes(screen.ScreenForm(), "tgrd_GSTTypes"),
      cmd_AddGSTType(screen.ScreenForm(), "cmd_AddGSTType") {
    olderPanel.Layout = "gst_page_short";
    for (controls::Control* onShortFrame : std::initializer_list<controls::Control*>{
             &lbl_gstStart(1), &txt_GSTDate(1), &DatePicker_GSTDate(1), &lst_ReturnPeriod(1), &lbl_GSTReg(1),
             &txt_Regist(1), &txt_GSTRate(1), &lbl_GSTRates(1)})
        onShortFrame->PlaceIn(olderPanel);

    Label5.Caption = "Return Period";
    lbl_GSTRates(0).Caption = "GST Rates (Percentage)";
    lbl_GSTRates(1).Caption = "GST Rate (Percentage)";
    cmdPartners(0).Caption = "&Tax Entities";
    cmd_AddGSTType.Caption = "&Add GST Type";
    cmd_AddGSTType.Visible = false;
    for (const int index : {0, 1}) {
        lbl_gstStart(index).Caption = "GST Start Date";
        lbl_GSTReg(index).Caption = "GST Registration Number";
        // The tax's name is the user's, and may hold an "&".
        lbl_gstStart(index).UseMnemonic = lbl_GSTReg(index).UseMnemonic = false;
        lbl_GSTRates(index).UseMnemonic = false;
        txt_GSTDate(index).SetBuddy(&lbl_gstStart(index));
        txt_Regist(index).SetBuddy(&lbl_GSTReg(index));
        txt_Regist(index).MaxLength = kRegistLimit;
        txt_GSTRate(index).Bind(screen.FarmDetails(), "GST Rate");
        DatePicker_GSTDate(index).AccessibleName = "Pick the start date";
        lst_ReturnPeriod(index).AccessibleName = "Return Period";
    }
    // Meant: the number of the grid frame belongs to the tax entities.
    txt_Regist(1).Bind(screen.FarmDetails(), "GST Reg Number");
    lst_ReturnPeriod(0).SetBuddy(&Label5);
    txt_GSTRate(0).AccessibleName = "Standard rate (Percentage)";
    txt_GSTRate(1).SetBuddy(&lbl_GSTRates(1));
    tgrd_GSTRates.SetBuddy(&lbl_GSTRates(0));
    tgrd_GSTTypes.AccessibleName = "Tax types";
    SetUpGSTRates(tgrd_GSTRates, dat_GSTRates, types_);

    AttachGSTDateRoutines(txt_GSTDate, DatePicker_GSTDate);
    txt_GSTDate.On(&controls::TextBox::KeyPress,
                   [this](int index, int& keyAscii) { txt_GSTDate_KeyPress(index, keyAscii); });
    lst_ReturnPeriod.On(&controls::ListBox::Click, [this](int index) {
        common::Trap("frm_setup.lst_ReturnPeriod_Click", [&] { lst_GST_Click(index); });
    });
    txt_GSTRate.On(&controls::TextBox::GotFocus, [this](int index) { keptRate_ = txt_GSTRate(index).Text; });
    txt_GSTRate.On(&controls::TextBox::Validate,
                   [this](int index, bool& cancel) { txt_GSTRate_Validate(index, cancel); });
    txt_GSTRate.On(&controls::TextBox::KeyPress,
                   [this](int index, int& keyAscii) { txt_GSTRate_KeyPress(index, keyAscii); });
    txt_Regist.On(&controls::TextBox::KeyPress,
                  [this](int index, int& keyAscii) { txt_Regist_KeyPress(index, keyAscii); });
    cmdPartners(0).Click = [] { common::Trap("frm_setup.cmdPartners_Click", EditTaxEntities); };
    cmd_AddGSTType.Click = [this] {
        common::Trap("frm_setup.cmd_AddGSTType_Click", [&] { types_.AddGSTTypeRow(); });
    };
}

// ---- Set-up

void GstPage::SetUp(int& frame) {
    common::Trap("SetUpGST", [&] { SetUpGST(frame); });
}

void GstPage::SetUpGST(int& pageId) {
    auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
    if (pageId_ != 0)
        pageId = pageId_;
    else if (!config::gHasTaxTypes)
        pageId = pageId_ = kShortFrame; // an old database has no types, whatever frame the catalogue names
    else
        pageId_ = pageId;
    if (config::gGSTLoaded)
        return;

    const std::vector<std::string> tokens = {config::GetTaxName(), config::GetTaxNumberName()};
    index_ = pageId == kShortFrame ? 1 : 0;
    const bool ratesRead = index_ == 1 || OpenRates();
    if (!ratesRead) {
        // Meant: the captions of the short frame stay as they are drawn.
        index_ = 1;
        pageId = pageId_ = kShortFrame;
    } else {
        if (index_ == 0)
            SetUpTypes(tokens);
        lbl_gstStart(index_).Caption = config::TranslateTokens("|0| Start Date", tokens);
        lbl_GSTRates(index_).Caption = config::TranslateTokens("|0| Rates (Percentage)", tokens);
    }
    // Meant: element 0 on the short frame, too.
    const Variant startDate = common::GetGSTStartDate(*db);
    if (ratesRead) {
        ShowGSTDate(txt_GSTDate(0), DatePicker_GSTDate(0), startDate);
        txt_Regist(0).Visible = false;
        cmdPartners(0).Visible = true;
        lbl_GSTReg(index_).Caption = config::TranslateTokens("|1| Registration Numbers", tokens);
        tgrd_GSTTypes.HeadLines = kHeadLines;
    }
    if (index_ == 1)
        ShowGSTDate(txt_GSTDate(1), DatePicker_GSTDate(1), startDate);
    SetGSTPeriods(index_);
    config::gGSTLoaded = true;
    db->Close();
}

bool GstPage::OpenRates() {
    return common::IgnoreErrors([&] {
        dat_GSTRates.DatabaseName = config::GetDataFileName();
        dat_GSTRates.RecordSource = "SELECT DISTINCTROW TaxRates.TaxRateNumber, TaxRates.[Rate %] "
                                    "From TaxRates ORDER BY TaxRates.TaxRateNumber;";
        dat_GSTRates.Refresh();
    });
}

void GstPage::SetUpTypes(const std::vector<std::string>& tokens) {
    if (config::GetDevelopment()) {
        cmd_AddGSTType.Visible = true;
        cmd_AddGSTType.UseMnemonic = false;
        cmd_AddGSTType.Caption = config::TranslateTokens("Add |0| types", tokens);
    }
    types_.SetUpGSTTypes(config::TranslateTokens("|0| Type", tokens));
    common::SetGridCaptions(tgrd_GSTRates, std::array<std::string, 2>{"Rate", "Percent"});
}

void GstPage::SetGSTPeriods(int index) {
    common::Trap("SetGSTPeriods", [&] {
        const Variant stored = screen_.FarmDetails().Recordset()["GST Period"].Value();
        const std::int16_t period = runtime::IsNumeric(stored) ? runtime::CInt(stored) : kDefaultPeriod;

        auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
        auto periods = db->OpenRecordset("SELECT DISTINCTROW [Tax Periods].Prompt, [Tax Periods].Months "
                                         "From [Tax Periods] ORDER BY [Tax Periods].Months;",
                                         database::RecordsetType::Snapshot);
        controls::ListBox& list = lst_ReturnPeriod(index);
        list.Clear();
        for (; !periods->EOF_(); periods->MoveNext())
            list.AddItem(runtime::TextOf((*periods)["Prompt"].Value()),
                         runtime::CLng((*periods)["Months"].Value()));
        list.ListIndex = list.FindData(period);
        periods->Close();
        db->Close();
    });
}

// ---- Events

// Stored at the click, ahead of the page's save. After an error it goes on at the next statement.
void GstPage::lst_GST_Click(int index) {
    const auto trap = [](const std::function<void()>& statement) {
        common::Trap("lst_GST_Click_Error", statement, "SETUP.FRM");
    };
    std::int16_t months = 0;
    const controls::ListBox& list = lst_ReturnPeriod(index);
    trap([&] { months = runtime::CInt(list.ItemData(list.ListIndex)); });
    trap([&] { screen_.FarmDetails().Recordset().Edit(); });
    trap([&] { screen_.FarmDetails().Recordset()["GST Period"] = months; });
    trap([&] { screen_.FarmDetails().Recordset().Update(); });
}

void GstPage::txt_GSTRate_Validate(int index, bool& cancel) {
    common::Trap("frm_setup.txt_GSTRate_Validate", [&] {
        controls::TextBox& rate = txt_GSTRate(index);
        if (runtime::IsNumeric(rate.Text) && runtime::Val(rate.Text.Get()) <= kHighestRate)
            return; // meant: below zero, too, and "1,000", of which Val reads the 1 alone
        rate.Text = keptRate_;
        cancel = true;
    });
}

void GstPage::txt_GSTDate_KeyPress(int index, int& keyAscii) {
    common::Trap("frm_setup.txt_GSTDate_KeyPress",
                 [&] { common::MoveOnEnter(keyAscii, lst_ReturnPeriod(index)); });
}

void GstPage::txt_GSTRate_KeyPress(int index, int& keyAscii) {
    common::Trap("frm_setup.txt_GSTRate_KeyPress",
                 [&] { common::MoveOnEnter(keyAscii, txt_GSTDate(index)); });
}

void GstPage::txt_Regist_KeyPress(int index, int& keyAscii) {
    common::Trap("frm_setup.txt_Regist_KeyPress", [&] {
        // A database whose rates cannot be read has tax types, but no grid on the short frame.
        if (config::gHasTaxTypes && tgrd_GSTRates.CanTakeFocus())
            common::MoveOnEnter(keyAscii, tgrd_GSTRates);
        else
            common::MoveOnEnter(keyAscii, txt_GSTRate(index));
    });
}

void GstPage::FocusFirst(int frame) {
    if (frame == kShortFrame)
        txt_Regist(1).SetFocus();
    else if (txt_Regist(0).Visible)
        txt_Regist(0).SetFocus();
    else
        cmdPartners(0).SetFocus();
}

// ---- Save

common::SaveResult GstPage::Save(common::SaveContext& context) {
    if (!config::GetValueAddedTax())
        return common::SaveResult::Saved;
    const int index = context.frame == kGridFrame ? 0 : 1;
    auto& farmDetails = context.dat_FarmDetails.Recordset();

    // In all that follows a Null is neither equal to anything nor less.
    const Variant rate = farmDetails["GST Rate"].Value();
    if (!rate.IsNull() && runtime::CSng(rate) == 0) {
        SetField(farmDetails, "GST Rate", DefaultRate());
        context.dat_FarmDetails.UpdateControls();
    }

    SaveStartDate(context, index);

    const std::string number = txt_Regist(index).Text;
    if (!number.empty()) {
        SetField(farmDetails, "GST Reg Number", number);
        common::UpdatePartnerField(number, "PartnerGSTNum");
    }

    const Variant period = farmDetails["GST Period"].Value();
    if (!period.IsNull() && runtime::CInt(period) < 1)
        SetField(farmDetails, "GST Period", std::int16_t{1});

    if (config::gHasTaxTypes && config::gGSTLoaded) {
        if (tgrd_GSTTypes.DataChanged)
            tgrd_GSTTypes.Update();
        types_.SaveGSTTypes();
    }
    return common::SaveResult::Saved;
}

void GstPage::SaveStartDate(common::SaveContext& context, int index) {
    auto& farmDetails = context.dat_FarmDetails.Recordset();
    const std::string text = txt_GSTDate(index).Text;
    const auto stored = [&] { return farmDetails["GST Start Date"].Value(); };

    if (!runtime::IsDate(Variant(text))) {
        if (!runtime::IsDate(stored()))
            SetField(farmDetails, "GST Start Date", runtime::CDate(common::GetFinancialYear(context.db)));
        return;
    }
    const runtime::Date date = runtime::CDate(text);
    if (stored().IsNull())
        SetField(farmDetails, "GST Start Date", date);
    if (runtime::CDate(stored()) == date)
        return; // another form of the same date
    if (ValidateGSTDate(text)) {
        SetField(farmDetails, "GST Start Date", date);
        ResetTaxReturns(text);
    } else {
        ShowGSTDate(txt_GSTDate(index), DatePicker_GSTDate(index), stored());
    }
}

} // namespace quillary::tax
