#include "platform/controls/picture_box.h"

#include "platform/controls/property_text.h"

namespace quillary::controls {

PictureBox::PictureBox(controls::Form& form, std::string name, int index)
    : Control(form, std::move(name), Kind::PictureBox, index) {}

Outcome PictureBox::Press() {
    if (Outcome reached = Reach(); !reached)
        return reached;
    Click.Raise();
    return Outcome::Done();
}

std::optional<std::string> PictureBox::PropertyText(std::string_view property) const {
    if (ParsePropertyName(property).name == "picture")
        return Picture.Get();
    return Control::PropertyText(property);
}

} // namespace quillary::controls
