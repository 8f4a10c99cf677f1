#pragma once

#include <cstdint>
#include <optional>
#include <string>

// The words of the options --edition and --country; nullopt for one that is not known.
namespace quillary::tools {

std::optional<int> NumberOf(const std::string& text);
std::optional<std::int32_t> EditionOf(const std::string& word);
std::optional<std::int32_t> CountryOf(const std::string& word);

} // namespace quillary::tools
