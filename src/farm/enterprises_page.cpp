#include "farm/enterprises_page.h"

#include "common/binding.h"
#include "common/error_report.h"
#include "common/messages.h"
#include "common/recordset_editing.h"
#include "common/value_checks.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "farm/enterprise_sync.h"
#include "farm/save_frame.h"
#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"

#include <algorithm>
#include <limits>

namespace quillary::farm {

using config::gMaxEnterpriseCode;
using runtime::Variant;

namespace {

constexpr std::int32_t kNoneCode = 1;
constexpr const char* kNoneName = "--- none ---";
constexpr int kNameLength = 28;
constexpr const char* kNoName = "NULL";
constexpr int kCodeColumn = 0, kNameColumn = 1;
constexpr int kCodeWidth = 1900, kNameWidth = 3000; // twips

constexpr const char* kAddPrompt = "Enter Enterprise Name";
constexpr const char* kAddTitle = "Add New Enterprise";
constexpr const char* kNameNeeded = "Need to enter an Enterprise name";

// The code of a new enterprise; the code of a deleted one is not given again.
std::int32_t NextCode() {
    if (gMaxEnterpriseCode == std::numeric_limits<std::int32_t>::max())
        throw runtime::RunTimeError(runtime::kErrOverflow);
    return ++gMaxEnterpriseCode;
}

} // namespace

EnterprisesPage::EnterprisesPage(common::Screen& screen, controls::Panel& panel)
    : Page(screen, panel, "enterprises_page"), dat_enterprises(screen.ScreenForm(), "dat_enterprises"),
      tgrd_enterprises(screen.ScreenForm(), "tgrd_enterprises"),
      cmd_AddEnt(screen.ScreenForm(), "cmd_AddEnt", {0, 1}),
      vse_SeasonEnterprises(screen.ScreenForm(), "vse_SeasonEnterprises"),
      lbl_enterprises(screen.ScreenForm(), "lbl_enterprises"),
      lst_enterprise(screen.ScreenForm(), "lst_enterprise") {
    lbl_enterprises.PlaceIn(vse_SeasonEnterprises);
    lst_enterprise.PlaceIn(vse_SeasonEnterprises);

    cmd_AddEnt(0).Caption = "&Add Enterprise";
    cmd_AddEnt(1).Caption = "&Delete Enterprise";
    lbl_enterprises.Caption = "Season Enterprises";
    lst_enterprise.SetBuddy(&lbl_enterprises);
    tgrd_enterprises.AccessibleName = "Enterprises";
    const struct {
        const char* caption;
        const char* field;
        int width;
    } columns[] = {{"Enterprise Codes", "Code", kCodeWidth}, {"Enterprise Name", "Name", kNameWidth}};
    for (const auto& described : columns) {
        controls::Column& column = tgrd_enterprises.AddColumn();
        column.Caption = described.caption;
        column.DataField = described.field;
        column.Width = described.width;
    }
    tgrd_enterprises.AllowAddNew = true;
    tgrd_enterprises.Col = kNameColumn; // a key at first sight is no new code
    tgrd_enterprises.SetDataSource(&dat_enterprises);

    cmd_AddEnt.On(&controls::CommandButton::Click, [this](int index) { cmd_AddEnt_Click(index); });
    dat_enterprises.Validate = [this](int& action, bool&) { dat_enterprises_Validate(action); };
    tgrd_enterprises.BeforeColEdit = [this](int colIndex, int, bool& cancel) {
        tgrd_enterprises_BeforeColEdit(colIndex, cancel);
    };
    tgrd_enterprises.BeforeColUpdate = [this](int colIndex, const Variant& oldValue, bool&) {
        tgrd_enterprises_BeforeColUpdate(colIndex, oldValue);
    };
    tgrd_enterprises.Error = [](int dataError, int& response) {
        tgrd_enterprises_Error(dataError, response);
    };
}

void EnterprisesPage::SetUp(int& /*frame*/) {
    LoadEnterprisesPage();
}

common::SaveResult EnterprisesPage::Save(common::SaveContext& /*context*/) {
    // What is still in edit, as when a key leads to another page, is a part of what is brought up to date.
    if (!tgrd_enterprises.CommitRow())
        throw runtime::RunTimeError(kErrBoundValue);
    EnterpriseSync();
    return common::SaveResult::Saved;
}

void EnterprisesPage::FocusFirst(int /*frame*/) {
    tgrd_enterprises.SetFocus();
}

// ---- Set-up

void EnterprisesPage::LoadEnterprisesPage() {
    if (config::gEnterprisesLoaded)
        return;
    EnterpriseSync();
    dat_enterprises.DatabaseName = config::GetDataFileName();
    dat_enterprises.RecordSource = "SELECT DISTINCTROW [tbl no Enterprises].* From [tbl no Enterprises];";
    dat_enterprises.Refresh();

    auto& enterprises = dat_enterprises.Recordset();
    bool noneMissing = enterprises.BOF();
    if (!noneMissing) {
        enterprises.FindFirst("code=1");
        noneMissing = enterprises.NoMatch();
    }
    if (noneMissing)
        AddNoneRow();
    FindHighestCode();
    enterprises.MoveFirst();
    enterprises.MoveNext(); // off the none row

    vse_SeasonEnterprises.Visible = config::HasMapAndArea();
    FillSeasonEnterprises();
    const std::string captions[] = {"Enterprise Codes", "Enterprise Names"};
    common::SetGridCaptions(tgrd_enterprises, captions);
    config::gEnterprisesLoaded = true;
}

void EnterprisesPage::AddNoneRow() {
    auto& enterprises = dat_enterprises.Recordset();
    enterprises.AddNew();
    enterprises["Code"] = kNoneCode;
    enterprises["Name"] = kNoneName;
    enterprises.Update();
    enterprises.MoveFirst();
}

// From the current row on.
void EnterprisesPage::FindHighestCode() {
    auto& enterprises = dat_enterprises.Recordset();
    for (; !enterprises.EOF_(); enterprises.MoveNext())
        if (const Variant code = enterprises["Code"].Value(); !code.IsNull())
            gMaxEnterpriseCode = std::max(gMaxEnterpriseCode, runtime::CLng(code));
}

void EnterprisesPage::FillSeasonEnterprises() {
    lst_enterprise.Clear();
    auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
    auto rows = db->OpenRecordset("SELECT DISTINCTROW Enterprises.[Enterprise Name] "
                                  "From Enterprises "
                                  "Where (((Enterprises.[Enterprise Name]) <> '') And "
                                  "((Enterprises.[Enterprise Codes]) > 96000)) "
                                  "ORDER BY Enterprises.[Enterprise Name];",
                                  database::RecordsetType::Snapshot);
    for (; !rows->EOF_(); rows->MoveNext())
        lst_enterprise.AddItem(runtime::TextOf((*rows)["Enterprise Name"].Value()));
    rows->Close();
    db->Close();
}

// ---- Adding and deleting

void EnterprisesPage::cmd_AddEnt_Click(int index) {
    common::Trap("frm_setup.cmd_AddEnt_Click", [&] { index == 0 ? AddEnterprise() : DeleteEnterprise(); });
}

void EnterprisesPage::AddEnterprise() {
    try {
        std::string name = common::ShowInputBox(kAddPrompt, kAddTitle, {}, kNameLength);
        if (name.empty())
            return;
        name = std::string(runtime::LeftChars(name, kNameLength));
        auto& enterprises = dat_enterprises.Recordset();
        const std::int32_t code = NextCode();
        enterprises.AddNew();
        enterprises["Code"] = code;
        enterprises["Name"] = name;
        enterprises.Update();
        enterprises.MoveLast();
        tgrd_enterprises.SetFocus();
        tgrd_enterprises.Col = kNameColumn;
        tgrd_enterprises.EditActive = true;
    } catch (const std::exception&) {
        common::ReportError(common::AsRunTimeError(std::current_exception()), "AddEnterprise", {},
                            std::string(kAddPrompt) + ", " + kAddTitle);
        // A row that could not be stored is not left half made.
        if (dat_enterprises.HasRecordset() &&
            dat_enterprises.Recordset().Editing() == database::EditMode::AddNew)
            dat_enterprises.Recordset().CancelUpdate();
    }
}

void EnterprisesPage::DeleteEnterprise() {
    // The row at the foot and an empty grid have nothing to delete either.
    const bool onRow = dat_enterprises.HasRecord() && !tgrd_enterprises.OnNewRow();
    const Variant code = onRow ? dat_enterprises.FieldOrNull("Code") : Variant::Null();
    if (code.IsNull() || runtime::CLng(code) == kNoneCode)
        common::ShowMessage(
            common::Message("You need to SELECT an Enterprise first!", "Select an Enterprise"));
    else
        common::DeleteRecordsetRecord(dat_enterprises, "Name", "Enterprise");
}

// ---- Editing

// A pending new row, or a current one that no other program has deleted.
bool EnterprisesPage::HasUsableRow() {
    auto& enterprises = dat_enterprises.Recordset();
    if (enterprises.Editing() == database::EditMode::None && !dat_enterprises.HasRecord())
        return false;
    return common::IgnoreErrors([&] { enterprises["Code"].Value(); });
}

void EnterprisesPage::dat_enterprises_Validate(int action) {
    if (action == controls::kActionDelete)
        return;
    common::Trap("frm_setup.dat_enterprises_Validate", [&] {
        auto& enterprises = dat_enterprises.Recordset();
        if (!HasUsableRow())
            return;
        const auto store = [&](const char* field, const Variant& value) {
            enterprises.Edit();
            enterprises[field] = value;
            enterprises.Update();
        };
        if (enterprises["Code"].Value().IsNull())
            store("Code", NextCode());
        if (enterprises["Name"].Value().IsNull()) {
            common::ShowMessage(common::Message(kNameNeeded, "Information Required"));
            store("Name", kNoName); // meant: these four letters
        }
    });
}

void EnterprisesPage::tgrd_enterprises_BeforeColEdit(int colIndex, bool& cancel) {
    common::Trap("frm_setup.tgrd_enterprises_BeforeColEdit", [&] {
        // Meant: with a capital alone. The row "--- none ---" can be edited; only its deletion is refused.
        if (tgrd_enterprises.Columns(colIndex).Text.Get().find("None") != std::string::npos)
            cancel = true;
    });
}

void EnterprisesPage::tgrd_enterprises_BeforeColUpdate(int colIndex, const Variant& oldValue) {
    common::Trap("frm_setup.tgrd_enterprises_BeforeColUpdate", [&] {
        controls::Column& column = tgrd_enterprises.Columns(colIndex);
        Variant text(column.Text.Get());
        if (!common::TooLong(text, kNameLength, true))
            return;
        common::Message message(kNameNeeded, "Required Field");
        message.subHeading = "This field must be filled in";
        common::ShowMessage(message);
        column.Value = oldValue;
    });
}

void EnterprisesPage::tgrd_enterprises_Error(int dataError, int& response) {
    const char* text = nullptr;
    if (dataError == controls::kGridDuplicate)
        text = "Another enterprise has this code. Type one that is free, or press Escape for the old one.";
    else if (dataError == database::kErrRecordDeleted)
        text = "Another program has deleted this enterprise. Press Escape to give up the change.";
    if (text == nullptr)
        return; // the grid's own words
    common::ShowMessage(common::Message(text, "Invalid Entry"));
    response = 0;
}

} // namespace quillary::farm
