#include "common/binding.h"
#include "config/configuration_fixture.h"
#include "config/installation.h"
#include "platform/controls/form.h"
#include "platform/runtime/conversions.h"

// Lists and columns filled from the engine itself.
namespace quillary::common {

namespace {

using runtime::Variant;

class BindingTest : public test::ConfigurationTest {
protected:
    BindingTest() {
        system::TheServices().messageBoxes = messages_;
        config::InstallationOptions options;
        options.layout = config::DocumentsLayout(root_ / "documents");
        options.level = config::InstallationLevel::Empty;
        config::MakeInstallation(options);
        path_ = (root_ / "documents") + "/data/Farm32.mdb";
        db_ = config::DbEngine().OpenDatabase(path_);
    }
    ~BindingTest() override {
        db_.reset();
        config::DbEngine().ReleaseIdle();
    }
    void Run(const std::string& statement) { db_->Execute(statement, database::kFailOnError); }
    // "id text*|id text": the entries, the selected one starred.
    std::string Entries() const {
        std::string all;
        for (int i = 0; i < combo_.ListCount(); ++i)
            all += (i ? "|" : "") + std::to_string(combo_.ItemData(i)) + " " + combo_.List(i) +
                   (combo_.ListIndex == i ? "*" : "");
        return all;
    }
    std::string Items(int column) const {
        const auto& items = grid_.Columns(column).ValueItems;
        std::string all;
        for (int i = 0; i < items.Count(); ++i)
            all += (i ? "|" : "") + runtime::TextOf(items[i].value) + "=" + items[i].displayValue;
        return all;
    }

    std::shared_ptr<test::RecordedMessages> messages_ = std::make_shared<test::RecordedMessages>();
    std::string path_;
    std::shared_ptr<database::Database> db_;
    controls::Form form_{"frm_test"};
    controls::ComboBox combo_{form_, "cmb"};
    controls::Grid grid_{form_, "tgrd"};
};

TEST_F(BindingTest, AComboTakesIdTextAndSelection) {
    Run("CREATE TABLE Places (ID LONG, Place TEXT(20), Usual BIT)");
    Run("INSERT INTO Places VALUES (3, 'Barn', False)");
    Run("INSERT INTO Places VALUES (7, Null, True)"); // no text: no entry
    Run("INSERT INTO Places VALUES (5, 'Mill', True)");
    const struct {
        const char* sql;
        std::int32_t selected;
        ComboOptions options;
        const char* expected;
    } cases[] = {
        {"SELECT ID, Place FROM Places ORDER BY ID", 5, {}, "3 Barn|5 Mill*"},
        {"SELECT ID, Place FROM Places ORDER BY ID", 4, {}, "3 Barn*|5 Mill"},
        {"SELECT ID, Place FROM Places ORDER BY ID", 0, {.firstEntry = true}, "0 None*|3 Barn|5 Mill"},
        {"SELECT ID, Place FROM Places ORDER BY ID",
         3,
         {.firstEntry = true, .noneText = "any"},
         "0 any|3 Barn*|5 Mill"},
        {"SELECT ID, Place, Usual FROM Places ORDER BY ID", 0, {.defaultField = "Usual"}, "3 Barn|5 Mill*"},
        {"SELECT ID, Place, Usual FROM Places ORDER BY ID", 3, {.defaultField = "Usual"}, "3 Barn*|5 Mill"},
        {"SELECT Place FROM Places ORDER BY ID", 3, {.useIDs = false}, "0 Barn*|0 Mill"},
        {"SELECT ID FROM Places ORDER BY ID", 7, {}, "3 3|5 5|7 7*"},
        {"SELECT ID, Place FROM Places WHERE ID > 9", 3, {}, ""},
    };
    for (const auto& c : cases) {
        FillDaoVBCombo(c.sql, combo_, *db_, c.selected, c.options);
        EXPECT_EQ(Entries(), c.expected) << c.sql << " " << c.selected;
    }
    EXPECT_TRUE(messages_->shown.empty());
}

TEST_F(BindingTest, AComboThatCannotBeFilledSaysSoAndKeepsItsEntries) {
    combo_.AddItem("former", 1);
    FillDaoVBCombo("SELECT ID, Place FROM Nowhere", combo_, *db_, 1);
    ASSERT_EQ(messages_->shown.size(), 1U);
    EXPECT_NE(
        messages_->shown[0].prompt.find("(3078) was generated in CommonCode.DAOVBCombo.bas FillDaoVBCombo"),
        std::string::npos);
    EXPECT_EQ(Entries(), "1 former");
}

TEST_F(BindingTest, ColumnsAreMadeAnew) {
    grid_.AddColumn().Caption = "former";
    const std::vector<GridColumn> columns = {
        {.caption = "ID", .dataField = "RebateID", .visible = false},
        {.caption = "Rate", .width = 600, .dataField = "Rate", .numberFormat = "Fixed"},
        {.caption = "Quantity", .width = 400, .checkBox = true},
    };
    SetGridColumns(grid_, columns);
    ASSERT_EQ(grid_.ColumnCount(), 3);
    EXPECT_FALSE(grid_.Columns(0).Visible);
    EXPECT_EQ(grid_.Columns(1).DataField.Get(), "Rate");
    EXPECT_EQ(grid_.Columns(1).Shown(2.5), "2.50");
    EXPECT_TRUE(grid_.Columns(2).ShowsPictures());
    EXPECT_EQ(grid_.Columns(2).ValueItems[grid_.Columns(2).ValueItems.FindValue("True")].picture, 102);
    EXPECT_EQ(grid_.Columns(2).ValueItems[grid_.Columns(2).ValueItems.FindValue(0)].picture, 103);

    SetGridCaptions(grid_, std::vector<std::string>{"a", "b", "c", "beyond"});
    SetColumnWidths(grid_, std::vector<Variant>{Variant::Null(), 900});
    EXPECT_EQ(grid_.PropertyText("Captions"), "a|b|c");
    EXPECT_EQ(grid_.PropertyText("ColumnWidth(0)"), "0");
    EXPECT_EQ(grid_.PropertyText("ColumnWidth(1)"), "900");

    SetGridColumns(grid_, {});
    EXPECT_EQ(grid_.ColumnCount(), 0);
}

TEST_F(BindingTest, AValueListComesFromATableOrAQuery) {
    grid_.AddColumn();
    Run("INSERT INTO TaxRates (TaxRateNumber, [Rate %]) VALUES (2, 15)");
    Run("INSERT INTO TaxRates (TaxRateNumber, [Rate %]) VALUES (9, 12.5)");
    FillColumnList(grid_, 0, "TaxRates", "TaxRateNumber", "Rate %", path_);
    EXPECT_EQ(Items(0), "9=12.5|2=15");

    Run("CREATE TABLE Kinds (ID LONG, Kind TEXT(20), Factor SINGLE)");
    Run("INSERT INTO Kinds VALUES (4, 'Sale', 1.5)");
    Run("INSERT INTO Kinds VALUES (Null, 'Nothing', 2)");
    ThirdFields factors;
    FillColumnFromSql(grid_, 0, "SELECT * FROM Kinds", "Kinds", "ID", "Kind", path_,
                      {.firstEmpty = true, .remembered = &factors});
    EXPECT_EQ(Items(0), "=|4=Sale");
    EXPECT_EQ(factors.size(), 1U);
    EXPECT_EQ(runtime::TextOf(factors[4]), "1.5");
    EXPECT_EQ(grid_.Columns(0).Shown(4), "Sale");
    EXPECT_EQ(grid_.Columns(0).Shown(5), "5"); // not in the list
    EXPECT_TRUE(messages_->shown.empty());
}

TEST_F(BindingTest, AValueListThatCannotBeReadSaysWhatIsMissing) {
    grid_.AddColumn();
    FillColumnList(grid_, 0, "Kinds", "ID", "Kind", path_);
    FillColumnList(grid_, 0, "TaxRates", "TaxRateNumber", "Nothing", path_);
    FillColumnList(grid_, 0, "TaxRates", "TaxRateNumber", "Rate %", path_ + ".gone");
    ASSERT_EQ(messages_->shown.size(), 3U);
    EXPECT_EQ(messages_->shown[0].prompt, "Database out of date, problem reading Kinds, ID, Kind");
    EXPECT_EQ(messages_->shown[0].heading, "An Error has Occurred");
    EXPECT_NE(messages_->shown[1].prompt.find(" 3061 - TaxRates, TaxRateNumber, Nothing"), std::string::npos);
    EXPECT_NE(messages_->shown[2].prompt.find(" 3024 - TaxRates, TaxRateNumber, Rate %"), std::string::npos);
    EXPECT_EQ(grid_.Columns(0).ValueItems.Count(), 0);
}

TEST_F(BindingTest, BooleansReadAsWordsAndAreWrittenAsText) {
    auto array = std::make_shared<controls::QYxArray>();
    array->ReDim(0, 0, 0, 1);
    array->Value(0, 0) = -1;
    array->Value(0, 1) = "False";
    grid_.AddColumn();
    grid_.AddColumn();
    SetYesNoColumn(grid_, 0);
    SetYesNoColumn(grid_, 1);
    SetYesNoColumn(grid_, 1); // once more changes nothing
    grid_.Array = array;
    grid_.ReBind();
    EXPECT_EQ(grid_.Shown(0, 0), "Yes");
    EXPECT_EQ(grid_.Shown(0, 1), "No");
    EXPECT_EQ(Items(1), "True=Yes|False=No");
    SetColumnBoolText(grid_, 1, "TRUE");
    SetColumnBoolText(grid_, 0, "");
    ASSERT_TRUE(grid_.Update());
    EXPECT_EQ(runtime::TextOf(array->Value(0, 1)), "True");
    EXPECT_EQ(runtime::TextOf(array->Value(0, 0)), "False");
}

} // namespace

} // namespace quillary::common
