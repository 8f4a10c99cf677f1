#include "stock/stock_page.h"

#include "common/binding.h"
#include "common/error_report.h"
#include "common/messages.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "config/tokens.h"
#include "platform/runtime/conversions.h"
#include "stock/add_stock.h"
#include "stock/delete_mob.h"
#include "stock/season_numbers.h"
#include "stock/stock_details_editor.h"

#include <optional>

namespace quillary::stock {

using runtime::Variant;

namespace {

constexpr int kNameColumn = 0, kIndividualColumn = 1;
constexpr int kNameWidth = 4200, kIndividualWidth = 1400; // twips
constexpr const char* kDefaultClasses[] = {"Ewes", "Bulls", "Stags", "Cows", "Other Stock"};

} // namespace

StockPage::StockPage(common::Screen& screen, controls::Panel& panel)
    : Page(screen, panel, "stock_page"), tab_Stock(screen.ScreenForm(), "tab_Stock"),
      dat_Stock(screen.ScreenForm(), "dat_Stock"), tgrd_StockNames(screen.ScreenForm(), "tgrd_StockNames"),
      chk_StockSort(screen.ScreenForm(), "chk_StockSort"), cmd_AddStock(screen.ScreenForm(), "cmd_AddStock"),
      cmd_EditStock(screen.ScreenForm(), "cmd_EditStock"), cmd_Number(screen.ScreenForm(), "cmd_Number"),
      cmd_DeleteStock(screen.ScreenForm(), "cmd_DeleteStock"),
      cmd_AddBulk(screen.ScreenForm(), "cmd_AddBulk"), img_stock(screen.ScreenForm(), "img_stock") {
    panel.Caption = "Stock";
    tab_Stock.Caption = "Sheep|Cattle|Deer|Dairy|Other";
    chk_StockSort.Caption = "&Sorted";
    cmd_AddStock.Caption = "&Add";
    cmd_DeleteStock.Caption = "&Delete";
    cmd_EditStock.Caption = "&Edit Details";
    cmd_Number.Caption = "&Number in Mob";
    cmd_AddBulk.Caption = "&Generate Tag Numbers";
    tab_Stock.AccessibleName = "Stock types";
    tgrd_StockNames.AccessibleName = "Stock classes";
    img_stock.AccessibleName = "Picture of the stock type";
    cmd_DeleteStock.Visible = false; // the screen shows it

    controls::Column& name = tgrd_StockNames.AddColumn();
    name.DataField = "Class Name";
    name.Width = kNameWidth;
    name.MaxLength = kClassNameLength;
    controls::Column& individual = tgrd_StockNames.AddColumn();
    individual.DataField = "Individual";
    individual.Width = kIndividualWidth;
    individual.NumberFormat = "Yes/No";
    common::SetYesNoColumn(tgrd_StockNames, kIndividualColumn);
    tgrd_StockNames.SetDataSource(&dat_Stock);
    TranslateStockGrid();

    tab_Stock.Switch = [this](int, int& newTab, bool&) { tab_Stock_Switch(newTab); };
    chk_StockSort.Click = [this] { chk_StockSort_Click(); };
    cmd_AddStock.Click = [this] { cmd_AddStock_Click(); };
    cmd_EditStock.Click = [this] { cmd_EditStock_Click(); };
    cmd_DeleteStock.Click = [this] { cmd_DeleteStock_Click(); };
    cmd_Number.Click = [this] { cmd_Number_Click(); };
    tgrd_StockNames.BeforeColUpdate = [this](int colIndex, Variant& oldValue, bool& cancel) {
        tgrd_StockNames_BeforeColUpdate(colIndex, oldValue, cancel);
    };
    tgrd_StockNames.Error = [this](int dataError, int& response) {
        tgrd_StockNames_Error(dataError, response);
    };
}

void StockPage::SetUp(int& /*frame*/) {
    if (loaded_)
        return;
    LoadStockTabs();
    loaded_ = true;
}

void StockPage::FocusFirst(int /*frame*/) {
    tgrd_StockNames.SetFocus();
}

// ---- Tabs

void StockPage::LoadStockTabs() {
    auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
    // Meant: no order; the tabs stand as the rows come.
    auto types = db->OpenRecordset(
        "SELECT DISTINCTROW [Account Codes].[Account Level], [Stock Types].Icon "
        " FROM [Account Codes] INNER JOIN [Stock Types] ON [Account Codes].[Account Code] = "
        "[Stock Types].[Account Code];");
    if (!types->EOF_()) {
        const database::Field& level = (*types)["Account Level"];
        const database::Field& icon = (*types)["Icon"];
        if (!level.Value().IsNull())
            tab_Stock.Caption = runtime::TextOf(level.Value());
        if (!icon.Value().IsNull())
            state_.gStockIcons[0] = runtime::TextOf(icon.Value());
        for (std::size_t tab = 1; tab < kStockTabs; ++tab) {
            types->MoveNext();
            if (types->EOF_())
                break;
            // Meant: a row without a level moves the later tabs down a place, but not their icons.
            if (!level.Value().IsNull())
                tab_Stock.Caption = tab_Stock.Caption.Get() + "|" + runtime::TextOf(level.Value());
            if (!icon.Value().IsNull())
                state_.gStockIcons[tab] = runtime::TextOf(icon.Value());
        }
        if (tab_Stock.CurrTab == 0)
            ShowStockTab(0); // no switch event comes for it
    }
    types->Close();
    db->Close();
    TranslateStockGrid();
}

void StockPage::tab_Stock_Switch(int newTab) {
    common::Trap("frm_setup.tab_Stock_Switch", [&] { ShowStockTab(newTab); });
}

void StockPage::ShowStockTab(int tabNumber) {
    // An error is shown in a plain box, and the next statement runs.
    const auto go = [](const auto& statement) {
        try {
            statement();
        } catch (const runtime::RunTimeError& error) {
            common::ShowSystemMessage(error.Description());
        }
    };
    std::string caption;
    go([&] { caption = tab_Stock.TabCaption(tabNumber); });
    go([&] { UpdateStockNames(caption); });
    const std::vector<std::string> tokens = {caption};
    cmd_AddStock.Caption = config::TranslateTokens("&Add |0|", tokens);
    cmd_DeleteStock.Caption = config::TranslateTokens("&Delete |0|", tokens);
    go([&] { ShowStockIcon(img_stock, state_, tabNumber); });
}

void StockPage::UpdateStockNames(const std::string& tabName) {
    // An error is reported, and the next statement runs.
    const auto go = [](const auto& statement) {
        return common::Trap("UpdateStockNames", statement, "SETUP.BAS");
    };
    dat_Stock.DatabaseName = config::GetDataFileName();
    go([&] { SetStockRecordSource(tabName); });
    if (!dat_Stock.HasRecordset())
        return; // what was reported stands for all that would follow
    auto& classes = dat_Stock.Recordset();
    if (!classes.BOF() || !classes.EOF_())
        return;
    const int tab = tab_Stock.CurrTab;
    std::optional<std::int32_t> classID;
    go([&] { classes.AddNew(); });
    if (tab < static_cast<int>(std::size(kDefaultClasses)))
        go([&] { classes["Class Name"] = kDefaultClasses[tab]; });
    // Meant: the tab's place counts here, and its account level in the query; they agree while the stock
    // types come in the order of their numbers.
    go([&] { classes["Stock Type ID"] = tab + 1; });
    go([&] { classes.Update(); });
    go([&] { classes.MoveLast(); });
    go([&] { classID = runtime::CLng(classes["Class ID"].Value()); });
    if (classID)
        go([&] { AddStockSeasonRows(*classID, state_); });
}

void StockPage::SetStockRecordSource(const std::string& tabName) {
    std::string sql = "SELECT DISTINCTROW [Stock Class Names].* "
                      "FROM [Account Codes] INNER JOIN ([Stock Class Names] INNER JOIN [Stock Types] ON "
                      "[Stock Class Names].[Stock Type ID] = [Stock Types].[Type ID]) ON "
                      "[Account Codes].[Account Code] = [Stock Types].[Account Code] "
                      "WHERE ([Account Codes].[Account Level]='" +
                      tabName + "') ";
    if (config::gUnsortedStock) // meant: True is "sorted", against the name
        sql += "ORDER BY [Stock Class Names].[Class Name];";
    dat_Stock.RecordSource = sql;
    dat_Stock.Refresh();
}

void StockPage::TranslateStockGrid() {
    const std::string captions[] = {"Stock Name", "Individual"};
    common::SetGridCaptions(tgrd_StockNames, captions);
}

// ---- Sorting

void StockPage::chk_StockSort_Click() {
    common::Trap("frm_setup.chk_StockSort_Click", [&] {
        config::gUnsortedStock = chk_StockSort.Value == controls::kChecked;
        SaveStockSortFlag();
        SetStockRecordSource(tab_Stock.TabCaption(tab_Stock.CurrTab));
    });
}

void StockPage::SaveStockSortFlag() {
    // Meant: the key holds the opposite of the flag of nearly the same name.
    config::WriteSuiteValue("Sort", "UnsortedStock", config::gUnsortedStock ? "N" : "Y");
}

// ---- Buttons

void StockPage::cmd_AddStock_Click() {
    common::Trap(
        "cmd_AddStock_Click_Error",
        [&] {
            const std::int32_t classID = gNewStockType(*this);
            if (classID <= 0)
                return;
            auto& classes = dat_Stock.Recordset();
            classes.FindFirst("[Class ID] =" + std::to_string(classID));
            if (!classes.NoMatch())
                cmd_EditStock_Click();
        },
        "SETUP.FRM");
}

void StockPage::cmd_EditStock_Click() {
    common::Trap("frm_setup.cmd_EditStock_Click",
                 [&] { EditStockClass(dat_Stock.Recordset(), tab_Stock.CurrTab + 1); });
}

void StockPage::EditStockClass(database::Recordset& classes, int tabNumber) {
    const std::int32_t classID = runtime::CLng(classes["Class ID"].Value());
    EditStockDetails(screen_, state_, classID, tabNumber);
    classes.Requery();
    classes.MoveLast();
    const long count = classes.RecordCount();
    classes.MoveFirst();
    for (long row = 0; row < count && !classes.EOF_(); ++row) {
        if (runtime::CLng(classes["Class ID"].Value()) == classID)
            break;
        classes.MoveNext();
    }
}

void StockPage::cmd_DeleteStock_Click() {
    common::Trap("frm_setup.cmd_DeleteStock_Click", [&] {
        auto& classes = dat_Stock.Recordset();
        const std::int32_t classID = runtime::CLng(classes["Class ID"].Value());
        const std::string className = runtime::TextOf(classes["Class Name"].Value());
        DeleteStockMob(classID, className, screen_);
        dat_Stock.Refresh();
        tgrd_StockNames.Refresh();
    });
}

void StockPage::cmd_Number_Click() {
    common::Trap("frm_setup.cmd_Number_Click", [&] { ShowStockNumbers(*this, dat_Stock.Recordset()); });
}

// ---- The grid

void StockPage::tgrd_StockNames_BeforeColUpdate(int colIndex, const Variant& oldValue, bool& cancel) {
    common::Trap(
        "BeforeColUpdate",
        [&] {
            if (tgrd_StockNames.Columns(colIndex).Text.Get().empty()) {
                common::ShowMessage(common::Message("Need to enter a Stock name", "Required Field"));
                cancel = true;
                tgrd_StockNames.Columns(colIndex).Value = oldValue;
                return;
            }
            auto& classes = dat_Stock.Recordset();
            if (!classes["Stock Type ID"].Value().IsNull())
                return;
            classes.Edit();
            classes["Stock Type ID"] = tab_Stock.CurrTab.Get(); // meant: without the + 1 of the other places
            classes.Update();
        },
        "SETUP.BAS");
}

void StockPage::tgrd_StockNames_Error(int dataError, int& response) {
    common::Trap("frm_setup.tgrd_StockNames_Error", [&] {
        if (dataError != controls::kGridDuplicate)
            return;
        common::ShowMessage(common::Message("Stock names must be unique", "Duplicate Value"));
        response = 0;
    });
}

} // namespace quillary::stock
