#pragma once

#include "platform/controls/property.h"
#include "platform/runtime/variant.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace quillary::controls {

class Grid;

// The suite's pictures for True and False.
inline constexpr int kTickedPicture = 102;
inline constexpr int kClearPicture = 103;

// One entry of a column's value list: a stored value and what the user sees in its place.
struct ValueItem {
    runtime::Variant value;
    std::string displayValue;
    int picture = 0; // number of a picture in the suite's resources; 0: none
};

// How cells of a column with a value list are shown and edited.
enum class Presentation {
    Normal,   // text; typed, translated by the list
    DropDown, // text; the list drops down to choose from
    Pictures, // the items' pictures; a click makes the next value
};

// The value list of a column. Values are matched by what they mean: True, "True" and -1 are one, 5 and "5"
// too; Null, Empty and "" are one.
class ValueItems {
    PropertyOwner& owner_; // before the properties, which refer to it

public:
    explicit ValueItems(PropertyOwner& owner) : owner_(owner) {}

    void Add(runtime::Variant value, std::string displayValue, int picture = 0);
    void Clear();
    int Count() const noexcept { return static_cast<int>(items_.size()); }
    const ValueItem& operator[](int item) const; // 9
    // Position of the item that stands for a stored value, or that the user reads so (without case); -1.
    int FindValue(const runtime::Variant& value) const;
    int FindShown(std::string_view text) const;

    Property<bool> Translate{owner_, Aspect::Columns, false};
    Property<controls::Presentation> Presentation{owner_, Aspect::Columns, controls::Presentation::Normal};
    // A click on a picture makes the next value when AfterColEdit leaves the cell as it was clicked.
    Property<bool> CycleOnClick{owner_, Aspect::Columns, true};

private:
    std::vector<ValueItem> items_;
    std::unordered_map<std::string, int> byValue_;
};

// A column of a grid. Text and Value are those of the cell in the current row, with what was typed into it
// and is not written yet.
class Column : public PropertyOwner {
public:
    explicit Column(Grid& grid) : grid_(grid) {}
    Column(const Column&) = delete;
    Column& operator=(const Column&) = delete;

    Property<std::string> Caption{*this, Aspect::Columns};
    // The field of the data control that it shows; beside a QYxArray the column's position counts instead.
    Property<std::string> DataField{*this, Aspect::Columns};
    Property<int> Width{*this, Aspect::Columns, 1440}; // twips
    Property<bool> Visible{*this, Aspect::Columns, true};
    Property<bool> Locked{*this, Aspect::Columns, false};       // the user cannot edit it
    Property<std::string> NumberFormat{*this, Aspect::Columns}; // of runtime::Format
    enum class Align { General, Left, Right, Centre };
    Property<Align> Alignment{*this, Aspect::Columns, Align::General}; // General: numbers right, text left
    Property<bool> Button{*this, Aspect::Columns, false};
    Property<bool> FetchStyle{*this, Aspect::Columns, true};       // FetchCellStyle is asked for its cells
    Property<runtime::Variant> DefaultValue{*this, Aspect::Other}; // of a new row; Empty: none
    Property<int> MaxLength{*this, Aspect::Columns, 0}; // characters the user may type; 0: no limit

    controls::ValueItems ValueItems{*this};

private:
    std::string ReadText() const;
    void WriteText(std::string text);
    runtime::Variant ReadValue() const;
    void WriteValue(runtime::Variant value);

public:
    // What the user reads in the cell (of a picture, the value's text). Setting takes what is shown, where
    // there is a value list.
    ComputedProperty<std::string, Column, &Column::ReadText, &Column::WriteText> Text{*this};
    // The stored value, or the one that was typed: text as typed, the item's value where there is a value
    // list. Null without a current row. Setting it is an edit without events: the row is pending then.
    ComputedProperty<runtime::Variant, Column, &Column::ReadValue, &Column::WriteValue> Value{*this};

    // Position in the grid, from 0.
    int ColIndex() const;
    // The cell of another row; "" and Null when there is no such row.
    std::string CellText(std::int64_t bookmark) const;
    runtime::Variant CellValue(std::int64_t bookmark) const;
    // A stored value as this column shows it.
    std::string Shown(const runtime::Variant& value) const;
    // What a text means to this column: the value of the item that reads so, else the text itself.
    runtime::Variant Typed(std::string_view text) const;
    bool ShowsPictures() const { return ValueItems.Presentation == Presentation::Pictures; }

    void PropertySet(Aspect aspect) override;

private:
    Grid& grid_;
};

} // namespace quillary::controls
