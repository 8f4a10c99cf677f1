// The engine as a whole: definitions and what they leave in the catalogue, statements that change data,
// saved queries, and what survives which failure.
#include "platform/database/errors.h"
#include "platform/database/scratch_database.h"
#include "platform/database/sqlite/statement_log.h"
#include "platform/runtime/run_time_error.h"

#include <algorithm>
#include <random>

namespace quillary::database {
namespace {

class EngineTest : public ScratchDatabase {
protected:
    const TableDef* Table(const std::string& name) {
        for (const auto& table : db_->TableDefs()) {
            if (table.name == name) {
                return &table;
            }
        }
        return nullptr;
    }
    std::string TableNames() {
        std::string result;
        for (const auto& table : db_->TableDefs()) {
            result += (result.empty() ? "" : " ") + table.name;
        }
        return result;
    }
    // "name: field field PU" with P for the key, U unique, F of a relation.
    std::string Indexes(const std::string& name) {
        std::string result;
        for (const auto& index : Table(name)->indexes) {
            result += (result.empty() ? "" : "; ") + index.name + ":";
            for (const auto& field : index.fields) {
                result += " " + field;
            }
            result += std::string(" ") + (index.primary ? "P" : "") + (index.unique ? "U" : "") +
                      (index.foreign ? "F" : "");
        }
        return result;
    }
    void MakeFamily() {
        Run({"CREATE TABLE Parents (ID COUNTER PRIMARY KEY, [Name] TEXT(10))",
             "CREATE TABLE Children (Parent LONG, Toy TEXT(10), CONSTRAINT Family FOREIGN KEY (Parent) "
             "REFERENCES "
             "Parents (ID))",
             "INSERT INTO Parents ([Name]) VALUES ('one')", "INSERT INTO Parents ([Name]) VALUES ('two')",
             "INSERT INTO Parents ([Name]) VALUES ('three')", "INSERT INTO Children VALUES (2, 'ball')"});
    }
};

TEST_F(EngineTest, CatalogueOfATable) {
    Run({"CREATE TABLE [Farm Details] (ID COUNTER PRIMARY KEY, [Farm Name] TEXT(50) NOT NULL, Units CHAR, "
         "Season "
         "SHORT, Area SINGLE, Ratio DOUBLE, [Limit] CURRENCY DEFAULT -1.5, Started DATETIME DEFAULT "
         "#7/1/2008#, "
         "Metric BIT, Note MEMO, Small BYTE DEFAULT 3, Made DATETIME DEFAULT Now(), Title TEXT(9) DEFAULT "
         "'O''B')"});
    const TableDef* table = Table("Farm Details");
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(Table("farm details"), nullptr); // names keep their case
    const struct {
        const char* name;
        FieldType type;
        int size;
        bool required, zeroLength, counter;
        Variant defaultValue;
    } kFields[] = {
        {"ID", FieldType::Long, 4, false, true, true, {}},
        {"Farm Name", FieldType::Text, 50, true, false, false, {}},
        {"Units", FieldType::Text, 255, false, true, false, {}},
        {"Season", FieldType::Integer, 2, false, true, false, {}},
        {"Area", FieldType::Single, 4, false, true, false, {}},
        {"Ratio", FieldType::Double, 8, false, true, false, {}},
        {"Limit", FieldType::Currency, 8, false, true, false, runtime::Currency{-15000}},
        {"Started", FieldType::Date, 8, false, true, false, runtime::Date{39630}},
        {"Metric", FieldType::Boolean, 1, false, true, false, false},
        {"Note", FieldType::Memo, 0, false, true, false, {}},
        {"Small", FieldType::Byte, 1, false, true, false, std::int16_t{3}},
        {"Made", FieldType::Date, 8, false, true, false, "Now()"},
        {"Title", FieldType::Text, 9, false, true, false, "O'B"},
    };
    ASSERT_EQ(table->fields.size(), std::size(kFields));
    for (std::size_t i = 0; i < std::size(kFields); ++i) {
        const FieldDef& field = table->fields[i];
        SCOPED_TRACE(field.name);
        EXPECT_EQ(field.name, kFields[i].name);
        EXPECT_EQ(field.type, kFields[i].type);
        EXPECT_EQ(field.size, kFields[i].size);
        EXPECT_EQ(field.required, kFields[i].required);
        EXPECT_EQ(field.allowZeroLength, kFields[i].zeroLength);
        EXPECT_EQ(field.counter, kFields[i].counter);
        EXPECT_EQ(field.defaultValue, kFields[i].defaultValue);
    }
    Run({"INSERT INTO [Farm Details] ([Farm Name]) VALUES ('x')"});
    Run({"CREATE TABLE Keyed (ID LONG DEFAULT 5 PRIMARY KEY, x LONG)", "INSERT INTO Keyed (x) VALUES (1)"});
    EXPECT_EQ(Rows("Keyed"), "5|1");
    EXPECT_EQ(Rows("SELECT [Limit], Started, Metric, Small, Title, Made > #1/1/2020# FROM [Farm Details]"),
              "-1.5|2008-07-01|False|3|O'B|-1");
}

TEST_F(EngineTest, KeysIndexesAndRelations) {
    MakeFamily();
    Run({"CREATE TABLE Pairs (a LONG, b TEXT(5), c LONG UNIQUE, CONSTRAINT Both PRIMARY KEY (a, b))",
         "CREATE UNIQUE INDEX Back ON Pairs (c DESC, a)",
         "CREATE TABLE Counted (n COUNTER, k TEXT(5) PRIMARY KEY)", "CREATE TABLE Plain (x LONG)"});
    EXPECT_EQ(TableNames(), "Parents Children Pairs Counted Plain");
    EXPECT_EQ(Indexes("Parents"), "PrimaryKey: ID PU");
    EXPECT_EQ(Indexes("Children"), "Family: Parent F");
    EXPECT_EQ(Indexes("Pairs"), "Both: a b PU; c: c U; Back: c a U");
    EXPECT_EQ(Indexes("Counted"), "PrimaryKey: k PU");
    ASSERT_EQ(db_->Relations().size(), 1U);
    const RelationDef& relation = db_->Relations().front();
    EXPECT_EQ(relation.name + " " + relation.table + " " + relation.foreignTable + " " +
                  relation.fields.at(0) + " " + relation.foreignFields.at(0),
              "Family Parents Children ID Parent");
    EXPECT_FALSE(relation.cascadeDeletes);
    // Rows come in the order of the key, or as they were entered.
    Run({"INSERT INTO Pairs VALUES (2, 'a', 1)", "INSERT INTO Pairs VALUES (1, 'b', 2)",
         "INSERT INTO Pairs VALUES (1, 'A', 3)", "INSERT INTO Plain VALUES (2)",
         "INSERT INTO Plain VALUES (1)"});
    EXPECT_EQ(Rows("Pairs"), "1|A|3; 1|b|2; 2|a|1");
    EXPECT_EQ(Rows("SELECT * FROM Plain"), "2; 1");
}

TEST_F(EngineTest, DefinitionsThatAreRefused) {
    MakeFamily();
    db_->CreateQueryDef("Saved", "SELECT * FROM Parents");
    const std::string before = ReadFile(PathOf("farm.mdb"));
    const struct {
        const char* sql;
        int number;
    } kCases[] = {
        {"CREATE TABLE parents (x LONG)", 3010},
        {"CREATE TABLE Saved (x LONG)", 3010},
        {"CREATE TABLE [a.b] (x LONG)", 3125},
        {"CREATE TABLE sqlite_x (x LONG)", 3125},
        {"CREATE TABLE t (x LONG, X TEXT(5))", 3380},
        {"CREATE TABLE t (x COUNTER, y COUNTER)", 3259},
        {"CREATE TABLE t (x LONG PRIMARY KEY, y LONG PRIMARY KEY)", 3283},
        {"CREATE TABLE t (x LONG, PRIMARY KEY (z))", 3381},
        {"CREATE TABLE t (x LONG REFERENCES Nobody (ID))", 3376},
        {"CREATE TABLE t (x LONG REFERENCES Parents ([Name]))", 3409},
        {"CREATE TABLE t (x TEXT(5) REFERENCES Parents (ID))", 3368},
        {"CREATE TABLE t (x LONG DEFAULT 'many')", kErrWrongType},
        {"CREATE TABLE t (x TEXT(3) DEFAULT 'long')", kErrFieldTooSmall},
        {"CREATE INDEX i ON Nobody (x)", 3371},
        {"CREATE INDEX i ON Parents (x)", 3381},
        {"CREATE INDEX PrimaryKey ON Parents ([Name])", 3375},
        {"CREATE INDEX i ON Parents ([Name]) WITH PRIMARY", 3283},
        {"ALTER TABLE Nobody ADD COLUMN x LONG", 3371},
        {"ALTER TABLE Parents ADD COLUMN [name] LONG", 3380},
        {"ALTER TABLE Parents DROP COLUMN x", 3381},
        {"ALTER TABLE Parents DROP COLUMN ID", 3281},
        {"ALTER TABLE Children DROP COLUMN Parent", 3281},
        {"ALTER TABLE Parents ALTER COLUMN ID TEXT(5)", 3281},
        {"ALTER TABLE Parents DROP CONSTRAINT x", 3371},
        {"ALTER TABLE Parents DROP CONSTRAINT PrimaryKey", 3281},
        {"ALTER TABLE Parents ADD COLUMN n LONG NOT NULL", kErrRequiredField},
        {"ALTER TABLE Parents ALTER COLUMN [Name] LONG", kErrWrongType},
        {"ALTER TABLE Parents ALTER COLUMN [Name] TEXT(3)", kErrFieldTooSmall},
        {"DROP INDEX i ON Parents", 3372},
        {"DROP INDEX Family ON Children", 3281},
        {"DROP TABLE Nobody", 3376},
        {"DROP TABLE Parents", 3281},
        {"DROP VIEW Nobody", kErrItemNotFound},
        {"CREATE VIEW Saved AS SELECT 1", 3012},
        {"CREATE VIEW Parents AS SELECT 1", 3012},
    };
    for (const auto& each : kCases) {
        EXPECT_EQ(Execute(each.sql), "error " + std::to_string(each.number)) << each.sql;
    }
    EXPECT_EQ(TableNames(), "Parents Children");
    EXPECT_EQ(Rows("Parents"), "1|one; 2|two; 3|three");
    const auto rows = db_->OpenRecordset("Parents");
    EXPECT_EQ(Execute("ALTER TABLE Parents ADD COLUMN x LONG"), "error 3211");
    EXPECT_EQ(Execute("DROP TABLE Parents"), "error 3211");
    rows->Close();
    EXPECT_EQ(Execute("ALTER TABLE Parents ADD COLUMN x LONG"), "");
}

TEST_F(EngineTest, AlteringKeepsRowsKeysAndCounters) {
    MakeFamily();
    Run({"CREATE INDEX ByName ON Parents ([Name])", "DELETE FROM Parents WHERE ID = 3",
         "ALTER TABLE Parents ADD COLUMN Born DATETIME, Adult BIT, Age LONG DEFAULT 5",
         "ALTER TABLE Parents ALTER COLUMN [Name] TEXT(20) NOT NULL",
         "ALTER TABLE Parents ALTER COLUMN Age SET DEFAULT 6", "UPDATE Parents SET Age = 41",
         "ALTER TABLE Parents ALTER COLUMN Age TEXT(10)", "ALTER TABLE Parents DROP COLUMN Born",
         "INSERT INTO Parents ([Name]) VALUES ('four')"});
    EXPECT_EQ(Rows("Parents"), "1|one|False|41; 2|two|False|41; 4|four|False|<null>");
    EXPECT_EQ(Indexes("Parents"), "PrimaryKey: ID PU; ByName: Name ");
    EXPECT_EQ(Execute("DELETE FROM Parents WHERE ID = 2"), "error 3200"); // the relation holds still
    EXPECT_EQ(Execute("INSERT INTO Parents ([Name]) VALUES (Null)"), "error 3314");

    Run({"ALTER TABLE Children DROP CONSTRAINT Family", "DELETE FROM Parents WHERE ID = 2"});
    EXPECT_EQ(
        Execute("ALTER TABLE Children ADD CONSTRAINT Family FOREIGN KEY (Parent) REFERENCES Parents (ID)"),
        "error 3201");
    Run({"DELETE FROM Children",
         "ALTER TABLE Children ADD CONSTRAINT Family FOREIGN KEY (Parent) REFERENCES Parents (ID) ON DELETE "
         "CASCADE",
         "INSERT INTO Children VALUES (1, 'kite')", "DELETE FROM Parents WHERE ID = 1",
         "ALTER TABLE Children ADD CONSTRAINT NoBalls CHECK (Toy <> 'ball')", "DROP INDEX ByName ON Parents",
         "CREATE UNIQUE INDEX Toys ON Children (Toy)"});
    EXPECT_EQ(Rows("SELECT Count(*) FROM Children"), "0");
    EXPECT_EQ(Execute("INSERT INTO Children VALUES (4, 'Ball')"), "error 3317");
    Run({"INSERT INTO Children VALUES (4, 'kite')"});
    EXPECT_EQ(Execute("INSERT INTO Children VALUES (4, 'KITE ')"), "error 3022");
    Run({"ALTER TABLE Children DROP CONSTRAINT NoBalls", "ALTER TABLE Children DROP CONSTRAINT Toys",
         "INSERT INTO Children VALUES (4, 'ball')", "CREATE TABLE NoKey (a LONG, b TEXT(5))",
         "INSERT INTO NoKey VALUES (5, 'x')", "ALTER TABLE NoKey ADD CONSTRAINT k PRIMARY KEY (a)"});
    EXPECT_EQ(Execute("INSERT INTO NoKey VALUES (5, 'y')"), "error 3022");
    EXPECT_EQ(Execute("INSERT INTO NoKey (b) VALUES ('y')"), "error 3314");
    Run({"ALTER TABLE NoKey DROP CONSTRAINT k", "INSERT INTO NoKey (a, b) VALUES (5, 'y')",
         "DROP TABLE Children", "DROP TABLE Parents"});
    EXPECT_EQ(Rows("NoKey"), "5|x; 5|y");
    EXPECT_EQ(TableNames(), "NoKey");
}

// What no statement may put into a field, whoever writes it.
TEST_F(EngineTest, RulesOfTheTypesHoldForStatements) {
    Run({"CREATE TABLE T (ID LONG PRIMARY KEY, S SHORT, B BYTE, L LONG, C CURRENCY, F SINGLE, D DATETIME, Y "
         "BIT, X "
         "TEXT(5), R TEXT(5) NOT NULL)",
         "INSERT INTO T (ID, R) VALUES (1, 'r')"});
    const struct {
        const char* set;
        int number;
        const char* stored; // of the field before "="
    } kCases[] = {
        {"S = 32768", 6, nullptr},
        {"B = 256", 6, nullptr},
        {"B = -1", 6, nullptr},
        {"L = 3000000000", 6, nullptr},
        {"S = 2.5", 0, "2"},
        {"L = '12'", 0, "12"},
        {"C = 1.23456", 0, "1.2346"},
        {"F = 0.105", 0, "0.105"},
        {"Y = 5", 0, "True"},
        {"D = #2/29/2008#", 0, "2008-02-29"},
        {"X = 'abcde'", 0, "abcde"},
        {"X = 'abcdef'", kErrFieldTooSmall, nullptr},
        {"X = 12", 0, "12"},
        {"R = Null", kErrRequiredField, nullptr},
        {"R = ''", kErrZeroLength, nullptr},
        {"X = ''", 0, ""},
        {"ID = Null", kErrRequiredField, nullptr},
        {"D = '15/8/2008'", 0, "2008-08-15"},
    };
    for (const auto& each : kCases) {
        SCOPED_TRACE(each.set);
        const std::string field = std::string(each.set).substr(0, std::string(each.set).find(' '));
        EXPECT_EQ(Execute("UPDATE T SET " + std::string(each.set)),
                  each.number == 0 ? "" : "error " + std::to_string(each.number));
        if (each.stored != nullptr) {
            EXPECT_EQ(Rows("SELECT " + field + " FROM T"), each.stored);
        }
    }
}

// ------------------------------------------------------------------------------------------ statements

TEST_F(EngineTest, WithFailOnErrorAllOrNothing) {
    MakeFamily();
    Run({"CREATE UNIQUE INDEX ByName ON Parents ([Name])"});
    const struct {
        const char* sql;
        int number;
    } kCases[] = {
        {"UPDATE Parents SET [Name] = 'same'", kErrDuplicateValue},
        {"UPDATE Parents SET [Name] = [Name] & ' and more' WHERE ID > 0", kErrFieldTooSmall},
        {"DELETE FROM Parents", kErrRelatedRows},
        {"INSERT INTO Children SELECT ID + 1 AS Parent FROM Parents", kErrMissingRelatedRow},
        {"UPDATE Children SET Parent = Parent + 5", kErrMissingRelatedRow},
        {"UPDATE Parents INNER JOIN Children ON Parents.ID = Children.Parent SET [Name] = 'far too long a "
         "name'",
         kErrFieldTooSmall},
    };
    for (const auto& each : kCases) {
        EXPECT_EQ(Execute(each.sql), "error " + std::to_string(each.number)) << each.sql;
        EXPECT_EQ(db_->RecordsAffected(), 0);
    }
    EXPECT_EQ(Rows("Parents"), "1|one; 2|two; 3|three");
    EXPECT_EQ(Rows("Children"), "2|ball");
}

TEST_F(EngineTest, WithoutItRowsThatAreRefusedArePassedOver) {
    MakeFamily();
    Run({"CREATE UNIQUE INDEX ByName ON Parents ([Name])"});
    const struct {
        const char* sql;
        long affected;
        const char* parents;
        const char* children;
    } kCases[] = {
        {"DELETE FROM Parents", 2, "2|two", "2|ball"},
        {"UPDATE Parents SET [Name] = 'TWO' WHERE ID = 2", 1, "2|TWO", "2|ball"},
        {"INSERT INTO Parents ([Name]) VALUES ('two')", 0, "2|TWO", "2|ball"},
        {"INSERT INTO Children VALUES (9, 'none')", 0, "2|TWO", "2|ball"},
        {"INSERT INTO Parents ([Name]) VALUES ('five')", 1, "2|TWO; *|five", "2|ball"},
        {"INSERT INTO Children SELECT ID * (ID - 1) AS Parent, [Name] AS Toy FROM Parents", 1,
         "2|TWO; *|five", "2|ball; 2|TWO"},
        {"UPDATE Parents SET [Name] = 'same'", 1, "2|same; *|five", "2|ball; 2|TWO"},
        {"UPDATE Parents SET [Name] = 'much too long ' & [Name]", 0, "2|same; *|five", "2|ball; 2|TWO"},
        {"UPDATE Children SET Parent = 77 WHERE Toy = 'ball'", 0, "2|same; *|five", "2|ball; 2|TWO"},
        {"DELETE Parents.* FROM Parents LEFT JOIN Children ON Parents.ID = Children.Parent", 1, "2|same",
         "2|ball; 2|TWO"},
    };
    for (const auto& each : kCases) {
        SCOPED_TRACE(each.sql);
        db_->Execute(each.sql);
        EXPECT_EQ(db_->RecordsAffected(), each.affected);
        std::string parents = Rows("Parents");
        if (const auto at = parents.find("|five"); at != std::string::npos) {
            parents.replace(parents.rfind(' ', at) + 1, at - parents.rfind(' ', at) - 1,
                            "*"); // whatever its number
        }
        EXPECT_EQ(parents, each.parents);
        EXPECT_EQ(Rows("Children"), each.children);
    }
    // A fault of the text is one all the same.
    EXPECT_EQ(ErrorOf([&] { db_->Execute("DELETE FROM Nobody"); }), kErrUnknownTable);
    EXPECT_EQ(ErrorOf([&] { db_->Execute("DELETE FROM Parents WHERE x = 1"); }), kErrTooFewParameters);
}

TEST_F(EngineTest, SavedQueries) {
    MakeFamily();
    const auto rename = db_->CreateQueryDef("qry Rename", "UPDATE Parents SET [Name] = 'new' WHERE ID = 1;");
    db_->CreateQueryDef("Grown", "SELECT * FROM Parents WHERE ID > 1");
    db_->Execute("qry rename", kFailOnError);
    EXPECT_EQ(db_->RecordsAffected(), 1);
    EXPECT_EQ(Rows("SELECT [Name] FROM Parents WHERE ID = 1"), "new");
    EXPECT_EQ(Rows("SELECT Count(*) FROM Grown"), "2");
    EXPECT_EQ(Rows("Grown"), "2|two; 3|three");
    // The text is stored at once, for all; and what was made of the old one is forgotten.
    const auto other = engine_->OpenDatabase(PathOf("farm.mdb"));
    other->FindQueryDef("GROWN")->SetSQL("SELECT * FROM Parents WHERE ID > 2");
    EXPECT_EQ(Rows("SELECT Count(*) FROM Grown"), "1");
    EXPECT_EQ(db_->FindQueryDef("grown")->SQL(), "SELECT * FROM Parents WHERE ID > 2");
    rename->SetSQL("DELETE FROM Parents WHERE ID = 3");
    rename->Execute(kFailOnError);
    EXPECT_EQ(Rows("SELECT Count(*) FROM Parents"), "2");

    Run({"CREATE PROCEDURE ByID (wanted LONG) AS SELECT [Name] FROM Parents WHERE ID = wanted",
         "CREATE VIEW Names AS SELECT [Name] FROM Parents"});
    EXPECT_EQ(Rows("Names"), "new; two");
    EXPECT_EQ(Rows("ByID"), "error 3061");
    const auto byId = db_->FindQueryDef("ByID");
    byId->SetParameter("WANTED", "2");
    EXPECT_EQ(Rows(*byId->OpenRecordset()), "two");
    byId->SetParameter("wanted", "two");
    EXPECT_EQ(ErrorOf([&] { byId->OpenRecordset(); }), kErrWrongType);

    std::string names;
    for (const auto& query : db_->QueryDefs()) {
        names += query->Name() + ";";
    }
    EXPECT_EQ(names, "ByID;Grown;Names;qry Rename;");
    const struct {
        std::function<void()> act;
        int number;
    } kRefused[] = {{[&] { db_->CreateQueryDef("grown", "SELECT 1"); }, 3012},
                    {[&] { db_->CreateQueryDef("Parents", "SELECT 1"); }, 3012},
                    {[&] { db_->CreateQueryDef("x", "SELECT FROM WHERE"); }, 3141},
                    {[&] { db_->CreateQueryDef("", "SELECT 1"); }, 3125},
                    {[&] { rename->SetSQL("UPDATE Parents SET"); }, 3144},
                    {[&] { db_->DeleteQueryDef("x"); }, kErrItemNotFound},
                    {[&] { db_->Execute("x"); }, kErrUnknownTable},
                    {[&] { db_->Execute("Grown"); }, 3065}};
    for (const auto& each : kRefused) {
        EXPECT_EQ(ErrorOf(each.act), each.number);
    }
    EXPECT_EQ(rename->SQL(), "DELETE FROM Parents WHERE ID = 3");
    db_->DeleteQueryDef("GROWN");
    EXPECT_EQ(db_->FindQueryDef("Grown"), nullptr);
    EXPECT_EQ(Rows("SELECT * FROM Grown"), "error 3078");
}

TEST_F(EngineTest, SelectIntoMakesATable) {
    MakeFamily();
    Run({"SELECT ID, [Name], ID * 1.5 AS Half INTO Copy FROM Parents WHERE ID < 3"});
    EXPECT_EQ(db_->RecordsAffected(), 2);
    EXPECT_EQ(Rows("Copy"), "1|one|1.5; 2|two|3");
    EXPECT_FALSE(Table("Copy")->fields[0].counter);
    EXPECT_EQ(Execute("SELECT ID INTO Copy FROM Parents"), "error 3010");
    EXPECT_EQ(Execute("SELECT [Name], ID / 0 AS x INTO Other FROM Parents"), "error 11");
    EXPECT_EQ(TableNames(), "Parents Children Copy");
}

// Statements in other tables' or other objects' way: nothing is translated for good.
TEST_F(EngineTest, AStatementIsTranslatedAnewWhenTheTablesChange) {
    Run({"CREATE TABLE T (a LONG)", "INSERT INTO T VALUES (1)"});
    EXPECT_EQ(Rows("SELECT * FROM T"), "1");
    EXPECT_EQ(Rows("SELECT b FROM T"), "error 3061");
    Run({"ALTER TABLE T ADD COLUMN b TEXT(5)"});
    EXPECT_EQ(Rows("SELECT * FROM T"), "1|<null>");
    EXPECT_EQ(Rows("SELECT b FROM T"), "<null>");
    Run({"DROP TABLE T"});
    EXPECT_EQ(Rows("SELECT * FROM T"), "error 3078");
}

// Every statement of a cascade in its turn fails: what went before stands, nothing of the failed one does.
TEST_F(EngineTest, FailingAtEachStatement) {
    const char* const kCascade[] = {
        "UPDATE Parents SET [Name] = [Name] & '1'",
        "UPDATE Children INNER JOIN Parents ON Children.Parent = Parents.ID SET Toy = "
        "[Name], [Name] = 'x'",
        "DELETE FROM Children", "CREATE TABLE Extra (a LONG)",
        "INSERT INTO Extra SELECT ID AS a FROM Parents"};
    MakeFamily();
    std::vector<std::string> states;
    const auto state = [&] { return Rows("Parents") + " / " + Rows("Children") + " / " + Rows("Extra"); };
    for (int failing = 0; failing <= static_cast<int>(std::size(kCascade)); ++failing) {
        int count = 0;
        sqlite::SetStatementObserver([&](const std::string&) {
            if (count++ == failing) {
                throw runtime::RunTimeError(3183, "test", "no room");
            }
        });
        int run = 0;
        const int error = ErrorOf([&] {
            for (; run < static_cast<int>(std::size(kCascade)); ++run) {
                db_->Execute(kCascade[run], kFailOnError);
            }
        });
        sqlite::SetStatementObserver({});
        EXPECT_EQ(run, failing);
        EXPECT_EQ(error, failing < static_cast<int>(std::size(kCascade)) ? 3183 : 0);
        states.push_back(state());
        // Back to the beginning, but for what a run leaves.
        Run({"DROP TABLE Children", "DROP TABLE Parents"});
        if (failing > 3) {
            Run({"DROP TABLE Extra"});
        }
        MakeFamily();
    }
    EXPECT_EQ(states[0], "1|one; 2|two; 3|three / 2|ball / error 3078");
    EXPECT_EQ(states[1], "1|one1; 2|two1; 3|three1 / 2|ball / error 3078");
    EXPECT_EQ(states[2], "1|one1; 2|x; 3|three1 / 2|two1 / error 3078");
    EXPECT_EQ(states[3], "1|one1; 2|x; 3|three1 /  / error 3078");
    EXPECT_EQ(states[4], "1|one1; 2|x; 3|three1 /  / ");
    EXPECT_EQ(states[5], "1|one1; 2|x; 3|three1 /  / 1; 2; 3");
}

// A table that another program has made by plain SQL.
TEST_F(EngineTest, TablesOfAnotherHand) {
    db_.reset();
    engine_->ReleaseIdle();
    const std::string path = PathOf("farm.mdb");
    ASSERT_EQ(
        std::system(("sqlite3 '" + path +
                     "' \"CREATE TABLE plain (id INTEGER PRIMARY KEY, name VARCHAR(300), price REAL, note, "
                     "[when] TIMESTAMP DEFAULT CURRENT_TIMESTAMP /* , */); INSERT INTO plain (name, price, "
                     "[when]) VALUES ('x', 1.25, '2020-01-02'); CREATE VIEW v AS SELECT 1;\"")
                        .c_str()),
        0);
    db_ = engine_->OpenDatabase(path);
    const auto rows = db_->OpenRecordset("Plain");
    EXPECT_EQ(Rows(*rows), "1|x|1.25|<null>|2020-01-02");
    rows->MoveFirst();
    rows->Edit();
    (*rows)["Note"] = "mine";
    rows->Update();
    EXPECT_EQ(Rows("SELECT note FROM plain"), "mine");
    EXPECT_EQ(TableNames(), "plain");
}

// Whatever stands in a statement: a result or an error with a number, and the database is as before.
TEST_F(EngineTest, AnyText) {
    MakeFamily();
    const std::string kPieces[] = {
        "SELECT", "*",     "FROM",   "Parents",  "WHERE", "(",         ")",      "[Name]",   "=",
        "'a'",    "IN",    "DELETE", "UPDATE",   "SET",   "ID",        ",",      "NOT",      "Children",
        "INNER",  "JOIN",  "ON",     "GROUP",    "BY",    "TRANSFORM", "PIVOT",  "Sum(ID)",  "1",
        "&",      "'",     "[",      "#1/1/08#", "Null",  "INTO",      "INSERT", "VALUES",   "DROP",
        "TOP",    "UNION", "LIKE",   "\"*\"",    "AND",   "-",         "^",      "\xff\xfe", ";"};
    std::mt19937 random(12345);
    for (int i = 0; i < 3000; ++i) {
        std::string text = std::string(i % 3 == 0 ? "SELECT " : i % 3 == 1 ? "UPDATE " : "TRANSFORM ");
        for (unsigned n = random() % 12; n > 0; --n) {
            text += kPieces[random() % std::size(kPieces)] + (random() % 4 == 0 ? "" : " ");
        }
        const auto type = static_cast<RecordsetType>(random() % 2 == 0 ? 2 : 4);
        ErrorOf([&] { Rows(*db_->OpenRecordset(text, type)); });
        const auto rows = db_->OpenRecordset("Parents");
        ErrorOf([&] { rows->FindFirst(text.substr(7)); });
    }
    for (const std::string& deep : {std::string(100'000, '('), "SELECT " + std::string(50'000, '-') + "1",
                                    "SELECT 1" + std::string(100'000, '+') + "1",
                                    "SELECT * FROM Parents WHERE ID" + std::string(20'000, '='),
                                    std::string(1'000'000, 'x'), std::string("SELECT \0 1", 10)}) {
        EXPECT_NE(ErrorOf([&] { db_->OpenRecordset(deep); }), 0) << deep.substr(0, 40);
        EXPECT_NE(ErrorOf([&] { db_->Execute(deep); }), 0) << deep.substr(0, 40);
    }
    std::string many = "SELECT ID FROM Parents WHERE ID = 0";
    for (int i = 0; i < 20'000; ++i) {
        many += " OR ID = " + std::to_string(i);
    }
    const std::string result = Rows(many);
    EXPECT_TRUE(result == "1; 2; 3" || result == "error 3360") << result;
    EXPECT_EQ(Rows("Parents"), "1|one; 2|two; 3|three");
}

} // namespace
} // namespace quillary::database
