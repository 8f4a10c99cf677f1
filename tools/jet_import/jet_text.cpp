#include "jet_import/jet_text.h"

#include <algorithm>
#include <cstdint>
#include <unicode/ucnv.h>

namespace quillary::jet_import {
namespace {

constexpr std::uint32_t kReplacement = 0xFFFD;
constexpr std::string_view kCompressed("\xff\xfe", 2);

void AppendPoint(std::uint32_t point, std::string& out) {
    const auto put = [&out](std::uint32_t byte) { out += static_cast<char>(byte); };
    if (point < 0x80) {
        put(point);
    } else if (point < 0x800) {
        put(0xC0 | point >> 6);
        put(0x80 | (point & 0x3F));
    } else if (point < 0x10000) {
        put(0xE0 | point >> 12);
        put(0x80 | (point >> 6 & 0x3F));
        put(0x80 | (point & 0x3F));
    } else {
        put(0xF0 | point >> 18);
        put(0x80 | (point >> 12 & 0x3F));
        put(0x80 | (point >> 6 & 0x3F));
        put(0x80 | (point & 0x3F));
    }
}

// UTF-16 units to UTF-8, one by one.
class Units {
public:
    explicit Units(std::string& out) : out_(out) {}

    void Take(std::uint32_t unit) {
        const bool low = unit >= 0xDC00 && unit < 0xE000;
        if (high_ != 0) {
            const std::uint32_t high = high_;
            high_ = 0;
            if (low) {
                AppendPoint(0x10000 + ((high - 0xD800) << 10) + (unit - 0xDC00), out_);
                return;
            }
            AppendPoint(kReplacement, out_);
        }
        if (unit >= 0xD800 && unit < 0xDC00) {
            high_ = unit;
        } else {
            AppendPoint(low ? kReplacement : unit, out_);
        }
    }
    void End() {
        if (high_ != 0) {
            AppendPoint(kReplacement, out_);
        }
    }

private:
    std::string& out_;
    std::uint32_t high_ = 0;
};

std::uint32_t Byte(std::string_view bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]);
}

// A compressed text holds one byte a character, as far as that goes; a zero byte changes to pairs of bytes
// and back.
void AppendCompressed(std::string_view bytes, std::string& out) {
    Units units(out);
    bool single = true;
    std::size_t at = 0;
    while (at < bytes.size()) {
        if (bytes[at] == 0) {
            single = !single;
            ++at;
        } else if (single) {
            units.Take(Byte(bytes, at++));
        } else if (at + 1 < bytes.size()) {
            units.Take(Byte(bytes, at) | Byte(bytes, at + 1) << 8);
            at += 2;
        } else {
            ++at;
        }
    }
    units.End();
}

} // namespace

void JetText::Close::operator()(UConverter* converter) const {
    ucnv_close(converter);
}

JetText::JetText(int codePage) {
    if (codePage == 0) {
        return;
    }
    for (const std::string& name : {"windows-" + std::to_string(codePage), "cp" + std::to_string(codePage)}) {
        UErrorCode fault = U_ZERO_ERROR;
        converter_.reset(ucnv_open(name.c_str(), &fault));
        if (U_SUCCESS(fault)) {
            return;
        }
    }
    UErrorCode fault = U_ZERO_ERROR;
    converter_.reset(ucnv_open("windows-1252", &fault));
    known_ = false;
}

JetText::~JetText() = default;

void JetText::Append(std::string_view bytes, std::string& out) const {
    if (converter_) {
        used_ = used_ || std::any_of(bytes.begin(), bytes.end(),
                                     [](char c) { return static_cast<unsigned char>(c) >= 0x80; });
        UErrorCode fault = U_ZERO_ERROR;
        std::u16string wide(bytes.size(), u'\0'); // a character has at least one byte
        const std::int32_t length =
            ucnv_toUChars(converter_.get(), wide.data(), static_cast<std::int32_t>(wide.size()), bytes.data(),
                          static_cast<std::int32_t>(bytes.size()), &fault);
        Units units(out);
        for (std::int32_t i = 0; i < length && static_cast<std::size_t>(i) < wide.size(); ++i) {
            units.Take(wide[static_cast<std::size_t>(i)]);
        }
        units.End();
    } else if (bytes.starts_with(kCompressed)) {
        AppendCompressed(bytes.substr(kCompressed.size()), out);
    } else {
        Units units(out);
        for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
            units.Take(Byte(bytes, at) | Byte(bytes, at + 1) << 8);
        }
        units.End();
    }
}

} // namespace quillary::jet_import
