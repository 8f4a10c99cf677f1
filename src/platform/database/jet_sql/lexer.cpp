#include "platform/database/jet_sql/lexer.h"

#include <array>

namespace quillary::database::jet_sql {
namespace {

constexpr std::size_t kLongestKeyword = 11;

constexpr bool IsDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

constexpr bool IsHexDigit(char c) noexcept {
    return IsDigit(c) || (c >= 'a' && c <= 'f') || (c >= 'A' && c <= 'F');
}

constexpr bool IsOctalDigit(char c) noexcept {
    return c >= '0' && c <= '7';
}

// Letters beyond ASCII count by their bytes: every one of them may stand in an unbracketed name.
constexpr bool StartsName(char c) noexcept {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == '@' ||
           static_cast<unsigned char>(c) >= 0x80;
}

constexpr bool ContinuesName(char c) noexcept {
    return StartsName(c) || IsDigit(c);
}

constexpr char Lower(char c) noexcept {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

constexpr bool SameWord(std::string_view a, std::string_view b) noexcept {
    if (a.size() != b.size())
        return false;
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (Lower(a[i]) != Lower(b[i]))
            return false;
    }
    return true;
}

constexpr std::string_view kKeywordTexts[] = {"",
#define QY_JET_TEXT(name) #name,
                                              QY_JET_KEYWORDS(QY_JET_TEXT)
#undef QY_JET_TEXT
};

constexpr std::size_t kSlots = 512;

constexpr std::size_t Slot(std::string_view word) noexcept {
    std::uint32_t hash = 2166136261U;
    for (const char c : word)
        hash = (hash ^ static_cast<unsigned char>(Lower(c))) * 16777619U;
    return (hash ^ (hash >> 15U)) % kSlots;
}

constexpr std::array<Keyword, kSlots> MakeSlots() {
    std::array<Keyword, kSlots> slots{};
    for (std::size_t i = 1; i < std::size(kKeywordTexts); ++i) {
        std::size_t slot = Slot(kKeywordTexts[i]);
        while (slots[slot] != Keyword::None)
            slot = (slot + 1) % kSlots;
        slots[slot] = static_cast<Keyword>(i);
    }
    return slots;
}

constexpr std::array<Keyword, kSlots> kKeywordSlots = MakeSlots();

constexpr bool IsOperand(TokenKind kind) noexcept {
    return kind == TokenKind::Word || kind == TokenKind::Bracketed || kind == TokenKind::Number ||
           kind == TokenKind::String || kind == TokenKind::Date || kind == TokenKind::RightParen;
}

// Words behind which an operand stands.
constexpr bool AsksOperand(Keyword word) noexcept {
    switch (word) {
    case Keyword::And:
    case Keyword::Between:
    case Keyword::By:
    case Keyword::Default:
    case Keyword::Distinct:
    case Keyword::DistinctRow:
    case Keyword::Eqv:
    case Keyword::Having:
    case Keyword::Imp:
    case Keyword::Like:
    case Keyword::Mod:
    case Keyword::Not:
    case Keyword::On:
    case Keyword::Or:
    case Keyword::Pivot:
    case Keyword::Select:
    case Keyword::Transform:
    case Keyword::Where:
    case Keyword::Xor:
        return true;
    default:
        return false;
    }
}

} // namespace

Keyword FindKeyword(std::string_view word) noexcept {
    if (word.size() > kLongestKeyword)
        return Keyword::None;
    for (std::size_t slot = Slot(word); kKeywordSlots[slot] != Keyword::None; slot = (slot + 1) % kSlots) {
        if (SameWord(word, kKeywordTexts[static_cast<std::size_t>(kKeywordSlots[slot])]))
            return kKeywordSlots[slot];
    }
    return Keyword::None;
}

Lexer::Lexer(std::string_view text, Notes notes) : text_(text), notes_(notes == Notes::Yes) {
    if (text_.substr(0, 3) == "\xEF\xBB\xBF")
        at_ = 3; // a byte order mark
}

bool Lexer::SkipNote() {
    if (!notes_ || !atLineStart_ || At(at_) != '-' || At(at_ + 1) != '-')
        return false;
    const std::size_t end = text_.find('\n', at_);
    at_ = end == std::string_view::npos ? text_.size() : end;
    return true;
}

void Lexer::SkipBlanks() {
    for (; at_ < text_.size(); ++at_) {
        const char c = text_[at_];
        if (c == '\n' || c == '\r') {
            atLineStart_ = true;
        } else if (c == '\xC2' && At(at_ + 1) == '\xA0') {
            ++at_; // no-break space
        } else if (c != ' ' && c != '\t' && c != '\f' && c != '\v') {
            if (!SkipNote())
                return;
            if (at_ == text_.size())
                return;
        }
    }
}

Token Lexer::Next() {
    SkipBlanks();
    Token token;
    token.begin = static_cast<std::uint32_t>(at_);
    if (at_ < text_.size())
        token.kind = Scan();
    token.end = static_cast<std::uint32_t>(at_);
    if (token.kind == TokenKind::Word) {
        token.keyword = FindKeyword(text_.substr(token.begin, token.end - token.begin));
        afterOperand_ = !AsksOperand(token.keyword);
    } else {
        afterOperand_ = IsOperand(token.kind);
    }
    atLineStart_ = false;
    previousEnd_ = at_;
    return token;
}

TokenKind Lexer::Scan() {
    const char c = text_[at_];
    if (StartsName(c)) {
        while (at_ < text_.size() && ContinuesName(text_[at_])) {
            if (text_[at_] == '\xC2' && At(at_ + 1) == '\xA0')
                break; // the no-break space again
            ++at_;
        }
        if (At(at_) == '$')
            ++at_; // Left$
        return TokenKind::Word;
    }
    if (IsDigit(c) || (c == '.' && IsDigit(At(at_ + 1)) && !(afterOperand_ && at_ == previousEnd_)))
        return ScanNumber();
    if (c == '&' && !afterOperand_) {
        const TokenKind radix = ScanRadix();
        if (radix != TokenKind::Ampersand)
            return radix;
    }
    const auto sign = [this](TokenKind kind, std::size_t length = 1) {
        at_ += length;
        return kind;
    };
    const char next = At(at_ + 1);
    switch (c) {
    case '\'':
    case '"':
        return ScanDelimited(c);
    case '[':
        return ScanDelimited(']');
    case '`':
        return ScanDelimited('`');
    case '#': {
        const std::size_t end = text_.find_first_of("#\n", at_ + 1);
        if (end == std::string_view::npos || text_[end] == '\n')
            return sign(TokenKind::BadDate);
        at_ = end + 1;
        return TokenKind::Date;
    }
    case '.':
        return sign(TokenKind::Dot);
    case '!':
        return sign(TokenKind::Bang);
    case ',':
        return sign(TokenKind::Comma);
    case ';':
        return sign(TokenKind::Semicolon);
    case '(':
        return sign(TokenKind::LeftParen);
    case ')':
        return sign(TokenKind::RightParen);
    case '+':
        return sign(TokenKind::Plus);
    case '-':
        return sign(TokenKind::Minus);
    case '*':
        return sign(TokenKind::Star);
    case '/':
        return sign(TokenKind::Slash);
    case '\\':
        return sign(TokenKind::Backslash);
    case '^':
        return sign(TokenKind::Caret);
    case '&':
        return sign(TokenKind::Ampersand);
    // The two signs of a comparison may come in either order.
    case '=':
        if (next == '<')
            return sign(TokenKind::LessOrEqual, 2);
        if (next == '>')
            return sign(TokenKind::GreaterOrEqual, 2);
        return sign(TokenKind::Equal);
    case '<':
        if (next == '=')
            return sign(TokenKind::LessOrEqual, 2);
        if (next == '>')
            return sign(TokenKind::NotEqual, 2);
        return sign(TokenKind::Less);
    case '>':
        if (next == '=')
            return sign(TokenKind::GreaterOrEqual, 2);
        if (next == '<')
            return sign(TokenKind::NotEqual, 2);
        return sign(TokenKind::Greater);
    default:
        return sign(TokenKind::BadCharacter);
    }
}

TokenKind Lexer::ScanNumber() {
    while (IsDigit(At(at_)))
        ++at_;
    if (At(at_) == '.') {
        ++at_;
        while (IsDigit(At(at_)))
            ++at_;
    }
    if (At(at_) == 'e' || At(at_) == 'E') {
        const bool sign = At(at_ + 1) == '+' || At(at_ + 1) == '-';
        if (IsDigit(At(at_ + 1 + sign))) {
            at_ += 1 + sign;
            while (IsDigit(At(at_)))
                ++at_;
        }
    }
    return TokenKind::Number;
}

// &HFF and &O17; Ampersand (nothing read) where it is only the sign.
TokenKind Lexer::ScanRadix() {
    const char radix = Lower(At(at_ + 1));
    if (radix != 'h' && radix != 'o')
        return TokenKind::Ampersand;
    std::size_t end = at_ + 2;
    while (radix == 'h' ? IsHexDigit(At(end)) : IsOctalDigit(At(end)))
        ++end;
    if (end == at_ + 2)
        return TokenKind::Ampersand;
    at_ = end;
    if (!ContinuesName(At(at_)))
        return TokenKind::Number;
    while (ContinuesName(At(at_)))
        ++at_;
    return TokenKind::BadNumber;
}

// Text up to the delimiter; that of a string may stand doubled for itself.
TokenKind Lexer::ScanDelimited(char delimiter) {
    const bool string = delimiter == '\'' || delimiter == '"';
    const std::size_t begin = at_ + 1;
    at_ = begin;
    for (;;) {
        const std::size_t end = text_.find(delimiter, at_);
        if (end == std::string_view::npos) {
            at_ = text_.size();
            return string ? TokenKind::BadString : TokenKind::BadBracket;
        }
        at_ = end + 1;
        if (!string)
            return end == begin ? TokenKind::BadBracket : TokenKind::Bracketed;
        if (At(at_) != delimiter)
            return TokenKind::String;
        ++at_;
    }
}

std::size_t FindBrokenText(std::string_view text) noexcept {
    const auto byte = [&](std::size_t at) -> unsigned {
        return at < text.size() ? static_cast<unsigned char>(text[at]) : 0U;
    };
    for (std::size_t at = 0; at < text.size();) {
        const unsigned lead = byte(at);
        if (lead == 0)
            return at;
        if (lead < 0x80) {
            ++at;
            continue;
        }
        const unsigned length = lead >= 0xF0 ? 4 : lead >= 0xE0 ? 3 : 2;
        if (lead < 0xC2 || lead > 0xF4)
            return at;
        for (unsigned i = 1; i < length; ++i) {
            if ((byte(at + i) & 0xC0U) != 0x80U)
                return at;
        }
        // Overlong forms, surrogates and what lies beyond U+10FFFF show in the second byte.
        const unsigned second = byte(at + 1);
        if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
            (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F))
            return at;
        at += length;
    }
    return std::string_view::npos;
}

std::string_view NameOf(std::string_view text, const Token& token) noexcept {
    const std::string_view whole = text.substr(token.begin, token.end - token.begin);
    return token.kind == TokenKind::Bracketed ? whole.substr(1, whole.size() - 2) : whole;
}

std::string StringOf(std::string_view text, const Token& token) {
    const char delimiter = text[token.begin];
    const std::string_view inner = text.substr(token.begin + 1, token.end - token.begin - 2);
    std::string value;
    value.reserve(inner.size());
    for (std::size_t at = 0; at < inner.size(); ++at) {
        value += inner[at];
        if (inner[at] == delimiter)
            ++at;
    }
    return value;
}

} // namespace quillary::database::jet_sql
