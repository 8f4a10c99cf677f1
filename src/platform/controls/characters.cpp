#include "platform/controls/characters.h"

namespace quillary::controls {

std::u32string Characters(std::string_view text) {
    std::u32string result;
    for (std::size_t at = 0; at < text.size();) {
        const auto lead = static_cast<unsigned char>(text[at]);
        const std::size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        char32_t character = length == 1 ? lead : lead & (0xFFu >> (length + 1));
        for (std::size_t next = 1; next < length && at + next < text.size(); ++next)
            character = (character << 6) | (static_cast<unsigned char>(text[at + next]) & 0x3Fu);
        result += character;
        at += length;
    }
    return result;
}

std::string Utf8(char32_t character) {
    std::string text;
    if (character < 0x80) {
        text += static_cast<char>(character);
    } else if (character < 0x800) {
        text += static_cast<char>(0xC0 | (character >> 6));
        text += static_cast<char>(0x80 | (character & 0x3F));
    } else if (character < 0x10000) {
        text += static_cast<char>(0xE0 | (character >> 12));
        text += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (character & 0x3F));
    } else {
        text += static_cast<char>(0xF0 | (character >> 18));
        text += static_cast<char>(0x80 | ((character >> 12) & 0x3F));
        text += static_cast<char>(0x80 | ((character >> 6) & 0x3F));
        text += static_cast<char>(0x80 | (character & 0x3F));
    }
    return text;
}

} // namespace quillary::controls
