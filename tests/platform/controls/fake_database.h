#pragma once

#include "platform/database/engine.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <deque>
#include <map>

// A database of tables in memory, as little of one as the controls need: plain table names as record
// sources, unique and required fields, sizes, counters, and rows that are told from one another by their
// place. It counts the rows that are read.
namespace quillary::controls::testing {

using database::FieldType;
using runtime::RunTimeError;
using runtime::Variant;
using Row = std::vector<Variant>;

struct FakeField {
    std::string name;
    FieldType type = FieldType::Text;
    int size = 0;
    bool unique = false, required = false, zeroLength = true, counter = false;
};

struct FakeTable {
    std::string name;
    std::vector<FakeField> fields;
    std::map<std::int64_t, Row> rows; // by bookmark
    std::int64_t next = 0;
    mutable long rowsRead = 0;

    void Add(Row row) { rows[next++] = std::move(row); }
    std::string Text(std::int64_t row,
                     std::size_t field) const; // "(null)" for Null, "(gone)" without the row
};

class FakeDatabase;

class FakeEngine final : public database::Engine {
public:
    FakeTable& Table(std::string name, std::vector<FakeField> fields);
    FakeTable* Find(std::string_view name);

    std::shared_ptr<database::Database> OpenDatabase(std::string_view path, bool readOnly) override;
    std::shared_ptr<database::Database> CreateDatabase(std::string_view) override { return nullptr; }
    void SetPathResolver(std::function<std::string(std::string_view)>) override {}
    void BackupDatabase(std::string_view, std::string_view) override {}
    void ReleaseIdle() override {}

    bool readOnly = false; // what is opened from now on can only be read

private:
    std::deque<FakeTable> tables_;
};

} // namespace quillary::controls::testing
