#pragma once

#include "platform/controls/control.h"
#include "platform/controls/data_bound.h"

namespace quillary::controls {

// A text on the screen. An "&" marks the accelerator of the control after it; "&&" shows one "&", and so does
// an "&" before a blank. Without UseMnemonic the text is shown as it stands.
class Label : public Control, private DataBound {
public:
    Label(Form& form, std::string name, int index = kNoIndex);
    ~Label() override;

    Property<std::string> Caption{*this, Aspect::Caption};
    Property<bool> UseMnemonic{*this, Aspect::Caption, true};
    Property<bool> WordWrap{*this, Aspect::Limits, true};

    void Bind(DataControl& source, std::string field);
    // With each "&" of a text without accelerators doubled.
    std::string CaptionText() const override;
    Outcome Press() override;
    std::optional<std::string> PropertyText(std::string_view property) const override;

private:
    bool HasChanges() const override { return false; }
    void WriteChanges(database::Recordset&) override {}
    void ChangesWritten() override {}
    void ShowRecord(database::Recordset* record) override;
    void SourceGone() override { binding_.Forget(); }
    FieldBinding binding_;
};

using LabelArray = ControlArray<Label>;

} // namespace quillary::controls
