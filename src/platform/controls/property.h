#pragma once

#include "platform/runtime/variant.h"

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace quillary::controls {

// What changed about a control, a column, a form or a menu entry: told to its owner when a property is
// set from code, and to the view, which then draws that much anew.
enum class Aspect : std::uint8_t {
    Text,
    Caption,
    Value,
    Range, // Min, Max of an up-down control
    Visible,
    Enabled,
    ToolTip,
    Colour,
    Font,
    Place, // Left, Top, Width, Height, alignment
    Order, // brought to the top of its stack; TabIndex
    Picture,
    Layout,
    List,      // the entries of a list, the captions of a tab strip
    ListIndex, // the selected entry
    CurrTab,
    Selection, // SelStart, SelLength
    Limits,    // MaxLength, Locked, MultiLine, Style: how it takes input
    Columns,   // the grid's columns, captions, widths, value lists
    Rows,      // the grid's rows as a whole
    Row,       // the grid's current row or column
    Cells,     // values of the grid's current row, its edit
    Pointer,   // mouse pointer
    Focus,     // the control that has the focus (told by the form)
    Controls,  // a control was added to or taken from the form
    Shown,     // the form was shown or hidden
    Other,     // nothing that is seen
};

// The side of a control that its properties report to.
class PropertyOwner {
public:
    // A property was set from code to another value.
    virtual void PropertySet(Aspect aspect) = 0;

protected:
    ~PropertyOwner() = default;
};

// A value of a control that page code reads and sets like the suite's own:
// `txt_FinYear.Text = text; if (cboUnits.Text == "acres")`. Setting raises no event of the control.
// Setting the value that it has does nothing.
template <class T>
class Property {
public:
    using ValueType = T;

    Property(PropertyOwner& owner, Aspect aspect, T initial = T{})
        : owner_(owner), value_(std::move(initial)), aspect_(aspect) {}
    Property(const Property&) = delete;

    Property& operator=(const Property& other) {
        Set(other.value_);
        return *this;
    }
    template <class U>
    requires std::convertible_to<U&&, T> Property& operator=(U&& value) {
        Set(static_cast<T>(std::forward<U>(value)));
        return *this;
    }

    const T& Get() const noexcept { return value_; }
    operator const T&() const noexcept { return value_; }
    operator std::string_view() const noexcept requires std::same_as<T, std::string> { return value_; }
    operator runtime::Variant() const requires std::constructible_from<runtime::Variant, T> {
        return runtime::Variant(value_);
    }
    bool empty() const noexcept requires std::same_as<T, std::string> { return value_.empty(); }

    void Set(T value) {
        if (value_ == value)
            return;
        value_ = std::move(value);
        owner_.PropertySet(aspect_);
    }

    // For the control itself: takes a value without telling the owner.
    void Store(T value) { value_ = std::move(value); }

private:
    PropertyOwner& owner_;
    T value_;
    Aspect aspect_;
};

// A property that its control works out: ReadFrom is a const member function of Owner without arguments,
// WriteTo one that takes a T.
template <class T, class Owner, auto ReadFrom, auto WriteTo>
class ComputedProperty {
public:
    using ValueType = T;

    explicit ComputedProperty(Owner& owner) : owner_(owner) {}
    ComputedProperty(const ComputedProperty&) = delete;

    ComputedProperty& operator=(const ComputedProperty& other) {
        Set(other.Get());
        return *this;
    }
    template <class U>
    requires std::convertible_to<U&&, T> ComputedProperty& operator=(U&& value) {
        Set(static_cast<T>(std::forward<U>(value)));
        return *this;
    }

    T Get() const { return (owner_.*ReadFrom)(); }
    operator T() const { return Get(); }
    operator runtime::Variant() const
        requires(std::constructible_from<runtime::Variant, T> && !std::same_as<T, runtime::Variant>) {
        return runtime::Variant(Get());
    }
    bool empty() const requires std::same_as<T, std::string> { return Get().empty(); }
    void Set(T value) { (owner_.*WriteTo)(std::move(value)); }

private:
    Owner& owner_;
};

template <class P>
concept PropertyLike = requires(const P& property) {
    typename P::ValueType;
    { property.Get() } -> std::convertible_to<typename P::ValueType>;
};

template <PropertyLike P, class U>
requires(!PropertyLike<U>) bool operator==(const P& property, const U& value) {
    return property.Get() == value;
}
template <PropertyLike P, PropertyLike Q>
bool operator==(const P& left, const Q& right) {
    return left.Get() == right.Get();
}

template <PropertyLike P, class U>
requires(!PropertyLike<U> && std::same_as<typename P::ValueType, std::string>) std::string
operator+(const P& property, const U& value) {
    return property.Get() + value;
}
template <PropertyLike P, class U>
requires(!PropertyLike<U> && std::same_as<typename P::ValueType, std::string>) std::string
operator+(const U& value, const P& property) {
    return value + property.Get();
}

} // namespace quillary::controls
