#pragma once

#include "platform/database/jet_sql/ast.h"
#include "platform/database/jet_sql/lexer.h"

#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

// The parser itself, a recursive descent over the tokens of one text. For the files of this folder only;
// the entry points stand in parser.h.
namespace quillary::database::jet_sql {

// Numbers of the faults of a text, each with its fixed message (ErrorText in parsing.cpp).
inline constexpr int kErrExpression = 3075; // message made at the place
inline constexpr int kErrBracketing = 3126;
inline constexpr int kErrNoStatement = 3129;
inline constexpr int kErrDelete = 3130;
inline constexpr int kErrFrom = 3131;
inline constexpr int kErrGroupBy = 3132;
inline constexpr int kErrHaving = 3133;
inline constexpr int kErrInsert = 3134;
inline constexpr int kErrJoin = 3135;
inline constexpr int kErrMissingSemicolon = 3137;
inline constexpr int kErrOrderBy = 3138;
inline constexpr int kErrParameters = 3139;
inline constexpr int kErrProcedure = 3140;
inline constexpr int kErrSelect = 3141;
inline constexpr int kErrTextBehindEnd = 3142;
inline constexpr int kErrTransform = 3143;
inline constexpr int kErrUpdate = 3144;
inline constexpr int kErrWhere = 3145;
inline constexpr int kErrConstraint = 3289;
inline constexpr int kErrCreateTable = 3290;
inline constexpr int kErrCreateIndex = 3291;
inline constexpr int kErrFieldDefinition = 3292;
inline constexpr int kErrAlterTable = 3293;
inline constexpr int kErrDrop = 3295;
inline constexpr int kErrTooComplex = 3360;

// Levels of brackets, subqueries, signs and joins within one another: the depth of the recursion.
inline constexpr int kMaxNesting = 200;

// How tight an operator binds; see BinaryOp. The printer brackets by the same levels.
enum class Level : std::uint8_t {
    Imp = 1,
    Eqv,
    Xor,
    Or,
    And,
    Not,
    Comparison,
    Concat,
    Add,
    Mod,
    IntDivide,
    Multiply,
    Power,
    Negate,
    Primary,
};

constexpr Level Above(Level level) {
    return static_cast<Level>(static_cast<int>(level) + 1);
}

Level LevelOf(BinaryOp op);

// A set of keywords.
class KeywordSet {
public:
    constexpr KeywordSet(std::initializer_list<Keyword> words) {
        for (const Keyword word : words)
            bits_[static_cast<unsigned>(word) / 64U] |= 1ULL << (static_cast<unsigned>(word) % 64U);
    }
    constexpr bool Has(Keyword word) const {
        return (bits_[static_cast<unsigned>(word) / 64U] >> (static_cast<unsigned>(word) % 64U)) & 1U;
    }

private:
    std::uint64_t bits_[2] = {};
};
static_assert(static_cast<unsigned>(Keyword::Count) <= 128);

class Parser {
public:
    // Places count from `offset`; `nesting` levels are used up already (a query within a bracketed name).
    explicit Parser(std::string_view text, std::uint32_t offset = 0, int nesting = 0);

    Statement WholeStatement();
    Expr WholeExpression();

private:
    // ------------------------------------------------------------------------- tokens (parsing.cpp)
    const Token& Peek(std::size_t ahead = 0) const { return tokens_[at_ + ahead]; }
    bool Is(TokenKind kind, std::size_t ahead = 0) const { return Peek(ahead).kind == kind; }
    bool Is(Keyword word, std::size_t ahead = 0) const { return Peek(ahead).keyword == word; }
    bool Accept(TokenKind kind);
    bool Accept(Keyword word);
    bool Accept(Keyword first, Keyword second); // both or none
    void Expect(TokenKind kind, int error);
    void Expect(Keyword word, int error);
    const Token& Take() { return tokens_[at_++]; }
    bool IsName(std::size_t ahead = 0) const; // a word or a bracketed name
    bool IsReservedHere() const;              // a word that cannot begin an operand or name a table
    bool AtClauseEnd() const {                // the end of the statement or of the brackets around it
        return Is(TokenKind::End) || Is(TokenKind::Semicolon) || Is(TokenKind::RightParen);
    }
    bool StartsQuery(std::size_t ahead = 0) const;
    std::string TakeName(int error);   // any word or bracketed name
    std::int32_t TakeWhole(int error); // a whole number of 32 bits, not negative
    std::string_view TextOf(const Token& token) const {
        return text_.substr(token.begin, token.end - token.begin);
    }
    Place PlaceFrom(std::uint32_t begin) const; // up to the last token taken
    std::uint32_t Here() const { return Peek().begin; }

    // ------------------------------------------------------------------------- errors (parsing.cpp)
    [[noreturn]] void Fail(int error) const;
    // 3075: "<what> in query expression '<the expression at hand>'."
    [[noreturn]] void FailExpression(const char* what) const;
    [[noreturn]] void FailMissingOperator() const;
    void FailOnBadToken() const;
    std::string Quoted(std::uint32_t begin) const;

    class Nested; // one more level of kMaxNesting, for the time of its life
    static Height Over(std::initializer_list<Height> parts);

    // -------------------------------------------------------------------- expressions (expressions.cpp)
    enum class Comma : std::uint8_t { No, Yes };
    // The expression of a clause: one that is missing altogether is the clause's error, what is wrong
    // within it is 3075. Behind it comes the end, a bracket's end, one of the words, or a comma.
    Expr ClauseExpression(int error, const KeywordSet& follow, Comma comma, Level level = Level::Imp);
    void ExpectExpressionEnd(const KeywordSet& follow, Comma comma);
    Expr Expression(Level level = Level::Imp);
    Expr Operand();
    Expr WordOperand();
    bool PeekBinary(BinaryOp& op) const;
    Expr Comparison(Expr left, BinaryOp op);
    bool AcceptPredicate(Expr& left); // Like, In, Between, Is behind an operand
    Expr InPredicate(Expr value, bool negated, std::uint32_t begin);
    std::vector<Expr> Arguments(); // up to and with the closing bracket
    Expr CallOf(const Token& name);
    Expr NumberLiteral();
    Expr DateLiteral();
    NameRef NameReference();
    Expr Finish(decltype(Expr::node) node, std::uint32_t begin, Height height) const;
    static Height HeightOf(const std::vector<Expr>& list);
    void ExpectClosing();         // of a bracket within an expression
    Box<Query> QueryInBrackets(); // from behind the opening bracket to behind the closing one

    // ------------------------------------------------------------------------- queries (queries.cpp)
    enum class Into : std::uint8_t { Refused, Allowed };
    Query ParseQuery(Into into);
    Query QueryTerm(Into into, bool& bracketed);
    Query UnionOf(Query first, bool lastBracketed);
    Select ParseSelect(Into into, Height& height);
    Crosstab ParseCrosstab(Height& height);
    runtime::Variant Heading(); // of PIVOT ... IN
    std::vector<SelectItem> SelectList(int error, Height& height);
    SelectItem ParseSelectItem(int error, Height& height);
    std::vector<OrderItem> OrderList(Height& height);
    std::vector<Expr> GroupList(Height& height);
    std::optional<Expr> Where(const KeywordSet& follow, Height& height);
    std::vector<TableSource> Tables(int error, Height& height);
    TableSource ParseTableSource(int error);
    TableSource TablePrimary(int error);
    TableSource QueryInName();
    TableName ParseTableName(int error);
    std::string TableAlias();
    std::optional<ExternalFile> AcceptFile(int error);
    void OwnerAccess(bool& on);

    // ------------------------------------------------------------------- other statements (actions.cpp)
    Statement ParseStatement();
    Update ParseUpdate();
    Delete ParseDelete();
    Insert ParseInsert();
    Execute ParseExecute();
    std::vector<Parameter> ParameterList(int error);

    // ------------------------------------------------------------------------- definitions (ddl.cpp)
    void ParseCreate(Statement& statement);
    CreateTable ParseCreateTable();
    CreateIndex ParseCreateIndex(bool unique);
    CreateQuery ParseCreateQuery(bool view);
    AlterTable ParseAlterTable();
    Drop ParseDrop();
    ColumnDef ParseColumn();
    void ColumnRules(ColumnDef& column);
    ColumnType ParseType(int error);
    bool StartsConstraint() const;
    Constraint ParseConstraint(const std::string* column);
    void ForeignKey(Constraint& constraint);
    std::vector<std::string> NameList(int error); // from the opening bracket to behind the closing one

    static constexpr std::uint32_t kNowhere = UINT32_MAX;

    std::string_view text_;
    std::uint32_t offset_ = 0;
    std::vector<Token> tokens_;
    std::size_t at_ = 0;
    std::uint32_t expressionBegin_ = kNowhere; // of the expression that an error quotes
    int nesting_ = 0;
    int openBrackets_ = 0;                              // around the query at hand
    std::size_t brokenString_ = std::string_view::npos; // a string without its end
};

class Parser::Nested {
public:
    explicit Nested(Parser& parser) : parser_(parser) {
        if (++parser_.nesting_ > kMaxNesting) {
            --parser_.nesting_;
            parser_.Fail(kErrTooComplex);
        }
    }
    ~Nested() { --parser_.nesting_; }
    Nested(const Nested&) = delete;
    Nested& operator=(const Nested&) = delete;

private:
    Parser& parser_;
};

} // namespace quillary::database::jet_sql
