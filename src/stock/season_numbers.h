#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/data_control.h"
#include "platform/controls/form.h"
#include "platform/controls/grid.h"
#include "platform/controls/label.h"
#include "platform/controls/panel.h"
#include "platform/controls/picture_box.h"
#include "platform/database/engine.h"
#include "stock/stock_state.h"

#include <cstdint>

namespace quillary::stock {

class StockPage;

// The year of a season that is stored as the year less 1900. 6 when it is beyond 16 bits.
std::int16_t SeasonYear(double storedSeason);

// Gives the class a row with gNumberInMob for each season from the current one to the last of the map,
// where it has none, and sets gNumberInMob back to 0. Without a map nothing happens. Errors are the
// caller's.
void AddStockSeasonRows(std::int32_t classID, StockState& state);

// The dialog with the numbers of one class, a row a season. It has no cancel: each way out saves.
class FrmStockNumbers : public controls::Form {
public:
    FrmStockNumbers(common::Screen& screen, const StockState& state);

    controls::DataControl dat_StockDetails;
    controls::Panel shpBorder;
    controls::PictureBox picFormPic;
    controls::Label lbl_Stockname;
    controls::Grid tgrd_StockDetails;
    controls::CommandButton cmd_Okay;

private:
    void Form_Load(common::Screen& screen, const StockState& state);
    void Form_Unload(bool& cancel);
};

// Shows the dialog for the current row of the page's classes. Errors are the caller's.
void ShowStockNumbers(StockPage& page, database::Recordset& classes);

} // namespace quillary::stock
