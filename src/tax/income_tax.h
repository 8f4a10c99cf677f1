#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/date_picker.h"
#include "platform/controls/label.h"
#include "platform/controls/lists.h"
#include "platform/controls/text_box.h"

namespace quillary::tax {

// The tab Income Tax of the Taxation page: how often provisional tax falls due and from when, and the tax
// entities.
class IncomeTaxPage : public common::Page {
public:
    IncomeTaxPage(common::Screen& screen, controls::Panel& panel);

    controls::Label lblIncomeTax;
    controls::Label lblFreq;
    controls::ComboBoxArray cmbFreq1; // 1
    controls::Label lblITaxStart;
    controls::TextBoxArray txt_GSTDate; // 3
    controls::DatePickerArray DatePicker_GSTDate;
    controls::Label lblITaxRate;              // the percentages are those of the entities
    controls::CommandButtonArray cmdPartners; // 1; 0 lies on the page of the sales tax

    // The income tax part of SetUpTaxation.
    void SetUpIncomeTax(database::Database& db);
};

} // namespace quillary::tax
