#include "platform/database/sql_script.h"

#include "platform/database/engine.h"
#include "platform/database/jet_sql/parser.h"
#include "platform/runtime/locale.h"

#include <algorithm>

namespace quillary::database {

std::vector<ScriptPiece> SplitScript(std::string_view script) {
    std::vector<ScriptPiece> pieces;
    for (auto& piece : jet_sql::SplitScript(script)) {
        pieces.push_back({std::move(piece.text), piece.line});
    }
    return pieces;
}

bool EndsStatement(std::string_view text) {
    // A word put behind the text is a piece of its own only when nothing is left open.
    const auto pieces = jet_sql::SplitScript(std::string(text) + "\nx");
    return pieces.size() > 1 && pieces.back().text == "x";
}

bool GivesRows(Database& database, std::string_view text) {
    if (jet_sql::IsStatement(text)) {
        const jet_sql::Statement statement = jet_sql::Parse(text);
        const auto* query = statement.As<jet_sql::Query>();
        if (query == nullptr) {
            return false;
        }
        const auto* select = query->As<jet_sql::Select>();
        return select == nullptr || !select->into;
    }
    std::string_view name = runtime::Trim(text);
    if (name.starts_with('[') && name.ends_with(']')) {
        name = name.substr(1, name.size() - 2);
    }
    if (const auto query = database.FindQueryDef(name)) {
        return jet_sql::IsStatement(query->SQL()) && GivesRows(database, query->SQL());
    }
    const auto& tables = database.TableDefs();
    return std::any_of(tables.begin(), tables.end(),
                       [&](const TableDef& table) { return runtime::EqualName(table.name, name); });
}

} // namespace quillary::database
