#include "platform/database/sqlite/expression_writer.h"

#include "platform/database/sqlite/function_writer.h"
#include "platform/database/sqlite/like_pattern.h"
#include "platform/database/sqlite/query_writer.h"
#include "platform/database/sqlite/sql_text.h"
#include "platform/database/sqlite/stored_value.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"

#include <algorithm>

namespace quillary::database::sqlite {

using jet_sql::BinaryOp;
using jet_sql::Expr;

namespace {

bool IsComparison(BinaryOp op) {
    return op >= BinaryOp::Equal && op <= BinaryOp::GreaterOrEqual;
}

bool IsLogical(BinaryOp op) {
    return op >= BinaryOp::And;
}

std::string_view Sign(BinaryOp op) {
    switch (op) {
    case BinaryOp::Equal:
        return " = ";
    case BinaryOp::NotEqual:
        return " <> ";
    case BinaryOp::Less:
        return " < ";
    case BinaryOp::Greater:
        return " > ";
    case BinaryOp::LessOrEqual:
        return " <= ";
    default:
        return " >= ";
    }
}

// Terms of an AND or OR as a balanced tree: SQLite bounds the height of an expression.
std::string Balanced(const std::vector<std::string>& terms, std::size_t from, std::size_t to,
                     std::string_view between) {
    constexpr std::size_t kFlat = 16;
    std::string sql = "(";
    if (to - from <= kFlat) {
        for (std::size_t i = from; i < to; ++i) {
            if (i > from) {
                sql += between;
            }
            sql += terms[i];
        }
    } else {
        const std::size_t middle = from + (to - from) / 2;
        sql += Balanced(terms, from, middle, between);
        sql += between;
        sql += Balanced(terms, middle, to, between);
    }
    sql += ')';
    return sql;
}

std::string Both(std::string_view left, std::string_view between, std::string_view right) {
    std::string sql;
    sql.reserve(left.size() + between.size() + right.size() + 2);
    sql += '(';
    sql += left;
    sql += between;
    sql += right;
    sql += ')';
    return sql;
}

} // namespace

Piece NullPiece() {
    Piece piece;
    piece.sql = "NULL";
    piece.untyped = true;
    piece.literal = Variant::Null();
    return piece;
}

Piece Computed(std::string sql, FieldType type, bool nullable) {
    Piece piece;
    piece.sql = std::move(sql);
    piece.type = type;
    piece.nullable = nullable;
    return piece;
}

Piece LiteralPiece(const Variant& value) {
    Piece piece;
    piece.nullable = false;
    piece.literal = value;
    switch (value.Type()) {
    case runtime::VarType::Boolean:
        piece.type = FieldType::Boolean;
        piece.sql = value.Get<bool>() ? "-1" : "0";
        break;
    case runtime::VarType::Integer:
        piece.type = FieldType::Integer;
        piece.sql = std::to_string(value.Get<std::int16_t>());
        break;
    case runtime::VarType::Long:
        piece.type = FieldType::Long;
        piece.sql = std::to_string(value.Get<std::int32_t>());
        break;
    case runtime::VarType::Single:
        piece.type = FieldType::Single;
        piece.sql = RealLiteral(SingleValue(runtime::CDbl(value)));
        break;
    case runtime::VarType::Double:
        piece.type = FieldType::Double;
        piece.sql = RealLiteral(value.Get<double>());
        break;
    case runtime::VarType::Currency:
        piece.type = FieldType::Currency;
        piece.sql = std::to_string(value.Get<runtime::Currency>().scaled);
        break;
    case runtime::VarType::Date:
        piece.type = FieldType::Date;
        piece.sql = TextLiteral(runtime::IsoText(value.Get<runtime::Date>()));
        break;
    case runtime::VarType::String:
        piece.type = FieldType::Text;
        piece.sql = TextLiteral(value.Get<std::string>());
        piece.size = static_cast<int>(runtime::CharCount(value.Get<std::string>()));
        break;
    default:
        return NullPiece();
    }
    return piece;
}

// ------------------------------------------------------------------------------------------- values

Piece ExpressionWriter::Value(const Expr& expr) {
    Piece piece = std::visit(
        [&](const auto& node) -> Piece {
            using Node = std::decay_t<decltype(node)>;
            if constexpr (std::is_same_v<Node, jet_sql::NameRef>) {
                return Name(node);
            } else if constexpr (std::is_same_v<Node, jet_sql::Call>) {
                return WriteCall(*this, node);
            } else if constexpr (std::is_same_v<Node, jet_sql::Literal> ||
                                 std::is_same_v<Node, jet_sql::Unary> ||
                                 std::is_same_v<Node, jet_sql::Binary> ||
                                 std::is_same_v<Node, jet_sql::Subquery>) {
                return ValueOf(node);
            } else {
                const bool known =
                    std::is_same_v<Node, jet_sql::IsNull> || std::is_same_v<Node, jet_sql::Exists>;
                return Computed("(-(" + Condition(expr) + "))", FieldType::Boolean, !known);
            }
        },
        expr.node);
    context_.CheckSize(piece.sql);
    return piece;
}

Piece ExpressionWriter::ValueOf(const jet_sql::Literal& literal) {
    return LiteralPiece(literal.value);
}

// A name is a column of this query, an alias of its list, the same of an enclosing query, or a parameter.
Piece ExpressionWriter::Name(const jet_sql::NameRef& name) {
    const bool bare = name.parts.size() == 1;
    for (Scope* level = &scope_; level != nullptr; level = level->outer) {
        const auto itemOf = [&](bool earlier) {
            // The aliases of an enclosing query are none of a subquery's business.
            if (!bare || level != &scope_ || level->aliases == Scope::Aliases::None) {
                return -1;
            }
            const auto& items = *level->items;
            for (std::size_t i = 0; i < items.size(); ++i) {
                if (items[i].IsStar() || items[i].alias.empty() ||
                    !runtime::EqualName(items[i].alias, name.Field())) {
                    continue;
                }
                const int index = static_cast<int>(i);
                if (level->aliases == Scope::Aliases::Items) {
                    // `n AS n` means the column.
                    const auto* plain = items[i].expr->template As<jet_sql::NameRef>();
                    if (index == level->item && plain != nullptr && plain->parts.size() == 1) {
                        continue;
                    }
                    if (earlier && index > level->item) {
                        continue;
                    }
                }
                return index;
            }
            return -1;
        };
        // An earlier item's alias hides a column of the same name, a later one's does not.
        const int earlier = level->aliases == Scope::Aliases::Items ? itemOf(true) : -1;
        if (earlier >= 0) {
            return AliasItem(*level, earlier);
        }
        if (auto piece = level->Find(name)) {
            if (level != &scope_) {
                piece->source = piece->field = -1;
            }
            return *std::move(piece);
        }
        if (const int item = itemOf(false); item >= 0) {
            return AliasItem(*level, item);
        }
    }
    std::string parameter;
    for (const auto& part : name.parts) {
        if (!parameter.empty()) {
            parameter += name.bang ? '!' : '.';
        }
        parameter += part;
    }
    return context_.Parameter(parameter);
}

Piece ExpressionWriter::AliasItem(Scope& level, int item) {
    const auto& target = (*level.items)[static_cast<std::size_t>(item)];
    if (item == level.item ||
        std::find(level.writing.begin(), level.writing.end(), item) != level.writing.end()) {
        Raise(3103,
              "Circular reference caused by alias '" + target.alias + "' in query definition's SELECT list.");
    }
    const auto aliases = level.aliases;
    const int before = level.item;
    level.writing.push_back(before);
    level.item = item;
    level.aliases = Scope::Aliases::Items;
    Piece piece = ExpressionWriter(context_, level, mismatch_).Value(*target.expr);
    level.aliases = aliases;
    level.item = before;
    level.writing.pop_back();
    return piece;
}

Piece ExpressionWriter::ValueOf(const jet_sql::Unary& unary) {
    if (unary.op == jet_sql::UnaryOp::Not) {
        return Computed("(-(NOT " + Condition(*unary.operand) + "))", FieldType::Boolean);
    }
    Piece operand = Value(*unary.operand);
    if (operand.IsNullLiteral()) {
        return operand;
    }
    context_.GiveType(operand, FieldType::Double);
    if (const auto number = LiteralNumber(operand)) {
        const double negative = -*number;
        if (IsWhole(operand.type) || (negative == -2147483648.0)) {
            return LiteralPiece(Variant(static_cast<std::int32_t>(negative)));
        }
        return LiteralPiece(Variant(negative));
    }
    Piece piece = Computed("", operand.type, operand.nullable);
    if (IsWhole(operand.type)) {
        piece.type = FieldType::Long;
        piece.wide = operand.wide;
    } else if (!IsNumber(operand.type)) {
        piece.type = FieldType::Double;
        piece.sql = "(- " + AsNumber(context_, std::move(operand)) + ")";
        return piece;
    }
    piece.sql = "(- " + operand.sql + ")";
    return piece;
}

Piece ExpressionWriter::ValueOf(const jet_sql::Binary& binary) {
    if (IsComparison(binary.op) || IsLogical(binary.op)) {
        return Computed("(-" + ConditionOf(binary) + ")", FieldType::Boolean);
    }
    if (binary.op == BinaryOp::Concat) {
        return Concatenate(binary);
    }
    Piece left = Value(*binary.left);
    return Arithmetic(binary.op, std::move(left), Value(*binary.right));
}

// (SELECT ...) as a value: one column, at most one row.
Piece ExpressionWriter::ValueOf(const jet_sql::Subquery& subquery) {
    const QueryText query = WriteQuery(context_, *subquery.query, &scope_, QueryUse::Set);
    if (query.columns.size() != 1) {
        Raise(3306, "You have written a subquery that can return more than one field without using the "
                    "EXISTS reserved word in the main query's FROM clause.");
    }
    const DerivedColumn& column = query.columns.front();
    Piece piece = Computed("", column.type);
    piece.size = column.size;
    piece.untyped = column.untyped;
    if (query.oneRow) {
        piece.sql = "(" + query.sql + ")";
    } else {
        const std::string alias = context_.NewAlias();
        piece.sql = "(SELECT CASE WHEN count(*) > 1 THEN qy_raise(3354, 'At most one record can be returned "
                    "by this subquery.') ELSE " +
                    alias + ".c0 END FROM (SELECT * FROM (" + query.sql + ") LIMIT 2) AS " + alias + ")";
    }
    return piece;
}

Piece ExpressionWriter::Concatenate(const jet_sql::Binary& binary) {
    std::vector<const Expr*> operands{&*binary.right};
    const Expr* left = &*binary.left;
    while (const auto* inner = left->As<jet_sql::Binary>()) {
        if (inner->op != BinaryOp::Concat) {
            break;
        }
        operands.push_back(&*inner->right);
        left = &*inner->left;
    }
    operands.push_back(left);

    // & takes Null as empty text, unless both sides are Null.
    bool neverNull = false;
    bool plain = true;
    std::vector<std::pair<std::string, bool>> texts; // with: may be Null
    for (auto each = operands.rbegin(); each != operands.rend(); ++each) {
        Piece piece = Value(**each);
        if (piece.IsNullLiteral()) {
            continue;
        }
        neverNull = neverNull || !piece.nullable;
        plain = plain && piece.column;
        const bool nullable = piece.nullable;
        texts.emplace_back(AsOperandText(context_, std::move(piece)), nullable);
    }
    if (texts.empty()) {
        return NullPiece();
    }
    std::string joined;
    if (neverNull || plain) {
        for (const auto& [text, nullable] : texts) {
            if (!joined.empty()) {
                joined += " || ";
            }
            joined += nullable ? "coalesce(" + text + ", '')" : text;
        }
        if (texts.size() == 1) {
            joined += " || ''";
        }
        joined = "(" + joined + ")";
    }
    std::string list;
    if (!neverNull) {
        for (const auto& each : texts) {
            if (!list.empty()) {
                list += ", ";
            }
            list += each.first;
        }
        if (!plain) {
            joined = "qy_concat(" + list + ")";
        } else {
            const std::string any = texts.size() == 1 ? list : "coalesce(" + list + ")";
            joined = "(CASE WHEN " + any + " IS NOT NULL THEN " + joined + " END)";
        }
    }
    return Computed(std::move(joined), FieldType::Text, !neverNull);
}

// ---------------------------------------------------------------------------------------- conditions

std::string ExpressionWriter::Condition(const Expr& expr) {
    std::string sql = std::visit(
        [&](const auto& node) -> std::string {
            using Node = std::decay_t<decltype(node)>;
            if constexpr (std::is_same_v<Node, jet_sql::Unary>) {
                return node.op == jet_sql::UnaryOp::Not ? "(NOT " + Condition(*node.operand) + ")"
                                                        : Truth(ValueOf(node));
            } else if constexpr (std::is_same_v<Node, jet_sql::Binary>) {
                return IsComparison(node.op) || IsLogical(node.op) ? ConditionOf(node) : Truth(ValueOf(node));
            } else if constexpr (std::is_same_v<Node, jet_sql::IsNull>) {
                return "(" + Value(*node.operand).sql + (node.negated ? " IS NOT NULL)" : " IS NULL)");
            } else if constexpr (std::is_same_v<Node, jet_sql::Exists>) {
                return "EXISTS (" + WriteQuery(context_, *node.query, &scope_, QueryUse::Set).sql + ")";
            } else if constexpr (std::is_same_v<Node, jet_sql::Like> ||
                                 std::is_same_v<Node, jet_sql::Between> ||
                                 std::is_same_v<Node, jet_sql::InList> ||
                                 std::is_same_v<Node, jet_sql::InQuery> ||
                                 std::is_same_v<Node, jet_sql::Quantified>) {
                return ConditionOf(node);
            } else {
                return Truth(Value(expr));
            }
        },
        expr.node);
    context_.CheckSize(sql);
    return sql;
}

std::string ExpressionWriter::Truth(Piece piece) {
    context_.GiveType(piece, FieldType::Boolean);
    if (const auto number = LiteralNumber(piece)) {
        return *number != 0 ? "1" : "0";
    }
    if (piece.untyped || IsNumber(piece.type)) {
        return std::move(piece.sql);
    }
    return "(" + AsNumber(context_, std::move(piece)) + " <> 0)";
}

std::string ExpressionWriter::ConditionOf(const jet_sql::Binary& binary) {
    if (IsComparison(binary.op)) {
        Piece left = Value(*binary.left);
        return "(" + Compare(binary.op, std::move(left), Value(*binary.right)) + ")";
    }
    if (binary.op == BinaryOp::And || binary.op == BinaryOp::Or) {
        return Chain(binary.op, binary);
    }
    const std::string left = Condition(*binary.left);
    const std::string right = Condition(*binary.right);
    switch (binary.op) {
    case BinaryOp::Xor:
        return "((NOT " + left + ") <> (NOT " + right + "))";
    case BinaryOp::Eqv:
        return "((NOT " + left + ") = (NOT " + right + "))";
    default: // Imp
        return "((NOT " + left + ") OR " + right + ")";
    }
}

std::string ExpressionWriter::Chain(BinaryOp op, const jet_sql::Binary& binary) {
    std::vector<const Expr*> operands{&*binary.right};
    const Expr* left = &*binary.left;
    while (const auto* inner = left->As<jet_sql::Binary>()) {
        if (inner->op != op) {
            break;
        }
        operands.push_back(&*inner->right);
        left = &*inner->left;
    }
    operands.push_back(left);
    std::vector<std::string> terms;
    for (auto each = operands.rbegin(); each != operands.rend(); ++each) {
        terms.push_back(Condition(**each));
    }
    return Balanced(terms, 0, terms.size(), op == BinaryOp::And ? " AND " : " OR ");
}

std::string ExpressionWriter::Compare(BinaryOp op, Piece left, Piece right) {
    if (left.IsNullLiteral() || right.IsNullLiteral()) {
        return "NULL";
    }
    MakeComparable(context_, left, right, mismatch_);
    std::string sql = std::move(left.sql);
    sql += Sign(op);
    sql += right.sql;
    return sql;
}

std::string ExpressionWriter::ConditionOf(const jet_sql::Like& like) {
    Piece value = Value(*like.value);
    Piece pattern = Value(*like.pattern);
    if (value.IsNullLiteral() || pattern.IsNullLiteral()) {
        return "NULL";
    }
    std::string sql;
    if (IsText(value.type) && !value.untyped && pattern.literal && pattern.literal->IsString() &&
        !HasWildcards(pattern.literal->Get<std::string>())) {
        // Without a wildcard it is "=", but blanks at the end count.
        const auto& text = pattern.literal->Get<std::string>();
        const std::string subject = Collated(value);
        sql = "(" + subject + " = " + pattern.sql + " AND length(" + value.sql +
              ") = " + std::to_string(runtime::CharCount(text)) + ")";
    } else {
        sql = "qy_like(" + AsText(context_, std::move(value)) + ", " + AsText(context_, std::move(pattern)) +
              ")";
    }
    return like.negated ? "(NOT " + sql + ")" : sql;
}

// The bounds may come in either order.
std::string ExpressionWriter::ConditionOf(const jet_sql::Between& between) {
    Piece value = Value(*between.value);
    Piece low = Value(*between.low);
    Piece high = Value(*between.high);
    if (value.IsNullLiteral() || low.IsNullLiteral() || high.IsNullLiteral()) {
        return "NULL";
    }
    if (low.literal && high.literal && low.type == high.type &&
        runtime::Compare(*low.literal, *high.literal).value_or(0) > 0) {
        std::swap(low, high);
    }
    const bool ordered = low.literal && high.literal && low.type == high.type;
    Piece forLow = value;
    Piece forHigh = value;
    MakeComparable(context_, forLow, low, mismatch_);
    MakeComparable(context_, forHigh, high, mismatch_);
    std::string sql;
    if (forLow.sql == forHigh.sql) {
        if (IsText(forLow.type) && !forLow.untyped) {
            forLow.sql = Collated(value);
        }
        // Text literals that become dates are in no known order.
        if (ordered && (!IsDate(low.type) || low.literal)) {
            sql = Both(forLow.sql, " BETWEEN ", low.sql + " AND " + high.sql);
        } else {
            const std::string first = Collated(low) + ", " + high.sql;
            sql = Both(forLow.sql, " BETWEEN ", "min(" + first + ") AND max(" + first + ")");
        }
    } else {
        sql = "((" + forLow.sql + " >= " + low.sql + " AND " + forHigh.sql + " <= " + high.sql + ") OR (" +
              forLow.sql + " <= " + low.sql + " AND " + forHigh.sql + " >= " + high.sql + "))";
    }
    return between.negated ? "(NOT " + sql + ")" : sql;
}

std::string ExpressionWriter::ConditionOf(const jet_sql::InList& in) {
    Piece value = Value(*in.value);
    if (value.IsNullLiteral()) {
        return "NULL";
    }
    std::string list;
    std::vector<std::string> others; // comparisons that change the left side
    for (const Expr& each : in.list) {
        Piece left = value;
        Piece item = Value(each);
        if (!item.IsNullLiteral()) {
            MakeComparable(context_, left, item, mismatch_);
        }
        if (left.sql != value.sql && !IsText(left.type)) {
            others.push_back("(" + left.sql + " = " + item.sql + ")");
            continue;
        }
        if (value.untyped && !left.untyped) {
            value = left;
        }
        list += list.empty() ? "" : ", ";
        list += item.sql;
    }
    std::string sql;
    if (!list.empty()) {
        sql = "(" + Collated(value) + " IN (" + list + "))";
        if (!others.empty()) {
            others.push_back(sql);
        }
    }
    if (!others.empty()) {
        sql = Balanced(others, 0, others.size(), " OR ");
    }
    return in.negated ? "(NOT " + sql + ")" : sql;
}

namespace {

// The one column of a subquery that values are compared with.
Piece SubqueryColumn(const QueryText& query, const std::string& alias) {
    if (query.columns.size() != 1) {
        Raise(3306, "You have written a subquery that can return more than one field without using the "
                    "EXISTS reserved word in the main query's FROM clause.");
    }
    Piece piece = Computed(alias + ".c0", query.columns.front().type);
    piece.untyped = query.columns.front().untyped;
    piece.collated = IsText(piece.type);
    piece.column = true;
    return piece;
}

} // namespace

std::string ExpressionWriter::ConditionOf(const jet_sql::InQuery& in) {
    Piece value = Value(*in.value);
    const QueryText query = WriteQuery(context_, *in.query, &scope_, QueryUse::Set);
    const std::string alias = context_.NewAlias();
    Piece column = SubqueryColumn(query, alias);
    if (value.IsNullLiteral()) {
        return "NULL";
    }
    MakeComparable(context_, value, column, mismatch_);
    std::string sql = "(" + Collated(value) + " IN (";
    if (column.sql == alias + ".c0") {
        sql += query.sql;
    } else {
        sql += "SELECT " + column.sql + " FROM (" + query.sql + ") AS " + alias;
    }
    sql += "))";
    return in.negated ? "(NOT " + sql + ")" : sql;
}

std::string ExpressionWriter::ConditionOf(const jet_sql::Quantified& quantified) {
    Piece value = Value(*quantified.value);
    const QueryText query = WriteQuery(context_, *quantified.query, &scope_, QueryUse::Set);
    const std::string alias = context_.NewAlias();
    Piece column = SubqueryColumn(query, alias);
    const std::string test = Compare(quantified.op, std::move(value), std::move(column));
    const std::string rows =
        "EXISTS (SELECT 1 FROM (" + query.sql + ") AS " + alias + " WHERE (" + test + ")";
    // ALL: no row where the comparison fails or is unknown.
    return quantified.quantifier == jet_sql::Quantifier::Any ? rows + ")" : "(NOT " + rows + " IS NOT TRUE))";
}

} // namespace quillary::database::sqlite
