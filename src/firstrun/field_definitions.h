#pragma once

#include <string_view>

// The diary's definitions of what it records, each kept in an imperial and a metric form.
namespace quillary::firstrun {

// Copies one form, prefix "Imperial" or "Metric", into the working caption, unit and formula of every
// definition, in the editions with a diary (14, 18). A source column that is not there leaves its working
// column as it was. An error stops at its row with a message; the rows before it stay changed.
void updatefielddefs(std::string_view prefix);

} // namespace quillary::firstrun
