#include "platform/database/sqlite/function_writer.h"

#include "platform/database/errors.h"
#include "platform/database/jet_sql/walk.h"
#include "platform/database/sqlite/sql_text.h"
#include "platform/runtime/locale.h"

#include <algorithm>
#include <array>
#include <unordered_map>

namespace quillary::database::sqlite {

using jet_sql::Call;
using jet_sql::Expr;

namespace {

using Arguments = std::vector<Expr>;

std::string TypeCode(FieldType type) {
    return std::to_string(static_cast<int>(type));
}

// "function(a, b)"
std::string Apply(std::string_view function, std::initializer_list<std::string_view> arguments) {
    std::string sql(function);
    sql += '(';
    bool first = true;
    for (const auto argument : arguments) {
        if (!first) {
            sql += ", ";
        }
        first = false;
        sql += argument;
    }
    sql += ')';
    return sql;
}

Piece Text(ExpressionWriter& writer, const Expr& expr) {
    Piece piece = writer.Value(expr);
    const bool nullable = piece.nullable;
    const auto literal = piece.literal;
    Piece text = Computed(AsText(writer.GetContext(), std::move(piece)), FieldType::Text, nullable);
    text.literal = literal;
    return text;
}

// A whole literal that is at least this large, as Left and Mid need it to be left to SQLite.
std::optional<long> LiteralFrom(const Piece& piece, long least) {
    const auto number = LiteralNumber(piece);
    if (!number || !IsWhole(piece.type) || *number < static_cast<double>(least)) {
        return std::nullopt;
    }
    return static_cast<long>(*number);
}

// ------------------------------------------------------------------------------------ branches

Piece Branches(ExpressionWriter& writer, std::string head, const std::vector<std::string>& conditions,
               std::vector<Piece> values, std::optional<Piece> otherwise) {
    Context& context = writer.GetContext();
    Piece unified = values.front();
    const auto unify = [&](const Piece& piece) {
        const FieldType type = Unify(unified, piece);
        unified.untyped = unified.untyped && piece.untyped;
        unified.type = type;
        unified.size = std::max(unified.size, piece.size);
    };
    for (std::size_t i = 1; i < values.size(); ++i) {
        unify(values[i]);
    }
    bool nullable = !otherwise;
    if (otherwise) {
        unify(*otherwise);
        nullable = otherwise->nullable;
    }
    std::string sql = std::move(head);
    for (std::size_t i = 0; i < values.size(); ++i) {
        nullable = nullable || values[i].nullable;
        sql += " WHEN " + conditions[i] + " THEN ";
        sql += unified.untyped ? values[i].sql : AsType(context, std::move(values[i]), unified.type);
    }
    if (otherwise) {
        sql += " ELSE ";
        sql += unified.untyped ? otherwise->sql : AsType(context, *std::move(otherwise), unified.type);
    }
    Piece piece = Computed("(" + sql + " END)", unified.type, nullable);
    piece.untyped = unified.untyped;
    piece.size = unified.size;
    return piece;
}

// The arguments of an IIf in the place of the false part of another; nullptr for anything else.
const Arguments* NestedIIf(const Expr& expr) {
    const auto* call = expr.As<Call>();
    return call != nullptr && runtime::EqualName(call->name, "iif") && call->args.size() == 3 ? &call->args
                                                                                              : nullptr;
}

// Only the branch taken is worked out; an unknown condition takes the false one. A chain of them becomes
// one CASE, since SQLite bounds how deep they go.
Piece WriteIIf(ExpressionWriter& writer, const Arguments& args) {
    std::vector<std::string> conditions;
    std::vector<Piece> values;
    const Arguments* current = &args;
    while (true) {
        conditions.push_back(writer.Condition((*current)[0]));
        values.push_back(writer.Value((*current)[1]));
        const Arguments* nested = current->size() > 2 ? NestedIIf((*current)[2]) : nullptr;
        if (nested == nullptr) {
            break;
        }
        current = nested;
    }
    Piece otherwise = current->size() > 2 ? writer.Value((*current)[2]) : NullPiece();
    return Branches(writer, "CASE", conditions, std::move(values), std::move(otherwise));
}

Piece WriteSwitch(ExpressionWriter& writer, const Arguments& args) {
    if (args.size() % 2 != 0) {
        Raise(kErrQueryText, "Wrong number of arguments used with function in query expression 'Switch'.");
    }
    std::vector<std::string> conditions;
    std::vector<Piece> values;
    for (std::size_t i = 0; i < args.size(); i += 2) {
        conditions.push_back(writer.Condition(args[i]));
        values.push_back(writer.Value(args[i + 1]));
    }
    return Branches(writer, "CASE", conditions, std::move(values), std::nullopt);
}

Piece WriteChoose(ExpressionWriter& writer, const Arguments& args) {
    Piece index = writer.Value(args[0]);
    const bool whole = IsWhole(index.type);
    std::string head = AsNumber(writer.GetContext(), std::move(index));
    if (!whole) {
        head = Apply("qy_fix", {head});
    }
    std::vector<std::string> conditions;
    std::vector<Piece> values;
    for (std::size_t i = 1; i < args.size(); ++i) {
        conditions.push_back(std::to_string(i));
        values.push_back(writer.Value(args[i]));
    }
    return Branches(writer, "CASE " + head, conditions, std::move(values), std::nullopt);
}

// ------------------------------------------------------------------------------------ numbers

Piece WriteAbs(ExpressionWriter& writer, const Arguments& args) {
    Piece piece = writer.Value(args[0]);
    const FieldType type = piece.type == FieldType::Boolean ? FieldType::Integer
                           : IsNumber(piece.type)           ? piece.type
                                                            : FieldType::Double;
    const bool nullable = piece.nullable;
    std::string sql =
        type == FieldType::Currency ? std::move(piece.sql) : AsNumber(writer.GetContext(), std::move(piece));
    return Computed(Apply("abs", {sql}), type, nullable);
}

Piece Truncated(ExpressionWriter& writer, const Arguments& args, std::string_view function) {
    Piece piece = writer.Value(args[0]);
    if (piece.IsNullLiteral() || (IsWhole(piece.type) && !piece.untyped)) {
        return piece;
    }
    const bool nullable = piece.nullable;
    const FieldType from = piece.type;
    if (from == FieldType::Currency) {
        return Computed(Apply(std::string(function) + "cur", {piece.sql}), from, nullable);
    }
    std::string sql = Apply(function, {AsNumber(writer.GetContext(), std::move(piece))});
    if (IsDate(from)) {
        return Computed(Apply("qy_date", {sql}), from, nullable);
    }
    return Computed(std::move(sql), from == FieldType::Single ? from : FieldType::Double, nullable);
}

Piece WriteInt(ExpressionWriter& writer, const Arguments& args) {
    return Truncated(writer, args, "qy_int");
}

Piece WriteFix(ExpressionWriter& writer, const Arguments& args) {
    return Truncated(writer, args, "qy_fix");
}

Piece WriteRound(ExpressionWriter& writer, const Arguments& args) {
    Piece piece = writer.Value(args[0]);
    if (piece.IsNullLiteral()) {
        return piece;
    }
    Context& context = writer.GetContext();
    const std::string digits = args.size() > 1 ? AsWhole(context, writer.Value(args[1])) : "0";
    const FieldType type = IsNumber(piece.type) ? piece.type : FieldType::Double;
    const bool nullable = true;
    if (IsWhole(type) && args.size() < 2) {
        return piece;
    }
    if (type == FieldType::Currency) {
        return Computed(Apply("qy_roundcur", {piece.sql, digits}), type, nullable);
    }
    return Computed(Apply("qy_round", {AsNumber(context, std::move(piece)), digits}),
                    IsWhole(type) ? FieldType::Double : type, nullable);
}

// ------------------------------------------------------------------------------------ text

Piece WriteLeft(ExpressionWriter& writer, const Arguments& args) {
    const Piece text = Text(writer, args[0]);
    Piece count = writer.Value(args[1]);
    if (LiteralFrom(count, 0)) {
        return Computed(Apply("substr", {text.sql, "1", count.sql}), FieldType::Text, text.nullable);
    }
    return Computed(Apply("qy_left", {text.sql, AsWhole(writer.GetContext(), std::move(count))}),
                    FieldType::Text);
}

Piece WriteRight(ExpressionWriter& writer, const Arguments& args) {
    const Piece text = Text(writer, args[0]);
    Piece count = writer.Value(args[1]);
    if (LiteralFrom(count, 1)) {
        return Computed(Apply("substr", {text.sql, "-" + count.sql}), FieldType::Text, text.nullable);
    }
    return Computed(Apply("qy_right", {text.sql, AsWhole(writer.GetContext(), std::move(count))}),
                    FieldType::Text);
}

Piece WriteMid(ExpressionWriter& writer, const Arguments& args) {
    const Piece text = Text(writer, args[0]);
    Piece start = writer.Value(args[1]);
    std::optional<Piece> count;
    if (args.size() > 2) {
        count = writer.Value(args[2]);
    }
    if (LiteralFrom(start, 1) && (!count || LiteralFrom(*count, 0))) {
        return Computed(count ? Apply("substr", {text.sql, start.sql, count->sql})
                              : Apply("substr", {text.sql, start.sql}),
                        FieldType::Text, text.nullable);
    }
    Context& context = writer.GetContext();
    const std::string from = AsWhole(context, std::move(start));
    return Computed(count ? Apply("qy_mid", {text.sql, from, AsWhole(context, *std::move(count))})
                          : Apply("qy_mid", {text.sql, from}),
                    FieldType::Text);
}

// InStr([start,] text, sought [, compare])
Piece WriteInStr(ExpressionWriter& writer, const Arguments& args) {
    Context& context = writer.GetContext();
    const std::size_t first = args.size() > 2 ? 1 : 0;
    const std::string start = first == 1 ? AsWhole(context, writer.Value(args[0])) : "1";
    const Piece text = Text(writer, args[first]);
    const Piece sought = Text(writer, args[first + 1]);
    const std::string compare = args.size() > 3 ? AsWhole(context, writer.Value(args[3])) : "1";
    return Computed(Apply("qy_instr", {start, text.sql, sought.sql, compare}), FieldType::Long);
}

// ------------------------------------------------------------------------------------ tests and types

Piece WriteIsNull(ExpressionWriter& writer, const Arguments& args) {
    return Computed("(-(" + writer.Value(args[0]).sql + " IS NULL))", FieldType::Boolean, false);
}

Piece Converted(ExpressionWriter& writer, const Arguments& args, FieldType to) {
    Piece piece = writer.Value(args[0]);
    if (piece.type == to && !piece.untyped && !piece.nullable && !piece.wide) {
        return piece;
    }
    return Computed(Apply("qy_convert", {piece.sql, TypeCode(piece.type), TypeCode(to)}), to, false);
}

// CVar, CVErr and the like: the value as it is.
Piece WriteSame(ExpressionWriter& writer, const Arguments& args) {
    return writer.Value(args[0]);
}

// ------------------------------------------------------------------------------------ the table

using Special = Piece (*)(ExpressionWriter&, const Arguments&);

// What a function takes, one letter an argument: n number, i whole number, t text, d date, v any kind
// (handed over with its type).
struct Function {
    std::size_t least = 0;
    std::size_t most = 0;
    std::string_view takes;
    FieldType result = FieldType::Text;
    std::string_view name; // of the function that does it
    Special special = nullptr;
    bool convert = false;
};

constexpr std::size_t kMany = 99;

const std::unordered_map<std::string_view, Function>& Functions() {
    using enum FieldType;
    const auto special = [](std::size_t least, std::size_t most, Special write) {
        return Function{least, most, "", Text, "", write, false};
    };
    const auto convert = [](FieldType to) { return Function{1, 1, "", to, "", nullptr, true}; };
    static const std::unordered_map<std::string_view, Function> functions{
        {"iif", special(2, 3, WriteIIf)},
        {"switch", special(2, kMany, WriteSwitch)},
        {"choose", special(2, kMany, WriteChoose)},
        {"isnull", special(1, 1, WriteIsNull)},
        {"isnumeric", {1, 1, "v", Boolean, "qy_isnumeric"}},
        {"isdate", {1, 1, "v", Boolean, "qy_isdate"}},
        {"cvar", special(1, 1, WriteSame)},
        {"cbool", convert(Boolean)},
        {"cbyte", convert(Byte)},
        {"cint", convert(Integer)},
        {"clng", convert(Long)},
        {"csng", convert(Single)},
        {"cdbl", convert(Double)},
        {"cdec", convert(Double)},
        {"ccur", convert(Currency)},
        {"cdate", convert(Date)},
        {"cvdate", {1, 1, "d", Date, "qy_same"}},
        {"cstr", convert(Text)},
        {"val", {1, 1, "t", Double, "qy_val"}},
        {"str", {1, 1, "v", Text, "qy_str"}},
        {"format", {1, 4, "vtii", Text, "qy_format"}},
        {"hex", {1, 1, "i", Text, "qy_hex"}},
        {"oct", {1, 1, "i", Text, "qy_oct"}},
        {"partition", {4, 4, "iiii", Text, "qy_partition"}},

        {"abs", special(1, 1, WriteAbs)},
        {"int", special(1, 1, WriteInt)},
        {"fix", special(1, 1, WriteFix)},
        {"round", special(1, 2, WriteRound)},
        {"sgn", {1, 1, "n", Integer, "qy_sgn"}},
        {"sqr", {1, 1, "n", Double, "qy_sqr"}},
        {"exp", {1, 1, "n", Double, "qy_exp"}},
        {"log", {1, 1, "n", Double, "qy_log"}},
        {"sin", {1, 1, "n", Double, "qy_sin"}},
        {"cos", {1, 1, "n", Double, "qy_cos"}},
        {"tan", {1, 1, "n", Double, "qy_tan"}},
        {"atn", {1, 1, "n", Double, "qy_atn"}},
        {"rnd", {0, 1, "n", Single, "qy_rnd"}},

        {"left", special(2, 2, WriteLeft)},
        {"right", special(2, 2, WriteRight)},
        {"mid", special(2, 3, WriteMid)},
        {"len", {1, 1, "t", Long, "length"}},
        {"ucase", {1, 1, "t", Text, "qy_ucase"}},
        {"lcase", {1, 1, "t", Text, "qy_lcase"}},
        {"trim", {1, 1, "t", Text, "trim"}},
        {"ltrim", {1, 1, "t", Text, "ltrim"}},
        {"rtrim", {1, 1, "t", Text, "rtrim"}},
        {"instr", special(2, 4, WriteInStr)},
        {"instrrev", {2, 4, "ttii", Long, "qy_instrrev"}},
        {"replace", {3, 6, "tttiii", Text, "qy_replace"}},
        {"space", {1, 1, "i", Text, "qy_space"}},
        {"string", {2, 2, "iv", Text, "qy_string"}},
        {"strreverse", {1, 1, "t", Text, "qy_strreverse"}},
        {"strcomp", {2, 3, "tti", Integer, "qy_strcomp"}},
        {"strconv", {2, 3, "tii", Text, "qy_strconv"}},
        {"asc", {1, 1, "t", Integer, "qy_asc"}},
        {"ascw", {1, 1, "t", Integer, "qy_ascw"}},
        {"chr", {1, 1, "i", Text, "qy_chr"}},
        {"chrw", {1, 1, "i", Text, "qy_chrw"}},

        {"date", {0, 0, "", Date, "qy_today"}},
        {"time", {0, 0, "", Date, "qy_timenow"}},
        {"now", {0, 0, "", Date, "qy_now"}},
        {"timer", {0, 0, "", Single, "qy_timer"}},
        {"year", {1, 1, "d", Integer, "qy_year"}},
        {"month", {1, 1, "d", Integer, "qy_month"}},
        {"day", {1, 1, "d", Integer, "qy_day"}},
        {"hour", {1, 1, "d", Integer, "qy_hour"}},
        {"minute", {1, 1, "d", Integer, "qy_minute"}},
        {"second", {1, 1, "d", Integer, "qy_second"}},
        {"weekday", {1, 2, "di", Integer, "qy_weekday"}},
        {"dateadd", {3, 3, "tnd", Date, "qy_dateadd"}},
        {"datediff", {3, 5, "tddii", Long, "qy_datediff"}},
        {"datepart", {2, 4, "tdii", Integer, "qy_datepart"}},
        {"dateserial", {3, 3, "iii", Date, "qy_dateserial"}},
        {"datevalue", {1, 1, "v", Date, "qy_datevalue"}},
        {"timeserial", {3, 3, "iii", Date, "qy_timeserial"}},
        {"timevalue", {1, 1, "v", Date, "qy_timevalue"}},
        {"monthname", {1, 2, "ii", Text, "qy_monthname"}},
        {"weekdayname", {1, 3, "iii", Text, "qy_weekdayname"}},
    };
    return functions;
}

std::string NormalName(std::string_view name) {
    std::string result(name);
    for (char& c : result) {
        if (c >= 'A' && c <= 'Z') {
            c = static_cast<char>(c + 32);
        }
    }
    if (!result.empty() && result.back() == '$') {
        result.pop_back();
    }
    return result;
}

Piece WritePlain(ExpressionWriter& writer, const Function& function, const Arguments& args) {
    Context& context = writer.GetContext();
    std::string sql(function.name);
    sql += '(';
    for (std::size_t i = 0; i < args.size(); ++i) {
        Piece piece = writer.Value(args[i]);
        if (i > 0) {
            sql += ", ";
        }
        switch (function.takes[i]) {
        case 'n':
            sql += AsNumber(context, std::move(piece));
            break;
        case 'i':
            sql += AsWhole(context, std::move(piece));
            break;
        case 't':
            sql += AsText(context, std::move(piece));
            break;
        case 'd':
            sql += AsDate(context, std::move(piece));
            break;
        default:
            sql += piece.sql + ", " + TypeCode(piece.type);
            break;
        }
    }
    return Computed(sql + ")", function.result);
}

// ------------------------------------------------------------------------------------ aggregates

constexpr std::array<std::string_view, 11> kAggregates{"count", "sum",   "avg",    "min", "max", "first",
                                                       "last",  "stdev", "stdevp", "var", "varp"};

void CheckAggregate(const Scope& scope, const Call& call) {
    if (scope.inAggregate) {
        Raise(3095, "Cannot have aggregate function in expression '" + call.name + "'.");
    }
    if (!scope.aggregatesAllowed) {
        Raise(3096, "Cannot have aggregate function in WHERE clause '" + call.name + "'.");
    }
    if (!call.star && call.args.size() != 1) {
        Raise(kErrQueryText,
              "Wrong number of arguments used with function in query expression '" + call.name + "'.");
    }
}

// What an aggregate gathers. SQLite would hand an aggregate over columns of an enclosing query alone to that
// query, whose rows would become one; here it belongs where it stands.
Piece Gathered(ExpressionWriter& writer, const Expr& expr) {
    Scope& scope = writer.GetScope();
    std::vector<bool> used;
    for (Source& source : scope.sources) {
        used.push_back(source.used);
        source.used = false;
    }
    Piece piece = writer.Value(expr);
    bool own = scope.outer == nullptr || piece.literal.has_value();
    for (std::size_t i = 0; i < used.size(); ++i) {
        own = own || scope.sources[i].used;
        scope.sources[i].used = scope.sources[i].used || used[i];
    }
    if (own) {
        return piece;
    }
    if (scope.sources.empty()) {
        Raise(3067, "Query input must contain at least one table or query.");
    }
    const Source& source = scope.sources.front();
    const std::string any = source.table != nullptr ? source.FieldText(0) : source.alias + ".c0";
    Piece gathered = Computed("coalesce(" + piece.sql + ", nullif(" + any + ", " + any + "))", piece.type);
    gathered.size = piece.size;
    gathered.untyped = piece.untyped;
    return gathered;
}

Piece AggregateOf(ExpressionWriter& writer, std::string_view name, const Call& call) {
    Context& context = writer.GetContext();
    const Scope& scope = writer.GetScope();
    const auto filtered = [&](std::string sql) { return "(" + sql + scope.aggregateFilter + ")"; };
    if (call.star) {
        return Computed(filtered("count(*)"), FieldType::Long, false);
    }
    Piece piece = Gathered(writer, call.args.front());
    if (name == "count") {
        return Computed(filtered(Apply("count", {piece.sql})), FieldType::Long, false);
    }
    if (name == "min" || name == "max") {
        Piece result = Computed(filtered(Apply(name, {Collated(piece)})), piece.type);
        result.size = piece.size;
        result.untyped = piece.untyped;
        return result;
    }
    if (name == "first" || name == "last") {
        std::string arguments = piece.sql;
        if (!scope.groupOrder.empty()) {
            arguments += ", " + scope.groupOrder;
        }
        Piece result =
            Computed(filtered(Apply(name == "first" ? "qy_first" : "qy_last", {arguments})), piece.type);
        result.size = piece.size;
        result.untyped = piece.untyped;
        return result;
    }
    if (IsText(piece.type) && !piece.untyped) {
        RaiseMismatch();
    }
    const bool currency = piece.type == FieldType::Currency;
    if (name == "sum" && currency) {
        return Computed(filtered(Apply("sum", {piece.sql})), FieldType::Currency);
    }
    if (name == "avg" && currency) {
        return Computed(Apply("qy_roundhalf", {filtered(Apply("avg", {piece.sql}))}), FieldType::Currency);
    }
    const std::string number = AsNumber(context, std::move(piece));
    const std::string function =
        name == "sum" || name == "avg" ? std::string(name) : "qy_" + std::string(name);
    return Computed(filtered(Apply(function, {number})), FieldType::Double);
}

Piece WriteAggregate(ExpressionWriter& writer, std::string_view name, const Call& call) {
    Scope& scope = writer.GetScope();
    CheckAggregate(scope, call);
    scope.inAggregate = true;
    Piece piece = AggregateOf(writer, name, call);
    scope.inAggregate = false;
    piece.source = piece.field = -1;
    return piece;
}

bool IsAggregateName(std::string_view name) {
    return std::find(kAggregates.begin(), kAggregates.end(), name) != kAggregates.end();
}

} // namespace

bool IsAggregate(const Call& call) {
    return std::any_of(kAggregates.begin(), kAggregates.end(),
                       [&](std::string_view name) { return runtime::EqualName(call.name, name); });
}

bool ContainsAggregate(const Expr& expr) {
    bool found = false;
    jet_sql::ForEachExpr(expr, [&](const Expr& each) {
        const auto* call = each.As<Call>();
        found = found || (call != nullptr && IsAggregate(*call));
    });
    return found;
}

Piece WriteCall(ExpressionWriter& writer, const Call& call) {
    const std::string name = NormalName(call.name);
    if (IsAggregateName(name)) {
        return WriteAggregate(writer, name, call);
    }
    const auto& functions = Functions();
    const auto found = functions.find(name);
    if (found == functions.end()) {
        Raise(kErrUndefinedFunction, "Undefined function '" + call.name + "' in expression.");
    }
    const Function& function = found->second;
    if (call.star || call.args.size() < function.least || call.args.size() > function.most) {
        Raise(kErrQueryText,
              "Wrong number of arguments used with function in query expression '" + call.name + "'.");
    }
    if (function.special != nullptr) {
        return function.special(writer, call.args);
    }
    if (function.convert) {
        return Converted(writer, call.args, function.result);
    }
    return WritePlain(writer, function, call.args);
}

} // namespace quillary::database::sqlite
