#pragma once

#include "platform/database/jet_sql/ast.h"

#include <string>
#include <string_view>
#include <vector>

// Text of the Jet dialect to its syntax tree. Any text ends in a tree or in a runtime::RunTimeError (no
// source): 3075 for a broken expression, string or date (the message quotes the place); 3131 FROM, 3132
// GROUP BY, 3133 HAVING, 3134 INSERT, 3135 JOIN, 3138 ORDER BY, 3139 PARAMETERS, 3140 PROCEDURE, 3141
// select list, 3143 TRANSFORM, 3144 UPDATE, 3145 WHERE, 3130 DELETE, 3289 to 3293 and 3295 the
// definition statements; 3126 a bracket without its mate, 3129 no statement at all, 3142 text behind the
// end, 3360 too deeply nested. Names are not looked up: an unknown one is the engine's business.
namespace quillary::database::jet_sql {

// One statement; a ";" at its end is optional.
Statement Parse(std::string_view sql);

// Statements ended by ";" (the last one's is optional). Nothing is returned if one of them is broken.
std::vector<Statement> ParseScript(std::string_view sql);

// A WHERE expression, as the criterion of FindFirst or a filter.
Expr ParseExpression(std::string_view criterion);

// The statements of a script as texts, unparsed: for running one after the other. A ";" within a string,
// a bracketed name, a date, or behind PARAMETERS and PROCEDURE does not split; lines that begin with "--"
// are notes and are left out; pieces without any word are left out. Never fails: a broken piece is for
// Parse to refuse.
struct ScriptPiece {
    std::string text;
    int line = 1; // where it begins
};
std::vector<ScriptPiece> SplitScript(std::string_view script);

// Whether the text is a statement by its first word, rather than the name of a table or saved query
// (`SELECT ...`, but not `Farm Details` and not `[Select]`). A single word is a name.
bool IsStatement(std::string_view text);

} // namespace quillary::database::jet_sql
