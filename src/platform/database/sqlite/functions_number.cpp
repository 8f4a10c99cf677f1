#include "platform/database/sqlite/function_call.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>

// Arithmetic that SQLite has no word for, and the functions of numbers. Currency is in ten-thousandths
// where a name says cur.
namespace quillary::database::sqlite {
namespace {

using runtime::RunTimeError;

[[noreturn]] void RaiseInvalidCall() {
    throw RunTimeError(runtime::kErrInvalidProcedureCall);
}

[[noreturn]] void RaiseOverflow() {
    throw RunTimeError(runtime::kErrOverflow);
}

void ReturnFinite(const FunctionCall& call, double value) {
    if (!std::isfinite(value)) {
        RaiseOverflow();
    }
    call.ReturnNumber(value);
}

void Finite(const FunctionCall& call) {
    ReturnFinite(call, call.Number(0));
}

void Divide(const FunctionCall& call) {
    const double divisor = call.Number(1);
    if (divisor == 0) {
        throw RunTimeError(runtime::kErrDivisionByZero);
    }
    ReturnFinite(call, call.Number(0) / divisor);
}

std::int64_t RoundedLong(double value) {
    const double whole = runtime::RoundHalfEven(value);
    if (!(whole >= std::numeric_limits<std::int32_t>::min() &&
          whole <= std::numeric_limits<std::int32_t>::max())) {
        RaiseOverflow();
    }
    return static_cast<std::int64_t>(whole);
}

std::int64_t RoundedDivisor(const FunctionCall& call) {
    const std::int64_t divisor = RoundedLong(call.Number(1));
    if (divisor == 0) {
        throw RunTimeError(runtime::kErrDivisionByZero);
    }
    return divisor;
}

void Quotient(const FunctionCall& call) {
    call.ReturnWhole(RoundedLong(call.Number(0)) / RoundedDivisor(call));
}

void Mod(const FunctionCall& call) {
    call.ReturnWhole(RoundedLong(call.Number(0)) % RoundedDivisor(call));
}

void Power(const FunctionCall& call) {
    const double base = call.Number(0);
    const double exponent = call.Number(1);
    if ((base == 0 && exponent < 0) || (base < 0 && exponent != std::trunc(exponent))) {
        RaiseInvalidCall();
    }
    ReturnFinite(call, std::pow(base, exponent));
}

void Single(const FunctionCall& call) {
    call.ReturnNumber(SingleValue(call.Number(0)));
}

void Long(const FunctionCall& call) {
    call.ReturnWhole(RoundedLong(call.Number(0)));
}

void ToCurrency(const FunctionCall& call) {
    call.ReturnWhole(runtime::CCur(Variant(call.Number(0))).scaled);
}

__extension__ using Wide = __int128;

// The quotient with halves to even.
Wide DivideHalfEven(Wide value, Wide unit) {
    Wide quotient = value / unit;
    Wide rest = value % unit;
    const bool negative = rest < 0;
    if (negative) {
        rest = -rest;
    }
    if (rest * 2 > unit || (rest * 2 == unit && quotient % 2 != 0)) {
        quotient += negative ? -1 : 1;
    }
    return quotient;
}

void MultiplyCurrency(const FunctionCall& call) {
    const Wide product = DivideHalfEven(static_cast<Wide>(call.Whole(0)) * call.Whole(1), 10000);
    if (product > std::numeric_limits<std::int64_t>::max() ||
        product < std::numeric_limits<std::int64_t>::min()) {
        RaiseOverflow();
    }
    call.ReturnWhole(static_cast<std::int64_t>(product));
}

void RoundHalf(const FunctionCall& call) {
    call.ReturnWhole(std::llrint(call.Number(0)));
}

void Round(const FunctionCall& call) {
    const long long digits = call.Whole(1);
    if (digits < 0) {
        RaiseInvalidCall();
    }
    const double value = call.Number(0);
    const double unit = std::pow(10.0, static_cast<double>(std::min(digits, 22LL)));
    const double scaled = value * unit;
    // Beyond the digits that a double has there is nothing to round.
    call.ReturnNumber(std::fabs(scaled) < 4.5e15 ? runtime::RoundHalfEven(scaled) / unit : value);
}

void RoundCurrency(const FunctionCall& call) {
    const long long digits = call.Whole(1);
    if (digits < 0) {
        RaiseInvalidCall();
    }
    Wide unit = 1;
    for (long long i = digits; i < 4; ++i) {
        unit *= 10;
    }
    call.ReturnWhole(static_cast<std::int64_t>(DivideHalfEven(call.Whole(0), unit) * unit));
}

void Int(const FunctionCall& call) {
    call.ReturnNumber(std::floor(call.Number(0)));
}

void Fix(const FunctionCall& call) {
    call.ReturnNumber(std::trunc(call.Number(0)));
}

void IntCurrency(const FunctionCall& call) {
    const long long value = call.Whole(0);
    const long long rest = value % 10000;
    call.ReturnWhole(value - rest - (rest < 0 ? 10000 : 0));
}

void FixCurrency(const FunctionCall& call) {
    call.ReturnWhole(call.Whole(0) - call.Whole(0) % 10000);
}

void Sgn(const FunctionCall& call) {
    const double value = call.Number(0);
    call.ReturnWhole((value > 0) - (value < 0));
}

void Sqr(const FunctionCall& call) {
    if (call.Number(0) < 0) {
        RaiseInvalidCall();
    }
    call.ReturnNumber(std::sqrt(call.Number(0)));
}

void Log(const FunctionCall& call) {
    if (call.Number(0) <= 0) {
        RaiseInvalidCall();
    }
    call.ReturnNumber(std::log(call.Number(0)));
}

// The run time's own sequence: a linear congruence of 24 bits; a negative number starts it anew.
void Rnd(const FunctionCall& call) {
    static std::uint32_t seed = 0x50000;
    const double which = call.Count() > 0 ? call.Number(0) : 1;
    if (which < 0) {
        const auto bits = static_cast<float>(which);
        std::uint32_t raw = 0;
        static_assert(sizeof raw == sizeof bits);
        std::copy_n(reinterpret_cast<const unsigned char*>(&bits), sizeof raw,
                    reinterpret_cast<unsigned char*>(&raw));
        seed = (raw + (raw >> 24)) & 0xFFFFFF;
    }
    if (which != 0) {
        seed = (seed * 0x43FD43FDU + 0xC39EC3U) & 0xFFFFFF;
    }
    call.ReturnNumber(SingleValue(static_cast<double>(seed) / 16777216.0));
}

template <double (*function)(double)>
void Plain(const FunctionCall& call) {
    ReturnFinite(call, function(call.Number(0)));
}

constexpr FunctionEntry kEntries[] = {
    {"qy_finite", 1, Finite},
    {"qy_divide", 2, Divide},
    {"qy_quotient", 2, Quotient},
    {"qy_mod", 2, Mod},
    {"qy_power", 2, Power},
    {"qy_single", 1, Single},
    {"qy_long", 1, Long},
    {"qy_currency", 1, ToCurrency},
    {"qy_curmul", 2, MultiplyCurrency},
    {"qy_roundhalf", 1, RoundHalf},
    {"qy_round", 2, Round},
    {"qy_roundcur", 2, RoundCurrency},
    {"qy_int", 1, Int},
    {"qy_fix", 1, Fix},
    {"qy_intcur", 1, IntCurrency},
    {"qy_fixcur", 1, FixCurrency},
    {"qy_sgn", 1, Sgn},
    {"qy_sqr", 1, Sqr},
    {"qy_exp", 1, Plain<std::exp>},
    {"qy_log", 1, Log},
    {"qy_sin", 1, Plain<std::sin>},
    {"qy_cos", 1, Plain<std::cos>},
    {"qy_tan", 1, Plain<std::tan>},
    {"qy_atn", 1, Plain<std::atan>},
    // Without an argument one number serves the whole statement; with a field there is one a row.
    {"qy_rnd", 0, Rnd},
    {"qy_rnd", 1, Rnd},
};

} // namespace

void RegisterNumberFunctions(sqlite3* connection) {
    RegisterEntries(connection, kEntries);
}

} // namespace quillary::database::sqlite
