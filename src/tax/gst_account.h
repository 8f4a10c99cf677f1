#pragma once

#include "common/page.h"
#include "farm/planner_page.h"

namespace quillary::tax {

// The button on the Planner page that changes the heading for the budget's tax: the user picks another one,
// and the budget lines of the old heading, of all seasons, are deleted at once; nothing is moved to the new
// one. Choosing a heading, even in vain, switches the budget's tax on. Errors are reported under
// "frm_setup.cmd_ChangeGSTAcct_Click".
void cmd_ChangeGSTAcct_Click(common::Screen& screen, farm::PlannerPage& planner);

} // namespace quillary::tax
