#pragma once

#include "platform/controls/control.h"
#include "platform/controls/data_bound.h"
#include "platform/database/engine.h"

#include <functional>
#include <memory>

namespace quillary::controls {

class BoundRecordset;

// What is about to happen to a data control's record: Validate's first argument.
inline constexpr int kActionCancel = 0, kActionMoveFirst = 1, kActionMovePrevious = 2, kActionMoveNext = 3,
                     kActionMoveLast = 4, kActionAddNew = 5, kActionUpdate = 6, kActionDelete = 7,
                     kActionFind = 8, kActionBookmark = 9, kActionClose = 10, kActionUnload = 11;

// A table, query or statement, opened, and the controls that show its current record. Before another
// record becomes current (and before Update, Delete and closing) Validate is raised, and what the bound
// controls changed is written; afterwards they show the new record. Code that moves, edits or deletes
// through Recordset() does the same.
class DataControl : public Control {
public:
    DataControl(Form& form, std::string name, int index = kNoIndex);
    ~DataControl() override;

    // Take effect at Refresh.
    Property<std::string> DatabaseName{*this, Aspect::Other};
    Property<std::string> RecordSource{*this, Aspect::Other};
    Property<database::RecordsetType> RecordsetType{*this, Aspect::Other, database::RecordsetType::Dynaset};
    Property<std::string> Caption{*this, Aspect::Caption};

    // action, save. action := 0 cancels what was about to happen; save tells whether bound controls hold
    // changes, and may be set to false to drop them. UpdateRecord does not raise it. A routine may Edit, set
    // fields and Update here, a pending new row too: what it sets goes into the row that is being saved.
    Event<int&, bool&> Validate{*this, "Validate"};
    Event<> Reposition{*this, "Reposition"}; // another record has become current

    // Opens the record source anew; its first record becomes current. What bound controls held and was
    // not written is dropped. The errors of OpenDatabase and OpenRecordset; the former recordset is
    // closed all the same.
    void Refresh();
    // 91 before Refresh and after Close.
    database::Recordset& Recordset();
    bool HasRecordset() const noexcept { return recordset_ != nullptr; }
    // A record is current (and not deleted).
    bool HasRecord() const;
    // The open database; nullptr before Refresh.
    database::Database* Database() const noexcept { return database_.get(); }

    // Writes what bound controls changed into the current (or pending new) record, without Validate, and
    // shows the record as it then is. 524 when a value does not fit its field: nothing is written then and
    // the controls keep what they hold. Without a current record nothing happens.
    void UpdateRecord();
    // Shows the current record again; what was not written is dropped.
    void UpdateControls();
    // Raises Validate (action 10, or 11 for a form that unloads), writes what the controls hold unless
    // that refuses, and lets go of recordset and database. The errors of writing.
    void Close(int action = kActionClose);
    // The same without Validate and without writing.
    void Abandon();

    // A field of the current record; Null without one.
    runtime::Variant FieldOrNull(std::string_view field);
    // What was typed as a value of the field (FieldValue); an empty text stays empty only in a text field
    // that takes it.
    runtime::Variant ValueFor(const database::Field& field, const runtime::Variant& typed) const;

    // Where all data controls open their databases; set once by the program (or a test).
    using EngineSource = std::function<database::Engine&()>;
    static void SetEngine(EngineSource source);

    std::optional<std::string> PropertyText(std::string_view property) const override;

private:
    friend class FieldBinding;
    friend class BoundRecordset;
    friend class Grid;
    friend class RecordsetRows;
    bool AllowsZeroLength(const database::Field& field) const;
    void Attach(DataBound& control);
    void Detach(DataBound& control);
    bool HasChanges() const;
    // A bound grid holds a new row.
    bool IsAdding() const;
    // What has to happen before an action on the record: what the controls hold goes into the edit, then
    // Validate is raised, then it is written (for kActionUpdate with what code has set). false: cancelled.
    bool Settle(int action);
    bool RaiseValidate(int action, bool& save);
    void WriteBound(); // into the pending edit; 524
    void UpdateRow(bool becomesCurrent);
    void ShowRecord();
    void RowsChanged();
    void Repositioned();

    std::shared_ptr<database::Database> database_;
    std::unique_ptr<BoundRecordset> recordset_;
    std::vector<DataBound*> bound_;
    bool validating_ = false; // within the Validate routine
    bool savingRow_ = false;  // and a row is in edit that is about to be saved
};

using DataControlArray = ControlArray<DataControl>;

} // namespace quillary::controls
