#include "config/tokens.h"

#include "config/profile_store.h"
#include "config/suite_files.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

namespace quillary::config {

namespace {

const runtime::Variant& TokenAt(std::string_view number, std::span<const runtime::Variant> tokens) {
    const double index = runtime::RoundHalfEven(runtime::Val(number));
    if (!(index >= 0 && index < static_cast<double>(tokens.size())))
        throw runtime::RunTimeError(runtime::kErrSubscriptOutOfRange);
    return tokens[static_cast<std::size_t>(index)];
}

} // namespace

std::string TranslateTokens(std::string_view text, std::span<const runtime::Variant> tokens) {
    std::string result;
    try {
        for (std::size_t i = 0; i < text.size(); ++i) {
            if (text[i] != '|') {
                result += text[i];
                continue;
            }
            const runtime::Variant& token = TokenAt(text.substr(i + 1), tokens);
            result += token.IsNull() ? "..." : runtime::TextOf(token);
            const std::size_t close = text.find('|', i + 1);
            if (close == std::string_view::npos)
                result += '|'; // meant: without a partner the bar and what follows are shown too
            else
                i = close;
        }
    } catch (const runtime::RunTimeError&) {
        return result.empty() ? result : result + "?";
    }
    return result;
}

std::string TranslateTokens(std::string_view text, const std::vector<std::string>& tokens) {
    const std::vector<runtime::Variant> values(tokens.begin(), tokens.end());
    return TranslateTokens(text, values);
}

std::int32_t GetCountryCode() {
    // Meant: the suite's own setting may be any number, the system's only one that the program knows.
    if (const auto code = ValueAsLong(GetSuiteValue("WINDOWS", "Country")))
        return *code;
    const std::int32_t code = ValueAsLong(GetProfileValue("INTL", "iCountry", files::kSystemIni)).value_or(0);
    return code == kAustralia || code == kBrazil || code == kUruguay ? code : kNewZealand;
}

std::string GetCountryName() {
    switch (GetCountryCode()) {
    case kBrazil:
        return "Brazil";
    case kAustralia:
        return "Australia";
    case kUruguay:
        return "Uruguay";
    default:
        return "New Zealand";
    }
}

std::string GetLanguage() {
    if (std::string language = GetSuiteValue("WINDOWS", "Language"); !language.empty())
        return language;
    const std::string system =
        runtime::UCase(GetProfileValue("INTL", "sLanguage", files::kSystemIni)).substr(0, 2);
    if (system == "ES")
        return "Spanish";
    if (system == "DE")
        return "German";
    return system == "PT" ? "Portuguese" : "English";
}

} // namespace quillary::config
