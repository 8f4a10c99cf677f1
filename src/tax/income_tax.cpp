#include "tax/income_tax.h"

#include "common/binding.h"
#include "common/error_report.h"
#include "common/farm_details.h"
#include "common/tax_records.h"
#include "config/settings.h"
#include "config/tokens.h"
#include "farm/year_entry.h"
#include "platform/runtime/conversions.h"
#include "tax/gst_dates.h"
#include "tax/paye_page.h"
#include "tax/tax_entities.h"

namespace quillary::tax {

using runtime::Variant;

namespace {

constexpr int kIncomeTax = 1;      // the element of the frequencies and of the entities' buttons
constexpr int kIncomeTaxStart = 3; // and of the start dates

} // namespace

IncomeTaxPage::IncomeTaxPage(common::Screen& screen, controls::Panel& panel)
    : Page(screen, panel, "income_tax"), lblIncomeTax(screen.ScreenForm(), "lblIncomeTax"),
      lblFreq(screen.ScreenForm(), "lblFreq"), cmbFreq1(screen.ScreenForm(), "cmbFreq1", {kIncomeTax}),
      lblITaxStart(screen.ScreenForm(), "lblITaxStart"),
      txt_GSTDate(screen.ScreenForm(), "txt_GSTDate", {kIncomeTaxStart}),
      DatePicker_GSTDate(screen.ScreenForm(), "DatePicker_GSTDate", {kIncomeTaxStart}),
      lblITaxRate(screen.ScreenForm(), "lblITaxRate"),
      cmdPartners(screen.ScreenForm(), "cmdPartners", {kIncomeTax}) {
    lblIncomeTax.Caption = "Income Tax";
    lblITaxRate.Caption = "Income Tax Percent";
    lblFreq.Caption = "Frequency";
    lblITaxStart.Caption = "Start Date";
    cmdPartners(kIncomeTax).Caption = "&Tax Entities";
    cmbFreq1(kIncomeTax).SetBuddy(&lblFreq);
    txt_GSTDate(kIncomeTaxStart).SetBuddy(&lblITaxStart);
    DatePicker_GSTDate(kIncomeTaxStart).AccessibleName = "Pick the start date";
    lblIncomeTax.UseMnemonic = lblITaxRate.UseMnemonic = false;
    AttachGSTDateRoutines(txt_GSTDate, DatePicker_GSTDate);
    cmdPartners(kIncomeTax).Click = [] { common::Trap("frm_setup.cmdPartners_Click", EditTaxEntities); };
}

void IncomeTaxPage::SetUpIncomeTax(database::Database& db) {
    auto& frequency = cmbFreq1(kIncomeTax);
    auto& startBox = txt_GSTDate(kIncomeTaxStart);
    auto& startPicker = DatePicker_GSTDate(kIncomeTaxStart);
    frequency.Visible = lblFreq.Visible = true;
    common::FillDaoVBCombo(kPeriodsQuery, frequency, db,
                           runtime::CLng(common::payeinfo(db, "TaxFreq", config::GetIncomeTaxFreq())));
    cmdPartners(kIncomeTax).Visible = true;
    lblIncomeTax.Caption = config::GetIncomeTaxName();
    lblITaxRate.Caption =
        config::TranslateTokens("|0| Percent", std::vector<std::string>{config::GetIncomeTaxName()});
    startBox.Visible = startPicker.Visible = true;

    const runtime::Date setting = config::GetITaxStartDate();
    const Variant start =
        setting == runtime::Date{} ? Variant(common::GetFinancialYear(db)) : Variant(setting);
    ShowGSTDate(startBox, startPicker,
                common::payeinfo(db, "ITaxStart", Variant(farm::ShortDateText(start))));
    lblITaxStart.Visible = true;
}

} // namespace quillary::tax
