#pragma once

#include "platform/database/sqlite/recordset.h"

#include <memory>

namespace quillary::database::sqlite {

// Rows as they were when it was opened: what is written later, or deleted, does not show. Read whole at
// opening, read-only (3027). Also stands in for a dynaset whose query has no rows of tables behind it.
class Snapshot final : public RecordsetBase {
public:
    static std::unique_ptr<Recordset> Open(std::shared_ptr<Connection> connection,
                                           std::shared_ptr<const OpenedQuery> query, RecordsetType type);

    bool Updatable() const override { return false; }
    void AddNew() override;
    void Edit() override;
    void Update() override;
    void CancelUpdate() override {}
    void Delete() override;
    std::unique_ptr<Recordset> Clone() const override;

private:
    using RecordsetBase::RecordsetBase;

    void SetField(int position, const Variant& value) override;
    std::shared_ptr<RowSet> OpenRows(const OpenedQuery& query) const override;
};

} // namespace quillary::database::sqlite
