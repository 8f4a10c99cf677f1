#pragma once

#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/translation.h"

#include <vector>

namespace quillary::database::sqlite {

// Runs the steps of an action within the open write scope (one step alone needs none) and gives the number of
// rows that it changed. With failOnError the first row that is refused is raised (and the caller undoes the
// whole); without it such rows are passed over in silence.
long RunAction(Connection& connection, const Action& action, const std::vector<Variant>& parameters,
               bool failOnError);

} // namespace quillary::database::sqlite
