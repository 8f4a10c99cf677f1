#include "platform/runtime/format.h"

#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/format_parts.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/locale_details.h"
#include "platform/runtime/number_reading.h"

#include <algorithm>
#include <vector>

namespace quillary::runtime {
namespace {

enum class Named {
    None,
    GeneralNumber,
    Currency,
    Fixed,
    Standard,
    Percent,
    Scientific,
    YesNo,
    TrueFalse,
    OnOff,
    GeneralDate,
    LongDate,
    MediumDate,
    ShortDate,
    LongTime,
    MediumTime,
    ShortTime,
};

struct NamedEntry {
    std::string_view name;
    Named format;
};

constexpr NamedEntry kNamed[] = {
    {"Short Date", Named::ShortDate},     {"General Number", Named::GeneralNumber},
    {"Currency", Named::Currency},        {"Fixed", Named::Fixed},
    {"Standard", Named::Standard},        {"Percent", Named::Percent},
    {"Scientific", Named::Scientific},    {"Yes/No", Named::YesNo},
    {"True/False", Named::TrueFalse},     {"On/Off", Named::OnOff},
    {"General Date", Named::GeneralDate}, {"Long Date", Named::LongDate},
    {"Medium Date", Named::MediumDate},   {"Long Time", Named::LongTime},
    {"Medium Time", Named::MediumTime},   {"Short Time", Named::ShortTime},
};

Named NamedOf(std::string_view format) {
    for (const NamedEntry& entry : kNamed) {
        if (EqualName(entry.name, format)) {
            return entry.format;
        }
    }
    return Named::None;
}

enum class PictureKind { Number, Date, Text };

// The first sign that belongs to one kind alone decides.
PictureKind KindOf(std::string_view picture) {
    for (std::size_t i = 0; i < picture.size(); ++i) {
        const char c = picture[i];
        if (c == '\\') {
            ++i;
        } else if (c == '"') {
            i = std::min(picture.find('"', i + 1), picture.size());
        } else if (std::string_view("0#%").find(c) != std::string_view::npos) {
            return PictureKind::Number;
        } else if (std::string_view("@&<>!").find(c) != std::string_view::npos) {
            return PictureKind::Text;
        } else if (std::string_view("cdwmqyhns").find(static_cast<char>(c | 0x20)) !=
                       std::string_view::npos ||
                   EqualName(picture.substr(i, 5), "ttttt") || EqualName(picture.substr(i, 5), "AM/PM") ||
                   EqualName(picture.substr(i, 4), "AMPM") || EqualName(picture.substr(i, 3), "A/P")) {
            return PictureKind::Date;
        }
    }
    return PictureKind::Number;
}

// The number that a value is under a number format: a text by reading it, as a number first, then as a
// date. Nothing when it is no number.
std::optional<Variant> NumberOf(const Variant& value) {
    const auto* text = value.GetIf<std::string>();
    if (text == nullptr) {
        return value;
    }
    if (const auto number = ParseNumber(*text)) {
        return Variant(*number);
    }
    if (const auto date = ParseDate(*text)) {
        return Variant(date->days);
    }
    return std::nullopt;
}

std::optional<Date> DateOf(const Variant& value) {
    if (const auto* text = value.GetIf<std::string>()) {
        if (const auto date = ParseDate(*text)) {
            return date;
        }
        const auto number = ParseNumber(*text);
        return number ? DateOfDays(*number) : std::nullopt;
    }
    return CDate(value);
}

std::string FormatNamedNumber(const Variant& value, Named format) {
    const auto number = NumberOf(value);
    if (!number) {
        return CStr(value);
    }
    switch (format) {
    case Named::GeneralNumber:
        return number->Type() == VarType::Date || number->Type() == VarType::Boolean ? CStr(CDbl(*number))
                                                                                     : CStr(*number);
    case Named::Currency:
        return FormatNumberPicture(*number, CurrentDetails().currencyPicture);
    case Named::Fixed:
        return FormatNumberPicture(*number, "0.00");
    case Named::Standard:
        return FormatNumberPicture(*number, "#,##0.00");
    case Named::Percent:
        return FormatNumberPicture(*number, "0.00%");
    default:
        return FormatNumberPicture(*number, "0.00E+00");
    }
}

std::string FormatTruth(const Variant& value, const char* yes, const char* no) {
    if (const auto* text = value.GetIf<std::string>()) {
        if (EqualName(*text, "True") || EqualName(*text, "False")) {
            return EqualName(*text, "True") ? yes : no;
        }
    }
    const auto number = NumberOf(value);
    if (!number) {
        return CStr(value);
    }
    return CBool(*number) ? yes : no;
}

std::string FormatNamedDate(const Variant& value, Named format) {
    const auto date = DateOf(value);
    if (!date) {
        return CStr(value);
    }
    switch (format) {
    case Named::GeneralDate:
        return GeneralDate(*date);
    case Named::LongDate:
        return FormatPattern(*date, CurrentLocale().longDate);
    case Named::MediumDate:
        return FormatDatePicture(*date, "dd-mmm-yy");
    case Named::ShortDate:
        return FormatPattern(*date, CurrentLocale().shortDate);
    case Named::LongTime:
        return FormatPattern(*date, CurrentDetails().longTime);
    case Named::MediumTime:
        return FormatDatePicture(*date, "hh:nn AMPM");
    default:
        return FormatDatePicture(*date, "hh:nn");
    }
}

std::string FormatNamed(const Variant& value, Named format) {
    switch (format) {
    case Named::YesNo:
        return FormatTruth(value, "Yes", "No");
    case Named::TrueFalse:
        return FormatTruth(value, "True", "False");
    case Named::OnOff:
        return FormatTruth(value, "On", "Off");
    case Named::None:
    case Named::GeneralNumber:
    case Named::Currency:
    case Named::Fixed:
    case Named::Standard:
    case Named::Percent:
    case Named::Scientific:
        return FormatNamedNumber(value, format);
    default:
        return FormatNamedDate(value, format);
    }
}

struct TextPiece {
    char sign = 0; // '@' or '&'; 0 for a literal
    std::string literal;
};

std::vector<std::string> Characters(std::string_view text) {
    std::vector<std::string> characters;
    while (!text.empty()) {
        const std::string_view first = LeftChars(text, 1);
        characters.emplace_back(first);
        text.remove_prefix(first.size());
    }
    return characters;
}

// Places are filled from the right unless "!" is in the picture; characters that find none go before the
// first place, or behind the last.
std::string FormatText(const std::string& text, std::string_view picture) {
    std::vector<TextPiece> pieces;
    bool fromLeft = false;
    char fold = 0;
    for (std::size_t i = 0; i < picture.size(); ++i) {
        const char c = picture[i];
        if (c == '@' || c == '&') {
            pieces.push_back({c, {}});
        } else if (c == '!') {
            fromLeft = true;
        } else if (c == '<' || c == '>') {
            fold = c;
        } else if (c == '"') {
            const std::size_t end = std::min(picture.find('"', i + 1), picture.size());
            pieces.push_back({0, std::string(picture.substr(i + 1, end - i - 1))});
            i = end;
        } else if (c != '\\') {
            pieces.push_back({0, std::string(1, c)});
        } else if (++i < picture.size()) {
            pieces.push_back({0, std::string(1, picture[i])});
        }
    }
    const std::string folded = fold == 0 ? text : (fold == '<' ? LCase(text) : UCase(text));
    const std::vector<std::string> characters = Characters(folded);
    const auto places = static_cast<std::size_t>(
        std::count_if(pieces.begin(), pieces.end(), [](const TextPiece& p) { return p.sign != 0; }));
    const std::size_t empty = places > characters.size() ? places - characters.size() : 0;
    const std::size_t extra = characters.size() > places ? characters.size() - places : 0;
    std::string result;
    std::size_t next = 0;
    std::size_t place = 0;
    const auto putExtra = [&] {
        for (std::size_t i = 0; i < extra; ++i) {
            result += characters[next++];
        }
    };
    for (const TextPiece& piece : pieces) {
        if (piece.sign == 0) {
            result += piece.literal;
            continue;
        }
        if (place == 0 && !fromLeft) {
            putExtra();
        }
        const bool filled = fromLeft ? place < characters.size() : place >= empty;
        if (filled) {
            result += characters[next++];
        } else if (piece.sign == '@') {
            result += ' ';
        }
        if (++place == places && fromLeft) {
            putExtra();
        }
    }
    return places == 0 ? result + folded : result;
}

} // namespace

std::string Format(const Variant& value, std::string_view format, Weeks weeks) {
    if (format.empty()) {
        return TextOf(value);
    }
    if (value.IsNull() || value.IsEmpty()) {
        return NamedOf(format) == Named::None && KindOf(format) == PictureKind::Number
                   ? FormatNumberPicture(Variant::Null(), format)
                   : std::string();
    }
    const Named named = NamedOf(format);
    if (named != Named::None) {
        return FormatNamed(value, named);
    }
    switch (KindOf(format)) {
    case PictureKind::Text: {
        const std::string text = CStr(value);
        // A second section stands for the empty text.
        const std::vector<std::string_view> sections = Sections(format);
        return FormatText(text, sections[text.empty() && sections.size() > 1 ? 1 : 0]);
    }
    case PictureKind::Date: {
        const auto date = DateOf(value);
        return date ? FormatDatePicture(*date, format, weeks) : CStr(value);
    }
    case PictureKind::Number:
        break;
    }
    const auto number = NumberOf(value);
    return number ? FormatNumberPicture(*number, format) : CStr(value);
}

std::string ShortDate(const Variant& value) {
    return FormatPattern(CDate(value), CurrentLocale().shortDate);
}

} // namespace quillary::runtime
