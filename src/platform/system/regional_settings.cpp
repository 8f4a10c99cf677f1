#include "platform/runtime/locale.h"
#include "platform/system/machine.h"

#include <unicode/dtfmtsym.h>
#include <unicode/locid.h>

#include <algorithm>

namespace quillary::system {

namespace {

// International phone codes of the countries that the suite's users live in or deal with.
struct PhoneCode {
    std::string_view country;
    int code;
};
constexpr PhoneCode kPhoneCodes[] = {
    {"AR", 54}, {"AT", 43},  {"AU", 61},  {"BE", 32},  {"BO", 591}, {"BR", 55},  {"CA", 1},   {"CH", 41},
    {"CL", 56}, {"CN", 86},  {"CO", 57},  {"CR", 506}, {"CZ", 420}, {"DE", 49},  {"DK", 45},  {"EC", 593},
    {"ES", 34}, {"FI", 358}, {"FJ", 679}, {"FR", 33},  {"GB", 44},  {"GR", 30},  {"HU", 36},  {"IE", 353},
    {"IN", 91}, {"IT", 39},  {"JP", 81},  {"KE", 254}, {"LU", 352}, {"MX", 52},  {"NL", 31},  {"NO", 47},
    {"NZ", 64}, {"PE", 51},  {"PG", 675}, {"PL", 48},  {"PT", 351}, {"PY", 595}, {"SB", 677}, {"SE", 46},
    {"SG", 65}, {"TO", 676}, {"US", 1},   {"UY", 598}, {"VE", 58},  {"VU", 678}, {"WS", 685}, {"ZA", 27},
};

// The old system's three letters: two for the language, one for the country or its most usual form.
constexpr std::string_view kLanguages[][2] = {
    {"en_NZ", "ENZ"}, {"en_AU", "ENA"}, {"en_US", "ENU"}, {"en_GB", "ENG"}, {"en_CA", "ENC"},
    {"en_IE", "ENI"}, {"en_ZA", "ENS"}, {"es_ES", "ESP"}, {"es_UY", "ESY"}, {"es_AR", "ESS"},
    {"es_MX", "ESM"}, {"es_CL", "ESL"}, {"es_PY", "ESZ"}, {"de_DE", "DEU"}, {"de_AT", "DEA"},
    {"de_CH", "DES"}, {"pt_BR", "PTB"}, {"pt_PT", "PTG"}, {"fr_FR", "FRA"}, {"it_IT", "ITA"},
    {"nl_NL", "NLD"},
};

std::string Utf8(const icu::UnicodeString& text) {
    std::string result;
    return text.toUTF8String(result);
}

std::string Utf8(char32_t character) {
    return Utf8(icu::UnicodeString(static_cast<UChar32>(character)));
}

std::string CountryCode(const icu::Locale& locale) {
    const auto* entry =
        std::find_if(std::begin(kPhoneCodes), std::end(kPhoneCodes),
                     [&](const PhoneCode& code) { return code.country == locale.getCountry(); });
    return entry == std::end(kPhoneCodes) ? std::string() : std::to_string(entry->code);
}

std::string LanguageAbbreviation(const icu::Locale& locale) {
    const std::string name = std::string(locale.getLanguage()) + "_" + locale.getCountry();
    for (const auto& entry : kLanguages) {
        if (entry[0] == name)
            return std::string(entry[1]);
    }
    return runtime::UCase(std::string(locale.getLanguage()) + std::string(locale.getCountry()).substr(0, 1));
}

std::string SymbolName(const icu::Locale& locale, long kind) {
    UErrorCode status = U_ZERO_ERROR;
    const icu::DateFormatSymbols symbols(locale, status);
    if (U_FAILURE(status))
        return {};
    const bool isMonth = kind >= regional::kMonthName;
    const bool isShort = isMonth ? kind >= regional::kMonthNameShort : kind >= regional::kDayNameShort;
    const auto width = isShort ? icu::DateFormatSymbols::ABBREVIATED : icu::DateFormatSymbols::WIDE;
    int32_t count = 0;
    if (isMonth) {
        const auto* months = symbols.getMonths(count, icu::DateFormatSymbols::STANDALONE, width);
        const long month = kind - (isShort ? regional::kMonthNameShort : regional::kMonthName);
        return month < count ? Utf8(months[month]) : std::string();
    }
    const auto* days = symbols.getWeekdays(count, icu::DateFormatSymbols::STANDALONE, width);
    // The library counts from 1, Sunday.
    const long day = (kind - (isShort ? regional::kDayNameShort : regional::kDayName) + 1) % 7 + 1;
    return day < count ? Utf8(days[day]) : std::string();
}

class RegionalSettingsOfMachine : public RegionalSettings {
public:
    std::string Value(long kind) override {
        const runtime::RegionalSettings& settings = runtime::CurrentLocale();
        const icu::Locale locale(settings.name.c_str());
        icu::UnicodeString name;
        switch (kind) {
        case regional::kLanguage:
            return Utf8(locale.getDisplayLanguage(locale, name));
        case regional::kEnglishLanguage:
            return Utf8(locale.getDisplayLanguage(icu::Locale::getEnglish(), name));
        case regional::kLanguageAbbreviation:
            return LanguageAbbreviation(locale);
        case regional::kCountryCode:
            return CountryCode(locale);
        case regional::kCountry:
            return Utf8(locale.getDisplayCountry(locale, name));
        case regional::kEnglishCountry:
            return Utf8(locale.getDisplayCountry(icu::Locale::getEnglish(), name));
        case regional::kCountryAbbreviation:
            return locale.getISO3Country();
        case regional::kListSeparator:
            return settings.decimal == U',' ? ";" : ",";
        case regional::kDecimal:
            return Utf8(settings.decimal);
        case regional::kThousand:
            return Utf8(settings.group);
        case regional::kCurrency:
            return settings.currencySymbol;
        case regional::kDateSeparator:
            return settings.dateSeparator;
        case regional::kTimeSeparator:
            return settings.timeSeparator;
        case regional::kShortDate:
            return settings.shortDate;
        case regional::kLongDate:
            return settings.longDate;
        case regional::kDateOrder:
            return std::to_string(settings.dateOrder);
        case regional::kIsoLanguage:
            return locale.getLanguage();
        case regional::kIsoCountry:
            return locale.getCountry();
        default:
            if (kind >= regional::kDayName && kind < regional::kMonthNameShort + 12)
                return SymbolName(locale, kind);
            return {};
        }
    }
};

} // namespace

std::shared_ptr<RegionalSettings> MachineRegionalSettings() {
    return std::make_shared<RegionalSettingsOfMachine>();
}

} // namespace quillary::system
