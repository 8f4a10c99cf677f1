#include "platform/controls/lists.h"

#include "platform/controls/characters.h"
#include "platform/controls/property_text.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>

namespace quillary::controls {

namespace {

constexpr int kErrInvalidPropertyValue = 380;
constexpr int kErrPropertyReadOnly = 383;
constexpr int kPageEntries = 12; // by which Page Up and Page Down move

} // namespace

ListControl::ListControl(controls::Form& form, std::string name, Kind kind, int index)
    : Control(form, std::move(name), kind, index) {}

ComboBox::ComboBox(controls::Form& form, std::string name, int index)
    : ListControl(form, std::move(name), Kind::ComboBox, index) {}

ListBox::ListBox(controls::Form& form, std::string name, int index)
    : ListControl(form, std::move(name), Kind::ListBox, index) {}

void ListControl::AddItem(std::string_view text, int data, std::optional<int> index) {
    if (index && (*index < 0 || *index > ListCount()))
        throw runtime::RunTimeError(runtime::kErrInvalidProcedureCall);
    auto at = items_.end();
    if (index)
        at = items_.begin() + *index;
    else if (Sorted)
        at = std::upper_bound(items_.begin(), items_.end(), text,
                              [](std::string_view left, const Item& right) {
                                  return runtime::CompareText(left, right.text) < 0;
                              });
    newIndex_ = static_cast<int>(at - items_.begin());
    items_.insert(at, Item{std::string(text), data});
    if (listIndex_ >= newIndex_)
        ++listIndex_;
    Tell(Aspect::List);
}

void ListControl::RemoveItem(int index) {
    if (index < 0 || index >= ListCount())
        throw runtime::RunTimeError(runtime::kErrInvalidProcedureCall);
    items_.erase(items_.begin() + index);
    newIndex_ = -1;
    if (listIndex_ == index)
        listIndex_ = -1;
    else if (listIndex_ > index)
        --listIndex_;
    Tell(Aspect::List);
}

void ListControl::Clear() {
    items_.clear();
    listIndex_ = newIndex_ = -1;
    Tell(Aspect::List);
}

const std::string& ListControl::List(int index) const {
    static const std::string none;
    return index < 0 || index >= ListCount() ? none : items_[static_cast<std::size_t>(index)].text;
}

void ListControl::SetList(int index, std::string text) {
    if (index < 0 || index >= ListCount())
        throw runtime::RunTimeError(runtime::kErrInvalidProcedureCall);
    items_[static_cast<std::size_t>(index)].text = std::move(text);
    Tell(Aspect::List);
}

int ListControl::ItemData(int index) const {
    return index < 0 || index >= ListCount() ? 0 : items_[static_cast<std::size_t>(index)].data;
}

void ListControl::SetItemData(int index, int data) {
    if (index < 0 || index >= ListCount())
        throw runtime::RunTimeError(runtime::kErrInvalidProcedureCall);
    items_[static_cast<std::size_t>(index)].data = data;
}

int ListControl::FindData(int data) const {
    auto found = std::find_if(items_.begin(), items_.end(), [data](const Item& i) { return i.data == data; });
    return found == items_.end() ? -1 : static_cast<int>(found - items_.begin());
}

int ListControl::FindText(std::string_view text) const {
    // The very text goes before one that differs in case alone.
    auto found = std::find_if(items_.begin(), items_.end(), [&](const Item& i) { return i.text == text; });
    if (found == items_.end())
        found = std::find_if(items_.begin(), items_.end(),
                             [&](const Item& i) { return runtime::EqualText(i.text, text); });
    return found == items_.end() ? -1 : static_cast<int>(found - items_.begin());
}

void ListControl::WriteListIndex(int index) {
    if (index < -1 || index >= ListCount())
        throw runtime::RunTimeError(kErrInvalidPropertyValue, "Controls",
                                    FullName() + ".ListIndex: Invalid property value");
    if (listIndex_ == index)
        return;
    listIndex_ = index;
    Tell(Aspect::ListIndex);
}

std::string ListControl::ReadText() const {
    return List(listIndex_);
}

void ListControl::WriteText(std::string text) {
    const int index = FindText(text);
    if (index < 0 && !text.empty())
        throw runtime::RunTimeError(kErrPropertyReadOnly, "Controls",
                                    FullName() + ".Text: the list has no entry '" + text + "'");
    WriteListIndex(index);
}

void ListControl::UserChooses(int entry) {
    listIndex_ = entry;
    Tell(Aspect::ListIndex);
    Click.Raise();
}

Outcome ListControl::Choose(int entry) {
    if (Outcome reached = Reach(); !reached)
        return reached;
    if (entry < 0 || entry >= ListCount())
        return Outcome::Impossible(FullName() + " has no entry " + std::to_string(entry));
    UserChooses(entry);
    return Outcome::Done();
}

Outcome ListControl::ChooseText(std::string_view text) {
    // The focus may fill the list, so it goes first.
    if (Outcome reached = Reach(); !reached)
        return reached;
    const int entry = FindText(text);
    if (entry < 0)
        return Outcome::Impossible(FullName() + " has no entry '" + std::string(text) + "'");
    return Choose(entry);
}

Outcome ListControl::Press() {
    if (Outcome reached = Reach(); !reached)
        return reached;
    if (listIndex_ < 0)
        return Outcome::Impossible(FullName() + " has no selected entry");
    Click.Raise();
    return Outcome::Done();
}

Outcome ListControl::DoublePress() {
    if (Outcome pressed = Press(); !pressed)
        return pressed;
    DblClick.Raise();
    return Outcome::Done();
}

bool ListControl::ApplyKey(const Key& key) {
    if (key.shift & (kCtrlMask | kAltMask))
        return false;
    int entry = listIndex_;
    switch (key.character > 32 ? 0 : key.code) {
    case kKeyUp:
        entry = std::max(entry - 1, 0);
        break;
    case kKeyDown:
        entry = std::min(entry + 1, ListCount() - 1);
        break;
    case kKeyPageUp:
        entry = std::max(entry - kPageEntries, 0);
        break;
    case kKeyPageDown:
        entry = std::min(entry + kPageEntries, ListCount() - 1);
        break;
    case kKeyHome:
        entry = 0;
        break;
    case kKeyEnd:
        entry = ListCount() - 1;
        break;
    case 0: {
        if (key.character <= 32)
            return false;
        // The next entry that begins with the letter, round the end.
        const std::string letter = Utf8(static_cast<char32_t>(key.character));
        for (int step = 1; step <= ListCount(); ++step) {
            const int candidate = (std::max(listIndex_, -1) + step) % ListCount();
            if (runtime::EqualText(runtime::LeftChars(List(candidate), 1), letter)) {
                entry = candidate;
                break;
            }
        }
        break;
    }
    default:
        return false;
    }
    if (entry != listIndex_ && entry < ListCount())
        UserChooses(entry);
    return true;
}

std::optional<std::string> ListControl::PropertyText(std::string_view property) const {
    const PropertyName asked = ParsePropertyName(property);
    if (asked.name == "text")
        return ReadText();
    if (asked.name == "listindex")
        return std::to_string(listIndex_);
    if (asked.name == "listcount")
        return std::to_string(ListCount());
    if (asked.name == "itemdata" || asked.name == "list") {
        if (!asked.arguments.empty()) {
            const std::optional<int> index = WholeNumber(asked.arguments.front());
            if (!index || *index < 0 || *index >= ListCount())
                return std::nullopt;
            return asked.name == "list" ? List(*index) : std::to_string(ItemData(*index));
        }
        if (asked.name == "itemdata")
            return std::to_string(ItemData(listIndex_));
        std::string all;
        for (const Item& item : items_)
            all += (&item == items_.data() ? "" : "|") + item.text;
        return all;
    }
    return Control::PropertyText(property);
}

} // namespace quillary::controls
