#pragma once

#include <string>
#include <string_view>
#include <vector>

// What a program that is handed any text of the dialect (a script, a line typed at a prompt) has to know
// before it runs it.
namespace quillary::database {

class Database;

struct ScriptPiece {
    std::string text;
    int line = 1; // where it begins
};

// The statements of a script, ended by ";", as texts. Lines that begin with "--" are notes. Never fails:
// a broken piece is for the engine to refuse.
std::vector<ScriptPiece> SplitScript(std::string_view script);

// Whether the last statement of the text is ended, so that a prompt need not ask for more.
bool EndsStatement(std::string_view text);

// Whether the text gives rows: a select or crosstab, the name of a table, or of a saved query that does.
// False for an action and for a name that is neither. Raises the parser's errors.
bool GivesRows(Database& database, std::string_view text);

} // namespace quillary::database
