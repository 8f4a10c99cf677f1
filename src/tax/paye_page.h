#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/date_picker.h"
#include "platform/controls/label.h"
#include "platform/controls/lists.h"
#include "platform/controls/text_box.h"

#include <string>
#include <string_view>

namespace quillary::tax {

// The editions whose users pay wages through the suite.
bool HasWages();

// The months between payments, as the lists of both taxes show them.
inline constexpr const char* kPeriodsQuery =
    "SELECT DISTINCTROW Months, Prompt From [Tax Periods] ORDER BY [Tax Periods].Months;";

// The tab PAYE of the Taxation page: the headings through which the tax on wages is stored and paid, and a
// text that tells how wages are entered under the present choice. The values are those of "PayeInfo", each
// with a setting behind it.
class PayePage : public common::Page {
public:
    PayePage(common::Screen& screen, controls::Panel& panel);

    controls::Label lblPAYE1;
    controls::Label lblWage;
    controls::ComboBox cmbWage1;
    controls::Label lblHolding;
    controls::ComboBox cmbHolding1;
    controls::Label lblpayment;
    controls::ComboBox cmbPayment;
    controls::Label lblAdjust;
    controls::ComboBox cmbAdjust;
    controls::Label lblTaxOffice;
    controls::ComboBox cmbTaxOffice;
    controls::ComboBoxArray cmbFreq1;   // 0; 1 lies on the tab of income tax
    controls::TextBoxArray txt_GSTDate; // 2
    controls::DatePickerArray DatePicker_GSTDate;
    controls::CheckBox chkNonCash;
    controls::Label lblNoncash;
    controls::Label lblPayeNoncash;
    controls::Label lbltaxationInfo;

    // The PAYE part of SetUpTaxation.
    void SetUpPaye(database::Database& db);
    // Recomposes the two texts of explanation.
    void SetTaxationInfo();

private:
    void FillAdjust(database::Database& db);
    void cmbAdjust_Click();

    int keptAdjust_ = -1; // the entry of cmbAdjust when the focus came
};

// The heading's name without a colon at its end.
std::string ShortHeading(std::string_view text);
// How the tax is paid: the closing lines of the explanation. An empty payee gives the general title.
std::string PaymentInstructions(bool manual, const std::string& paymentHeading,
                                const std::string& holdingHeading, const std::string& payee);

} // namespace quillary::tax
