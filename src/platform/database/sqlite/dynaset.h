#pragma once

#include "platform/database/sqlite/keyset.h"
#include "platform/database/sqlite/recordset.h"

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace quillary::database::sqlite {

// Rows of one or more tables that can be edited. It keeps the set of rows of its opening; the values are
// those of the file. A table-type recordset is a dynaset over all rows of its table.
class Dynaset final : public RecordsetBase {
public:
    static std::unique_ptr<Recordset> Open(std::shared_ptr<Connection> connection,
                                           std::shared_ptr<const OpenedQuery> query, RecordsetType type,
                                           bool readOnly);
    ~Dynaset() override;

    bool Updatable() const override { return !readOnly_; }
    void AddNew() override;
    void Edit() override;
    void Update() override;
    void CancelUpdate() override { DropEdit(); }
    void Delete() override;
    std::unique_ptr<Recordset> Clone() const override;
    void Close() override;

private:
    Dynaset(std::shared_ptr<Connection> connection, std::shared_ptr<const OpenedQuery> query,
            std::shared_ptr<Keyset> rows, RecordsetType type, bool readOnly);
    Dynaset(const Dynaset& other, int);

    bool CanSet(int position) const override;
    Variant FieldValue(int position) const override;
    void SetField(int position, const Variant& value) override;
    std::shared_ptr<RowSet> OpenRows(const OpenedQuery& query) const override;
    void DropEdit() override;

    Keyset& Keys() const { return static_cast<Keyset&>(*rows_); }
    const TableInfo& Table(int table) const;
    void RequireUpdatable() const;
    void CheckUnchanged(const CellBlock& now) const;
    // The fields set for one table, by position.
    std::vector<int> SetOf(int table) const;
    bool IsForeignKey(const TableInfo& table, int field) const;
    void UpdateRow();
    // Gives the row's address afterwards: a key may be the address.
    std::int64_t ChangeTable(int table, const std::vector<int>& set);
    void InsertRow();
    std::int64_t InsertInto(int table, const std::vector<int>& set) const;
    Variant NewRowValue(int position) const;
    Variant ReserveCounter(int position) const;
    int TableToDeleteFrom() const;
    void ListTables();

    bool readOnly_;
    std::vector<std::string> tableNames_; // registered with the connection
    mutable std::vector<std::optional<Variant>> pending_;
    CellBlock before_; // the row as it was at Edit
};

} // namespace quillary::database::sqlite
