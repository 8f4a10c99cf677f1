#include "platform/runtime/locale.h"

#include <unicode/uchar.h>
#include <unicode/utf8.h>

#include <algorithm>

namespace quillary::runtime {
namespace {

bool IsPlain(std::string_view text) {
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

constexpr char PlainUpper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c;
}

constexpr char PlainLower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}

// Character by character, so that the number of characters never changes. Broken bytes stay.
template <class Map>
std::string MapCharacters(std::string_view text, Map map) {
    std::string result;
    result.reserve(text.size());
    const auto length = static_cast<std::int32_t>(text.size());
    for (std::int32_t i = 0; i < length;) {
        const std::int32_t start = i;
        UChar32 c = 0;
        U8_NEXT(text.data(), i, length, c);
        if (c < 0) {
            result.append(text.substr(start, i - start));
            continue;
        }
        char bytes[4];
        std::int32_t count = 0;
        U8_APPEND_UNSAFE(bytes, count, map(c));
        result.append(bytes, count);
    }
    return result;
}

bool StartsCharacter(char c) {
    return (static_cast<unsigned char>(c) & 0xC0) != 0x80;
}

// Where the character with this index (from 0) begins; the text's size when there is none.
std::size_t OffsetOf(std::string_view text, std::size_t index) {
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (StartsCharacter(text[i]) && index-- == 0) {
            return i;
        }
    }
    return text.size();
}

} // namespace

std::string UCase(std::string_view text) {
    if (!IsPlain(text)) {
        return MapCharacters(text, u_toupper);
    }
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), PlainUpper);
    return result;
}

std::string LCase(std::string_view text) {
    if (!IsPlain(text)) {
        return MapCharacters(text, u_tolower);
    }
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), PlainLower);
    return result;
}

std::size_t CharCount(std::string_view text) {
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), StartsCharacter));
}

std::string_view LeftChars(std::string_view text, std::size_t count) {
    return count >= text.size() ? text : text.substr(0, OffsetOf(text, count));
}

std::string_view MidChars(std::string_view text, std::size_t start, std::size_t count) {
    text.remove_prefix(OffsetOf(text, start < 1 ? 0 : start - 1));
    return LeftChars(text, count);
}

std::string_view RightChars(std::string_view text, std::size_t count) {
    if (count >= text.size()) {
        return text;
    }
    std::size_t from = text.size();
    while (count > 0 && from > 0) {
        --from;
        if (StartsCharacter(text[from])) {
            --count;
        }
    }
    return text.substr(from);
}

std::string_view LTrim(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(' '), text.size()));
    return text;
}

std::string_view RTrim(std::string_view text) {
    return text.substr(0, text.find_last_not_of(' ') + 1);
}

std::string_view Trim(std::string_view text) {
    return LTrim(RTrim(text));
}

bool EqualName(std::string_view left, std::string_view right) noexcept {
    return left.size() == right.size() &&
           std::equal(left.begin(), left.end(), right.begin(),
                      [](char a, char b) { return PlainLower(a) == PlainLower(b); });
}

} // namespace quillary::runtime
