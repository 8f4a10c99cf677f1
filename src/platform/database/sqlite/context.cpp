#include "platform/database/sqlite/context.h"

#include "platform/database/errors.h"
#include "platform/runtime/locale.h"

#include <algorithm>

namespace quillary::database::sqlite {

void Raise(int number, std::string description) {
    throw runtime::RunTimeError(number, "Database", std::move(description));
}

void RaiseUnknownTable(std::string_view name) {
    Raise(kErrUnknownTable, "The database engine cannot find the input table or query '" + std::string(name) +
                                "'. Make sure it exists and that its name is spelled correctly.");
}

void RaiseAmbiguous(std::string_view name) {
    Raise(kErrAmbiguousColumn, "The specified field '" + std::string(name) +
                                   "' could refer to more than one table listed in the FROM clause of your "
                                   "SQL statement.");
}

void RaiseTooFewParameters(std::size_t count) {
    Raise(kErrTooFewParameters, "Too few parameters. Expected " + std::to_string(count) + ".");
}

void RaiseNotUpdateable() {
    Raise(3073, "Operation must use an updateable query.");
}

void RaiseTooComplex() {
    Raise(3360, "Query is too complex.");
}

FieldType FieldTypeOf(jet_sql::FieldType type) {
    switch (type) {
    case jet_sql::FieldType::Value:
        return FieldType::Text;
    case jet_sql::FieldType::Decimal:
        return FieldType::Double;
    default:
        return static_cast<FieldType>(type);
    }
}

void Context::Declare(const std::vector<jet_sql::Parameter>& declared) {
    for (const auto& each : declared) {
        const auto known = std::any_of(parameters.begin(), parameters.end(), [&](const ParameterUse& use) {
            return runtime::EqualName(use.name, each.name);
        });
        if (!known) {
            parameters.push_back(
                {each.name, FieldTypeOf(each.type.type), true, each.type.type != jet_sql::FieldType::Value});
        }
    }
}

Piece Context::Parameter(std::string_view name) {
    auto found = std::find_if(parameters.begin(), parameters.end(),
                              [&](const ParameterUse& use) { return runtime::EqualName(use.name, name); });
    if (found == parameters.end()) {
        found = parameters.insert(parameters.end(), ParameterUse{std::string(name)});
    }
    Piece piece;
    piece.parameter = static_cast<int>(found - parameters.begin());
    piece.sql = ":p" + std::to_string(piece.parameter + 1);
    piece.type = found->type;
    piece.untyped = !found->typed;
    return piece;
}

void Context::GiveType(Piece& piece, FieldType type) {
    if (!piece.untyped) {
        return;
    }
    piece.type = type;
    if (piece.parameter >= 0) {
        auto& use = parameters[static_cast<std::size_t>(piece.parameter)];
        if (!use.typed) {
            use.type = type;
            use.typed = true;
        }
        piece.type = use.type;
        piece.untyped = false;
    }
}

Context::OpenQuery::OpenQuery(Context& context, std::string_view name) : context_(context) {
    constexpr std::size_t kDeepest = 50; // queries on queries
    if (context.openQueries_.size() >= kDeepest) {
        RaiseTooComplex();
    }
    for (const auto& open : context.openQueries_) {
        if (runtime::EqualName(open, name)) {
            Raise(3102, "Circular reference caused by '" + std::string(name) + "'.");
        }
    }
    context.openQueries_.emplace_back(name);
}

} // namespace quillary::database::sqlite
