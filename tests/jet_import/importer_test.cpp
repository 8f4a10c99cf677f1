#include "jet_import/importer.h"

#include "jet_import/fake_reader.h"
#include "platform/database/engine.h"
#include "platform/database/integrity.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/run_time_error.h"

#include <filesystem>
#include <gmock/gmock.h>

namespace quillary::jet_import {
namespace {

namespace fs = std::filesystem;
using database::FieldDef;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr auto kQuiet = [](const std::string&, std::int64_t, std::int64_t) {};

class Importing : public testing::Test {
protected:
    void SetUp() override {
        folder_ = fs::temp_directory_path() / ("import_test_" + std::to_string(getpid()));
        fs::create_directories(folder_);
    }
    void TearDown() override {
        database_.reset();
        engine_->ReleaseIdle();
        fs::remove_all(folder_);
    }

    ImportReport Run() {
        path_ = (folder_ / ("target" + std::to_string(++made_) + ".mdb")).string();
        database::BulkLoad target(path_);
        ImportReport report = Import(source_, target, kQuiet);
        database_ = engine_->OpenDatabase(path_);
        return report;
    }

    // One column of all rows, as text.
    std::vector<std::string> Column(const std::string& sql) {
        std::vector<std::string> result;
        const auto rows = database_->OpenRecordset(sql, database::RecordsetType::Snapshot);
        for (; !rows->EOF_(); rows->MoveNext()) {
            const database::Variant value = (*rows)[0].Value();
            result.push_back(value.IsNull() ? "Null" : runtime::CStr(value));
        }
        return result;
    }

    int ErrorOf(const std::string& sql) {
        try {
            database_->Execute(sql, database::kFailOnError);
            return 0;
        } catch (const runtime::RunTimeError& error) {
            return error.Number();
        }
    }

    FakeReader source_;
    fs::path folder_;
    std::string path_;
    int made_ = 0;
    std::unique_ptr<database::Engine> engine_ = database::CreateSqliteEngine();
    std::shared_ptr<database::Database> database_;
};

FieldDef Counter(const std::string& name) {
    FieldDef field = Field(name, FieldType::Long);
    field.counter = true;
    return field;
}

TEST_F(Importing, TableComesAcrossWithItsRules) {
    FieldDef name = Field("Mob Name", FieldType::Text, 10);
    name.required = true;
    name.allowZeroLength = false;
    JetTable& mobs = source_.Add(
        "Mobs of 2014",
        {Counter("Id"), name, Field("Price", FieldType::Currency), Field("Weight", FieldType::Single),
         Field("Born", FieldType::Date), Field("Sold", FieldType::Boolean)},
        "Id",
        {{Whole(7), Text("Ewes"), Whole(123456789), Real(0.105F), Real(-1.25), Whole(-1)},
         {Whole(3), Text("Rams"), Null(), Null(), Null(), Whole(0)}});
    mobs.lastCounter = 41;
    mobs.fields[2].defaultText = "=2.5";
    mobs.fields[2].validationRule = ">=0 Or Is Null";
    mobs.fields[4].defaultText = "#1/2/2014#";
    mobs.fields[5].defaultText = "=Yes";
    mobs.indexes.push_back({{"ByName", {"Mob Name"}, false, true, false}, {true}});
    const ImportReport report = Run();
    EXPECT_THAT(report.losses, IsEmpty());
    EXPECT_THAT(report.notes, IsEmpty());
    EXPECT_EQ(report.indexes, 2);
    EXPECT_THAT(database::CheckIntegrity(path_), IsEmpty());
    EXPECT_THAT(
        Column("SELECT [Mob Name] & ';' & Price & ';' & Weight & ';' & Format(Born, 'yyyy-mm-dd hh:nn') "
               "& ';' & Sold FROM [Mobs of 2014] WHERE Id = 7"),
        ElementsAre("Ewes;12345.6789;0.105;1899-12-29 06:00;-1"));
    // What is written from now on keeps the rules, and the counter goes on where it stood.
    EXPECT_EQ(ErrorOf("INSERT INTO [Mobs of 2014] ([Mob Name]) VALUES ('Hogget')"), 0);
    EXPECT_THAT(Column("SELECT Id & ';' & Price & ';' & Sold & ';' & Year(Born) FROM [Mobs of 2014] "
                       "WHERE [Mob Name] = 'Hogget'"),
                ElementsAre("42;2.5;-1;2014"));
    EXPECT_EQ(ErrorOf("INSERT INTO [Mobs of 2014] (Price) VALUES (1)"), 3314);
    EXPECT_EQ(ErrorOf("INSERT INTO [Mobs of 2014] ([Mob Name]) VALUES ('EWES')"), 3022);
    EXPECT_EQ(ErrorOf("INSERT INTO [Mobs of 2014] ([Mob Name]) VALUES ('')"), 3315);
    EXPECT_EQ(ErrorOf("INSERT INTO [Mobs of 2014] ([Mob Name], Price) VALUES ('Bull', -1)"), 3317);
    EXPECT_EQ(ErrorOf("INSERT INTO [Mobs of 2014] ([Mob Name]) VALUES ('A name too long')"), 3163);
}

// Each of these breaks a rule of the new database; all rows are there afterwards, and the report says so.
TEST_F(Importing, RowsThatBreakARuleAreCarriedAndTold) {
    FieldDef required = Field("F", FieldType::Text, 5);
    required.required = true;
    FieldDef filled = Field("F", FieldType::Text, 5);
    filled.allowZeroLength = false;
    const std::string longText(300, 'x');
    const struct Case {
        const char* what;
        std::vector<FieldDef> fields;
        const char* key;
        std::vector<FakeReader::Row> rows;
        const char* told;
        bool loss;
    } cases[] = {
        {"a key twice",
         {Field("F", FieldType::Long)},
         "F",
         {{Whole(1)}, {Whole(2)}, {Whole(1)}},
         "index PrimaryKey lets the same values stand in several rows",
         true},
        {"a text key twice, but for its case",
         {Field("F", FieldType::Text, 5)},
         "F",
         {{Text("Ram")}, {Text("RAM")}},
         "index PrimaryKey lets the same",
         true},
        {"a key that is Null",
         {Field("F", FieldType::Long)},
         "F",
         {{Whole(1)}, {Null()}},
         "its key PrimaryKey is a plain index",
         true},
        {"a counter twice", {Counter("F")}, "", {{Whole(1)}, {Whole(1)}}, "no longer counts by itself", true},
        {"text too long",
         {Field("F", FieldType::Text, 5)},
         "",
         {{Text("longer")}, {Text("Tāmat")}},
         "wider than it was: 1 rows hold up to 6 characters",
         false},
        {"text longer than any field",
         {Field("F", FieldType::Text, 5)},
         "",
         {{Text(longText)}},
         "hold up to 300 characters",
         false},
        {"no value where one is required",
         {required},
         "",
         {{Null()}, {Text("a")}},
         "not required any more: 1 rows",
         false},
        {"empty text where it is refused",
         {filled},
         "",
         {{Text("")}, {Text("a")}},
         "takes empty text: 1 rows",
         false},
        {"no name", {Field("a.b[c]", FieldType::Long)}, "", {{Whole(1)}}, "was called 'a.b[c]'", false},
    };
    for (const Case& each : cases) {
        SCOPED_TRACE(each.what);
        source_ = {};
        source_.Add("T", each.fields, each.key, each.rows);
        const ImportReport report = Run();
        EXPECT_EQ(report.tables.at(0).written, static_cast<std::int64_t>(each.rows.size()));
        EXPECT_EQ(Column("SELECT Count(*) FROM T").at(0), std::to_string(each.rows.size()));
        EXPECT_THAT(each.loss ? report.losses : report.notes, Contains(HasSubstr(each.told)));
        EXPECT_EQ(report.losses.empty(), !each.loss);
        EXPECT_THAT(database::CheckIntegrity(path_), IsEmpty());
    }
}

TEST_F(Importing, UniqueIndexWithRepeatsNamesThem) {
    JetTable& table =
        source_.Add("T", {Field("A", FieldType::Long), Field("B", FieldType::Text, 9)}, "",
                    {{Whole(1), Text("x")}, {Whole(1), Text("X")}, {Null(), Null()}, {Null(), Null()}});
    table.indexes.push_back({{"Pair", {"A", "B"}, false, true, false}, {false, true}});
    const ImportReport report = Run();
    EXPECT_THAT(report.notes, ElementsAre("table T: index Pair: 2 rows hold 1, x"));
    EXPECT_THAT(report.losses, ElementsAre(HasSubstr("index Pair lets the same values")));
    EXPECT_FALSE(database_->TableDefs().at(0).indexes.at(0).unique);
}

TEST_F(Importing, RelationsHoldAndOrphansStay) {
    source_.Add("Parents", {Field("Id", FieldType::Long)}, "Id", {{Whole(1)}, {Whole(2)}});
    source_.Add("Free", {Field("Id", FieldType::Long)}, "", {{Whole(1)}});
    source_.Add("Children", {Field("Id", FieldType::Long), Field("Parent", FieldType::Long)}, "Id",
                {{Whole(10), Whole(1)}, {Whole(11), Whole(9)}, {Whole(12), Null()}});
    const auto relate = [&](const char* name, const char* parent, bool enforced) {
        JetRelation relation;
        relation.def = {name, parent, "Children", {"Id"}, {"Parent"}, false, true};
        relation.enforced = enforced;
        source_.relations.push_back(relation);
    };
    relate("Kept", "Parents", true);
    relate("Loose", "Parents", false);
    relate("Keyless", "Free", true);
    const ImportReport report = Run();
    EXPECT_EQ(report.relations, 1);
    EXPECT_THAT(report.losses, ElementsAre(HasSubstr("relation Keyless between Free and Children")));
    EXPECT_THAT(report.notes, Contains(HasSubstr("Loose")));
    EXPECT_THAT(report.notes, Contains("table Children: 1 rows have no related row by the relation Kept"));
    EXPECT_EQ(ErrorOf("INSERT INTO Children VALUES (13, 9)"), 3201);
    EXPECT_EQ(ErrorOf("DELETE FROM Parents WHERE Id = 1"), 0);
    EXPECT_THAT(Column("SELECT Id FROM Children ORDER BY Id"), ElementsAre("11", "12"));
}

TEST_F(Importing, QueriesAreKeptEvenWhereTheyCannotRun) {
    source_.Add("T", {Field("A", FieldType::Long)}, "A", {{Whole(5)}});
    JetQueryRow table, column, kind;
    table.attribute = 5;
    table.name1 = "T";
    column.attribute = 6;
    column.expression = "A + 1";
    column.name1 = "Next";
    kind.attribute = 1;
    kind.flag = 8;
    kind.expression = "GRANT ALL TO the boss";
    source_.queries = {{"Good one", {table, column}}, {"Passed through", {kind}}, {"Empty", {}}};
    source_.losses = {"a linked table"};
    const ImportReport report = Run();
    EXPECT_EQ(report.queries, 2);
    EXPECT_THAT(report.losses, ElementsAre(HasSubstr("Passed through is kept as a text"),
                                           "saved query Empty: its text cannot be read", "a linked table"));
    EXPECT_THAT(Column("[Good one]"), ElementsAre("6"));
    EXPECT_EQ(database_->FindQueryDef("passed through")->SQL(), "GRANT ALL TO the boss");
}

// An import that breaks off leaves no file.
TEST_F(Importing, NothingIsLeftOfAHalfMadeFile) {
    const std::string path = (folder_ / "half.mdb").string();
    {
        database::BulkLoad target(path);
        target.AddTable({"T", {Field("A", FieldType::Long)}, {}});
        const LoadValue row[] = {Whole(1)};
        EXPECT_TRUE(target.AddRow(row));
        EXPECT_THROW(database::BulkLoad second(path), runtime::RunTimeError);
        EXPECT_THROW(target.AddTable({"t", {Field("A", FieldType::Long)}, {}}), runtime::RunTimeError);
    }
    EXPECT_TRUE(fs::is_empty(folder_));
}

} // namespace
} // namespace quillary::jet_import
