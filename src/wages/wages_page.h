#pragma once

#include "common/page.h"
#include "platform/controls/panel.h"
#include "platform/controls/tab_strip.h"
#include "wages/deductions.h"
#include "wages/esct.h"
#include "wages/master_lists.h"
#include "wages/occupations.h"

namespace quillary::wages {

// The wage tables, each on a tab of its own.
class WagesPage : public common::Page {
public:
    WagesPage(common::Screen& screen, controls::Panel& panel);

    controls::TabStrip tab_wage;
    controls::Panel vse_TaxDeductions;
    controls::Panel vse_Occupations;
    controls::TabStrip tab_deductions;
    controls::Panel vse_TaxRates;
    controls::Panel vse_Deductions;
    controls::Panel vse_Contributions;
    controls::Panel vse_ESCT;

    // Opens the tables, once. The errors of the database; what failed is tried again at the next showing.
    void SetUp(int& frame) override;
    // What the screen does for the page whenever it comes to the front: an occupation is selected.
    void Refresh() { occupations_.SelectFirst(); }
    // The program is left.
    void SaveSelections() { occupations_.SaveSelections(); }
    void ReleaseSelectionArrays() { occupations_.Lists().ReleaseSelectionArrays(); }

private:
    // Both of the next two, whatever becomes of the first; what failed first is raised.
    void SetUpTables();
    void SetUpDeductionPage();
    void SetUpContributionPage();
    void tab_wage_Switch(int newTab);

    Deductions deductions_;
    Esct esct_;
    Occupations occupations_;
    MasterLists masterLists_;
};

} // namespace quillary::wages
