#include "common/table_editor.h"

#include "common/error_report.h"
#include "common/messages.h"
#include "config/settings.h"
#include "config/tokens.h"
#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"

#include <algorithm>

namespace quillary::common {

using runtime::RunTimeError;
using runtime::Variant;

std::shared_ptr<TableEditor> mDataModule;

namespace {

constexpr const char* kNotSaved = "Entry Not Saved";

EditorMenu& Menu() {
    static EditorMenu menu;
    return menu;
}

bool IsNumber(const ColumnDefinition& column) {
    return column.type > kColumnBoolean && column.type <= kColumnDouble;
}

// What may stand somewhere in a number: digits, signs, separators, exponents, the currency sign.
bool MayStandInNumber(int character) {
    const auto& locale = runtime::CurrentLocale();
    const auto letter = static_cast<char32_t>(character);
    if (letter == locale.decimal || letter == locale.group)
        return true;
    if (character > 0x7F)
        return true; // currency signs and blanks of the locale: the whole is checked when the cell is left
    return std::string_view("0123456789+-.,()eEdD$ ").find(static_cast<char>(character)) !=
           std::string_view::npos;
}

void Explain(std::string_view text, const std::vector<std::string>& tokens, const char* heading) {
    ShowMessage(Message(config::TranslateTokens(text, tokens), heading));
}

} // namespace

TableEditor::TableEditor()
    : controls::Form("mDataModule"), lbl_Prompt(*this, "lbl_Prompt"), dat_data(*this, "dat_data"),
      tgrd_data(*this, "tgrd_data"), cmd_Add(*this, "cmd_Add"), cmd_delete(*this, "cmd_delete"),
      cmd_Okay(*this, "cmd_Okay") {
    Layout = "table_editor";
    cmd_Add.Caption = "&Add";
    cmd_delete.Caption = "&Delete";
    cmd_Okay.Caption = "&OK";
    lbl_Prompt.UseMnemonic = false;
    lbl_Prompt.Visible = false;
    tgrd_data.AllowAddNew = true;
    tgrd_data.AllowDelete = true;
    tgrd_data.SetDataSource(&dat_data);

    cmd_Add.Click = [this] { Trap("mDataModule.cmd_Add_Click", [&] { cmd_Add_Click(); }); };
    cmd_delete.Click = [this] { Trap("mDataModule.cmd_delete_Click", [&] { tgrd_data.DeleteRow(); }); };
    cmd_Okay.Click = [this] { Trap("mDataModule.cmd_Okay_Click", [&] { UnloadForm(); }); };
    tgrd_data.KeyPress = [this](int& keyAscii) { tgrd_data_KeyPress(keyAscii); };
    tgrd_data.BeforeColUpdate = [this](int col, Variant&, bool& cancel) {
        tgrd_data_BeforeColUpdate(col, cancel);
    };
    tgrd_data.AfterColUpdate = [this](int col) { tgrd_data_AfterColUpdate(col); };
    tgrd_data.BeforeUpdate = [this](bool&) { tgrd_data_BeforeUpdate(); };
    tgrd_data.BeforeDelete = [this](bool& cancel) { tgrd_data_BeforeDelete(cancel); };
    tgrd_data.Error = [this](int dataError, int& response) { tgrd_data_Error(dataError, response); };
}

void TableEditor::SetPrompt(std::string_view prompt) {
    lbl_Prompt.Caption = std::string(prompt);
    lbl_Prompt.Visible = !prompt.empty();
}

void TableEditor::Run(int columnCount, std::string_view fileName, std::string_view sql,
                      std::string_view title) {
    // A row that is refused stays, with what was typed, and the editor goes on with its table.
    if (!IsOpen() || tgrd_data.CommitRow()) {
        ShowQuery(ReadColumnFile(fileName, static_cast<std::size_t>(columnCount) + 1), sql);
        Caption = std::string(title);
        tgrd_data.AccessibleName = std::string(title);
    }
    ShowModal();
}

void TableEditor::ShowQuery(std::vector<ColumnDefinition> columns, std::string_view sql) {
    const std::string former = dat_data.RecordSource;
    dat_data.RecordSource = std::string(sql);
    try {
        dat_data.Refresh();
    } catch (const RunTimeError&) {
        if (IsOpen()) {
            dat_data.RecordSource = former;
            dat_data.Refresh();
        }
        throw;
    }
    columns_ = std::move(columns);
    while (tgrd_data.ColumnCount() > 0)
        tgrd_data.RemoveColumn(0);
    for (const ColumnDefinition& definition : columns_)
        SetUpColumn(tgrd_data.AddColumn(), definition);
    tgrd_data.ReBind();
}

void TableEditor::SetUpColumn(controls::Column& column, const ColumnDefinition& definition) {
    column.Caption = definition.caption;
    column.DataField = definition.field;
    column.Visible = definition.width > 0 && definition.type != kColumnFixed;
    if (!column.Visible)
        return;
    column.Width = definition.width;
    if (IsNumber(definition)) // the caption too stands over the figures
        column.Alignment = controls::Column::Align::Right;
    if (definition.type == kColumnBoolean) {
        const bool pictures = definition.marks && definition.marks->picture;
        column.ValueItems.Add(true, pictures ? "True" : "Yes", pictures ? controls::kTickedPicture : 0);
        column.ValueItems.Add(false, pictures ? "False" : "No", pictures ? controls::kClearPicture : 0);
        column.ValueItems.Translate = true;
        column.ValueItems.Presentation =
            pictures ? controls::Presentation::Pictures : controls::Presentation::DropDown;
        return;
    }
    if (definition.type == kColumnCurrency)
        column.NumberFormat = "Standard";
    int length = definition.length;
    auto& records = dat_data.Recordset();
    if (const int position = records.FindField(definition.field); position >= 0) {
        const database::Field& field = records[position];
        if (field.Type() == database::FieldType::Text && field.Size() > 0)
            length = length > 0 ? std::min(length, field.Size()) : field.Size();
    }
    column.MaxLength = length;
}

const ColumnDefinition* TableEditor::DefinitionOf(int col) const {
    return col >= 0 && static_cast<std::size_t>(col) < columns_.size()
               ? &columns_[static_cast<std::size_t>(col)]
               : nullptr;
}

void TableEditor::cmd_Add_Click() {
    if (tgrd_data.GoToNewRow())
        tgrd_data.MoveToColumn(FirstShownColumn());
}

int TableEditor::FirstShownColumn() const {
    int col = 0;
    while (col < tgrd_data.ColumnCount() && !tgrd_data.Columns(col).Visible)
        ++col;
    return col < tgrd_data.ColumnCount() ? col : -1;
}

void TableEditor::tgrd_data_KeyPress(int& keyAscii) {
    const ColumnDefinition* column = DefinitionOf(tgrd_data.Col);
    if (column && IsNumber(*column) && keyAscii >= ' ' && !MayStandInNumber(keyAscii))
        keyAscii = 0;
}

void TableEditor::tgrd_data_BeforeColUpdate(int col, bool& cancel) {
    Trap("mDataModule.tgrd_data_BeforeColUpdate", [&] {
        const ColumnDefinition* column = DefinitionOf(col);
        auto& records = dat_data.Recordset();
        const int position = column ? records.FindField(column->field) : -1;
        if (position < 0)
            return;
        const Variant typed = tgrd_data.Columns(col).Value.Get();
        try {
            dat_data.ValueFor(records[position], typed);
        } catch (const RunTimeError&) {
            cancel = true;
            Explain(IsNumber(*column) ? "|0| is not a number that |1| can hold, please enter another one"
                                      : "|0| can't be stored as |1|, please enter it differently",
                    {runtime::TextOf(typed), column->caption}, "Invalid Entry");
        }
    });
}

void TableEditor::tgrd_data_AfterColUpdate(int col) {
    Trap("mDataModule.tgrd_data_AfterColUpdate", [&] {
        // A cell that was emptied holds nothing, not an empty text: the callers go by that.
        if (runtime::TextOf(tgrd_data.Columns(col).Value.Get()).empty())
            tgrd_data.Columns(col).Value = Variant::Null();
        // The boxes of a new row show what they will hold.
        if (!tgrd_data.OnNewRow())
            return;
        for (int other = 0; other < tgrd_data.ColumnCount(); ++other)
            if (columns_[static_cast<std::size_t>(other)].type == kColumnBoolean &&
                tgrd_data.Columns(other).Visible &&
                runtime::TextOf(tgrd_data.Columns(other).Value.Get()).empty())
                tgrd_data.Columns(other).Value = Variant(false);
    });
}

void TableEditor::tgrd_data_BeforeUpdate() {
    Trap("mDataModule.tgrd_data_BeforeUpdate", [&] {
        if (!tgrd_data.OnNewRow())
            return;
        for (int col = 0; col < tgrd_data.ColumnCount(); ++col)
            if (const auto& column = columns_[static_cast<std::size_t>(col)]; column.type == kColumnFixed)
                tgrd_data.Columns(col).Value = Variant(column.width);
    });
}

void TableEditor::tgrd_data_BeforeDelete(bool& cancel) {
    cancel = true;
    Trap("mDataModule.tgrd_data_BeforeDelete", [&] {
        std::string name;
        if (const int col = FirstShownColumn(); col >= 0)
            name = tgrd_data.Columns(col).Text.Get();
        Message question(config::TranslateTokens(name.empty() ? "Delete this row?" : "Delete |0|?",
                                                 std::vector<std::string>{name}),
                         "Please Confirm");
        question.buttons = kButtonsYesNo;
        cancel = ShowMessage(question) != kAnswerYes;
    });
}

void TableEditor::tgrd_data_Error(int dataError, int& response) {
    Trap("mDataModule.tgrd_data_Error", [&] {
        switch (dataError) {
        case controls::kGridDuplicate:
            Explain("Another row has the same |0|. Change it, or press Escape to undo the row.",
                    {DuplicateFields()}, kNotSaved);
            break;
        case database::kErrRequiredField:
            Explain("|0| must be filled in. Fill it, or press Escape to undo the row.", {MissingFields()},
                    kNotSaved);
            break;
        case database::kErrRelatedRows:
            Explain("This row can't be deleted or changed as it is being used elsewhere.", {},
                    "An Error has Occurred");
            break;
        case database::kErrRecordDeleted:
            Explain("Another program has deleted this row. Press Escape to undo your changes.", {},
                    kNotSaved);
            break;
        case database::kErrCannotLock:
        case database::kErrPageLocked:
        case database::kErrFileInUse:
            Explain(
                "Another program is using the table. Wait a moment and try again, or press Escape to undo "
                "the row.",
                {}, kNotSaved);
            break;
        default:
            return; // the grid shows the engine's own text
        }
        response = 0;
    });
}

std::string TableEditor::CaptionsOf(const std::vector<std::string>& fields) const {
    std::string captions;
    for (const std::string& field : fields)
        for (const ColumnDefinition& column : columns_)
            if (runtime::EqualName(column.field, field) && column.width > 0 && column.type != kColumnFixed)
                captions += (captions.empty() ? "" : ", ") + column.caption;
    return captions;
}

std::string TableEditor::DuplicateFields() {
    auto& records = dat_data.Recordset();
    if (records.FieldCount() > 0)
        for (const database::TableDef& table : dat_data.Database()->TableDefs())
            if (runtime::EqualName(table.name, records[0].SourceTable()))
                for (const database::IndexDef& index : table.indexes)
                    if (std::string captions = CaptionsOf(index.fields); index.unique && !captions.empty())
                        return captions;
    return "entry";
}

std::string TableEditor::MissingFields() {
    auto& records = dat_data.Recordset();
    std::vector<std::string> missing;
    for (int col = 0; col < tgrd_data.ColumnCount(); ++col) {
        const controls::Column& column = tgrd_data.Columns(col);
        const int position = records.FindField(column.DataField.Get());
        if (position >= 0 && records[position].Required() && runtime::TextOf(column.Value.Get()).empty())
            missing.push_back(column.DataField);
    }
    const std::string captions = CaptionsOf(missing);
    return captions.empty() ? "Every field" : captions;
}

// ---- Its calls

void startdata(int columnCount, std::string_view tableName, bool /*showFlag*/, std::string_view sql,
               std::string_view title, std::string_view subtitle, std::string_view database, int /*optionA*/,
               int /*optionB*/, int /*optionC*/) {
    // Kept here too: the menu event may close the editor while it runs.
    std::shared_ptr<TableEditor> editor;
    Trap("frm_setup.startdata", [&] {
        editor = mDataModule = std::make_shared<TableEditor>();
        editor->SetPrompt(subtitle);
        editor->SetDatabase(database.empty() ? config::GetWageFileName() : std::string(database));
        editor->Run(columnCount, tableName, sql, title);
    });
    Close_Data();
}

void Close_Data() {
    Trap("frm_setup.Close_Data", [] {
        if (!mDataModule)
            return;
        const std::shared_ptr<TableEditor> closing = mDataModule;
        if (closing->UnloadForm())
            mDataModule.reset();
    });
}

void SetEditorMenu(EditorMenu menu) {
    Menu() = std::move(menu);
}

bool RaiseEditorMenu(int argument) {
    if (!mDataModule || !mDataModule->IsOpen())
        return false;
    // A copy: the routine may set another one.
    if (const EditorMenu menu = Menu())
        menu(argument);
    return true;
}

} // namespace quillary::common
