#pragma once

#include "platform/database/sqlite/query_writer.h"

// TRANSFORM ... PIVOT: one column for each value of the pivot, ascending by value, or for each heading
// that is told; a cell without rows is Null, even of Count. Without told headings the values are asked
// for first, and the statement serves for these rows alone (Context::reusable).
namespace quillary::database::sqlite {

QueryText WriteCrosstab(Context& context, const jet_sql::Crosstab& crosstab, Scope* outer);

} // namespace quillary::database::sqlite
