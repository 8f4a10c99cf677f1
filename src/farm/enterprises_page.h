#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/data_control.h"
#include "platform/controls/grid.h"
#include "platform/controls/label.h"
#include "platform/controls/lists.h"

namespace quillary::farm {

// The farm's own enterprises, edited in a grid, and beside it the season enterprises that the suite's other
// modules have defined. The row with the code 1 is the reserved "--- none ---".
class EnterprisesPage : public common::Page {
public:
    EnterprisesPage(common::Screen& screen, controls::Panel& panel);

    controls::DataControl dat_enterprises;
    controls::Grid tgrd_enterprises;         // 0 code, 1 name
    controls::CommandButtonArray cmd_AddEnt; // 0 adds, 1 deletes
    controls::Panel vse_SeasonEnterprises;   // farm and diary editions
    controls::Label lbl_enterprises;
    controls::ListBox lst_enterprise;

    void SetUp(int& frame) override;
    common::SaveResult Save(common::SaveContext& context) override;
    void FocusFirst(int frame) override;

private:
    void LoadEnterprisesPage();
    void AddNoneRow();
    void FindHighestCode();
    void FillSeasonEnterprises();
    void AddEnterprise();
    void DeleteEnterprise();
    bool HasUsableRow();
    void cmd_AddEnt_Click(int index);
    void dat_enterprises_Validate(int action);
    void tgrd_enterprises_BeforeColEdit(int colIndex, bool& cancel);
    void tgrd_enterprises_BeforeColUpdate(int colIndex, const runtime::Variant& oldValue);
    static void tgrd_enterprises_Error(int dataError, int& response);
};

} // namespace quillary::farm
