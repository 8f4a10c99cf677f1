#include "platform/runtime/number_reading.h"

#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>
#include <charconv>
#include <cstring>

namespace quillary::runtime {
namespace {

bool IsDigit(char c) {
    return c >= '0' && c <= '9';
}

bool IsBlank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

// The blanks that the world groups its digits by; a keyboard has only the first of them.
constexpr std::string_view kGroupBlanks[] = {" ", "\u00A0", "\u202F", "\u2009"};

std::size_t EncodeUtf8(char32_t c, char* out) {
    if (c < 0x80) {
        out[0] = static_cast<char>(c);
        return 1;
    }
    if (c < 0x800) {
        out[0] = static_cast<char>(0xC0 | (c >> 6));
        out[1] = static_cast<char>(0x80 | (c & 0x3F));
        return 2;
    }
    out[0] = static_cast<char>(0xE0 | (c >> 12));
    out[1] = static_cast<char>(0x80 | ((c >> 6) & 0x3F));
    out[2] = static_cast<char>(0x80 | (c & 0x3F));
    return 3;
}

// One text being read under the regional settings.
class Reader {
public:
    explicit Reader(std::string_view text) : rest_(text) {
        const RegionalSettings& settings = CurrentLocale();
        decimal_ = {decimalBytes_, EncodeUtf8(settings.decimal, decimalBytes_)};
        group_ = {groupBytes_, EncodeUtf8(settings.group, groupBytes_)};
        groupIsBlank_ =
            std::find(std::begin(kGroupBlanks), std::end(kGroupBlanks), group_) != std::end(kGroupBlanks);
        currency_ = settings.currencySymbol;
    }

    NumberReading Read() {
        SkipBlanks();
        if (ReadRadix()) {
            return reading_;
        }
        reading_.valid = ReadBefore() && ReadMantissa() && ReadBehind();
        return reading_;
    }

private:
    bool Accept(std::string_view what) {
        if (what.empty() || !rest_.starts_with(what)) {
            return false;
        }
        rest_.remove_prefix(what.size());
        return true;
    }

    void SkipBlanks() {
        while (!rest_.empty() && IsBlank(rest_.front())) {
            rest_.remove_prefix(1);
        }
        if (groupIsBlank_ && (Accept("\u00A0") || Accept("\u202F") || Accept("\u2009"))) {
            SkipBlanks();
        }
    }

    bool ReadRadix() {
        if (rest_.size() < 3 || rest_[0] != '&') {
            return false;
        }
        const char letter = static_cast<char>(rest_[1] | 0x20);
        if (letter != 'h' && letter != 'o') {
            return false;
        }
        bool fits = true;
        const std::size_t count =
            ReadRadixDigits(rest_.substr(2), letter == 'h' ? 16 : 8, reading_.bits, fits);
        rest_.remove_prefix(2 + count);
        SkipBlanks();
        reading_.radix = true;
        reading_.valid = count > 0 && fits && rest_.empty();
        return true;
    }

    bool AcceptSign() {
        if (signs_ > 0 || rest_.empty() || (rest_[0] != '-' && rest_[0] != '+')) {
            return false;
        }
        ++signs_;
        reading_.negative = rest_[0] == '-';
        rest_.remove_prefix(1);
        return true;
    }

    bool AcceptCurrency() {
        if (currencies_ > 0 || !Accept(currency_)) {
            return false;
        }
        ++currencies_;
        return true;
    }

    bool ReadBefore() {
        for (;; SkipBlanks()) {
            if (AcceptSign() || AcceptCurrency()) {
                continue;
            }
            if (!bracket_ && signs_ == 0 && Accept("(")) {
                bracket_ = true;
                signs_ = 1; // brackets are the sign
                reading_.negative = true;
                continue;
            }
            return !rest_.empty();
        }
    }

    // A blank between digits groups; one behind them ends the number.
    bool AcceptGroup() {
        if (!groupIsBlank_) {
            return Accept(group_) || (group_ == "\u2019" && Accept("'"));
        }
        for (const std::string_view blank : kGroupBlanks) {
            if (rest_.starts_with(blank) && rest_.size() > blank.size() && IsDigit(rest_[blank.size()])) {
                rest_.remove_prefix(blank.size());
                return true;
            }
        }
        return false;
    }

    bool ReadMantissa() {
        bool any = false;
        bool decimal = false;
        for (;;) {
            if (!rest_.empty() && IsDigit(rest_[0])) {
                reading_.AddDigit(rest_[0], decimal);
                rest_.remove_prefix(1);
                any = true;
            } else if (!decimal && Accept(decimal_)) {
                decimal = true;
            } else if (decimal || !any || !AcceptGroup()) {
                break;
            }
        }
        long exponent = 0;
        const std::size_t length = any ? ReadExponent(rest_, exponent) : 0;
        rest_.remove_prefix(length);
        reading_.AddExponent(exponent);
        return any;
    }

    bool ReadBehind() {
        SkipBlanks();
        for (; !rest_.empty(); SkipBlanks()) {
            if (bracket_ && Accept(")")) {
                bracket_ = false;
            } else if (!AcceptSign() && !AcceptCurrency()) {
                return false;
            }
        }
        return !bracket_;
    }

    std::string_view rest_;
    char decimalBytes_[4];
    char groupBytes_[4];
    std::string_view decimal_;
    std::string_view group_;
    std::string_view currency_;
    bool groupIsBlank_ = false;
    bool bracket_ = false;
    int signs_ = 0;
    int currencies_ = 0;
    NumberReading reading_;
};

} // namespace

void NumberReading::AddDigit(char digit, bool decimal) {
    if (decimal) {
        --exponent;
    }
    if (digitCount == 0 && digit == '0') {
        return;
    }
    if (digitCount < kMaxDigits) {
        digits[digitCount++] = digit;
    } else {
        ++exponent;
    }
}

void NumberReading::AddExponent(long value) {
    exponent += value;
}

ReadStatus NumberReading::ToDouble(double& value) const {
    if (!valid) {
        return ReadStatus::NotANumber;
    }
    value = 0;
    if (radix) {
        value = static_cast<double>(bits);
        return ReadStatus::Good;
    }
    if (digitCount == 0) {
        return ReadStatus::Good;
    }
    char buffer[kMaxDigits + 32];
    std::memcpy(buffer, digits, static_cast<std::size_t>(digitCount));
    char* end = buffer + digitCount;
    if (exponent != 0) {
        *end++ = 'e';
        end = std::to_chars(end, buffer + sizeof buffer, exponent).ptr;
    }
    if (std::from_chars(buffer, end, value).ec == std::errc::result_out_of_range) {
        if (exponent + digitCount > 0) {
            return ReadStatus::Overflow;
        }
        value = 0;
    }
    if (negative) {
        value = -value;
    }
    return ReadStatus::Good;
}

ReadStatus NumberReading::ToCurrency(std::int64_t& scaled) const {
    if (!valid) {
        return ReadStatus::NotANumber;
    }
    constexpr std::uint64_t kLimit = 9223372036854775808U; // of a negative number
    if (radix) {
        if (bits > kLimit / 10000) {
            return ReadStatus::Overflow;
        }
        scaled = static_cast<std::int64_t>(bits * 10000);
        return ReadStatus::Good;
    }
    // Digits of the ten-thousandths: those beyond this count decide the rounding.
    const long whole = digitCount + exponent + 4;
    if (digitCount == 0 || whole < 0) {
        scaled = 0;
        return ReadStatus::Good;
    }
    if (whole > 19) {
        return ReadStatus::Overflow;
    }
    std::uint64_t size = 0;
    for (long i = 0; i < whole; ++i) {
        size = size * 10 + (i < digitCount ? static_cast<std::uint64_t>(digits[i] - '0') : 0U);
    }
    if (whole < digitCount) {
        const bool more =
            std::any_of(digits + whole + 1, digits + digitCount, [](char c) { return c != '0'; });
        const char next = digits[whole];
        if (next > '5' || (next == '5' && (more || size % 2 == 1))) {
            ++size;
        }
    }
    if (size > (negative ? kLimit : kLimit - 1)) {
        return ReadStatus::Overflow;
    }
    scaled = static_cast<std::int64_t>(negative ? 0 - size : size);
    return ReadStatus::Good;
}

NumberReading ReadNumber(std::string_view text) {
    return Reader(text).Read();
}

std::size_t ReadRadixDigits(std::string_view text, int base, std::uint64_t& bits, bool& fits) {
    bits = 0;
    const auto result = std::from_chars(text.data(), text.data() + text.size(), bits, base);
    fits = result.ec != std::errc::result_out_of_range;
    return result.ec == std::errc::invalid_argument ? 0 : static_cast<std::size_t>(result.ptr - text.data());
}

std::size_t ReadExponent(std::string_view text, long& exponent) {
    if (text.size() < 2 || ((text[0] | 0x20) != 'e' && (text[0] | 0x20) != 'd')) {
        return 0;
    }
    std::size_t i = 1;
    const bool negative = text[1] == '-';
    if (negative || text[1] == '+') {
        ++i;
    }
    const std::size_t first = i;
    long value = 0;
    for (; i < text.size() && IsDigit(text[i]); ++i) {
        value = std::min(value * 10 + (text[i] - '0'), 1'000'000L);
    }
    if (i == first) {
        return 0;
    }
    exponent = negative ? -value : value;
    return i;
}

std::optional<double> ParseNumber(std::string_view text) {
    double value = 0;
    if (ReadNumber(text).ToDouble(value) != ReadStatus::Good) {
        return std::nullopt;
    }
    return value;
}

std::optional<Currency> ParseCurrency(std::string_view text) {
    Currency value;
    if (ReadNumber(text).ToCurrency(value.scaled) != ReadStatus::Good) {
        return std::nullopt;
    }
    return value;
}

double Val(std::string_view text) {
    std::string kept;
    if (text.find_first_of(" \t\n") != text.npos) {
        kept.reserve(text.size());
        std::copy_if(text.begin(), text.end(), std::back_inserter(kept),
                     [](char c) { return c != ' ' && c != '\t' && c != '\n'; });
        text = kept;
    }
    NumberReading reading;
    reading.valid = true;
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) {
        reading.negative = text[0] == '-';
        text.remove_prefix(1);
    }
    if (text.size() > 1 && text[0] == '&') {
        const char letter = static_cast<char>(text[1] | 0x20);
        const int base = letter == 'h' ? 16 : 8;
        text.remove_prefix(letter == 'h' || letter == 'o' ? 2 : 1);
        std::uint64_t bits = 0;
        bool fits = true;
        const std::size_t count = ReadRadixDigits(text, base, bits, fits);
        if (!fits || bits > 0xFFFFFFFFU) {
            throw RunTimeError(kErrOverflow);
        }
        // The bits of the smallest kind that holds them, so that &HFFFF is -1; "&" behind asks for 32.
        const bool wide = bits > 0xFFFFU || (count < text.size() && text[count] == '&');
        const double value = wide ? static_cast<double>(static_cast<std::int32_t>(bits))
                                  : static_cast<double>(static_cast<std::int16_t>(bits));
        return reading.negative ? 0 - value : value;
    }
    bool any = false;
    bool decimal = false;
    for (; !text.empty(); text.remove_prefix(1)) {
        if (IsDigit(text[0])) {
            reading.AddDigit(text[0], decimal);
            any = true;
        } else if (text[0] == '.' && !decimal) {
            decimal = true;
        } else {
            break;
        }
    }
    long exponent = 0;
    if (any && ReadExponent(text, exponent) > 0) {
        reading.AddExponent(exponent);
    }
    double value = 0;
    if (reading.ToDouble(value) == ReadStatus::Overflow) {
        throw RunTimeError(kErrOverflow);
    }
    return value;
}

} // namespace quillary::runtime
