#include "platform/controls/grid_columns.h"

#include "platform/controls/grid.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/format.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

namespace quillary::controls {

namespace {

using runtime::Variant;
using runtime::VarType;

// A key that is equal for values that mean the same.
std::string ValueKey(const Variant& value) {
    switch (value.Type()) {
    case VarType::Empty:
    case VarType::Null:
        return {};
    case VarType::Boolean:
        return value.Get<bool>() ? "-1" : "0";
    case VarType::String: {
        const std::string& text = value.Get<std::string>();
        if (runtime::EqualName(text, "True"))
            return "-1";
        if (runtime::EqualName(text, "False"))
            return "0";
        if (std::optional<double> number = runtime::ParseNumber(text))
            return runtime::NumberText(*number);
        return "t" + runtime::FoldText(text);
    }
    case VarType::Date:
        return "t" + runtime::FoldText(runtime::TextOf(value));
    default:
        return runtime::NumberText(runtime::CDbl(value));
    }
}

} // namespace

// ---- Value lists

void ValueItems::Add(Variant value, std::string displayValue, int picture) {
    // Of two items with one value the first is shown.
    byValue_.emplace(ValueKey(value), Count());
    items_.push_back({std::move(value), std::move(displayValue), picture});
    owner_.PropertySet(Aspect::Columns);
}

void ValueItems::Clear() {
    items_.clear();
    byValue_.clear();
    owner_.PropertySet(Aspect::Columns);
}

const ValueItem& ValueItems::operator[](int item) const {
    if (item < 0 || item >= Count())
        throw runtime::RunTimeError(runtime::kErrSubscriptOutOfRange);
    return items_[static_cast<std::size_t>(item)];
}

int ValueItems::FindValue(const Variant& value) const {
    auto found = byValue_.find(ValueKey(value));
    return found == byValue_.end() ? -1 : found->second;
}

int ValueItems::FindShown(std::string_view text) const {
    for (int item = 0; item < Count(); ++item)
        if (runtime::EqualText(items_[static_cast<std::size_t>(item)].displayValue, text))
            return item;
    return -1;
}

// ---- Columns

int Column::ColIndex() const {
    return grid_.PositionOf(*this);
}

void Column::PropertySet(Aspect aspect) {
    grid_.ColumnSet(aspect);
}

std::string Column::Shown(const Variant& value) const {
    if (ValueItems.Translate || ShowsPictures()) {
        const int item = ValueItems.FindValue(value);
        if (item >= 0 && !ShowsPictures())
            return ValueItems[item].displayValue;
        if (item >= 0)
            return runtime::TextOf(ValueItems[item].value);
    }
    if (NumberFormat.empty())
        return runtime::TextOf(value);
    return runtime::Format(value, NumberFormat);
}

Variant Column::Typed(std::string_view text) const {
    if (ValueItems.Translate || ShowsPictures()) {
        int item = ShowsPictures() ? -1 : ValueItems.FindShown(text);
        if (item < 0 && !text.empty())
            item = ValueItems.FindValue(Variant(text));
        if (item >= 0)
            return ValueItems[item].value;
    }
    // What is shown as a percentage may be typed as one.
    if (runtime::EqualName(NumberFormat.Get(), "Percent") && runtime::Trim(text).ends_with('%')) {
        const std::string_view number = runtime::Trim(text);
        if (const auto percent = runtime::ParseNumber(runtime::Trim(number.substr(0, number.size() - 1))))
            return Variant(runtime::CStr(*percent / 100));
    }
    return Variant(text);
}

std::string Column::ReadText() const {
    return Shown(ReadValue());
}

void Column::WriteText(std::string text) {
    WriteValue(Typed(text));
}

Variant Column::ReadValue() const {
    return grid_.CellValue(grid_.Row, ColIndex());
}

void Column::WriteValue(Variant value) {
    grid_.SetPending(ColIndex(), std::move(value));
}

std::string Column::CellText(std::int64_t bookmark) const {
    return Shown(CellValue(bookmark));
}

Variant Column::CellValue(std::int64_t bookmark) const {
    const long row = grid_.Rows() ? grid_.Rows()->RowOf(bookmark) : -1;
    return row < 0 ? Variant::Null() : grid_.CellValue(row, ColIndex());
}

} // namespace quillary::controls
