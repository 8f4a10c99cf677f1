#pragma once

#include "platform/controls/buttons.h"
#include "platform/controls/data_control.h"
#include "platform/controls/form.h"
#include "platform/controls/grid.h"
#include "platform/controls/label.h"
#include "platform/controls/lists.h"

#include <cstdint>
#include <string>

namespace quillary::farm {

// The secondary headings of the heading chosen in the list. Every change is written at once.
class SecondaryHeadingsForm : public controls::Form {
public:
    SecondaryHeadingsForm();

    controls::DataControl dat_Secondary;
    controls::Label lbl_Heading;
    controls::ComboBox cmb_Heading;
    controls::Grid tgrd_Secondary;
    controls::CommandButton cmd_Add;
    controls::CommandButton cmd_Delete;
    controls::CommandButton cmd_Okay;

    // Modal, with all headings to choose from, this one chosen.
    void OpenHeading(std::int32_t account);
    // Modal, with the headings that the cashbook shows, its default account chosen.
    void OpenCashbook();

private:
    void Open(const std::string& condition, std::int32_t account);
    void ShowRows();
    std::int32_t Account() const { return cmb_Heading.ItemData(cmb_Heading.ListIndex); }
    std::int32_t CurrentCode();
    bool IsOwnRow() { return CurrentCode() == Account() * 100; }
    std::string CurrentName();
    bool RowIsThere(); // no other program has deleted it
    void TellRowGone();
    void GoTo(std::int32_t code);
    void tgrd_Secondary_BeforeColUpdate(int colIndex, bool& cancel);
    void tgrd_Secondary_BeforeDelete(bool& cancel);
    void tgrd_Secondary_Error(int dataError, int& response);
    void dat_Secondary_Validate(bool save);
    void cmd_Add_Click();
    void cmd_Delete_Click();
};

} // namespace quillary::farm
