#include "platform/database/jet_sql/parsing.h"

#include "platform/database/jet_sql/parser.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace quillary::database::jet_sql {
namespace {

constexpr std::size_t kQuotedBytes = 200;

const char* ErrorText(int number) {
    switch (number) {
    case kErrNoStatement:
        return "Invalid SQL statement; expected 'DELETE', 'INSERT', 'PROCEDURE', 'SELECT', or 'UPDATE'.";
    case kErrDelete:
        return "Syntax error in DELETE statement.";
    case kErrFrom:
        return "Syntax error in FROM clause.";
    case kErrGroupBy:
        return "Syntax error in GROUP BY clause.";
    case kErrHaving:
        return "Syntax error in HAVING clause.";
    case kErrInsert:
        return "Syntax error in INSERT INTO statement.";
    case kErrJoin:
        return "Syntax error in JOIN operation.";
    case kErrMissingSemicolon:
        return "Missing semicolon (;) at end of SQL statement.";
    case kErrOrderBy:
        return "Syntax error in ORDER BY clause.";
    case kErrParameters:
        return "Syntax error in PARAMETER clause.";
    case kErrProcedure:
        return "Syntax error in PROCEDURE clause.";
    case kErrSelect:
        return "The SELECT statement includes a reserved word or an argument name that is misspelled or "
               "missing, or the punctuation is incorrect.";
    case kErrTextBehindEnd:
        return "Characters found after end of SQL statement.";
    case kErrTransform:
        return "Syntax error in TRANSFORM statement.";
    case kErrUpdate:
        return "Syntax error in UPDATE statement.";
    case kErrWhere:
        return "Syntax error in WHERE clause.";
    case kErrConstraint:
        return "Syntax error in CONSTRAINT clause.";
    case kErrCreateTable:
        return "Syntax error in CREATE TABLE statement.";
    case kErrCreateIndex:
        return "Syntax error in CREATE INDEX statement.";
    case kErrFieldDefinition:
        return "Syntax error in field definition.";
    case kErrAlterTable:
        return "Syntax error in ALTER TABLE statement.";
    case kErrDrop:
        return "Syntax error in DROP TABLE or DROP INDEX.";
    case kErrTooComplex:
        return "Query is too complex.";
    default:
        return "Syntax error.";
    }
}

[[noreturn]] void Raise(int number, std::string text) {
    throw runtime::RunTimeError(number, "", std::move(text));
}

// At most so many bytes, whole characters.
std::string_view Cut(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes)
        return text;
    while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xC0U) == 0x80U)
        --bytes;
    return text.substr(0, bytes);
}

constexpr KeywordSet kStatementWords = {Keyword::Select, Keyword::Transform, Keyword::Update,
                                        Keyword::Delete, Keyword::Insert,    Keyword::Parameters,
                                        Keyword::Exec,   Keyword::Execute,   Keyword::Procedure,
                                        Keyword::Create, Keyword::Alter,     Keyword::Drop};

} // namespace

Parser::Parser(std::string_view text, std::uint32_t offset, int nesting)
    : text_(text), offset_(offset), nesting_(nesting) {
    if (text.size() > std::numeric_limits<std::int32_t>::max())
        Fail(kErrTooComplex);
    if (const std::size_t broken = FindBrokenText(text); broken != std::string_view::npos) {
        std::string_view sound = text.substr(0, broken);
        Raise(kErrExpression,
              "Syntax error (invalid character) in query expression '" +
                  std::string(sound.substr(sound.size() - std::min(sound.size(), kQuotedBytes))) + "'.");
    }
    tokens_.reserve(text.size() / 4 + 8);
    Lexer lexer(text);
    do {
        tokens_.push_back(lexer.Next());
        if (tokens_.back().kind == TokenKind::BadString)
            brokenString_ = tokens_.size() - 1;
    } while (tokens_.back().kind != TokenKind::End);
    // Looking ahead needs no check of its own.
    for (int i = 0; i < 3; ++i)
        tokens_.push_back(tokens_.back());
}

bool Parser::Accept(TokenKind kind) {
    if (!Is(kind))
        return false;
    ++at_;
    return true;
}

bool Parser::Accept(Keyword word) {
    if (!Is(word))
        return false;
    ++at_;
    return true;
}

bool Parser::Accept(Keyword first, Keyword second) {
    if (!Is(first) || !Is(second, 1))
        return false;
    at_ += 2;
    return true;
}

void Parser::Expect(TokenKind kind, int error) {
    if (!Accept(kind))
        Fail(error);
}

void Parser::Expect(Keyword word, int error) {
    if (!Accept(word))
        Fail(error);
}

bool Parser::IsName(std::size_t ahead) const {
    return Is(TokenKind::Word, ahead) || Is(TokenKind::Bracketed, ahead);
}

bool Parser::IsReservedHere() const {
    constexpr KeywordSet kAlways = {
        Keyword::And,         Keyword::As,    Keyword::Between, Keyword::By,     Keyword::Distinct,
        Keyword::DistinctRow, Keyword::Eqv,   Keyword::From,    Keyword::Having, Keyword::Imp,
        Keyword::In,          Keyword::Into,  Keyword::Is,      Keyword::Join,   Keyword::Like,
        Keyword::Mod,         Keyword::Or,    Keyword::Pivot,   Keyword::Set,    Keyword::Union,
        Keyword::Values,      Keyword::Where, Keyword::Xor,     Keyword::Select, Keyword::Not,
        Keyword::Transform};
    if (Is(TokenKind::Dot, 1) || Is(TokenKind::Bang, 1))
        return false;
    switch (Peek().keyword) {
    case Keyword::Group:
    case Keyword::Order:
        return Is(Keyword::By, 1);
    case Keyword::Inner:
    case Keyword::Left:
    case Keyword::Right:
        return Is(Keyword::Join, 1) || Is(Keyword::Outer, 1);
    case Keyword::With:
        return Is(Keyword::OwnerAccess, 1);
    default:
        return kAlways.Has(Peek().keyword);
    }
}

bool Parser::StartsQuery(std::size_t ahead) const {
    return (Is(Keyword::Select, ahead) || Is(Keyword::Transform, ahead)) && !Is(TokenKind::Dot, ahead + 1) &&
           !Is(TokenKind::Bang, ahead + 1);
}

std::string Parser::TakeName(int error) {
    if (!IsName())
        Fail(error);
    return std::string(NameOf(text_, Take()));
}

std::int32_t Parser::TakeWhole(int error) {
    const std::string_view digits = Is(TokenKind::Number) ? TextOf(Peek()) : std::string_view();
    std::int32_t value = 0;
    const auto [end, fault] = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (digits.empty() || fault != std::errc() || end != digits.data() + digits.size())
        Fail(error);
    ++at_;
    return value;
}

Place Parser::PlaceFrom(std::uint32_t begin) const {
    return {offset_ + begin, offset_ + (at_ > 0 ? tokens_[at_ - 1].end : begin)};
}

Height Parser::Over(std::initializer_list<Height> parts) {
    std::uint16_t most = 0;
    for (const Height part : parts)
        most = std::max(most, part.levels);
    if (most >= kMaxTreeHeight)
        Raise(kErrTooComplex, ErrorText(kErrTooComplex));
    return {static_cast<std::uint16_t>(most + 1)};
}

void Parser::Fail(int error) const {
    if (error == kErrTooComplex)
        Raise(error, ErrorText(error));
    FailOnBadToken();
    // A quote that has no mate has upset the text from further up; whatever fails first, this is why.
    if (brokenString_ != std::string_view::npos)
        Raise(kErrExpression,
              "Syntax error in string in query expression '" + Quoted(tokens_[brokenString_].begin) + "'.");
    Raise(error, ErrorText(error));
}

void Parser::FailExpression(const char* what) const {
    FailOnBadToken();
    Raise(kErrExpression,
          std::string(what) + " in query expression '" + Quoted(std::min(expressionBegin_, Here())) + "'.");
}

void Parser::FailMissingOperator() const {
    FailExpression("Syntax error (missing operator)");
}

void Parser::FailOnBadToken() const {
    const auto fail = [this](const char* what) {
        const std::uint32_t begin = std::min(expressionBegin_, Here());
        Raise(kErrExpression, std::string(what) + " in query expression '" + Quoted(begin) + "'.");
    };
    switch (Peek().kind) {
    case TokenKind::BadString:
        return fail("Syntax error in string");
    case TokenKind::BadDate:
        return fail("Syntax error in date");
    case TokenKind::BadNumber:
        return fail("Syntax error in number");
    case TokenKind::BadCharacter:
        return fail("Syntax error");
    case TokenKind::BadBracket:
        Raise(kErrBracketing,
              "Invalid bracketing of name '" + std::string(Cut(TextOf(Peek()), kQuotedBytes)) + "'.");
    default:
        return;
    }
}

// The text from there to the next clause, cut where it gets long.
std::string Parser::Quoted(std::uint32_t begin) const {
    constexpr KeywordSet kClauses = {Keyword::From,  Keyword::Where, Keyword::Group, Keyword::Having,
                                     Keyword::Order, Keyword::Pivot, Keyword::Union};
    std::uint32_t end = begin;
    std::size_t at = at_;
    while (at > 0 && tokens_[at].begin > begin && tokens_[at].begin - begin > kQuotedBytes)
        --at;
    for (; tokens_[at].kind != TokenKind::End && tokens_[at].kind != TokenKind::Semicolon; ++at) {
        const Token& token = tokens_[at];
        const bool clause =
            kClauses.Has(token.keyword) && (at == 0 || tokens_[at - 1].kind != TokenKind::Dot);
        if (clause && at > at_ && token.begin > begin)
            break;
        end = std::max(end, token.end);
        if (end - begin > kQuotedBytes)
            break;
    }
    if (end == begin && at_ > 0)
        end = std::max(begin, tokens_[at_ - 1].end);
    return std::string(Cut(text_.substr(begin, end - begin), kQuotedBytes));
}

Statement Parser::WholeStatement() {
    Statement statement = ParseStatement();
    const bool ended = Accept(TokenKind::Semicolon);
    if (!Is(TokenKind::End)) {
        // A bracket too many is a fault of the expression before it.
        if (!ended && Is(TokenKind::RightParen))
            FailExpression("Extra )");
        Fail(kErrTextBehindEnd);
    }
    return statement;
}

Expr Parser::WholeExpression() {
    Expr expr = ClauseExpression(kErrExpression, {}, Comma::No);
    if (!Is(TokenKind::End))
        FailMissingOperator();
    return expr;
}

Statement Parse(std::string_view sql) {
    return Parser(sql).WholeStatement();
}

Expr ParseExpression(std::string_view criterion) {
    return Parser(criterion).WholeExpression();
}

std::vector<Statement> ParseScript(std::string_view sql) {
    std::vector<Statement> statements;
    for (const ScriptPiece& piece : SplitScript(sql))
        statements.push_back(Parse(piece.text));
    return statements;
}

std::vector<ScriptPiece> SplitScript(std::string_view script) {
    std::vector<ScriptPiece> pieces;
    Lexer lexer(script, Lexer::Notes::Yes);
    ScriptPiece piece;
    std::uint32_t counted = 0; // lines are counted up to here
    int line = 1;
    std::uint32_t end = 0;
    bool declares = false;         // the next ";" ends a declaration, not the statement
    Keyword begun = Keyword::None; // the statement's first word
    Keyword last = Keyword::None;
    for (;;) {
        const Token token = lexer.Next();
        const bool first = piece.text.empty();
        const bool stop = token.kind == TokenKind::End || (token.kind == TokenKind::Semicolon && !declares);
        if (stop) {
            if (!first)
                pieces.push_back(std::move(piece));
            if (token.kind == TokenKind::End)
                return pieces;
            piece = {};
            declares = false;
            continue;
        }
        if (first) {
            line +=
                static_cast<int>(std::count(script.begin() + counted, script.begin() + token.begin, '\n'));
            counted = token.begin;
            piece.line = line;
            begun = token.keyword;
        } else {
            const std::string_view gap = script.substr(end, token.begin - end);
            // What is skipped between two tokens and is not all blank holds notes.
            if (gap.find('-') == std::string_view::npos)
                piece.text += gap;
            else
                piece.text += '\n';
        }
        if (token.kind == TokenKind::Semicolon)
            declares = false;
        else if (token.keyword == Keyword::Parameters || token.keyword == Keyword::Procedure)
            declares = declares || first || (begun == Keyword::Create && last == Keyword::As);
        piece.text += script.substr(token.begin, token.end - token.begin);
        end = token.end;
        last = token.keyword;
    }
}

bool IsStatement(std::string_view text) {
    Lexer lexer(text);
    Token first = lexer.Next();
    while (first.kind == TokenKind::LeftParen)
        first = lexer.Next();
    Token next = lexer.Next();
    if (first.keyword != Keyword::Table)
        return kStatementWords.Has(first.keyword) && next.kind != TokenKind::End;
    // TABLE is the first word of a union alone; else it belongs to a name, as in `Table 2`.
    while (next.kind != TokenKind::End && next.keyword != Keyword::Union)
        next = lexer.Next();
    return next.keyword == Keyword::Union;
}

} // namespace quillary::database::jet_sql
