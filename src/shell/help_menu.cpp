#include "shell/help_menu.h"

#include "common/error_report.h"
#include "common/messages.h"
#include "config/globals.h"
#include "config/module_catalogue.h"
#include "config/profile_store.h"
#include "config/settings.h"
#include "platform/runtime/locale.h"
#include "platform/system/paths.h"
#include "platform/system/services.h"

#include <optional>

namespace quillary::shell {

namespace {

constexpr int kHelpButton = 3;
constexpr const char* kHelpGroup = "Help";

std::string RightTrimmed(const std::string& text) {
    return std::string(runtime::RTrim(text));
}

} // namespace

void LoadMenus(controls::MenuItemArray& mnu_help, controls::MenuItem& mnu_helpmain, bool /*firstLoad*/) {
    std::optional<config::ModuleCatalogue> catalogue;
    if (!common::Trap("LoadMenus", [&] { catalogue.emplace(); }))
        return; // without a catalogue every further step would fail alike
    std::vector<config::MenuEntry> entries;
    common::Trap("LoadMenus", [&] { entries = catalogue->MenuEntries(); });
    int index = 0;
    for (const config::MenuEntry& entry : entries) {
        if (entry.group != kHelpGroup)
            continue;
        common::Trap("LoadMenus", [&] {
            auto& item = mnu_help.Load(index);
            item.SetParent(&mnu_helpmain);
            if (index > 0) // meant: the first element stays as it was drawn
                item.Visible = entry.visible;
            if (entry.helpType == config::kHelpAtFormContext)
                config::gHelpFile = system::Join(config::GetProgramDirectory(), RightTrimmed(entry.fileName));
            item.Caption = RightTrimmed(entry.caption);
        });
        ++index;
    }
    common::Trap("LoadMenus", [&] { config::gProgramPath = catalogue->ProgramPath(); });
}

void FindHelpEntry(std::string_view caption, std::string& fileName, std::int32_t& helpType) {
    fileName.clear();
    helpType = 0;
    const config::ModuleCatalogue catalogue;
    config::MenuEntry entry;
    if (catalogue.FindEntryByCaption(caption, entry)) {
        fileName = RightTrimmed(entry.fileName);
        helpType = entry.helpType;
    }
}

void HelpMenu(std::string_view caption, controls::Form& form) {
    config::gCurrentAction = "SetUpFormRs - HelpMenu";
    try {
        std::string fileName;
        std::int32_t helpType = 0;
        FindHelpEntry(caption, fileName, helpType);
        if (fileName.empty()) {
            config::gHelpOpen = false;
            common::ShowSystemMessage("Didn't find the helpfile name for " + std::string(caption));
            return;
        }
        config::gHelpOpen = true;
        const std::string path = system::Join(config::GetHelpDirectory(), fileName);
        auto& viewer = *system::TheServices().helpViewer;
        if (helpType != config::kHelpAtFormContext && helpType != config::kHelpAtHowDoI) {
            viewer.Show(path, system::kHelpDisplayTopic, 0, form.Name());
            return;
        }
        config::gApplicationHelpFile = path;
        form.HelpContextID =
            helpType == config::kHelpAtFormContext ? config::gFormContextID : config::gHowDoIContextID;
        viewer.Show(config::gApplicationHelpFile, system::kHelpContext, form.HelpContextID, form.Name());
        controls::DoEvents();
    } catch (const runtime::RunTimeError& error) {
        throw runtime::RunTimeError(error.Number(), error.Source(),
                                    config::gCurrentAction + "\r\n" + error.Description());
    }
}

void ShowHelpMenuPopup(int button, controls::Form& form) {
    if (button != kHelpButton)
        return;
    if (auto* menu = dynamic_cast<controls::MenuItem*>(form.Find("mnu_helpmain")))
        menu->PopUp();
}

void ShowFormHelp(controls::Form& form) {
    if (config::gApplicationHelpFile.empty())
        return;
    config::gHelpOpen = true;
    system::TheServices().helpViewer->Show(config::gApplicationHelpFile, system::kHelpContext,
                                           form.HelpContextID, form.Name());
}

} // namespace quillary::shell
