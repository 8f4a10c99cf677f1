#pragma once

#include "platform/database/engine.h"

#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// A folder of its own for each test, with an engine and an empty database in it.
namespace quillary::database {

class ScratchDatabase : public ::testing::Test {
protected:
    ScratchDatabase();
    ~ScratchDatabase() override;

    std::string PathOf(const std::string& name) const { return (folder_ / name).string(); }
    void Run(std::initializer_list<const char*> statements);
    // The rows of a query with "; " between, their values with "|": Null as <null>, dates as the file has
    // them.
    std::string Rows(std::string_view sql, RecordsetType type = RecordsetType::Snapshot);
    std::string Rows(Recordset& rows); // from the first row on
    // "" or "error 3022", of a statement run with kFailOnError.
    std::string Execute(std::string_view sql);

    std::filesystem::path folder_;
    std::unique_ptr<Engine> engine_;
    std::shared_ptr<Database> db_;
};

// The number of the error that is raised, 0 when none is. text: where its description goes.
int ErrorOf(const std::function<void()>& act, std::string* text = nullptr);

std::string Shown(const Variant& value);

// What lies in the folder, by name and content.
std::vector<std::pair<std::string, std::string>> Contents(const std::filesystem::path& folder);

void WriteFile(const std::filesystem::path& path, std::string_view bytes);
std::string ReadFile(const std::filesystem::path& path);

} // namespace quillary::database
