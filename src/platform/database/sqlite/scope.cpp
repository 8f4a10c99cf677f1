#include "platform/database/sqlite/scope.h"

#include "platform/database/sqlite/sql_text.h"
#include "platform/runtime/locale.h"

#include <algorithm>

namespace quillary::database::sqlite {
namespace {

int FindColumn(const Source& source, std::string_view name) {
    const std::size_t count = source.ColumnCount();
    for (std::size_t i = 0; i < count; ++i) {
        if (runtime::EqualName(source.ColumnName(i), name)) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

} // namespace

std::string Source::FieldText(int field) const {
    return alias + "." + Quote(table->fields[static_cast<std::size_t>(field)].name);
}

Piece Scope::Column(int source, int place) {
    Source& from = sources[static_cast<std::size_t>(source)];
    const auto at = static_cast<std::size_t>(place);
    from.used = true;
    from.shown = from.shown || recordShown;
    Piece piece;
    piece.source = source;
    piece.place = place;
    piece.column = true;
    if (from.table != nullptr) {
        piece.field = from.view.empty() ? place : from.view[at].field;
        const FieldDef& field = from.table->fields[static_cast<std::size_t>(piece.field)];
        piece.type = field.type;
        piece.size = field.size;
        piece.sql = from.FieldText(piece.field);
        piece.nullable = from.nullSide || !(field.required || field.type == FieldType::Boolean);
        piece.collated = IsText(piece.type);
    } else {
        const DerivedColumn& derived = from.columns[at];
        piece.type = derived.type;
        piece.size = derived.size;
        piece.untyped = derived.untyped;
        piece.sql = from.alias + ".c" + std::to_string(place);
    }
    if (capture != nullptr) {
        const std::pair key(source, place);
        const auto found = std::find(capture->keys.begin(), capture->keys.end(), key);
        const auto index = found - capture->keys.begin();
        if (found == capture->keys.end()) {
            capture->keys.push_back(key);
            capture->columns.push_back(piece.sql);
        }
        piece.sql = capture->alias.empty() ? "?" + std::to_string(index + 1)
                                           : capture->alias + ".k" + std::to_string(index);
        piece.collated = false;
    }
    return piece;
}

int Scope::FindSource(std::string_view name) const {
    for (std::size_t i = 0; i < sources.size(); ++i) {
        if (runtime::EqualName(sources[i].name, name)) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

std::optional<Piece> Scope::Find(const jet_sql::NameRef& name) {
    const std::string& table = name.Table();
    int source = -1;
    int column = -1;
    for (std::size_t i = 0; i < sources.size(); ++i) {
        if (!table.empty() && !runtime::EqualName(sources[i].name, table)) {
            continue;
        }
        const int found = FindColumn(sources[i], name.Field());
        if (found < 0) {
            continue;
        }
        if (source >= 0) {
            RaiseAmbiguous(name.Field());
        }
        source = static_cast<int>(i);
        column = found;
    }
    if (source < 0) {
        return std::nullopt;
    }
    return Column(source, column);
}

} // namespace quillary::database::sqlite
