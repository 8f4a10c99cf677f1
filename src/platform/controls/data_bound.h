#pragma once

#include "platform/runtime/variant.h"

#include <string>

namespace quillary::database {
class Recordset;
class Field;
} // namespace quillary::database

namespace quillary::controls {

class DataControl;

// A control that shows the current record of a data control.
class DataBound {
public:
    // It holds something that the row does not hold yet.
    virtual bool HasChanges() const = 0;
    // Puts what changed into the record in edit. 524 when a value does not fit its field.
    virtual void WriteChanges(database::Recordset& record) = 0;
    // What it held has reached the row.
    virtual void ChangesWritten() = 0;
    // Shows the current record; nullptr: there is none. Changes that were not written are dropped.
    virtual void ShowRecord(database::Recordset* record) = 0;
    // The rows are others now: the data control has a new recordset, a row came or went, or the data
    // control closed (nullptr).
    virtual void RowsChanged(database::Recordset*) {}
    // It holds a new row that it would add itself (the grid's row at the foot).
    virtual bool IsAdding() const { return false; }
    // The data control is gone.
    virtual void SourceGone() = 0;

protected:
    ~DataBound() = default;
};

// One field of a data control's record, as a text box, check box or label shows it.
class FieldBinding {
public:
    DataControl* Source() const noexcept { return source_; }
    const std::string& Field() const noexcept { return field_; }
    void Attach(DataBound& control, DataControl& source, std::string field);
    void Detach(DataBound& control);
    void Forget() { source_ = nullptr; }
    // The field's value; Null without a record or field.
    runtime::Variant ValueIn(database::Recordset* record) const;
    // Puts a value into the field of the record in edit. 524 when it does not fit.
    void Store(const runtime::Variant& value) const;

private:
    DataControl* source_ = nullptr;
    std::string field_;
};

} // namespace quillary::controls
