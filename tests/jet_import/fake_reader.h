#pragma once

#include "jet_import/jet_reader.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

// An old database that a test puts together.
namespace quillary::jet_import {

class FakeReader final : public JetReader {
public:
    using Row = std::vector<LoadValue>;

    std::vector<JetTable> Tables() override { return tables; }
    std::vector<JetRelation> Relations() override { return relations; }
    std::vector<JetQuery> Queries() override { return queries; }
    std::vector<std::string> Losses() override { return losses; }
    void ReadRows(const JetTable& table,
                  const std::function<void(std::span<const LoadValue>)>& take) override {
        for (const Row& row : rows[table.name]) {
            take(row);
        }
    }

    // Adds a table of these fields; its key, where one is named, and the rows.
    JetTable& Add(const std::string& name, std::vector<database::FieldDef> fields, const std::string& key,
                  std::vector<Row> content) {
        JetTable table;
        table.name = name;
        table.rows = static_cast<std::int64_t>(content.size());
        for (auto& field : fields) {
            table.fields.push_back({std::move(field), "", "", ""});
        }
        if (!key.empty()) {
            table.indexes.push_back({{"PrimaryKey", {key}, true, true, false}, {}});
        }
        rows[name] = std::move(content);
        tables.push_back(std::move(table));
        return tables.back();
    }

    std::vector<JetTable> tables;
    std::map<std::string, std::vector<Row>> rows;
    std::vector<JetRelation> relations;
    std::vector<JetQuery> queries;
    std::vector<std::string> losses;
};

inline LoadValue Whole(std::int64_t number) {
    return {LoadValue::Kind::Whole, number, 0, {}};
}
inline LoadValue Real(double number) {
    return {LoadValue::Kind::Real, 0, number, {}};
}
inline LoadValue Text(std::string_view text) {
    return {LoadValue::Kind::Text, 0, 0, text};
}
inline LoadValue Null() {
    return {};
}

inline database::FieldDef Field(const std::string& name, FieldType type, int size = 0) {
    database::FieldDef field;
    field.name = name;
    field.type = type;
    field.size = size;
    return field;
}

} // namespace quillary::jet_import
