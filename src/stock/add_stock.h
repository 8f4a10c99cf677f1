#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/form.h"
#include "platform/controls/label.h"
#include "platform/controls/lists.h"
#include "platform/controls/panel.h"
#include "platform/controls/picture_box.h"
#include "platform/controls/text_box.h"
#include "stock/stock_state.h"

#include <cstdint>
#include <string_view>

namespace quillary::stock {

class StockPage;

inline constexpr int kClassNameLength = 50; // characters of [Class Name]

// Swallows what a stock name may not hold: names go into statements as they are.
void DropQuotes(int& keyAscii);

// The dialog that asks for a new class. It only fills the state; gNewStockType does the rest.
class FrmAddStock : public controls::Form {
public:
    FrmAddStock(common::Screen& screen, StockState& state);

    controls::Panel shpBorder;
    controls::PictureBox picFormPic;
    controls::Label lbl_season;
    controls::Label lbl_PaddockName;
    controls::TextBox txt_StockName;
    controls::Label lbl_Details;
    controls::TextBox txt_NumberInMob;
    controls::Label lbl_Individual;
    controls::ComboBox cbo_individual;
    controls::Label lbl_Sex;
    controls::ComboBox cbo_Sex;
    controls::Label lbl_Description;
    controls::TextBox txt_Description; // not stored
    controls::CommandButton cmd_Okay;
    controls::CommandButton cmd_cancel;

private:
    void Form_Load();
    void Form_Unload();
    void cbo_individual_Click();
    void cbo_Sex_Click();
    void txt_StockName_KeyPress(int& keyAscii);
    void txt_NumberInMob_KeyPress(int& keyAscii);
    void txt_NumberInMob_Validate(bool& cancel);
    void cmd_cancel_Click();
    bool NumberFits();
    void ReadNumberInMob();
    void ReadStockName();

    common::Screen& screen_;
    StockState& state_;
};

// Takes the user through the dialog and adds the class to the tab in use, or the current season to the class
// of that name, whatever its tab. The class to go on with, or 0. Errors are reported under its name.
std::int32_t gNewStockType(StockPage& page);

} // namespace quillary::stock
