#include "jet_import/jet_properties.h"

#include "jet_import/jet_pages.h"
#include "platform/runtime/run_time_error.h"

#include <vector>

namespace quillary::jet_import {
namespace {

constexpr std::uint32_t kNames = 0x80; // a block of names; the others are of values, which count into it
constexpr std::uint32_t kBooleanValue = 1;
constexpr std::uint32_t kTextValue = 10;
constexpr std::uint32_t kMemoValue = 12;

std::vector<std::string> ReadNames(Bytes block, const JetText& text) {
    std::vector<std::string> names;
    for (std::size_t at = 0; at + 2 <= block.size();) {
        const std::size_t length = Number(block, at, 2);
        names.push_back(text.Read(Part(block, at + 2, length)));
        at += 2 + length;
    }
    return names;
}

// The owner's name, then the values: length, a mark, type, name, size, bytes.
void ReadValues(Bytes block, const std::vector<std::string>& names, const JetText& text,
                std::map<std::string, Properties, std::less<>>& result) {
    const std::size_t nameLength = Number(block, 4, 2);
    Properties& owner = result[text.Read(Part(block, 6, nameLength))];
    for (std::size_t at = 6 + nameLength; at + 8 <= block.size();) {
        const std::size_t length = Number(block, at, 2);
        const std::uint32_t type = Number(block, at + 3, 1);
        const std::size_t name = Number(block, at + 4, 2);
        const Bytes value = Part(block, at + 8, Number(block, at + 6, 2));
        if (name < names.size()) {
            if (type == kBooleanValue && !value.empty()) {
                owner[names[name]] = std::string(1, value[0] != 0 ? '1' : '0');
            } else if (type == kTextValue || type == kMemoValue) {
                owner[names[name]] = text.Read(value);
            }
        }
        if (length == 0) {
            break;
        }
        at += length;
    }
}

} // namespace

std::map<std::string, Properties, std::less<>> ReadProperties(std::string_view value, const JetText& text) {
    std::map<std::string, Properties, std::less<>> result;
    std::vector<std::string> names;
    try {
        for (std::size_t at = 4; at + 6 <= value.size();) {
            const std::size_t length = Number(value, at, 4);
            if (length < 6) {
                break;
            }
            const Bytes block = Part(value, at + 6, length - 6);
            const std::uint32_t kind = Number(value, at + 4, 2);
            if (kind == kNames) {
                names = ReadNames(block, text);
            } else {
                ReadValues(block, names, text, result);
            }
            at += length;
        }
    } catch (const runtime::RunTimeError&) {
        return result; // the rest of a damaged value says nothing
    }
    return result;
}

} // namespace quillary::jet_import
