#pragma once

#include "common/column_file.h"
#include "platform/controls/buttons.h"
#include "platform/controls/data_control.h"
#include "platform/controls/form.h"
#include "platform/controls/grid.h"
#include "platform/controls/label.h"

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// The suite's table editor: the rows of a query in a grid, under the columns of a definition file, to be
// added, changed and deleted. Each row is written as it is left.
namespace quillary::common {

class TableEditor : public controls::Form {
public:
    TableEditor();

    controls::Label lbl_Prompt; // hidden while it is empty
    controls::DataControl dat_data;
    controls::Grid tgrd_data;
    controls::CommandButton cmd_Add;
    controls::CommandButton cmd_delete;
    controls::CommandButton cmd_Okay;

    void SetPrompt(std::string_view prompt);
    void SetDatabase(std::string_view path) { dat_data.DatabaseName = std::string(path); }

    // Shows the query under the columns of the definition file `fileName` (its first columnCount + 1 lines)
    // and returns when the user has closed the editor. In an editor that is open already the query takes the
    // place of what it shows, unless a row there is refused. The errors of the file and of the database; an
    // open editor then goes on with what it showed.
    void Run(int columnCount, std::string_view fileName, std::string_view sql, std::string_view title);

private:
    void ShowQuery(std::vector<ColumnDefinition> columns, std::string_view sql);
    void SetUpColumn(controls::Column& column, const ColumnDefinition& definition);
    const ColumnDefinition* DefinitionOf(int col) const;
    int FirstShownColumn() const; // the one that names a row; -1 without any
    void cmd_Add_Click();
    void tgrd_data_KeyPress(int& keyAscii);
    void tgrd_data_BeforeColUpdate(int col, bool& cancel);
    void tgrd_data_AfterColUpdate(int col);
    void tgrd_data_BeforeUpdate();
    void tgrd_data_BeforeDelete(bool& cancel);
    void tgrd_data_Error(int dataError, int& response);
    std::string CaptionsOf(const std::vector<std::string>& fields) const;
    std::string DuplicateFields();
    std::string MissingFields();

    std::vector<ColumnDefinition> columns_;
};

// The editor that is open; empty without one.
extern std::shared_ptr<TableEditor> mDataModule;

// Opens the editor over the screen and returns when it has closed. database: empty for the wage database.
// showFlag and the options are the suite's component's own; this editor asks for nothing in them. Errors are
// reported under "frm_setup.startdata".
void startdata(int columnCount, std::string_view tableName, bool showFlag, std::string_view sql,
               std::string_view title, std::string_view subtitle, std::string_view database, int optionA,
               int optionB, int optionC);
// Closes the editor and lets go of it. Errors are reported under "frm_setup.Close_Data".
void Close_Data();

// What the editor's menu event does (mDataModule_MenuSelect): set once by the page that knows, nullptr for
// nothing.
using EditorMenu = std::function<void(int argument)>;
void SetEditorMenu(EditorMenu menu);
// Raises the menu event. False: no table editor is open.
bool RaiseEditorMenu(int argument);

} // namespace quillary::common
