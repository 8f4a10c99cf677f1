#include "config/globals.h"

#include "config/module_catalogue.h"
#include "platform/database/engine.h"
#include "platform/system/paths.h"

namespace quillary::config {

database::Engine& DbEngine() {
    static const std::unique_ptr<database::Engine> engine = [] {
        auto made = database::CreateSqliteEngine();
        made->SetPathResolver(system::ToNative);
        return made;
    }();
    return *engine;
}

void ReadmenuOptions() {
    try {
        const ModuleCatalogue catalogue;
        gModuleID = catalogue.ModuleNumber();
        if (gModuleID == kBusinessEdition || gModuleID == kFarmEdition)
            gModuleKey = catalogue.ModuleKey();
        else if (gModuleID == kClubEdition)
            gModuleKey = "CB_WAGE_PAY"; // meant: the catalogue is not asked
        else if (gModuleID == kDiaryEdition)
            gModuleKey = "DIARY";
    } catch (const runtime::RunTimeError& error) {
        throw runtime::RunTimeError(error.Number(), error.Source(),
                                    "qyLoadGlobals - ReadmenuOptions\r\n" + error.Description());
    }
}

void LoadGlobalVars(const ErrorReporter& report) {
    try {
        ReadmenuOptions();
    } catch (const runtime::RunTimeError& error) {
        report(error, "frm_setup.LoadGlobalVars");
    }
}

} // namespace quillary::config
