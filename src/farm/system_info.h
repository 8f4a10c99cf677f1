#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/form.h"
#include "platform/controls/label.h"

namespace quillary::farm {

// The dialog "System Information": the files that the settings name and the regional formats in force, as
// support staff ask for them.
class FrmSystemInfo : public controls::Form {
public:
    explicit FrmSystemInfo(common::Screen& screen);

    // 0 data, 1 map, 2 diary, 3 wage, 4 modules, 5 wizards, 6 internet, 7 import, 8 export file, 9 country
    // phone code, 10 language
    controls::LabelArray lbl_Quillary;
    // Today, and a number, in the regional formats.
    controls::Label lbl_short, lbl_now, lbl_long, lbl_currency, lbl_fixed;
    controls::Label lbl_country;
    controls::Label lbl_fmt; // order of the short date
    controls::CommandButton cmd_OK;

private:
    void Form_Load();
    void Form_KeyPress(int& keyAscii);
    void FillSystemInfo();

    common::Screen& screen_;
};

} // namespace quillary::farm
