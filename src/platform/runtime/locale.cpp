#include "platform/runtime/locale.h"

#include "platform/runtime/locale_details.h"
#include "platform/runtime/run_time_error.h"

#include <unicode/dcfmtsym.h>
#include <unicode/decimfmt.h>
#include <unicode/dtfmtsym.h>
#include <unicode/locid.h>
#include <unicode/smpdtfmt.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <memory>
#include <utility>

namespace quillary::runtime {
namespace {

constexpr const char* kHome = "en_NZ";

struct LoadedLocale {
    RegionalSettings settings;
    std::unique_ptr<LocaleDetails> details;
};

// The home locale stands here as ICU has it, so that a start under it need not load ICU's data.
RegionalSettings HomeSettings() {
    RegionalSettings s;
    s.name = kHome;
    s.currencySymbol = "$";
    s.shortDate = "d/MM/yyyy";
    s.longDate = "EEEE, d MMMM y";
    s.dateSeparator = "/";
    s.timeSeparator = ":";
    return s;
}

std::string ToUtf8(const icu::UnicodeString& text) {
    std::string result;
    text.toUTF8String(result);
    return result;
}

void Check(UErrorCode code, const char* what) {
    if (U_FAILURE(code)) {
        throw RunTimeError(kErrInvalidProcedureCall, "QYSettings",
                           std::string("The regional settings cannot be read (") + what + ": " +
                               u_errorName(code) + ")");
    }
}

icu::Locale IcuLocale(const std::string& name) {
    icu::Locale locale = icu::Locale::createFromName(name.c_str());
    UErrorCode code = U_ZERO_ERROR;
    // Dates are Gregorian and digits are 0 to 9 whatever the country's own habit: the data is.
    locale.setKeywordValue("calendar", "gregorian", code);
    locale.setKeywordValue("numbers", "latn", code);
    return locale;
}

// An ICU pattern without direction marks and eras, with plain blanks.
std::string CleanPattern(const icu::UnicodeString& pattern) {
    icu::UnicodeString clean;
    bool quoted = false;
    for (int32_t i = 0; i < pattern.length(); ++i) {
        const char16_t c = pattern[i];
        quoted ^= c == u'\'';
        if (c == 0x200E || c == 0x200F || c == 0x061C || (c == u'G' && !quoted)) {
            continue;
        }
        clean.append(c == 0x00A0 || c == 0x202F ? u' ' : c);
    }
    return ToUtf8(clean.trim());
}

// Every run of y becomes yyyy.
std::string FourDigitYear(const std::string& pattern) {
    std::string result;
    bool quoted = false;
    for (std::size_t i = 0; i < pattern.size(); ++i) {
        quoted ^= pattern[i] == '\'';
        if (pattern[i] != 'y' || quoted) {
            result += pattern[i];
        } else if (i == 0 || pattern[i - 1] != 'y') {
            result += "yyyy";
        }
    }
    return result;
}

// What stands between the first two fields of a pattern, without blanks.
std::string SeparatorOf(const std::string& pattern, std::string_view letters, const char* otherwise) {
    const std::size_t first = pattern.find_first_of(letters);
    if (first == std::string::npos) {
        return otherwise;
    }
    const std::size_t from = pattern.find_first_not_of(pattern[first], first);
    if (from == std::string::npos) {
        return otherwise;
    }
    const std::size_t to = pattern.find_first_of(letters, from);
    if (to == std::string::npos || to == from || pattern[from] == '\'') {
        return otherwise;
    }
    const std::string_view between = Trim(std::string_view(pattern).substr(from, to - from));
    return between.empty() ? otherwise : std::string(between);
}

int OrderOf(const std::string& pattern) {
    const std::size_t day = pattern.find('d');
    const std::size_t month = pattern.find_first_of("ML");
    const std::size_t year = pattern.find('y');
    if (year < day && year < month) {
        return 2;
    }
    return month < day ? 0 : 1;
}

std::string DatePattern(icu::DateFormat::EStyle style, const icu::Locale& locale, bool time) {
    const std::unique_ptr<icu::DateFormat> format(time ? icu::DateFormat::createTimeInstance(style, locale)
                                                       : icu::DateFormat::createDateInstance(style, locale));
    const auto* simple = dynamic_cast<const icu::SimpleDateFormat*>(format.get());
    if (simple == nullptr) {
        Check(U_MISSING_RESOURCE_ERROR, "dates");
    }
    icu::UnicodeString pattern;
    simple->toPattern(pattern);
    return CleanPattern(pattern);
}

RegionalSettings LoadSettings(const std::string& name) {
    const icu::Locale locale = IcuLocale(name);
    UErrorCode code = U_ZERO_ERROR;
    const icu::DecimalFormatSymbols symbols(locale, code);
    Check(code, "numbers");
    using Symbols = icu::DecimalFormatSymbols;
    RegionalSettings s;
    s.name = name;
    s.decimal = static_cast<char32_t>(symbols.getConstSymbol(Symbols::kDecimalSeparatorSymbol).char32At(0));
    s.group = static_cast<char32_t>(symbols.getConstSymbol(Symbols::kGroupingSeparatorSymbol).char32At(0));
    s.currencySymbol = ToUtf8(symbols.getConstSymbol(Symbols::kCurrencySymbol));
    s.shortDate = FourDigitYear(DatePattern(icu::DateFormat::kShort, locale, false));
    s.longDate = DatePattern(icu::DateFormat::kFull, locale, false);
    s.dateSeparator = SeparatorOf(s.shortDate, "dMLy", "/");
    s.timeSeparator = SeparatorOf(DatePattern(icu::DateFormat::kMedium, locale, true), "hHkKms", ":");
    s.dateOrder = OrderOf(s.shortDate);
    return s;
}

template <std::size_t N>
void FillNames(std::array<std::string, N>& names, const icu::UnicodeString* from, int32_t count,
               int32_t skip) {
    for (std::size_t i = 0; i < N && static_cast<int32_t>(i) + skip < count; ++i) {
        names[i] = ToUtf8(from[static_cast<int32_t>(i) + skip]);
    }
}

// ICU's currency pattern as a picture of Format: the sign is quoted, "-" and the digits are the same.
std::string CurrencyPicture(const icu::Locale& locale, const std::string& symbol) {
    UErrorCode code = U_ZERO_ERROR;
    const std::unique_ptr<icu::NumberFormat> format(icu::NumberFormat::createCurrencyInstance(locale, code));
    const auto* decimal = dynamic_cast<const icu::DecimalFormat*>(format.get());
    if (U_FAILURE(code) || decimal == nullptr) {
        return '"' + symbol + "\"#,##0.00";
    }
    icu::UnicodeString pattern;
    decimal->toPattern(pattern);
    icu::UnicodeString picture;
    for (int32_t i = 0; i < pattern.length(); ++i) {
        const char16_t c = pattern[i];
        if (c == u'¤') {
            picture.append(u'"').append(icu::UnicodeString::fromUTF8(symbol)).append(u'"');
        } else if (c == 0x00A0 || c == 0x202F) {
            picture.append(u' ');
        } else if (c != 0x200E && c != 0x200F && c != 0x061C && c != u'\'') {
            picture.append(c);
        }
    }
    return ToUtf8(picture);
}

std::unique_ptr<LocaleDetails> LoadDetails(const RegionalSettings& settings) {
    auto details = std::make_unique<LocaleDetails>(EnglishDetails());
    if (settings.name == kHome) {
        return details;
    }
    const icu::Locale locale = IcuLocale(settings.name);
    UErrorCode code = U_ZERO_ERROR;
    const icu::DateFormatSymbols symbols(locale, code);
    Check(code, "names");
    using Symbols = icu::DateFormatSymbols;
    int32_t count = 0;
    // English keeps its three letters: ICU's "Sept" and "June" depend on the country.
    if (std::string_view(locale.getLanguage()) != "en") {
        const icu::UnicodeString* names = symbols.getMonths(count, Symbols::FORMAT, Symbols::WIDE);
        FillNames(details->months, names, count, 0);
        names = symbols.getMonths(count, Symbols::FORMAT, Symbols::ABBREVIATED);
        FillNames(details->monthsShort, names, count, 0);
        names = symbols.getMonths(count, Symbols::STANDALONE, Symbols::WIDE);
        FillNames(details->monthsAlone, names, count, 0);
        names = symbols.getWeekdays(count, Symbols::FORMAT, Symbols::WIDE);
        FillNames(details->weekdays, names, count, 1); // ICU's element 0 is no day
        names = symbols.getWeekdays(count, Symbols::FORMAT, Symbols::ABBREVIATED);
        FillNames(details->weekdaysShort, names, count, 1);
    }
    const icu::UnicodeString* halves = symbols.getAmPmStrings(count);
    if (count >= 2) {
        details->am = ToUtf8(halves[0]);
        details->pm = ToUtf8(halves[1]);
    }
    // Where times are written with stops, 12.01.00 would be read as a day: colons are meant.
    details->longTime = DatePattern(icu::DateFormat::kMedium, locale, true);
    if (settings.timeSeparator == ".") {
        std::replace(details->longTime.begin(), details->longTime.end(), '.', ':');
    }
    details->currencyPicture = CurrencyPicture(locale, settings.currencySymbol);
    return details;
}

bool IsAvailable(const std::string& name) {
    int32_t count = 0;
    const icu::Locale* available = icu::Locale::getAvailableLocales(count);
    return std::any_of(available, available + count,
                       [&name](const icu::Locale& locale) { return name == locale.getName(); });
}

// The name under which ICU knows a locale, with its country (a currency needs one); empty when it doesn't.
std::string CompleteName(const icu::Locale& asked) {
    icu::Locale locale(asked);
    UErrorCode code = U_ZERO_ERROR;
    locale.addLikelySubtags(code);
    std::string plain = std::string(locale.getLanguage()) + '_' + locale.getCountry();
    if (IsAvailable(plain)) {
        return plain;
    }
    std::string full =
        std::string(locale.getLanguage()) + '_' + locale.getScript() + '_' + locale.getCountry();
    return IsAvailable(full) ? full : std::string();
}

// "de-DE.UTF-8@euro" is de_DE, "de_XX" too; "C", "POSIX" and languages that ICU does not know are home.
std::string KnownName(std::string_view asked) {
    const std::string bare(asked.substr(0, asked.find_first_of(".@")));
    if (bare.empty() || bare == "C" || bare == "POSIX") {
        return kHome;
    }
    const icu::Locale locale = icu::Locale::createCanonical(bare.c_str());
    std::string name = CompleteName(locale);
    if (name.empty()) {
        name = CompleteName(icu::Locale(locale.getLanguage()));
    }
    return name.empty() ? kHome : name;
}

std::string EnvironmentName() {
    for (const char* variable : {"LC_ALL", "LC_TIME", "LANG"}) {
        const char* value = std::getenv(variable);
        if (value != nullptr && *value != 0) {
            return value;
        }
    }
    return kHome;
}

// Never emptied: CurrentLocale's result stays good for callers that hold it.
std::map<std::string, LoadedLocale, std::less<>>& Loaded() {
    static std::map<std::string, LoadedLocale, std::less<>> loaded;
    return loaded;
}

LoadedLocale* current = nullptr;

LoadedLocale& Current() {
    if (current == nullptr) {
        SetLocale(EnvironmentName());
    }
    return *current;
}

} // namespace

const RegionalSettings& CurrentLocale() {
    return Current().settings;
}

void SetLocale(std::string_view name) {
    auto& loaded = Loaded();
    auto found = loaded.find(name);
    if (found == loaded.end()) {
        const std::string_view bare = name.substr(0, name.find_first_of(".@"));
        const std::string known =
            bare == kHome || bare == "en-NZ" ? kHome : KnownName(bare); // spares ICU the start
        LoadedLocale locale;
        locale.settings = known == kHome ? HomeSettings() : LoadSettings(known);
        found = loaded.emplace(std::string(name), std::move(locale)).first;
    }
    current = &found->second;
}

const LocaleDetails& CurrentDetails() {
    LoadedLocale& locale = Current();
    if (!locale.details) {
        locale.details = LoadDetails(locale.settings);
    }
    return *locale.details;
}

const LocaleDetails& EnglishDetails() {
    static const LocaleDetails details = [] {
        LocaleDetails d;
        d.months = {"January", "February", "March",     "April",   "May",      "June",
                    "July",    "August",   "September", "October", "November", "December"};
        d.monthsAlone = d.months;
        d.weekdays = {"Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday"};
        for (std::size_t i = 0; i < d.months.size(); ++i) {
            d.monthsShort[i] = d.months[i].substr(0, 3);
        }
        for (std::size_t i = 0; i < d.weekdays.size(); ++i) {
            d.weekdaysShort[i] = d.weekdays[i].substr(0, 3);
        }
        d.am = "am";
        d.pm = "pm";
        d.longTime = "h:mm:ss a";
        d.currencyPicture = "\"$\"#,##0.00";
        return d;
    }();
    return details;
}

} // namespace quillary::runtime
