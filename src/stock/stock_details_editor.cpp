#include "stock/stock_details_editor.h"

#include "common/error_report.h"
#include "common/messages.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "platform/database/engine.h"
#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"
#include "stock/add_stock.h"

namespace quillary::stock {

using runtime::Variant;

namespace {

constexpr int kDialogWidth = 6750, kDialogHeight = 4500; // twips
constexpr int kFemale = 0, kMale = 1;                    // entries of cbo_Sex

std::unique_ptr<database::Recordset> OpenClass(database::Database& db, std::int32_t classID) {
    auto row = db.OpenRecordset("SELECT [Stock Class Names].* FROM [Stock Class Names] "
                                "WHERE [Stock Class Names].[Class ID] = " +
                                    std::to_string(classID) + ";",
                                database::RecordsetType::Dynaset);
    if (row->EOF_())
        throw runtime::RunTimeError(database::kErrNoCurrentRecord, "QYSettings",
                                    "The stock class is not there any more: another program has deleted it.");
    return row;
}

} // namespace

FrmStockClass::FrmStockClass(common::Screen& screen, const StockState& state, std::int32_t classID,
                             int tabNumber)
    : controls::Form("frm_StockClass"), shpBorder(*this, "shpBorder"), picFormPic(*this, "picFormPic"),
      lbl_ClassName(*this, "lbl_ClassName"), txt_ClassName(*this, "txt_ClassName"), lbl_Sex(*this, "lbl_Sex"),
      cbo_Sex(*this, "cbo_Sex"), chk_Individual(*this, "chk_Individual"), cmd_Okay(*this, "cmd_Okay"),
      cmd_cancel(*this, "cmd_cancel"), classID_(classID) {
    Layout = "stock_details_editor";
    Width = kDialogWidth;
    Height = kDialogHeight;
    Caption = "Stock Details";
    lbl_ClassName.Caption = "&Name/Tag";
    lbl_Sex.Caption = "&Sex";
    chk_Individual.Caption = "&Individual, one tagged animal";
    cmd_Okay.Caption = "&OK";
    cmd_Okay.Default = true;
    cmd_cancel.Caption = "Cancel";
    cmd_cancel.Cancel = true;
    txt_ClassName.SetBuddy(&lbl_ClassName);
    txt_ClassName.MaxLength = kClassNameLength;
    cbo_Sex.SetBuddy(&lbl_Sex);

    Load = [this, &screen, &state, tabNumber] {
        common::IgnoreErrors([&] { ShowStockIcon(picFormPic, state, tabNumber - 1); });
        screen.Decorate(*this);
        cbo_Sex.AddItem("Female");
        cbo_Sex.AddItem("Male");
        ReadClass();
    };
    txt_ClassName.KeyPress = [this](int& keyAscii) { txt_ClassName_KeyPress(keyAscii); };
    cmd_Okay.Click = [this] { cmd_Okay_Click(); };
    cmd_cancel.Click = [this] { UnloadForm(); };
}

void FrmStockClass::ReadClass() {
    auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
    auto row = OpenClass(*db, classID_);
    txt_ClassName.Text = runtime::TextOf((*row)["Class Name"].Value());
    const std::string sex = runtime::UCase(runtime::TextOf((*row)["Sex"].Value()));
    if (!sex.empty()) // a default class has none until one is chosen
        cbo_Sex.ListIndex = sex == "M" ? kMale : kFemale;
    const Variant individual = (*row)["Individual"].Value();
    chk_Individual.Value =
        !individual.IsNull() && runtime::CBool(individual) ? controls::kChecked : controls::kUnchecked;
    read_ = Entered();
}

FrmStockClass::Details FrmStockClass::Entered() const {
    return {txt_ClassName.Text, cbo_Sex.ListIndex, chk_Individual.Value == controls::kChecked};
}

void FrmStockClass::txt_ClassName_KeyPress(int& keyAscii) {
    DropQuotes(keyAscii);
}

void FrmStockClass::cmd_Okay_Click() {
    common::Trap("frm_StockClass.cmd_Okay_Click", [&] {
        if (StoreClass())
            UnloadForm();
        else
            txt_ClassName.SetFocus();
    });
}

// Only what was changed is written: another program may have changed the rest. False: the name was refused
// with a message.
bool FrmStockClass::StoreClass() {
    const Details entered = Entered();
    if (entered.name.empty()) {
        common::ShowMessage(common::Message("Need to enter a Stock name", "Required Field"));
        return false;
    }
    auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
    auto row = OpenClass(*db, classID_);
    row->Edit();
    if (entered.name != read_.name)
        (*row)["Class Name"] = entered.name;
    if (entered.sex != read_.sex)
        (*row)["Sex"] = entered.sex == kMale ? "M" : "F";
    if (entered.individual != read_.individual)
        (*row)["Individual"] = entered.individual;
    try {
        row->Update();
    } catch (const runtime::RunTimeError& error) {
        if (error.Number() != database::kErrDuplicateValue)
            throw;
        common::ShowMessage(common::Message("Stock names must be unique", "Duplicate Value"));
        return false;
    }
    return true;
}

void EditStockDetails(common::Screen& screen, const StockState& state, std::int32_t classID, int tabNumber) {
    FrmStockClass(screen, state, classID, tabNumber).ShowModal();
}

} // namespace quillary::stock
