#include "editions.h"

#include "config/installation.h"

#include <charconv>
#include <map>

namespace quillary::tools {

namespace {

const std::map<std::string, std::int32_t> kEditions{{"farm", config::kFarmEdition},
                                                    {"business", config::kBusinessEdition},
                                                    {"club", config::kClubEdition},
                                                    {"diary", config::kDiaryEdition}};

} // namespace

std::optional<int> NumberOf(const std::string& text) {
    int number = 0;
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (fault != std::errc() || end != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

std::optional<std::int32_t> EditionOf(const std::string& word) {
    const auto edition = kEditions.find(word);
    return edition == kEditions.end() ? std::nullopt : std::optional(edition->second);
}

std::optional<std::int32_t> CountryOf(const std::string& word) {
    const auto number = NumberOf(word);
    return number && config::IsSupportedCountry(*number) ? number : std::nullopt;
}

} // namespace quillary::tools
