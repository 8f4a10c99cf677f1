#include "platform/database/jet_sql/parsing.h"

#include <algorithm>

namespace quillary::database::jet_sql {
namespace {

using K = Keyword;

// What may stand behind the expression of each clause.
constexpr KeywordSet kBehindItem = {K::As,     K::From,  K::Into,  K::Where, K::Group,
                                    K::Having, K::Order, K::Union, K::Pivot, K::With};
constexpr KeywordSet kBehindOn = {K::Inner, K::Left,   K::Right, K::In,    K::Where, K::Group,
                                  K::Order, K::Having, K::Union, K::Pivot, K::With,  K::Set};
constexpr KeywordSet kBehindWhere = {K::Group, K::Having, K::Order, K::Union, K::Pivot, K::With};
constexpr KeywordSet kBehindGroup = {K::Having, K::Order, K::Union, K::Pivot, K::With};
constexpr KeywordSet kBehindHaving = {K::Order, K::Union, K::Pivot, K::With};
constexpr KeywordSet kBehindOrder = {K::Asc, K::Desc, K::Union, K::Pivot, K::With};
constexpr KeywordSet kBehindTransform = {K::As, K::Select};
constexpr KeywordSet kBehindPivot = {K::In, K::With};

void Grow(Height& height, Height part) {
    height.levels = std::max(height.levels, part.levels);
}

} // namespace

// Parts joined by UNION.
Query Parser::ParseQuery(Into into) {
    bool bracketed = false;
    Query first = QueryTerm(into, bracketed);
    if (!Is(Keyword::Union))
        return first;
    return UnionOf(std::move(first), bracketed);
}

Query Parser::UnionOf(Query first, bool lastBracketed) {
    const std::uint32_t begin = first.place.begin - offset_;
    Union whole;
    Height height = first.height;
    whole.parts.push_back({false, Box<Query>(std::move(first))});
    while (Accept(Keyword::Union)) {
        // A sort stands behind the last part only, unless its part is in brackets.
        if (const Select* part = whole.parts.back().query->As<Select>();
            part && !part->orderBy.empty() && !lastBracketed)
            Fail(kErrOrderBy);
        const bool all = Accept(Keyword::All);
        Query part = QueryTerm(Into::Refused, lastBracketed);
        Grow(height, part.height);
        whole.parts.push_back({all, Box<Query>(std::move(part))});
    }
    if (lastBracketed) {
        if (Accept(Keyword::Order, Keyword::By))
            whole.orderBy = OrderList(height);
    } else if (Select* last = std::get_if<Select>(&whole.parts.back().query->node)) {
        whole.orderBy = std::move(last->orderBy);
        last->orderBy.clear();
    }
    for (const UnionPart& part : whole.parts) {
        const Select* select = part.query->As<Select>();
        if ((select && select->into) || part.query->As<Crosstab>())
            Fail(kErrSelect);
    }
    return Query{std::move(whole), PlaceFrom(begin), Over({height})};
}

Query Parser::QueryTerm(Into into, bool& bracketed) {
    const std::uint32_t begin = Here();
    bracketed = false;
    Height height{0};
    if (Accept(TokenKind::LeftParen)) {
        const Nested nested(*this);
        ++openBrackets_;
        Query inner = ParseQuery(into);
        --openBrackets_;
        if (!Accept(TokenKind::RightParen))
            Fail(kErrSelect);
        bracketed = true;
        return inner;
    }
    if (Accept(Keyword::Transform)) {
        Crosstab crosstab = ParseCrosstab(height);
        return Query{std::move(crosstab), PlaceFrom(begin), Over({height})};
    }
    if (Is(Keyword::Table) && IsName(1)) {
        Take();
        Select all; // TABLE name is all of its rows
        all.items.emplace_back();
        bracketed = true; // a sort behind it is not its own
        const std::uint32_t table = Here();
        TableName name = ParseTableName(kErrFrom);
        all.from.push_back(TableSource{std::move(name), PlaceFrom(table), {}});
        return Query{std::move(all), PlaceFrom(begin), Height{3}};
    }
    Expect(Keyword::Select, kErrSelect);
    Select select = ParseSelect(into, height);
    return Query{std::move(select), PlaceFrom(begin), Over({height})};
}

Select Parser::ParseSelect(Into into, Height& height) {
    Select select;
    // The words before the list are names where the list's end follows them.
    const auto ahead = [this](Keyword word) {
        return Is(word) && !Is(Keyword::From, 1) && !Is(TokenKind::Comma, 1) && !Is(TokenKind::Dot, 1) &&
               !Is(TokenKind::Bang, 1) && !Is(TokenKind::End, 1) && !Is(Keyword::As, 1);
    };
    if (Accept(Keyword::Distinct))
        select.predicate = Predicate::Distinct;
    else if (Accept(Keyword::DistinctRow))
        select.predicate = Predicate::DistinctRow;
    else if (ahead(Keyword::All))
        Take();
    if (Is(Keyword::Top) && Is(TokenKind::Number, 1)) {
        Take();
        select.top = Top{TakeWhole(kErrSelect), false};
        if (ahead(Keyword::Percent)) {
            Take();
            select.top->percent = true;
        }
    }
    select.items = SelectList(kErrSelect, height);
    if (!AtClauseEnd() && (!kBehindItem.Has(Peek().keyword) || Is(Keyword::As)))
        Fail(kErrSelect);
    if (Is(Keyword::Into)) {
        if (into == Into::Refused)
            Fail(kErrSelect);
        Take();
        IntoTable target;
        const std::uint32_t begin = Here();
        if (IsReservedHere())
            Fail(kErrSelect);
        target.name = TakeName(kErrSelect);
        target.place = PlaceFrom(begin);
        target.file = AcceptFile(kErrSelect);
        select.into = std::move(target);
    }
    if (Accept(Keyword::From)) {
        select.from = Tables(kErrFrom, height);
        select.file = AcceptFile(kErrFrom);
        // What stands here belongs to no clause, so it belongs to the tables.
        constexpr KeywordSet kBehindFrom = {K::Where, K::Group, K::Having, K::Order,
                                            K::Union, K::Pivot, K::With};
        if (!AtClauseEnd() && !kBehindFrom.Has(Peek().keyword))
            Fail(kErrFrom);
    }
    select.where = Where(kBehindWhere, height);
    if (Accept(Keyword::Group, Keyword::By))
        select.groupBy = GroupList(height);
    if (Accept(Keyword::Having)) {
        select.having = ClauseExpression(kErrHaving, kBehindHaving, Comma::No);
        Grow(height, select.having->height);
    }
    if (Accept(Keyword::Order, Keyword::By))
        select.orderBy = OrderList(height);
    OwnerAccess(select.ownerAccess);
    return select;
}

void Parser::OwnerAccess(bool& on) {
    if (!Is(Keyword::With) || !Is(Keyword::OwnerAccess, 1))
        return;
    at_ += 2;
    Expect(Keyword::Option, kErrSelect);
    on = true;
}

Crosstab Parser::ParseCrosstab(Height& height) {
    Crosstab crosstab;
    crosstab.value = ClauseExpression(kErrTransform, kBehindTransform, Comma::No);
    Grow(height, crosstab.value->height);
    if (Accept(Keyword::As))
        crosstab.valueAlias = TakeName(kErrTransform);
    Expect(Keyword::Select, kErrTransform);
    crosstab.select = ParseSelect(Into::Refused, height);
    Expect(Keyword::Pivot, kErrTransform);
    // Its IN is the list of headings, not the operator; a comparison has to stand in brackets here.
    crosstab.pivot = ClauseExpression(kErrTransform, kBehindPivot, Comma::No, Level::Concat);
    Grow(height, crosstab.pivot->height);
    if (Accept(Keyword::In)) {
        Expect(TokenKind::LeftParen, kErrTransform);
        do
            crosstab.headings.push_back(Heading());
        while (Accept(TokenKind::Comma));
        Expect(TokenKind::RightParen, kErrTransform);
    }
    OwnerAccess(crosstab.select.ownerAccess);
    return crosstab;
}

// A literal, a negative number, or a bare word, which is its own text.
runtime::Variant Parser::Heading() {
    const bool negative = Accept(TokenKind::Minus);
    if (!Is(TokenKind::Number) && (negative || !(IsName() || Is(TokenKind::String) || Is(TokenKind::Date))))
        Fail(kErrTransform);
    const Expr expr = Operand();
    if (const NameRef* name = expr.As<NameRef>(); name && name->parts.size() == 1)
        return name->parts.front();
    const Literal* literal = expr.As<Literal>();
    if (!literal)
        Fail(kErrTransform);
    if (const auto* whole = literal->value.GetIf<std::int32_t>(); whole && negative)
        return *whole == INT32_MIN ? runtime::Variant(-static_cast<double>(*whole))
                                   : runtime::Variant(-*whole);
    if (const auto* number = literal->value.GetIf<double>(); number && negative)
        return -*number;
    return literal->value;
}

std::vector<SelectItem> Parser::SelectList(int error, Height& height) {
    std::vector<SelectItem> items;
    do
        items.push_back(ParseSelectItem(error, height));
    while (Accept(TokenKind::Comma));
    return items;
}

SelectItem Parser::ParseSelectItem(int error, Height& height) {
    SelectItem item;
    const std::uint32_t begin = Here();
    if (Is(TokenKind::Star) || (IsName() && Is(TokenKind::Dot, 1) && Is(TokenKind::Star, 2))) {
        if (!Is(TokenKind::Star)) {
            item.starOf = TakeName(error);
            Take();
        }
        Take();
    } else {
        item.expr = ClauseExpression(error, kBehindItem, Comma::Yes);
        Grow(height, item.expr->height);
        if (Accept(Keyword::As))
            item.alias = TakeName(error);
    }
    item.place = PlaceFrom(begin);
    return item;
}

std::vector<Expr> Parser::GroupList(Height& height) {
    std::vector<Expr> list;
    do
        list.push_back(ClauseExpression(kErrGroupBy, kBehindGroup, Comma::Yes));
    while (Accept(TokenKind::Comma));
    Grow(height, HeightOf(list));
    return list;
}

std::vector<OrderItem> Parser::OrderList(Height& height) {
    std::vector<OrderItem> list;
    do {
        OrderItem item{ClauseExpression(kErrOrderBy, kBehindOrder, Comma::Yes), false};
        Grow(height, item.expr.height);
        if (Accept(Keyword::Desc))
            item.descending = true;
        else
            Accept(Keyword::Asc);
        list.push_back(std::move(item));
    } while (Accept(TokenKind::Comma));
    return list;
}

std::optional<Expr> Parser::Where(const KeywordSet& follow, Height& height) {
    if (!Accept(Keyword::Where))
        return std::nullopt;
    Expr where = ClauseExpression(kErrWhere, follow, Comma::No);
    Grow(height, where.height);
    return where;
}

// ------------------------------------------------------------------------------------------------ tables

std::vector<TableSource> Parser::Tables(int error, Height& height) {
    std::vector<TableSource> tables;
    do {
        tables.push_back(ParseTableSource(error));
        Grow(height, tables.back().height);
    } while (Accept(TokenKind::Comma));
    return tables;
}

TableSource Parser::ParseTableSource(int error) {
    TableSource left = TablePrimary(error);
    for (;;) {
        JoinKind kind{};
        if (Is(Keyword::Inner) && Is(Keyword::Join, 1))
            kind = JoinKind::Inner;
        else if (Is(Keyword::Left) && (Is(Keyword::Join, 1) || Is(Keyword::Outer, 1)))
            kind = JoinKind::Left;
        else if (Is(Keyword::Right) && (Is(Keyword::Join, 1) || Is(Keyword::Outer, 1)))
            kind = JoinKind::Right;
        else
            return left;
        Take();
        Accept(Keyword::Outer);
        Expect(Keyword::Join, kErrJoin);
        const std::uint32_t begin = left.place.begin - offset_;
        TableSource right = TablePrimary(kErrJoin);
        Expect(Keyword::On, kErrJoin);
        Expr on = ClauseExpression(kErrJoin, kBehindOn, Comma::Yes);
        const Height height = Over({left.height, right.height, on.height});
        left = TableSource{Join{kind, Box<TableSource>(std::move(left)), Box<TableSource>(std::move(right)),
                                Box<Expr>(std::move(on))},
                           PlaceFrom(begin), height};
    }
}

TableSource Parser::TablePrimary(int error) {
    const Nested nested(*this);
    const std::uint32_t begin = Here();
    if (Accept(TokenKind::LeftParen)) {
        ++openBrackets_;
        TableSource inner;
        if (StartsQuery()) {
            Query query = ParseQuery(Into::Refused);
            Accept(TokenKind::Semicolon);
            const Height height = Over({query.height});
            inner = TableSource{DerivedTable{Box<Query>(std::move(query)), ""}, {}, height};
        } else {
            inner = ParseTableSource(error);
        }
        --openBrackets_;
        if (!Accept(TokenKind::RightParen))
            Fail(error);
        if (auto* derived = std::get_if<DerivedTable>(&inner.node); derived && derived->alias.empty())
            derived->alias = TableAlias();
        else if (auto* table = std::get_if<TableName>(&inner.node); table && table->alias.empty())
            table->alias = TableAlias();
        inner.place = PlaceFrom(begin);
        return inner;
    }
    if (Is(TokenKind::Bracketed) && Is(TokenKind::Dot, 1)) {
        Lexer lexer(NameOf(text_, Peek()));
        if (lexer.Next().keyword == Keyword::Select && lexer.Next().kind != TokenKind::End)
            return QueryInName();
    }
    TableName table = ParseTableName(error);
    table.alias = TableAlias();
    return TableSource{std::move(table), PlaceFrom(begin), {}};
}

// [SELECT ...]. AS alias: the older way to write a derived table.
TableSource Parser::QueryInName() {
    const std::uint32_t begin = Here();
    const std::string_view inner = NameOf(text_, Take());
    Take();
    Parser parser(inner, offset_ + begin + 1, nesting_);
    parser.openBrackets_ = 0;
    Query query = parser.ParseQuery(Into::Refused);
    parser.Accept(TokenKind::Semicolon);
    if (!parser.Is(TokenKind::End))
        parser.Fail(kErrTextBehindEnd);
    const Height height = Over({query.height});
    std::string alias = TableAlias();
    return TableSource{DerivedTable{Box<Query>(std::move(query)), std::move(alias)}, PlaceFrom(begin),
                       height};
}

TableName Parser::ParseTableName(int error) {
    if (IsReservedHere())
        Fail(error);
    TableName table;
    table.name = TakeName(error);
    if (Accept(TokenKind::Dot)) {
        table.file = std::move(table.name);
        table.name = TakeName(error);
    }
    return table;
}

// [AS] alias; "" if there is none.
std::string Parser::TableAlias() {
    if (Accept(Keyword::As))
        return TakeName(kErrFrom);
    constexpr KeywordSet kNoAlias = {K::Where, K::Group, K::Having, K::Order, K::Union,  K::Pivot, K::With,
                                     K::Inner, K::Left,  K::Right,  K::Join,  K::On,     K::Set,   K::In,
                                     K::As,    K::Outer, K::Select, K::From,  K::Values, K::Into};
    if (!IsName() || kNoAlias.Has(Peek().keyword))
        return {};
    return TakeName(kErrFrom);
}

std::optional<ExternalFile> Parser::AcceptFile(int error) {
    if (!Accept(Keyword::In))
        return std::nullopt;
    if (!Is(TokenKind::String))
        Fail(error);
    ExternalFile file;
    file.path = StringOf(text_, Take());
    if (Is(TokenKind::String))
        file.connect = StringOf(text_, Take());
    else if (Is(TokenKind::Bracketed))
        file.connect = std::string(NameOf(text_, Take()));
    return file;
}

} // namespace quillary::database::jet_sql
