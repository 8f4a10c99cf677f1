#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/form.h"
#include "platform/controls/label.h"
#include "platform/controls/lists.h"
#include "platform/controls/text_box.h"
#include "platform/database/engine.h"

#include <memory>
#include <string>

// What a new farm file needs, asked for in one go.
namespace quillary::firstrun {

// The farm's row has neither a name, nor a tax rate, nor units: nobody has answered yet. False as well for
// a database that cannot tell.
bool IsNewFarmFile();

// The dialog "Setup Information": name, area, tax rate and basis, tax office, units of measure. It keeps a
// database of its own open while it is loaded, and stores the answers when it closes.
class FrmUnits : public controls::Form {
public:
    explicit FrmUnits(common::Screen& screen);

    controls::Label lbl_name;
    controls::TextBox txt_farmname;
    controls::Label lbl_area; // in the editions with a map, like the area and the units
    controls::TextBox txt_farmarea;
    controls::Label lbl_taxrate;
    controls::TextBox txt_taxrate; // percent
    controls::Label lbl_taxBasis;
    controls::ComboBox cmb_taxbasis; // payments, invoices
    controls::Label Label1;
    controls::TextBox txtTaxoffice;
    controls::Label lbl_diary;
    controls::OptionButtonArray opt_diary; // 0 imperial, 1 metric
    controls::LabelArray lbl_optDiary;
    controls::CommandButton cmd_Okay;

private:
    void Form_Load();
    void Form_Unload(bool& cancel);
    void opt_diary_Click();
    void GiveUp();
    void ShowDetails(database::Recordset& farmDetails);
    void ShowAreaUnit(const char* unit);

    // Stores the answers in the farm's row, the tax rates and the settings. ok: there is a name. The result
    // is True when they are stored, and, without a name, when the user goes back to the form to give one.
    // Errors are reported under "UpdateFarmDetails".
    bool UpdateFarmDetails(bool& ok);
    void StoreFarmDetails(database::Recordset& farmDetails, const std::string& name, float area, float rate);

    common::Screen& screen_;
    std::shared_ptr<database::Database> database_; // open from Load to Unload
    bool metric_ = false;
};

} // namespace quillary::firstrun
