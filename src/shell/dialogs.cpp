#include "shell/dialogs.h"

#include "farm/account_picker.h"
#include "farm/system_info.h"
#include "platform/runtime/locale.h"
#include "shell/frm_setup.h"
#include "tax/rebates.h"

#include <vector>

namespace quillary::shell {

namespace {

struct Dialog {
    std::string_view name;
    void (*show)(FrmSetup& screen); // makes the form and shows it modally
};

// The dialogs of the pages, each with its page.
const std::vector<Dialog>& Dialogs() {
    static const std::vector<Dialog> dialogs = {
        {"frm_Rebates", [](FrmSetup& screen) { tax::ShowRebates(screen); }},
        {"frm_addStock", [](FrmSetup& screen) { screen.Stock().AddStock(); }},
        {"frm_StockClass", [](FrmSetup& screen) { screen.Stock().EditStock(); }},
        {"frm_StockNumbers", [](FrmSetup& screen) { screen.Stock().ShowNumbers(); }},
        {"frm_chooseMob", [](FrmSetup& screen) { screen.Stock().DeleteStock(); }},
        {"frm_ListAccounts", [](FrmSetup& screen) { farm::FrmListAccounts(screen).ShowModal(); }},
        {"frm_Units", [](FrmSetup& screen) { screen.ShowSetupInformation(); }},
        {"frm_systeminfo", [](FrmSetup& screen) { farm::FrmSystemInfo(screen).ShowModal(); }},
    };
    return dialogs;
}

// The screen that the dialogs stand over; nullptr while the program does not run.
FrmSetup* Screen() {
    for (controls::Form* form : controls::Forms())
        if (auto* screen = dynamic_cast<FrmSetup*>(form))
            return screen;
    return nullptr;
}

} // namespace

bool OpenDialog(std::string_view name) {
    for (const Dialog& dialog : Dialogs()) {
        if (runtime::EqualName(dialog.name, name)) {
            if (FrmSetup* screen = Screen())
                dialog.show(*screen);
            return true;
        }
    }
    return false;
}

} // namespace quillary::shell
