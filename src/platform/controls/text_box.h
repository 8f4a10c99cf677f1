#pragma once

#include "platform/controls/control.h"
#include "platform/controls/data_bound.h"

namespace quillary::controls {

// A text that the user types. Line ends within are CR LF.
class TextBox : public Control, private DataBound {
public:
    TextBox(Form& form, std::string name, int index = kNoIndex);
    ~TextBox() override;

    Property<std::string> Text{*this, Aspect::Text};
    Property<int> MaxLength{*this, Aspect::Limits, 0};   // characters; 0: no limit. Binds the user, not code
    Property<bool> Locked{*this, Aspect::Limits, false}; // the user reads and copies, but changes nothing
    Property<bool> MultiLine{*this, Aspect::Limits, false};
    Property<int> SelStart{*this, Aspect::Selection, 0}; // characters
    Property<int> SelLength{*this, Aspect::Selection, 0};
    // The text differs from what the bound record gave: it is written at the data control's next update.
    Property<bool> DataChanged{*this, Aspect::Other, false};

    Event<> Change{*this, "Change"}; // each change that the user makes

    void Bind(DataControl& source, std::string field);
    DataControl* DataSource() const noexcept { return binding_.Source(); }
    const std::string& DataField() const noexcept { return binding_.Field(); }

    Outcome TypeText(std::string_view text) override;
    // For views whose widget edits by itself: the text as the user has changed it. Keys have gone through
    // Form::FilterKey before.
    void UserEdits(std::string text, int selStart);
    std::optional<std::string> PropertyText(std::string_view property) const override;

protected:
    bool TakesFocus() const override { return true; }
    void OnPropertySet(Aspect aspect) override;
    bool ApplyKey(const Key& key) override;
    // What the box holds is selected, so that typing replaces it; a click of the mouse places the cursor
    // afterwards.
    void FocusComes() override;

private:
    bool HasChanges() const override { return DataChanged; }
    void WriteChanges(database::Recordset& record) override;
    void ChangesWritten() override;
    void ShowRecord(database::Recordset* record) override;
    void SourceGone() override { binding_.Forget(); }
    void ReplaceSelection(std::string_view text);
    FieldBinding binding_;
};

using TextBoxArray = ControlArray<TextBox>;

} // namespace quillary::controls
