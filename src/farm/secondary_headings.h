#pragma once

#include "platform/controls/data_control.h"

#include <cstdint>

// Secondary headings divide a heading. Each has a number below its heading's, the heading's own row has
// Main Code ID * 100, and a ready-made long name, "Cached Name", that other lists of the suite read.
namespace quillary::farm {

// Writes the row in the grid, then brings the cached names of all secondary headings, and the tax numbers of
// the headings' own rows, in step with the headings. The saved query that does it is made or rewritten each
// time. The errors of the engine.
void UpdateSecondaryHeadings(controls::DataControl& dat_Codes);

// Stands in for the suite's editor of secondary headings: a dialog over those of one heading at a time, where
// they are added, renamed and deleted.
class SecondaryHeadingsEditor {
public:
    // account: an Account Code.
    void SetAccount(std::int32_t account) { account_ = account; }
    // Shows the editor for the headings of the cashbook, and returns when it has closed.
    void OpenCashbookHeadings();
    // Shows the editor for the account, and returns when it has closed. shellLaunch: the suite's main window
    // has started the program; the editor stands before the screen either way.
    void Show(bool shellLaunch);

private:
    std::int32_t account_ = 0;
};

} // namespace quillary::farm
