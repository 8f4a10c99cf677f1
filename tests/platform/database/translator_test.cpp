#include "platform/database/jet_sql/parser.h"
#include "platform/database/translated_database.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <gtest/gtest.h>

// Queries and actions of the dialect, run without the engine.
namespace quillary::database::sqlite {
namespace {

using Names = std::vector<std::string>;

struct Case {
    const char* sql;
    const char* expected;
};

// Headings, their details, types of stock: the shapes that the program's own joins have.
class Translator : public ::testing::Test {
protected:
    void SetUp() override {
        runtime::SetLocale("en_NZ");
        using enum FieldType;
        database.AddTable("Heads",
                          {MakeField("Head ID", Long), MakeField("Name", Text), MakeField("Level", Text)});
        database.AddTable("Lines",
                          {MakeField("Line ID", Long), MakeField("Head ID", Long), MakeField("Name", Text),
                           MakeField("Amount", Currency), MakeField("Season", Integer)});
        FieldDef counter = MakeField("Kind ID", Long);
        counter.counter = true;
        database.AddTable("Kinds", {counter, MakeField("Head ID", Long), MakeField("Icon", Text)});
        database.AddTable(
            "Loose", {MakeField("Text", Text), MakeField("Number", Long), MakeField("Flag", Boolean)}, false);
        for (const char* sql : {
                 "INSERT INTO Heads VALUES (10, 'Wool', 'Sheep')",
                 "INSERT INTO Heads VALUES (20, 'Beef', 'Cattle')",
                 "INSERT INTO Heads VALUES (30, 'Milk', Null)",
                 "INSERT INTO Lines VALUES (1, 20, 'steers', 100.5, 2007)",
                 "INSERT INTO Lines VALUES (2, 10, 'fleece', 20, 2007)",
                 "INSERT INTO Lines VALUES (3, 10, 'crutch', 5.25, 2008)",
                 "INSERT INTO Lines VALUES (4, 99, 'stray', Null, 2008)",
                 "INSERT INTO Kinds VALUES (1, 20, 'cow.bmp')",
                 "INSERT INTO Kinds VALUES (2, 10, 'ewe.bmp')",
                 "INSERT INTO Loose VALUES ('b', 2, True)",
                 "INSERT INTO Loose VALUES ('a', 1, False)",
                 "INSERT INTO Loose VALUES ('B ', 2, False)",
             }) {
            ASSERT_EQ(database.Execute(sql), "1") << sql;
        }
    }

    void Check(const std::vector<Case>& cases) {
        for (const Case& each : cases) {
            EXPECT_EQ(database.Query(each.sql), each.expected) << each.sql;
        }
    }

    TranslatedDatabase database;
};

TEST_F(Translator, Joins) {
    Check({
        {"SELECT Heads.Name, Lines.Name FROM Heads INNER JOIN Lines ON Heads.[Head ID] = Lines.[Head ID]",
         "Beef|steers / Wool|fleece / Wool|crutch"},
        {"SELECT h.Name, l.Name FROM Heads AS h LEFT JOIN Lines AS l ON h.[Head ID] = l.[Head ID]",
         "Wool|fleece / Wool|crutch / Beef|steers / Milk|<null>"},
        {"SELECT h.Name, l.Name FROM Heads h RIGHT JOIN Lines l ON h.[Head ID] = l.[Head ID]",
         "Beef|steers / Wool|fleece / Wool|crutch / <null>|stray"},
        {"SELECT l.Name, h.Name, k.Icon FROM (Heads AS h RIGHT JOIN Lines AS l ON h.[Head ID] = l.[Head ID]) "
         "LEFT JOIN Kinds AS k ON l.[Head ID] = k.[Head ID]",
         "steers|Beef|cow.bmp / fleece|Wool|ewe.bmp / crutch|Wool|ewe.bmp / stray|<null>|<null>"},
        {"SELECT h.Name, k.Icon FROM Heads AS h LEFT JOIN (Lines AS l INNER JOIN Kinds AS k ON l.[Head ID] = "
         "k.[Head ID]) ON h.[Head ID] = l.[Head ID] WHERE l.Season = 2007 Or l.Season Is Null",
         "Wool|ewe.bmp / Beef|cow.bmp / Milk|<null>"},
        {"SELECT h.Name, l.[Line ID] FROM Heads AS h, Lines AS l WHERE h.[Head ID] = l.[Head ID] And Amount "
         "> 10",
         "Wool|2 / Beef|1"},
        {"SELECT Name FROM Heads INNER JOIN Lines ON Heads.[Head ID] = Lines.[Head ID]", "error 3079"},
        {"SELECT a.Name FROM Heads AS a INNER JOIN Lines AS b ON a.Name = b.[Head ID]", "error 3615"},
        {"SELECT 1 FROM Heads, Heads", "error 3074"},
        {"SELECT 1 FROM Nowhere", "error 3078"},
        {"SELECT Nowhere.* FROM Heads", "error 3078"},
        {"SELECT *", "error 3067"},
    });
}

// Where no order is told it does not hang on the indexes: the many side of a join leads, and a join in
// brackets is entered through the table that the condition names.
TEST_F(Translator, OrderWithoutASort) {
    Check({
        {"SELECT Heads.Level, Kinds.Icon FROM Heads INNER JOIN Kinds ON Heads.[Head ID] = Kinds.[Head ID]",
         "Cattle|cow.bmp / Sheep|ewe.bmp"},
        {"SELECT Lines.[Line ID] FROM Lines INNER JOIN Heads ON Heads.[Head ID] = Lines.[Head ID]",
         "1 / 2 / 3"},
        {"SELECT DISTINCTROW Lines.[Line ID], Heads.Name FROM Heads INNER JOIN (Lines INNER JOIN Kinds ON "
         "Lines.[Head ID] = Kinds.[Head ID]) ON Heads.[Head ID] = Kinds.[Head ID]",
         "1|Beef / 2|Wool / 3|Wool"},
        {"SELECT [Text] FROM Loose", "b / a / B "},
        {"SELECT Number FROM Loose GROUP BY Number", "1 / 2"},
        {"SELECT DISTINCT Number FROM Loose", "1 / 2"},
        {"SELECT Name FROM Lines UNION ALL SELECT Name FROM Heads",
         "steers / fleece / crutch / stray / Wool / Beef / Milk"},
        {"SELECT Name FROM Lines UNION SELECT Name FROM Heads WHERE Name > 'k'",
         "crutch / fleece / Milk / steers / stray / Wool"},
        {"SELECT x.Name FROM (SELECT Name FROM Heads ORDER BY Name DESC) AS x", "Wool / Milk / Beef"},
    });
}

TEST_F(Translator, DistinctRowActsWhereATableIsNotShown) {
    Check({
        {"SELECT DISTINCTROW Heads.Name FROM Heads INNER JOIN Lines ON Heads.[Head ID] = Lines.[Head ID]",
         "Wool / Beef"},
        {"SELECT Heads.Name FROM Heads INNER JOIN Lines ON Heads.[Head ID] = Lines.[Head ID]",
         "Beef / Wool / Wool"},
        {"SELECT DISTINCTROW Lines.Season FROM Lines", "2007 / 2007 / 2008 / 2008"},
        {"SELECT DISTINCTROW Heads.Name, Lines.Season FROM Heads INNER JOIN Lines ON Heads.[Head ID] = "
         "Lines.[Head ID] WHERE Heads.[Head ID] = 10",
         "Wool|2007 / Wool|2008"},
        {"SELECT DISTINCT Lines.Season FROM Lines ORDER BY Season DESC", "2008 / 2007"},
        {"SELECT DISTINCT [Text] FROM Loose", "a / b"},
        {"SELECT DISTINCT Season FROM Lines ORDER BY Name", "error 3093"},
    });
}

TEST_F(Translator, TopKeepsTies) {
    Check({
        {"SELECT TOP 1 Season, [Line ID] FROM Lines ORDER BY Season", "2007|1 / 2007|2"},
        {"SELECT top 1 Season FROM Lines ORDER BY Season DESC, [Line ID] DESC", "2008"},
        {"SELECT TOP 2 [Text] FROM Loose ORDER BY [Text]", "a / b / B "},
        {"SELECT TOP 2 * FROM Heads", "10|Wool|Sheep / 20|Beef|Cattle"},
        {"SELECT TOP 1 Name FROM Heads ORDER BY [Head ID] DESC", "Milk"},
        {"SELECT TOP 50 PERCENT Name FROM Lines ORDER BY Name", "crutch / fleece"},
        {"SELECT TOP 34 PERCENT Name FROM Heads", "Wool / Beef"},
        {"SELECT DISTINCT TOP 1 Season FROM Lines ORDER BY Season", "2007"},
        {"SELECT TOP 1 [Head ID], Count(*) FROM Lines GROUP BY [Head ID] ORDER BY Count(*) DESC", "10|2"},
        {"SELECT Name FROM Heads WHERE [Head ID] In (SELECT TOP 1 [Head ID] FROM Lines ORDER BY Amount DESC)",
         "Beef"},
    });
}

TEST_F(Translator, GroupsAndAggregates) {
    Check({
        {"SELECT Season, Sum(Amount), Count(Amount), Count(*) FROM Lines GROUP BY Season",
         "2007|120.5|2|2 / 2008|5.25|1|2"},
        {"SELECT Level, Count(*) FROM Heads GROUP BY Level", "<null>|1 / Cattle|1 / Sheep|1"},
        {"SELECT First(Name), Last(Name), Min(Name), Max(Name) FROM Lines", "steers|stray|crutch|stray"},
        {"SELECT Avg(Season), StDev(Number), StDevP(Number), Var(Number), VarP(Number) FROM Lines, Loose "
         "WHERE [Line ID] = 1",
         "2007|0.577350269189626|0.471404520791032|0.333333333333333|0.222222222222222"},
        {"SELECT StDev(Season), Sum(Season), Count(Season) FROM Lines WHERE False", "<null>|<null>|0"},
        {"SELECT [Text], Count(*) FROM Loose GROUP BY [Text] HAVING Count(*) > 1", "b|2"},
        {"SELECT Left(Name, 1) & '.', Count(*) FROM Lines GROUP BY Left(Name, 1)", "c.|1 / f.|1 / s.|2"},
        {"SELECT Season + 1, Sum(Amount) / 2 FROM Lines GROUP BY Season ORDER BY Sum(Amount)",
         "2009|2.625 / 2008|60.25"},
        {"SELECT Season, Name FROM Lines GROUP BY Season", "error 3122"},
        {"SELECT Name, Count(*) FROM Lines", "error 3122"},
        {"SELECT * FROM Lines GROUP BY Season", "error 3124"},
        {"SELECT Season FROM Lines WHERE Count(*) > 1", "error 3096"},
        {"SELECT Sum(Count(*)) FROM Lines", "error 3095"},
        {"SELECT Sum(Name) FROM Lines", "error 3464"},
        {"SELECT Name FROM Lines HAVING Name = 'x'", "error 3091"},
    });
}

TEST_F(Translator, AliasesAndNamesOfColumns) {
    Check({
        {"SELECT Number + 1 AS m, m * 10 AS k FROM Loose", "3|30 / 2|20 / 3|30"},
        {"SELECT Number + 1 AS Number FROM Loose", "error 3103"},
        {"SELECT Loose.Number + 1 AS Number FROM Loose", "3 / 2 / 3"},
        {"SELECT b + 1 AS a, a + 1 AS b FROM Loose", "error 3103"},
        {"SELECT Sum(Number) AS Number FROM Loose", "error 3103"},
        {"SELECT Number AS m FROM Loose WHERE m = 1", "error 3061"},
        {"SELECT Number AS m FROM Loose ORDER BY m", "1 / 2 / 2"},
        {"SELECT [Text] FROM Loose ORDER BY 1 DESC", "b / B  / a"},
        {"SELECT Number AS a, Flag AS A FROM Loose", "error 3062"},
        {"SELECT Order FROM Loose ORDER BY [Order]", "error 3061"},
        {"SELECT \"Text\" FROM Loose WHERE Number = 1", "Text"},
    });
    EXPECT_EQ(
        database.ColumnNames("SELECT number, Number + 1, Count(*) AS n, 'x' FROM Loose GROUP BY Number"),
        (Names{"Number", "Expr1001", "n", "Expr1003"}));
    EXPECT_EQ(database.ColumnNames("SELECT Heads.Name, l.*, Heads.Name FROM Heads, Lines AS l"),
              (Names{"Heads.Name", "Line ID", "Head ID", "l.Name", "Amount", "Season", "Expr1006"}));
}

TEST_F(Translator, SubqueriesUnionsAndSavedQueries) {
    database.AddQuery("Totals", "SELECT [Head ID], Sum(Amount) AS Total FROM Lines GROUP BY [Head ID];");
    database.AddQuery("Big", "PARAMETERS least Currency; SELECT * FROM Totals WHERE Total >= least");
    database.AddQuery("Snake", "SELECT * FROM Tail");
    database.AddQuery("Tail", "SELECT * FROM Snake");
    database.AddQuery("Wipe", "DELETE FROM Lines");
    Check({
        {"SELECT Name FROM Heads WHERE Exists (SELECT * FROM Lines WHERE Lines.[Head ID] = Heads.[Head ID])",
         "Wool / Beef"},
        {"SELECT Name FROM Heads WHERE Not Exists (SELECT * FROM Lines WHERE [Head ID] = Heads.[Head ID])",
         "Milk"},
        {"SELECT Name, (SELECT Count(*) FROM Lines WHERE Lines.[Head ID] = Heads.[Head ID]) FROM Heads",
         "Wool|2 / Beef|1 / Milk|0"},
        {"SELECT (SELECT Name FROM Lines) FROM Heads", "error 3354"},
        {"SELECT (SELECT Name, Season FROM Lines) FROM Heads", "error 3306"},
        {"SELECT [Line ID] FROM Lines WHERE Amount > All (SELECT Amount FROM Lines WHERE Season = 2008 And "
         "Amount "
         "Is Not Null)",
         "1 / 2"},
        {"SELECT [Line ID] FROM Lines WHERE Amount > All (SELECT Amount FROM Lines)", ""},
        {"SELECT [Line ID] FROM Lines WHERE Amount < Any (SELECT Amount FROM Lines)", "2 / 3"},
        {"SELECT [Line ID] FROM Lines WHERE Amount In (SELECT Number + 18 FROM Loose)", "2"},
        {"SELECT Name FROM Heads WHERE Name Not In (SELECT 'WOOL' FROM Loose)", "Beef / Milk"},
        {"SELECT h.Name, t.Total FROM Heads AS h LEFT JOIN Totals AS t ON h.[Head ID] = t.[Head ID]",
         "Wool|25.25 / Beef|100.5 / Milk|<null>"},
        {"SELECT Total FROM Totals WHERE [head id] < 50", "25.25 / 100.5"},
        {"SELECT x.T FROM (SELECT Total AS T FROM Totals) AS x WHERE x.T > 50", "100.5"},
        {"SELECT * FROM Big", "error 3061"},
        {"SELECT * FROM Snake", "error 3102"},
        {"SELECT * FROM Wipe", "error 3069"},
        {"SELECT Number FROM Loose UNION SELECT Amount FROM Lines ORDER BY Number DESC",
         "100.5 / 20 / 5.25 / 2 / 1 / <null>"},
        {"SELECT Count(*) FROM (SELECT [Text] FROM Loose UNION SELECT 'A' FROM Loose) AS u", "2"},
        {"SELECT Number FROM Loose UNION SELECT [Text] FROM Loose ORDER BY 1", "1 / 2 / a / b"},
        {"SELECT Number, Flag FROM Loose UNION SELECT Number FROM Loose", "error 3307"},
        {"SELECT Number FROM Loose UNION SELECT Season FROM Lines ORDER BY Flag", "error 3351"},
    });
}

// A query that only shows fields of one table can be changed as the table can.
TEST_F(Translator, ViewsOfOneTable) {
    database.AddQuery("Cheap",
                      "SELECT [Line ID] AS Number, Name, Amount FROM Lines WHERE Amount < 50 ORDER BY Name");
    database.AddQuery("Cheaper", "SELECT Number, Amount AS Price FROM Cheap WHERE Amount < 10");
    Check({
        {"SELECT * FROM Cheap", "3|crutch|5.25 / 2|fleece|20"},
        {"SELECT * FROM Cheaper", "3|5.25"},
        {"SELECT Season FROM Cheap", "error 3061"},
        {"SELECT h.Name, c.Price FROM Heads AS h, Cheaper AS c WHERE h.[Head ID] = 10", "Wool|5.25"},
        {"SELECT l.[Line ID], c.Price FROM Lines AS l LEFT JOIN Cheaper AS c ON l.[Line ID] = c.Number",
         "1|<null> / 2|<null> / 3|5.25 / 4|<null>"},
    });
    const Selection selection = database.Translate("SELECT Price, Number FROM Cheaper");
    EXPECT_EQ(selection.columns[0].field, 3);
    EXPECT_EQ(selection.columns[1].field, 0);
    EXPECT_EQ(database.Execute("UPDATE Cheaper SET Price = Price + 1"), "1");
    EXPECT_EQ(
        database.Execute("UPDATE Cheap INNER JOIN Heads ON Cheap.Name = Heads.Name SET Cheap.Amount = 0"),
        "0");
    EXPECT_EQ(database.Execute("DELETE FROM Cheap WHERE Number = 2"), "1");
    EXPECT_EQ(database.Query("SELECT [Line ID], Amount FROM Lines"), "1|100.5 / 3|6.25 / 4|<null>");
}

TEST_F(Translator, Crosstabs) {
    Check({
        {"TRANSFORM Sum(Amount) AS S SELECT Season FROM Lines GROUP BY Season ORDER BY [Head ID] PIVOT [Head "
         "ID]",
         "2007|20|100.5|<null> / 2008|5.25|<null>|<null>"},
        {"TRANSFORM Count(*) SELECT Season FROM Lines GROUP BY Season PIVOT [Head ID]",
         "2007|1|1|<null> / 2008|1|<null>|1"},
        {"TRANSFORM Count(Amount) SELECT Season, Count(*) AS All FROM Lines GROUP BY Season PIVOT [Head ID] "
         "IN "
         "(99, 10, 5)",
         "2007|2|<null>|1|<null> / 2008|2|0|1|<null>"},
        {"TRANSFORM First(Name) SELECT Season FROM Lines GROUP BY Season ORDER BY Season DESC PIVOT "
         "Left(Name, 1)",
         "2008|crutch|<null>|stray / 2007|<null>|fleece|steers"},
        {"TRANSFORM Sum(Amount) / Count(Amount) SELECT 'x' AS k FROM Lines GROUP BY 'x' PIVOT Season",
         "x|60.25|5.25"},
        {"TRANSFORM Sum(Amount) SELECT Season FROM Lines WHERE False GROUP BY Season PIVOT [Head ID]", ""},
        {"TRANSFORM Sum(Amount) SELECT Season FROM Lines GROUP BY Season PIVOT [Head ID] IN (1, 1)",
         "error 3104"},
    });
    const auto names = [&](const char* rest) {
        return database.ColumnNames("TRANSFORM Count(*) SELECT 'x' AS k FROM " + std::string(rest));
    };
    // By value, not as text; Null first.
    database.Execute("INSERT INTO Loose VALUES (Null, 10, False)");
    EXPECT_EQ(names("Loose GROUP BY 'x' PIVOT Number"), (Names{"k", "1", "2", "10"}));
    EXPECT_EQ(names("Loose GROUP BY 'x' PIVOT [Text]"), (Names{"k", "<>", "a", "b"}));
    EXPECT_EQ(names("Loose GROUP BY 'x' PIVOT Flag"), (Names{"k", "-1", "0"}));
    EXPECT_EQ(names("Lines GROUP BY 'x' PIVOT Amount"), (Names{"k", "<>", "5.25", "20", "100.5"}));
    EXPECT_EQ(names("Lines GROUP BY 'x' PIVOT DateSerial(Season, 1, 31)"),
              (Names{"k", "31/01/2007", "31/01/2008"}));
    EXPECT_EQ(names("Loose WHERE False GROUP BY 'x' PIVOT Number"), (Names{"k"}));
}

TEST_F(Translator, UpdatesOverJoins) {
    const auto rows = [&](const char* sql) { return database.Query(sql); };
    EXPECT_EQ(
        database.Execute("UPDATE DISTINCTROW Heads INNER JOIN Lines ON Heads.[Head ID] = Lines.[Head ID] SET "
                         "Lines.Name = Heads.Name & ' : ' & Level WHERE Season = 2007"),
        "2");
    EXPECT_EQ(rows("SELECT Name FROM Lines"), "Beef : Cattle / Wool : Sheep / crutch / stray");
    EXPECT_EQ(database.Execute(
                  "UPDATE Heads LEFT JOIN Kinds ON Heads.[Head ID] = Kinds.[Head ID] SET Level = Icon"),
              "3");
    EXPECT_EQ(rows("SELECT Level FROM Heads"), "ewe.bmp / cow.bmp / <null>");
    // Both tables, from the state before.
    EXPECT_EQ(
        database.Execute("UPDATE Heads INNER JOIN Kinds ON Heads.[Head ID] = Kinds.[Head ID] SET Icon = "
                         "Heads.Name, Heads.Name = Icon"),
        "2");
    EXPECT_EQ(rows("SELECT Name, Icon FROM Heads INNER JOIN Kinds ON Heads.[Head ID] = Kinds.[Head ID]"),
              "cow.bmp|Beef / ewe.bmp|Wool");
    // What the outer join does not find is added.
    EXPECT_EQ(database.Execute("UPDATE Heads LEFT JOIN Kinds ON Heads.[Head ID] = Kinds.[Head ID] SET "
                               "Kinds.[Head ID] = Heads.[Head ID], Icon = 'new'"),
              "3");
    EXPECT_EQ(rows("SELECT * FROM Kinds"), "1|20|new / 2|10|new / 3|30|new");
    for (const Case& each : std::vector<Case>{
             {"UPDATE Lines SET Amount = (SELECT Max(Number) FROM Loose)", "error 3073"},
             {"UPDATE Lines INNER JOIN (SELECT Season, Max(Amount) AS m FROM Lines GROUP BY Season) AS q ON "
              "Lines.Season = q.Season SET Lines.Amount = q.m",
              "error 3073"},
             {"UPDATE Lines SET Nothing = 1", "error 3061"},
             {"UPDATE Lines SET Amount = Nothing", "error 3061"},
             {"UPDATE Lines SET Amount = 1, Lines.amount = 2", "error 3063"},
             {"UPDATE Nowhere SET x = 1", "error 3078"},
             {"UPDATE Heads SET [Head ID] = Null", "error 3314"},
             {"UPDATE Lines SET Amount = Amount + 1 WHERE Season = 2007", "2"},
             {"UPDATE Lines SET Season = 'abc' WHERE [Line ID] = 1", "error 3421"},
             {"UPDATE Lines SET Season = '2010', Amount = '7.5' WHERE [Line ID] = 1", "1"},
             {"UPDATE Lines SET Season = 99999", "error 6"},
             {"UPDATE Loose SET Flag = Null, Number = 2.5 WHERE [Text] = 'a'", "1"},
             {"UPDATE Loose SET Flag = 7 WHERE Number = 2 And [Text] = 'A'", "1"},
         }) {
        EXPECT_EQ(database.Execute(each.sql), each.expected) << each.sql;
    }
    EXPECT_EQ(rows("SELECT Season, Amount FROM Lines"), "2010|7.5 / 2007|21 / 2008|5.25 / 2008|<null>");
    EXPECT_EQ(rows("SELECT * FROM Loose"), "b|2|-1 / a|2|-1 / B |2|0");
}

TEST_F(Translator, Deletes) {
    for (const Case& each : std::vector<Case>{
             {"DELETE Lines.*, Heads.Name FROM Lines INNER JOIN Heads ON Lines.[Head ID] = Heads.[Head ID] "
              "WHERE "
              "Heads.Name = 'BEEF'",
              "1"},
             {"DELETE Heads.* FROM Heads INNER JOIN Kinds ON Heads.[Head ID] = Kinds.[Head ID] WHERE Icon "
              "Like 'c*'",
              "1"},
             {"DELETE Kinds.Icon FROM Kinds LEFT JOIN Heads ON Kinds.[Head ID] = Heads.[Head ID] WHERE "
              "Heads.Name Is "
              "Null",
              "1"},
             {"DELETE * FROM Lines INNER JOIN Heads ON Lines.[Head ID] = Heads.[Head ID]", "error 3128"},
             {"DELETE Lines.*, Heads.* FROM Lines INNER JOIN Heads ON Lines.[Head ID] = Heads.[Head ID]",
              "error 3086"},
             {"DELETE Loose.[Text] FROM Loose WHERE Number = 1", "1"},
             {"DELETE Loose.*, Loose.[Text] FROM Loose WHERE Flag", "1"},
             {"DELETE FROM Loose WHERE Nothing = 1", "error 3061"},
             {"DELETE FROM Nowhere", "error 3078"},
             {"DELETE * FROM Loose", "1"},
         }) {
        EXPECT_EQ(database.Execute(each.sql), each.expected) << each.sql;
    }
    EXPECT_EQ(database.Query("SELECT [Line ID] FROM Lines"), "2 / 3 / 4");
    EXPECT_EQ(database.Query("SELECT Name FROM Heads"), "Wool / Milk");
    EXPECT_EQ(database.Query("SELECT Icon FROM Kinds"), "ewe.bmp");
}

TEST_F(Translator, Inserts) {
    for (const Case& each : std::vector<Case>{
             {"INSERT INTO Loose (Number, [Text]) VALUES ('5', 12.5)", "1"},
             {"INSERT INTO Loose SELECT Name AS [Text], Season AS Number FROM Lines WHERE [Line ID] < 3",
              "2"},
             {"INSERT INTO Loose ([Text], Number) SELECT DISTINCT Season, 2.5 FROM Lines", "2"},
             {"INSERT INTO Loose SELECT Season FROM Lines", "error 3127"},
             {"INSERT INTO Loose (Number) SELECT Season, Name FROM Lines", "error 3346"},
             {"INSERT INTO Loose VALUES ('x')", "error 3346"},
             {"INSERT INTO Loose (Number, number) VALUES (1, 2)", "error 3063"},
             {"INSERT INTO Loose (Colour) VALUES (1)", "error 3127"},
             {"INSERT INTO Nowhere (a) VALUES (1)", "error 3078"},
             {"INSERT INTO Loose (Number) VALUES (Nothing)", "error 3061"},
             // A key that is the row's address is not numbered by itself.
             {"INSERT INTO Heads (Name) VALUES ('x')", "error 3314"},
             {"INSERT INTO Heads ([Head ID]) SELECT Amount FROM Lines WHERE [Line ID] = 4", "error 3314"},
             {"SELECT [Text] AS Words, Number * 2 AS Twice, Flag INTO Copied FROM Loose WHERE Number < 10",
              "6"},
             {"SELECT * INTO Heads FROM Loose", "error 3010"},
         }) {
        EXPECT_EQ(database.Execute(each.sql), each.expected) << each.sql;
    }
    EXPECT_EQ(database.Query("SELECT * FROM Copied"),
              "b|4|-1 / a|2|0 / B |4|0 / 12.5|10|0 / 2007|4|0 / 2008|4|0");
    const Action action =
        database.TranslateToAction("SELECT [Head ID], Name, Level & '' AS L INTO X FROM Heads");
    ASSERT_EQ(action.created.fields.size(), 3U);
    EXPECT_EQ(action.created.fields[0].type, FieldType::Long);
    EXPECT_EQ(action.created.fields[1].size, 50);
    EXPECT_EQ(action.created.fields[2].size, 255);
    EXPECT_TRUE(action.created.indexes.empty());
}

// A dynaset's keys and its rows by key give what the query gives, and in the same order.
TEST_F(Translator, RowsByTheirKeys) {
    const struct {
        const char* sql;
        std::size_t tables; // 0: cannot be updated
    } cases[] = {
        {"SELECT * FROM Heads", 1},
        {"SELECT Name, Level & '!' FROM Heads ORDER BY Name DESC", 1},
        {"SELECT 1 FROM Loose", 1},
        {"SELECT Heads.*, Kinds.Icon FROM Heads LEFT JOIN Kinds ON Heads.[Head ID] = Kinds.[Head ID]", 2},
        {"SELECT DISTINCTROW Heads.* FROM Heads INNER JOIN (Lines INNER JOIN Kinds ON Lines.[Head ID] = "
         "Kinds.[Head ID]) ON Heads.[Head ID] = Kinds.[Head ID]",
         1},
        {"SELECT TOP 1 Season, Name FROM Lines ORDER BY Season", 1},
        {"SELECT Lines.Name, Heads.Name FROM Heads RIGHT JOIN Lines ON Heads.[Head ID] = Lines.[Head ID]", 2},
        {"SELECT Name, (SELECT Count(*) FROM Lines WHERE Lines.[Head ID] = Heads.[Head ID]) FROM Heads", 1},
        {"SELECT DISTINCT Name FROM Heads", 0},
        {"SELECT Name FROM Heads GROUP BY Name", 0},
        {"SELECT Count(*) FROM Heads", 0},
        {"SELECT Name FROM Heads UNION SELECT Name FROM Lines", 0},
        {"SELECT x.N FROM (SELECT Name AS N FROM Heads WHERE Level Is Null) AS x", 1},
        {"SELECT x.N FROM (SELECT Name & '' AS N FROM Heads) AS x", 0},
        {"SELECT x.Name FROM (SELECT DISTINCT Name FROM Heads) AS x", 0},
    };
    for (const auto& each : cases) {
        const Selection selection = database.Translate(each.sql);
        EXPECT_EQ(selection.tables.size(), each.tables) << each.sql;
        if (selection.tables.empty()) {
            continue;
        }
        std::vector<FieldType> types;
        for (const auto& column : selection.columns) {
            types.push_back(column.type);
        }
        Names rows;
        for (const std::string& keys : database.Run(selection.keysSql)) {
            std::vector<long> values;
            for (std::size_t at = 0; at < keys.size();
                 at = std::min(keys.find('|', at), keys.size() - 1) + 1) {
                values.push_back(std::atol(keys.c_str() + at));
            }
            for (std::string& row : database.Run(selection.rowSql, types, values)) {
                rows.push_back(std::move(row));
            }
        }
        EXPECT_EQ(rows, database.Rows(each.sql)) << each.sql;
    }
    const Selection join =
        database.Translate("SELECT Kinds.Icon, Heads.Name AS N, Heads.[Head ID] + 0 FROM Heads, Kinds");
    EXPECT_EQ(join.tables[0].table, "Heads");
    EXPECT_EQ(join.columns[0].table, 1);
    EXPECT_EQ(join.columns[0].field, 2);
    EXPECT_EQ(join.columns[1].table, 0);
    EXPECT_EQ(join.columns[1].field, 1);
    EXPECT_EQ(join.columns[2].table, -1);
}

TEST_F(Translator, ParametersTakeTheTypeOfWhatTheyMeet) {
    const Selection selection = database.Translate(
        "PARAMETERS p Short; SELECT [q?] FROM Lines WHERE Season = p And Amount > [x.y] And "
        "[Line ID] Between lo And 5 And Name = who And who = p2");
    const struct {
        const char* name;
        FieldType type;
        bool declared;
        bool typed;
    } expected[] = {
        {"p", FieldType::Integer, true, true}, {"x.y", FieldType::Currency, false, true},
        {"lo", FieldType::Long, false, true},  {"who", FieldType::Text, false, true},
        {"p2", FieldType::Text, false, true},  {"q?", FieldType::Text, false, false},
    };
    ASSERT_EQ(selection.parameters.size(), std::size(expected));
    for (std::size_t i = 0; i < std::size(expected); ++i) {
        EXPECT_EQ(selection.parameters[i].name, expected[i].name);
        EXPECT_EQ(selection.parameters[i].type, expected[i].type) << expected[i].name;
        EXPECT_EQ(selection.parameters[i].declared, expected[i].declared) << expected[i].name;
        EXPECT_EQ(selection.parameters[i].typed, expected[i].typed) << expected[i].name;
    }
}

TEST_F(Translator, CriteriaOfASearch) {
    const std::vector<ResultColumn> columns =
        database.Translate("SELECT l.*, Heads.Name FROM Heads, Lines AS l").columns;
    const auto translate = [&](const char* text) {
        return TranslateCriterion(jet_sql::ParseExpression(text), columns);
    };
    const Criterion one = translate("[Line ID] = 5 And season > [line id]");
    EXPECT_EQ(one.fields, (std::vector<int>{0, 4}));
    EXPECT_EQ(database.Run(one.sql, {}, {5, 2007}), Names{"1"});
    EXPECT_EQ(database.Run(one.sql, {}, {4, 2007}), Names{"0"});
    EXPECT_EQ(translate("heads.name = 'x' Or l.Name = 'y'").fields, (std::vector<int>{5, 2}));
    for (const auto& [text, number] : {std::pair{"Nothing = 1", 3070}, std::pair{"Season = 'x'", 3464},
                                       std::pair{"Exists (SELECT * FROM Lines)", 3078}}) {
        try {
            translate(text);
            ADD_FAILURE() << text;
        } catch (const runtime::RunTimeError& error) {
            EXPECT_EQ(error.Number(), number) << text;
        }
    }
}

} // namespace
} // namespace quillary::database::sqlite
