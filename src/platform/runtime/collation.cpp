#include "platform/runtime/locale.h"

#include <unicode/ucol.h>
#include <unicode/ucoleitr.h>
#include <unicode/unistr.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <unordered_map>

// Two texts are compared without their hyphens and apostrophes first; where that leaves them equal, by
// where these stand. Plain ASCII goes by a table, all else by ICU's root collator; the table is the
// collator's own order, so that the two never disagree.
namespace quillary::runtime {
namespace {

constexpr std::uint8_t kSkipped = 0;   // not looked at, or looked at last
constexpr std::uint8_t kForeign = 255; // outside ASCII

// Rank of each byte: blanks, punctuation, signs, digits, letters. Control characters count for nothing.
constexpr std::array<std::uint8_t, 256> MakeRanks() {
    std::array<std::uint8_t, 256> ranks{};
    std::uint8_t rank = 0;
    for (const char c : std::string_view("\t\n\v\f\r _,;:!?.\"()[]{}@*/\\&#%`^+<=>|~$0123456789")) {
        ranks[static_cast<unsigned char>(c)] = ++rank;
    }
    for (int letter = 0; letter < 26; ++letter) {
        ++rank;
        ranks['A' + letter] = rank;
        ranks['a' + letter] = rank;
    }
    for (std::size_t i = 0x80; i < 256; ++i) {
        ranks[i] = kForeign;
    }
    return ranks;
}

constexpr std::array<std::uint8_t, 256> kRanks = MakeRanks();

std::uint8_t RankOf(char c) {
    return kRanks[static_cast<unsigned char>(c)];
}

bool IsMark(char c) {
    return c == '-' || c == '\'';
}

constexpr std::uint64_t kHighBits = 0x8080808080808080U;

std::uint64_t EightBytes(std::string_view text, std::size_t from) {
    std::uint64_t bytes = 0;
    std::memcpy(&bytes, text.data() + from, sizeof bytes);
    return bytes;
}

bool IsForeign(std::string_view text) {
    std::size_t i = 0;
    for (; i + 8 <= text.size(); i += 8) {
        if ((EightBytes(text, i) & kHighBits) != 0) {
            return true;
        }
    }
    for (; i < text.size(); ++i) {
        if (RankOf(text[i]) == kForeign) {
            return true;
        }
    }
    return false;
}

// How much of two texts' beginnings is the same plain ASCII, in steps of eight.
std::size_t SharedBeginning(std::string_view left, std::string_view right) {
    const std::size_t shorter = std::min(left.size(), right.size());
    std::size_t i = 0;
    for (; i + 8 <= shorter; i += 8) {
        const std::uint64_t bytes = EightBytes(left, i);
        if (bytes != EightBytes(right, i) || (bytes & kHighBits) != 0) {
            break;
        }
    }
    return i;
}

int Sign(int value) {
    return (value > 0) - (value < 0);
}

// Null where ICU cannot give one; text then compares by bytes beyond ASCII.
UCollator* Collator() {
    static UCollator* const collator = [] {
        UErrorCode code = U_ZERO_ERROR;
        UCollator* made = ucol_open("root", &code);
        if (U_FAILURE(code)) {
            return static_cast<UCollator*>(nullptr);
        }
        ucol_setStrength(made, UCOL_SECONDARY);
        ucol_setAttribute(made, UCOL_NORMALIZATION_MODE, UCOL_ON, &code);
        return made; // lives as long as the process
    }();
    return collator;
}

// The collator's elements of a text, each as primary weight (32 bits) and secondary weight (16 bits).
class Elements {
public:
    explicit Elements(std::string_view text)
        : text_(
              icu::UnicodeString::fromUTF8(icu::StringPiece(text.data(), static_cast<int32_t>(text.size())))),
          iterator_(ucol_openElements(Collator(), text_.getBuffer(), text_.length(), &code_)) {
        Fetch();
    }
    ~Elements() { ucol_closeElements(iterator_); }
    Elements(const Elements&) = delete;
    Elements& operator=(const Elements&) = delete;

    // Weights without the case level; false at the end.
    bool Next(std::uint64_t& weights) {
        if (next_ == UCOL_NULLORDER) {
            return false;
        }
        const auto first = static_cast<std::uint32_t>(next_);
        weights = (std::uint64_t{first >> 16} << 48) | (std::uint64_t{(first >> 8) & 0xFF} << 8);
        Fetch();
        // A weight of more than 16 bits comes in two halves; the second one carries this mark.
        constexpr std::uint32_t kContinuation = 0xC0;
        if (next_ != UCOL_NULLORDER && (static_cast<std::uint32_t>(next_) & kContinuation) == kContinuation) {
            const auto second = static_cast<std::uint32_t>(next_);
            weights |= (std::uint64_t{second >> 16} << 32) | ((second >> 8) & 0xFF);
            Fetch();
        }
        return true;
    }

private:
    void Fetch() { next_ = U_FAILURE(code_) ? UCOL_NULLORDER : ucol_next(iterator_, &code_); }

    icu::UnicodeString text_;
    UErrorCode code_ = U_ZERO_ERROR;
    UCollationElements* iterator_;
    std::int32_t next_ = UCOL_NULLORDER;
};

constexpr std::uint64_t kPrimary = 0xFFFFFFFF00000000U;

// How many letters of a text count for the order.
std::uint32_t CountRanked(std::string_view text) {
    std::uint32_t count = 0;
    if (Collator() == nullptr || !IsForeign(text)) {
        for (const char c : text) {
            count += RankOf(c) != kSkipped ? 1 : 0;
        }
        return count;
    }
    Elements elements(text);
    for (std::uint64_t weights = 0; elements.Next(weights);) {
        count += (weights & kPrimary) != 0 ? 1 : 0;
    }
    return count;
}

// The hyphens and apostrophes of a text, each with the number of letters before it.
class Marks {
public:
    explicit Marks(std::string_view text) : rest_(text) { Advance(); }
    bool AtEnd() const { return atEnd_; }
    std::uint32_t Position() const { return position_; }
    char Mark() const { return mark_; }
    void Advance() {
        const std::size_t at = rest_.find_first_of("-'");
        atEnd_ = at == std::string_view::npos;
        if (!atEnd_) {
            position_ += CountRanked(rest_.substr(0, at));
            mark_ = rest_[at];
            rest_.remove_prefix(at + 1);
        }
    }

private:
    std::string_view rest_;
    std::uint32_t position_ = 0;
    char mark_ = 0;
    bool atEnd_ = false;
};

int CompareMarks(std::string_view left, std::string_view right) {
    Marks a(left);
    Marks b(right);
    for (; !a.AtEnd() && !b.AtEnd(); a.Advance(), b.Advance()) {
        if (a.Position() != b.Position()) {
            return a.Position() < b.Position() ? -1 : 1;
        }
        if (a.Mark() != b.Mark()) {
            return a.Mark() < b.Mark() ? -1 : 1;
        }
    }
    return static_cast<int>(b.AtEnd()) - static_cast<int>(a.AtEnd());
}

std::string WithoutMarks(std::string_view text) {
    std::string result;
    result.reserve(text.size());
    for (const char c : text) {
        if (!IsMark(c)) {
            result += c;
        }
    }
    return result;
}

int CompareForeign(std::string_view left, std::string_view right) {
    const bool marks = left.find_first_of("-'") != left.npos || right.find_first_of("-'") != right.npos;
    std::string plainLeft;
    std::string plainRight;
    std::string_view a = left;
    std::string_view b = right;
    if (marks) {
        a = plainLeft = WithoutMarks(left);
        b = plainRight = WithoutMarks(right);
    }
    int result = 0;
    if (UCollator* collator = Collator()) {
        UErrorCode code = U_ZERO_ERROR;
        result = ucol_strcollUTF8(collator, a.data(), static_cast<int32_t>(a.size()), b.data(),
                                  static_cast<int32_t>(b.size()), &code);
    } else {
        result = Sign(a.compare(b));
    }
    return result != 0 || !marks ? Sign(result) : CompareMarks(left, right);
}

// Whether a letter before this place stands for itself, whatever follows: no accent can join it.
bool StandsAlone(std::string_view text, std::size_t next) {
    if (next >= text.size()) {
        return true;
    }
    const std::uint8_t rank = RankOf(text[next]);
    return rank != kSkipped && rank != kForeign;
}

// The letter of plain ASCII that an element is equal to.
const std::unordered_map<std::uint64_t, char>& PlainLetters() {
    static const std::unordered_map<std::uint64_t, char> letters = [] {
        std::unordered_map<std::uint64_t, char> made;
        for (int c = 1; c < 0x80; ++c) {
            const char letter = static_cast<char>(c);
            std::uint64_t weights = 0;
            if (RankOf(letter) != kSkipped && Elements(std::string_view(&letter, 1)).Next(weights)) {
                made[weights] = letter >= 'A' && letter <= 'Z' ? static_cast<char>(c + 32) : letter;
            }
        }
        return made;
    }();
    return letters;
}

std::string FoldPlain(std::string_view text) {
    std::string key(text.size(), '\0');
    std::size_t used = 0;
    for (const char c : text) {
        key[used] = c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
        used += RankOf(c) != kSkipped ? 1 : 0;
    }
    key.resize(used);
    return key;
}

// The key of a text with other letters; that of the plain text where they amount to one.
std::string FoldForeign(std::string_view text) {
    if (Collator() == nullptr) {
        return std::string(text);
    }
    std::string plain;
    std::string primaries;
    std::string secondaries;
    bool isPlain = true;
    Elements elements(text);
    for (std::uint64_t weights = 0; elements.Next(weights);) {
        if (weights == 0) {
            continue;
        }
        const auto letter = PlainLetters().find(weights);
        isPlain = isPlain && letter != PlainLetters().end();
        if (isPlain) {
            plain += letter->second;
        }
        for (int shift = 56; shift >= 32 && (weights & kPrimary) != 0; shift -= 8) {
            primaries += static_cast<char>(weights >> shift);
        }
        if ((weights & ~kPrimary) != 0) {
            secondaries += static_cast<char>(weights >> 8);
            secondaries += static_cast<char>(weights);
        }
    }
    if (isPlain) {
        return plain;
    }
    // A plain key holds no \x01, and four bytes of 0 are no primary weight.
    return '\x01' + primaries + std::string(4, '\0') + secondaries;
}

} // namespace

int CompareText(std::string_view left, std::string_view right) {
    left = RTrim(left);
    right = RTrim(right);
    std::size_t i = SharedBeginning(left, right);
    std::size_t j = i;
    bool marks = false;
    for (;;) {
        const bool leftEnds = i == left.size();
        const bool rightEnds = j == right.size();
        if (leftEnds && rightEnds) {
            break;
        }
        const std::uint8_t a = leftEnds ? kSkipped : RankOf(left[i]);
        const std::uint8_t b = rightEnds ? kSkipped : RankOf(right[j]);
        if (a == kForeign || b == kForeign) {
            return CompareForeign(left, right);
        }
        if (a == b && !leftEnds && !rightEnds && left[i] == right[j]) {
            ++i;
            ++j;
        } else if (a == kSkipped && !leftEnds) {
            marks = marks || IsMark(left[i]);
            ++i;
        } else if (b == kSkipped && !rightEnds) {
            marks = marks || IsMark(right[j]);
            ++j;
        } else if (a == b) {
            ++i;
            ++j;
        } else {
            if (StandsAlone(left, i + 1) && StandsAlone(right, j + 1)) {
                return a < b ? -1 : 1;
            }
            return IsForeign(left) || IsForeign(right) ? CompareForeign(left, right) : (a < b ? -1 : 1);
        }
    }
    return marks ? CompareMarks(left, right) : 0;
}

bool EqualText(std::string_view left, std::string_view right) {
    return CompareText(left, right) == 0;
}

std::string FoldText(std::string_view text) {
    text = RTrim(text);
    const bool marks = text.find_first_of("-'") != text.npos;
    std::string key;
    if (IsForeign(text)) {
        key = FoldForeign(marks ? WithoutMarks(text) : std::string(text));
    } else {
        key = FoldPlain(text);
    }
    if (marks) {
        key += '\0';
        for (Marks mark(text); !mark.AtEnd(); mark.Advance()) {
            const std::uint32_t position = mark.Position();
            key.append({mark.Mark(), static_cast<char>(position >> 24), static_cast<char>(position >> 16),
                        static_cast<char>(position >> 8), static_cast<char>(position)});
        }
    }
    return key;
}

} // namespace quillary::runtime
