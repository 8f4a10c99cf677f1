#pragma once

#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/translation.h"

#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quillary::database::sqlite {

// What the translator sees of an open file: tables of the catalogue, saved queries, and other files
// (IN 'path'), which are attached to the connection when they are asked for. Needs an open scope.
class Schema final : public SchemaView {
public:
    explicit Schema(Connection& connection) : connection_(connection), catalogue_(connection.Tables()) {}

    const TableDef* FindTable(std::string_view name) const override;
    const std::string* FindQuery(std::string_view name) const override;
    std::string TableOrder(const TableDef& table, std::string_view alias) const override;

    const SchemaView* External(std::string_view path, std::string_view connect,
                               std::string& schemaName) const override;

    // Whether a saved query has been looked into: the translation then lasts only as long as its text.
    bool UsedQueries() const { return usedQueries_; }

private:
    Connection& connection_;
    std::shared_ptr<const Catalogue> catalogue_;
    mutable bool usedQueries_ = false;
    mutable std::vector<std::unique_ptr<Schema>> others_;
};

} // namespace quillary::database::sqlite
