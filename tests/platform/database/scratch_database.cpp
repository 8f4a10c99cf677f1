#include "platform/database/scratch_database.h"

#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/statement_log.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <unistd.h>

namespace quillary::database {

ScratchDatabase::ScratchDatabase() {
    runtime::SetLocale("en_NZ");
    const auto* test = ::testing::UnitTest::GetInstance()->current_test_info();
    std::string name = std::string(test->test_suite_name()) + "." + test->name();
    std::replace(name.begin(), name.end(), '/', '_');
    folder_ = std::filesystem::temp_directory_path() / (name + "." + std::to_string(getpid()));
    std::filesystem::remove_all(folder_);
    std::filesystem::create_directories(folder_);
    engine_ = CreateSqliteEngine();
    db_ = engine_->CreateDatabase(PathOf("farm.mdb"));
}

ScratchDatabase::~ScratchDatabase() {
    sqlite::SetStatementObserver({});
    sqlite::SetBusyTimeout(3000);
    db_.reset();
    engine_->ReleaseIdle();
    std::filesystem::remove_all(folder_);
}

void ScratchDatabase::Run(std::initializer_list<const char*> statements) {
    for (const char* sql : statements) {
        db_->Execute(sql, kFailOnError);
    }
}

std::string ScratchDatabase::Rows(Recordset& rows) {
    std::string result;
    if (rows.RowTotal() > 0) {
        rows.MoveFirst();
    }
    for (; !rows.EOF_(); rows.MoveNext()) {
        result += result.empty() ? "" : "; ";
        for (int i = 0; i < rows.FieldCount(); ++i) {
            result += (i == 0 ? "" : "|") + Shown(rows[i].Value());
        }
    }
    return result;
}

std::string ScratchDatabase::Rows(std::string_view sql, RecordsetType type) {
    std::string result;
    const int error = ErrorOf([&] { result = Rows(*db_->OpenRecordset(sql, type)); });
    return error == 0 ? result : "error " + std::to_string(error);
}

std::string ScratchDatabase::Execute(std::string_view sql) {
    const int error = ErrorOf([&] { db_->Execute(sql, kFailOnError); });
    return error == 0 ? "" : "error " + std::to_string(error);
}

int ErrorOf(const std::function<void()>& act, std::string* text) {
    try {
        act();
        return 0;
    } catch (const runtime::RunTimeError& error) {
        if (text != nullptr) {
            *text = error.Description();
        }
        return error.Number();
    }
}

std::string Shown(const Variant& value) {
    if (value.IsNull()) {
        return "<null>";
    }
    if (const auto* date = value.GetIf<runtime::Date>()) {
        return runtime::IsoText(*date);
    }
    return runtime::CStr(value);
}

std::vector<std::pair<std::string, std::string>> Contents(const std::filesystem::path& folder) {
    std::vector<std::pair<std::string, std::string>> result;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        result.emplace_back(entry.path().string(), entry.is_regular_file() ? ReadFile(entry.path()) : "");
    }
    std::sort(result.begin(), result.end());
    return result;
}

void WriteFile(const std::filesystem::path& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

std::string ReadFile(const std::filesystem::path& path) {
    std::ostringstream text;
    text << std::ifstream(path, std::ios::binary).rdbuf();
    return text.str();
}

} // namespace quillary::database
