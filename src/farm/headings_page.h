#pragma once

#include "common/page.h"
#include "farm/heading_search.h"
#include "platform/controls/buttons.h"
#include "platform/controls/data_control.h"
#include "platform/controls/grid.h"

#include <optional>
#include <string>
#include <string_view>

namespace quillary::farm {

// The chart of accounts: the grid of databases with tax types, and the older one of databases without. One
// data control feeds both; which one the user sees follows from the page's frame number.
class HeadingsPage : public common::Page {
public:
    // panel: of the newer grid; olderPanel: of the older one.
    HeadingsPage(common::Screen& screen, controls::Panel& panel, controls::Panel& olderPanel);

    controls::DataControl dat_Codes;
    HeadingSearch search;
    controls::Grid tgrd_codes2;
    controls::CheckBox chkDetails; // all headings with all columns; else those of the cashbook
    controls::CommandButton cmd_secheads;
    controls::CommandButton cmdCashBK;
    controls::Grid tgrd_Codes;

    // The grid that belongs to the open database.
    controls::Grid& GridInUse();
    // Shows the tax column under its caption, or hides it.
    void ShowTaxColumn(bool visible, std::string_view caption);
    // The columns that an edition shows. A column that the older grid lacks is passed over.
    void ShowEditionColumns(bool farmEdition);

    void SetUp(int& frame) override;
    common::SaveResult Save(common::SaveContext& context) override;
    void FocusFirst(int frame) override;

private:
    // What the event routines of the two grids have of their own.
    struct GridRules {
        std::string routines;     // "frm_setup.tgrd_Codes"
        std::string blankHeading; // large line of the message that refuses a blank name
    };

    void PlaceControls(int frame);
    void AttachGrid(controls::Grid& grid, GridRules rules);
    void LoadHeadingsPage();
    void SetHeadingCaptions();
    void SetHeadingColumns(controls::Grid& grid);
    void RefreshHeadings();
    std::string StoredText(std::string_view field);
    bool IsDefaultCashbook();

    void BeforeColUpdate(controls::Grid& grid, const GridRules& rules, int colIndex, bool& cancel);
    void CheckName(controls::Grid& grid, const GridRules& rules, bool& cancel);
    void CheckPlannerTab(controls::Grid& grid, bool& cancel);
    void CheckCashbookUse(controls::Grid& grid, bool& cancel);
    void checkvalid(controls::Grid& grid, int colIndex);
    void GridKeyPress(controls::Grid& grid, int keyAscii);
    void GridError(controls::Grid& grid, int dataError, int& response);
    void TellTooLong(controls::Grid& grid); // each cell, and gives it its stored text back
    void TellHeadingGone();                 // the current one; and shows the list anew
    void tgrd_Codes_AfterUpdate();
    void tgrd_Codes_LostFocus();
    void chkDetails_Click();
    void cmd_secheads_Click();
    void cmdCashBK_Click();

    controls::Panel& panel_;
    controls::Panel& olderPanel_;
    bool placed_ = false;   // the controls beside the grids lie on the page that is shown
    bool mKeySent_ = false; // the drop-down of a yes/no column was opened since the last accepted cell
    std::optional<bool> hidesLocked_; // what the columns show; none before the first showing
    int nameWidened_ = 0;             // what the name column's width differs by from its own, in twips
};

} // namespace quillary::farm
