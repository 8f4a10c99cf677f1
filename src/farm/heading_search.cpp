#include "farm/heading_search.h"

#include "common/error_report.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"

#include <string>
#include <string_view>
#include <utility>

namespace quillary::farm {

namespace {

constexpr int kEnter = 13;

// A text as a literal of the database's language.
std::string Literal(std::string_view text) {
    std::string quoted = "'";
    for (const char c : text) {
        quoted += c;
        if (c == '\'')
            quoted += c;
    }
    return quoted + "'";
}

} // namespace

HeadingSearch::HeadingSearch(controls::Form& form, controls::DataControl& headings,
                             std::function<void()> goToList)
    : lbl_Find(form, "lbl_Find"), txt_Find(form, "txt_Find"), lbl_FindResult(form, "lbl_FindResult"),
      headings_(headings), goToList_(std::move(goToList)) {
    lbl_Find.Caption = "&Find";
    txt_Find.SetBuddy(&lbl_Find);
    txt_Find.ToolTip = "Part of a heading's name, or its number. Enter goes to the next one.";
    txt_Find.Change = [this] { common::Trap("frm_setup.txt_Find_Change", [&] { FindHeading(false); }); };
    txt_Find.KeyPress = [this](int& keyAscii) { txt_Find_KeyPress(keyAscii); };
    txt_Find.KeyDown = [this](int& keyCode, int) { txt_Find_KeyDown(keyCode); };
}

void HeadingSearch::PlaceIn(controls::Panel& panel) {
    lbl_Find.PlaceIn(panel);
    txt_Find.PlaceIn(panel);
    lbl_FindResult.PlaceIn(panel);
}

void HeadingSearch::txt_Find_KeyPress(int& keyAscii) {
    if (keyAscii != kEnter)
        return;
    keyAscii = 0;
    common::Trap("frm_setup.txt_Find_KeyPress", [&] { FindHeading(true); });
}

void HeadingSearch::txt_Find_KeyDown(int& keyCode) {
    if (keyCode != controls::kKeyDown)
        return;
    keyCode = 0;
    common::Trap("frm_setup.txt_Find_KeyDown", goToList_);
}

void HeadingSearch::FindHeading(bool next) {
    lbl_FindResult.Caption = "";
    const std::string text = txt_Find.Text;
    if (text.empty() || !headings_.HasRecord())
        return;
    auto& headings = headings_.Recordset();
    const std::string length = std::to_string(runtime::CharCount(text));
    const std::string begins = "Left([Account Name]," + length + ")=" + Literal(text);
    const std::string matches = "InStr(1,[Account Name]," + Literal(text) +
                                ",1)>0 Or Left([Account Code] & ''," + length + ")=" + Literal(text);
    if (next)
        headings.FindNext(matches);
    else
        headings.FindFirst(begins);
    // A name that begins so goes first, then one that holds it, or a number.
    if (headings.NoMatch())
        headings.FindFirst(matches);
    if (headings.NoMatch())
        lbl_FindResult.Caption = "No heading here has this in its name.";
}

} // namespace quillary::farm
