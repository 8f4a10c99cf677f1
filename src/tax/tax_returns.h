#pragma once

#include "platform/runtime/variant.h"

#include <string>

// What a new start date of the tax periods brings with it: returns that have been generated from the former
// one are no longer right.
namespace quillary::tax {

// Asks whether the start date is meant to change; True for Yes. After an error, which is reported under
// "ValidateGSTDate", it is False.
bool ValidateGSTDate(const std::string& dateText);

// Offers to delete the returns from the date on and to clear their links on the transactions, so that they
// can be generated again. No transaction: what is done when a statement fails stays done. A failing
// statement is told in a message, any other error reported under "ResetTaxReturns".
void ResetTaxReturns(const std::string& dateText);

// "#04/15/2007#", month first under any regional settings.
std::string JetDateLiteral(runtime::Date date);

} // namespace quillary::tax
