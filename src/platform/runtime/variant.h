#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <variant>

namespace quillary::runtime {

// A 64-bit number of ten-thousandths: 1.5 is held as 15000. Four decimals, exact.
struct Currency {
    std::int64_t scaled = 0;
    friend bool operator==(const Currency&, const Currency&) = default;
};

// Days since 30 December 1899; the fraction is the time of day. Before day 0 the fraction still counts
// forward from midnight (-1.25 is 06:00 on 29 December 1899).
struct Date {
    double days = 0;
    friend bool operator==(const Date&, const Date&) = default;
};

// The numbers are the old run time's (VarType).
enum class VarType : std::uint8_t {
    Empty = 0,
    Null = 1,
    Integer = 2, // 16 bits
    Long = 3,    // 32 bits
    Single = 4,
    Double = 5,
    Currency = 6,
    Date = 7,
    String = 8, // UTF-8
    Boolean = 11,
};

// A value that carries its type, as fields, cells and control values hold it. Empty is "never set",
// Null is "no value"; neither equals the empty text.
class Variant {
public:
    Variant() noexcept = default; // Empty
    Variant(bool value) noexcept : value_(value) {}
    Variant(std::int16_t value) noexcept : value_(value) {}
    Variant(std::int32_t value) noexcept : value_(value) {}
    Variant(float value) noexcept : value_(value) {}
    Variant(double value) noexcept : value_(value) {}
    Variant(Currency value) noexcept : value_(value) {}
    Variant(Date value) noexcept : value_(value) {}
    Variant(std::string value) noexcept : value_(std::move(value)) {}
    Variant(std::string_view value) : value_(std::string(value)) {}
    Variant(const char* value) : value_(std::string(value)) {}

    static Variant Null() noexcept {
        Variant v;
        v.value_ = NullTag{};
        return v;
    }

    VarType Type() const noexcept { return kTypes[value_.index()]; }
    bool IsEmpty() const noexcept { return value_.index() == 0; }
    bool IsNull() const noexcept { return value_.index() == 1; }
    bool IsString() const noexcept { return Type() == VarType::String; }

    // The held value itself; the caller knows the type (std::bad_variant_access otherwise). For a value
    // of another type use conversions.h.
    template <class T>
    const T& Get() const {
        return std::get<T>(value_);
    }
    template <class T>
    const T* GetIf() const noexcept {
        return std::get_if<T>(&value_);
    }

    // Same type and same value; text byte by byte. For comparing as the language does see Compare in
    // conversions.h.
    friend bool operator==(const Variant&, const Variant&) = default;

private:
    struct NullTag {
        friend bool operator==(const NullTag&, const NullTag&) = default;
    };
    static constexpr VarType kTypes[] = {VarType::Empty, VarType::Null,   VarType::Boolean, VarType::Integer,
                                         VarType::Long,  VarType::Single, VarType::Double,  VarType::Currency,
                                         VarType::Date,  VarType::String};
    std::variant<std::monostate, NullTag, bool, std::int16_t, std::int32_t, float, double, Currency, Date,
                 std::string>
        value_;
};

} // namespace quillary::runtime
