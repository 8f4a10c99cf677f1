#include "platform/system/text_encoding.h"

#include "platform/runtime/locale.h"

#include <unicode/utf16.h>
#include <unicode/utf8.h>

#include <algorithm>
#include <optional>

namespace quillary::system {

namespace {

constexpr std::string_view kMark = "\xEF\xBB\xBF";
constexpr std::string_view kWideMark = "\xFF\xFE";

// Where Windows Latin differs from the first 256 characters: 0x80 to 0x9F. 0: no character, kept as it is.
constexpr char16_t kUpperControls[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                         0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                         0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                         0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

bool IsUtf8(std::string_view bytes) {
    const auto* data = reinterpret_cast<const uint8_t*>(bytes.data());
    for (std::size_t at = 0; at < bytes.size();) {
        UChar32 character;
        U8_NEXT(data, at, bytes.size(), character);
        if (character < 0)
            return false;
    }
    return true;
}

void AppendUtf8(std::string& text, UChar32 character) {
    uint8_t buffer[U8_MAX_LENGTH];
    std::size_t size = 0;
    U8_APPEND_UNSAFE(buffer, size, character);
    text.append(reinterpret_cast<const char*>(buffer), size);
}

std::string FromWide(std::string_view bytes) {
    std::u16string wide;
    for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
        wide += static_cast<char16_t>(static_cast<unsigned char>(bytes[at]) |
                                      static_cast<unsigned char>(bytes[at + 1]) << 8);
    }
    std::string text;
    for (std::size_t at = 0; at < wide.size();) {
        UChar32 character;
        U16_NEXT_OR_FFFD(wide, at, wide.size(), character);
        AppendUtf8(text, character);
    }
    return text;
}

std::optional<std::string> ToWindowsLatin(std::string_view text) {
    const auto* data = reinterpret_cast<const uint8_t*>(text.data());
    std::string bytes;
    bytes.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        UChar32 character;
        U8_NEXT(data, at, text.size(), character);
        if (const auto* place = std::find(std::begin(kUpperControls), std::end(kUpperControls), character);
            character > 0 && place != std::end(kUpperControls))
            bytes += static_cast<char>(0x80 + (place - kUpperControls));
        else if (character >= 0 && character <= 0xFF)
            bytes += static_cast<char>(character);
        else
            return std::nullopt;
    }
    return bytes;
}

} // namespace

DecodedText DecodeText(std::string_view bytes) {
    DecodedText decoded;
    if (bytes.starts_with(kWideMark)) {
        decoded.text = FromWide(bytes.substr(kWideMark.size()));
        return decoded;
    }
    if (bytes.starts_with(kMark)) {
        decoded.marked = true;
        bytes.remove_prefix(kMark.size());
    }
    if (IsUtf8(bytes)) {
        decoded.text = bytes;
        return decoded;
    }
    decoded.windowsLatin = true;
    decoded.text.reserve(bytes.size() + bytes.size() / 8);
    for (const char c : bytes) {
        const auto byte = static_cast<unsigned char>(c);
        const char16_t special = byte >= 0x80 && byte <= 0x9F ? kUpperControls[byte - 0x80] : u'\0';
        AppendUtf8(decoded.text, special ? special : byte);
    }
    return decoded;
}

std::string EncodeText(std::string_view text, const DecodedText& like) {
    if (like.windowsLatin) {
        if (auto bytes = ToWindowsLatin(text))
            return (like.marked ? std::string(kMark) : std::string()) + *bytes;
    }
    return (like.marked ? std::string(kMark) : std::string()).append(text);
}

bool SameName(std::string_view left, std::string_view right) {
    if (runtime::EqualName(left, right))
        return true;
    const auto plain = [](std::string_view text) {
        return std::all_of(text.begin(), text.end(), [](unsigned char c) { return c < 0x80; });
    };
    return !plain(left) && !plain(right) && runtime::LCase(left) == runtime::LCase(right);
}

} // namespace quillary::system
