#include "platform/database/jet_sql/parsing.h"

#include <utility>

namespace quillary::database::jet_sql {
namespace {

constexpr KeywordSet kBehindCondition = {Keyword::With};
constexpr KeywordSet kBehindValue = {Keyword::Where, Keyword::With};

} // namespace

Statement Parser::ParseStatement() {
    const Nested nested(*this);
    Statement statement;
    if (Accept(Keyword::Parameters)) {
        statement.parameters = ParameterList(kErrParameters);
        Expect(TokenKind::Semicolon, kErrParameters);
    } else if (Is(Keyword::Procedure)) {
        Take();
        statement.procedureName = TakeName(kErrProcedure);
        if (!Is(TokenKind::Semicolon))
            statement.parameters = ParameterList(kErrProcedure);
        Expect(TokenKind::Semicolon, kErrProcedure);
    }
    switch (Peek().keyword) {
    case Keyword::Select:
    case Keyword::Transform:
        statement.node = ParseQuery(Into::Allowed);
        return statement;
    case Keyword::Table:
        if (!IsName(1))
            break;
        statement.node = ParseQuery(Into::Refused);
        return statement;
    case Keyword::Update:
        Take();
        statement.node = ParseUpdate();
        return statement;
    case Keyword::Delete:
        Take();
        statement.node = ParseDelete();
        return statement;
    case Keyword::Insert:
        Take();
        statement.node = ParseInsert();
        return statement;
    case Keyword::Exec:
    case Keyword::Execute:
        Take();
        statement.node = ParseExecute();
        return statement;
    case Keyword::Create:
        Take();
        ParseCreate(statement);
        return statement;
    case Keyword::Alter:
        Take();
        statement.node = ParseAlterTable();
        return statement;
    case Keyword::Drop:
        Take();
        statement.node = ParseDrop();
        return statement;
    default:
        break;
    }
    if (!Is(TokenKind::LeftParen))
        Fail(kErrNoStatement);
    std::size_t ahead = 0; // a query in brackets
    while (tokens_[at_ + ahead].kind == TokenKind::LeftParen)
        ++ahead;
    if (tokens_[at_ + ahead].keyword != Keyword::Select)
        Fail(kErrNoStatement);
    statement.node = ParseQuery(Into::Refused);
    return statement;
}

Update Parser::ParseUpdate() {
    Update update;
    update.distinctRow = Accept(Keyword::DistinctRow);
    Height height{0};
    update.tables = Tables(kErrUpdate, height);
    update.file = AcceptFile(kErrUpdate);
    Expect(Keyword::Set, kErrUpdate);
    do {
        const std::uint32_t begin = Here();
        if (!IsName() || IsReservedHere())
            Fail(kErrUpdate);
        NameRef target = NameReference();
        const Place place = PlaceFrom(begin);
        Expect(TokenKind::Equal, kErrUpdate);
        // A decimal comma ends the value, and what is behind it is no target: 3144, as it must be.
        Expr value = ClauseExpression(kErrUpdate, kBehindValue, Comma::Yes);
        update.set.push_back({std::move(target), std::move(value), place});
    } while (Accept(TokenKind::Comma));
    update.where = Where(kBehindCondition, height);
    bool ownerAccess = false;
    OwnerAccess(ownerAccess);
    return update;
}

Delete Parser::ParseDelete() {
    Delete remove;
    remove.distinctRow = Accept(Keyword::DistinctRow);
    Height height{0};
    if (!Is(Keyword::From))
        remove.items = SelectList(kErrDelete, height);
    Expect(Keyword::From, kErrDelete);
    remove.from = Tables(kErrFrom, height);
    remove.file = AcceptFile(kErrFrom);
    if (!Is(TokenKind::End) && !Is(TokenKind::Semicolon) && !Is(Keyword::Where) && !Is(Keyword::With))
        Fail(kErrFrom);
    remove.where = Where(kBehindCondition, height);
    bool ownerAccess = false;
    OwnerAccess(ownerAccess);
    return remove;
}

Insert Parser::ParseInsert() {
    Insert insert;
    Expect(Keyword::Into, kErrInsert);
    const std::uint32_t begin = Here();
    insert.table = ParseTableName(kErrInsert);
    insert.tablePlace = PlaceFrom(begin);
    insert.file = AcceptFile(kErrInsert);
    if (Is(TokenKind::LeftParen) && !Is(TokenKind::LeftParen, 1) && !StartsQuery(1)) {
        Take();
        do {
            std::string name = TakeName(kErrInsert);
            if (Accept(TokenKind::Dot)) // table.field: the table can only be the one
                name = TakeName(kErrInsert);
            insert.columns.push_back(std::move(name));
        } while (Accept(TokenKind::Comma));
        Expect(TokenKind::RightParen, kErrInsert);
    }
    if (!insert.file)
        insert.file = AcceptFile(kErrInsert);
    if (Accept(Keyword::Values)) {
        Expect(TokenKind::LeftParen, kErrInsert);
        ++openBrackets_;
        do
            insert.values.push_back(ClauseExpression(kErrInsert, {}, Comma::Yes));
        while (Accept(TokenKind::Comma));
        --openBrackets_;
        Expect(TokenKind::RightParen, kErrInsert);
        if (Is(TokenKind::Comma)) // a second row of values
            Fail(kErrMissingSemicolon);
        return insert;
    }
    if (!StartsQuery() && !Is(Keyword::Table) && !Is(TokenKind::LeftParen))
        Fail(kErrInsert);
    insert.query = ParseQuery(Into::Refused);
    return insert;
}

Execute Parser::ParseExecute() {
    Execute execute;
    execute.name = TakeName(kErrProcedure);
    if (Is(TokenKind::End) || Is(TokenKind::Semicolon))
        return execute;
    do
        execute.args.push_back(ClauseExpression(kErrProcedure, {}, Comma::Yes));
    while (Accept(TokenKind::Comma));
    return execute;
}

std::vector<Parameter> Parser::ParameterList(int error) {
    std::vector<Parameter> list;
    do {
        std::string name = TakeName(error);
        while (Accept(TokenKind::Bang)) { // a control of a form: [Forms]![Form]![Control]
            name += '!';
            name += TakeName(error);
        }
        list.push_back({std::move(name), ParseType(error)});
    } while (Accept(TokenKind::Comma));
    return list;
}

} // namespace quillary::database::jet_sql
