#include "tax/taxation_page.h"

#include "common/error_report.h"
#include "common/tax_records.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "config/tokens.h"
#include "platform/runtime/conversions.h"
#include "tax/rebates.h"

namespace quillary::tax {

namespace {

enum Tab { kPayeTab, kIncomeTaxTab, kRebatesTab };
constexpr int kPayeFreq = 0;
constexpr int kTaxFreq = 1;
constexpr int kPayeStart = 2;
constexpr int kIncomeTaxStart = 3;

// The number beside the selected entry; 0 without one.
std::int32_t SelectedData(const controls::ComboBox& combo) {
    return combo.ItemData(combo.ListIndex);
}

} // namespace

TaxationPage::TaxationPage(common::Screen& screen, controls::Panel& panel)
    : Page(screen, panel, "taxation_page"), tabTaxation(screen.ScreenForm(), "tabTaxation"),
      vse_Taxation_PAYE(screen.ScreenForm(), "vse_Taxation_PAYE"),
      vse_Taxation_IncomeTax(screen.ScreenForm(), "vse_Taxation_IncomeTax"),
      vse_Taxation_Rebates(screen.ScreenForm(), "vse_Taxation_Rebates"),
      lblRebates(screen.ScreenForm(), "lblRebates"), cmbRebates(screen.ScreenForm(), "cmbRebates"),
      lblNoRebates(screen.ScreenForm(), "lblNoRebates"), paye_(screen, vse_Taxation_PAYE),
      incomeTax_(screen, vse_Taxation_IncomeTax) {
    for (controls::Control* inRebates :
         std::initializer_list<controls::Control*>{&lblRebates, &cmbRebates, &lblNoRebates})
        inRebates->PlaceIn(vse_Taxation_Rebates);
    tabTaxation.Caption = "PAYE|Income Tax|Rebates";
    tabTaxation.SetPage(kPayeTab, vse_Taxation_PAYE);
    tabTaxation.SetPage(kIncomeTaxTab, vse_Taxation_IncomeTax);
    tabTaxation.SetPage(kRebatesTab, vse_Taxation_Rebates);
    lblRebates.Caption = "Tax rebates that are claimed on transactions";
    cmbRebates.Caption = "&Rebates";
    lblNoRebates.Caption = "There are no rebates to set up for this country.";
    cmbRebates.Click = [this] { common::Trap("frm_setup.cmbRebates_Click", [&] { ShowRebates(screen_); }); };
}

void TaxationPage::SetUp(int& /*frame*/) {
    common::Trap("SetUpTaxation", [&] {
        auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
        const bool rebates = config::GetCountryCode() == config::kAustralia;
        cmbRebates.Visible = lblRebates.Visible = rebates;
        lblNoRebates.Visible = !rebates;
        paye_.SetUpPaye(*db);
        incomeTax_.SetUpIncomeTax(*db);
        db->Close();
    });
}

common::SaveResult TaxationPage::Save(common::SaveContext& context) {
    // Meant: without a holding heading nothing of the page is saved, not even the frequencies.
    if (paye_.cmbHolding1.ListIndex <= -1)
        return common::SaveResult::Saved;
    const auto save = [&](std::string_view key, const runtime::Variant& value) {
        common::savepayeinfo(context.db, key, value);
    };
    const auto saveDate = [&](std::string_view key, const controls::TextBox& box) {
        if (runtime::IsDate(box.Text))
            save(key, box.Text);
    };
    const std::int32_t wages = SelectedData(paye_.cmbWage1);
    const std::int32_t adjustments = SelectedData(paye_.cmbAdjust);
    save("PAYEAccount", SelectedData(paye_.cmbHolding1));
    save("PAYEFreq", SelectedData(paye_.cmbFreq1(kPayeFreq)));
    save("WageAccount", wages);
    save("PaymentAccount", SelectedData(paye_.cmbPayment));
    saveDate("PAYEStart", paye_.txt_GSTDate(kPayeStart));
    // Meant: adjustments under the wages' own heading are passed over in silence.
    if (paye_.cmbAdjust.ListIndex > -1 && adjustments != wages)
        save("AdjustAccount", adjustments);
    save("TaxFreq", SelectedData(incomeTax_.cmbFreq1(kTaxFreq)));
    saveDate("ITaxStart", incomeTax_.txt_GSTDate(kIncomeTaxStart));
    save("PAYENonCash", paye_.chkNonCash.Value != controls::kUnchecked);
    if (const std::int32_t office = SelectedData(paye_.cmbTaxOffice); HasWages() && office > 0)
        save("PAYEAddressID", office);
    return common::SaveResult::Saved;
}

} // namespace quillary::tax
