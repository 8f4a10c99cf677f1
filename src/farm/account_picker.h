#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/form.h"
#include "platform/controls/label.h"
#include "platform/controls/lists.h"
#include "platform/controls/text_box.h"

#include <cstdint>
#include <string>
#include <vector>

namespace quillary::farm {

// The modal dialog in which one heading is picked. All headings are listed, whether the cashbook shows them
// or not. The caller sets SelectedCode, shows the dialog, and reads SelectedCode again: it is another one
// when the user has chosen one. Errors are reported under "frm_ListAccounts.control_Event".
class FrmListAccounts : public controls::Form {
public:
    explicit FrmListAccounts(common::Screen& screen);

    controls::Label lbl_Find;
    controls::TextBox
        txt_Find; // what is searched: the beginning of a name, a part of it, or a heading's number
    controls::ListBox lst_Accounts;
    controls::CommandButton cmd_Ok;
    controls::CommandButton cmd_cancel;

    std::int16_t SelectedCode = 0;

private:
    void Form_Activate();
    void cmd_Ok_Click();
    void txt_Find_KeyDown(int& keyCode, int shift);
    void lst_Accounts_KeyPress(int& keyAscii);
    void SearchFor(const std::string& text);
    // Selects the next entry (step 1) or the former one (-1) that holds what is searched.
    void Step(int step);
    const std::vector<std::string>& LowerNames();

    std::vector<std::int16_t> Codes;      // parallel to lst_Accounts
    std::vector<std::string> lowerNames_; // its entries in small letters, made at the first search
};

} // namespace quillary::farm
