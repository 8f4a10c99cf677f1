#include "platform/controls/text_box.h"

#include "platform/controls/characters.h"
#include "platform/controls/data_control.h"
#include "platform/controls/form.h"
#include "platform/controls/property_text.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"

#include <algorithm>

namespace quillary::controls {

namespace {

int Length(std::string_view text) {
    return static_cast<int>(runtime::CharCount(text));
}

} // namespace

TextBox::TextBox(controls::Form& form, std::string name, int index)
    : Control(form, std::move(name), Kind::TextBox, index) {}

TextBox::~TextBox() {
    binding_.Detach(*this);
}

void TextBox::Bind(DataControl& source, std::string field) {
    binding_.Attach(*this, source, std::move(field));
}

void TextBox::OnPropertySet(Aspect aspect) {
    if (aspect != Aspect::Text)
        return;
    DataChanged.Store(true);
    SelStart.Store(Length(Text));
    SelLength.Store(0);
}

void TextBox::FocusComes() {
    if (MultiLine)
        return;
    SelStart.Store(0);
    SelLength.Store(Length(Text));
}

Outcome TextBox::TypeText(std::string_view text) {
    if (Outcome reached = Reach(); !reached)
        return reached;
    if (Locked)
        return Outcome::Refused(FullName() + " is locked");
    SelStart.Store(0);
    SelLength.Store(Length(Text));
    Tell(Aspect::Selection);
    std::vector<Key> keys;
    char32_t former = 0;
    for (char32_t character : Characters(text)) {
        if (character != '\n' || former != '\r') // CR LF is one Enter
            keys.push_back(KeyOfCharacter(character));
        former = character;
    }
    if (keys.empty() && !Text.empty())
        keys.push_back({kKeyDelete, 0, 0});
    for (const Key& key : keys) {
        if (Outcome pressed = PressKey(key); !pressed)
            return pressed;
        if (!HasFocus()) // a routine has sent the focus elsewhere
            break;
    }
    return Outcome::Done();
}

void TextBox::UserEdits(std::string text, int selStart) {
    SelStart.Store(selStart);
    SelLength.Store(0);
    if (text == Text)
        return;
    Text.Store(std::move(text));
    DataChanged.Store(true);
    Tell(Aspect::Text);
    Change.Raise();
}

void TextBox::ReplaceSelection(std::string_view text) {
    const std::string& whole = Text;
    const auto start = static_cast<std::size_t>(SelStart.Get());
    const auto behind = start + static_cast<std::size_t>(SelLength.Get());
    std::string result(runtime::LeftChars(whole, start));
    result += text;
    result += runtime::MidChars(whole, behind + 1);
    UserEdits(std::move(result), SelStart + Length(text));
}

bool TextBox::ApplyKey(const Key& key) {
    if (key.shift & (kCtrlMask | kAltMask))
        return false;
    const int length = Length(Text);
    auto moveTo = [&](int place) {
        SelStart.Store(std::clamp(place, 0, length));
        SelLength.Store(0);
        Tell(Aspect::Selection);
        return true;
    };
    switch (key.code) {
    case kKeyEscape:
    case kKeyTab:
        return false;
    case kKeyReturn:
        if (!MultiLine)
            return false;
        if (!Locked)
            ReplaceSelection("\r\n");
        return true;
    case kKeyBack:
    case kKeyDelete:
        if (Locked)
            return true;
        if (SelLength == 0) {
            if (key.code == kKeyBack && SelStart == 0)
                return true;
            if (key.code == kKeyBack)
                SelStart.Store(SelStart - 1);
            SelLength.Store(std::min(1, length - SelStart));
        }
        ReplaceSelection({});
        return true;
    default:
        break;
    }
    if (key.character < 32) {
        switch (key.code) {
        case kKeyLeft:
            return moveTo(SelStart - 1);
        case kKeyRight:
            return moveTo(SelStart + SelLength + 1);
        case kKeyHome:
            return moveTo(0);
        case kKeyEnd:
            return moveTo(length);
        default:
            return false;
        }
    }
    if (!Locked && (MaxLength == 0 || length - SelLength < MaxLength))
        ReplaceSelection(Utf8(static_cast<char32_t>(key.character)));
    return true;
}

std::optional<std::string> TextBox::PropertyText(std::string_view property) const {
    const std::string name = ParsePropertyName(property).name;
    if (name == "text")
        return Text.Get();
    if (name == "datachanged")
        return BoolText(DataChanged);
    if (name == "maxlength")
        return std::to_string(MaxLength.Get());
    if (name == "locked")
        return BoolText(Locked);
    return Control::PropertyText(property);
}

void TextBox::WriteChanges(database::Recordset&) {
    binding_.Store(runtime::Variant(Text.Get()));
}

void TextBox::ChangesWritten() {
    DataChanged.Store(false);
}

void TextBox::ShowRecord(database::Recordset* record) {
    Text.Store(runtime::TextOf(binding_.ValueIn(record)));
    DataChanged.Store(false);
    SelStart.Store(Length(Text));
    SelLength.Store(0);
    Tell(Aspect::Text);
}

} // namespace quillary::controls
