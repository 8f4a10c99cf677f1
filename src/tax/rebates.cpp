#include "tax/rebates.h"

#include "common/binding.h"
#include "common/error_report.h"
#include "common/messages.h"
#include "common/value_checks.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "config/settings.h"
#include "config/tokens.h"
#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"

namespace quillary::tax {

using runtime::RunTimeError;
using runtime::Variant;

namespace {

// Columns of the query, of the copy and of the grid.
enum Column { kRebateID, kRebateName, kSecCode, kRate, kIsQuantity, kCountry, kColumns };
constexpr int kNameLength = 30;
constexpr const char* kFault = "An Error has Occurred";

} // namespace

FrmRebates::FrmRebates(common::Screen& screen)
    : controls::Form("frm_Rebates"), lbl_Prompt(*this, "lbl_Prompt"), tgrd_data(*this, "tgrd_data"),
      cmd_Add(*this, "cmd_Add"), cmd_delete(*this, "cmd_delete"), cmd_Okay(*this, "cmd_Okay") {
    Layout = "rebates";
    Caption = "Rebates";
    lbl_Prompt.Visible = false; // nothing is said there
    cmd_Add.Caption = "&Insert";
    cmd_delete.Caption = "&Delete";
    cmd_Okay.Caption = "&OK";
    tgrd_data.AllowAddNew = true;
    tgrd_data.AccessibleName = "Rebates";

    Load = [this, &screen] { common::Trap("frm_Rebates.Form_Load", [&] { Form_Load(screen); }); };
    Activate = [this] { common::Trap("frm_Rebates.Form_Activate", [&] { Form_Activate(); }); };
    Unload = [this](bool&) { Form_Unload(); };
    cmd_Add.Click = [this] { common::Trap("frm_Rebates.cmd_Add_Click", [&] { cmd_Add_Click(); }); };
    cmd_delete.Click = [this] { common::Trap("frm_Rebates.cmd_delete_Click", [&] { cmd_delete_Click(); }); };
    cmd_Okay.Click = [this] { common::Trap("frm_Rebates.cmd_okay_Click", [&] { UnloadForm(); }); };
    tgrd_data.BeforeColEdit = [this](int col, int, bool&) {
        common::Trap("frm_Rebates.tgrd_data_BeforeColEdit", [&] {
            if (col == kIsQuantity)
                textBeforeEdit_ = tgrd_data.Columns(col).Text.Get();
        });
    };
    tgrd_data.AfterColEdit = [this](int col) {
        common::Trap("frm_Rebates.tgrd_data_AfterColEdit", [&] {
            if (col == kIsQuantity)
                SetBoolean(tgrd_data, col, textBeforeEdit_);
        });
    };
    tgrd_data.BeforeColUpdate = [this](int col, Variant&, bool& cancel) {
        common::Trap("frm_Rebates.tgrd_data_BeforeColUpdate",
                     [&] { tgrd_data_BeforeColUpdate(col, cancel); });
    };
    tgrd_data.ClassicAdd = [this](long row) {
        common::Trap("frm_Rebates.tgrd_data_ClassicAdd", [&] { tgrd_data_ClassicAdd(row); });
    };
}

// ---- Opening

void FrmRebates::Form_Load(common::Screen& screen) {
    countryCode_ = std::to_string(config::GetCountryCode());
    screen.Decorate(*this);
}

void FrmRebates::Form_Activate() {
    // Given to the form when all is read: a copy that lacks rows would delete them from the table.
    auto copy = std::make_shared<controls::QYxArray>();
    auto db = config::DbEngine().OpenDatabase(databasePath);
    auto rebates = db->OpenRecordset(query, database::RecordsetType::Snapshot);
    rowCount_ = 0;
    if (!rebates->EOF_()) {
        rebates->MoveLast();
        rowCount_ = rebates->RecordCount();
        lastColumn = rebates->FieldCount() - 1;
        rebates->MoveFirst();
    }
    copy->ReDim(0, rowCount_ - 1, 0, lastColumn);
    for (long row = 0; row < rowCount_; ++row, rebates->MoveNext())
        for (int col = 0; col <= lastColumn; ++col)
            common::IgnoreErrors([&] {
                const Variant value = (*rebates)[col].Value();
                copy->Value(row, col) =
                    col == kIsQuantity ? Variant(runtime::CBool(value) ? "true" : "false") : value;
            });
    rebates->Close();
    NameRebateCols(tgrd_data);
    array_ = copy;
    tgrd_data.Array = array_;
    tgrd_data.ReBind();
}

void FrmRebates::NameRebateCols(controls::Grid& grid) {
    common::Trap("frm_Rebates.NameRebateCols", [&] {
        const common::GridColumn columns[] = {
            {.caption = "RebateID", .dataField = "RebateID", .visible = false},
            {.caption = "Rebate", .width = 1500, .dataField = "RebateName"},
            {.caption = "Heading", .width = 1500, .dataField = "SecCode"},
            {.caption = "Rate", .width = 600, .dataField = "Rate"},
            {.caption = "Quantity", .width = 400, .dataField = "IsQuantity"},
            {.caption = "Country", .dataField = "Country", .visible = false}};
        common::SetGridColumns(grid, columns);
        BooleanValueItems(grid);
        grid.Columns(kIsQuantity).DefaultValue = Variant("False");
        common::FillColumnFromSql(
            grid, kSecCode,
            std::string("SELECT DISTINCTROW [Secondary Codes ID], [Cached Name] "
                        "FROM [Secondary Codes] ") +
                (config::GetCodeOrder() ? "Order by [Secondary Codes ID];" : "Order by [Cached Name];"),
            "Secondary Codes", "Secondary Codes ID", "Cached Name", databasePath);
    });
}

void FrmRebates::BooleanValueItems(controls::Grid& grid) {
    common::Trap("frm_Rebates.BooleanValueItems", [&] {
        controls::ValueItems& items = grid.Columns(kIsQuantity).ValueItems;
        items.Clear();
        items.Translate = true;
        items.CycleOnClick = true;
        items.Presentation = controls::Presentation::Pictures;
        AddBooleanPictures(items);
    });
}

void FrmRebates::AddBooleanPictures(controls::ValueItems& valueItems) {
    common::Trap("frm_Rebates.AddBooleanPictures", [&] {
        valueItems.Add("True", "True", controls::kTickedPicture);
        valueItems.Add("False", "False", controls::kClearPicture);
    });
}

// ---- Editing

void FrmRebates::SetBoolean(controls::Grid& grid, int col, const std::string& oldText) {
    common::Trap("frm_Rebates.SetBoolean", [&] {
        controls::Column& column = grid.Columns(col);
        if (runtime::TextOf(column.Value.Get()) == " ")
            column.Value = Variant(runtime::EqualName(oldText, "True") ? "False" : "True");
        else
            column.Value = Variant(oldText);
    });
}

void FrmRebates::tgrd_data_BeforeColUpdate(int col, bool& cancel) {
    controls::Column& column = tgrd_data.Columns(col);
    switch (col) {
    case kRebateName: {
        const std::string name = column.Text;
        if (name.empty())
            cancel = true;
        else if (runtime::CharCount(name) > kNameLength)
            column.Text = std::string(runtime::LeftChars(name, kNameLength)); // meant: without a message
        break;
    }
    case kSecCode:
        cancel = common::OutOfRange(column.Value.Get(), common::kRangeWhole);
        break;
    case kRate:
        cancel = common::OutOfRange(column.Value.Get(), common::kRangeSingle);
        break;
    default:
        break;
    }
}

// An empty row at this place of the copy; the grid stands in it.
void FrmRebates::NewRow(long row) {
    array_->InsertRows(row);
    tgrd_data.ReBind();
    if (tgrd_data.Bookmark.Get() != row)
        tgrd_data.Bookmark = row;
    tgrd_data.EditActive = true;
    tgrd_data.EditActive = false;
    array_->Value(row, kIsQuantity) = "False";
    tgrd_data.Refresh();
    tgrd_data.SetFocus();
}

void FrmRebates::cmd_Add_Click() {
    if (!array_)
        return; // the rebates could not be read
    // Without a row, or behind the last one when the grid stands at its foot, where it has no bookmark.
    NewRow(static_cast<long>(tgrd_data.Bookmark.Get().value_or(array_->UpperBound(1) + 1)));
    tgrd_data.Col = kRebateName;
}

void FrmRebates::tgrd_data_ClassicAdd(long row) {
    tgrd_data.Update();
    NewRow(tgrd_data.Bookmark.Get() ? row : 0);
}

void FrmRebates::cmd_delete_Click() {
    if (!tgrd_data.Bookmark.Get())
        tgrd_data.Update();
    const auto bookmark = tgrd_data.Bookmark.Get();
    if (!bookmark)
        return;
    const std::vector<std::string> tokens = {
        runtime::TextOf(array_->Value(static_cast<long>(*bookmark), kRebateName)), ""};
    common::Message question(config::TranslateTokens("Delete |0|?", tokens), "Please Confirm");
    question.subHeading = config::TranslateTokens("Delete |1|", tokens); // meant: nothing is named there
    question.buttons = common::kButtonsYesNo;
    if (common::ShowMessage(question) != common::kAnswerYes)
        return;
    common::IgnoreErrors([&] { tgrd_data.Delete(); });
    // Behind a deleted last row there is none to move on to; the one before it is nearer than the first.
    if (!tgrd_data.Bookmark.Get())
        common::IgnoreErrors([&] { tgrd_data.MoveLast(); });
    common::IgnoreErrors([&] { tgrd_data.ReBind(); });
}

// ---- Closing

void FrmRebates::Form_Unload() {
    common::IgnoreErrors([&] { tgrd_data.Update(); });
    common::IgnoreErrors([&] { SaveData(); });
    tgrd_data.Array = nullptr;
    array_.reset();
}

bool FrmRebates::SaveData() {
    if (!array_)
        return true;
    try {
        auto db = config::DbEngine().OpenDatabase(databasePath);
        auto rebates = db->OpenRecordset(query, database::RecordsetType::Dynaset);
        for (long row = 0; row <= array_->UpperBound(1); ++row)
            SaveRow(*rebates, row);
        std::string message;
        DeleteMissing(*rebates, message);
        if (!message.empty())
            common::ShowMessage(common::Message(message, "Action required"));
        rebates->Close();
        db->Flush();
        db->Close();
    } catch (const RunTimeError& error) {
        common::ShowErrorBox(error, "frm_Rebates.SaveData");
    }
    return true;
}

void FrmRebates::SaveRow(database::Recordset& rebates, long row) {
    Variant& key = array_->Value(row, keyColumn);
    if (runtime::CLng(key) <= 0) {
        rebates.AddNew();
        SaveValues(rebates, row);
        if (rebates.BOF() && rebates.EOF_())
            return; // refused, and still no rebate of the country: the rows behind it get their turn
        // The row's number, so that it is not taken for one that is gone. Meant: a row that was refused takes
        // that of the last one.
        rebates.MoveLast();
        key = rebates[keyField].Value();
        return;
    }
    rebates.FindFirst("[" + keyField + "]=" + runtime::TextOf(key));
    if (rebates.NoMatch()) {
        common::ShowMessage(common::Message("Something wrong here", kFault));
        return;
    }
    rebates.Edit();
    SaveValues(rebates, row);
}

void FrmRebates::SaveValues(database::Recordset& rebates, long row) {
    for (int col = kRebateName; col <= lastColumn; ++col) {
        common::IgnoreErrors([&] {
            const Variant& cell = array_->Value(row, col);
            switch (col) {
            case kRebateName:
                rebates[col] = cell;
                break;
            case kSecCode:
                rebates[col] = runtime::CLng(cell);
                break;
            case kRate:
                rebates[col] = runtime::CSng(cell);
                break;
            case kIsQuantity:
                rebates[col] = runtime::CBool(cell);
                break;
            case kCountry:
                rebates[col] = Variant(countryCode_);
                break;
            default:
                common::ShowMessage(common::Message("Something wrong!!"));
                break;
            }
        });
    }
    try {
        rebates.Update();
    } catch (const RunTimeError& error) {
        if (error.Number() == database::kErrDuplicateValue)
            common::ShowMessage(common::Message("None unique entry discarded", "Information"));
        else if (error.Number() == database::kErrRequiredField)
            common::ShowMessage(common::Message("Required field is missing", kFault));
        else
            common::ShowErrorBox(error, "frm_Rebates.SaveValues");
        rebates.CancelUpdate();
    }
}

bool FrmRebates::IsKept(const Variant& key) const {
    for (long row = 0; row <= array_->UpperBound(1); ++row)
        if (runtime::CLng(array_->Value(row, keyColumn)) == runtime::CLng(key))
            return true;
    return false;
}

void FrmRebates::DeleteMissing(database::Recordset& rebates, std::string& message) {
    if (rebates.BOF() && rebates.EOF_())
        return;
    for (rebates.MoveFirst(); !rebates.EOF_(); rebates.MoveNext()) {
        if (IsKept(rebates[keyField].Value()))
            continue;
        try {
            rebates.Delete();
        } catch (const RunTimeError& error) {
            if (error.Number() != database::kErrRelatedRows)
                throw;
            message = "Database error, deletion cancelled!";
        }
    }
}

void ShowRebates(common::Screen& screen) {
    FrmRebates form(screen);
    form.LoadForm();
    form.databasePath = config::GetDataFileName();
    form.tableName = "TaxRebates";
    form.query =
        "SELECT DISTINCTROW RebateID, RebateName, SecCode, Rate, IsQuantity, Country From TaxRebates "
        "WHERE TaxRebates.Country=" +
        std::to_string(config::GetCountryCode()) + ";";
    form.lastColumn = kColumns - 1;
    form.keyColumn = kRebateID;
    form.keyField = "RebateID";
    form.ShowModal();
}

} // namespace quillary::tax
