#include "platform/database/sqlite/statement_log.h"

#include <utility>

namespace quillary::database::sqlite {
namespace {

std::function<void(const std::string&)> installed;

} // namespace

void SetStatementObserver(std::function<void(const std::string& sql)> observer) {
    installed = std::move(observer);
}

void Observe(std::string_view sql) {
    if (installed) {
        installed(std::string(sql));
    }
}

} // namespace quillary::database::sqlite
