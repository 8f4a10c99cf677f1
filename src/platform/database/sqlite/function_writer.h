#pragma once

#include "platform/database/sqlite/expression_writer.h"

// Calls of the dialect's functions, the aggregates too. The functions of SQLite that do the work are in
// functions*.cpp; what SQLite can do by itself is written so.
namespace quillary::database::sqlite {

// 3085 for a function that the dialect does not have (Nz is none of its), 3075 for too few or too many
// arguments, 3095 and 3096 for an aggregate where none may stand.
Piece WriteCall(ExpressionWriter& writer, const jet_sql::Call& call);

// Whether a call is Count, Sum or another function over the rows of a group.
bool IsAggregate(const jet_sql::Call& call);
// Whether there is one in an expression; queries within it have their own.
bool ContainsAggregate(const jet_sql::Expr& expr);

} // namespace quillary::database::sqlite
