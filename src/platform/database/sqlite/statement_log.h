#pragma once

#include <functional>
#include <string>
#include <string_view>

// A hook for logs, and for tests that let the n-th statement fail.
namespace quillary::database::sqlite {

// Called before each statement that changes data or definitions, with its text: that of the dialect where
// there is one, else SQLite's. What it throws is raised, and nothing has been changed. {}: none.
void SetStatementObserver(std::function<void(const std::string& sql)> observer);

void Observe(std::string_view sql);

} // namespace quillary::database::sqlite
