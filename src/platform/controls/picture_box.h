#pragma once

#include "platform/controls/control.h"

namespace quillary::controls {

// A picture by its path; empty: none.
class PictureBox : public Control {
public:
    PictureBox(Form& form, std::string name, int index = kNoIndex);

    Property<std::string> Picture{*this, Aspect::Picture};
    Property<bool> Stretch{*this, Aspect::Place, true};

    Outcome Press() override;
    std::optional<std::string> PropertyText(std::string_view property) const override;
};

using PictureBoxArray = ControlArray<PictureBox>;

} // namespace quillary::controls
