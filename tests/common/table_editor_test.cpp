#include "common/table_editor.h"

#include "config/configuration_fixture.h"
#include "config/globals.h"
#include "config/installation.h"
#include "config/profile_store.h"
#include "config/settings.h"
#include "platform/controls/form_host.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/paths.h"

#include <filesystem>
#include <fstream>

// The table editor on the wage database's tables, and its column definition files.
namespace quillary::common {

namespace {

using runtime::RunTimeError;

// A user who works on the editor while it is shown.
class Users : public controls::FormHost {
public:
    std::vector<std::function<void(TableEditor&)>> visits; // one a showing, the first first

    Users() { controls::SetFormHost(this); }
    ~Users() override { controls::SetFormHost(nullptr); }
    void FormShown(controls::Form&, bool) override {}
    void FormHidden(controls::Form&) override {}
    void RunModal(controls::Form& form) override {
        ASSERT_FALSE(visits.empty());
        const auto visit = visits.front();
        visits.erase(visits.begin());
        visit(dynamic_cast<TableEditor&>(form));
        if (form.IsOpen())
            form.RequestClose();
    }
    void PopupMenu(controls::Form&, controls::MenuItem&, int, int) override {}
    void DoEvents() override {}
    int ScreenWidth() const override { return 19200; }
    int ScreenHeight() const override { return 14400; }
};

class TableEditorTest : public test::ConfigurationTest {
protected:
    TableEditorTest() {
        auto& services = system::TheServices();
        services.messageBoxes = messages_;
        services.errorReports = reports_;
        config::InstallationOptions options;
        options.layout = config::DocumentsLayout(root_ / "documents");
        options.level = config::InstallationLevel::Empty;
        config::MakeInstallation(options);
        controls::DataControl::SetEngine([]() -> database::Engine& { return config::DbEngine(); });
        db_ = config::DbEngine().OpenDatabase(config::GetWageFileName());
        Run("INSERT INTO TaxTypes (TaxTypeID, TaxName) VALUES (7, 'M')");
        Run("INSERT INTO TaxTypes (TaxTypeID, TaxName) VALUES (8, 'S')");
        Run("INSERT INTO TaxSteps (upperlimit, taxrate, taxtypeID) VALUES (48000, 17.5, 7)");
        Run("INSERT INTO TaxSteps (upperlimit, taxrate, taxtypeID) VALUES (14000, 10.5, 7)");
        Run("INSERT INTO TaxSteps (upperlimit, taxrate, taxtypeID) VALUES (99999, 33, 8)");
    }
    ~TableEditorTest() override {
        SetEditorMenu(nullptr);
        controls::DataControl::SetEngine({});
        db_.reset();
        config::DbEngine().ReleaseIdle();
    }

    void Run(const std::string& statement) { db_->Execute(statement, database::kFailOnError); }
    std::string Rows(const std::string& sql) {
        std::string text;
        auto rows = db_->OpenRecordset(sql);
        for (; !rows->EOF_(); rows->MoveNext()) {
            for (int field = 0; field < rows->FieldCount(); ++field)
                text += (field ? "|" : "") + runtime::TextOf((*rows)[field].Value());
            text += " ";
        }
        return text;
    }
    static std::string Path(const char* file) {
        return system::ToNative(system::Join(config::GetDataRoot(), file));
    }
    static void WriteSteps(std::int32_t taxType) {
        WriteColumnFile("TaxSteps", {{"Upper Limit", "upperlimit", 30, kColumnCurrency, 2000, 1},
                                     {"Rate", "taxrate", 30, kColumnSingle, 2000, 0},
                                     {"TaxStepsID", "TaxStepsID", 0, kColumnText, 0, 0},
                                     {"taxtypeID", "taxtypeID", 0, kColumnFixed, taxType, 0}});
    }
    static std::string StepsQuery(std::int32_t taxType) {
        return "SELECT DISTINCTROW TaxSteps.[TaxStepsID], TaxSteps.[upperlimit], TaxSteps.[taxrate], "
               "TaxSteps.[taxtypeID] From TaxSteps WHERE (((TaxSteps.[taxtypeID])=" +
               std::to_string(taxType) + ")) order by TaxSteps.[upperlimit];";
    }
    static void EditSteps(std::int32_t taxType) {
        WriteSteps(taxType);
        startdata(3, "TaxSteps", true, StepsQuery(taxType), "Tax Steps", "", "", 0, 1, 0);
    }
    static std::string Shown(TableEditor& editor) {
        std::string text;
        for (long row = 0; row < editor.tgrd_data.RowCount(); ++row)
            text += editor.tgrd_data.Shown(row, 0) + "|" + editor.tgrd_data.Shown(row, 1) + " ";
        return text;
    }

    std::shared_ptr<test::RecordedMessages> messages_ = std::make_shared<test::RecordedMessages>();
    std::shared_ptr<test::RecordedReports> reports_ = std::make_shared<test::RecordedReports>();
    std::shared_ptr<database::Database> db_;
    Users users_;
};

TEST_F(TableEditorTest, ColumnFilesAreReadAsTheyWereWritten) {
    const std::vector<ColumnDefinition> written = {
        {"VAT, \"duty\" & \"\"", "Name", 30, kColumnText, 2000, 1, ColumnMarks{false, true}},
        {"", "Zahl\r\nzwei", 5, kColumnBoolean, -1, 0, ColumnMarks{true, false}},
        {"Año", "taxtypeID", 0, kColumnFixed, 2147483647, 0}};
    WriteColumnFile("Columns", written);
    const auto read = ReadColumnFile("Columns", 3);
    ASSERT_EQ(read.size(), 3U);
    for (std::size_t i = 0; i < read.size(); ++i) {
        EXPECT_EQ(read[i].caption, written[i].caption);
        EXPECT_EQ(read[i].field, written[i].field);
        EXPECT_EQ(read[i].length, written[i].length);
        EXPECT_EQ(read[i].type, written[i].type);
        EXPECT_EQ(read[i].width, written[i].width);
        EXPECT_EQ(read[i].number, written[i].number);
        ASSERT_EQ(read[i].marks.has_value(), written[i].marks.has_value());
        const ColumnMarks marks = written[i].marks.value_or(ColumnMarks{});
        EXPECT_EQ(read[i].marks.value_or(ColumnMarks{}).picture, marks.picture);
        EXPECT_EQ(read[i].marks.value_or(ColumnMarks{}).leading, marks.leading);
    }
}

TEST_F(TableEditorTest, DamagedColumnFilesRaiseTheirNumbers) {
    const struct {
        const char* text;
        int number; // 0: it is read
    } cases[] = {
        {"\"A\",\"B\",1,18,20,1\r\n", 0},
        {"\"A\",\"B\", 1 ,18,20,1,#true#,#FALSE#", 0},
        {"A,B,1,18,20,1\n", 0},
        {"", 62},
        {"\"A\",\"B\",1,18\r\n", 62},
        {"\"A", 62},
        {"\"A\",\"B\",1,18,20,1,#TRUE#\r\n", 62},
        {"\"A\"x,\"B\",1,18,20,1\r\n", 13},
        {"\"A\",\"B\",one,18,20,1\r\n", 13},
        {"\"A\",\"B\",99999,18,20,1\r\n", 13},
        {"\"A\",\"B\",1,18,20,1,YES,NO\r\n", 13},
    };
    for (const auto& c : cases) {
        std::ofstream(Path("Columns"), std::ios::binary) << c.text;
        int number = 0;
        try {
            EXPECT_EQ(ReadColumnFile("Columns", 1).front().field, "B") << c.text;
        } catch (const RunTimeError& error) {
            number = error.Number();
        }
        EXPECT_EQ(number, c.number) << c.text;
    }
    std::filesystem::remove(Path("Columns"));
    EXPECT_THROW(ReadColumnFile("Columns", 1), RunTimeError);
}

TEST_F(TableEditorTest, NewRowsTakeTheFixedValueAndRowsKeepTheirKey) {
    users_.visits = {[this](TableEditor& editor) {
        EXPECT_EQ(Shown(editor), "14,000.00|10.5 48,000.00|17.5 ");
        EXPECT_FALSE(editor.lbl_Prompt.Visible);
        EXPECT_FALSE(editor.tgrd_data.Columns("taxtypeID").Visible);
        EXPECT_TRUE(editor.tgrd_data.EditCell(1, "11"));
        EXPECT_TRUE(editor.cmd_Add.Press());
        EXPECT_TRUE(editor.tgrd_data.EditCell(0, "70,000.5"));
        EXPECT_TRUE(editor.tgrd_data.EditCell(1, "33"));
        EXPECT_TRUE(editor.tgrd_data.EditCell(0, "1e18").IsRefused());
        // The cell in edit is told apart from a row that holds nothing: that one is not written.
        EXPECT_TRUE(editor.cmd_Add.Press());
        EXPECT_TRUE(editor.tgrd_data.BeginEdit(0));
    }};
    EditSteps(7);
    EXPECT_EQ(Rows("SELECT upperlimit, taxrate, taxtypeID FROM TaxSteps ORDER BY TaxStepsID"),
              "48000|17.5|7 14000|11|7 99999|33|8 70000.5|33|7 ");
    ASSERT_EQ(messages_->shown.size(), 1U);
    EXPECT_EQ(messages_->shown[0].prompt,
              "1e18 is not a number that Upper Limit can hold, please enter another one");
    EXPECT_FALSE(mDataModule);
}

TEST_F(TableEditorTest, TheMenuPutsAnotherQueryIntoTheOpenEditor) {
    SetEditorMenu([](int taxType) {
        WriteSteps(taxType);
        mDataModule->Run(3, "TaxSteps", StepsQuery(taxType), "Other steps");
        Close_Data();
    });
    EXPECT_FALSE(RaiseEditorMenu(8)) << "none is open";
    users_.visits = {[this](TableEditor& editor) {
                         EXPECT_TRUE(editor.tgrd_data.EditCell(1, "12"));
                         EXPECT_TRUE(RaiseEditorMenu(8));
                         EXPECT_FALSE(editor.IsOpen());
                     },
                     [this](TableEditor& editor) {
                         EXPECT_EQ(editor.Caption, "Other steps");
                         EXPECT_EQ(Shown(editor), "99,999.00|33 ");
                         EXPECT_TRUE(editor.tgrd_data.EditCell(1, "39"));
                     }};
    EditSteps(7);
    EXPECT_EQ(Rows("SELECT taxrate FROM TaxSteps ORDER BY TaxStepsID"), "17.5 12 39 ");
    EXPECT_TRUE(reports_->reports.empty());
    EXPECT_FALSE(mDataModule);
}

TEST_F(TableEditorTest, AQueryThatFailsLeavesTheOpenEditorAsItWas) {
    users_.visits = {[this](TableEditor& editor) {
        WriteSteps(8);
        EXPECT_THROW(editor.Run(3, "TaxSteps", "SELECT * FROM Nothing", "Nothing"), RunTimeError);
        EXPECT_THROW(editor.Run(9, "TaxSteps", StepsQuery(8), "Nothing"), RunTimeError);
        EXPECT_EQ(Shown(editor), "14,000.00|10.5 48,000.00|17.5 ");
        EXPECT_EQ(editor.Caption, "Tax Steps");
    }};
    EditSteps(7);
    EXPECT_TRUE(reports_->reports.empty());
    // An editor that cannot be opened is reported, and nothing stays behind.
    startdata(3, "No file", true, StepsQuery(7), "Tax Steps", "", "", 0, 1, 0);
    ASSERT_EQ(reports_->reports.size(), 1U);
    EXPECT_EQ(reports_->reports[0].routine, "frm_setup.startdata");
    EXPECT_EQ(reports_->reports[0].number, 53);
    EXPECT_FALSE(mDataModule);
}

// The form with six values a line has no picture columns: yes and no are words.
TEST_F(TableEditorTest, BooleansOfTheShortFormAreWords) {
    Run("INSERT INTO PaymentNames (PayUnitname, Calculation, Salary) VALUES ('Hour', 1, False)");
    WriteColumnFile("PaymentNames", {{"Payment", "PayUnitname", 30, kColumnText, 2000, 1},
                                     {"Calculation", "Calculation", 10, kColumnSingle, 1000, 0},
                                     {"Salary", "Salary", 5, kColumnBoolean, 500, 0},
                                     {"PaymentNameID", "PaymentNameID", 0, kColumnText, 0, 0}});
    users_.visits = {[](TableEditor& editor) {
        EXPECT_EQ(editor.lbl_Prompt.Caption, "Edit existing payments");
        EXPECT_EQ(editor.tgrd_data.Shown(0, 2), "No");
        EXPECT_TRUE(editor.tgrd_data.EditCell(2, "Yes"));
        EXPECT_TRUE(editor.cmd_Add.Press());
        EXPECT_TRUE(editor.tgrd_data.EditCell(0, "Day"));
        EXPECT_EQ(editor.tgrd_data.Shown(1, 2), "No");
    }};
    startdata(3, "PaymentNames", true, "SELECT DISTINCTROW * FROM PaymentNames ORDER BY PayUnitname",
              "Payments", "Edit existing payments", "", 0, 1, 0);
    EXPECT_EQ(Rows("SELECT PayUnitname, Calculation, Salary FROM PaymentNames ORDER BY PaymentNameID"),
              "Hour|1|True Day||False ");
}

} // namespace
} // namespace quillary::common
