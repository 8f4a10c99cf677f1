#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/date_picker.h"
#include "platform/controls/label.h"
#include "platform/controls/text_box.h"
#include "platform/controls/up_down.h"

#include <string>

namespace quillary::farm {

// What the suite's budgets need: season and start of the budget year, overdraft rate and limit, opening
// balance, and whether tax is calculated in the budget and under which heading.
class PlannerPage : public common::Page {
public:
    PlannerPage(common::Screen& screen, controls::Panel& panel);

    controls::Label lbl_bgtseason;
    controls::TextBox txt_season;
    controls::UpDown css_bgtseason;
    controls::Label lbl_bgtstart;
    controls::TextBox txt_BudgetYear;
    controls::DatePicker DatePicker_BudgetYear;
    controls::TextBox txt_odinterestrate;
    controls::TextBox txt_ODLimit;
    controls::Label lbl_OpBalance;
    controls::TextBox txt_OpBalance;
    controls::Panel vse_PlannerGST; // shown only where the country has the tax
    controls::Label lbl_plannerGSt;
    controls::CheckBox chk_PlannerGST;
    controls::Label lbl_GSTHeading;
    controls::TextBox txt_GSTAccount;
    controls::Label lbl_AccountName;
    controls::CommandButton cmd_ChangeGSTAcct;

    // The limits of the season: the stored one, widened to the first and the last crop layer of the map.
    void SetSeasonRange(std::int16_t& seasonMax, std::int16_t& seasonMin);
    // Stores txt_season at once. Errors are reported under "frm_setup.saveseason".
    void saveseason();
    // Shows the panel of the tax, in its words, or hides it.
    void ShowTaxPanel(bool valueAddedTax);
    // Fills lbl_AccountName with the name of the heading for the budget's tax. Errors are reported under
    // "ShowBudgetGstHeading", and the name stays as it was.
    void ShowBudgetGstHeading();
    // What the screen does for the page whenever it comes to the front.
    void Refresh(bool valueAddedTax);

    common::SaveResult Save(common::SaveContext& context) override;
    void FocusFirst(int frame) override;

private:
    void txt_season_Validate();
    void css_bgtseason_Change();
    void AcceptBudgetYear(const char* routine);
    void txt_odinterestrate_Validate(bool& cancel);
    void txt_ODLimit_Validate();
    void txt_OpBalance_Validate();
    void chk_PlannerGST_Click();
    void MoveOnEnter(const char* routine, int& keyAscii, controls::Control& next);

    std::string keptSeason_; // text of txt_season when the focus came
};

} // namespace quillary::farm
