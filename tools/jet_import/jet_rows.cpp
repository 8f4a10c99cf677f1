#include "jet_import/jet_rows.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstring>

namespace quillary::jet_import {
namespace {

using Kind = database::LoadValue::Kind;

std::uint64_t LongNumber(Bytes bytes) {
    return Number(bytes, 0, 4) | static_cast<std::uint64_t>(Number(bytes, 4, 4)) << 32;
}

std::string GuidText(Bytes bytes) {
    static constexpr char kDigits[] = "0123456789ABCDEF";
    // The first three groups lie with their lowest byte first.
    static constexpr int kOrder[] = {3, 2, 1, 0, -1, 5, 4, -1, 7, 6, -1, 8, 9, -1, 10, 11, 12, 13, 14, 15};
    const Bytes guid = Part(bytes, 0, 16);
    std::string text = "{";
    for (const int at : kOrder) {
        if (at < 0) {
            text += '-';
            continue;
        }
        const auto byte = static_cast<unsigned char>(guid[static_cast<std::size_t>(at)]);
        text += kDigits[byte >> 4];
        text += kDigits[byte & 15];
    }
    return text + "}";
}

// Digits that a double keeps whatever they are.
constexpr std::size_t kSureDigits = 15;
constexpr std::int64_t kMostSure = 1LL << 53;

// A sign, and four words with the highest first. sure: no digit is lost.
double DecimalValue(Bytes bytes, int scale, bool& sure) {
    const Bytes number = Part(bytes, 0, 17);
    std::array<std::uint64_t, 4> words{};
    for (std::size_t word = 0; word < words.size(); ++word) {
        words.at(word) = Number(number, 1 + word * 4, 4);
    }
    std::string digits;
    while (std::any_of(words.begin(), words.end(), [](std::uint64_t word) { return word != 0; })) {
        std::uint64_t rest = 0;
        for (std::uint64_t& word : words) {
            const std::uint64_t part = rest << 32 | word;
            word = part / 10;
            rest = part % 10;
        }
        digits.insert(digits.begin(), static_cast<char>('0' + rest));
    }
    sure = digits.empty() || digits.find_last_not_of('0') < kSureDigits;
    // The text with its point, so that the result is the double nearest to it.
    const std::string text = (digits.empty() ? "0" : digits) + "e-" + std::to_string(scale);
    double result = 0;
    std::from_chars(text.data(), text.data() + text.size(), result);
    return (static_cast<unsigned char>(number[0]) & 0x80) != 0 ? -result : result;
}

bool IsLong(JetType type) {
    return type == JetType::Memo || type == JetType::LongBinary;
}

} // namespace

JetRows::JetRows(JetPages& pages, const JetText& text, const Definition& table)
    : pages_(pages), text_(text), table_(table), texts_(table.fields.size()), values_(table.fields.size()),
      rounded_(table.fields.size()) {}

void JetRows::ReadAll(const std::function<void(std::span<const database::LoadValue>)>& take) {
    const bool hasLong = std::any_of(table_.fields.begin(), table_.fields.end(),
                                     [](const StoredField& field) { return IsLong(field.type); });
    std::string kept;
    for (const std::uint32_t number : pages_.PagesOf(table_.pages)) {
        Bytes page = pages_.Page(number);
        if (page[0] != 1 || Number(page, 4, 4) != table_.page) {
            continue; // a page that was given up keeps its mark in the list
        }
        if (hasLong) {
            kept = page;
            page = kept;
        }
        const std::size_t count = Number(page, pages_.Places().rowCountAt, 2);
        for (std::size_t row = 0; row < count; ++row) {
            const JetPages::Place place = pages_.PlaceOf(page, row);
            if (!place.gone) {
                ReadRow(page.substr(place.begin, place.end - place.begin));
                take(values_);
            }
        }
    }
}

void JetRows::ReadRow(Bytes row) {
    if (pages_.IsJet3()) {
        TakeApart3(row);
    } else {
        TakeApart(row);
    }
    for (std::size_t i = 0; i < table_.fields.size(); ++i) {
        const StoredField& field = table_.fields[i];
        Bytes bytes;
        const bool there = Find(field, bytes);
        if (field.type == JetType::Boolean) {
            values_[i] = {Kind::Whole, there ? -1 : 0, 0, {}}; // the mark of Null is the value
        } else if (!there || field.calculated) {
            values_[i] = {};
        } else {
            Decode(field, bytes, i);
        }
    }
}

// Number of fields, fixed fields, the others, their places from the last to the first, the count of those,
// the mask of what is not Null.
void JetRows::TakeApart(Bytes row) {
    parts_.row = row;
    parts_.headSize = 2;
    parts_.fieldCount = Number(row, 0, 2);
    const std::size_t maskSize = (parts_.fieldCount + 7) / 8;
    if (row.size() < parts_.headSize + maskSize) {
        RaiseDamaged("the file is damaged: a row is too short");
    }
    const std::size_t maskAt = row.size() - maskSize;
    parts_.mask = row.substr(maskAt);
    parts_.variable.clear();
    if (!table_.hasVariable) {
        return;
    }
    if (maskAt < parts_.headSize + 2) {
        RaiseDamaged("the file is damaged: a row is too short");
    }
    const std::size_t count = Number(row, maskAt - 2, 2);
    if (count * 2 + 4 > maskAt) {
        RaiseDamaged("the file is damaged: a row has more fields than bytes");
    }
    for (std::size_t i = 0; i <= count; ++i) {
        parts_.variable.push_back(Number(row, maskAt - 4 - i * 2, 2));
    }
}

// The same in bytes. A place beyond 255 is told by a list of the fields at which another 256 begin.
void JetRows::TakeApart3(Bytes row) {
    parts_.row = row;
    parts_.headSize = 1;
    parts_.fieldCount = Number(row, 0, 1);
    const std::size_t maskSize = (parts_.fieldCount + 7) / 8;
    if (row.size() < parts_.headSize + maskSize) {
        RaiseDamaged("the file is damaged: a row is too short");
    }
    const std::size_t maskAt = row.size() - maskSize;
    parts_.mask = row.substr(maskAt);
    parts_.variable.clear();
    if (!table_.hasVariable) {
        return;
    }
    std::size_t jumps = (row.size() - 1) / 256;
    if (maskAt < parts_.headSize + 2 + jumps) {
        RaiseDamaged("the file is damaged: a row is too short");
    }
    const std::size_t count = Number(row, maskAt - 1, 1);
    const std::size_t firstPlace = maskAt - 2 - jumps;
    if (count > firstPlace) {
        RaiseDamaged("the file is damaged: a row has more fields than bytes");
    }
    if ((firstPlace - count) / 256 < jumps) {
        --jumps; // the last one is for nothing
    }
    std::size_t used = 0;
    for (std::size_t i = 0; i <= count; ++i) {
        while (used < jumps && i == Number(row, maskAt - 2 - used, 1)) {
            ++used;
        }
        parts_.variable.push_back(Number(row, firstPlace - i, 1) + used * 256);
    }
}

bool JetRows::Find(const StoredField& field, Bytes& bytes) const {
    // A field that came later than the row.
    if (field.number >= parts_.fieldCount ||
        (static_cast<unsigned char>(parts_.mask[field.number / 8]) >> (field.number % 8) & 1) == 0) {
        return false;
    }
    if (field.type == JetType::Boolean) {
        return true;
    }
    if (field.fixed) {
        bytes = Part(parts_.row, parts_.headSize + field.offset, field.length);
        return true;
    }
    if (field.variable + 1 >= parts_.variable.size()) {
        return false;
    }
    const std::size_t begin = parts_.variable[field.variable];
    const std::size_t end = parts_.variable[field.variable + 1];
    if (begin > end) {
        RaiseDamaged("the file is damaged: the fields of a row overlap");
    }
    bytes = Part(parts_.row, begin, end - begin);
    return true;
}

void JetRows::Decode(const StoredField& field, Bytes bytes, std::size_t position) {
    database::LoadValue& value = values_[position];
    std::string& text = texts_[position];
    value = {};
    const auto whole = [&value](std::int64_t number) {
        value.kind = Kind::Whole;
        value.whole = number;
    };
    const auto real = [&value](double number) {
        value.kind = Kind::Real;
        value.real = number;
    };
    const auto told = [&](Kind kind) {
        value.kind = kind;
        value.text = text;
    };
    switch (field.type) {
    case JetType::Byte:
        whole(Number(bytes, 0, 1));
        break;
    case JetType::Integer:
        whole(static_cast<std::int16_t>(Number(bytes, 0, 2)));
        break;
    case JetType::Long:
    case JetType::Complex:
        whole(static_cast<std::int32_t>(Number(bytes, 0, 4)));
        break;
    case JetType::Currency:
        whole(static_cast<std::int64_t>(LongNumber(bytes)));
        break;
    case JetType::Single:
        real(static_cast<double>(std::bit_cast<float>(Number(bytes, 0, 4))));
        break;
    case JetType::Double:
    case JetType::Date:
        real(std::bit_cast<double>(LongNumber(bytes)));
        break;
    case JetType::BigInteger: {
        const auto number = static_cast<std::int64_t>(LongNumber(bytes));
        rounded_[position] += number > kMostSure || number < -kMostSure ? 1 : 0;
        real(static_cast<double>(number));
        break;
    }
    case JetType::Decimal: {
        bool sure = true;
        real(DecimalValue(bytes, field.scale, sure));
        rounded_[position] += sure ? 0 : 1;
        break;
    }
    case JetType::Guid:
        text = GuidText(bytes);
        told(Kind::Text);
        break;
    case JetType::Text:
        text.clear();
        text_.Append(bytes, text);
        told(Kind::Text);
        break;
    case JetType::Memo:
        text.clear();
        text_.Append(pages_.LongValue(bytes), text);
        told(Kind::Text);
        break;
    case JetType::LongBinary:
        text = pages_.LongValue(bytes);
        told(Kind::Bytes);
        break;
    default:
        text = bytes;
        told(Kind::Bytes);
        break;
    }
}

} // namespace quillary::jet_import
