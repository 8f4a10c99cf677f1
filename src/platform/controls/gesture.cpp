#include "platform/controls/gesture.h"

#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <charconv>

namespace quillary::controls {

namespace {

struct NamedKey {
    std::string_view name;
    Key key;
};
constexpr NamedKey kNamedKeys[] = {
    {"Enter", {kKeyReturn, 0, 13}}, {"Return", {kKeyReturn, 0, 13}}, {"Escape", {kKeyEscape, 0, 27}},
    {"Tab", {kKeyTab, 0, 0}},       {"Up", {kKeyUp, 0, 0}},          {"Down", {kKeyDown, 0, 0}},
    {"Left", {kKeyLeft, 0, 0}},     {"Right", {kKeyRight, 0, 0}},    {"Home", {kKeyHome, 0, 0}},
    {"End", {kKeyEnd, 0, 0}},       {"PageUp", {kKeyPageUp, 0, 0}},  {"PageDown", {kKeyPageDown, 0, 0}},
    {"Insert", {kKeyInsert, 0, 0}}, {"Delete", {kKeyDelete, 0, 0}},  {"Backspace", {kKeyBack, 0, 8}},
    {"Space", {kKeySpace, 0, 32}},
};

struct Modifier {
    std::string_view name;
    int mask;
};
constexpr Modifier kModifiers[] = {{"Ctrl+", kCtrlMask}, {"Alt+", kAltMask}, {"Shift+", kShiftMask}};

// The one character of a UTF-8 text; 0 when there are more, or none.
char32_t OnlyCharacter(std::string_view text) {
    if (runtime::CharCount(text) != 1)
        return 0;
    auto byte = [&](std::size_t at) { return static_cast<char32_t>(static_cast<unsigned char>(text[at])); };
    if (text.size() == 1)
        return byte(0);
    char32_t character = byte(0) & (0xFFu >> (text.size() + 1));
    for (std::size_t at = 1; at < text.size(); ++at)
        character = (character << 6) | (byte(at) & 0x3Fu);
    return character;
}

} // namespace

Key KeyOfCharacter(char32_t character) {
    if (character == '\n' || character == '\r')
        return {kKeyReturn, 0, 13};
    Key key{0, 0, static_cast<int>(character)};
    if (character >= 'a' && character <= 'z')
        key.code = static_cast<int>(character) - 'a' + 'A';
    else if ((character >= 'A' && character <= 'Z') || (character >= '0' && character <= '9') ||
             character == ' ' || character == 8 || character == 27)
        key.code = static_cast<int>(character);
    return key;
}

Key ParseKey(std::string_view name) {
    std::string_view rest = name;
    int shift = 0;
    for (bool found = true; found;) {
        found = false;
        for (const Modifier& modifier : kModifiers)
            if (rest.size() > modifier.name.size() &&
                runtime::EqualName(rest.substr(0, modifier.name.size()), modifier.name)) {
                shift |= modifier.mask;
                rest.remove_prefix(modifier.name.size());
                found = true;
            }
    }
    Key key;
    if (char32_t character = OnlyCharacter(rest)) {
        key = KeyOfCharacter(character);
    } else {
        for (const NamedKey& named : kNamedKeys)
            if (runtime::EqualName(named.name, rest))
                key = named.key;
        int number = 0;
        if (rest.size() >= 2 && (rest[0] == 'F' || rest[0] == 'f') &&
            std::from_chars(rest.data() + 1, rest.data() + rest.size(), number).ptr ==
                rest.data() + rest.size() &&
            number >= 1 && number <= 12)
            key.code = kKeyF1 + number - 1;
        if (key.code == 0)
            throw runtime::RunTimeError(runtime::kErrInvalidProcedureCall, "Controls",
                                        "There is no key named '" + std::string(name) + "'");
    }
    key.shift = shift;
    // With Ctrl or Alt a key types nothing.
    if (shift & (kCtrlMask | kAltMask))
        key.character = 0;
    return key;
}

} // namespace quillary::controls
