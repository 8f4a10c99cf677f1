#include "farm/about_page.h"

#include "common/error_report.h"
#include "common/farm_details.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "config/settings.h"
#include "config/suite_files.h"
#include "farm/system_info.h"
#include "platform/runtime/format.h"
#include "platform/system/paths.h"
#include "platform/system/program_version.h"
#include "platform/system/services.h"

namespace quillary::farm {

namespace {

constexpr int kInformation = 0, kVerifyFiles = 1;
constexpr double kBytesOfKilobyte = 1024;

std::string Share(std::uint64_t part, std::uint64_t whole) {
    const double share = whole == 0 ? 0 : static_cast<double>(part) / static_cast<double>(whole);
    return runtime::Format(share, "#0.00%");
}

} // namespace

AboutPage::AboutPage(common::Screen& screen, controls::Panel& panel)
    : Page(screen, panel, "about_page"), lbl_versionnumber(screen.ScreenForm(), "lbl_versionnumber"),
      lbl_EXEdate(screen.ScreenForm(), "lbl_EXEdate"),
      lbl_dataversion(screen.ScreenForm(), "lbl_dataversion"),
      txt_FreeMemory(screen.ScreenForm(), "txt_FreeMemory"), txt_FreeGDI(screen.ScreenForm(), "txt_FreeGDI"),
      txt_FreeSystem(screen.ScreenForm(), "txt_FreeSystem"),
      txt_FreeUser(screen.ScreenForm(), "txt_FreeUser"), cscmd1(screen.ScreenForm(), "cscmd1", {0, 1}) {
    cscmd1(kInformation).Caption = "&Information";
    cscmd1(kVerifyFiles).Caption = "&Verify Files";
    for (controls::TextBox* figure : {&txt_FreeMemory, &txt_FreeGDI, &txt_FreeSystem, &txt_FreeUser})
        figure->Locked = true; // figures to read and to copy
    lbl_dataversion.UseMnemonic = false;
    cscmd1.On(&controls::CommandButton::Click, [this](int index) { cscmd1_Click(index); });
}

void AboutPage::SetUp(int& /*frame*/) {
    LoadAboutPage();
}

void AboutPage::FocusFirst(int /*frame*/) {
    cscmd1(kVerifyFiles).SetFocus();
}

void AboutPage::LoadAboutPage() {
    auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
    const system::MemoryFigures memory = system::TheServices().memory->Read();
    txt_FreeMemory.Text =
        runtime::Format(static_cast<double>(memory.availablePhysical) / kBytesOfKilobyte, "###,###,##0");
    txt_FreeGDI.Text = Share(memory.availablePageFile, memory.totalPageFile);
    // Meant: the memory in use, under a caption that says free.
    txt_FreeSystem.Text = runtime::Format(memory.load / 100.0, "#0.00%");
    txt_FreeUser.Text = Share(memory.availableVirtual, memory.totalVirtual);
    lbl_versionnumber.Caption = std::string(system::kProgramVersionText);
    const auto date =
        system::FileDate(system::Join(config::GetProgramDirectory(), config::files::kMainProgram));
    lbl_EXEdate.Caption = date ? runtime::Format(*date, "short date") : std::string();
    lbl_dataversion.Caption = common::GetVersion(*db);
    // The firm's name and its phrase stand at the head of the screen.
    const auto showAtHead = [&](const char* name, const std::string& text) {
        if (auto* label = dynamic_cast<controls::Label*>(screen_.ScreenForm().Find(name)))
            label->Caption = text;
    };
    showAtHead("lbl_catchPhrase", config::GetCatchPhrase());
    showAtHead("lbl_firm", config::GetFirm());
    db->Close();
}

void AboutPage::cscmd1_Click(int index) {
    common::Trap("frm_setup.cscmd1_Click", [&] {
        if (index == kInformation)
            FrmSystemInfo(screen_).ShowModal();
        else if (index == kVerifyFiles)
            system::TheServices().processes->Launch(
                config::GetProgramDirectory() + "/" + std::string(config::files::kVerifyTool), "/QYStarted");
    });
}

} // namespace quillary::farm
