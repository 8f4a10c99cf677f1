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
#include <string>

namespace quillary::stock {

// The details of one stock class: name, sex, and whether it is a single tagged animal. OK stores what was
// changed, Cancel nothing. A new name is not carried to the tables that know the class by name.
class FrmStockClass : public controls::Form {
public:
    FrmStockClass(common::Screen& screen, const StockState& state, std::int32_t classID, int tabNumber);

    controls::Panel shpBorder;
    controls::PictureBox picFormPic;
    controls::Label lbl_ClassName;
    controls::TextBox txt_ClassName;
    controls::Label lbl_Sex;
    controls::ComboBox cbo_Sex;
    controls::CheckBox chk_Individual;
    controls::CommandButton cmd_Okay;
    controls::CommandButton cmd_cancel;

private:
    // What the controls say of the class.
    struct Details {
        std::string name;
        int sex = -1; // entry of cbo_Sex
        bool individual = false;
    };
    Details Entered() const;
    void ReadClass();
    bool StoreClass();
    void txt_ClassName_KeyPress(int& keyAscii);
    void cmd_Okay_Click();

    std::int32_t classID_;
    Details read_; // as the class was when the dialog was shown
};

// Returns when the user has finished. tabNumber: the tab's place, from 1. Raises 3021 for a class that is
// not there.
void EditStockDetails(common::Screen& screen, const StockState& state, std::int32_t classID, int tabNumber);

} // namespace quillary::stock
