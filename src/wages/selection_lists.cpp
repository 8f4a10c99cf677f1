#include "wages/selection_lists.h"

#include "common/binding.h"
#include "common/error_report.h"
#include "common/messages.h"
#include "config/globals.h"
#include "config/settings.h"
#include "platform/controls/form.h"
#include "platform/database/engine.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>
#include <array>
#include <unordered_set>
#include <vector>

namespace quillary::wages {

using controls::QYxArray;
using runtime::Variant;

namespace {

// What tells the three lists apart. An occupation's id stands between the two halves of the selected query.
struct ListDefinition {
    const char* linkTable;
    const char* selected;
    const char* selectedEnd;
    const char* master;
    const char* links;
};

constexpr std::array<ListDefinition, 3> kLists = {{
    {"PaymentTypes",
     "SELECT DISTINCTROW PaymentNames.[PaymentNameID], PaymentNames.[PayUnitname], PaymentNames.Calculation, "
     "PaymentNames.Salary, PaymentTypes.Order "
     "FROM PaymentNames INNER JOIN PaymentTypes ON PaymentNames.[PaymentNameID] = "
     "PaymentTypes.[PaymentNameID] "
     "WHERE (((PaymentTypes.[EmployeetypeID])=",
     ")) ORDER BY PaymentTypes.Order;",
     "SELECT DISTINCTROW PaymentNames.[PaymentNameID], PaymentNames.[PayUnitname], PaymentNames.Calculation, "
     "PaymentNames.Salary "
     "FROM PaymentNames "
     "ORDER BY PaymentNames.[PayUnitname];",
     "SELECT DISTINCTROW PaymentTypes.[PaymentNameID],  PaymentTypes.Order, PaymentTypes.[EmployeetypeID] "
     "FROM PaymentTypes; "},
    {"TaxAllowTypes",
     "SELECT DISTINCTROW TaxAllowName.[TaxNameID], TaxAllowName.[taxAllowancename], "
     "TaxAllowName.[taxallowrate], TaxAllowTypes.[Orderinlist] "
     "FROM TaxAllowName INNER JOIN TaxAllowTypes ON TaxAllowName.[TaxNameID] = TaxAllowTypes.[TaxNameID] "
     "Where (((TaxAllowTypes.[EmployeetypeID]) = ",
     "))ORDER BY TaxAllowTypes.[Orderinlist];",
     "SELECT DISTINCTROW TaxAllowName.[TaxNameID], TaxAllowName.[taxAllowancename], "
     "TaxAllowName.[taxallowrate] "
     "FROM TaxAllowName "
     "ORDER BY TaxAllowName.[taxAllowancename];",
     "SELECT DISTINCTROW TaxAllowTypes.[TaxNameID], TaxAllowTypes.[Orderinlist], "
     "TaxAllowTypes.[EmployeetypeID] "
     "FROM TaxAllowTypes;"},
    {"NonTaxAllowTypes",
     "SELECT DISTINCTROW NonTaxAllowName.[NonTaxNameID], NonTaxAllowName.[NonTaxallowname], "
     "NonTaxAllowName.[NonTaxRate], NonTaxAllowTypes.Order "
     "FROM NonTaxAllowName INNER JOIN NonTaxAllowTypes ON NonTaxAllowName.[NonTaxNameID] = "
     "NonTaxAllowTypes.[NonTaxNameID] "
     "Where (((NonTaxAllowTypes.[EmployeetypeID]) = ",
     ")) ORDER BY NonTaxAllowTypes.Order;",
     "SELECT DISTINCTROW NonTaxAllowName.[NonTaxNameID], NonTaxAllowName.[NonTaxallowname], "
     "NonTaxAllowName.[NonTaxRate] "
     "FROM NonTaxAllowName  "
     "ORDER BY NonTaxAllowName.[NonTaxallowname];",
     "SELECT DISTINCTROW NonTaxAllowTypes.[NonTaxNameID], NonTaxAllowTypes.Order, "
     "NonTaxAllowTypes.[EmployeetypeID] "
     "FROM NonTaxAllowTypes;"},
}};

const ListDefinition& ListOf(int listNumber) {
    return kLists.at(static_cast<std::size_t>(listNumber));
}

// Column 0 is the id, the last one the order: both are kept out of sight.
std::vector<common::GridColumn> ColumnsOf(int listNumber) {
    const common::GridColumn id{.visible = false};
    const common::GridColumn order{.visible = false};
    const common::GridColumn rate{.caption = "Rate", .width = 500};
    if (listNumber == kPayRates)
        return {id, {.caption = "Name", .width = 1500}, rate, {.caption = "Salary", .width = 500}, order};
    return {id, {.caption = "Name", .width = 2000}, rate, order};
}

constexpr int kRateColumn = 2;
constexpr int kSalaryColumn = 3;

std::shared_ptr<database::Database> OpenWages() {
    return config::DbEngine().OpenDatabase(config::GetWageFileName());
}

bool CanOnlyBeRead() {
    bool readOnly = false;
    common::IgnoreErrors([&] { readOnly = OpenWages()->ReadOnly(); });
    return readOnly;
}

void CopyRow(const QYxArray& from, long row, QYxArray& to, long toRow) {
    for (long column = 0; column <= std::min(from.UpperBound(2), to.UpperBound(2)); ++column)
        to(toRow, column) = from(row, column);
}

// The wage database without the occupation's rows of the link table, or nothing where they are still there.
std::shared_ptr<database::Database> OpenWithoutLinks(int listNumber, std::int32_t occupationID) {
    std::shared_ptr<database::Database> db;
    const bool deleted = common::Trap("DeleteAll", [&] {
        db = OpenWages();
        const std::string table = ListOf(listNumber).linkTable;
        db->Execute("Delete * FROM [" + table + "] WHERE [" + table +
                        "].[EmployeetypeID] = " + std::to_string(occupationID) + ";",
                    database::kFailOnError);
    });
    return deleted ? db : nullptr;
}

// The ids of a list, to leave its rows out of the other one at one look each.
std::unordered_set<std::string> IdsOf(const QYxArray& list) {
    std::unordered_set<std::string> ids;
    if (list.UpperBound(2) >= 0)
        for (long row = 0; row <= list.UpperBound(1); ++row)
            ids.insert(runtime::TextOf(list(row, 0)));
    return ids;
}

} // namespace

void SelectionLists::SetColumns(int listNumber) {
    const std::vector<common::GridColumn> columns = ColumnsOf(listNumber);
    for (controls::Grid* grid : {&tgrd_selected_, &tgrd_master_}) {
        common::SetGridColumns(*grid, columns);
        grid->Columns(kRateColumn).Alignment = controls::Column::Align::Right;
        if (listNumber == kPayRates)
            common::SetYesNoColumn(*grid, kSalaryColumn);
    }
    selectedColumns_ = static_cast<int>(columns.size()) - 1;
}

void SelectionLists::UpdateSelections(int listNumber, std::int32_t occupationID) {
    const ListDefinition& list = ListOf(listNumber);
    SetColumns(listNumber);
    gSelectedSQL_ = list.selected + std::to_string(occupationID) + list.selectedEnd;
    gMasterSQL_ = list.master;
    // The rows of another list or occupation must never be saved as those of this one.
    ReleaseSelectionArrays();
    RefreshData(selectedColumns_, gSelectedSQL_, true);
    controls::DoEvents();
    // The master list is what the selected one leaves over, so it comes second.
    if (Selected_)
        RefreshData(selectedColumns_ - 1, gMasterSQL_, false);
}

void SelectionLists::RefreshData(int columns, const std::string& sql, bool isSelected) {
    common::Trap("RefreshData", [&] {
        auto db = OpenWages();
        auto rows = db->OpenRecordset(sql, database::RecordsetType::Snapshot);
        long highest = -1;
        if (!rows->EOF_()) {
            rows->MoveLast();
            highest = rows->RecordCount() - 1;
            rows->MoveFirst();
        }
        auto filled = std::make_shared<QYxArray>();
        filled->ReDim(0, highest, 0, columns);
        const std::unordered_set<std::string> selected =
            isSelected || !Selected_ ? std::unordered_set<std::string>() : IdsOf(*Selected_);
        long copied = 0;
        for (; !rows->EOF_(); rows->MoveNext()) {
            if (selected.contains(runtime::TextOf((*rows)[0].Value())))
                continue;
            for (int column = 0; column <= columns; ++column)
                if (const Variant value = (*rows)[column].Value(); !value.IsNull())
                    (*filled)(copied, column) = runtime::CStr(value);
            ++copied;
        }
        if (isSelected) {
            Selected_ = filled;
            unsaved_ = false;
        } else {
            filled->ReDim(0, copied - 1, 0, columns);
            Master_ = filled;
        }
        controls::Grid& grid = isSelected ? tgrd_selected_ : tgrd_master_;
        grid.Array = filled;
        grid.ReBind();
        grid.Refresh();
        rows->Close();
        db->Close();
    });
}

void SelectionLists::RefreshSelected() {
    if (gSelectedSQL_.empty())
        return;
    const long columns = Selected_ ? Selected_->UpperBound(2) : selectedColumns_;
    RefreshData(static_cast<int>(columns), gSelectedSQL_, true);
}

void SelectionLists::RefreshMaster() {
    if (!Selected_) // what it would leave out is not known
        return;
    const long columns = Master_ ? Master_->UpperBound(2) : selectedColumns_ - 1;
    RefreshData(static_cast<int>(columns), gMasterSQL_, false);
}

bool SelectionLists::SaveSelections(int listNumber, std::int32_t occupationID) {
    // Who only looks into a book that cannot be written is told of no failure.
    return !Selected_ || (!unsaved_ && CanOnlyBeRead()) || WriteSelected(listNumber, occupationID);
}

bool SelectionLists::WriteSelected(int listNumber, std::int32_t occupationID) {
    bool cleared = false;
    const bool done = common::Trap("SaveSelections", [&] {
        tgrd_selected_.Update();
        auto db = OpenWithoutLinks(listNumber, occupationID);
        cleared = db != nullptr;
        if (!cleared) // where the old rows stay, the new ones would stand beside them
            return;
        unsaved_ = true; // until all of them are written
        auto links = db->OpenRecordset(ListOf(listNumber).links, database::RecordsetType::Dynaset);
        std::int32_t order = 0;
        for (long row = 0; row <= Selected_->UpperBound(1); ++row) {
            const Variant& id = (*Selected_)(row, 0);
            // A row without an item takes no number.
            if (!runtime::IsNumeric(id) || runtime::CDbl(id) == 0)
                continue;
            links->AddNew();
            (*links)[0] = runtime::CLng(id);
            (*links)[1] = order;
            (*links)[2] = occupationID;
            links->Update();
            ++order;
        }
        links->Close();
        db->Close();
        unsaved_ = false;
    });
    return done && cleared;
}

bool SelectionLists::NothingToLose() const {
    return !unsaved_ && common::IgnoreErrors([] { OpenWages()->Close(); });
}

bool SelectionLists::DeleteAll(int listNumber, std::int32_t occupationID) {
    auto db = OpenWithoutLinks(listNumber, occupationID);
    if (db)
        db->Close();
    return db != nullptr;
}

void SelectionLists::AddToSelected(std::int32_t occupationID, int listNumber, controls::Grid& grid,
                                   long firstRow, long rowCount) {
    if (!Selected_ || !Master_)
        return;
    common::Trap("AddToSelected", [&] {
        grid.MoveLast();
        const long columns = Master_->UpperBound(2);
        const controls::Grid::BookmarkType last = grid.Bookmark;
        long added = 0;
        if (!last) {
            Selected_->ReDim(0, rowCount - 1, 0, columns);
        } else {
            added = static_cast<long>(*last) + 1;
            if (!common::IgnoreErrors([&] { Selected_->InsertRows(added, rowCount); })) {
                added = Selected_->UpperBound(1) + 1;
                Selected_->AppendRows(rowCount);
            }
        }
        for (long row = 0; row < rowCount; ++row)
            CopyRow(*Master_, firstRow + row, *Selected_, added + row);
        grid.Refresh();
        grid.ReBind();
        if (!WriteSelected(listNumber, occupationID)) {
            // Neither list changes then.
            Selected_->DeleteRows(added, rowCount);
            grid.ReBind();
            return;
        }
        RefreshSelected();
        RefreshMaster();
    });
}

void SelectionLists::AddAllToSelected(int listNumber, std::int32_t occupationID) {
    if (!Master_ || Master_->UpperBound(1) < 0)
        return;
    // Meant: all come anew in the order of their names; an order made by hand is gone.
    if (RemoveAllSelected(listNumber, occupationID))
        AddToSelected(occupationID, listNumber, tgrd_selected_, 0, Master_->UpperBound(1) + 1);
}

bool SelectionLists::RemoveAllSelected(int listNumber, std::int32_t occupationID) {
    if (!DeleteAll(listNumber, occupationID))
        return false;
    if (Selected_ && Selected_->UpperBound(2) >= 0) {
        RefreshSelected();
        RefreshMaster();
    }
    return true;
}

void SelectionLists::RemoveFromSelected(controls::Grid& grid) {
    common::Trap("RemoveFromSelected", [&] {
        common::IgnoreErrors([&] { grid.Delete(); });
        grid.Update();
        unsaved_ = true;
        if (const controls::Grid::BookmarkType current = grid.Bookmark; !current)
            grid.MoveLast();
        RefreshMaster();
    });
}

void SelectionLists::MoveSelectedRow(bool up) {
    const controls::Grid::BookmarkType current = tgrd_selected_.Bookmark;
    if (!current) {
        common::ShowMessage(common::Message("Invalid selection", "Action Required"));
        return;
    }
    if (!Selected_ || Selected_->UpperBound(1) < 0)
        return;
    const long row = static_cast<long>(*current);
    const long other = up ? row - 1 : row + 1;
    if (other < 0 || other > Selected_->UpperBound(1))
        return;
    QYxArray moved;
    moved.ReDim(0, 0, 0, Selected_->UpperBound(2));
    CopyRow(*Selected_, row, moved, 0);
    CopyRow(*Selected_, other, *Selected_, row);
    CopyRow(moved, 0, *Selected_, other);
    unsaved_ = true;
    tgrd_selected_.Refresh();
    tgrd_selected_.ReBind();
    tgrd_selected_.Bookmark = controls::Grid::BookmarkType(other);
}

void SelectionLists::ReleaseSelectionArrays() {
    Selected_.reset();
    Master_.reset();
    unsaved_ = false;
    tgrd_selected_.Array = nullptr;
    tgrd_master_.Array = nullptr;
}

} // namespace quillary::wages
