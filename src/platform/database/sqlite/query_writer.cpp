#include "platform/database/sqlite/query_writer.h"

#include "platform/database/sqlite/crosstab_writer.h"
#include "platform/database/sqlite/select_writer.h"
#include "platform/runtime/locale.h"

#include <algorithm>

namespace quillary::database::sqlite {
namespace {

DerivedColumn ColumnOf(const OutputItem& item) {
    return {item.name, item.piece.type, item.piece.size, item.piece.untyped};
}

QueryText WriteSelect(Context& context, const jet_sql::Select& select, Scope* outer, QueryUse use) {
    SelectWriter writer(context, select, outer);
    const bool ordered = use == QueryUse::Derived;
    writer.Bind(ordered);
    QueryText text;
    text.sql = writer.Text(true, ordered);
    for (const OutputItem& item : writer.Items()) {
        text.columns.push_back(ColumnOf(item));
    }
    text.grouped = writer.Grouped() || select.top.has_value();
    text.oneRow = writer.OneRow();
    return text;
}

Piece PieceOf(const DerivedColumn& column, std::string sql) {
    Piece piece = Computed(std::move(sql), column.type);
    piece.untyped = column.untyped;
    piece.column = true;
    return piece;
}

// The columns that hold the values of all parts.
std::vector<DerivedColumn> UnifiedColumns(const std::vector<QueryText>& parts) {
    std::vector<DerivedColumn> columns = parts.front().columns;
    for (const QueryText& part : parts) {
        if (part.columns.size() != columns.size()) {
            Raise(3307, "The number of columns in the two selected tables or queries of a union query do "
                        "not match.");
        }
        for (std::size_t i = 0; i < columns.size(); ++i) {
            columns[i].type = Unify(PieceOf(columns[i], {}), PieceOf(part.columns[i], {}));
            columns[i].untyped = columns[i].untyped && part.columns[i].untyped;
            columns[i].size = std::max(columns[i].size, part.columns[i].size);
        }
    }
    return columns;
}

// A part as a term of the compound, with its values in the unified types.
std::string PartText(Context& context, const QueryText& part, const std::vector<DerivedColumn>& columns) {
    const std::string alias = context.NewAlias();
    std::vector<std::string> list;
    for (std::size_t i = 0; i < columns.size(); ++i) {
        const std::string name = "c" + std::to_string(i);
        std::string column = alias;
        column += '.';
        column += name;
        Piece piece = PieceOf(part.columns[i], std::move(column));
        std::string sql = columns[i].untyped ? piece.sql : AsType(context, std::move(piece), columns[i].type);
        sql += IsText(columns[i].type) ? " COLLATE JET AS " : " AS ";
        sql += name;
        list.push_back(std::move(sql));
    }
    return "SELECT " + Listed(list) + " FROM (" + part.sql + ") AS " + alias;
}

std::string UnionOrder(const jet_sql::Union& node, const std::vector<DerivedColumn>& columns) {
    std::vector<std::string> terms;
    for (const auto& term : node.orderBy) {
        std::size_t position = 0;
        if (const auto* literal = term.expr.As<jet_sql::Literal>();
            literal != nullptr && literal->value.Type() == runtime::VarType::Long) {
            position = static_cast<std::size_t>(std::max(0, literal->value.Get<std::int32_t>()));
        } else if (const auto* name = term.expr.As<jet_sql::NameRef>()) {
            const auto found = std::find_if(columns.begin(), columns.end(), [&](const DerivedColumn& column) {
                return runtime::EqualName(column.name, name->Field());
            });
            position = found == columns.end() ? 0 : static_cast<std::size_t>(found - columns.begin()) + 1;
        }
        if (position < 1 || position > columns.size()) {
            Raise(3351, "The ORDER BY expression includes fields that are not selected by the query. Only "
                        "those fields requested in the first query can be included in an ORDER BY "
                        "expression.");
        }
        terms.push_back(std::to_string(position) + (term.descending ? " DESC" : ""));
    }
    return Listed(terms);
}

QueryText WriteUnion(Context& context, const jet_sql::Union& node, Scope* outer, QueryUse use) {
    const bool unique = std::any_of(node.parts.begin() + 1, node.parts.end(),
                                    [](const jet_sql::UnionPart& part) { return !part.all; });
    // Rows of UNION ALL come part by part, each in its order.
    const bool partByPart = use == QueryUse::Derived && !unique && node.orderBy.empty();
    std::vector<QueryText> parts;
    for (const auto& part : node.parts) {
        parts.push_back(
            WriteQuery(context, *part.query, outer, partByPart ? QueryUse::Derived : QueryUse::Set));
    }
    QueryText text;
    text.columns = UnifiedColumns(parts);
    text.grouped = true;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0) {
            text.sql += node.parts[i].all ? " UNION ALL " : " UNION ";
        }
        text.sql += PartText(context, parts[i], text.columns);
    }
    std::string order = UnionOrder(node, text.columns);
    if (order.empty() && unique && use == QueryUse::Derived) {
        std::vector<std::string> all;
        for (std::size_t i = 1; i <= text.columns.size(); ++i) {
            all.push_back(std::to_string(i));
        }
        order = Listed(all);
    }
    if (!order.empty() && use == QueryUse::Derived) {
        text.sql += " ORDER BY " + order;
    }
    context.CheckSize(text.sql);
    return text;
}

} // namespace

QueryText WriteQuery(Context& context, const jet_sql::Query& query, Scope* outer, QueryUse use) {
    if (const auto* select = query.As<jet_sql::Select>()) {
        return WriteSelect(context, *select, outer, use);
    }
    if (const auto* node = query.As<jet_sql::Union>()) {
        return WriteUnion(context, *node, outer, use);
    }
    return WriteCrosstab(context, *query.As<jet_sql::Crosstab>(), outer);
}

} // namespace quillary::database::sqlite
