#pragma once

#include "platform/database/jet_sql/ast.h"
#include "platform/database/sqlite/catalogue.h"

#include <string>
#include <string_view>
#include <vector>

// Builds the definition of a table from pieces of the syntax tree, step by step, and checks that each fits
// what is there. The errors are those of RunDefinition (ddl.h).
namespace quillary::database::sqlite {

class TableBuilder {
public:
    // A new table, or a changed one.
    TableBuilder(const Catalogue& catalogue, std::string_view name);
    TableBuilder(const Catalogue& catalogue, const TableInfo& table);

    // Fields first, then what stands at them and at the table: keys before the relations that need them.
    void AddField(const jet_sql::ColumnDef& column);
    void AddConstraints(const std::vector<jet_sql::ColumnDef>& columns,
                        const std::vector<jet_sql::Constraint>& constraints);
    void ReplaceField(const jet_sql::ColumnDef& column);
    void RemoveField(std::string_view name);
    void SetDefault(std::string_view field, const jet_sql::Expr* value);
    void Require(const std::vector<std::string>& fields);
    void AddConstraint(const jet_sql::Constraint& constraint);
    void AddPrimaryKey(std::string name, const std::vector<std::string>& fields);
    void AddIndex(const jet_sql::CreateIndex& index);
    // A key, a relation, a rule or a unique index; false when there is none of this name.
    bool RemoveConstraint(std::string_view name);
    bool RemoveIndex(std::string_view name);

    const TableInfo& Table() const { return table_; }
    // For each field its position in the table as it was; -1 a new one.
    const std::vector<int>& Sources() const { return sources_; }
    // Indexes to make behind the table, that it does not have yet.
    const std::vector<std::string>& NewIndexes() const { return newIndexes_; }

private:
    int RequireField(std::string_view name) const;
    FieldDef MakeField(const jet_sql::ColumnDef& column, std::string& defaultSql) const;
    std::vector<std::string> ExactNames(const std::vector<std::string>& fields) const;
    std::string FreeName(std::string name) const;
    void AddForeignKey(const jet_sql::Constraint& constraint);
    void AddRule(const jet_sql::Constraint& constraint);
    void AddIndexText(const std::string& name, const std::string& terms, bool unique,
                      std::vector<std::string> fields);
    void ChooseRowId();
    void RequireNotReferenced(const std::vector<std::string>& fields) const;

    const Catalogue& catalogue_;
    TableInfo table_;
    std::vector<int> sources_;
    std::vector<std::string> newIndexes_;
};

} // namespace quillary::database::sqlite
