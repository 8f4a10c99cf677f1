#pragma once

#include "platform/database/sqlite/cells.h"
#include "platform/database/sqlite/columns.h"
#include "platform/database/sqlite/connection.h"

#include <optional>
#include <string_view>

// The criterion of a FindFirst, made once and tried on row after row.
namespace quillary::database::sqlite {

class RowFilter {
public:
    // 3077 for a broken text, 3070 for a name that is no field, 3464 for kinds that do not compare.
    RowFilter(Connection& connection, const std::vector<ResultColumn>& columns, std::string_view criteria);

    bool Holds(const CellRow& cells) const;

private:
    // field = number, which is nearly all of them: compared without the engine.
    struct Equality {
        int column = 0;
        double number = 0;
    };
    std::optional<Equality> equality_;
    Statement statement_;
    std::vector<int> fields_;
};

} // namespace quillary::database::sqlite
