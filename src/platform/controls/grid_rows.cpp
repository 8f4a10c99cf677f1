#include "platform/controls/grid_rows.h"

#include "platform/controls/bound_recordset.h"
#include "platform/controls/data_control.h"
#include "platform/controls/grid.h"
#include "platform/runtime/run_time_error.h"

namespace quillary::controls {

using runtime::Variant;

// Rows of a data control's recordset: the current row is the current record.
class RecordsetRows final : public GridRows {
public:
    RecordsetRows(const Grid& grid, DataControl& source) : grid_(grid), source_(source) { Remap(); }

    long Count() const override { return source_.recordset_ ? Records().RowTotal() : 0; }

    Variant Value(long row, int column) const override {
        if (row < 0 || row >= Count())
            return Variant::Null();
        const int field = FieldOf(column);
        const std::vector<Variant>& values = Records().ReadRow(Records().BookmarkAt(row));
        if (field < 0 || static_cast<std::size_t>(field) >= values.size())
            return Variant::Null();
        return values[static_cast<std::size_t>(field)];
    }

    std::int64_t BookmarkAt(long row) const override { return Records().BookmarkAt(row); }
    long RowOf(std::int64_t bookmark) const override {
        return source_.recordset_ ? Records().RowOf(bookmark) : -1;
    }

    long Current() const override {
        return source_.HasRecord() ? Records().RowOf(*Records().Bookmark()) : -1;
    }
    void SetCurrent(long row) override {
        if (row >= 0 && row != Current())
            source_.Recordset().SetBookmark(Records().BookmarkAt(row));
    }

    void Showing(long row) override {
        if (source_.recordset_)
            Records().CountVisited(row);
    }
    bool Writable() const override { return source_.recordset_ && Records().Updatable(); }
    std::string ReadOnlyDatabase() const override {
        const database::Database* db = source_.recordset_ ? source_.Database() : nullptr;
        return db && db->ReadOnly() ? db->Name() : std::string();
    }
    bool ColumnWritable(int column) const override {
        const int field = FieldOf(column);
        return Writable() && field >= 0 && Records()[field].Updatable() && !Records()[field].Counter();
    }
    Variant Convert(int column, const Variant& typed) const override {
        const int field = FieldOf(column);
        if (field < 0)
            return typed;
        return source_.ValueFor(Records()[field], typed);
    }

    // The data control asks the grid for what is pending, with all else that is bound.
    bool Write(const std::map<int, Variant>&) override { return source_.Settle(kActionUpdate); }
    bool Append(const std::map<int, Variant>&) override { return source_.Settle(kActionUpdate); }

    void DeleteCurrent() override {
        database::Recordset& records = source_.Recordset();
        records.Delete();
        records.MoveNext();
        if (records.EOF_() && records.RowTotal() > 0)
            records.MoveLast();
    }

    void Remap() override {
        fields_.clear();
        for (int column = 0; column < grid_.ColumnCount(); ++column)
            fields_.push_back(source_.recordset_ ? Records().FindField(grid_.Columns(column).DataField.Get())
                                                 : -1);
    }

private:
    database::Recordset& Records() const { return source_.recordset_->Below(); }
    int FieldOf(int column) const {
        return column < 0 || static_cast<std::size_t>(column) >= fields_.size()
                   ? -1
                   : fields_[static_cast<std::size_t>(column)];
    }

    const Grid& grid_;
    DataControl& source_;
    std::vector<int> fields_; // of each column; -1: not in the recordset
};

// Rows of an array: a column shows the array's column of the same position, a bookmark is the row's index.
class ArrayRows final : public GridRows {
public:
    explicit ArrayRows(std::shared_ptr<QYxArray> array) : array_(std::move(array)) {
        current_ = Count() > 0 ? 0 : -1;
    }

    long Count() const override { return array_->UpperBound(1) - array_->LowerBound(1) + 1; }
    Variant Value(long row, int column) const override {
        if (row < 0 || row >= Count() || column < 0 || column >= array_->Count(2))
            return Variant::Null();
        return array_->Value(array_->LowerBound(1) + row, array_->LowerBound(2) + column);
    }
    std::int64_t BookmarkAt(long row) const override { return array_->LowerBound(1) + row; }
    long RowOf(std::int64_t bookmark) const override {
        const long row = static_cast<long>(bookmark) - array_->LowerBound(1);
        return row >= 0 && row < Count() ? row : -1;
    }
    long Current() const override { return current_ < Count() ? current_ : -1; }
    void SetCurrent(long row) override { current_ = row; }
    bool Writable() const override { return true; }
    bool ColumnWritable(int column) const override { return column >= 0 && column < array_->Count(2); }
    Variant Convert(int, const Variant& typed) const override { return typed; }

    bool Write(const std::map<int, Variant>& pending) override {
        for (const auto& [column, value] : pending)
            if (ColumnWritable(column))
                array_->Value(array_->LowerBound(1) + current_, array_->LowerBound(2) + column) = value;
        return true;
    }
    bool Append(const std::map<int, Variant>& pending) override {
        array_->AppendRows();
        current_ = Count() - 1;
        return Write(pending);
    }
    void DeleteCurrent() override {
        array_->DeleteRows(array_->LowerBound(1) + current_);
        if (current_ >= Count())
            current_ = -1;
    }
    void Remap() override {
        if (Current() < 0)
            current_ = Count() > 0 ? 0 : -1;
    }

private:
    std::shared_ptr<QYxArray> array_;
    long current_ = -1;
};

std::unique_ptr<GridRows> RowsOf(const Grid& grid, DataControl& source) {
    return std::make_unique<RecordsetRows>(grid, source);
}

std::unique_ptr<GridRows> RowsOf(std::shared_ptr<QYxArray> array) {
    return std::make_unique<ArrayRows>(std::move(array));
}

} // namespace quillary::controls
