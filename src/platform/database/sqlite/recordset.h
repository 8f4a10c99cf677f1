#pragma once

#include "platform/database/sqlite/cells.h"
#include "platform/database/sqlite/columns.h"
#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/row_set.h"
#include "platform/database/sqlite/statement_cache.h"

#include <memory>
#include <string>
#include <vector>

// What snapshots and dynasets have in common: the position, the counting of visited rows, fields by name,
// searches.
namespace quillary::database::sqlite {

inline constexpr int kErrObjectClosed = 3420;

class RecordsetBase;

class RecordsetField final : public Field {
public:
    RecordsetField(RecordsetBase& owner, const ColumnInfo& info, int position)
        : owner_(owner), info_(info), position_(position) {}

    const std::string& Name() const override { return info_.name; }
    FieldType Type() const override { return info_.type; }
    int Size() const override { return info_.size; }
    bool Required() const override { return info_.required; }
    bool Counter() const override { return info_.counter; }
    bool Updatable() const override;
    const std::string& SourceTable() const override { return info_.sourceTable; }
    const std::string& SourceField() const override { return info_.sourceField; }
    Variant Value() const override;
    void SetValue(const Variant& value) override;
    using Field::operator=;

private:
    RecordsetBase& owner_;
    const ColumnInfo& info_;
    int position_;
};

class RecordsetBase : public Recordset {
public:
    RecordsetBase(const RecordsetBase&) = delete;
    RecordsetBase& operator=(const RecordsetBase&) = delete;

    RecordsetType Type() const override { return type_; }
    bool BOF() const override;
    bool EOF_() const override;
    void MoveFirst() override;
    void MoveLast() override;
    void MoveNext() override;
    void MovePrevious() override;
    long RecordCount() const override;
    long RowTotal() const override;
    database::Bookmark BookmarkAt(long row) const override;
    long RowOf(database::Bookmark bookmark) const override;
    const std::vector<Variant>& ReadRow(database::Bookmark bookmark) const override;
    void CountVisited(long row) override;
    EditMode Editing() const override { return editing_; }
    void FindFirst(std::string_view criteria) override { Find(criteria, true); }
    void FindNext(std::string_view criteria) override { Find(criteria, false); }
    bool NoMatch() const override { return noMatch_; }
    std::optional<database::Bookmark> Bookmark() const override;
    void SetBookmark(database::Bookmark bookmark) override;
    std::optional<database::Bookmark> LastModified() const override { return lastModified_; }
    void Requery() override;
    void Close() override;
    int FieldCount() const override { return columns_->Count(); }
    Field& operator[](int position) override;
    Field& operator[](std::string_view name) override;
    int FindField(std::string_view name) const override { return columns_->Find(name); }

protected:
    enum class Place { Before, On, After };

    RecordsetBase(std::shared_ptr<Connection> connection, std::shared_ptr<const OpenedQuery> query,
                  std::shared_ptr<RowSet> rows, RecordsetType type);
    // A clone: the same rows.
    explicit RecordsetBase(const RecordsetBase& other, int);

    friend class RecordsetField;
    virtual bool CanSet(int /*position*/) const { return false; }
    virtual Variant FieldValue(int position) const { return StoredValue(position); }
    virtual void SetField(int position, const Variant& value) = 0;
    // Reads all rows of the query anew.
    virtual std::shared_ptr<RowSet> OpenRows(const OpenedQuery& query) const = 0;
    // A pending AddNew or Edit is given up, as by each move.
    virtual void DropEdit() { editing_ = EditMode::None; }

    // The value in the file; 3021, 3167.
    Variant StoredValue(int position) const {
        // The row read last, as long as nothing was written since.
        if (cells_ && *writes_ == cellsWrites_ && *epoch_ == cellsEpoch_) {
            return ReadCell(cells_[position], (*columns_)[position].type);
        }
        return ReadCell(CurrentCells()[position], (*columns_)[position].type);
    }
    // The cells of the current row; 3021, 3167.
    const CellRow& CurrentCells() const;
    void RequireCurrent() const;
    void CheckOpen() const;
    bool HasCurrent() const { return place_ == Place::On; }
    void ForgetCells() const { cells_ = {}; }

    std::shared_ptr<Connection> connection_;
    std::shared_ptr<const OpenedQuery> query_;
    std::shared_ptr<const Columns> columns_;
    std::shared_ptr<RowSet> rows_;
    RecordsetType type_;
    Place place_ = Place::After;
    std::size_t row_ = 0;
    std::size_t visited_ = 0; // rows of the opening, up to the farthest one
    EditMode editing_ = EditMode::None;
    std::optional<database::Bookmark> lastModified_;

private:
    void GoTo(std::size_t row);
    void GoFirst();
    void Visit(std::size_t row);
    void Find(std::string_view criteria, bool fromStart);
    void MakeFields();
    void TakeRows(std::shared_ptr<RowSet> rows);
    std::size_t RowOfBookmark(database::Bookmark bookmark) const; // 3167

    std::vector<RecordsetField> fields_;
    int nextNamed_ = 0; // a guess at the field that will be asked for next
    bool noMatch_ = false;
    bool closed_ = false;
    mutable CellRow cells_;
    mutable std::uint64_t cellsWrites_ = 0;
    mutable std::uint64_t cellsEpoch_ = 0;
    const std::uint64_t* writes_ = nullptr;
    const std::uint64_t* epoch_ = nullptr;
    mutable std::vector<Variant> rowValues_;
};

} // namespace quillary::database::sqlite
