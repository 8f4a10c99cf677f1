#pragma once

#include "platform/runtime/run_time_error.h"

#include <optional>
#include <string_view>

struct sqlite3;
struct sqlite3_context;

// The functions of the dialect as functions of SQLite, working on stored forms (see translation.h). Their
// names begin with qy_; the translator writes them, nobody types them.
namespace quillary::database::sqlite {

// Every connection needs them, and the collation JET (runtime::CompareText), which is registered too.
void RegisterFunctions(sqlite3* connection);

// Lets a function fail with a number: SQLite's error text is then "qy:NUMBER:TEXT".
void FailWith(sqlite3_context* context, const runtime::RunTimeError& error);
// The error behind such a text; nullopt for a text of SQLite's own.
std::optional<runtime::RunTimeError> ErrorOfText(std::string_view message);

} // namespace quillary::database::sqlite
