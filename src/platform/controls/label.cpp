#include "platform/controls/label.h"

#include "platform/controls/data_control.h"
#include "platform/controls/property_text.h"
#include "platform/runtime/conversions.h"

namespace quillary::controls {

Label::Label(controls::Form& form, std::string name, int index)
    : Control(form, std::move(name), Kind::Label, index) {}

Label::~Label() {
    binding_.Detach(*this);
}

void Label::Bind(DataControl& source, std::string field) {
    binding_.Attach(*this, source, std::move(field));
}

std::string Label::CaptionText() const {
    return UseMnemonic ? Caption.Get() : LiteralCaption(Caption.Get());
}

Outcome Label::Press() {
    if (Outcome reached = Reach(); !reached)
        return reached;
    Click.Raise();
    return Outcome::Done();
}

std::optional<std::string> Label::PropertyText(std::string_view property) const {
    if (ParsePropertyName(property).name == "caption")
        return Caption.Get();
    return Control::PropertyText(property);
}

void Label::ShowRecord(database::Recordset* record) {
    Caption.Store(runtime::TextOf(binding_.ValueIn(record)));
    Tell(Aspect::Caption);
}

} // namespace quillary::controls
