#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/label.h"
#include "platform/controls/panel.h"
#include "platform/controls/tab_strip.h"
#include "tax/income_tax.h"
#include "tax/paye_page.h"

namespace quillary::tax {

// PAYE, income tax and rebates, each on a tab of its own. Their values lie in the one record of "PayeInfo",
// which is written when the page is left.
class TaxationPage : public common::Page {
public:
    TaxationPage(common::Screen& screen, controls::Panel& panel);

    controls::TabStrip tabTaxation;
    controls::Panel vse_Taxation_PAYE;
    controls::Panel vse_Taxation_IncomeTax;
    controls::Panel vse_Taxation_Rebates;
    // In Australia alone.
    controls::Label lblRebates;
    controls::CommandButton cmbRebates;
    controls::Label lblNoRebates; // elsewhere

    PayePage& Paye() { return paye_; }
    IncomeTaxPage& IncomeTax() { return incomeTax_; }

    void SetUp(int& frame) override;
    common::SaveResult Save(common::SaveContext& context) override;

private:
    PayePage paye_;
    IncomeTaxPage incomeTax_;
};

} // namespace quillary::tax
