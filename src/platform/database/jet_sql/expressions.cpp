#include "platform/database/jet_sql/date_literal.h"
#include "platform/database/jet_sql/parsing.h"

#include <algorithm>
#include <charconv>
#include <limits>

namespace quillary::database::jet_sql {

Level LevelOf(BinaryOp op) {
    switch (op) {
    case BinaryOp::Power:
        return Level::Power;
    case BinaryOp::Multiply:
    case BinaryOp::Divide:
        return Level::Multiply;
    case BinaryOp::IntDivide:
        return Level::IntDivide;
    case BinaryOp::Mod:
        return Level::Mod;
    case BinaryOp::Add:
    case BinaryOp::Subtract:
        return Level::Add;
    case BinaryOp::Concat:
        return Level::Concat;
    case BinaryOp::Equal:
    case BinaryOp::NotEqual:
    case BinaryOp::Less:
    case BinaryOp::Greater:
    case BinaryOp::LessOrEqual:
    case BinaryOp::GreaterOrEqual:
        return Level::Comparison;
    case BinaryOp::And:
        return Level::And;
    case BinaryOp::Or:
        return Level::Or;
    case BinaryOp::Xor:
        return Level::Xor;
    case BinaryOp::Eqv:
        return Level::Eqv;
    case BinaryOp::Imp:
        return Level::Imp;
    }
    return Level::Imp;
}

Expr Parser::ClauseExpression(int error, const KeywordSet& follow, Comma comma, Level level) {
    if (AtClauseEnd() || Is(TokenKind::Comma) || IsReservedHere()) {
        // Not is the one reserved word that begins an expression.
        if (!Is(Keyword::Not)) {
            if (error == kErrExpression)
                FailMissingOperator();
            Fail(error);
        }
    }
    const std::uint32_t outer = expressionBegin_;
    expressionBegin_ = Here();
    Expr expr = Expression(level);
    ExpectExpressionEnd(follow, comma);
    expressionBegin_ = outer;
    return expr;
}

void Parser::ExpectExpressionEnd(const KeywordSet& follow, Comma comma) {
    switch (Peek().kind) {
    case TokenKind::End:
    case TokenKind::Semicolon:
        return;
    case TokenKind::RightParen:
        if (openBrackets_ > 0)
            return;
        FailExpression("Extra )");
    case TokenKind::Comma:
        if (comma == Comma::Yes)
            return;
        FailExpression("Syntax error (comma)");
    case TokenKind::Word: {
        const Keyword word = Peek().keyword;
        const bool inFull = (word != Keyword::Group && word != Keyword::Order) || Is(Keyword::By, 1);
        if (follow.Has(word) && inFull)
            return;
        FailMissingOperator();
    }
    default:
        FailMissingOperator();
    }
}

Expr Parser::Finish(decltype(Expr::node) node, std::uint32_t begin, Height height) const {
    Expr expr{std::move(node), PlaceFrom(begin), height};
    return expr;
}

Height Parser::HeightOf(const std::vector<Expr>& list) {
    Height most{0};
    for (const Expr& expr : list)
        most.levels = std::max(most.levels, expr.height.levels);
    return most;
}

bool Parser::PeekBinary(BinaryOp& op) const {
    switch (Peek().kind) {
    case TokenKind::Plus:
        op = BinaryOp::Add;
        return true;
    case TokenKind::Minus:
        op = BinaryOp::Subtract;
        return true;
    case TokenKind::Star:
        op = BinaryOp::Multiply;
        return true;
    case TokenKind::Slash:
        op = BinaryOp::Divide;
        return true;
    case TokenKind::Backslash:
        op = BinaryOp::IntDivide;
        return true;
    case TokenKind::Caret:
        op = BinaryOp::Power;
        return true;
    case TokenKind::Ampersand:
        op = BinaryOp::Concat;
        return true;
    case TokenKind::Equal:
        op = BinaryOp::Equal;
        return true;
    case TokenKind::NotEqual:
        op = BinaryOp::NotEqual;
        return true;
    case TokenKind::Less:
        op = BinaryOp::Less;
        return true;
    case TokenKind::Greater:
        op = BinaryOp::Greater;
        return true;
    case TokenKind::LessOrEqual:
        op = BinaryOp::LessOrEqual;
        return true;
    case TokenKind::GreaterOrEqual:
        op = BinaryOp::GreaterOrEqual;
        return true;
    case TokenKind::Word:
        break;
    default:
        return false;
    }
    switch (Peek().keyword) {
    case Keyword::Mod:
        op = BinaryOp::Mod;
        return true;
    case Keyword::And:
        op = BinaryOp::And;
        return true;
    case Keyword::Or:
        op = BinaryOp::Or;
        return true;
    case Keyword::Xor:
        op = BinaryOp::Xor;
        return true;
    case Keyword::Eqv:
        op = BinaryOp::Eqv;
        return true;
    case Keyword::Imp:
        op = BinaryOp::Imp;
        return true;
    default:
        return false;
    }
}

Expr Parser::Expression(Level level) {
    Expr left = Operand();
    for (;;) {
        BinaryOp op{};
        if (!PeekBinary(op)) {
            if (level <= Level::Comparison && AcceptPredicate(left))
                continue;
            return left;
        }
        const Level own = LevelOf(op);
        if (own < level)
            return left;
        Take();
        if (own == Level::Comparison) {
            left = Comparison(std::move(left), op);
            continue;
        }
        const std::uint32_t begin = left.place.begin - offset_;
        Expr right = Expression(Above(own));
        const Height height = Over({left.height, right.height});
        left = Finish(Binary{op, std::move(left), std::move(right)}, begin, height);
    }
}

// The right side of a comparison may be the rows of a query.
Expr Parser::Comparison(Expr left, BinaryOp op) {
    const std::uint32_t begin = left.place.begin - offset_;
    const bool any = Is(Keyword::Any) || Is(Keyword::Some);
    if ((any || Is(Keyword::All)) && Is(TokenKind::LeftParen, 1) && StartsQuery(2)) {
        at_ += 2;
        Box<Query> query = QueryInBrackets();
        const Height height = Over({left.height, query->height});
        return Finish(
            Quantified{op, any ? Quantifier::Any : Quantifier::All, std::move(left), std::move(query)}, begin,
            height);
    }
    Expr right = Expression(Above(Level::Comparison));
    const Height height = Over({left.height, right.height});
    return Finish(Binary{op, std::move(left), std::move(right)}, begin, height);
}

bool Parser::AcceptPredicate(Expr& left) {
    if (!Is(TokenKind::Word))
        return false;
    const std::uint32_t begin = left.place.begin - offset_;
    if (Accept(Keyword::Is)) {
        const bool negated = Accept(Keyword::Not);
        if (!Accept(Keyword::Null))
            FailMissingOperator();
        const Height height = Over({left.height});
        left = Finish(IsNull{std::move(left), negated}, begin, height);
        return true;
    }
    const std::size_t word = Is(Keyword::Not) ? 1 : 0;
    const bool negated = word == 1;
    if (Is(Keyword::Like, word)) {
        at_ += word + 1;
        Expr pattern = Expression(Above(Level::Comparison));
        const Height height = Over({left.height, pattern.height});
        left = Finish(Like{std::move(left), std::move(pattern), negated}, begin, height);
        return true;
    }
    if (Is(Keyword::Between, word)) {
        at_ += word + 1;
        Expr low = Expression(Above(Level::Comparison));
        if (!Accept(Keyword::And))
            FailExpression("Between operator without And");
        Expr high = Expression(Above(Level::Comparison));
        const Height height = Over({left.height, low.height, high.height});
        left = Finish(Between{std::move(left), std::move(low), std::move(high), negated}, begin, height);
        return true;
    }
    // Without a bracket it is the IN 'file' of a FROM clause.
    if (Is(Keyword::In, word) && Is(TokenKind::LeftParen, word + 1)) {
        at_ += word + 2;
        left = InPredicate(std::move(left), negated, begin);
        return true;
    }
    return false;
}

Expr Parser::InPredicate(Expr value, bool negated, std::uint32_t begin) {
    const Nested nested(*this);
    if (StartsQuery()) {
        Box<Query> query = QueryInBrackets();
        const Height height = Over({value.height, query->height});
        return Finish(InQuery{std::move(value), std::move(query), negated}, begin, height);
    }
    std::vector<Expr> list = Arguments();
    if (list.empty())
        FailMissingOperator();
    const Height height = Over({value.height, HeightOf(list)});
    return Finish(InList{std::move(value), std::move(list), negated}, begin, height);
}

void Parser::ExpectClosing() {
    if (Accept(TokenKind::RightParen))
        return;
    if (Is(TokenKind::Comma))
        FailExpression("Syntax error (comma)");
    if (Is(TokenKind::End) || Is(TokenKind::Semicolon))
        FailExpression("Missing ), ], or Item");
    FailMissingOperator();
}

Box<Query> Parser::QueryInBrackets() {
    const Nested nested(*this);
    const std::uint32_t outer = expressionBegin_;
    ++openBrackets_;
    Box<Query> query(ParseQuery(Into::Refused));
    --openBrackets_;
    expressionBegin_ = outer;
    Accept(TokenKind::Semicolon);
    ExpectClosing();
    return query;
}

std::vector<Expr> Parser::Arguments() {
    std::vector<Expr> list;
    if (Accept(TokenKind::RightParen))
        return list;
    do
        list.push_back(Expression());
    while (Accept(TokenKind::Comma));
    ExpectClosing();
    return list;
}

Expr Parser::Operand() {
    const std::uint32_t begin = Here();
    switch (Peek().kind) {
    case TokenKind::Minus: {
        const Nested nested(*this);
        Take();
        Expr operand = Operand(); // -2^2 is 4 here: the sign binds before the power
        const Height height = Over({operand.height});
        return Finish(Unary{UnaryOp::Negate, std::move(operand)}, begin, height);
    }
    case TokenKind::Plus: {
        const Nested nested(*this);
        Take();
        return Operand(); // it does nothing
    }
    case TokenKind::LeftParen: {
        const Nested nested(*this);
        Take();
        if (StartsQuery()) {
            Box<Query> query = QueryInBrackets();
            const Height height = Over({query->height});
            return Finish(Subquery{std::move(query)}, begin, height);
        }
        Expr inner = Expression();
        ExpectClosing();
        inner.place = PlaceFrom(begin);
        return inner;
    }
    case TokenKind::Number:
        return NumberLiteral();
    case TokenKind::String: {
        std::string value = StringOf(text_, Take());
        return Finish(Literal{std::move(value)}, begin, {});
    }
    case TokenKind::Date:
        return DateLiteral();
    case TokenKind::Bracketed:
        return Finish(NameReference(), begin, {});
    case TokenKind::Word:
        return WordOperand();
    default:
        FailMissingOperator();
    }
}

Expr Parser::WordOperand() {
    const std::uint32_t begin = Here();
    const auto literal = [&](runtime::Variant value) {
        Take();
        return Finish(Literal{std::move(value)}, begin, {});
    };
    if (Is(TokenKind::Dot, 1) || Is(TokenKind::Bang, 1))
        return Finish(NameReference(), begin, {});
    switch (Peek().keyword) {
    case Keyword::Not: {
        const Nested nested(*this);
        Take();
        Expr operand = Expression(Above(Level::Not));
        const Height height = Over({operand.height});
        return Finish(Unary{UnaryOp::Not, std::move(operand)}, begin, height);
    }
    case Keyword::Exists:
        if (Is(TokenKind::LeftParen, 1) && StartsQuery(2)) {
            at_ += 2;
            Box<Query> query = QueryInBrackets();
            const Height height = Over({query->height});
            return Finish(Exists{std::move(query)}, begin, height);
        }
        break;
    case Keyword::True:
    case Keyword::Yes:
    case Keyword::On:
        return literal(true);
    case Keyword::False:
    case Keyword::No:
    case Keyword::Off:
        return literal(false);
    case Keyword::Null:
        return literal(runtime::Variant::Null());
    default:
        break;
    }
    if (IsReservedHere())
        FailMissingOperator();
    if (Is(TokenKind::LeftParen, 1))
        return CallOf(Take());
    return Finish(NameReference(), begin, {});
}

Expr Parser::CallOf(const Token& name) {
    const Nested nested(*this);
    const std::uint32_t begin = name.begin;
    Call call{std::string(TextOf(name)), {}, false};
    Take(); // the bracket
    constexpr std::string_view kCount = "count";
    const bool count = std::equal(call.name.begin(), call.name.end(), kCount.begin(), kCount.end(),
                                  [](char a, char b) { return (a | 0x20) == b; });
    if (count && Is(TokenKind::Star) && Is(TokenKind::RightParen, 1)) {
        at_ += 2;
        call.star = true;
        return Finish(std::move(call), begin, {});
    }
    call.args = Arguments();
    const Height height = Over({HeightOf(call.args)});
    return Finish(std::move(call), begin, height);
}

Expr Parser::NumberLiteral() {
    const std::uint32_t begin = Here();
    const std::string_view digits = TextOf(Peek());
    if (digits.front() == '&') {
        const int base = (digits[1] | 0x20) == 'h' ? 16 : 8;
        std::uint32_t bits = 0;
        if (std::from_chars(digits.data() + 2, digits.data() + digits.size(), bits, base).ec != std::errc())
            FailExpression("Syntax error in number");
        Take();
        if (bits <= INT32_MAX)
            return Finish(Literal{static_cast<std::int32_t>(bits)}, begin, {});
        // The top bit is the sign: &HFFFFFFFF is -1. Literals have no sign of their own.
        const std::uint32_t magnitude = ~bits + 1;
        runtime::Variant value = static_cast<double>(magnitude);
        if (magnitude <= INT32_MAX)
            value = static_cast<std::int32_t>(magnitude);
        Expr number = Finish(Literal{std::move(value)}, begin, {});
        return Finish(Unary{UnaryOp::Negate, std::move(number)}, begin, Height{2});
    }
    std::int32_t whole = 0;
    const char* const last = digits.data() + digits.size();
    if (const auto [end, fault] = std::from_chars(digits.data(), last, whole);
        fault == std::errc() && end == last) {
        Take();
        return Finish(Literal{whole}, begin, {});
    }
    double number = 0;
    const auto [end, fault] = std::from_chars(digits.data(), last, number);
    if (fault != std::errc() || end != last)
        FailExpression("Syntax error in number");
    Take();
    return Finish(Literal{number}, begin, {});
}

Expr Parser::DateLiteral() {
    const std::uint32_t begin = Here();
    const std::string_view whole = TextOf(Peek());
    const auto date = ParseDateLiteral(whole.substr(1, whole.size() - 2));
    if (!date)
        FailExpression("Syntax error in date");
    Take();
    return Finish(Literal{*date}, begin, {});
}

NameRef Parser::NameReference() {
    NameRef name;
    name.parts.emplace_back(NameOf(text_, Take()));
    while ((Is(TokenKind::Dot) || Is(TokenKind::Bang)) && name.parts.size() < 3) {
        name.bang = name.bang || Is(TokenKind::Bang);
        Take();
        if (!IsName())
            FailExpression("Syntax error (missing name)");
        name.parts.emplace_back(NameOf(text_, Take()));
    }
    return name;
}

} // namespace quillary::database::jet_sql
