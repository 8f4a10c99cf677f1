#pragma once

#include "platform/database/sqlite/translator.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

struct sqlite3;

// Statements of the dialect run through the translator on a database in memory, with no engine between.
namespace quillary::database::sqlite {

class TranslatedDatabase final : public SchemaView {
public:
    TranslatedDatabase();
    ~TranslatedDatabase() override;
    TranslatedDatabase(const TranslatedDatabase&) = delete;
    TranslatedDatabase& operator=(const TranslatedDatabase&) = delete;

    // The first field is the key where `keyed` is set.
    void AddTable(const std::string& name, std::vector<FieldDef> fields, bool keyed = true);
    void AddQuery(const std::string& name, const std::string& sql) { queries_[name] = sql; }

    // A row a text, its values with "|" between: Null as <null>, a Boolean as -1 or 0, a date in ISO form,
    // numbers with "." as decimal sign. An error as "error 3061".
    std::vector<std::string> Rows(std::string_view sql);
    // The rows with " / " between.
    std::string Query(std::string_view sql);
    // The one value of SELECT expression.
    std::string Value(std::string_view expression);
    // The rows changed, or "error 3061".
    std::string Execute(std::string_view sql);
    std::vector<std::string> ColumnNames(std::string_view sql);
    Selection Translate(std::string_view sql);
    Action TranslateToAction(std::string_view sql);
    // Rows of a text for SQLite; the values are numbered parameters.
    std::vector<std::string> Run(const std::string& sql, const std::vector<FieldType>& types = {},
                                 const std::vector<long>& values = {});

    const TableDef* FindTable(std::string_view name) const override;
    const std::string* FindQuery(std::string_view name) const override;
    std::string TableOrder(const TableDef& table, std::string_view alias) const override;

private:
    void Perform(const std::string& sql);
    HeadingQuery Headings();

    sqlite3* connection_ = nullptr;
    std::map<std::string, std::unique_ptr<TableDef>> tables_;
    std::map<std::string, std::string> queries_;
};

FieldDef MakeField(std::string name, FieldType type, int size = 0);

} // namespace quillary::database::sqlite
