#pragma once

#include "platform/controls/data_control.h"
#include "platform/controls/grid.h"
#include "platform/database/engine.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

namespace quillary::tax {

// The tax types of the current country: a grid on an array of text cells, which is filled once and written
// back when the page is saved. A type points at a percentage rate through its TaxRateNumber. Errors are
// reported under the routines' own names.
class GSTTypes {
public:
    explicit GSTTypes(controls::Grid& tgrd_GSTTypes);

    // Columns, first fill, and the rates in words of percent. caption: of the names' column.
    void SetUpGSTTypes(const std::string& caption);
    // Reads the percentages of the rate numbers again.
    void ShowRates();
    // Writes the array back, row by row and without a transaction: the rows before one that fails stay
    // written. Nothing is deleted. Does nothing before the page has been set up.
    void SaveGSTTypes();
    // A new type in front of the current row, for development.
    void AddGSTTypeRow();

private:
    void FillTaxArray(std::string_view sql, std::string_view databasePath);
    // Writes a row of the array into the record in edit, and saves it. taxNumber 0 leaves TaxNumber alone.
    void SaveValues(database::Recordset& types, long row, std::int32_t taxNumber);
    void BeforeColUpdate(int colIndex, bool& cancel);

    controls::Grid& grid_;
    std::shared_ptr<controls::QYxArray> types_; // a row a type, its columns those of the query
    std::string typesQuery_;                    // empty until the page is set up
    std::string shownExpense_;                  // of the cell that is being edited
};

// The columns of the grid of percentage rates and its routines: numbers alone, each rate number once.
// dat_GSTRates: bound to the grid. types: shows the percentages anew when one has changed.
void SetUpGSTRates(controls::Grid& tgrd_GSTRates, controls::DataControl& dat_GSTRates, GSTTypes& types);

} // namespace quillary::tax
