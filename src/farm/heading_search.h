#pragma once

#include "platform/controls/data_control.h"
#include "platform/controls/label.h"
#include "platform/controls/panel.h"
#include "platform/controls/text_box.h"

#include <functional>

namespace quillary::farm {

// The box above the list of headings: what is typed there is looked for in names and numbers, and the heading
// found becomes the data control's current record. Enter goes to the next one, Down to the list.
class HeadingSearch {
public:
    // headings: with the fields Account Code and Account Name. goToList: puts the focus on the list.
    HeadingSearch(controls::Form& form, controls::DataControl& headings, std::function<void()> goToList);

    controls::Label lbl_Find;
    controls::TextBox txt_Find;
    controls::Label lbl_FindResult; // says that nothing was found

    void PlaceIn(controls::Panel& panel);

private:
    void txt_Find_KeyPress(int& keyAscii);
    void txt_Find_KeyDown(int& keyCode);
    void FindHeading(bool next);

    controls::DataControl& headings_;
    std::function<void()> goToList_;
};

} // namespace quillary::farm
