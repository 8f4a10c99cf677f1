#pragma once

#include "platform/database/engine.h"

#include <memory>

namespace quillary::controls {

class DataControl;

// The recordset of a data control as page code sees it: moving, editing and deleting through it raises
// the data control's events and moves the bound controls along. Everything else goes straight through.
class BoundRecordset final : public database::Recordset {
public:
    BoundRecordset(DataControl& owner, std::unique_ptr<database::Recordset> below)
        : owner_(owner), below_(std::move(below)) {}

    database::Recordset& Below() const noexcept { return *below_; }

    void MoveFirst() override;
    void MoveLast() override;
    void MoveNext() override;
    void MovePrevious() override;
    void AddNew() override;
    void Edit() override;
    void Update() override;
    void CancelUpdate() override;
    void Delete() override;
    void FindFirst(std::string_view criteria) override;
    void FindNext(std::string_view criteria) override;
    void SetBookmark(database::Bookmark bookmark) override;
    void Requery() override;
    // Closes the data control.
    void Close() override;

    database::RecordsetType Type() const override { return below_->Type(); }
    bool Updatable() const override { return below_->Updatable(); }
    bool BOF() const override { return below_->BOF(); }
    bool EOF_() const override { return below_->EOF_(); }
    long RecordCount() const override { return below_->RecordCount(); }
    long RowTotal() const override { return below_->RowTotal(); }
    database::Bookmark BookmarkAt(long row) const override { return below_->BookmarkAt(row); }
    long RowOf(database::Bookmark bookmark) const override { return below_->RowOf(bookmark); }
    const std::vector<runtime::Variant>& ReadRow(database::Bookmark bookmark) const override {
        return below_->ReadRow(bookmark);
    }
    void CountVisited(long row) override { below_->CountVisited(row); }
    database::EditMode Editing() const override { return below_->Editing(); }
    bool NoMatch() const override { return below_->NoMatch(); }
    std::optional<database::Bookmark> Bookmark() const override { return below_->Bookmark(); }
    std::optional<database::Bookmark> LastModified() const override { return below_->LastModified(); }
    std::unique_ptr<database::Recordset> Clone() const override { return below_->Clone(); }
    int FieldCount() const override { return below_->FieldCount(); }
    database::Field& operator[](int position) override { return (*below_)[position]; }
    database::Field& operator[](std::string_view name) override { return (*below_)[name]; }
    int FindField(std::string_view name) const override { return below_->FindField(name); }

private:
    // Runs a move of the recordset below with all that comes before and after it.
    template <class F>
    void Move(int action, F move);

    DataControl& owner_;
    std::unique_ptr<database::Recordset> below_;
};

} // namespace quillary::controls
