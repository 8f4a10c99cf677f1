#pragma once

#include "common/page.h"
#include "farm/about_page.h"
#include "farm/enterprises_page.h"
#include "farm/farm_page.h"
#include "farm/headings_page.h"
#include "farm/planner_page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/data_control.h"
#include "platform/controls/form.h"
#include "platform/controls/label.h"
#include "platform/controls/menu.h"
#include "platform/controls/panel.h"
#include "platform/controls/tab_strip.h"
#include "shell/sibling_tools.h"
#include "stock/stock_page.h"
#include "tax/gst_page.h"
#include "tax/taxation_page.h"
#include "wages/wages_page.h"

#include <array>

namespace quillary::shell {

// The configuration screen: stacked pages behind a tab strip. There is no Save and no Cancel: leaving a page
// saves it, and closing the screen saves all of them, in the order of gFrames.
class FrmSetup : public controls::Form, public common::Screen {
public:
    FrmSetup();
    ~FrmSetup() override;

    controls::DataControl dat_FarmDetails;
    controls::DataControl dat_BgtStart;

    controls::Panel els_TitleBar;
    controls::Panel els_Buttons;
    controls::TitleButtonArray els_TitleButton; // 3 opens the help menu
    controls::Label lbl_firm;
    controls::Label lbl_catchPhrase;
    controls::MenuItem mnu_helpmain;
    controls::MenuItemArray mnu_help;
    controls::TabStrip tab_Setup;
    controls::PanelArray vse_frame; // one a frame number
    controls::CommandButton cmd_Okay;

    // Asks for what a new farm file needs, in a dialog over the screen, and shows what has been stored.
    void ShowSetupInformation();

    farm::FarmPage& Farm() { return farmPage_; }
    farm::HeadingsPage& Headings() { return headingsPage_; }
    farm::EnterprisesPage& Enterprises() { return enterprisesPage_; }
    tax::GstPage& GST() { return gstPage_; }
    farm::PlannerPage& Planner() { return plannerPage_; }
    tax::TaxationPage& Taxation() { return taxationPage_; }
    stock::StockPage& Stock() { return stockPage_; }
    wages::WagesPage& Wages() { return wagesPage_; }

    // common::Screen
    controls::Form& ScreenForm() override { return *this; }
    controls::DataControl& FarmDetails() override { return dat_FarmDetails; }
    controls::DataControl& BudgetStarts() override { return dat_BgtStart; }
    std::string CurrentTabName() override;
    bool LeaveCurrentPage() override;
    common::Page* PageOf(int frame) override;
    void Decorate(controls::Form& dialog) override;

private:
    void LoadGlobalVars();
    void Form_Load();
    void SetUpForm(bool firstLoad);
    void Form_Activate();
    void Form_KeyDown(int& keyCode, int shift);
    void Form_QueryUnload(bool& cancel);
    void Form_Unload();
    void tab_Setup_Switch(int oldTab, int& newTab, bool& cancel);
    void cmd_Okay_Click();
    void els_TitleButton_Click(int index);
    void mnu_Help_Click(int index);
    void HideByName(std::initializer_list<std::string_view> controls);

    farm::FarmPage farmPage_;
    farm::HeadingsPage headingsPage_;
    farm::EnterprisesPage enterprisesPage_;
    tax::GstPage gstPage_;
    farm::PlannerPage plannerPage_;
    tax::TaxationPage taxationPage_;
    stock::StockPage stockPage_;
    wages::WagesPage wagesPage_;
    farm::AboutPage aboutPage_;
    std::array<common::Page*, 11> pages_{}; // by frame number
    StockTagTool stockTagTool_;
};

} // namespace quillary::shell
