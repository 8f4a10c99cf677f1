#pragma once

#include "platform/database/sqlite/context.h"

// UPDATE, DELETE, INSERT and SELECT ... INTO.
namespace quillary::database::sqlite {

// The tables that change are those of the SET targets. One of them takes one statement; two, or one on the
// empty side of an outer join, go by a temporary table of the values, made from the state before. There a
// row that the outer join did not find is added.
Action WriteUpdate(Context& context, const jet_sql::Update& update);

// Rows go from one table: the starred one, the only one, or the one that all listed columns belong to.
Action WriteDelete(Context& context, const jet_sql::Delete& statement);

Action WriteInsert(Context& context, const jet_sql::Insert& insert);
Action WriteSelectInto(Context& context, const jet_sql::Select& select);

} // namespace quillary::database::sqlite
