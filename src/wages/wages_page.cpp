#include "wages/wages_page.h"

#include "common/error_report.h"
#include "common/table_editor.h"
#include "config/globals.h"
#include "platform/runtime/run_time_error.h"
#include "wages/tax_steps.h"

#include <optional>

namespace quillary::wages {

namespace {

constexpr int kOccupationsTab = 1;
constexpr int kEsctTab = 3;

// The form with the panel as the place of the controls that are made next.
controls::Form& In(common::Screen& screen, controls::Panel& panel) {
    screen.ScreenForm().SetContainer(&panel);
    return screen.ScreenForm();
}

} // namespace

WagesPage::WagesPage(common::Screen& screen, controls::Panel& panel)
    : Page(screen, panel, "wages_page"), tab_wage(screen.ScreenForm(), "tab_wage"),
      vse_TaxDeductions(screen.ScreenForm(), "vse_TaxDeductions"),
      vse_Occupations(screen.ScreenForm(), "vse_Occupations"),
      tab_deductions(In(screen, vse_TaxDeductions), "tab_deductions"),
      vse_TaxRates(screen.ScreenForm(), "vse_TaxRates"),
      vse_Deductions(screen.ScreenForm(), "vse_Deductions"),
      vse_Contributions(screen.ScreenForm(), "vse_Contributions"), vse_ESCT(screen.ScreenForm(), "vse_ESCT"),
      deductions_(screen, vse_TaxRates, vse_Deductions, vse_Contributions), esct_(screen, vse_ESCT),
      occupations_(screen, vse_Occupations), masterLists_(occupations_) {
    vse_TaxDeductions.Layout = "deductions";
    vse_Occupations.Layout = "occupations";
    tab_wage.Caption = "Tax and Deductions|Occupations";
    tab_wage.AccessibleName = "Wage tables";
    tab_wage.SetPage(0, vse_TaxDeductions);
    tab_wage.SetPage(kOccupationsTab, vse_Occupations);
    tab_deductions.Caption = "Tax Rates|Deductions|Contributions|ESCT";
    tab_deductions.AccessibleName = "Tax and deductions";
    tab_deductions.SetPage(0, vse_TaxRates);
    tab_deductions.SetPage(1, vse_Deductions);
    tab_deductions.SetPage(2, vse_Contributions);
    tab_deductions.SetPage(kEsctTab, vse_ESCT);

    tab_wage.Switch = [this](int, int& newTab, bool&) { tab_wage_Switch(newTab); };
    tab_deductions.Switch = [this](int, int& newTab, bool&) {
        common::Trap("frm_setup.tab_deductions_Switch", [&] { deductions_.TabShown(newTab); });
    };
    deductions_.SetUpAgain = [this] { SetUpTables(); };
    deductions_.ShowTaxSteps = [this] { ShowTaxSteps(deductions_.dat_taxrates); };
    common::SetEditorMenu([](int argument) {
        common::Trap("frm_setup.mDataModule_MenuSelect", [&] { SetUpTaxSteps(argument); });
    });
}

void WagesPage::SetUp(int& /*frame*/) {
    SetUpTables();
}

void WagesPage::SetUpTables() {
    std::optional<runtime::RunTimeError> failed;
    for (const auto setUp : {&WagesPage::SetUpDeductionPage, &WagesPage::SetUpContributionPage}) {
        try {
            (this->*setUp)();
        } catch (const runtime::RunTimeError& error) {
            if (!failed)
                failed = error;
        }
    }
    if (failed)
        throw *failed;
}

void WagesPage::SetUpDeductionPage() {
    if (config::gDeductionsLoaded)
        return;
    deductions_.OpenDeductions();
    esct_.SetUp();
    deductions_.OpenTaxRates();
    occupations_.FillOccupations();
    config::gDeductionsLoaded = true;
}

void WagesPage::SetUpContributionPage() {
    if (config::gContributionsLoaded)
        return;
    deductions_.OpenContributions();
    config::gContributionsLoaded = true;
}

void WagesPage::tab_wage_Switch(int newTab) {
    common::Trap("frm_setup.tab_wage_Switch", [&] {
        if (newTab == kOccupationsTab)
            occupations_.Show();
    });
}

} // namespace quillary::wages
