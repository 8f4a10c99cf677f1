#pragma once

#include "jet_import/jet_reader.h"
#include "platform/database/bulk_load.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

// Carries the contents of an old database over into a new one. Nothing is left out for breaking a rule of
// the new one: the rule gives way instead, and the report says so.
namespace quillary::jet_import {

struct TableReport {
    std::string name;
    std::int64_t read = 0;
    std::int64_t written = 0;
};

struct ImportReport {
    std::vector<TableReport> tables;
    int indexes = 0;
    int relations = 0;
    int queries = 0;
    std::vector<std::string> notes;  // carried, but not quite as it was
    std::vector<std::string> losses; // not carried
};

// What is being carried: a table's name, the rows done, the rows to do by the file's own count.
using Progress = std::function<void(const std::string& table, std::int64_t rows, std::int64_t total)>;

// 3343 for a damaged file. `target` is finished when this returns.
ImportReport Import(JetReader& source, database::BulkLoad& target, const Progress& progress);

} // namespace quillary::jet_import
