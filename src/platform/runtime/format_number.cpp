#include "platform/runtime/conversions.h"
#include "platform/runtime/format_parts.h"
#include "platform/runtime/locale.h"

#include <algorithm>
#include <charconv>
#include <vector>

namespace quillary::runtime {
namespace {

void AppendUtf8(std::string& text, char32_t c) {
    if (c < 0x80) {
        text += static_cast<char>(c);
    } else if (c < 0x800) {
        text += static_cast<char>(0xC0 | (c >> 6));
        text += static_cast<char>(0x80 | (c & 0x3F));
    } else {
        text += static_cast<char>(0xE0 | (c >> 12));
        text += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (c & 0x3F));
    }
}

// A number as the digits that it shows: 0.DIGITS times ten to the point. Rounding happens on these, so
// that 1.005 with two decimals is 1.01, halves away from zero.
struct Digits {
    bool negative = false;
    std::string digits; // no zeros at the ends; empty for zero
    int point = 0;

    explicit Digits(const Variant& value) {
        std::string text;
        switch (value.Type()) {
        case VarType::Single:
            text = NumberText(value.Get<float>());
            break;
        case VarType::Currency:
            text = NumberText(value.Get<Currency>());
            break;
        default:
            text = NumberText(CDbl(value));
            break;
        }
        std::size_t mantissa = text.size();
        if (const std::size_t e = text.find('E'); e != text.npos) {
            const char* from = text.data() + e + 1 + (text[e + 1] == '+' ? 1 : 0);
            std::from_chars(from, text.data() + text.size(), point);
            mantissa = e;
        }
        bool decimal = false;
        for (std::size_t i = 0; i < mantissa; ++i) {
            if (text[i] == '-') {
                negative = true;
            } else if (text[i] == '.') {
                decimal = true;
            } else if (text[i] >= '0' && text[i] <= '9') {
                digits += text[i];
                point += decimal ? 0 : 1;
            }
        }
        Clean();
    }

    bool IsZero() const { return digits.empty(); }

    // Leaves at most this many digits behind the decimal point.
    void Round(int decimals) {
        const int keep = point + decimals;
        if (keep >= static_cast<int>(digits.size())) {
            return;
        }
        const bool up = keep >= 0 && digits[static_cast<std::size_t>(keep)] >= '5';
        digits.resize(static_cast<std::size_t>(std::max(keep, 0)));
        if (up) {
            std::size_t i = digits.size();
            while (i > 0 && digits[i - 1] == '9') {
                digits[--i] = '0';
            }
            if (i > 0) {
                ++digits[i - 1];
            } else {
                digits.insert(digits.begin(), '1');
                ++point;
            }
        }
        Clean();
    }

    std::string Whole() const {
        std::string whole = digits.substr(0, static_cast<std::size_t>(std::max(point, 0)));
        if (point > static_cast<int>(digits.size())) {
            whole.append(static_cast<std::size_t>(point) - digits.size(), '0');
        }
        return whole;
    }

    std::string Fraction() const {
        if (point < 0) {
            return std::string(static_cast<std::size_t>(-point), '0') + digits;
        }
        return static_cast<std::size_t>(point) < digits.size()
                   ? digits.substr(static_cast<std::size_t>(point))
                   : std::string();
    }

private:
    void Clean() {
        const std::size_t first = std::min(digits.find_first_not_of('0'), digits.size());
        digits.erase(0, first);
        point -= static_cast<int>(first);
        digits.erase(digits.find_last_not_of('0') + 1);
        if (digits.empty()) {
            point = 0;
            negative = false;
        }
    }
};

struct Piece {
    enum Kind { Whole, Fraction, Point, Exponent, Literal } kind;
    char sign = 0; // '0' or '#'; of an exponent '+' or '-'
    std::string text;
};

// One section of a picture, taken apart.
struct Section {
    std::vector<Piece> pieces;
    int wholes = 0;
    int fractions = 0;
    int percents = 0;
    int thousands = 0; // commas that divide
    int exponentDigits = 0;
    bool group = false;
    bool exponent = false;

    explicit Section(std::string_view picture) {
        bool decimal = false;
        int commas = 0; // seen since the last digit
        for (std::size_t i = 0; i < picture.size(); ++i) {
            const char c = picture[i];
            switch (c) {
            case '0':
            case '#':
                if (commas > 0) {
                    group = group || wholes > 0;
                    commas = 0;
                }
                if (exponent) {
                    ++exponentDigits;
                } else if (decimal) {
                    ++fractions;
                    pieces.push_back({Piece::Fraction, c, {}});
                } else {
                    ++wholes;
                    pieces.push_back({Piece::Whole, c, {}});
                }
                break;
            case '.':
                if (decimal) {
                    Literal(c);
                    break;
                }
                decimal = true;
                thousands += commas;
                commas = 0;
                pieces.push_back({Piece::Point, 0, {}});
                break;
            case ',':
                if (decimal || wholes == 0) {
                    break;
                }
                ++commas;
                break;
            case '%':
                ++percents;
                Literal(c);
                break;
            case 'e':
            case 'E':
                if (!exponent && i + 2 < picture.size() && (picture[i + 1] == '+' || picture[i + 1] == '-') &&
                    (picture[i + 2] == '0' || picture[i + 2] == '#')) {
                    exponent = true;
                    pieces.push_back({Piece::Exponent, picture[i + 1], std::string(1, c)});
                    ++i;
                } else {
                    Literal(c);
                }
                break;
            case '\\':
                if (++i < picture.size()) {
                    Literal(picture[i]);
                }
                break;
            case '"': {
                const std::size_t end = std::min(picture.find('"', i + 1), picture.size());
                pieces.push_back({Piece::Literal, 0, std::string(picture.substr(i + 1, end - i - 1))});
                i = end;
                break;
            }
            default:
                Literal(c);
                break;
            }
        }
        thousands += commas;
    }

private:
    void Literal(char c) { pieces.push_back({Piece::Literal, 0, std::string(1, c)}); }
};

// Writes one number through one section.
class Writer {
public:
    Writer(const Section& section, Digits number) : section_(section), number_(std::move(number)) {
        number_.point += number_.IsZero() ? 0 : 2 * section.percents - 3 * section.thousands;
        if (section_.exponent) {
            const int wanted = std::max(section_.wholes, section_.fractions > 0 ? 0 : 1);
            exponent_ = number_.IsZero() ? 0 : number_.point - wanted;
            number_.point -= exponent_;
            number_.Round(section_.fractions);
            if (number_.point > wanted) { // 9.99 became 10
                ++exponent_;
                --number_.point;
            }
        } else {
            number_.Round(section_.fractions);
        }
        whole_ = number_.Whole();
        fraction_ = number_.Fraction();
    }

    bool Negative() const { return number_.negative; }
    bool IsZero() const { return number_.IsZero(); }

    std::string Text() {
        for (const Piece& piece : section_.pieces) {
            switch (piece.kind) {
            case Piece::Whole:
                WholePlace(piece.sign);
                break;
            case Piece::Point:
                if (section_.wholes == 0) {
                    text_ += whole_;
                }
                AppendUtf8(text_, CurrentLocale().decimal);
                break;
            case Piece::Fraction:
                FractionPlace(piece.sign);
                break;
            case Piece::Exponent:
                ExponentPlace(piece);
                break;
            case Piece::Literal:
                text_ += piece.text;
                break;
            }
        }
        return text_;
    }

private:
    void PutDigit(char digit, std::size_t behind) {
        text_ += digit;
        if (section_.group && behind > 0 && behind % 3 == 0) {
            AppendUtf8(text_, CurrentLocale().group);
        }
    }

    void WholePlace(char sign) {
        const auto places = static_cast<std::size_t>(section_.wholes);
        const std::size_t behind = places - ++wholesSeen_; // places still to come
        if (wholesSeen_ == 1) {
            for (std::size_t left = whole_.size(); left > places; --left) {
                PutDigit(whole_[whole_.size() - left], left - 1);
            }
        }
        zeros_ = zeros_ || sign == '0';
        if (behind < whole_.size()) {
            PutDigit(whole_[whole_.size() - 1 - behind], behind);
        } else if (zeros_) {
            PutDigit('0', behind);
        }
    }

    void FractionPlace(char sign) {
        const std::size_t at = fractionsSeen_++;
        if (at < fraction_.size()) {
            text_ += fraction_[at];
        } else if (sign == '0' || ZeroFollows(at)) {
            text_ += '0';
        }
    }

    bool ZeroFollows(std::size_t place) const {
        std::size_t at = 0;
        for (const Piece& piece : section_.pieces) {
            if (piece.kind == Piece::Fraction && at++ > place && piece.sign == '0') {
                return true;
            }
        }
        return false;
    }

    void ExponentPlace(const Piece& piece) {
        text_ += piece.text;
        if (exponent_ < 0) {
            text_ += '-';
        } else if (piece.sign == '+') {
            text_ += '+';
        }
        const std::string digits = std::to_string(std::abs(exponent_));
        const auto wanted = static_cast<std::size_t>(section_.exponentDigits);
        text_.append(wanted > digits.size() ? wanted - digits.size() : 0, '0');
        text_ += digits;
    }

    const Section& section_;
    Digits number_;
    int exponent_ = 0;
    std::string whole_;
    std::string fraction_;
    std::size_t wholesSeen_ = 0;
    std::size_t fractionsSeen_ = 0;
    bool zeros_ = false;
    std::string text_;
};

} // namespace

std::vector<std::string_view> Sections(std::string_view picture) {
    std::vector<std::string_view> sections;
    std::size_t from = 0;
    for (std::size_t i = 0; i < picture.size(); ++i) {
        if (picture[i] == '\\') {
            ++i;
        } else if (picture[i] == '"') {
            i = std::min(picture.find('"', i + 1), picture.size());
        } else if (picture[i] == ';') {
            sections.push_back(picture.substr(from, i - from));
            from = i + 1;
        }
    }
    sections.push_back(picture.substr(std::min(from, picture.size())));
    return sections;
}

std::string WithLocalDecimal(std::string text) {
    const char32_t decimal = CurrentLocale().decimal;
    if (decimal == U'.') {
        return text;
    }
    const std::size_t point = text.find('.');
    if (point == text.npos) {
        return text;
    }
    std::string result = text.substr(0, point);
    AppendUtf8(result, decimal);
    return result.append(text, point + 1);
}

std::string FormatNumberPicture(const Variant& number, std::string_view picture) {
    const std::vector<std::string_view> sections = Sections(picture);
    if (number.IsNull()) {
        return sections.size() > 3 ? Writer(Section(sections[3]), Digits(Variant(0))).Text() : std::string();
    }
    const Digits digits(number);
    std::size_t index = 0;
    if (digits.negative && sections.size() > 1) {
        index = 1;
    } else if (digits.IsZero() && sections.size() > 2) {
        index = 2;
    }
    // A section left empty takes the first one's picture, and then the sign.
    const bool own = index > 0 && !sections[index].empty();
    const Section section(sections[own ? index : 0]);
    Writer writer(section, digits);
    const bool minus = writer.Negative() && !own;
    return (minus ? "-" : "") + writer.Text();
}

} // namespace quillary::runtime
