#include "platform/database/jet_sql/printer.h"

#include "platform/database/jet_sql/printing.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"

#include <charconv>
#include <cstdio>

namespace quillary::database::jet_sql {
namespace {

std::string_view SignOf(BinaryOp op) {
    switch (op) {
    case BinaryOp::Power:
        return "^";
    case BinaryOp::Multiply:
        return "*";
    case BinaryOp::Divide:
        return "/";
    case BinaryOp::IntDivide:
        return "\\";
    case BinaryOp::Mod:
        return "Mod";
    case BinaryOp::Add:
        return "+";
    case BinaryOp::Subtract:
        return "-";
    case BinaryOp::Concat:
        return "&";
    case BinaryOp::Equal:
        return "=";
    case BinaryOp::NotEqual:
        return "<>";
    case BinaryOp::Less:
        return "<";
    case BinaryOp::Greater:
        return ">";
    case BinaryOp::LessOrEqual:
        return "<=";
    case BinaryOp::GreaterOrEqual:
        return ">=";
    case BinaryOp::And:
        return "And";
    case BinaryOp::Or:
        return "Or";
    case BinaryOp::Xor:
        return "Xor";
    case BinaryOp::Eqv:
        return "Eqv";
    case BinaryOp::Imp:
        return "Imp";
    }
    return "";
}

Level LevelOf(const Expr& expr) {
    return std::visit(Overloaded{
                          [](const Unary& e) { return e.op == UnaryOp::Not ? Level::Not : Level::Negate; },
                          [](const Binary& e) { return jet_sql::LevelOf(e.op); },
                          [](const Like&) { return Level::Comparison; },
                          [](const Between&) { return Level::Comparison; },
                          [](const IsNull&) { return Level::Comparison; },
                          [](const InList&) { return Level::Comparison; },
                          [](const InQuery&) { return Level::Comparison; },
                          [](const Quantified&) { return Level::Comparison; },
                          [](const auto&) { return Level::Primary; },
                      },
                      expr.node);
}

bool PlainName(std::string_view name) {
    if (name.empty() || FindKeyword(name) != Keyword::None)
        return false;
    const auto letter = [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; };
    if (!letter(name.front()))
        return false;
    for (const char c : name) {
        if (!letter(c) && !(c >= '0' && c <= '9'))
            return false;
    }
    return true;
}

std::string Shortest(double value) {
    char buffer[40];
    const auto [end, fault] = std::to_chars(buffer, buffer + sizeof buffer, value);
    std::string text(buffer, end);
    // A whole number without a point would come back as a Long.
    if (text.find_first_of(".e") == std::string::npos)
        text += ".0";
    return text;
}

template <class T>
std::string PrintOne(const T& tree) {
    Printer printer;
    printer.Put(tree);
    return printer.Take();
}

} // namespace

void Printer::Put(const Expr& expr, Level least) {
    const bool brackets = LevelOf(expr) < least;
    if (brackets)
        out_ += '(';
    std::visit([this](const auto& node) { PutNode(node); }, expr.node);
    if (brackets)
        out_ += ')';
}

void Printer::Put(const Statement& statement) {
    if (!statement.procedureName.empty()) {
        Add("PROCEDURE ", statement.procedureName);
        if (!statement.parameters.empty())
            out_ += ' ';
        PutParameters(statement.parameters);
        out_ += "; ";
    } else if (!statement.parameters.empty()) {
        out_ += "PARAMETERS ";
        PutParameters(statement.parameters);
        out_ += "; ";
    }
    std::visit([this](const auto& node) { PutNode(node); }, statement.node);
}

void Printer::Add(std::string_view word, const std::string& name) {
    out_ += word;
    Name(name);
}

void Printer::PutNames(const std::vector<std::string>& names) {
    out_ += '(';
    PutList(names, [this](const std::string& name) { Name(name); });
    out_ += ')';
}

void Printer::PutInBrackets(const Query& query) {
    out_ += '(';
    Put(query);
    out_ += ')';
}

void Printer::PutNode(const Literal& literal) {
    out_ += PrintLiteral(literal.value);
}

void Printer::PutNode(const NameRef& name) {
    for (std::size_t i = 0; i < name.parts.size(); ++i) {
        if (i > 0)
            out_ += name.bang ? '!' : '.';
        Name(name.parts[i]);
    }
}

void Printer::PutNode(const Unary& unary) {
    if (unary.op == UnaryOp::Not) {
        out_ += "Not ";
        Put(*unary.operand, Level::Not);
        return;
    }
    out_ += '-'; // "--" would begin a note
    const Unary* inner = unary.operand->As<Unary>();
    Put(*unary.operand, inner ? Level::Primary : Level::Negate);
}

void Printer::PutNode(const Binary& binary) {
    const Level level = jet_sql::LevelOf(binary.op);
    Put(*binary.left, level);
    out_ += ' ';
    out_ += SignOf(binary.op);
    out_ += ' ';
    Put(*binary.right, Above(level));
}

void Printer::PutNode(const Like& like) {
    Put(*like.value, Level::Comparison);
    out_ += like.negated ? " Not Like " : " Like ";
    Put(*like.pattern, Above(Level::Comparison));
}

void Printer::PutNode(const Between& between) {
    Put(*between.value, Level::Comparison);
    out_ += between.negated ? " Not Between " : " Between ";
    Put(*between.low, Above(Level::Comparison));
    out_ += " And ";
    Put(*between.high, Above(Level::Comparison));
}

void Printer::PutNode(const IsNull& isNull) {
    Put(*isNull.operand, Level::Comparison);
    out_ += isNull.negated ? " Is Not Null" : " Is Null";
}

void Printer::PutNode(const InList& in) {
    Put(*in.value, Level::Comparison);
    out_ += in.negated ? " Not In (" : " In (";
    PutExprs(in.list);
    out_ += ')';
}

void Printer::PutNode(const InQuery& in) {
    Put(*in.value, Level::Comparison);
    out_ += in.negated ? " Not In " : " In ";
    PutInBrackets(*in.query);
}

void Printer::PutNode(const Exists& exists) {
    out_ += "Exists ";
    PutInBrackets(*exists.query);
}

void Printer::PutNode(const Subquery& subquery) {
    PutInBrackets(*subquery.query);
}

void Printer::PutNode(const Quantified& quantified) {
    Put(*quantified.value, Level::Comparison);
    out_ += ' ';
    out_ += SignOf(quantified.op);
    out_ += quantified.quantifier == Quantifier::Any ? " Any " : " All ";
    PutInBrackets(*quantified.query);
}

void Printer::PutNode(const Call& call) {
    out_ += call.name;
    out_ += '(';
    if (call.star)
        out_ += '*';
    PutExprs(call.args);
    out_ += ')';
}

void Printer::PutNode(const Query& query) {
    std::visit([this](const auto& node) { PutNode(node); }, query.node);
}

void Printer::PutNode(const Select& select) {
    PutSelectBody(select);
    PutOrder(select.orderBy);
    PutOwnerAccess(select);
}

void Printer::PutSelectBody(const Select& select) {
    out_ += "SELECT ";
    if (select.predicate == Predicate::Distinct)
        out_ += "DISTINCT ";
    else if (select.predicate == Predicate::DistinctRow)
        out_ += "DISTINCTROW ";
    if (select.top) {
        out_ += "TOP " + std::to_string(select.top->count);
        out_ += select.top->percent ? " PERCENT " : " ";
    }
    PutItems(select.items);
    if (select.into) {
        Add(" INTO ", select.into->name);
        PutFile(select.into->file);
    }
    if (!select.from.empty()) {
        out_ += " FROM ";
        PutTables(select.from);
        PutFile(select.file);
    }
    PutWhere(select.where);
    if (!select.groupBy.empty()) {
        out_ += " GROUP BY ";
        PutExprs(select.groupBy);
    }
    if (select.having) {
        out_ += " HAVING ";
        Put(*select.having);
    }
}

void Printer::PutOwnerAccess(const Select& select) {
    if (select.ownerAccess)
        out_ += " WITH OWNERACCESS OPTION";
}

void Printer::PutItems(const std::vector<SelectItem>& items) {
    PutList(items, [this](const SelectItem& item) {
        if (!item.expr) {
            if (!item.starOf.empty())
                out_ += PrintName(item.starOf) + ".";
            out_ += '*';
            return;
        }
        Put(*item.expr);
        if (!item.alias.empty())
            Add(" AS ", item.alias);
    });
}

void Printer::PutOrder(const std::vector<OrderItem>& order) {
    if (order.empty())
        return;
    out_ += " ORDER BY ";
    PutList(order, [this](const OrderItem& item) {
        Put(item.expr);
        if (item.descending)
            out_ += " DESC";
    });
}

void Printer::PutWhere(const std::optional<Expr>& where) {
    if (!where)
        return;
    out_ += " WHERE ";
    Put(*where);
}

void Printer::PutFile(const std::optional<ExternalFile>& file) {
    if (!file)
        return;
    out_ += " IN " + PrintLiteral(file->path);
    if (!file->connect.empty())
        out_ += " " + PrintLiteral(file->connect);
}

void Printer::PutTables(const std::vector<TableSource>& tables) {
    PutList(tables, [this](const TableSource& source) { Put(source); });
}

void Printer::PutNode(const TableName& table) {
    if (!table.file.empty())
        out_ += PrintName(table.file) + ".";
    Name(table.name);
    if (!table.alias.empty())
        Add(" AS ", table.alias);
}

void Printer::PutNode(const DerivedTable& derived) {
    PutInBrackets(*derived.query);
    if (!derived.alias.empty())
        Add(" AS ", derived.alias);
}

void Printer::PutNode(const Join& join) {
    const auto side = [this](const TableSource& source) {
        const bool brackets = source.As<Join>() != nullptr;
        if (brackets)
            out_ += '(';
        Put(source);
        if (brackets)
            out_ += ')';
    };
    side(*join.left);
    out_ += join.kind == JoinKind::Inner  ? " INNER JOIN "
            : join.kind == JoinKind::Left ? " LEFT JOIN "
                                          : " RIGHT JOIN ";
    side(*join.right);
    out_ += " ON ";
    Put(*join.on);
}

void Printer::PutNode(const Union& whole) {
    const Select* last = nullptr;
    for (std::size_t i = 0; i < whole.parts.size(); ++i) {
        const UnionPart& part = whole.parts[i];
        if (i > 0)
            out_ += part.all ? " UNION ALL " : " UNION ";
        last = part.query->As<Select>();
        if (!last || !last->orderBy.empty()) {
            PutInBrackets(*part.query);
            last = nullptr;
            continue;
        }
        PutSelectBody(*last);
        if (i + 1 < whole.parts.size())
            PutOwnerAccess(*last);
    }
    PutOrder(whole.orderBy);
    if (last) // it stands behind the sort of the whole
        PutOwnerAccess(*last);
}

void Printer::PutNode(const Crosstab& crosstab) {
    out_ += "TRANSFORM ";
    Put(*crosstab.value);
    if (!crosstab.valueAlias.empty())
        Add(" AS ", crosstab.valueAlias);
    out_ += ' ';
    PutNode(crosstab.select);
    out_ += " PIVOT ";
    Put(*crosstab.pivot, Level::Concat);
    if (crosstab.headings.empty())
        return;
    out_ += " IN (";
    PutList(crosstab.headings, [this](const runtime::Variant& heading) { out_ += PrintLiteral(heading); });
    out_ += ')';
}

void Printer::PutNode(const Update& update) {
    out_ += update.distinctRow ? "UPDATE DISTINCTROW " : "UPDATE ";
    PutTables(update.tables);
    PutFile(update.file);
    out_ += " SET ";
    PutList(update.set, [this](const Assignment& assignment) {
        PutNode(assignment.target);
        out_ += " = ";
        Put(assignment.value);
    });
    PutWhere(update.where);
}

void Printer::PutNode(const Delete& remove) {
    out_ += remove.distinctRow ? "DELETE DISTINCTROW " : "DELETE ";
    PutItems(remove.items);
    out_ += remove.items.empty() ? "FROM " : " FROM ";
    PutTables(remove.from);
    PutFile(remove.file);
    PutWhere(remove.where);
}

void Printer::PutNode(const Insert& insert) {
    out_ += "INSERT INTO ";
    PutNode(insert.table);
    if (!insert.columns.empty()) {
        out_ += ' ';
        PutNames(insert.columns);
    }
    PutFile(insert.file);
    if (insert.query) {
        out_ += ' ';
        Put(*insert.query);
        return;
    }
    out_ += " VALUES (";
    PutExprs(insert.values);
    out_ += ')';
}

void Printer::PutNode(const Execute& execute) {
    Add("EXECUTE ", execute.name);
    if (!execute.args.empty())
        out_ += ' ';
    PutExprs(execute.args);
}

std::string Print(const Statement& statement) {
    return PrintOne(statement);
}

std::string Print(const Query& query) {
    return PrintOne(query);
}

std::string Print(const Expr& expr) {
    return PrintOne(expr);
}

std::string Print(const TableSource& tables) {
    return PrintOne(tables);
}

std::string PrintName(const std::string& name) {
    if (PlainName(name))
        return name;
    return name.find(']') == std::string::npos ? "[" + name + "]" : "`" + name + "`";
}

std::string PrintLiteral(const runtime::Variant& value) {
    using runtime::VarType;
    switch (value.Type()) {
    case VarType::Empty:
    case VarType::Null:
        return "Null";
    case VarType::Boolean:
        return value.Get<bool>() ? "True" : "False";
    case VarType::Integer:
        return std::to_string(value.Get<std::int16_t>());
    case VarType::Long:
        return std::to_string(value.Get<std::int32_t>());
    case VarType::Single:
        return runtime::NumberText(value.Get<float>());
    case VarType::Double:
        return Shortest(value.Get<double>());
    case VarType::Currency:
        return runtime::NumberText(value.Get<runtime::Currency>());
    case VarType::Date: {
        const runtime::DateParts at = runtime::Split(value.Get<runtime::Date>());
        char text[48];
        std::snprintf(text, sizeof text, "#%d/%d/%04d", at.month, at.day, at.year);
        std::string literal = text;
        if (at.hour != 0 || at.minute != 0 || at.second != 0) {
            std::snprintf(text, sizeof text, " %d:%02d:%02d", at.hour, at.minute, at.second);
            literal += text;
        }
        return literal + "#";
    }
    case VarType::String: {
        std::string literal = "'";
        for (const char c : value.Get<std::string>()) {
            literal += c;
            if (c == '\'')
                literal += c;
        }
        return literal + "'";
    }
    }
    return "Null";
}

} // namespace quillary::database::jet_sql
