#include "platform/runtime/conversions.h"
#include "platform/runtime/run_time_error.h"

#include <charconv>
#include <cmath>

namespace quillary::runtime {
namespace {

std::string GeneralText(double value, int digits) {
    char buffer[48];
    if (value == std::trunc(value) && std::fabs(value) < (digits == 7 ? 1e7 : 1e15)) {
        const auto end = std::to_chars(buffer, buffer + sizeof buffer, static_cast<std::int64_t>(value)).ptr;
        return {buffer, end};
    }
    auto* const end =
        std::to_chars(buffer, buffer + sizeof buffer, value, std::chars_format::general, digits).ptr;
    for (char* c = buffer; c != end; ++c) {
        if (*c == 'e') {
            *c = 'E';
        }
    }
    return {buffer, end};
}

} // namespace

std::string NumberText(double value) {
    return GeneralText(value, 15);
}

std::string NumberText(float value) {
    return GeneralText(static_cast<double>(value), 7);
}

std::string NumberText(Currency value) {
    const bool negative = value.scaled < 0;
    const std::uint64_t size =
        negative ? 0 - static_cast<std::uint64_t>(value.scaled) : static_cast<std::uint64_t>(value.scaled);
    char buffer[32];
    char* end = buffer;
    if (negative) {
        *end++ = '-';
    }
    end = std::to_chars(end, buffer + sizeof buffer, size / 10000).ptr;
    auto fraction = static_cast<int>(size % 10000);
    if (fraction != 0) {
        *end++ = '.';
        for (int unit = 1000; fraction != 0; unit /= 10) {
            *end++ = static_cast<char>('0' + fraction / unit);
            fraction %= unit;
        }
    }
    return {buffer, end};
}

double RoundHalfEven(double value) {
    return std::nearbyint(value);
}

} // namespace quillary::runtime
