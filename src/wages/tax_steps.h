#pragma once

#include "platform/controls/data_control.h"

#include <cstdint>

// The steps of a tax rate: up to which pay which percentage holds. They are edited in the suite's table
// editor, which stamps new steps with their rate.
namespace quillary::wages {

// The steps of the current rate; nothing is checked of the rates' own position. Errors are reported under
// "frm_setup.ShowTaxSteps".
void ShowTaxSteps(controls::DataControl& dat_taxrates);

// The same for any rate in the editor that is open, which closes with them. Errors are reported under
// "frm_setup.SetUpTaxSteps".
void SetUpTaxSteps(std::int32_t taxTypeID);

} // namespace quillary::wages
