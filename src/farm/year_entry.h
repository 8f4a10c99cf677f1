#pragma once

#include "platform/controls/date_picker.h"
#include "platform/controls/text_box.h"

#include <string_view>

// Dates typed into a text box that has a date picker beside it: the years of the farm and the planner page.
namespace quillary::farm {

// True when the text is a date under the regional settings. caption names the date in no message. Errors
// are reported under "frm_setup.CheckTextDate".
bool CheckTextDate(std::string_view text, std::string_view caption);

// What leaving the box does: a date turns black, is rewritten in the short form and given to the picker; any
// other text turns red and stays, without a message.
void AcceptTextDate(controls::TextBox& box, controls::DatePicker& picker, std::string_view caption);

// What picking a date does: the box shows it in the short form, black.
void ShowPickedDate(const controls::DatePicker& picker, controls::TextBox& box);

// A value as "short date" text; a text that is no date stays as it is.
std::string ShortDateText(const runtime::Variant& value);

} // namespace quillary::farm
