#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/data_control.h"
#include "platform/controls/grid.h"
#include "platform/controls/panel.h"

namespace quillary::wages {

// The rates of the tax on the employer's superannuation contribution, by wage or salary level.
class Esct {
public:
    Esct(common::Screen& screen, controls::Panel& panel);

    controls::DataControl dat_ESCT;
    controls::Grid tgrd_ESCT;
    controls::CommandButton LvBAddESCT;
    controls::CommandButton LvBDeleteESCT;

    // Opens the table. The errors of the database.
    void SetUp();

private:
    void LvBAddESCT_Click();
    void LvBDeleteESCT_Click();
};

} // namespace quillary::wages
