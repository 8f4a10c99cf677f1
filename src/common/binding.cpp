#include "common/binding.h"

#include "common/error_report.h"
#include "common/messages.h"
#include "config/globals.h"
#include "platform/database/errors.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

namespace quillary::common {

using controls::Presentation;
using runtime::Variant;

namespace {

constexpr int kThirdField = 2;

void FillRows(database::Recordset& rows, controls::ComboBox& combo, std::int32_t selectedID,
              const ComboOptions& options) {
    const int textField = rows.FieldCount() > 1 ? 1 : 0;
    for (; !rows.EOF_(); rows.MoveNext()) {
        const Variant text = rows[textField].Value();
        if (text.IsNull())
            continue;
        combo.AddItem(runtime::TextOf(text));
        const int entry = combo.NewIndex();
        if (options.useIDs) {
            const std::int32_t id = runtime::CLng(rows[0].Value());
            combo.SetItemData(entry, id);
            if (selectedID != 0 && id == selectedID)
                combo.ListIndex = entry;
        }
        if (selectedID == 0 && !options.defaultField.empty()) {
            const Variant marked = rows[options.defaultField].Value();
            if (!marked.IsNull() && runtime::CBool(marked))
                combo.ListIndex = entry;
        }
    }
    if (combo.ListIndex < 0 && combo.ListCount() > 0)
        combo.ListIndex = 0;
}

void ReadValueList(controls::ValueItems& items, database::Recordset& rows, std::string_view idField,
                   std::string_view showField, ThirdFields* remembered) {
    if (remembered)
        remembered->clear();
    for (; !rows.EOF_(); rows.MoveNext()) {
        const Variant id = rows[idField].Value();
        if (id.IsNull())
            continue;
        items.Add(id, runtime::TextOf(rows[showField].Value()));
        if (remembered)
            remembered->insert_or_assign(runtime::CLng(id), rows[kThirdField].Value());
    }
}

} // namespace

void FillDaoVBCombo(std::string_view sql, controls::ComboBox& combo, database::Database& db,
                    std::int32_t selectedID, const ComboOptions& options) {
    try {
        auto rows = db.OpenRecordset(sql, database::RecordsetType::Snapshot);
        combo.Clear();
        if (options.firstEntry)
            combo.AddItem(options.noneText.empty() ? "None" : options.noneText, 0);
        FillRows(*rows, combo, selectedID, options);
        rows->Close();
    } catch (const runtime::RunTimeError& error) {
        ShowErrorBox(error, "CommonCode.DAOVBCombo.bas FillDaoVBCombo");
    }
}

void SetGridColumns(controls::Grid& grid, std::span<const GridColumn> columns) {
    while (grid.ColumnCount() > 0)
        grid.RemoveColumn(0);
    for (const GridColumn& column : columns) {
        controls::Column& added = grid.AddColumn();
        added.Visible = column.visible;
        added.Width = column.width;
        added.Caption = column.caption;
        added.DataField = column.dataField;
        if (!column.numberFormat.empty())
            added.NumberFormat = column.numberFormat;
        if (column.checkBox)
            SetBoolColumnPictures(grid, added.ColIndex());
    }
}

void SetGridCaptions(controls::Grid& grid, std::span<const std::string> captions) {
    for (std::size_t i = 0; i < captions.size() && static_cast<int>(i) < grid.ColumnCount(); ++i)
        grid.Columns(static_cast<int>(i)).Caption = captions[i];
}

void SetColumnWidths(controls::Grid& grid, std::span<const Variant> widths) {
    for (std::size_t i = 0; i < widths.size(); ++i)
        if (!widths[i].IsNull())
            grid.Columns(static_cast<int>(i)).Width = runtime::CLng(widths[i]);
}

void FillColumnList(controls::Grid& grid, int column, std::string_view table, std::string_view idField,
                    std::string_view showField, std::string_view dbPath, const ColumnListOptions& options) {
    const std::string name(table);
    FillColumnFromSql(grid, column,
                      "SELECT DISTINCTROW [" + name + "].* From [" + name + "] ORDER BY [" + name + "].[" +
                          std::string(showField) + "];",
                      table, idField, showField, dbPath, options);
}

void FillColumnFromSql(controls::Grid& grid, int column, std::string_view sql, std::string_view table,
                       std::string_view idField, std::string_view showField, std::string_view dbPath,
                       const ColumnListOptions& options) {
    try {
        controls::ValueItems& items = grid.Columns(column).ValueItems;
        items.Clear();
        auto db = config::DbEngine().OpenDatabase(dbPath);
        auto rows = db->OpenRecordset(sql, database::RecordsetType::Snapshot);
        items.Translate = true;
        items.Presentation = Presentation::DropDown;
        if (options.firstEmpty)
            items.Add("", "");
        ReadValueList(items, *rows, idField, showField, options.remembered);
        rows->Close();
        db->Close();
    } catch (const runtime::RunTimeError& error) {
        const std::string names =
            std::string(table) + ", " + std::string(idField) + ", " + std::string(showField);
        const std::string text =
            error.Number() == database::kErrUnknownTable
                ? "Database out of date, problem reading " + names
                : error.Description() + " " + std::to_string(error.Number()) + " - " + names;
        Message message(text, "An Error has Occurred");
        message.icon = kIconNotice;
        ShowMessage(message);
    }
}

void SetBoolColumnPictures(controls::Grid& grid, int column) {
    controls::ValueItems& items = grid.Columns(column).ValueItems;
    items.Clear();
    items.Translate = true;
    items.Presentation = Presentation::Pictures;
    items.Add(true, "True", controls::kTickedPicture);
    items.Add(false, "False", controls::kClearPicture);
}

void SetYesNoColumn(controls::Grid& grid, int column) {
    controls::ValueItems& items = grid.Columns(column).ValueItems;
    items.Clear();
    items.Translate = true;
    items.Presentation = Presentation::DropDown;
    items.Add(true, "Yes");
    items.Add(false, "No");
}

void SetColumnBoolText(controls::Grid& grid, int column, std::string_view text) {
    grid.Columns(column).Value = runtime::EqualName(text, "True") ? "True" : "False";
}

} // namespace quillary::common
