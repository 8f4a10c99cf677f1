#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

// The words and signs of a text of the Jet dialect. Linear in the text, never fails: what cannot be read
// becomes a token of one of the Bad kinds, for the parser to refuse when it comes to it.
namespace quillary::database::jet_sql {

// Words with a meaning in some place. Hardly any is reserved: the parser takes most as names where the
// grammar leaves no doubt. The text of a keyword is its name here, in any case.
// clang-format off
#define QY_JET_KEYWORDS(X) \
    X(Add) X(All) X(Alter) X(And) X(Any) X(As) X(Asc) X(Between) X(By) X(Cascade) X(Check) \
    X(Column) X(Comp) X(Compression) X(Constraint) X(Create) X(Default) X(Delete) X(Desc) \
    X(Disallow) X(Distinct) X(DistinctRow) X(Drop) X(Eqv) X(Exec) X(Execute) X(Exists) X(False) \
    X(Foreign) X(From) X(Group) X(Having) X(Ignore) X(Imp) X(In) X(Index) X(Inner) X(Insert) \
    X(Into) X(Is) X(Join) X(Key) X(Left) X(Like) X(Mod) X(No) X(Not) X(Null) X(Off) X(On) \
    X(Option) X(Or) X(Order) X(Outer) X(OwnerAccess) X(Parameters) X(Percent) X(Pivot) X(Primary) \
    X(Proc) X(Procedure) X(References) X(Right) X(Select) X(Set) X(Some) X(Table) X(Top) \
    X(Transform) X(True) X(Union) X(Unique) X(Update) X(Values) X(Varying) X(View) X(Where) \
    X(With) X(Xor) X(Yes)
// clang-format on

enum class Keyword : std::uint8_t {
    None,
#define QY_JET_ENUMERATOR(name) name,
    QY_JET_KEYWORDS(QY_JET_ENUMERATOR)
#undef QY_JET_ENUMERATOR
        Count
};

// Keyword::None for other words.
Keyword FindKeyword(std::string_view word) noexcept;

enum class TokenKind : std::uint8_t {
    End,
    Word,      // a name or a keyword
    Bracketed, // [name] or `name`
    Number,
    String, // '...' or "...", the delimiter doubled for itself
    Date,   // #...#
    Dot,
    Bang,
    Comma,
    Semicolon,
    LeftParen,
    RightParen,
    Plus,
    Minus,
    Star,
    Slash,
    Backslash,
    Caret,
    Ampersand,
    Equal,
    NotEqual,
    Less,
    Greater,
    LessOrEqual,
    GreaterOrEqual,
    BadString,    // without its end; reaches to the end of the text
    BadDate,      // without its end on the line
    BadBracket,   // without its end, or empty
    BadNumber,    // digits that make no number
    BadCharacter, // one that has no place in the dialect
};

struct Token {
    TokenKind kind = TokenKind::End;
    Keyword keyword = Keyword::None; // of a Word
    std::uint32_t begin = 0;         // bytes into the text
    std::uint32_t end = 0;
};

class Lexer {
public:
    enum class Notes : std::uint8_t { No, Yes };

    // With notes, lines whose first characters are "--" are skipped like blanks.
    explicit Lexer(std::string_view text, Notes notes = Notes::No);

    Token Next(); // End again and again at the end

private:
    void SkipBlanks();
    bool SkipNote();
    TokenKind Scan();
    TokenKind ScanNumber();
    TokenKind ScanRadix();
    TokenKind ScanDelimited(char delimiter);
    char At(std::size_t at) const noexcept { return at < text_.size() ? text_[at] : '\0'; }

    std::string_view text_;
    std::size_t at_ = 0;
    std::size_t previousEnd_ = 0;
    bool afterOperand_ = false; // so that `&` joins and does not begin a hexadecimal number
    bool atLineStart_ = true;
    bool notes_ = false;
};

// The offset of the first byte that is a NUL or no UTF-8; npos if the text is sound.
std::size_t FindBrokenText(std::string_view text) noexcept;

// The name of a Word or Bracketed token, without its brackets.
std::string_view NameOf(std::string_view text, const Token& token) noexcept;

// The value of a String token.
std::string StringOf(std::string_view text, const Token& token);

} // namespace quillary::database::jet_sql
