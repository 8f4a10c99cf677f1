#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/data_control.h"
#include "platform/controls/grid.h"
#include "platform/controls/picture_box.h"
#include "platform/controls/tab_strip.h"
#include "stock/stock_state.h"

#include <string>

namespace quillary::stock {

// The stock classes (mobs), one list for each stock type. The tabs come from the database; a list is never
// empty when it is shown, since an empty type gets a default class.
class StockPage : public common::Page {
public:
    StockPage(common::Screen& screen, controls::Panel& panel);

    controls::TabStrip tab_Stock;
    controls::DataControl dat_Stock;
    controls::Grid tgrd_StockNames;
    controls::CheckBox chk_StockSort; // the list of classes is sorted by name
    controls::CommandButton cmd_AddStock;
    controls::CommandButton cmd_EditStock;
    controls::CommandButton cmd_Number;
    controls::CommandButton cmd_DeleteStock;
    controls::CommandButton cmd_AddBulk; // starts the tag tool; the screen does it
    controls::PictureBox img_stock;

    StockState& State() { return state_; }
    common::Screen& TheScreen() { return screen_; }

    // What the buttons do, for the class of the current row.
    void AddStock() { cmd_AddStock_Click(); }
    void EditStock() { cmd_EditStock_Click(); }
    void ShowNumbers() { cmd_Number_Click(); }
    void DeleteStock() { cmd_DeleteStock_Click(); }

    void SetUp(int& frame) override;
    void FocusFirst(int frame) override;

    // The query of the list, by the tab's account level, and the list anew. The errors of opening.
    void SetStockRecordSource(const std::string& tabName);

private:
    void LoadStockTabs();
    void ShowStockTab(int tabNumber);
    void UpdateStockNames(const std::string& tabName);
    void TranslateStockGrid();
    void SaveStockSortFlag();
    void EditStockClass(database::Recordset& classes, int tabNumber);

    void tab_Stock_Switch(int newTab);
    void chk_StockSort_Click();
    void cmd_AddStock_Click();
    void cmd_EditStock_Click();
    void cmd_DeleteStock_Click();
    void cmd_Number_Click();
    void tgrd_StockNames_BeforeColUpdate(int colIndex, const runtime::Variant& oldValue, bool& cancel);
    void tgrd_StockNames_Error(int dataError, int& response);

    StockState state_;
    bool loaded_ = false; // LoadStockTabs has run
};

} // namespace quillary::stock
