#include "tax/gst_account.h"

#include "common/error_report.h"
#include "common/restore_points.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "farm/account_picker.h"
#include "platform/database/engine.h"
#include "platform/runtime/conversions.h"

namespace quillary::tax {

void cmd_ChangeGSTAcct_Click(common::Screen& screen, farm::PlannerPage& planner) {
    common::Trap("frm_setup.cmd_ChangeGSTAcct_Click", [&] {
        const std::int16_t oldAccount = runtime::CInt(runtime::Val(planner.txt_GSTAccount.Text.Get()));
        if (planner.chk_PlannerGST.Value == controls::kUnchecked)
            planner.chk_PlannerGST.Value = controls::kChecked;

        std::int16_t newAccount = oldAccount;
        {
            farm::FrmListAccounts picker(screen);
            picker.SelectedCode = oldAccount;
            picker.ShowModal();
            newAccount = picker.SelectedCode;
        }
        if (newAccount == oldAccount)
            return;

        // Meant: an error from here on leaves the hourglass, and the new number in the box.
        screen.ScreenForm().MousePointer = controls::kPointerHourglass;
        planner.txt_GSTAccount.Text = std::to_string(newAccount);
        planner.ShowBudgetGstHeading();
        common::MakeRestorePoint("Changing the tax heading of the budget", {config::GetDataFileName()});
        config::gDatabase->Execute("DELETE DISTINCTROW [Budget Details].[Account Code]  "
                                   "FROM [Budget Details]  "
                                   "WHERE (([Budget Details].[Account Code]=" +
                                   std::to_string(oldAccount) + "));");
        config::gDatabase->Flush();
        screen.ScreenForm().MousePointer = controls::kPointerDefault;
    });
}

} // namespace quillary::tax
