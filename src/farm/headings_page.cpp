#include "farm/headings_page.h"

#include "common/binding.h"
#include "common/error_report.h"
#include "common/messages.h"
#include "common/value_checks.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "config/settings.h"
#include "config/tokens.h"
#include "farm/secondary_headings.h"
#include "platform/controls/panel.h"
#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

namespace quillary::farm {

using runtime::Variant;

namespace {

constexpr int kOlderFrame = 1;
constexpr int kDefaultCashbook = 6100;
constexpr int kMargin = 456;        // twips of the grid beside its columns: row marks and scroll bar
constexpr int kNarrowestName = 600; // twips, of a column that the user has narrowed
constexpr int kSpanishHeadLines = 3;
constexpr int kFirstPrintable = 33, kLastPrintable = 126;
constexpr int kStockUse = 1, kCropUse = 2; // planner uses whose headings have a planner tab

// Columns of both grids.
constexpr int kName = 1, kTax = 2, kShowInCashbook = 3, kPlannerTab = 5, kPlannerUse = 7, kCategory = 8;
// Of the newer one.
constexpr int kIncomeTax = 4;

struct HeadingColumn {
    const char* caption;
    const char* field;
    const char* format;
    int width; // twips
    bool locked = false;
};

// The number is the row's key, and the last two come from joined tables: they are for reading. The mask of
// ten letters that the old grid had for the gross margin shows the text as it is.
constexpr HeadingColumn kColumns[] = {
    {"Account Code", "Account Code", "", 1200, true},
    {"Heading Name", "Account Name", "", 4150},
    {"", "TaxNumber", "", 1400}, // captioned at run time
    {"Show in Cashbook", "Show in CashBk", "Yes/No", 1250},
    {"Income Taxable", "IncomeTax", "", 1150},
    {"Accountants Code", "Accountants Code", "", 1400},
    {"Gross Margin", "Account Level", "", 1200},
    {"Planner Use", "Planner Use", "", 1150, true},
    {"Category", "Category Name", "", 1600, true},
};

constexpr HeadingColumn kOlderColumns[] = {
    {"Account Code", "Account Code", "", 1200, true},
    {"Heading Name", "Account Name", "", 2600},
    {"", "GST Percentage", "Yes/No", 1500}, // captioned at run time
    {"Show in Cashbook", "Show in CashBk", "Yes/No", 1500},
    {"Accountants Code", "Accountants Code", "Standard", 1250},
    {"Gross Margin", "Account Level", "@@@@@@@@", 1750},
    {"Planner Use", "Planner Use", "", 1400, true},
    {"Category", "Category Name", "", 1900, true},
};

constexpr const char* kHeadings =
    "SELECT DISTINCTROW [Account Codes].*, [Account Categories].[Category Name], "
    "[Planner Use].[Planner Use] "
    "FROM ([Account Categories] Right JOIN [Account Codes] ON [Account Categories].[Account Category ID] = "
    "[Account Codes].[Account Category ID]) left JOIN [Planner Use] ON [Account Codes].[Planner Use ID] = "
    "[Planner Use].[Planner Use ID] ";
constexpr const char* kByCode = "ORDER BY [Account Codes].[Account Code];";
constexpr const char* kByName = "ORDER BY [Account Codes].[Account Name];";

template <std::size_t N>
void AddColumns(controls::Grid& grid, const HeadingColumn (&columns)[N]) {
    for (const HeadingColumn& column : columns) {
        auto& added = grid.AddColumn();
        added.Caption = column.caption;
        added.DataField = column.field;
        added.NumberFormat = column.format;
        added.Width = column.width;
        added.Locked = column.locked;
    }
}

void AddYesNo(controls::Grid& grid, int column, int yes) {
    controls::ValueItems& items = grid.Columns(column).ValueItems;
    items.Translate = true;
    items.Presentation = controls::Presentation::DropDown;
    items.Add(0, "No");
    items.Add(yes, "Yes");
}

void SetVisible(controls::Grid& grid, std::initializer_list<int> columns, bool visible) {
    for (const int column : columns)
        if (column < grid.ColumnCount())
            grid.Columns(column).Visible = visible;
}

// The current cell is one that the user sees: keys would be lost on a hidden one.
void StayOnSight(controls::Grid& grid) {
    if (!grid.Columns(grid.Col.Get()).Visible)
        grid.Col = kName;
}

// What was typed is none of the entries of the column's list.
void TellChoices(const controls::Column& column) {
    std::string entries;
    for (int item = 0; item < column.ValueItems.Count(); ++item)
        entries += (item > 0 ? " or " : "") + column.ValueItems[item].displayValue;
    common::ShowMessage(
        common::Message(column.Caption.Get() + ": please choose " + entries + ".", "Invalid Data"));
}

// What was typed into a cell, without the column's format.
std::string TypedText(const controls::Grid& grid, int column) {
    return runtime::TextOf(grid.Columns(column).Value);
}

bool IsBoolean(const Variant& value) {
    if (value.IsNull() || value.IsEmpty())
        return false;
    if (const auto* text = value.GetIf<std::string>();
        text && (runtime::EqualName(*text, "True") || runtime::EqualName(*text, "False")))
        return true;
    if (!runtime::IsNumeric(value))
        return false;
    const double number = runtime::CDbl(value);
    return number == -1 || number == 0;
}

} // namespace

HeadingsPage::HeadingsPage(common::Screen& screen, controls::Panel& panel, controls::Panel& olderPanel)
    : Page(screen, panel, "headings_page"), dat_Codes(screen.ScreenForm(), "dat_Codes"),
      search(screen.ScreenForm(), dat_Codes,
             [this] { (tgrd_Codes.IsShown() ? tgrd_Codes : tgrd_codes2).SetFocus(); }),
      tgrd_codes2(screen.ScreenForm(), "tgrd_codes2"), chkDetails(screen.ScreenForm(), "chkDetails"),
      cmd_secheads(screen.ScreenForm(), "cmd_secheads"), cmdCashBK(screen.ScreenForm(), "cmdCashBK"),
      tgrd_Codes(screen.ScreenForm(), "tgrd_Codes"), panel_(panel), olderPanel_(olderPanel) {
    tgrd_Codes.PlaceIn(olderPanel);
    olderPanel.Layout = "older_headings_page";

    chkDetails.Caption = "&Details";
    cmd_secheads.Caption = "&Edit Secondary Headings";
    cmdCashBK.Caption = "&Cashbook Headings";
    tgrd_codes2.AccessibleName = "Headings";
    tgrd_Codes.AccessibleName = "Headings";

    AddColumns(tgrd_codes2, kColumns);
    AddYesNo(tgrd_codes2, kShowInCashbook, -1);
    AddYesNo(tgrd_codes2, kIncomeTax, -1);
    AddColumns(tgrd_Codes, kOlderColumns);
    AddYesNo(tgrd_Codes, kTax, 100);
    AddYesNo(tgrd_Codes, kShowInCashbook, -1);
    AttachGrid(tgrd_Codes, {"frm_setup.tgrd_Codes", "Invalid Data"});
    AttachGrid(tgrd_codes2, {"frm_setup.tgrd_Codes2", "Action Required"});
    // Meant: on the newer grid the names that follow from a heading are left to the saving of the page.
    tgrd_Codes.AfterUpdate = [this] { tgrd_Codes_AfterUpdate(); };
    tgrd_Codes.LostFocus = [this] { tgrd_Codes_LostFocus(); };

    chkDetails.Click = [this] { chkDetails_Click(); };
    cmd_secheads.Click = [this] { cmd_secheads_Click(); };
    cmdCashBK.Click = [this] { cmdCashBK_Click(); };
}

void HeadingsPage::AttachGrid(controls::Grid& grid, GridRules rules) {
    grid.SetDataSource(&dat_Codes);
    grid.BeforeColUpdate = [this, &grid, rules](int colIndex, Variant&, bool& cancel) {
        const bool checked = common::Trap(rules.routines + "_BeforeColUpdate", [&] {
            try {
                BeforeColUpdate(grid, rules, colIndex, cancel);
            } catch (const runtime::RunTimeError& error) {
                // A row that another program has deleted is told when it is written.
                if (error.Number() != database::kErrRecordDeleted)
                    throw;
            }
        });
        // What could not be checked is not taken.
        if (!checked)
            cancel = true;
    };
    grid.AfterColUpdate = [this](int) {
        config::gHeadingsChanged = true;
        mKeySent_ = false;
    };
    grid.KeyPress = [this, &grid, rules](int& keyAscii) {
        common::Trap(rules.routines + "_KeyPress", [&] { GridKeyPress(grid, keyAscii); });
    };
    // Meant: the same numbers on both grids, so that the older one shades its category alone.
    grid.FetchCellStyle = [](int, int, std::int64_t, int col, controls::CellStyle& style) {
        if (col == kPlannerUse || col == kCategory)
            style.backColor = controls::kMenuColour;
    };
    grid.Error = [this, &grid, rules](int dataError, int& response) {
        common::Trap(rules.routines + "_Error", [&] { GridError(grid, dataError, response); });
    };
}

controls::Grid& HeadingsPage::GridInUse() {
    return config::gHasTaxTypes ? tgrd_codes2 : tgrd_Codes;
}

void HeadingsPage::ShowTaxColumn(bool visible, std::string_view caption) {
    auto& column = GridInUse().Columns(kTax);
    if (visible)
        column.Caption = std::string(caption);
    column.Visible = visible;
}

void HeadingsPage::ShowEditionColumns(bool farmEdition) {
    auto& grid = GridInUse();
    if (farmEdition)
        SetVisible(grid, {6, 7}, true);
    else
        SetVisible(grid, {8, 6, 7}, false);
    SetVisible(grid, {0}, false);
}

// ---- Setting up

void HeadingsPage::SetUp(int& frame) {
    PlaceControls(frame);
    LoadHeadingsPage();
}

// A database has one of the two frames: what stands beside the grid goes with the frame that is shown.
void HeadingsPage::PlaceControls(int frame) {
    if (std::exchange(placed_, true) || frame != kOlderFrame)
        return;
    search.PlaceIn(olderPanel_);
    chkDetails.PlaceIn(olderPanel_);
    cmd_secheads.PlaceIn(olderPanel_);
    cmdCashBK.PlaceIn(olderPanel_);
}

void HeadingsPage::LoadHeadingsPage() {
    if (!config::gHeadingsLoaded) {
        dat_Codes.DatabaseName = config::GetDataFileName();
        dat_Codes.RecordSource = std::string(kHeadings) + kByCode;
        dat_Codes.Refresh();
        SetHeadingCaptions();
        if (runtime::UCase(config::GetLanguage()) == "SPANISH")
            tgrd_codes2.HeadLines = kSpanishHeadLines; // those captions run long
        common::SetYesNoColumn(tgrd_codes2, kShowInCashbook);
        common::SetYesNoColumn(tgrd_codes2, kIncomeTax);
        config::gHeadingsLoaded = true;
    }
    if (config::GetValueAddedTax() && config::gHasTaxTypes)
        common::FillColumnFromSql(tgrd_codes2, kTax,
                                  "SELECT DISTINCTROW [TaxTypes].* From [TaxTypes] "
                                  "WHERE (((TaxTypes.Hidden)=False) AND ((TaxTypes.Country)=" +
                                      std::to_string(config::GetCountryCode()) +
                                      ")) "
                                      "ORDER BY [TaxTypes].[DisplayOrder];",
                                  "TaxTypes", "TaxNumber", "TaxTypeName", config::GetDataFileName());
    SetHeadingColumns(tgrd_codes2);
}

void HeadingsPage::SetHeadingCaptions() {
    const std::vector<std::string> tokens = {config::GetTaxName()};
    std::vector<std::string> captions = {"Account Code",
                                         "Heading Name",
                                         "",
                                         "Show in CashBk",
                                         config::GetIncomeTaxName(),
                                         "Accountants Code",
                                         "Gross Margin",
                                         "Planner Use",
                                         "Category"};
    const std::string percentage = config::TranslateTokens("|0| Percentage", tokens);
    captions[kTax] = config::gHasTaxTypes ? config::TranslateTokens("|0| Type", tokens) : percentage;
    common::SetGridCaptions(tgrd_codes2, captions);
    // Meant: strictly by position, though the older grid has no column for the income tax and its captions
    // stand over others from there on. The ninth is passed over.
    captions[kTax] = percentage;
    common::SetGridCaptions(tgrd_Codes, captions);
}

void HeadingsPage::SetHeadingColumns(controls::Grid& grid) {
    const bool hideLocked = config::GetHideLocked();
    grid.Update();
    chkDetails.Value = hideLocked ? controls::kUnchecked : controls::kChecked;
    SetVisible(grid, {kCategory, kPlannerUse, kShowInCashbook}, !hideLocked);
    controls::Column& name = grid.Columns(kName);
    name.Caption = hideLocked ? "Cashbook Headings" : "Heading Names";
    // Only a change of the option touches the width: what the user has set stays otherwise.
    if (hidesLocked_ != hideLocked) {
        const int own = std::max(name.Width - nameWidened_, kNarrowestName);
        const int flag = grid.Columns(kShowInCashbook).Width;
        nameWidened_ = hideLocked ? flag : own > flag ? -flag : 0;
        name.Width = own + nameWidened_;
        hidesLocked_ = hideLocked;
    }
    StayOnSight(grid);
    int width = kMargin;
    for (int column = 0; column < grid.ColumnCount(); ++column)
        if (grid.Columns(column).Visible)
            width += grid.Columns(column).Width;
    grid.Width = width;
    grid.Left = std::max(0, (panel_.Width - width) / 2);
    RefreshHeadings();
}

void HeadingsPage::RefreshHeadings() {
    Variant code = Variant::Null();
    common::IgnoreErrors([&] { code = dat_Codes.FieldOrNull("Account Code"); }); // another program's delete
    dat_Codes.RecordSource =
        std::string(kHeadings) +
        (config::GetHideLocked() ? "Where [Show in Cashbk]= " + runtime::CStr(true) : std::string()) + " " +
        (config::GetCodeOrder() ? kByCode : kByName);
    dat_Codes.Refresh();
    // The list is new, the user's place in it is not.
    if (!code.IsNull() && dat_Codes.HasRecord())
        dat_Codes.Recordset().FindFirst("[Account Code] = " + runtime::CStr(code));
}

void HeadingsPage::FocusFirst(int frame) {
    controls::Grid& grid = frame == kOlderFrame ? tgrd_Codes : tgrd_codes2;
    StayOnSight(grid);
    grid.SetFocus();
}

common::SaveResult HeadingsPage::Save(common::SaveContext& context) {
    // A cell that is still in edit, as when the window is closed, belongs to what is saved.
    tgrd_codes2.EndEdit();
    tgrd_Codes.EndEdit();
    if (!config::gHeadingsChanged)
        return common::SaveResult::Saved;
    dat_Codes.UpdateRecord();
    context.db.Execute("UPDATE DISTINCTROW [Account Codes] SET [Account Codes]." + config::GetLanguage() +
                           "AccountName = [Account name];",
                       database::kFailOnError);
    context.db.Execute("qry cb collect Changed AccCodes", database::kFailOnError);
    context.db.Execute("qry_UpdateAccountantsCode", database::kFailOnError);
    context.db.Execute("UPDATE DISTINCTROW [Account Codes] INNER JOIN [Secondary Codes] ON "
                       "[Account Codes].[Account Code] = [Secondary Codes].[Main Code ID] "
                       "SET [Secondary Codes].AccountantsCode = [Accountants Code] "
                       "WHERE ((([Secondary Codes].[Secondary Codes ID])=[Main Code ID]*100));",
                       database::kFailOnError);
    config::gHeadingsChanged = false;
    return common::SaveResult::Saved;
}

// ---- The rules of the cells

std::string HeadingsPage::StoredText(std::string_view field) {
    return runtime::TextOf(dat_Codes.Recordset()[field].Value());
}

bool HeadingsPage::IsDefaultCashbook() {
    const Variant code = dat_Codes.Recordset()["Account Code"].Value();
    return !code.IsNull() && runtime::CLng(code) == kDefaultCashbook;
}

void HeadingsPage::BeforeColUpdate(controls::Grid& grid, const GridRules& rules, int colIndex, bool& cancel) {
    switch (colIndex) {
    case kName:
        CheckName(grid, rules, cancel);
        break;
    case kTax:
        checkvalid(grid, kTax);
        break;
    case kShowInCashbook: {
        checkvalid(grid, kShowInCashbook);
        const Variant shown = grid.Columns(kShowInCashbook).Value;
        if (!shown.IsNull() && !runtime::CBool(shown))
            CheckCashbookUse(grid, cancel);
        break;
    }
    case kPlannerTab:
        // Meant: by the same number on both grids, so on the newer one it guards the accountant's code.
        CheckPlannerTab(grid, cancel);
        break;
    default:
        break;
    }
}

void HeadingsPage::CheckName(controls::Grid& grid, const GridRules& rules, bool& cancel) {
    const std::vector<std::string> tokens = {StoredText("account name"), "", ""};
    if (TypedText(grid, kName).empty()) {
        cancel = true;
        common::ShowMessage(common::Message("Headings may not be blank", rules.blankHeading));
        return;
    }
    if (IsDefaultCashbook()) {
        common::Message question(config::TranslateTokens("|0| is the default cashbbok account.\r\n\r\n"
                                                         "Do you really want to change it?",
                                                         tokens),
                                 "Please Confirm");
        question.buttons = common::kButtonsYesNo;
        cancel = common::ShowMessage(question) != common::kAnswerYes;
    }
    // Meant: a long name is not cut here; the width of the field is its limit.
}

void HeadingsPage::CheckPlannerTab(controls::Grid& grid, bool& cancel) {
    const Variant use = dat_Codes.Recordset()["Planner Use ID"].Value();
    if (use.IsNull() || !TypedText(grid, kPlannerTab).empty())
        return;
    if (const std::int32_t id = runtime::CLng(use); id == kStockUse || id == kCropUse) {
        cancel = true;
        common::ShowMessage(common::Message("Planner tabs may not be blank", "Action Required"));
    }
}

void HeadingsPage::CheckCashbookUse(controls::Grid& grid, bool& cancel) {
    const std::vector<std::string> tokens = {"", grid.Columns(kName).Text, ""};
    cancel = false;
    const std::int16_t code = runtime::CInt(dat_Codes.Recordset()["Account Code"].Value());
    const char* refusal = nullptr;
    if (IsDefaultCashbook()) {
        refusal = "|1| need to be available for the cashbook";
    } else {
        auto used = config::gDatabase->OpenRecordset(
            "SELECT DISTINCTROW [Secondary Codes].[Main Code ID] "
            "FROM [Secondary Codes] INNER JOIN TransactionDetails ON [Secondary Codes].[Secondary Codes ID] "
            "= TransactionDetails.[Account Code] "
            "WHERE ((([Secondary Codes].[Main Code ID])=" +
                std::to_string(code) + "));",
            database::RecordsetType::Snapshot);
        if (!used->EOF_())
            refusal = "|1| has already been used in the cashbook";
        used->Close();
    }
    if (!refusal)
        return;
    common::ShowMessage(common::Message(config::TranslateTokens(refusal, tokens), "Action Required"));
    cancel = true;
}

void HeadingsPage::checkvalid(controls::Grid& grid, int colIndex) {
    if (IsBoolean(grid.Columns(colIndex).Value))
        return;
    // Meant: on the newer grid column 2 holds the number of a tax type, and a number other than 0 and -1 is
    // replaced all the same.
    const char* field = colIndex == kTax ? "GST Percentage" : "Show in Cashbk";
    grid.Columns(colIndex).Value = runtime::CBool(dat_Codes.Recordset()[field].Value());
}

void HeadingsPage::GridKeyPress(controls::Grid& grid, int keyAscii) {
    const bool yesNo = grid.Col == kTax || grid.Col == kShowInCashbook;
    if (keyAscii < kFirstPrintable || keyAscii > kLastPrintable || !yesNo || mKeySent_)
        return;
    common::PressKey(controls::kKeyDown, true);
    mKeySent_ = true;
}

void HeadingsPage::GridError(controls::Grid& grid, int dataError, int& response) {
    if (dataError == database::kErrFieldTooSmall) {
        response = 0;
        TellTooLong(grid);
    } else if (dataError == database::kErrWrongType && grid.Columns(grid.Col.Get()).ValueItems.Count() > 0) {
        response = 0;
        TellChoices(grid.Columns(grid.Col.Get()));
    } else if (dataError == database::kErrRecordDeleted) {
        response = 0;
        grid.DataChanged = false;
        TellHeadingGone();
    }
}

void HeadingsPage::TellHeadingGone() {
    common::ShowMessage(common::Message("This heading has been deleted by another program. The list is "
                                        "shown anew.",
                                        "Information"));
    RefreshHeadings();
}

void HeadingsPage::TellTooLong(controls::Grid& grid) {
    for (int column = 0; column < grid.ColumnCount(); ++column) {
        const std::string& fieldName = grid.Columns(column).DataField;
        const database::Field& field = dat_Codes.Recordset()[fieldName];
        if (field.Type() != database::FieldType::Text ||
            runtime::CharCount(TypedText(grid, column)) <= static_cast<std::size_t>(field.Size()))
            continue;
        common::ShowMessage(common::Message(grid.Columns(column).Caption.Get() + ": please enter at most " +
                                                std::to_string(field.Size()) + " characters.",
                                            "Entry Too Long"));
        grid.Columns(column).Value = field.Value(); // as it was; the row's other cells wait on
    }
}

void HeadingsPage::tgrd_Codes_AfterUpdate() {
    common::Trap("frm_setup.tgrd_Codes_AfterUpdate", [&] {
        if (config::gHeadingsChanged)
            UpdateSecondaryHeadings(dat_Codes);
    });
}

void HeadingsPage::tgrd_Codes_LostFocus() {
    common::Trap("frm_setup.tgrd_Codes_LostFocus", [&] { UpdateSecondaryHeadings(dat_Codes); });
}

// ---- Beside the grids

void HeadingsPage::chkDetails_Click() {
    common::Trap("frm_setup.chkDetails_Click", [&] {
        config::WriteSuiteValue("Options", "HideLocked", chkDetails.Value == controls::kChecked ? "N" : "Y");
        SetHeadingColumns(tgrd_codes2);
    });
}

void HeadingsPage::cmd_secheads_Click() {
    // Meant: the name is reported with this blank in front.
    common::Trap(" cmd_secHeads_Click", [&] {
        common::IgnoreErrors([&] { tgrd_codes2.Update(); });
        if (screen_.LeaveCurrentPage()) {
            SecondaryHeadingsEditor editor;
            try {
                editor.SetAccount(runtime::CLng(dat_Codes.Recordset()["Account Code"].Value()));
            } catch (const runtime::RunTimeError& error) {
                if (error.Number() != database::kErrRecordDeleted)
                    throw;
                TellHeadingGone();
                return;
            }
            editor.Show(config::gShellLaunch);
        }
        RefreshHeadings();
    });
}

void HeadingsPage::cmdCashBK_Click() {
    common::Trap("frm_setup.cmdCashBK_Click", [&] {
        SecondaryHeadingsEditor editor;
        editor.OpenCashbookHeadings();
    });
}

} // namespace quillary::farm
