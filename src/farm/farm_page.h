#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/date_picker.h"
#include "platform/controls/label.h"
#include "platform/controls/lists.h"
#include "platform/controls/picture_box.h"
#include "platform/controls/text_box.h"

#include <string>

namespace quillary::farm {

// The first page: name, address and contacts of the farm, its area and units, the start of its financial
// year, the picture on its invoices.
class FarmPage : public common::Page {
public:
    FarmPage(common::Screen& screen, controls::Panel& panel);

    controls::Label lbl_name;
    controls::TextBoxArray txt_FarmName; // 0 name; 4, 3, 2 address; 6 e-mail; 1 phone; 5 fax
    controls::TextBox txt_FinYear;
    controls::DatePicker DatePicker_FinYear;
    controls::Label lbl_area;
    controls::TextBox txt_area;
    controls::ComboBox cboUnits; // acres, hectares
    controls::Label lblInvoiceLogo;
    controls::PictureBox picInvoiceLogo;
    controls::CommandButton cmd_Selectlogo;

    // Fills the box and its picker with the financial year as the screen is loaded.
    void ShowFinancialYear(const runtime::Variant& date);
    // The unit that the list shows; kept until the list has entries.
    void ShowUnit(std::string_view unit);
    void FillUnits();

    // Stores the unit's letter by an option pair of the screen, element 0 metric. Errors are reported under
    // "optDiaryChange".
    void optDiaryChange();

    common::SaveResult Save(common::SaveContext& context) override;
    void FocusFirst(int frame) override;

private:
    void txt_FarmName_KeyPress(int index, int& keyAscii);
    void txt_FinYear_KeyPress(int& keyAscii);
    void txt_FinYear_Validate();
    void txt_FinYear_LostFocus();
    void DatePicker_FinYear_DateChanged();
    void txt_area_GotFocus();
    void txt_area_Validate();
    void txt_area_KeyPress(int& keyAscii);
    void cmd_Selectlogo_Click();
    void ShowLogo();

    std::string keptArea_; // text of txt_area when the focus came
    std::string unit_;
};

} // namespace quillary::farm
