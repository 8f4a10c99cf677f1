#pragma once

#include "platform/controls/data_control.h"
#include "platform/controls/grid.h"
#include "platform/runtime/variant.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// Adding, deleting and saving the rows of a grid's data control, as the pages with an Add and a Delete
// button share it. Each routine reports its errors under its own name and never raises one.
namespace quillary::common {

// Field types of FieldPrompt; any other is a fault of the program.
inline constexpr std::int32_t kPromptLong = 4;
inline constexpr std::int32_t kPromptText = 18;

// One field of a new row.
struct FieldPrompt {
    std::string fieldName;  // "": the entry is skipped
    runtime::Variant value; // what the field gets; the user is asked when it is empty
    std::int32_t fieldType = kPromptText;
    std::string promptWord;     // what the user is asked for: "Deduction"
    std::int32_t maxLength = 0; // characters that the user may type; 0: no limit
};

// Adds a row of these fields and makes the last row the current one. The user's blank answer, or Cancel,
// adds nothing. tableWord: what the row belongs to; "Deductions" get zeros in their numbers.
void AddRecordsetRecord(controls::DataControl& data, const std::vector<FieldPrompt>& fields,
                        std::string_view tableWord);

// Deletes the current row once the user has confirmed it; the last row becomes the current one. fieldName:
// the field that names the row to the user ("", or a Null there: the row goes without a question). noun:
// what the row is, "Tax Rate". The only row that has been seen stays, in silence.
void DeleteRecordsetRecord(controls::DataControl& data, std::string_view fieldName, std::string_view noun);

// Writes what is pending in the grid's row and makes that row the current one.
void SaveGridRecordset(controls::Grid& grid, controls::DataControl& data);

} // namespace quillary::common
