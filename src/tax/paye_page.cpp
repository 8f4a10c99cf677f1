#include "tax/paye_page.h"

#include "common/binding.h"
#include "common/error_report.h"
#include "common/farm_details.h"
#include "common/messages.h"
#include "common/tax_records.h"
#include "config/globals.h"
#include "config/settings.h"
#include "config/tokens.h"
#include "farm/year_entry.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"
#include "tax/gst_dates.h"

namespace quillary::tax {

using runtime::Variant;

namespace {

constexpr int kPaye = 0;      // the element of the frequencies
constexpr int kPayeStart = 2; // and of the start dates
constexpr int kWagesBit = 2;  // of the edition's number
constexpr const char* kLineEnd = "\r\n";

std::int32_t PayeNumber(database::Database& db, std::string_view key, std::int32_t setting) {
    return runtime::CLng(common::payeinfo(db, key, setting));
}

void FillHeadings(database::Database& db, controls::ComboBox& combo, std::string_view key,
                  std::int32_t setting) {
    // Meant: no blank between the pieces; the engine takes the name's bracket for the end of the word.
    const std::string headings =
        std::string("SELECT DISTINCTROW [Secondary Codes ID], [Cached Name]") + "From [Secondary Codes] " +
        (config::GetCodeOrder() ? "Order by [Secondary Codes ID];" : "Order by [Cached Name];");
    common::FillDaoVBCombo(headings, combo, db, PayeNumber(db, key, setting));
}

} // namespace

bool HasWages() {
    return (config::gModuleID & kWagesBit) != 0;
}

PayePage::PayePage(common::Screen& screen, controls::Panel& panel)
    : Page(screen, panel, "paye_page"), lblPAYE1(screen.ScreenForm(), "lblPAYE1"),
      lblWage(screen.ScreenForm(), "lblWage"), cmbWage1(screen.ScreenForm(), "cmbWage1"),
      lblHolding(screen.ScreenForm(), "lblHolding"), cmbHolding1(screen.ScreenForm(), "cmbHolding1"),
      lblpayment(screen.ScreenForm(), "lblpayment"), cmbPayment(screen.ScreenForm(), "cmbPayment"),
      lblAdjust(screen.ScreenForm(), "lblAdjust"), cmbAdjust(screen.ScreenForm(), "cmbAdjust"),
      lblTaxOffice(screen.ScreenForm(), "lblTaxOffice"), cmbTaxOffice(screen.ScreenForm(), "cmbTaxOffice"),
      cmbFreq1(screen.ScreenForm(), "cmbFreq1", {kPaye}),
      txt_GSTDate(screen.ScreenForm(), "txt_GSTDate", {kPayeStart}),
      DatePicker_GSTDate(screen.ScreenForm(), "DatePicker_GSTDate", {kPayeStart}),
      chkNonCash(screen.ScreenForm(), "chkNonCash"), lblNoncash(screen.ScreenForm(), "lblNoncash"),
      lblPayeNoncash(screen.ScreenForm(), "lblPayeNoncash"),
      lbltaxationInfo(screen.ScreenForm(), "lbltaxationInfo") {
    lblWage.Caption = "Wages heading";
    lblAdjust.Caption = "Adjustments heading";
    cmbWage1.SetBuddy(&lblWage);
    cmbHolding1.SetBuddy(&lblHolding);
    cmbPayment.SetBuddy(&lblpayment);
    cmbAdjust.SetBuddy(&lblAdjust);
    cmbTaxOffice.SetBuddy(&lblTaxOffice);
    chkNonCash.SetBuddy(&lblNoncash);
    cmbFreq1(kPaye).AccessibleName = "Frequency";
    txt_GSTDate(kPayeStart).AccessibleName = "Start Date";
    DatePicker_GSTDate(kPayeStart).AccessibleName = "Pick the start date";
    // Names of headings and of the tax may hold an "&".
    for (controls::Label* label :
         {&lblPAYE1, &lblHolding, &lblpayment, &lblTaxOffice, &lblNoncash, &lblPayeNoncash, &lbltaxationInfo})
        label->UseMnemonic = false;
    AttachGSTDateRoutines(txt_GSTDate, DatePicker_GSTDate);

    const auto recompose = [this](controls::Control& control, const char* routine) {
        control.Click = [this, routine] { common::Trap(routine, [&] { SetTaxationInfo(); }); };
    };
    recompose(chkNonCash, "frm_setup.chkNonCash_Click");
    recompose(cmbHolding1, "frm_setup.cmbHolding1_Click");
    recompose(cmbPayment, "frm_setup.cmbPayment_Click");
    recompose(cmbTaxOffice, "frm_setup.cmbTaxOffice_Click");
    recompose(cmbWage1, "frm_setup.cmbWage1_Click");
    lblNoncash.Click = [this] { chkNonCash.Press(); };
    cmbAdjust.GotFocus = [this] {
        common::Trap("frm_setup.cmbAdjust_GotFocus", [&] { keptAdjust_ = cmbAdjust.ListIndex; });
    };
    cmbAdjust.Click = [this] { cmbAdjust_Click(); };
}

void PayePage::FillAdjust(database::Database& db) {
    FillHeadings(db, cmbAdjust, "AdjustAccount", config::GetAdjustAccount());
}

void PayePage::SetUpPaye(database::Database& db) {
    const std::vector<std::string> tokens = {config::GetIncomeTaxName(), config::GetPayAsYouEarn()};
    const auto translated = [&](std::string_view text) { return config::TranslateTokens(text, tokens); };

    common::FillDaoVBCombo(kPeriodsQuery, cmbFreq1(kPaye), db,
                           PayeNumber(db, "PayeFreq", config::GetPAYEFreq()));
    FillHeadings(db, cmbHolding1, "PayeAccount", config::GetPAYEAccount());
    FillHeadings(db, cmbPayment, "PaymentAccount", config::GetPaymentAccount());
    FillHeadings(db, cmbWage1, "WageAccount", config::GetWageAccount());
    FillAdjust(db);
    cmbHolding1.ToolTip = translated("For storing |1|");
    cmbPayment.ToolTip = translated("For paying |1|");
    cmbWage1.ToolTip = "For storing total payment ";
    cmbTaxOffice.ToolTip = translated("Select who to pay |1| to");
    lblPAYE1.Caption = config::GetPayAsYouEarn();
    lblpayment.Caption = translated("|1| payment heading");
    chkNonCash.Value = runtime::CBool(common::payeinfo(db, "PayeNonCash", config::GetPAYENonCash()))
                           ? controls::kChecked
                           : controls::kUnchecked;
    if (HasWages()) {
        FillAdjust(db); // meant: once more, with its report where "PayeInfo" cannot be read
        common::FillDaoVBCombo("SELECT DISTINCTROW AddressID, BusName From Addresses "
                               "Where (((Addresses.BusinessFlag) = True)) ORDER BY Addresses.BusName;",
                               cmbTaxOffice, db, PayeNumber(db, "PayeAddressID", config::GetPAYEAddressID()));
        lblTaxOffice.Caption = translated("Pay |1| to:");
    } else {
        cmbAdjust.Visible = lblAdjust.Visible = cmbTaxOffice.Visible = lblTaxOffice.Visible = false;
    }
    SetTaxationInfo();
    lblNoncash.Caption = translated("|1| made electronically");
    lblHolding.Caption = translated("|1| Heading");

    const runtime::Date setting = config::GetPAYEStartDate();
    const Variant start =
        setting == runtime::Date{} ? Variant(common::GetPAYEStartText(db)) : Variant(setting);
    ShowGSTDate(txt_GSTDate(kPayeStart), DatePicker_GSTDate(kPayeStart),
                common::payeinfo(db, "PayeStart", Variant(farm::ShortDateText(start))));
}

std::string ShortHeading(std::string_view text) {
    const std::string_view heading = runtime::Trim(text);
    const std::size_t length = runtime::CharCount(heading);
    // Characters count from 1, and the blank before the colon goes with it: "Wages :" is "Wages".
    for (std::size_t place = length > 2 ? length - 2 : 1; place <= length; ++place)
        if (runtime::MidChars(heading, place, 1) == ":")
            return std::string(runtime::LeftChars(heading, place > 2 ? place - 2 : 0));
    return std::string(heading);
}

std::string PaymentInstructions(bool manual, const std::string& paymentHeading,
                                const std::string& holdingHeading, const std::string& payee) {
    const std::vector<std::string> tokens = {config::GetPayAsYouEarn(), paymentHeading, payee,
                                             holdingHeading};
    const std::string text = std::string(payee.empty() ? "|0| PAYMENTS" : "PAYMENTS to |2|") + kLineEnd +
                             (manual ? "Use a Cashbook 'Withdrawal' to debit |0| payments into |1|."
                                     : "Use ePayments to process |0|.");
    return config::TranslateTokens(text, tokens);
}

void PayePage::SetTaxationInfo() {
    const std::vector<std::string> tokens = {config::GetPayAsYouEarn(), ShortHeading(cmbWage1.Text.Get()),
                                             ShortHeading(cmbHolding1.Text.Get()),
                                             ShortHeading(cmbPayment.Text.Get())};
    const bool manual = chkNonCash.Value == controls::kUnchecked;
    const std::string line = kLineEnd;
    const std::string lead = "To enter WAGES manually in either the Cashbook or e-Payments " + line + line;
    const std::string split = "Make a 'withdrawal' entry for the Net Wage amount and split it:" + line +
                              "    - Taxable amount debited into |1|" + line +
                              "    - |0| amount credited into |2|" + line;
    const std::string wagebook = line + "Use the Wagebook to automatically generate above entries";
    const std::string body = manual ? lead + split + wagebook
                                    : lead + " Make two transactions" + line + "1." + split +
                                          "2.  An ePayment 'Payable' entry of the |0| amount into |3|" +
                                          line + wagebook;
    std::string note;
    if (HasWages())
        note = std::string(manual ? "Tick to pay |0| electronically" : "Untick to pay |0| manually") + line +
               line +
               "NB Wage payments may be set to cash or electronic for each employee in the Address Book";
    // Meant: nobody is named as the payee.
    lbltaxationInfo.Caption = config::TranslateTokens(body, tokens) + line + line +
                              PaymentInstructions(manual, tokens[3], tokens[2], "");
    lblPayeNoncash.Caption = config::TranslateTokens(note, tokens);
}

void PayePage::cmbAdjust_Click() {
    common::Trap("frm_setup.cmbAdjust_Click", [&] {
        if (cmbAdjust.ListIndex != cmbWage1.ListIndex.Get())
            return;
        common::ShowMessage(
            common::Message("Adjustments should not be put into the same account as the taxable Wage amount",
                            "Invalid Selection"));
        cmbAdjust.ListIndex = keptAdjust_;
    });
}

} // namespace quillary::tax
