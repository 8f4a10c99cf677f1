#include "shell/frm_setup.h"

#include "common/error_report.h"
#include "common/farm_details.h"
#include "common/messages.h"
#include "config/globals.h"
#include "config/module_catalogue.h"
#include "config/profile_store.h"
#include "config/settings.h"
#include "farm/save_frame.h"
#include "farm/year_entry.h"
#include "firstrun/setup_information.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"
#include "platform/system/services.h"
#include "shell/decoration.h"
#include "shell/help_menu.h"
#include "shell/page_assembly.h"
#include "tax/gst_account.h"

#include <algorithm>
#include <vector>

namespace quillary::shell {

namespace {

constexpr int kScreenWidth = 13800; // twips
constexpr int kScreenHeight = 10200;
constexpr int kHelpButton = 3;
constexpr int kLastInTabOrder = 0x7FFF;
constexpr int kCatalogueNumber = 8; // this program's number in the catalogue's help contexts

// Frame numbers of the Setup table.
enum Frame {
    kFarm,
    kOlderHeadings,
    kEnterprises,
    kOlderGST,
    kPlanner,
    kTaxation,
    kStock,
    kAbout,
    kWages,
    kGST,
    kHeadings
};

} // namespace

FrmSetup::FrmSetup()
    : controls::Form("frm_setup"), dat_FarmDetails(*this, "dat_FarmDetails"),
      dat_BgtStart(*this, "dat_BgtStart"), els_TitleBar(*this, "els_TitleBar"),
      els_Buttons(*this, "els_Buttons"), els_TitleButton(*this, "els_TitleButton", {1, 2, 3, 4, 5, 6}),
      lbl_firm(*this, "lbl_firm"), lbl_catchPhrase(*this, "lbl_catchPhrase"),
      mnu_helpmain(*this, "mnu_helpmain"), mnu_help(*this, "mnu_help", {0}), tab_Setup(*this, "tab_Setup"),
      vse_frame(*this, "vse_frame", {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10}), cmd_Okay(*this, "cmd_Okay"),
      farmPage_(*this, vse_frame(kFarm)),
      headingsPage_(*this, vse_frame(kHeadings), vse_frame(kOlderHeadings)),
      enterprisesPage_(*this, vse_frame(kEnterprises)),
      gstPage_(*this, vse_frame(kGST), vse_frame(kOlderGST)), plannerPage_(*this, vse_frame(kPlanner)),
      taxationPage_(*this, vse_frame(kTaxation)), stockPage_(*this, vse_frame(kStock)),
      wagesPage_(*this, vse_frame(kWages)), aboutPage_(*this, vse_frame(kAbout)) {
    SetContainer(nullptr);
    pages_[kFarm] = &farmPage_;
    pages_[kOlderHeadings] = pages_[kHeadings] = &headingsPage_;
    pages_[kEnterprises] = &enterprisesPage_;
    pages_[kOlderGST] = pages_[kGST] = &gstPage_;
    pages_[kPlanner] = &plannerPage_;
    pages_[kTaxation] = &taxationPage_;
    pages_[kStock] = &stockPage_;
    pages_[kWages] = &wagesPage_;
    pages_[kAbout] = &aboutPage_;

    MainScreen = true;
    Width = kScreenWidth;
    Height = kScreenHeight;
    cmd_Okay.Caption = "Close";
    cmd_Okay.TabIndex = kLastInTabOrder; // at the foot of the screen, behind every page
    lbl_firm.UseMnemonic = lbl_catchPhrase.UseMnemonic = false; // "A & B" and "R&D" stand as they are
    mnu_helpmain.Caption = "&Help";
    mnu_help(0).SetParent(&mnu_helpmain);
    tab_Setup.Caption = "Farm|Headings|Enterprises|GST|Planner|Taxation|Stock|About";
    vse_frame.Each([](controls::Panel& panel, int) { panel.Visible = false; });
    els_TitleButton.Each([](controls::TitleButton& button, int index) {
        button.Visible = index == kHelpButton; // the others open nothing here
    });
    els_TitleButton(kHelpButton).Caption = "He&lp"; // H is the Headings tab

    Load = [this] { Form_Load(); };
    Activate = [this] { Form_Activate(); };
    KeyDown = [this](int& keyCode, int shift) { Form_KeyDown(keyCode, shift); };
    QueryUnload = [this](bool& cancel, int) { Form_QueryUnload(cancel); };
    Unload = [this](bool&) { Form_Unload(); };
    tab_Setup.Switch = [this](int oldTab, int& newTab, bool& cancel) {
        tab_Setup_Switch(oldTab, newTab, cancel);
    };
    cmd_Okay.Click = [this] { cmd_Okay_Click(); };
    els_TitleButton.On(&controls::TitleButton::Click, [this](int index) { els_TitleButton_Click(index); });
    mnu_help.On(&controls::MenuItem::Click, [this](int index) { mnu_Help_Click(index); });
    // The routines of other rooms, of which the pages know nothing.
    plannerPage_.cmd_ChangeGSTAcct.Click = [this] { tax::cmd_ChangeGSTAcct_Click(*this, plannerPage_); };
    stockPage_.cmd_AddBulk.Click = [this] { stockTagTool_.cmd_AddBulk_Click(*this); };

    LoadGlobalVars();
}

FrmSetup::~FrmSetup() = default;

void FrmSetup::LoadGlobalVars() {
    config::LoadGlobalVars([](const runtime::RunTimeError& error, std::string_view routine) {
        common::ReportError(error, routine);
    });
}

void FrmSetup::Form_Load() {
    try {
        MousePointer = controls::kPointerHourglass;
        config::gShellLaunch = runtime::UCase(config::gCommandTail) == "/TRUE";
        PlaceForm(*this);

        config::gDatabase = config::DbEngine().OpenDatabase(config::GetDataFileName());
        Caption = config::GetFirm() + " Configuration";
        els_TitleBar.Caption = Caption.Get();
        LoadCustomSkin(*this);
        stockPage_.cmd_DeleteStock.Visible = true;
        config::gUnsortedStock = config::GetUnsortedStock();
        SetUpForm(true);

        if (!config::HasMapAndArea())
            HideByName({"lbl_bgtseason", "css_bgtseason", "txt_season", "lbl_bgtstart", "txt_BudgetYear",
                        "DatePicker_BudgetYear", "lbl_area", "txt_area", "lbl_enterprises",
                        "lst_enterprise"});
        stockPage_.chk_StockSort.Value = config::gUnsortedStock ? controls::kChecked : controls::kUnchecked;

        auto& db = *config::gDatabase;
        const runtime::Variant financialYear = dat_FarmDetails.FieldOrNull("Financial Year");
        farmPage_.ShowFinancialYear(
            runtime::IsDate(financialYear) ? financialYear : runtime::Variant(common::GetFinancialYear(db)));
        plannerPage_.txt_season.Text = std::to_string(common::GetSeasonYear(db));
        plannerPage_.txt_BudgetYear.Text = common::GetBudgetYear(db);
        plannerPage_.DatePicker_BudgetYear.Value = plannerPage_.txt_BudgetYear.Text.Get();
        const runtime::Variant overdraftRate = dat_FarmDetails.FieldOrNull("OD Interest Rate");
        plannerPage_.txt_odinterestrate.Text =
            runtime::IsNumeric(overdraftRate) ? runtime::CStr(overdraftRate) : "0";
        farmPage_.FillUnits();

        GetHeadingColour("QYHeader");
        const auto& colour = config::gHeadingColour;
        lbl_firm.Caption = config::GetFirm();
        lbl_catchPhrase.Caption = config::GetCatchPhrase();
        // Shares beyond a byte count as the nearest that a screen has.
        const auto share = [](std::int32_t value) { return std::clamp(value, 0, 255); };
        lbl_firm.ForeColor = lbl_catchPhrase.ForeColor =
            share(colour.red) + 256 * share(colour.green) + 65536 * share(colour.blue);

        if (!config::gFrames.empty())
            ChangeZOrder(0, *this, 0);
        MousePointer = controls::kPointerDefault;
    } catch (const runtime::RunTimeError&) {
        MousePointer = controls::kPointerDefault;
        throw;
    }
}

void FrmSetup::ShowSetupInformation() {
    // What was typed on the page below is stored first: the dialog shows it, and it is not typed in vain.
    common::IgnoreErrors([&] { dat_FarmDetails.UpdateRecord(); });
    firstrun::FrmUnits(*this).ShowModal();
    common::Trap("frm_setup.ShowSetupInformation", [&] {
        if (!config::gDatabase)
            return; // the program was ended while the dialog was open
        dat_FarmDetails.Refresh();
        ShowFarmUnit(*this, *config::gDatabase);
    });
}

void FrmSetup::SetUpForm(bool firstLoad) {
    config::gHeadingsLoaded = config::gEnterprisesLoaded = config::gDeductionsLoaded =
        config::gContributionsLoaded = config::gGSTLoaded = false;
    const int pointer = MousePointer;
    MousePointer = controls::kPointerHourglass;
    LoadMenus(mnu_help, mnu_helpmain, firstLoad);
    KeyPreview = true;
    plannerPage_.SetSeasonRange(config::gSeasonMax, config::gSeasonMin);
    gSetupSetup(*this);
    MousePointer = pointer;
}

void FrmSetup::Form_Activate() {
    common::Trap("frm_setup.Form_Activate", [&] {
        plannerPage_.Refresh(config::GetValueAddedTax());
        wagesPage_.Refresh();

        const config::ModuleCatalogue catalogue;
        config::gFormContextID = catalogue.FormContext(kCatalogueNumber);
        config::gHowDoIContextID = catalogue.HowDoIContext(kCatalogueNumber);
        if (config::gHowDoIContextID == 0)
            config::gHowDoIContextID = runtime::CLng(runtime::Val(config::GetHelpContext("SetupHowDoI")));
        config::gApplicationHelpFile = config::gHelpFile;
        HelpContextID = config::gFormContextID;
    });
}

void FrmSetup::Form_KeyDown(int& keyCode, int shift) {
    if (keyCode == controls::kKeyF1 && shift == 0) {
        common::Trap("frm_setup.Form_KeyDown", [&] { ShowFormHelp(*this); });
        return;
    }
    SelectTabByKey(keyCode, shift, *this);
}

void FrmSetup::tab_Setup_Switch(int oldTab, int& newTab, bool& cancel) {
    const bool ok = farm::SaveFrame(*this, oldTab, false);
    cancel = !ok;
    if (!ok) {
        newTab = oldTab;
        return;
    }
    // Meant: the tab already shown does not switch, but its page is set up and brought forward anew.
    if (newTab == oldTab || newTab < 0)
        cancel = true;
    if (newTab >= 0)
        ChangeZOrder(newTab, *this, oldTab);
}

void FrmSetup::Form_QueryUnload(bool& cancel) {
    const auto attempt = [&cancel](const auto& step) {
        try {
            step();
        } catch (const runtime::RunTimeError& error) {
            common::ShowErrorBox(error, "frm_Setup.Query_Unload");
            cancel = true;
        }
    };
    attempt([&] {
        for (int i = 0; i < static_cast<int>(config::gFrames.size()) && !cancel; ++i)
            cancel = !farm::SaveFrame(*this, i, true);
    });
    // Refused or not.
    if (config::gHelpOpen)
        attempt([] { system::TheServices().helpViewer->CloseAll(); });
}

void FrmSetup::Form_Unload() {
    try {
        // Whatever pages the edition has.
        if ((config::gModuleID & 2) != 0)
            wagesPage_.SaveSelections();
        wagesPage_.ReleaseSelectionArrays();
        dat_FarmDetails.Close(controls::kActionUnload);
        if (config::gDatabase) {
            config::gDatabase->Flush();
            config::gDatabase->Close();
            config::gDatabase.reset();
        }
        stockTagTool_.Close();
        for (controls::Form* form : std::vector<controls::Form*>(controls::Forms()))
            if (form != this)
                common::IgnoreErrors([&] { form->UnloadForm(); });
    } catch (const runtime::RunTimeError& error) {
        if (error.Number() == farm::kErrPageRefused)
            common::ReportError({error.Number(), error.Source(), "Description - " + error.Description()},
                                "Unload Frm_Setup");
        else
            common::ShowErrorBox(error, "frm_Setup.Form_Unload");
    }
}

void FrmSetup::cmd_Okay_Click() {
    try {
        UnloadForm();
    } catch (const runtime::RunTimeError& error) {
        common::ShowErrorBox(error, "frm_Setup.cmd_okay_Click");
    }
}

void FrmSetup::els_TitleButton_Click(int index) {
    common::Trap("frm_setup.els_TitleButton_Click", [&] { ShowHelpMenuPopup(index, *this); });
}

void FrmSetup::mnu_Help_Click(int index) {
    common::Trap("frm_setup.mnu_Help_Click", [&] { HelpMenu(mnu_help(index).Caption.Get(), *this); });
}

std::string FrmSetup::CurrentTabName() {
    const auto tab = static_cast<std::size_t>(tab_Setup.CurrTab.Get());
    return std::string(runtime::RTrim(config::gFrames.at(tab).Name));
}

bool FrmSetup::LeaveCurrentPage() {
    return farm::SaveFrame(*this, tab_Setup.CurrTab, false);
}

common::Page* FrmSetup::PageOf(int frame) {
    return frame >= 0 && frame < static_cast<int>(pages_.size()) ? pages_[static_cast<std::size_t>(frame)]
                                                                 : nullptr;
}

void FrmSetup::Decorate(controls::Form& dialog) {
    LoadCustomSkin(dialog);
    PlaceForm(dialog);
}

void FrmSetup::HideByName(std::initializer_list<std::string_view> controls) {
    for (const std::string_view name : controls)
        if (auto* control = Find(name))
            control->Visible = false;
}

} // namespace quillary::shell
