#include "shell/program_start.h"

#include "common/error_report.h"
#include "common/farm_details.h"
#include "common/messages.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "firstrun/setup_information.h"
#include "platform/controls/data_control.h"
#include "platform/controls/form_host.h"
#include "shell/frm_setup.h"

#include <algorithm>
#include <memory>

namespace quillary::shell {

namespace {

std::unique_ptr<FrmSetup> frm_setup; // the one screen

// The database holds a table "TaxTypes", written exactly so.
bool getGSTTrans(database::Database& db) {
    bool found = false;
    common::Trap("getGSTTrans", [&] {
        const auto& tables = db.TableDefs();
        found = std::any_of(tables.begin(), tables.end(),
                            [](const database::TableDef& table) { return table.name == "TaxTypes"; });
    });
    return found;
}

void ShowSeasonMissing() {
    common::Message message("Please add a season in the Map module first", "Map Setup Required");
    message.subHeading = "";
    message.icon = common::kIconNotice;
    common::ShowMessage(message);
}

} // namespace

void SubMain(const std::string& commandTail) {
    config::ResetGlobals();
    config::gCommandTail = commandTail;
    controls::DataControl::SetEngine([]() -> database::Engine& { return config::DbEngine(); });
    controls::SetControlMessage([](const std::string& text) { common::ShowSystemMessage(text); });

    auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
    config::gHasTaxTypes = getGSTTrans(*db);
    const int season = common::GetSeasonYear(*db);
    db->Close();
    db.reset();

    if (season == 0) {
        ShowSeasonMissing();
        return;
    }
    frm_setup = std::make_unique<FrmSetup>();
    frm_setup->Show();
    if (firstrun::IsNewFarmFile())
        frm_setup->ShowSetupInformation();
}

void EndProgram() {
    frm_setup.reset();
    config::ResetGlobals();
}

} // namespace quillary::shell
