#include "platform/controls/bound_recordset.h"

#include "platform/controls/data_control.h"

namespace quillary::controls {

template <class F>
void BoundRecordset::Move(int action, F move) {
    if (!owner_.Settle(action))
        return;
    move();
    owner_.Repositioned();
}

void BoundRecordset::MoveFirst() {
    Move(kActionMoveFirst, [&] { below_->MoveFirst(); });
}

void BoundRecordset::MoveLast() {
    Move(kActionMoveLast, [&] { below_->MoveLast(); });
}

void BoundRecordset::MoveNext() {
    Move(kActionMoveNext, [&] { below_->MoveNext(); });
}

void BoundRecordset::MovePrevious() {
    Move(kActionMovePrevious, [&] { below_->MovePrevious(); });
}

void BoundRecordset::FindFirst(std::string_view criteria) {
    Move(kActionFind, [&] { below_->FindFirst(criteria); });
}

void BoundRecordset::FindNext(std::string_view criteria) {
    Move(kActionFind, [&] { below_->FindNext(criteria); });
}

void BoundRecordset::SetBookmark(database::Bookmark bookmark) {
    Move(kActionBookmark, [&] { below_->SetBookmark(bookmark); });
}

void BoundRecordset::AddNew() {
    if (!owner_.Settle(kActionAddNew))
        return;
    below_->AddNew();
    owner_.ShowRecord();
}

void BoundRecordset::Edit() {
    // Within Validate the row that is being saved is in edit already, and what the routine sets goes
    // into it.
    if (owner_.validating_ && below_->Editing() != database::EditMode::None)
        return;
    if (owner_.IsAdding() && owner_.HasChanges())
        below_->AddNew();
    else
        below_->Edit();
}

void BoundRecordset::Update() {
    if (owner_.validating_) {
        if (!owner_.savingRow_)
            below_->Update();
        return;
    }
    const bool rowComes = owner_.IsAdding() || below_->Editing() == database::EditMode::AddNew;
    if (!owner_.Settle(kActionUpdate))
        return;
    if (rowComes)
        owner_.RowsChanged();
    owner_.ShowRecord();
}

void BoundRecordset::CancelUpdate() {
    below_->CancelUpdate();
    if (!owner_.validating_)
        owner_.ShowRecord();
}

void BoundRecordset::Delete() {
    if (!owner_.Settle(kActionDelete))
        return;
    below_->Delete();
    owner_.RowsChanged();
    owner_.ShowRecord();
}

void BoundRecordset::Requery() {
    below_->Requery();
    owner_.RowsChanged();
    owner_.Repositioned();
}

void BoundRecordset::Close() {
    owner_.Close();
}

} // namespace quillary::controls
