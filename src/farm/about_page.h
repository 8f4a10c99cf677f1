#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/label.h"
#include "platform/controls/text_box.h"

namespace quillary::farm {

// What the program is: its version and date, the data's version, the machine's memory; the report for
// support staff and the start of the suite's file check.
class AboutPage : public common::Page {
public:
    AboutPage(common::Screen& screen, controls::Panel& panel);

    controls::Label lbl_versionnumber, lbl_EXEdate, lbl_dataversion;
    controls::TextBox txt_FreeMemory; // kilobytes
    controls::TextBox txt_FreeGDI;    // despite its name the share of the page file that is free
    controls::TextBox txt_FreeSystem; // despite its caption the share of the memory in use
    controls::TextBox txt_FreeUser;
    controls::CommandButtonArray cscmd1; // 0 information, 1 verify files

    void SetUp(int& frame) override;
    void FocusFirst(int frame) override;

private:
    void LoadAboutPage();
    void cscmd1_Click(int index);
};

} // namespace quillary::farm
