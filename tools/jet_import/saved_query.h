#pragma once

#include "jet_import/jet_reader.h"

#include <string>

// The text of a saved query, which the old engine kept in pieces: one row for each table, column, join and
// condition.
namespace quillary::jet_import {

// "" when the pieces make no text.
std::string SqlOf(const JetQuery& query);

} // namespace quillary::jet_import
