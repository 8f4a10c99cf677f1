#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The column definition files of the table editor: a text file of the data folder, named by its table, with
// a line a column. Values are separated by commas, texts stand in double quotes (a quote within is doubled),
// Booleans are #TRUE# and #FALSE#, and every line ends in CR LF.
namespace quillary::common {

// Kinds of columns, in the numbering of the files.
inline constexpr std::int32_t kColumnBoolean = 1;
inline constexpr std::int32_t kColumnCurrency = 5;
inline constexpr std::int32_t kColumnSingle = 6;
inline constexpr std::int32_t kColumnDouble = 7;
inline constexpr std::int32_t kColumnText = 18;
inline constexpr std::int32_t kColumnFixed = 19; // not shown; new rows take its fixed value

// The two Booleans that end a line of the longer form.
struct ColumnMarks {
    bool picture = false; // a Boolean shown as a tick box
    bool leading = false; // stands on the first column alone
};

struct ColumnDefinition {
    std::string caption;
    std::string field;
    std::int16_t length = 0; // characters that a user may type; 0 for a key field
    std::int32_t type = kColumnText;
    std::int32_t width = 0;                          // twips, 0 hides the column; of a fixed column the value
    std::int16_t number = 0;                         // 1 on the first column
    std::optional<ColumnMarks> marks = std::nullopt; // none: the form with six values a line
};

// Writes the file anew. 75, with a text for the user, when it cannot be written.
void WriteColumnFile(std::string_view fileName, const std::vector<ColumnDefinition>& columns);

// Reads the first `count` lines. 53 when there is no file, 62 when it holds fewer lines or values, 13 for a
// value of the wrong kind.
std::vector<ColumnDefinition> ReadColumnFile(std::string_view fileName, std::size_t count);

} // namespace quillary::common
