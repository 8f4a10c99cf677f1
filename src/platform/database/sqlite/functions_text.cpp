#include "platform/database/sqlite/function_call.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <unicode/utf8.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <string>

// The functions of text. Positions and lengths count characters, from 1.
namespace quillary::database::sqlite {
namespace {

using runtime::RunTimeError;

[[noreturn]] void RaiseInvalidCall() {
    throw RunTimeError(runtime::kErrInvalidProcedureCall);
}

constexpr long long kLongestText = 64 << 20;

std::size_t Length(long long count) {
    if (count < 0) {
        RaiseInvalidCall();
    }
    return static_cast<std::size_t>(count);
}

std::size_t Position(long long position) {
    if (position < 1) {
        RaiseInvalidCall();
    }
    return static_cast<std::size_t>(position);
}

// A text is made this long at most (error 14 beyond).
std::size_t NewLength(long long count) {
    if (count > kLongestText) {
        throw RunTimeError(14, "Database", "Out of string space");
    }
    return Length(count);
}

void Left(const FunctionCall& call) {
    call.ReturnText(runtime::LeftChars(call.Text(0), Length(call.Whole(1))));
}

void Right(const FunctionCall& call) {
    call.ReturnText(runtime::RightChars(call.Text(0), Length(call.Whole(1))));
}

void Mid(const FunctionCall& call) {
    const std::size_t start = Position(call.Whole(1));
    const std::size_t count = call.Count() > 2 ? Length(call.Whole(2)) : std::string_view::npos;
    call.ReturnText(runtime::MidChars(call.Text(0), start, count));
}

void UCase(const FunctionCall& call) {
    call.ReturnText(runtime::UCase(call.Text(0)));
}

void LCase(const FunctionCall& call) {
    call.ReturnText(runtime::LCase(call.Text(0)));
}

// Text to be searched: without case unless a binary comparison (0) is asked for. The number of characters
// stays, that of bytes may not.
std::string Searchable(std::string_view text, bool binary) {
    return binary ? std::string(text) : runtime::LCase(text);
}

void InStr(const FunctionCall& call) {
    const std::size_t start = Position(call.Whole(0));
    const bool binary = call.Whole(3) == 0;
    const std::string text = Searchable(call.Text(1), binary);
    const std::string sought = Searchable(call.Text(2), binary);
    const std::size_t length = runtime::CharCount(text);
    if (text.empty() || start > length) {
        return call.ReturnWhole(0);
    }
    if (sought.empty()) {
        return call.ReturnWhole(static_cast<long long>(start));
    }
    const auto from = static_cast<std::size_t>(runtime::MidChars(text, start).data() - text.data());
    const std::size_t found = text.find(sought, from);
    call.ReturnWhole(
        found == std::string::npos
            ? 0
            : static_cast<long long>(runtime::CharCount(std::string_view(text).substr(0, found)) + 1));
}

// InStrRev(text, sought [, start [, compare]]): the match ends at start or before it; -1 is the end.
void InStrRev(const FunctionCall& call) {
    const bool binary = call.Whole(3, 1) == 0;
    std::string text = Searchable(call.Text(0), binary);
    const std::string sought = Searchable(call.Text(1), binary);
    const long long start = call.Whole(2, -1);
    if (start == 0 || start < -1) {
        RaiseInvalidCall();
    }
    if (start > 0) {
        if (static_cast<std::size_t>(start) > runtime::CharCount(text)) {
            return call.ReturnWhole(0);
        }
        text.resize(runtime::LeftChars(text, static_cast<std::size_t>(start)).size());
    }
    if (text.empty()) {
        return call.ReturnWhole(0);
    }
    if (sought.empty()) {
        return call.ReturnWhole(static_cast<long long>(runtime::CharCount(text)));
    }
    const std::size_t found = text.rfind(sought);
    call.ReturnWhole(
        found == std::string::npos
            ? 0
            : static_cast<long long>(runtime::CharCount(std::string_view(text).substr(0, found)) + 1));
}

// Replace(text, sought, by [, start [, count [, compare]]]): what stands before start is left out.
void Replace(const FunctionCall& call) {
    const std::size_t start = Position(call.Whole(3, 1));
    long long left = call.Whole(4, -1);
    if (left < -1) {
        RaiseInvalidCall();
    }
    const bool binary = call.Whole(5, 1) == 0;
    std::string_view text = runtime::MidChars(call.Text(0), start);
    const std::string sought = Searchable(call.Text(1), binary);
    const std::string_view by = call.Text(2);
    if (sought.empty()) {
        return call.ReturnText(text);
    }
    const std::size_t soughtLength = runtime::CharCount(sought);
    const std::string searched = Searchable(text, binary);
    std::string result;
    std::size_t from = 0; // in `searched`; `text` is taken along by characters
    while (left != 0) {
        const std::size_t found = searched.find(sought, from);
        if (found == std::string::npos) {
            break;
        }
        const std::size_t between = runtime::CharCount(std::string_view(searched).substr(from, found - from));
        const std::string_view kept = runtime::LeftChars(text, between);
        result += kept;
        result += by;
        text.remove_prefix(kept.size());
        text.remove_prefix(runtime::LeftChars(text, soughtLength).size());
        if (result.size() > static_cast<std::size_t>(kLongestText)) {
            throw RunTimeError(14, "Database", "Out of string space");
        }
        from = found + sought.size();
        --left;
    }
    result += text;
    call.ReturnText(result);
}

void Space(const FunctionCall& call) {
    call.ReturnText(std::string(NewLength(call.Whole(0)), ' '));
}

std::string Character(long long code) {
    char bytes[4];
    std::int32_t size = 0;
    U8_APPEND_UNSAFE(bytes, size, static_cast<UChar32>(code));
    return {bytes, static_cast<std::size_t>(size)};
}

// Codes 128 to 159 of the single-byte character set that Chr and Asc speak; 0 where there is none.
constexpr std::array<char32_t, 32> kUpperControls{
    0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021, 0x02C6, 0x2030, 0x0160,
    0x2039, 0x0152, 0,      0x017D, 0,      0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022,
    0x2013, 0x2014, 0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

std::string CharacterOfSet(long long code) {
    if (code < 0 || code > 255) {
        RaiseInvalidCall();
    }
    if (code >= 128 && code < 160) {
        const char32_t character = kUpperControls[static_cast<std::size_t>(code - 128)];
        return Character(character != 0 ? static_cast<long long>(character) : code);
    }
    return Character(code);
}

char32_t FirstCharacter(std::string_view text) {
    if (text.empty()) {
        RaiseInvalidCall();
    }
    std::int32_t at = 0;
    UChar32 character = 0;
    U8_NEXT(text.data(), at, static_cast<std::int32_t>(std::min<std::size_t>(text.size(), 4)), character);
    return character < 0 ? U'?' : static_cast<char32_t>(character);
}

void Chr(const FunctionCall& call) {
    call.ReturnText(CharacterOfSet(call.Whole(0)));
}

void ChrW(const FunctionCall& call) {
    const long long code = call.Whole(0) < 0 ? call.Whole(0) + 65536 : call.Whole(0);
    if (code < 0 || code > 0xFFFF) {
        RaiseInvalidCall();
    }
    // Half of a pair is no character.
    call.ReturnText(Character(code >= 0xD800 && code < 0xE000 ? 0xFFFD : code));
}

void Asc(const FunctionCall& call) {
    const char32_t character = FirstCharacter(call.Text(0));
    const auto found = std::find(kUpperControls.begin(), kUpperControls.end(), character);
    if (found != kUpperControls.end() && character != 0) {
        return call.ReturnWhole(128 + (found - kUpperControls.begin()));
    }
    call.ReturnWhole(character < 256 ? static_cast<long long>(character) : '?');
}

void AscW(const FunctionCall& call) {
    call.ReturnWhole(static_cast<std::int16_t>(FirstCharacter(call.Text(0))));
}

// String(count, code) or String(count, text): the character, or the first of the text.
void String(const FunctionCall& call) {
    const std::size_t count = NewLength(call.Whole(0));
    const Variant what = call.Value(1);
    std::string character;
    if (what.IsString()) {
        const std::string_view text = what.Get<std::string>();
        if (text.empty()) {
            RaiseInvalidCall();
        }
        character = runtime::LeftChars(text, 1);
    } else {
        character = CharacterOfSet(((runtime::CLng(what) % 256) + 256) % 256);
    }
    std::string result;
    result.reserve(count * character.size());
    for (std::size_t i = 0; i < count; ++i) {
        result += character;
    }
    call.ReturnText(result);
}

void StrReverse(const FunctionCall& call) {
    std::string_view text = call.Text(0);
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const std::string_view last = runtime::RightChars(text, 1);
        result += last;
        text.remove_suffix(last.size());
    }
    call.ReturnText(result);
}

void StrComp(const FunctionCall& call) {
    const std::string_view left = call.Text(0);
    const std::string_view right = call.Text(1);
    const int order = call.Whole(2, 1) == 0 ? left.compare(right) : runtime::CompareText(left, right);
    call.ReturnWhole((order > 0) - (order < 0));
}

// 1 capitals, 2 small letters, 3 a capital at the start of each word.
void StrConv(const FunctionCall& call) {
    const std::string_view text = call.Text(0);
    switch (call.Whole(1)) {
    case 1:
        return call.ReturnText(runtime::UCase(text));
    case 2:
        return call.ReturnText(runtime::LCase(text));
    case 3:
        break;
    default:
        RaiseInvalidCall();
    }
    std::string result;
    bool start = true;
    for (std::string_view rest = text; !rest.empty();) {
        const std::string_view character = runtime::LeftChars(rest, 1);
        result += start ? runtime::UCase(character) : runtime::LCase(character);
        start = character.find_first_of(" \t\r\n\f\v") != std::string_view::npos || character[0] == '\0';
        rest.remove_prefix(character.size());
    }
    call.ReturnText(result);
}

void InBase(const FunctionCall& call, int base) {
    char buffer[40];
    const auto value = static_cast<std::uint32_t>(call.Whole(0));
    std::string text(buffer, std::to_chars(buffer, buffer + sizeof buffer, value, base).ptr);
    call.ReturnText(runtime::UCase(text));
}

void Hex(const FunctionCall& call) {
    InBase(call, 16);
}

void Oct(const FunctionCall& call) {
    InBase(call, 8);
}

// Partition(number, start, stop, interval): the range that the number lies in, as "20:29"; both sides as
// wide as the widest, so that the texts sort as their numbers do.
void Partition(const FunctionCall& call) {
    const long long number = call.Whole(0);
    const long long start = call.Whole(1);
    const long long stop = call.Whole(2);
    const long long interval = call.Whole(3);
    if (start < 0 || stop <= start || interval < 1) {
        RaiseInvalidCall();
    }
    const std::size_t width = std::max(std::to_string(start - 1).size(), std::to_string(stop + 1).size());
    const auto side = [width](const std::string& text) {
        return std::string(width - std::min(width, text.size()), ' ') + text;
    };
    if (number < start) {
        return call.ReturnText(side("") + ":" + side(std::to_string(start - 1)));
    }
    if (number > stop) {
        return call.ReturnText(side(std::to_string(stop + 1)) + ":" + side(""));
    }
    const long long from = start + (number - start) / interval * interval;
    call.ReturnText(side(std::to_string(from)) + ":" +
                    side(std::to_string(std::min(from + interval - 1, stop))));
}

constexpr FunctionEntry kEntries[] = {
    {"qy_left", 2, Left},
    {"qy_right", 2, Right},
    {"qy_mid", 2, Mid},
    {"qy_mid", 3, Mid},
    {"qy_ucase", 1, UCase},
    {"qy_lcase", 1, LCase},
    {"qy_instr", 4, InStr},
    {"qy_instrrev", 2, InStrRev},
    {"qy_instrrev", 3, InStrRev},
    {"qy_instrrev", 4, InStrRev},
    {"qy_replace", 3, Replace},
    {"qy_replace", 4, Replace},
    {"qy_replace", 5, Replace},
    {"qy_replace", 6, Replace},
    {"qy_space", 1, Space},
    {"qy_string", 3, String},
    {"qy_strreverse", 1, StrReverse},
    {"qy_strcomp", 2, StrComp},
    {"qy_strcomp", 3, StrComp},
    {"qy_strconv", 2, StrConv},
    {"qy_strconv", 3, StrConv},
    {"qy_asc", 1, Asc},
    {"qy_ascw", 1, AscW},
    {"qy_chr", 1, Chr},
    {"qy_chrw", 1, ChrW},
    {"qy_hex", 1, Hex},
    {"qy_oct", 1, Oct},
    {"qy_partition", 4, Partition},
};

} // namespace

void RegisterTextFunctions(sqlite3* connection) {
    RegisterEntries(connection, kEntries);
}

} // namespace quillary::database::sqlite
