#pragma once

#include "common/page.h"
#include "platform/controls/buttons.h"
#include "platform/controls/form.h"
#include "platform/controls/grid.h"
#include "platform/controls/label.h"
#include "platform/controls/qyx_array.h"
#include "platform/database/engine.h"

#include <memory>
#include <string>

namespace quillary::tax {

// The tax rebates of the country: the form edits a copy of their rows, and on closing reconciles the table
// with it. Rows that are found are updated, new ones added, and those gone from the copy deleted.
class FrmRebates : public controls::Form {
public:
    explicit FrmRebates(common::Screen& screen);

    controls::Label lbl_Prompt;
    controls::Grid tgrd_data;
    controls::CommandButton cmd_Add;
    controls::CommandButton cmd_delete;
    controls::CommandButton cmd_Okay;

    // Set by the opener between loading and showing.
    std::string databasePath;
    std::string tableName;
    std::string query;
    int lastColumn = 0;
    int keyColumn = 0;
    std::string keyField;

    // Columns of the grid: captions, fields, widths and value lists.
    void NameRebateCols(controls::Grid& grid);
    // The check-box column: what is shown for True and False.
    void BooleanValueItems(controls::Grid& grid);
    void AddBooleanPictures(controls::ValueItems& valueItems);
    // Settles an edit of the check-box column: a click makes the other value of oldText, anything else puts
    // oldText back.
    void SetBoolean(controls::Grid& grid, int col, const std::string& oldText);
    // Reconciles the table with the copy. Always True; what goes wrong is told in messages.
    bool SaveData();

private:
    void Form_Load(common::Screen& screen);
    void Form_Activate();
    void Form_Unload();
    void cmd_Add_Click();
    void cmd_delete_Click();
    void tgrd_data_BeforeColUpdate(int col, bool& cancel);
    void tgrd_data_ClassicAdd(long row);
    void NewRow(long row);
    void SaveRow(database::Recordset& rebates, long row);
    void SaveValues(database::Recordset& rebates, long row);
    bool IsKept(const runtime::Variant& key) const;
    void DeleteMissing(database::Recordset& rebates, std::string& message);

    std::shared_ptr<controls::QYxArray> array_;
    long rowCount_ = 0;
    std::string textBeforeEdit_;
    std::string countryCode_;
};

// Opens the form on the rebates of the country, and returns when it has closed.
void ShowRebates(common::Screen& screen);

} // namespace quillary::tax
