#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/date_picker.h"
#include "platform/controls/grid.h"
#include "platform/controls/label.h"
#include "platform/controls/lists.h"
#include "platform/controls/text_box.h"
#include "tax/gst_types.h"

#include <string>

namespace quillary::tax {

// The sales tax: its rates, types, return period and start date. Two frames share the page: element 0 of the
// arrays lies on that of databases with tax types, which has the grids; element 1 on the short one, which
// has a single rate and the registration number.
class GstPage : public common::Page {
public:
    // panel: of databases with tax types; olderPanel: of databases without.
    GstPage(common::Screen& screen, controls::Panel& panel, controls::Panel& olderPanel);

    controls::LabelArray lbl_GSTReg;
    controls::TextBoxArray txt_Regist;
    controls::CommandButtonArray cmdPartners; // element 1 lies on the Taxation page
    controls::TextBoxArray txt_GSTRate;
    controls::LabelArray lbl_gstStart;
    controls::TextBoxArray txt_GSTDate; // elements 2 and 3 lie on the Taxation page
    controls::DatePickerArray DatePicker_GSTDate;
    controls::Label Label5;                  // of the return period
    controls::ListBoxArray lst_ReturnPeriod; // item data: months
    controls::LabelArray lbl_GSTRates;
    controls::DataControl dat_GSTRates;
    controls::Grid tgrd_GSTRates;
    controls::Grid tgrd_GSTTypes;
    controls::CommandButton cmd_AddGSTType; // shown for development alone

    // SetUpGST: fills the page at its first showing. Where there are no tax types, or the rates cannot be
    // read, frame becomes that of the short page, for good.
    void SetUp(int& frame) override;
    common::SaveResult Save(common::SaveContext& context) override;
    void FocusFirst(int frame) override;

private:
    void SetUpGST(int& pageId);
    // False: the rates cannot be read.
    bool OpenRates();
    void SetUpTypes(const std::vector<std::string>& tokens);
    void SetGSTPeriods(int index);
    void lst_GST_Click(int index);
    void SaveStartDate(common::SaveContext& context, int index);
    void txt_GSTRate_Validate(int index, bool& cancel);
    void txt_GSTRate_KeyPress(int index, int& keyAscii);
    void txt_Regist_KeyPress(int index, int& keyAscii);
    void txt_GSTDate_KeyPress(int index, int& keyAscii);

    GSTTypes types_{tgrd_GSTTypes};
    int pageId_ = 0;       // of the first call that found the farm's database; 0 until then
    int index_ = 0;        // the element of the frame in use
    std::string keptRate_; // text of txt_GSTRate when the focus came
};

} // namespace quillary::tax
