#include "platform/controls/date_picker.h"

#include "platform/controls/property_text.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/format.h"

namespace quillary::controls {

DatePicker::DatePicker(controls::Form& form, std::string name, int index)
    : Control(form, std::move(name), Kind::DatePicker, index) {}

runtime::Variant DatePicker::ReadDate() const {
    return date_ ? runtime::Variant(*date_) : runtime::Variant::Null();
}

void DatePicker::WriteDate(runtime::Variant value) {
    std::optional<runtime::Date> date;
    if (!runtime::TextOf(value).empty())
        date = runtime::CDate(value);
    if (date == date_)
        return;
    date_ = date;
    Tell(Aspect::Value);
}

std::string DatePicker::ReadText() const {
    return date_ ? runtime::Format(runtime::Variant(*date_), Format) : std::string();
}

void DatePicker::WriteText(std::string text) {
    WriteDate(runtime::Variant(std::move(text)));
}

Outcome DatePicker::Pick(runtime::Date date) {
    if (Outcome reached = Reach(); !reached)
        return reached;
    date_ = date;
    Tell(Aspect::Value);
    DateChanged.Raise();
    return Outcome::Done();
}

std::optional<std::string> DatePicker::PropertyText(std::string_view property) const {
    const std::string name = ParsePropertyName(property).name;
    if (name == "text" || name == "value")
        return ReadText();
    if (name == "date")
        return date_ ? runtime::IsoText(*date_) : std::string();
    return Control::PropertyText(property);
}

} // namespace quillary::controls
