#include "platform/controls/property_text.h"

#include "platform/runtime/locale.h"

#include <charconv>

namespace quillary::controls {

PropertyName ParsePropertyName(std::string_view text) {
    PropertyName result;
    std::size_t open = text.find('(');
    result.name = runtime::LCase(runtime::Trim(text.substr(0, open)));
    if (open == std::string_view::npos || text.back() != ')')
        return result;
    std::string_view inner = text.substr(open + 1, text.size() - open - 2);
    for (;;) {
        std::size_t comma = inner.find(',');
        result.arguments.emplace_back(runtime::Trim(inner.substr(0, comma)));
        if (comma == std::string_view::npos)
            return result;
        inner.remove_prefix(comma + 1);
    }
}

std::optional<int> WholeNumber(std::string_view text) {
    int number = 0;
    auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc{} || end != text.data() + text.size() || text.empty())
        return std::nullopt;
    return number;
}

} // namespace quillary::controls
