#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillary::controls {

// "Cell(0, Heading Name)" taken apart: the name in small letters, and the arguments without the blanks
// around them.
struct PropertyName {
    std::string name;
    std::vector<std::string> arguments;
};
PropertyName ParsePropertyName(std::string_view text);

// A whole number, nullopt for any other text.
std::optional<int> WholeNumber(std::string_view text);

inline std::string BoolText(bool value) {
    return value ? "True" : "False";
}

} // namespace quillary::controls
