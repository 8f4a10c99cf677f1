#pragma once

#include <cstdint>
#include <string_view>

// How texts are read as numbers. Of this room alone.
namespace quillary::runtime {

enum class ReadStatus { NotANumber, Overflow, Good };

// A number as it was read, not yet of any kind: plus or minus digits times ten to the exponent.
struct NumberReading {
    static constexpr int kMaxDigits = 64; // more would change no double; the rest only moves the exponent

    bool valid = false;
    bool negative = false;
    bool radix = false;     // &H or &O: the bits stand in `bits`
    std::uint64_t bits = 0; // of a radix number
    int digitCount = 0;     // without leading zeros; 0 is the number zero
    char digits[kMaxDigits + 1] = {};
    long exponent = 0;

    void AddDigit(char digit, bool decimal);
    void AddExponent(long value);
    // The nearest double, or Overflow.
    ReadStatus ToDouble(double& value) const;
    // Ten-thousandths, halves to even, or Overflow.
    ReadStatus ToCurrency(std::int64_t& scaled) const;
};

// The text as the regional settings read it.
NumberReading ReadNumber(std::string_view text);

// Digits of &H or &O from the place after the letter on; returns how many there are. Overflow of 64 bits
// is told by `fits`.
std::size_t ReadRadixDigits(std::string_view text, int base, std::uint64_t& bits, bool& fits);

// "E+5", "d-3" at the start of a text: its length, 0 when there is none.
std::size_t ReadExponent(std::string_view text, long& exponent);

} // namespace quillary::runtime
