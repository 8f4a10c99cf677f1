#pragma once

#include "platform/controls/date_picker.h"
#include "platform/controls/text_box.h"

// The start dates of the taxes. txt_GSTDate and DatePicker_GSTDate beside it are one array over two pages:
// element 0 lies on the GST page of databases with tax types, 1 on that of databases without, 2 (PAYE) and 3
// (income tax) on the Taxation page. Each page makes its own elements and gives them the routines of here.
namespace quillary::tax {

// Validate and LostFocus of the boxes, DateChanged of the pickers. Both arrays have the same elements and
// live as long as each other.
void AttachGSTDateRoutines(controls::TextBoxArray& txt_GSTDate,
                           controls::DatePickerArray& DatePicker_GSTDate);

// Fills a box and its picker with a date in the short form. A text that is no date goes into the box alone.
void ShowGSTDate(controls::TextBox& box, controls::DatePicker& picker, const runtime::Variant& date);

} // namespace quillary::tax
