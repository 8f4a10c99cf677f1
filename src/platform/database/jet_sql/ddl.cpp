#include "platform/database/jet_sql/parsing.h"

#include <algorithm>
#include <array>
#include <limits>

namespace quillary::database::jet_sql {
namespace {

using K = Keyword;

struct TypeWord {
    std::string_view word; // small letters
    FieldType type;
    bool counter = false;
};

constexpr TypeWord kTypes[] = {
    {"text", FieldType::Text},
    {"char", FieldType::Text},
    {"character", FieldType::Text},
    {"varchar", FieldType::Text},
    {"string", FieldType::Text},
    {"alphanumeric", FieldType::Text},
    {"nchar", FieldType::Text},
    {"nvarchar", FieldType::Text},
    {"memo", FieldType::Memo},
    {"longtext", FieldType::Memo},
    {"longchar", FieldType::Memo},
    {"note", FieldType::Memo},
    {"ntext", FieldType::Memo},
    {"byte", FieldType::Byte},
    {"integer1", FieldType::Byte},
    {"tinyint", FieldType::Byte},
    {"short", FieldType::Short},
    {"smallint", FieldType::Short},
    {"integer2", FieldType::Short},
    {"long", FieldType::Long},
    {"int", FieldType::Long},
    {"integer", FieldType::Long},
    {"integer4", FieldType::Long},
    {"counter", FieldType::Long, true},
    {"autoincrement", FieldType::Long, true},
    {"identity", FieldType::Long, true},
    {"single", FieldType::Single},
    {"real", FieldType::Single},
    {"float4", FieldType::Single},
    {"ieeesingle", FieldType::Single},
    {"double", FieldType::Double},
    {"float", FieldType::Double},
    {"float8", FieldType::Double},
    {"ieeedouble", FieldType::Double},
    {"number", FieldType::Double},
    {"numeric", FieldType::Double},
    {"decimal", FieldType::Decimal},
    {"dec", FieldType::Decimal},
    {"currency", FieldType::Currency},
    {"money", FieldType::Currency},
    {"datetime", FieldType::DateTime},
    {"date", FieldType::DateTime},
    {"time", FieldType::DateTime},
    {"timestamp", FieldType::DateTime},
    {"bit", FieldType::Bit},
    {"yesno", FieldType::Bit},
    {"logical", FieldType::Bit},
    {"logical1", FieldType::Bit},
    {"boolean", FieldType::Bit},
    {"guid", FieldType::Guid},
    {"uniqueidentifier", FieldType::Guid},
    {"longbinary", FieldType::LongBinary},
    {"oleobject", FieldType::LongBinary},
    {"general", FieldType::LongBinary},
    {"image", FieldType::LongBinary},
    {"binary", FieldType::Binary},
    {"varbinary", FieldType::Binary},
    {"value", FieldType::Value},
};

const TypeWord* FindType(std::string_view word) {
    const auto same = [word](const TypeWord& type) {
        return std::equal(word.begin(), word.end(), type.word.begin(), type.word.end(), [](char a, char b) {
            return (a >= 'A' && a <= 'Z' ? static_cast<char>(a | 0x20) : a) == b;
        });
    };
    const auto* found = std::find_if(std::begin(kTypes), std::end(kTypes), same);
    return found == std::end(kTypes) ? nullptr : found;
}

} // namespace

void Parser::ParseCreate(Statement& statement) {
    if (Accept(Keyword::Table)) {
        statement.node = ParseCreateTable();
        return;
    }
    if (Is(Keyword::Index) || Is(Keyword::Unique)) {
        const bool unique = Accept(Keyword::Unique);
        Expect(Keyword::Index, kErrCreateIndex);
        statement.node = ParseCreateIndex(unique);
        return;
    }
    const bool view = Is(Keyword::View);
    if (!view && !Is(Keyword::Procedure) && !Is(Keyword::Proc))
        Fail(kErrCreateTable);
    Take();
    statement.node = ParseCreateQuery(view);
}

CreateTable Parser::ParseCreateTable() {
    CreateTable create;
    const std::uint32_t begin = Here();
    create.name = TakeName(kErrCreateTable);
    create.namePlace = PlaceFrom(begin);
    Expect(TokenKind::LeftParen, kErrCreateTable);
    ++openBrackets_;
    do {
        if (StartsConstraint())
            create.constraints.push_back(ParseConstraint(nullptr));
        else
            create.columns.push_back(ParseColumn());
    } while (Accept(TokenKind::Comma));
    --openBrackets_;
    Expect(TokenKind::RightParen, kErrCreateTable);
    return create;
}

// Whether a constraint of the table begins here; its words are column names elsewhere.
bool Parser::StartsConstraint() const {
    switch (Peek().keyword) {
    case Keyword::Constraint:
        return IsName(1) && (Is(Keyword::Primary, 2) || Is(Keyword::Unique, 2) || Is(Keyword::Foreign, 2) ||
                             Is(Keyword::Check, 2));
    case Keyword::Primary:
    case Keyword::Foreign:
        return Is(Keyword::Key, 1);
    case Keyword::Unique:
    case Keyword::Check:
        return Is(TokenKind::LeftParen, 1);
    default:
        return false;
    }
}

ColumnDef Parser::ParseColumn() {
    ColumnDef column;
    const std::uint32_t begin = Here();
    column.name = TakeName(kErrFieldDefinition);
    column.type = ParseType(kErrFieldDefinition);
    if (column.type.type == FieldType::Value)
        Fail(kErrFieldDefinition);
    ColumnRules(column);
    column.place = PlaceFrom(begin);
    return column;
}

void Parser::ColumnRules(ColumnDef& column) {
    constexpr KeywordSet kBehindDefault = {K::Not,        K::Null,  K::Primary, K::Unique, K::Constraint,
                                           K::References, K::Check, K::With,    K::Default};
    for (;;) {
        if (Accept(Keyword::Not, Keyword::Null)) {
            column.notNull = true;
        } else if (Accept(Keyword::Null)) {
            // said, and so anyway
        } else if (Is(Keyword::Constraint) && IsName(1) && Is(Keyword::Not, 2)) {
            at_ += 3; // a name for NOT NULL, of no use
            Expect(Keyword::Null, kErrFieldDefinition);
            column.notNull = true;
        } else if (Accept(Keyword::Default)) {
            column.defaultValue = ClauseExpression(kErrFieldDefinition, kBehindDefault, Comma::Yes);
        } else if (Is(Keyword::With) && (Is(Keyword::Compression, 1) || Is(Keyword::Comp, 1))) {
            at_ += 2; // how the text lies in the file is the engine's affair
        } else if (Is(Keyword::Constraint) || Is(Keyword::Primary) || Is(Keyword::Unique) ||
                   Is(Keyword::References) || Is(Keyword::Check)) {
            column.constraints.push_back(ParseConstraint(&column.name));
        } else {
            break;
        }
    }
    if (!Is(TokenKind::Comma) && !Is(TokenKind::RightParen) && !Is(TokenKind::End) &&
        !Is(TokenKind::Semicolon))
        Fail(kErrFieldDefinition);
}

ColumnType Parser::ParseType(int error) {
    if (!Is(TokenKind::Word))
        Fail(error);
    const TypeWord* word = FindType(TextOf(Peek()));
    if (!word)
        Fail(error);
    Take();
    ColumnType type;
    type.type = word->type;
    type.counter = word->counter;
    if (type.type == FieldType::Text)
        Accept(Keyword::Varying);
    std::int32_t given[2] = {};
    int count = 0;
    if (Accept(TokenKind::LeftParen)) {
        do {
            const bool negative = type.counter && Accept(TokenKind::Minus);
            const std::int32_t number = TakeWhole(error);
            if (count == 2)
                Fail(error);
            given[count++] = negative ? -number : number;
        } while (Accept(TokenKind::Comma));
        Expect(TokenKind::RightParen, error);
    }
    if (type.counter) {
        type.seed = count > 0 ? given[0] : 1;
        type.step = count > 1 ? given[1] : 1;
        if (type.step == 0)
            Fail(error);
        return type;
    }
    // NUMERIC is a double here, but for one with digits.
    if (type.type == FieldType::Decimal || (word->word == "numeric" && count > 0)) {
        type.type = FieldType::Decimal;
        type.precision = count > 0 ? given[0] : 18;
        type.scale = count > 1 ? given[1] : 0;
        if (type.precision < 1 || type.precision > 28 || type.scale > type.precision)
            Fail(error);
        return type;
    }
    if (type.type == FieldType::Text || type.type == FieldType::Binary) {
        constexpr std::int32_t kUsual = 255;
        type.size = count > 0 ? given[0] : kUsual;
        if (count > 1 || type.size < 1)
            Fail(error);
    } else if (count > 1) {
        Fail(error);
    }
    return type;
}

// `column`: the column at which it is written; nullptr for one of the table.
Constraint Parser::ParseConstraint(const std::string* column) {
    Constraint constraint;
    const std::uint32_t begin = Here();
    if (Accept(Keyword::Constraint))
        constraint.name = TakeName(kErrConstraint);
    const auto columns = [&] {
        if (column)
            constraint.columns.push_back(*column);
        else
            constraint.columns = NameList(kErrConstraint);
    };
    if (Accept(Keyword::Primary)) {
        Expect(Keyword::Key, kErrConstraint);
        constraint.kind = ConstraintKind::PrimaryKey;
        columns();
    } else if (Accept(Keyword::Unique)) {
        constraint.kind = ConstraintKind::Unique;
        columns();
    } else if (column ? Is(Keyword::References) : Is(Keyword::Foreign)) {
        constraint.kind = ConstraintKind::ForeignKey;
        if (!column) {
            Take();
            Expect(Keyword::Key, kErrConstraint);
            constraint.noIndex = Accept(Keyword::No, Keyword::Index);
        }
        columns();
        ForeignKey(constraint);
    } else if (Accept(Keyword::Check)) {
        constraint.kind = ConstraintKind::Check;
        if (column)
            constraint.columns.push_back(*column);
        Expect(TokenKind::LeftParen, kErrConstraint);
        ++openBrackets_;
        constraint.check = ClauseExpression(kErrConstraint, {}, Comma::No);
        --openBrackets_;
        Expect(TokenKind::RightParen, kErrConstraint);
    } else {
        Fail(kErrConstraint);
    }
    constraint.place = PlaceFrom(begin);
    return constraint;
}

void Parser::ForeignKey(Constraint& constraint) {
    Expect(Keyword::References, kErrConstraint);
    constraint.refTable = TakeName(kErrConstraint);
    if (Is(TokenKind::LeftParen))
        constraint.refColumns = NameList(kErrConstraint);
    while (Accept(Keyword::On)) {
        const bool onDelete = Is(Keyword::Delete);
        if (!onDelete && !Is(Keyword::Update))
            Fail(kErrConstraint);
        Take();
        ReferenceAction& action = onDelete ? constraint.onDelete : constraint.onUpdate;
        if (Accept(Keyword::Cascade)) {
            action = ReferenceAction::Cascade;
        } else if (Accept(Keyword::Set, Keyword::Null)) {
            action = ReferenceAction::SetNull;
        } else if (Is(Keyword::No) && TextOf(Peek(1)).size() == 6 && Is(TokenKind::Word, 1)) {
            at_ += 2; // NO ACTION
        } else {
            Fail(kErrConstraint);
        }
    }
}

std::vector<std::string> Parser::NameList(int error) {
    std::vector<std::string> names;
    Expect(TokenKind::LeftParen, error);
    do
        names.push_back(TakeName(error));
    while (Accept(TokenKind::Comma));
    Expect(TokenKind::RightParen, error);
    return names;
}

CreateIndex Parser::ParseCreateIndex(bool unique) {
    CreateIndex index;
    index.unique = unique;
    index.name = TakeName(kErrCreateIndex);
    Expect(Keyword::On, kErrCreateIndex);
    index.table = TakeName(kErrCreateIndex);
    Expect(TokenKind::LeftParen, kErrCreateIndex);
    do {
        IndexColumn column;
        column.name = TakeName(kErrCreateIndex);
        column.descending = Accept(Keyword::Desc);
        if (!column.descending)
            Accept(Keyword::Asc);
        index.columns.push_back(std::move(column));
    } while (Accept(TokenKind::Comma));
    Expect(TokenKind::RightParen, kErrCreateIndex);
    if (!Accept(Keyword::With))
        return index;
    do {
        if (Accept(Keyword::Primary))
            index.primary = true;
        else if (Accept(Keyword::Disallow, Keyword::Null))
            index.disallowNull = true;
        else if (Accept(Keyword::Ignore, Keyword::Null))
            index.ignoreNull = true;
        else
            Fail(kErrCreateIndex);
        Accept(TokenKind::Comma);
    } while (!Is(TokenKind::End) && !Is(TokenKind::Semicolon));
    return index;
}

CreateQuery Parser::ParseCreateQuery(bool view) {
    CreateQuery create;
    create.view = view;
    create.name = TakeName(kErrProcedure);
    std::vector<Parameter> parameters;
    if (Is(TokenKind::LeftParen) && view) {
        create.columns = NameList(kErrProcedure);
    } else if (Accept(TokenKind::LeftParen)) {
        parameters = ParameterList(kErrProcedure);
        Expect(TokenKind::RightParen, kErrProcedure);
    } else if (!view && !Is(Keyword::As)) {
        parameters = ParameterList(kErrProcedure);
    }
    Expect(Keyword::As, kErrProcedure);
    const std::uint32_t begin = Here();
    Statement body = ParseStatement();
    if (view && !body.As<Query>())
        Fail(kErrSelect);
    // Parameters may be told in the head or in a PARAMETERS clause of the body.
    parameters.insert(parameters.end(), std::make_move_iterator(body.parameters.begin()),
                      std::make_move_iterator(body.parameters.end()));
    body.parameters = std::move(parameters);
    create.bodyPlace = PlaceFrom(begin);
    create.body = std::move(body);
    return create;
}

AlterTable Parser::ParseAlterTable() {
    AlterTable alter;
    Expect(Keyword::Table, kErrAlterTable);
    const std::uint32_t begin = Here();
    alter.table = TakeName(kErrAlterTable);
    alter.tablePlace = PlaceFrom(begin);
    if (Accept(Keyword::Add)) {
        if (StartsConstraint()) {
            alter.action = AddConstraint{ParseConstraint(nullptr)};
            return alter;
        }
        AddColumns add;
        do {
            Accept(Keyword::Column);
            add.columns.push_back(ParseColumn());
        } while (Accept(TokenKind::Comma));
        alter.action = std::move(add);
    } else if (Accept(Keyword::Drop)) {
        if (Accept(Keyword::Constraint)) {
            alter.action = DropConstraint{TakeName(kErrAlterTable)};
            return alter;
        }
        DropColumns drop;
        do {
            Accept(Keyword::Column);
            drop.names.push_back(TakeName(kErrAlterTable));
        } while (Accept(TokenKind::Comma));
        alter.action = std::move(drop);
    } else if (Accept(Keyword::Alter)) {
        Accept(Keyword::Column);
        if (IsName() && Is(Keyword::Set, 1) && Is(Keyword::Default, 2)) {
            AlterDefault change{TakeName(kErrAlterTable), std::nullopt};
            at_ += 2;
            change.value = ClauseExpression(kErrAlterTable, {}, Comma::No);
            alter.action = std::move(change);
        } else if (IsName() && Is(Keyword::Drop, 1) && Is(Keyword::Default, 2)) {
            alter.action = AlterDefault{TakeName(kErrAlterTable), std::nullopt};
            at_ += 2;
        } else {
            alter.action = AlterColumn{ParseColumn()};
        }
    } else {
        Fail(kErrAlterTable);
    }
    return alter;
}

Drop Parser::ParseDrop() {
    Drop drop;
    switch (Peek().keyword) {
    case Keyword::Table:
        drop.kind = DropKind::Table;
        break;
    case Keyword::Index:
        drop.kind = DropKind::Index;
        break;
    case Keyword::View:
        drop.kind = DropKind::View;
        break;
    case Keyword::Proc:
    case Keyword::Procedure:
        drop.kind = DropKind::Procedure;
        break;
    default:
        Fail(kErrDrop);
    }
    Take();
    drop.name = TakeName(kErrDrop);
    if (drop.kind == DropKind::Index) {
        Expect(Keyword::On, kErrDrop);
        drop.table = TakeName(kErrDrop);
    }
    return drop;
}

} // namespace quillary::database::jet_sql
