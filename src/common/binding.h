#pragma once

#include "platform/controls/grid.h"
#include "platform/controls/lists.h"
#include "platform/database/engine.h"
#include "platform/runtime/variant.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// Combo boxes filled from a query, and the columns of grids: captions, widths and the value lists that
// translate what is stored into what the user reads.
namespace quillary::common {

// ---- Lists

struct ComboOptions {
    bool firstEntry = false;    // an entry with the number 0 before the rows
    std::string noneText{};     // its text; empty: "None"
    bool useIDs = true;         // the row's first field is the number beside the entry
    std::string defaultField{}; // with no selectedID: the yes/no field that marks the row to select; "": none
};

// Fills the box with the rows of the query: the first field is the id, the second the text; of a query with
// one field that field is both. A row whose text is Null adds nothing. Selected is the entry with
// selectedID, unless that is 0; else the first one. An error, such as a missing table, is told in the common
// report box, and what was added until then stays.
void FillDaoVBCombo(std::string_view sql, controls::ComboBox& combo, database::Database& db,
                    std::int32_t selectedID, const ComboOptions& options = {});

// ---- Columns

struct GridColumn {
    std::string caption{};
    int width = 0; // twips
    std::string dataField{};
    std::string numberFormat{}; // empty: as the value reads
    bool checkBox = false;      // True and False as pictures
    bool visible = true;
};

// Takes all columns off the grid and makes it the described ones.
void SetGridColumns(controls::Grid& grid, std::span<const GridColumn> columns);

// Captions by position; those beyond the last column are passed over. Tokens are the caller's to translate.
void SetGridCaptions(controls::Grid& grid, std::span<const std::string> captions);

// Widths by position, in twips; Null leaves a column as it is. 9 for a width without a column.
void SetColumnWidths(controls::Grid& grid, std::span<const runtime::Variant> widths);

// ---- Value lists

// The third field of each row by the row's id.
using ThirdFields = std::unordered_map<std::int32_t, runtime::Variant>;

struct ColumnListOptions {
    bool firstEmpty = false;           // an entry for the empty value before the rows
    ThirdFields* remembered = nullptr; // filled with the third fields, for the caller's look-ups
};

// Gives the column a list that drops down: a row's idField is what is stored, its showField what the user
// reads. The rows are those of the table, ordered by showField. A row whose id is Null adds nothing. An error
// is told in a message, a missing table as a database that is out of date; the column then has what was read.
void FillColumnList(controls::Grid& grid, int column, std::string_view table, std::string_view idField,
                    std::string_view showField, std::string_view dbPath,
                    const ColumnListOptions& options = {});
// The same with the rows of a query; table is what the message names.
void FillColumnFromSql(controls::Grid& grid, int column, std::string_view sql, std::string_view table,
                       std::string_view idField, std::string_view showField, std::string_view dbPath,
                       const ColumnListOptions& options = {});

// True and False as a ticked and a clear picture; a click makes the other one.
void SetBoolColumnPictures(controls::Grid& grid, int column);
// True and False as the words Yes and No, picked from a list.
void SetYesNoColumn(controls::Grid& grid, int column);
// Puts "True" into the cell of the current row where the text reads so (case does not count), else "False":
// an edit without events.
void SetColumnBoolText(controls::Grid& grid, int column, std::string_view text);

} // namespace quillary::common
