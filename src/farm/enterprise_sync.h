#pragma once

#include "platform/database/engine.h"

#include <functional>

namespace quillary::farm {

// What brings the suite's enterprise tables up to date is a component of the suite outside this program.
// Until a component is named here, EnterpriseSync does nothing: its content is left empty on purpose.
using EnterpriseComponent = std::function<void(database::Database& db)>;
void SetEnterpriseComponent(EnterpriseComponent component); // an empty function takes it away

// Opens the main database, hands it to the component, and closes it: before the Enterprises page is loaded,
// and when it is left. The errors of OpenDatabase and of the component.
void EnterpriseSync();

} // namespace quillary::farm
