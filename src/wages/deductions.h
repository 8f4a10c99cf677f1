#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/data_control.h"
#include "platform/controls/grid.h"
#include "platform/controls/panel.h"

#include <cstdint>
#include <functional>

namespace quillary::wages {

// Tax rates, deductions and contributions, each a grid on a table of the wage database: the rows of all
// countries and those of the user's own. Rows that belong to a country are not the user's to delete.
class Deductions {
public:
    // Each kind's controls lie in a panel of their own.
    Deductions(common::Screen& screen, controls::Panel& rates, controls::Panel& deductions,
               controls::Panel& contributions);

    controls::DataControl dat_taxrates;
    controls::Grid tgrd_taxrates;
    controls::CommandButtonArray cmd_Rate; // add, delete, edit the steps
    controls::DataControl dat_deductions;
    controls::Grid tgrd_deductions;
    controls::CommandButton cmd_AddDeduction;
    controls::CommandButton cmd_DelDeduction;
    controls::DataControl dat_Contributions;
    controls::Grid tgrd_Contributions;
    controls::CommandButton cmd_AddContribution;
    controls::CommandButton cmd_DelContribution;

    // The errors of the database.
    void OpenDeductions();
    void OpenTaxRates();
    void OpenContributions();
    // A tab of the grids has been brought forward: what its grid still holds is written.
    void TabShown(int tab);

    // Set by the page: sets up what could not be opened before (the errors of the database), and opens the
    // steps of the current rate.
    std::function<void()> SetUpAgain;
    std::function<void()> ShowTaxSteps;

private:
    void AddTaxRate();
    void AddDeduct();
    void AddContribution();
    void TaxRateCommands(int index);
    static bool bNotCountryRate(std::int32_t taxTypeID);
    bool IsOpen(const controls::DataControl& data) const;
    void DeleteUnlessStatutory(controls::DataControl& data, const char* nameField, const char* noun,
                               const char* routine);
    void tgrd_deductions_BeforeColUpdate(int col, bool& cancel);
    void tgrd_taxrates_BeforeColUpdate(bool& cancel);
};

} // namespace quillary::wages
