#include "farm/secondary_headings_form.h"

#include "common/binding.h"
#include "common/error_report.h"
#include "common/messages.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "config/settings.h"
#include "config/tokens.h"
#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"

#include <optional>
#include <set>
#include <vector>

namespace quillary::farm {

using runtime::Variant;

namespace {

constexpr int kWidth = 10200; // twips
constexpr int kHeight = 7800;
constexpr std::int32_t kDefaultCashbook = 6100;
constexpr int kCodesOfHeading = 100; // numbers under one heading, its own among them
constexpr int kNameLimit = 50;
constexpr int kCode = 0, kName = 1, kCachedName = 2;

// The numbers under a heading that have a row.
std::set<std::int32_t> UsedCodes(database::Database& db, std::int32_t account) {
    std::set<std::int32_t> used;
    const std::int32_t own = account * kCodesOfHeading;
    auto rows = db.OpenRecordset("SELECT DISTINCTROW [Secondary Codes].[Secondary Codes ID] "
                                 "FROM [Secondary Codes] WHERE [Secondary Codes].[Secondary Codes ID] >= " +
                                     std::to_string(own) + " And [Secondary Codes].[Secondary Codes ID] < " +
                                     std::to_string(own + kCodesOfHeading) + ";",
                                 database::RecordsetType::Snapshot);
    for (; !rows->EOF_(); rows->MoveNext())
        used.insert(runtime::CLng((*rows)[0].Value()));
    rows->Close();
    return used;
}

// Behind the last number; where that is the end of the range, the first gap. A number that was deleted is
// so given again as late as can be: settings of other modules may still name it.
std::optional<std::int32_t> NextFreeCode(database::Database& db, std::int32_t account) {
    const std::int32_t own = account * kCodesOfHeading;
    const std::set<std::int32_t> used = UsedCodes(db, account);
    const std::int32_t last = used.empty() ? own : *used.rbegin();
    if (last < own + kCodesOfHeading - 1)
        return last + 1;
    for (std::int32_t code = own + 1; code < own + kCodesOfHeading; ++code)
        if (!used.contains(code))
            return code;
    return std::nullopt;
}

struct HeadingFields {
    Variant name, taxNumber;
};

HeadingFields ReadHeading(database::Database& db, std::int32_t account) {
    HeadingFields fields{Variant::Null(), Variant::Null()};
    auto heading = db.OpenRecordset("SELECT DISTINCTROW [Account Codes].[Account Name], "
                                    "[Account Codes].TaxNumber FROM [Account Codes] "
                                    "WHERE [Account Codes].[Account Code] = " +
                                        std::to_string(account) + ";",
                                    database::RecordsetType::Snapshot);
    if (!heading->EOF_())
        fields = {(*heading)["Account Name"].Value(), (*heading)["TaxNumber"].Value()};
    heading->Close();
    return fields;
}

std::string CachedName(const Variant& heading, const Variant& name) {
    return runtime::TextOf(heading) + " : " + runtime::TextOf(name);
}

// On a recordset of its own: a row that is refused goes with it, and what is typed next finds no pending row.
void AddRow(database::Database& db, std::int32_t account, std::int32_t code, const std::string& name) {
    const HeadingFields heading = ReadHeading(db, account);
    auto rows = db.OpenRecordset("SELECT DISTINCTROW [Secondary Codes].* FROM [Secondary Codes] "
                                 "WHERE [Secondary Codes].[Secondary Codes ID] = " +
                                     std::to_string(code) + ";",
                                 database::RecordsetType::Dynaset);
    rows->AddNew();
    (*rows)["Secondary Codes ID"] = code;
    (*rows)["Main Code ID"] = account;
    (*rows)["Name"] = name;
    for (const char* inLanguage : {"Englishname", "Spanishname", "Portuguesename"})
        if (rows->FindField(inLanguage) >= 0) // an old file may lack it
            (*rows)[inLanguage] = name;
    (*rows)["Cached Name"] = CachedName(heading.name, name);
    (*rows)["TaxNumID"] = heading.taxNumber;
    rows->Update();
    rows->Close();
}

// Column widths as the user has left them, for the next time.
std::vector<Variant>& KeptWidths() {
    static std::vector<Variant> widths;
    return widths;
}

bool IsUsed(database::Database& db, std::int32_t code) {
    auto details = db.OpenRecordset("SELECT DISTINCTROW TOP 1 TransactionDetails.[Account Code] "
                                    "FROM TransactionDetails WHERE TransactionDetails.[Account Code] = " +
                                        std::to_string(code) + ";",
                                    database::RecordsetType::Snapshot);
    const bool used = !details->EOF_();
    details->Close();
    return used;
}

} // namespace

SecondaryHeadingsForm::SecondaryHeadingsForm()
    : controls::Form("frm_SecondaryHeadings"), dat_Secondary(*this, "dat_Secondary"),
      lbl_Heading(*this, "lbl_Heading"), cmb_Heading(*this, "cmb_Heading"),
      tgrd_Secondary(*this, "tgrd_Secondary"), cmd_Add(*this, "cmd_Add"), cmd_Delete(*this, "cmd_Delete"),
      cmd_Okay(*this, "cmd_Okay") {
    Layout = "secondary_headings";
    Caption = "Secondary Headings";
    Width = kWidth;
    Height = kHeight;
    lbl_Heading.Caption = "&Heading";
    cmb_Heading.SetBuddy(&lbl_Heading);
    cmd_Add.Caption = "&Add";
    cmd_Delete.Caption = "&Delete";
    cmd_Okay.Caption = "&OK";
    cmd_Okay.Default = true;

    const common::GridColumn columns[] = {
        {.caption = "Number", .width = 1200, .dataField = "Secondary Codes ID"},
        {.caption = "Name", .width = 2900, .dataField = "Name"},
        {.caption = "Long Name", .width = 3700, .dataField = "Cached Name"},
    };
    common::SetGridColumns(tgrd_Secondary, columns);
    common::SetColumnWidths(tgrd_Secondary, KeptWidths());
    tgrd_Secondary.Columns(kCode).Locked = true;
    tgrd_Secondary.Columns(kName).MaxLength = kNameLimit;
    tgrd_Secondary.Columns(kCachedName).Locked = true;
    tgrd_Secondary.AccessibleName = "Secondary headings";
    tgrd_Secondary.AllowDelete = true;
    tgrd_Secondary.Col = kName;
    tgrd_Secondary.SetDataSource(&dat_Secondary);
    tgrd_Secondary.FetchCellStyle = [](int, int, std::int64_t, int col, controls::CellStyle& style) {
        if (col != kName)
            style.backColor = controls::kMenuColour;
    };
    tgrd_Secondary.BeforeColUpdate = [this](int colIndex, Variant&, bool& cancel) {
        tgrd_Secondary_BeforeColUpdate(colIndex, cancel);
    };
    tgrd_Secondary.BeforeDelete = [this](bool& cancel) { tgrd_Secondary_BeforeDelete(cancel); };
    tgrd_Secondary.Error = [this](int dataError, int& response) {
        tgrd_Secondary_Error(dataError, response);
    };
    dat_Secondary.Validate = [this](int&, bool& save) { dat_Secondary_Validate(save); };
    cmb_Heading.Click = [this] {
        common::Trap("frm_SecondaryHeadings.cmb_Heading_Click", [&] { ShowRows(); });
    };
    cmd_Add.Click = [this] { cmd_Add_Click(); };
    cmd_Delete.Click = [this] { cmd_Delete_Click(); };
    cmd_Okay.Click = [this] { UnloadForm(); };
}

void SecondaryHeadingsForm::OpenHeading(std::int32_t account) {
    Open("", account);
}

void SecondaryHeadingsForm::OpenCashbook() {
    Open("WHERE [Show in Cashbk] = True ", kDefaultCashbook);
}

void SecondaryHeadingsForm::Open(const std::string& condition, std::int32_t account) {
    LoadForm();
    const auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
    // A heading without a name goes by its number; left out, another one would stand for it.
    common::FillDaoVBCombo("SELECT DISTINCTROW [Account Code], IIf(Len([Account Name] & '')=0, "
                           "[Account Code] & '', [Account Name]) FROM [Account Codes] " +
                               condition + "ORDER BY " +
                               (config::GetCodeOrder() ? "[Account Code];" : "[Account Name];"),
                           cmb_Heading, *db, account);
    db->Close();
    common::Trap("frm_SecondaryHeadings.Form_Load", [&] { ShowRows(); });
    tgrd_Secondary.SetFocus();
    ShowModal();
    KeptWidths().clear();
    for (int column = 0; column < tgrd_Secondary.ColumnCount(); ++column)
        KeptWidths().emplace_back(tgrd_Secondary.Columns(column).Width.Get());
}

void SecondaryHeadingsForm::ShowRows() {
    dat_Secondary.DatabaseName = config::GetDataFileName();
    dat_Secondary.RecordSource = "SELECT DISTINCTROW [Secondary Codes].* FROM [Secondary Codes] "
                                 "WHERE [Secondary Codes].[Main Code ID] = " +
                                 std::to_string(Account()) +
                                 " ORDER BY [Secondary Codes].[Secondary Codes ID];";
    dat_Secondary.Refresh();
}

std::int32_t SecondaryHeadingsForm::CurrentCode() {
    return runtime::CLng(dat_Secondary.Recordset()["Secondary Codes ID"].Value());
}

// The name by which the user knows the row: its own, or the heading's.
std::string SecondaryHeadingsForm::CurrentName() {
    const std::string name = runtime::TextOf(dat_Secondary.Recordset()["Name"].Value());
    return name.empty() ? cmb_Heading.Text.Get() : name;
}

bool SecondaryHeadingsForm::RowIsThere() {
    try {
        CurrentCode();
    } catch (const runtime::RunTimeError& error) {
        if (error.Number() != database::kErrRecordDeleted)
            throw;
        return false;
    }
    return true;
}

void SecondaryHeadingsForm::GoTo(std::int32_t code) {
    dat_Secondary.Recordset().FindFirst("[Secondary Codes ID] = " + std::to_string(code));
}

void SecondaryHeadingsForm::tgrd_Secondary_BeforeColUpdate(int colIndex, bool& cancel) {
    common::Trap("frm_SecondaryHeadings.tgrd_Secondary_BeforeColUpdate", [&] {
        if (colIndex != kName || !runtime::Trim(tgrd_Secondary.Columns(kName).Text.Get()).empty())
            return;
        if (!RowIsThere()) {
            TellRowGone();
            return;
        }
        // The heading's own row goes by the heading's name and needs none of its own.
        if (IsOwnRow())
            return;
        cancel = true;
        common::ShowMessage(
            common::Message("Secondary headings may not be blank. To take one away, select it and press "
                            "Delete.",
                            "Action Required"));
    });
}

void SecondaryHeadingsForm::tgrd_Secondary_BeforeDelete(bool& cancel) {
    cancel = true;
    common::Trap("frm_SecondaryHeadings.tgrd_Secondary_BeforeDelete", [&] {
        if (!RowIsThere()) {
            TellRowGone();
            return;
        }
        const std::vector<std::string> tokens = {CurrentName()};
        const char* refusal = nullptr;
        if (IsOwnRow()) {
            refusal = "|0| is the heading itself and can't be deleted here";
        } else {
            const auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
            if (IsUsed(*db, CurrentCode()))
                refusal = "|0| has already been used in the cashbook and can't be deleted";
            db->Close();
        }
        if (refusal) {
            common::ShowMessage(common::Message(config::TranslateTokens(refusal, tokens), "Action Required"));
            return;
        }
        common::Message question(config::TranslateTokens("Delete |0|?", tokens), "Please Confirm");
        question.buttons = common::kButtonsYesNo;
        cancel = common::ShowMessage(question) != common::kAnswerYes;
    });
}

void SecondaryHeadingsForm::tgrd_Secondary_Error(int dataError, int& response) {
    if (dataError != database::kErrRecordDeleted)
        return;
    response = 0;
    common::Trap("frm_SecondaryHeadings.tgrd_Secondary_Error", [&] { TellRowGone(); });
}

void SecondaryHeadingsForm::TellRowGone() {
    common::ShowMessage(common::Message("This secondary heading has been deleted by another program. The "
                                        "list is shown anew.",
                                        "Information"));
    ShowRows();
}

void SecondaryHeadingsForm::dat_Secondary_Validate(bool save) {
    if (!save)
        return;
    // The long name, and the name in the language at work, go with the row as it is written.
    auto& row = dat_Secondary.Recordset();
    const Variant name = row["Name"].Value();
    const auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
    const Variant heading = ReadHeading(*db, Account()).name;
    db->Close();
    row.Edit();
    row["Cached Name"] = CachedName(heading, name);
    const std::string inLanguage = config::GetLanguage() + "name";
    if (row.FindField(inLanguage) >= 0)
        row[inLanguage] = name;
    row.Update();
}

void SecondaryHeadingsForm::cmd_Add_Click() {
    common::Trap("frm_SecondaryHeadings.cmd_Add_Click", [&] {
        if (Account() == 0)
            return;
        const auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
        const std::optional<std::int32_t> code = NextFreeCode(*db, Account());
        if (!code) {
            common::ShowMessage(common::Message("All numbers of this heading are in use. Delete a secondary "
                                                "heading that you no longer need first.",
                                                "Action Required"));
            return;
        }
        const std::string name(runtime::Trim(
            common::ShowInputBox("Enter Secondary Heading Name", "Add Secondary Heading", "", kNameLimit)));
        if (name.empty())
            return;
        AddRow(*db, Account(), *code, name);
        db->Close();
        dat_Secondary.Refresh();
        GoTo(*code);
        tgrd_Secondary.SetFocus();
    });
}

void SecondaryHeadingsForm::cmd_Delete_Click() {
    common::Trap("frm_SecondaryHeadings.cmd_Delete_Click", [&] { tgrd_Secondary.DeleteRow(); });
}

} // namespace quillary::farm
