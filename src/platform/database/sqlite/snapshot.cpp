#include "platform/database/sqlite/snapshot.h"

#include "platform/database/errors.h"
#include "platform/database/sqlite/piece.h"
#include "platform/database/sqlite/statement_cache.h"

namespace quillary::database::sqlite {
namespace {

class HeldRows final : public RowSet {
public:
    HeldRows(Connection& connection, const OpenedQuery& query)
        : cells_(static_cast<int>(query.selection.columns.size())) {
        const ReadScope scope(connection);
        Run run(connection.Kept(query.selection.valuesSql));
        BindParameters(run, query.selection.parameters, query.parameters);
        while (run.Step(Operation::Read)) {
            cells_.Append(run);
        }
        count_ = original_ = cells_.Rows();
    }

    CellRow Read(std::size_t row) override { return cells_.Row(row); }
    const std::uint64_t& Writes() const override {
        static constexpr std::uint64_t kNever = 0;
        return kNever;
    }

private:
    CellBlock cells_;
};

[[noreturn]] void RaiseReadOnly() {
    Raise(kErrReadOnly, "Cannot update. Database or object is read-only.");
}

} // namespace

std::unique_ptr<Recordset> Snapshot::Open(std::shared_ptr<Connection> connection,
                                          std::shared_ptr<const OpenedQuery> query, RecordsetType type) {
    auto rows = std::make_shared<HeldRows>(*connection, *query);
    return std::unique_ptr<Recordset>(
        new Snapshot(std::move(connection), std::move(query), std::move(rows), type));
}

std::shared_ptr<RowSet> Snapshot::OpenRows(const OpenedQuery& query) const {
    return std::make_shared<HeldRows>(*connection_, query);
}

std::unique_ptr<Recordset> Snapshot::Clone() const {
    CheckOpen();
    return std::unique_ptr<Recordset>(new Snapshot(*this, 0));
}

void Snapshot::AddNew() {
    RaiseReadOnly();
}

void Snapshot::Edit() {
    RaiseReadOnly();
}

void Snapshot::Update() {
    Raise(kErrUpdateWithoutEdit, "Update or CancelUpdate without AddNew or Edit.");
}

void Snapshot::Delete() {
    RaiseReadOnly();
}

void Snapshot::SetField(int, const Variant&) {
    Raise(kErrUpdateWithoutEdit, "Update or CancelUpdate without AddNew or Edit.");
}

} // namespace quillary::database::sqlite
