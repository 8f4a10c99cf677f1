#pragma once

#include "platform/controls/control.h"

namespace quillary::controls {

// A date picked from a calendar. It may be without a date.
class DatePicker : public Control {
public:
    DatePicker(Form& form, std::string name, int index = kNoIndex);

    // How the picked date is shown: a format of runtime::Format.
    Property<std::string> Format{*this, Aspect::Value, "dd/mm/yyyy"};

    // The user has picked a date (the same one too). Dates set from code raise nothing.
    Event<> DateChanged{*this, "DateChanged"};

    std::optional<runtime::Date> Date() const noexcept { return date_; }

private:
    runtime::Variant ReadDate() const;
    void WriteDate(runtime::Variant value);
    std::string ReadText() const;
    void WriteText(std::string text);

public:
    // The date, Null without one. Takes a date or a text that reads as one (13 otherwise); Null, Empty
    // and "" clear it.
    ComputedProperty<runtime::Variant, DatePicker, &DatePicker::ReadDate, &DatePicker::WriteDate> Value{
        *this};
    // The same value under the name that the suite's picker has for it.
    ComputedProperty<runtime::Variant, DatePicker, &DatePicker::ReadDate, &DatePicker::WriteDate>
        DateSelected{*this};
    // The date in Format, else "". Set like Value.
    ComputedProperty<std::string, DatePicker, &DatePicker::ReadText, &DatePicker::WriteText> Text{*this};

    Outcome Pick(runtime::Date date) override;
    std::optional<std::string> PropertyText(std::string_view property) const override; // Date: YYYY-MM-DD

protected:
    bool TakesFocus() const override { return true; }

private:
    std::optional<runtime::Date> date_;
};

using DatePickerArray = ControlArray<DatePicker>;

} // namespace quillary::controls
