#include "tax/gst_types.h"

#include "common/binding.h"
#include "common/error_report.h"
#include "common/messages.h"
#include "common/value_checks.h"
#include "config/globals.h"
#include "config/profile_store.h"
#include "config/tokens.h"
#include "platform/runtime/conversions.h"

namespace quillary::tax {

using runtime::Variant;

namespace {

// Columns of the types: of the query and of the array; all but the last are columns of the grid, too.
enum TypeColumn {
    kTypeID,
    kTypeName,
    kTaxNumber,
    kRateNumber,
    kIsExpense,
    kDisplayOrder,
    kHidden,
    kMultiplier,
    kCountry
};
constexpr int kNameLimit = 20;

constexpr const char* kRateTable = "TaxRates";
constexpr const char* kRateNumberField = "TaxRateNumber";
constexpr const char* kPercentField = "Rate %";
constexpr int kRateColumn = 0;
constexpr int kPercentColumn = 1;

std::string TypesOfCountry() {
    return "SELECT DISTINCTROW TaxTypeID, TaxTypeName, TaxNumber, TaxRateNumber, IsExpense, DisplayOrder, "
           "TaxTypes.Hidden, TaxTypes.Multiplier, TaxTypes.Country "
           "From TaxTypes "
           "Where Country = " +
           std::to_string(config::GetCountryCode()) +
           "  and Hidden = false "
           "ORDER BY DisplayOrder;";
}

// A cell of a Null field is empty, and counts as 0 and False.
std::int32_t WholeNumber(const Variant& cell) {
    return cell.IsEmpty() ? 0 : runtime::CLng(cell);
}

bool YesNo(const Variant& cell) {
    return !cell.IsEmpty() && runtime::CBool(cell);
}

} // namespace

// ---- Types

GSTTypes::GSTTypes(controls::Grid& tgrd_GSTTypes)
    : grid_(tgrd_GSTTypes), types_(std::make_shared<controls::QYxArray>()) {
    grid_.Array = types_;
    // A click on the picture makes the other value of it; whatever else is typed there is dropped.
    grid_.BeforeColEdit = [this](int colIndex, int, bool&) {
        common::Trap("frm_setup.tgrd_GSTTypes_BeforeColEdit", [&] {
            if (colIndex == kIsExpense)
                shownExpense_ = grid_.Columns(kIsExpense).Text;
        });
    };
    grid_.AfterColEdit = [this](int colIndex) {
        common::Trap("frm_setup.tgrd_GSTTypes_AfterColEdit", [&] {
            if (colIndex != kIsExpense)
                return;
            controls::Column& expense = grid_.Columns(kIsExpense);
            if (runtime::TextOf(expense.Value) == " ")
                expense.Value = shownExpense_ == "True" ? "False" : "True";
            else
                expense.Value = shownExpense_;
        });
    };
    grid_.BeforeColUpdate = [this](int colIndex, Variant&, bool& cancel) {
        common::Trap("frm_setup.tgrd_GSTTypes_BeforeColUpdate", [&] { BeforeColUpdate(colIndex, cancel); });
    };
}

void GSTTypes::SetUpGSTTypes(const std::string& caption) {
    using common::GridColumn;
    const GridColumn hidden{.visible = false};
    const GridColumn columns[] = {
        hidden,
        {.caption = caption, .width = 2000},
        hidden,
        {.caption = "Percent", .width = 750},
        {.caption = "Expense", .width = 750, .checkBox = true},
        {.caption = "Order", .width = 500},
        hidden,
        hidden,
    };
    common::SetGridColumns(grid_, columns);
    for (const int number : {kRateNumber, kDisplayOrder})
        grid_.Columns(number).Alignment = controls::Column::Align::Right; // their cells hold text
    typesQuery_ = TypesOfCountry();
    FillTaxArray(typesQuery_, config::GetDataFileName());
    ShowRates();
}

void GSTTypes::ShowRates() {
    common::FillColumnList(grid_, kRateNumber, kRateTable, kRateNumberField, kPercentField,
                           config::GetDataFileName());
}

void GSTTypes::FillTaxArray(std::string_view sql, std::string_view databasePath) {
    common::Trap("FillTaxArray", [&] {
        auto db = config::DbEngine().OpenDatabase(databasePath);
        auto types = db->OpenRecordset(sql, database::RecordsetType::Snapshot);
        long upperRow = -1;
        if (!types->EOF_()) {
            types->MoveLast();
            upperRow = types->RecordCount() - 1;
            types->MoveFirst();
        }
        // Taken when all is read: rows without their numbers would be saved as new ones.
        const auto array = std::make_shared<controls::QYxArray>();
        array->ReDim(0, upperRow, kTypeID, kCountry);
        for (long row = 0; !types->EOF_(); types->MoveNext(), ++row)
            for (int column = kTypeID; column <= kCountry; ++column)
                // A Null has no text: its cell stays empty.
                common::IgnoreErrors(
                    [&] { array->Value(row, column) = runtime::CStr((*types)[column].Value()); });
        grid_.Array = types_ = array;
        grid_.Refresh();
        grid_.ReBind();
        types->Close();
        db->Close();
    });
}

void GSTTypes::SaveGSTTypes() {
    if (!config::gGSTLoaded || typesQuery_.empty())
        return;
    common::Trap("SaveGSTTypes", [&] {
        auto db = config::DbEngine().OpenDatabase(config::GetDataFileName());
        auto types = db->OpenRecordset(typesQuery_, database::RecordsetType::Dynaset);
        for (long row = 0; row <= types_->UpperBound(1); ++row) {
            const Variant& typeID = types_->Value(row, kTypeID);
            if (WholeNumber(typeID) > 0) {
                types->FindFirst("[TaxTypeID]=" + runtime::TextOf(typeID));
                if (types->NoMatch()) {
                    common::ShowMessage(common::Message("Something wrong here - ID missing from dbase",
                                                        "An Error has Occurred"));
                    continue;
                }
                types->Edit();
                SaveValues(*types, row, 0);
            } else {
                // Meant: the rows visited so far are counted, so that a number may come twice; and the
                // row keeps its 0, so that the next save adds it again.
                const auto taxNumber = static_cast<std::int32_t>(types->RecordCount() + 1);
                types->AddNew();
                SaveValues(*types, row, taxNumber);
            }
        }
        types->Close();
    });
}

void GSTTypes::SaveValues(database::Recordset& types, long row, std::int32_t taxNumber) {
    const auto cell = [&](int column) -> const Variant& { return types_->Value(row, column); };
    types[kTypeName] = cell(kTypeName);
    types[kRateNumber] = WholeNumber(cell(kRateNumber));
    types[kIsExpense] = YesNo(cell(kIsExpense));
    types[kDisplayOrder] = WholeNumber(cell(kDisplayOrder));
    types[kHidden] = YesNo(cell(kHidden));
    // The multiplier is derived, not edited: -1 for an expense, else 0.
    types[kMultiplier] = runtime::CLng(types[kIsExpense].Value());
    if (types["Country"].Value().IsNull())
        types["Country"] = config::GetCountryCode();
    if (taxNumber > 0)
        types[kTaxNumber] = taxNumber;
    types.Update();
}

void GSTTypes::AddGSTTypeRow() {
    const long upper = types_->UpperBound(1);
    const long newOrder = upper + 1;
    grid_.Update();
    if (const auto bookmark = grid_.Bookmark.Get())
        types_->InsertRows(static_cast<long>(*bookmark));
    else
        types_->ReDim(0, upper + 1, kTypeID, kCountry);
    grid_.ReBind();
    const auto row = static_cast<long>(grid_.Bookmark.Get().value());
    types_->Value(row, kTypeID) = "0";
    types_->Value(row, kTypeName) = "New type";
    types_->Value(row, kRateNumber) = "0";
    types_->Value(row, kIsExpense) = "False";
    types_->Value(row, kHidden) = "False";
    types_->Value(row, kDisplayOrder) = std::to_string(newOrder - 1); // meant: the former upper bound
    grid_.Refresh();
    grid_.EditActive = true;
    grid_.EditActive = false;
    grid_.SetFocus();
}

void GSTTypes::BeforeColUpdate(int colIndex, bool& cancel) {
    if (colIndex == kIsExpense || colIndex == kHidden)
        return;
    Variant typed = grid_.Columns(colIndex).Value.Get();
    cancel = colIndex == kTypeName ? common::TooLong(typed, kNameLimit, false)
                                   : common::OutOfRange(typed, common::kRangeInteger);
}

// ---- Rates

void SetUpGSTRates(controls::Grid& tgrd_GSTRates, controls::DataControl& dat_GSTRates, GSTTypes& types) {
    const common::GridColumn columns[] = {
        {.width = 1000, .dataField = kRateNumberField, .numberFormat = "General Number"},
        {.width = 1200, .dataField = kPercentField, .numberFormat = "Fixed"},
    };
    common::SetGridColumns(tgrd_GSTRates, columns);
    for (const int number : {kRateColumn, kPercentColumn})
        tgrd_GSTRates.Columns(number).Alignment = controls::Column::Align::Right; // the captions, too
    tgrd_GSTRates.AllowAddNew = true;
    tgrd_GSTRates.SetDataSource(&dat_GSTRates);

    tgrd_GSTRates.BeforeColUpdate = [&](int colIndex, Variant& oldValue, bool& cancel) {
        common::Trap("frm_setup.tgrd_GSTRates_BeforeColUpdate", [&] {
            controls::Column& column = tgrd_GSTRates.Columns(colIndex);
            const Variant typed = column.Value.Get();
            const auto refuse = [&] {
                column.Value = oldValue;
                cancel = true;
            };
            if (!runtime::IsNumeric(typed)) {
                refuse();
                return;
            }
            if (colIndex != kRateColumn)
                return;
            // The number as it will be stored, "2,4" as 2, whatever the regional settings write.
            auto rates = dat_GSTRates.Recordset().Clone();
            rates->FindFirst("[TaxRateNumber] = " +
                             runtime::NumberText(runtime::RoundHalfEven(runtime::CDbl(typed))));
            if (rates->NoMatch())
                return;
            common::Message message("Rate can only be used once", "Duplicate Tax Rate");
            message.subHeading = "Tax Rates";
            common::ShowMessage(message);
            refuse();
        });
    };
    // A new row of a percentage alone would fail with the engine's words.
    tgrd_GSTRates.BeforeUpdate = [&](bool& cancel) {
        common::Trap("frm_setup.tgrd_GSTRates_BeforeUpdate", [&] {
            if (!tgrd_GSTRates.OnNewRow() ||
                !runtime::TextOf(tgrd_GSTRates.Columns(kRateColumn).Value).empty())
                return;
            common::Message message("Please enter a number for the rate, one that no other rate has, or "
                                    "press Escape to drop the row.",
                                    "Input Required");
            message.subHeading = "Tax Rates";
            common::ShowMessage(message);
            cancel = true;
        });
    };
    tgrd_GSTRates.AfterUpdate = [&] {
        common::Trap("frm_setup.tgrd_GSTRates_AfterUpdate", [&] { types.ShowRates(); });
    };
    tgrd_GSTRates.Validate = [&](bool& cancel) {
        // A row that cannot be written keeps the focus in the grid.
        const bool trapped =
            common::Trap("tgrd_GSTRates_Validate", [&] { cancel = !tgrd_GSTRates.Update(); });
        if (!trapped)
            cancel = true;
    };
}

} // namespace quillary::tax
