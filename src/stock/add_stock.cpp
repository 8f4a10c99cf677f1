#include "stock/add_stock.h"

#include "common/error_report.h"
#include "common/farm_details.h"
#include "common/messages.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "config/tokens.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"
#include "stock/season_numbers.h"
#include "stock/stock_page.h"

#include <limits>

namespace quillary::stock {

namespace {

constexpr int kDialogWidth = 6900, kDialogHeight = 5400; // twips
constexpr int kEnter = 13, kDoubleQuote = 34, kApostrophe = 39;
constexpr int kNumberLength = 20, kDescriptionLength = 255;

// The season that the farm is in, as text of four digits.
std::string CurrentSeason(database::Database& db) {
    return std::to_string(SeasonYear(common::GetCurrentSeason(db)));
}

// The class of this name among all stock types, or -1.
std::int32_t FindStockClassID(database::Database& db, const std::string& stockName) {
    auto found =
        db.OpenRecordset("SELECT DISTINCTROW [Stock Class Names].[Class Name],[Stock Class Names].[Class ID] "
                         "From [Stock Class Names] "
                         "WHERE ((([Stock Class Names].[Class Name])='" +
                         stockName + "'));");
    return found->EOF_() ? -1 : runtime::CLng((*found)["Class ID"].Value());
}

bool SeasonRowExists(database::Database& db, const std::string& season, std::int32_t classID) {
    auto rows =
        db.OpenRecordset("SELECT DISTINCTROW [Stock Details].Season "
                         "From [Stock Details] "
                         "WHERE ((([Stock Details].Season)=" +
                         season + ") AND (([Stock Details].[Class ID])=" + std::to_string(classID) + "));");
    return !rows->BOF() && !rows->EOF_();
}

std::int32_t AddClass(StockPage& page) {
    const StockState& state = page.State();
    auto& classes = page.dat_Stock.Recordset();
    try {
        classes.AddNew();
        classes["Class Name"] = state.gStockName;
        classes["Stock Type ID"] = page.tab_Stock.CurrTab + 1;
        classes["Sex"] = state.gSex;
        classes["Individual"] = state.gIndividual;
        classes.Update();
    } catch (const runtime::RunTimeError&) {
        if (classes.Editing() != database::EditMode::None)
            classes.CancelUpdate();
        throw;
    }
    classes.MoveLast();
    return runtime::CLng(classes["Class ID"].Value());
}

} // namespace

void DropQuotes(int& keyAscii) {
    if (keyAscii == kDoubleQuote || keyAscii == kApostrophe)
        keyAscii = 0;
}

FrmAddStock::FrmAddStock(common::Screen& screen, StockState& state)
    : controls::Form("frm_addStock"), shpBorder(*this, "shpBorder"), picFormPic(*this, "picFormPic"),
      lbl_season(*this, "lbl_season"), lbl_PaddockName(*this, "lbl_PaddockName"),
      txt_StockName(*this, "txt_StockName"), lbl_Details(*this, "lbl_Details"),
      txt_NumberInMob(*this, "txt_NumberInMob"), lbl_Individual(*this, "lbl_Individual"),
      cbo_individual(*this, "cbo_individual"), lbl_Sex(*this, "lbl_Sex"), cbo_Sex(*this, "cbo_Sex"),
      lbl_Description(*this, "lbl_Description"), txt_Description(*this, "txt_Description"),
      cmd_Okay(*this, "cmd_Okay"), cmd_cancel(*this, "cmd_cancel"), screen_(screen), state_(state) {
    Layout = "add_stock";
    Width = kDialogWidth;
    Height = kDialogHeight;
    Caption = "Add Stock";
    lbl_PaddockName.Caption = "Name/Tag";
    lbl_Details.Caption = "Number";
    lbl_Individual.Caption = "Individual";
    lbl_Sex.Caption = "Sex";
    lbl_Description.Caption = "Description";
    cmd_Okay.Caption = "&OK";
    cmd_Okay.Default = true;
    cmd_cancel.Caption = "Cancel";
    cmd_cancel.Cancel = true;
    cmd_cancel.CausesValidation = false;
    txt_StockName.SetBuddy(&lbl_PaddockName);
    txt_NumberInMob.SetBuddy(&lbl_Details);
    cbo_individual.SetBuddy(&lbl_Individual);
    cbo_Sex.SetBuddy(&lbl_Sex);
    txt_Description.SetBuddy(&lbl_Description);
    txt_StockName.MaxLength = kClassNameLength;
    txt_NumberInMob.MaxLength = kNumberLength;
    txt_Description.MaxLength = kDescriptionLength;

    Load = [this] { Form_Load(); };
    Unload = [this](bool&) { Form_Unload(); };
    cbo_individual.Click = [this] { cbo_individual_Click(); };
    cbo_Sex.Click = [this] { cbo_Sex_Click(); };
    txt_StockName.KeyPress = [this](int& keyAscii) { txt_StockName_KeyPress(keyAscii); };
    txt_StockName.Validate = [this](bool&) { ReadStockName(); };
    txt_NumberInMob.KeyPress = [this](int& keyAscii) { txt_NumberInMob_KeyPress(keyAscii); };
    txt_NumberInMob.Validate = [this](bool& cancel) { txt_NumberInMob_Validate(cancel); };
    cmd_Okay.Click = [this] { UnloadForm(); };
    cmd_cancel.Click = [this] { cmd_cancel_Click(); };
}

void FrmAddStock::Form_Load() {
    try {
        auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
        SetStockFormPicture(picFormPic, state_);
        lbl_season.Caption = config::TranslateTokens("Current season -|0|", std::vector{CurrentSeason(*db)});
        screen_.Decorate(*this);
        for (const char* entry : {"False", "True"})
            cbo_individual.AddItem(entry);
        for (const char* entry : {"Female", "Male"})
            cbo_Sex.AddItem(entry);
        cbo_individual.ListIndex = 0;
        cbo_Sex.ListIndex = 0;
        state_.gIndividual = false;
        state_.gSex = "F";
        db->Close();
    } catch (const runtime::RunTimeError& error) {
        throw runtime::RunTimeError(error.Number(), "frm_StockDetails - Form_Load ", error.Description());
    }
}

void FrmAddStock::Form_Unload() {
    Hide();
    ReadNumberInMob();
    // Meant: Cancel comes by here too, so a name that was typed comes back and goes on as with OK.
    ReadStockName();
}

void FrmAddStock::cbo_individual_Click() {
    state_.gIndividual = cbo_individual.Text == "True";
    txt_NumberInMob.Text = state_.gIndividual ? "1" : "";
    txt_NumberInMob.Enabled = !state_.gIndividual;
}

void FrmAddStock::cbo_Sex_Click() {
    state_.gSex = cbo_Sex.Text == "Female" ? "F" : "M";
}

void FrmAddStock::txt_StockName_KeyPress(int& keyAscii) {
    DropQuotes(keyAscii);
    if (keyAscii != kEnter)
        return;
    keyAscii = 0;
    if (txt_NumberInMob.CanTakeFocus())
        txt_NumberInMob.SetFocus();
    else
        cmd_Okay.SetFocus(); // a single animal has its number
}

void FrmAddStock::txt_NumberInMob_KeyPress(int& keyAscii) {
    if (keyAscii != kEnter)
        return;
    keyAscii = 0;
    if (NumberFits())
        UnloadForm();
}

void FrmAddStock::txt_NumberInMob_Validate(bool& cancel) {
    cancel = !NumberFits();
    if (!cancel)
        ReadNumberInMob();
}

// A number that no mob can have is told before it is lost.
bool FrmAddStock::NumberFits() {
    const auto number = runtime::ParseNumber(txt_NumberInMob.Text.Get());
    using Limits = std::numeric_limits<std::int32_t>;
    if (!number || (*number >= Limits::min() && *number <= Limits::max()))
        return true;
    common::ShowMessage(
        common::Message("The number in the mob is too large. Please enter a smaller one.", "Invalid Entry"));
    return false;
}

void FrmAddStock::ReadNumberInMob() {
    // Meant: a text that is no number leaves the former number, which is 0 after each use.
    if (runtime::IsNumeric(txt_NumberInMob.Text.Get()))
        common::IgnoreErrors([&] { state_.gNumberInMob = runtime::CLng(txt_NumberInMob.Text.Get()); });
}

void FrmAddStock::ReadStockName() {
    state_.gStockName = txt_StockName.Text;
}

void FrmAddStock::cmd_cancel_Click() {
    state_.gStockName = "";
    UnloadForm();
}

std::int32_t gNewStockType(StockPage& page) {
    std::int32_t result = 0;
    common::Trap(
        "gNewStockType",
        [&] {
            StockState& state = page.State();
            auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
            const int tab = page.tab_Stock.CurrTab;
            const std::string caption = page.tab_Stock.TabCaption(tab);
            state.gStockTab = static_cast<std::int16_t>(tab);
            FrmAddStock(page.TheScreen(), state).ShowModal();
            if (state.gStockName.empty())
                return;
            std::int32_t classID = FindStockClassID(*db, state.gStockName);
            if (classID == -1) {
                classID = AddClass(page);
            } else {
                const std::string season = CurrentSeason(*db);
                if (SeasonRowExists(*db, season, classID)) {
                    const std::vector<std::string> tokens = {runtime::UCase(state.gStockName), season};
                    common::ShowMessage(common::Message(
                        config::TranslateTokens("The stock name |0| has already been used in the |1| season. "
                                                " Please try again.",
                                                tokens),
                        "Invalid Entry"));
                    result = gNewStockType(page);
                    return;
                }
            }
            AddStockSeasonRows(classID, state);
            page.tgrd_StockNames.EditActive = true;
            result = classID;
            page.SetStockRecordSource(caption);
            db->Close();
        },
        "SETUP.bas");
    return result;
}

} // namespace quillary::stock
