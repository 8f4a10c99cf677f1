#include "wages/esct.h"

#include "common/messages.h"
#include "config/settings.h"
#include "platform/controls/form_host.h"
#include "platform/database/errors.h"
#include "platform/runtime/run_time_error.h"

namespace quillary::wages {

Esct::Esct(common::Screen& screen, controls::Panel& panel)
    : dat_ESCT((screen.ScreenForm().SetContainer(&panel), screen.ScreenForm()), "dat_ESCT"),
      tgrd_ESCT(screen.ScreenForm(), "tgrd_ESCT"), LvBAddESCT(screen.ScreenForm(), "LvBAddESCT"),
      LvBDeleteESCT(screen.ScreenForm(), "LvBDeleteESCT") {
    controls::Column& salary = tgrd_ESCT.AddColumn();
    salary.Caption = "Wages/Salary";
    salary.DataField = "Salary";
    salary.NumberFormat = "Currency";
    controls::Column& rate = tgrd_ESCT.AddColumn();
    rate.Caption = "Rate";
    rate.DataField = "Rate";
    rate.NumberFormat = "Percent";
    for (controls::Column* column : {&salary, &rate}) {
        column->Width = 2000;
        column->Alignment = controls::Column::Align::Right;
    }
    tgrd_ESCT.SetDataSource(&dat_ESCT);
    tgrd_ESCT.AccessibleName = "ESCT rates";
    LvBAddESCT.Caption = "&Add ESCT";
    LvBDeleteESCT.Caption = "&Delete ESCT";

    LvBAddESCT.Click = [this] { LvBAddESCT_Click(); };
    tgrd_ESCT.AfterInsert = [this] { tgrd_ESCT.AllowAddNew = false; }; // one row at a time
    LvBDeleteESCT.Click = [this] { LvBDeleteESCT_Click(); };
}

void Esct::SetUp() {
    dat_ESCT.DatabaseName = config::GetWageFileName();
    dat_ESCT.RecordSource = "Select distinctrow * from ESCT ";
    dat_ESCT.Refresh();
}

void Esct::LvBAddESCT_Click() {
    // A table that could not be opened when the page was shown is tried again.
    if (!dat_ESCT.HasRecordset()) {
        try {
            SetUp();
        } catch (const runtime::RunTimeError& error) {
            controls::ShowControlMessage(error.Description());
            return;
        }
    }
    tgrd_ESCT.AllowAddNew = true;
    tgrd_ESCT.GoToNewRow();
}

void Esct::LvBDeleteESCT_Click() {
    common::Message question("Do you really want to change delete this ESCT Rate?", "Please Confirm");
    question.buttons = common::kButtonsYesNo;
    if (common::ShowMessage(question) != common::kAnswerYes)
        return;
    try {
        tgrd_ESCT.Delete();
    } catch (const runtime::RunTimeError& error) {
        if (error.Number() != database::kErrNoCurrentRecord)
            controls::ShowControlMessage(error.Description());
    }
}

} // namespace quillary::wages
