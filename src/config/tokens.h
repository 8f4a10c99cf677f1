#pragma once

#include "platform/runtime/variant.h"

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

// Words that differ by country, and the texts that carry places for them.
namespace quillary::config {

// International phone codes.
inline constexpr std::int32_t kNewZealand = 64;
inline constexpr std::int32_t kAustralia = 61;
inline constexpr std::int32_t kBrazil = 55;
inline constexpr std::int32_t kUruguay = 598;

// The text with "|0|", "|1|", ... replaced by the tokens; Null shows as "...". Never fails: a number
// outside the tokens ends the text there with "?", or gives "" when nothing stands before it.
std::string TranslateTokens(std::string_view text, std::span<const runtime::Variant> tokens);
std::string TranslateTokens(std::string_view text, const std::vector<std::string>& tokens);

// The suite's setting first, then the system's, then New Zealand. The suite's may be any number.
std::int32_t GetCountryCode();
std::string GetCountryName();
// "English", "Spanish", "German", "Portuguese", or whatever text the suite's setting holds.
std::string GetLanguage();

} // namespace quillary::config
