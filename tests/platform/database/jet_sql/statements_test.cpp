#include "platform/database/jet_sql/corpus.h"
#include "platform/database/jet_sql/parser.h"
#include "platform/database/jet_sql/printer.h"

#include <gtest/gtest.h>

namespace quillary::database::jet_sql {
namespace {

void ExpectPrinted(const char* text, const char* printed) {
    SCOPED_TRACE(text);
    std::string description;
    ASSERT_EQ(ErrorOf([&] { Parse(text); }, &description), 0) << description;
    const Statement statement = Parse(text);
    EXPECT_EQ(Print(statement), printed);
    EXPECT_TRUE(Parse(Print(statement)) == statement);
}

TEST(Statements, PrintInOneSpelling) {
    const struct {
        const char* text;
        const char* printed;
    } cases[] = {
        // Select lists.
        {"select*from t", "SELECT * FROM t"},
        {"SELECT ALL t.*, [a b] AS [x y],c+1 as n From[t];", "SELECT t.*, [a b] AS [x y], c + 1 AS n FROM t"},
        {"Select distinctrow Top 5 Percent a From t", "SELECT DISTINCTROW TOP 5 PERCENT a FROM t"},
        {"SELECT DISTINCT top 3 a FROM t", "SELECT DISTINCT TOP 3 a FROM t"},
        {"SELECT Top, Percent, All FROM t", "SELECT [Top], [Percent], [All] FROM t"},
        {"SELECT TOP 2 Percent FROM t", "SELECT TOP 2 [Percent] FROM t"},
        {"SELECT Name, Value, Order, Use, Date, Key, Index, Left FROM t",
         "SELECT Name, Value, [Order], Use, Date, [Key], [Index], [Left] FROM t"},
        {"SELECT 1From t", "SELECT 1 FROM t"},
        {"SELECT 1 AS [Order], Now()", "SELECT 1 AS [Order], Now()"},
        // Tables and joins.
        {"SELECT a FROM t x, u AS y, (v) AS z", "SELECT a FROM t AS x, u AS y, v AS z"},
        {"SELECT a FROM t INNER JOIN u ON t.i=u.i LEFT OUTER JOIN v ON (v.i=u.i AND v.k>2) WHERE a",
         "SELECT a FROM (t INNER JOIN u ON t.i = u.i) LEFT JOIN v ON v.i = u.i And v.k > 2 WHERE a"},
        {"SELECT a FROM t RIGHT JOIN (u Inner Join v ON u.i=v.i) ON t.i=u.i",
         "SELECT a FROM t RIGHT JOIN (u INNER JOIN v ON u.i = v.i) ON t.i = u.i"},
        {"SELECT a FROM (SELECT b AS a FROM t ORDER BY b;) AS x, [SELECT c FROM u]. AS y",
         "SELECT a FROM (SELECT b AS a FROM t ORDER BY b) AS x, (SELECT c FROM u) AS y"},
        {"SELECT a FROM ((SELECT b FROM t) AS x INNER JOIN u ON x.b=u.b)",
         "SELECT a FROM (SELECT b FROM t) AS x INNER JOIN u ON x.b = u.b"},
        {"SELECT a FROM [c:\\x y.mdb].[t u], Order WHERE b",
         "SELECT a FROM [c:\\x y.mdb].[t u], [Order] WHERE b"},
        {"SELECT a FROM t, u IN 'c:\\x.mdb' WHERE b IN (1)",
         "SELECT a FROM t, u IN 'c:\\x.mdb' WHERE b In (1)"},
        {"SELECT a FROM t INNER JOIN u ON t.i=u.i IN '' [dBase IV;DATABASE=c:\\d;]",
         "SELECT a FROM t INNER JOIN u ON t.i = u.i IN '' 'dBase IV;DATABASE=c:\\d;'"},
        // Clauses.
        {"SELECT a,Count(*)AS n FROM t WHERE((b)=1)GROUP BY a,[c]HAVING Count(*)>1 ORDER BY 2 DESC,a asc,Asc",
         "SELECT a, Count(*) AS n FROM t WHERE b = 1 GROUP BY a, c HAVING Count(*) > 1 ORDER BY 2 DESC, a, "
         "[Asc]"},
        {"SELECT a INTO [new t] IN 'x.mdb' FROM t WITH OWNERACCESS OPTION;",
         "SELECT a INTO [new t] IN 'x.mdb' FROM t WITH OWNERACCESS OPTION"},
        {"SELECT a FROM t WHERE a In(SELECT b FROM u WHERE u.x=t.x)",
         "SELECT a FROM t WHERE a In (SELECT b FROM u WHERE u.x = t.x)"},
        // Unions.
        {"SELECT a FROM t UNION ALL SELECT b FROM u UNION TABLE v ORDER BY a",
         "SELECT a FROM t UNION ALL SELECT b FROM u UNION SELECT * FROM v ORDER BY a"},
        {"(SELECT TOP 1 a FROM t ORDER BY a) UNION (SELECT b FROM u) ORDER BY 1",
         "(SELECT TOP 1 a FROM t ORDER BY a) UNION SELECT b FROM u ORDER BY 1"},
        {"SELECT a FROM t UNION ALL (SELECT b FROM u UNION SELECT c FROM v)",
         "SELECT a FROM t UNION ALL (SELECT b FROM u UNION SELECT c FROM v)"},
        {"SELECT a FROM t UNION SELECT b FROM u ORDER BY a WITH OWNERACCESS OPTION",
         "SELECT a FROM t UNION SELECT b FROM u ORDER BY a WITH OWNERACCESS OPTION"},
        {"((SELECT a FROM t))", "SELECT a FROM t"},
        // Crosstabs.
        {"TRANSFORM Sum(n)AS[s n]SELECT a FROM t GROUP BY a PIVOT b IN(1,-2,'x',#1/2/2007#,Jan)",
         "TRANSFORM Sum(n) AS [s n] SELECT a FROM t GROUP BY a PIVOT b IN (1, -2, 'x', #1/2/2007#, 'Jan')"},
        {"TRANSFORM First(n) SELECT a FROM t GROUP BY a ORDER BY b PIVOT Format(d,'mmm') WITH OWNERACCESS "
         "OPTION",
         "TRANSFORM First(n) SELECT a FROM t GROUP BY a ORDER BY b WITH OWNERACCESS OPTION PIVOT Format(d, "
         "'mmm')"},
        // Action statements.
        {"Update distinctrow t AS x,u SET x.a=1,[b c]=x.a&'z' Where x.i=u.i",
         "UPDATE DISTINCTROW t AS x, u SET x.a = 1, [b c] = x.a & 'z' WHERE x.i = u.i"},
        {"UPDATE t IN 'o.mdb' SET a=Null", "UPDATE t IN 'o.mdb' SET a = Null"},
        {"DELETE FROM t", "DELETE FROM t"},
        {"Delete distinctrow t.*,u.b From t INNER JOIN u ON t.i=u.i WHERE u.b",
         "DELETE DISTINCTROW t.*, u.b FROM t INNER JOIN u ON t.i = u.i WHERE u.b"},
        {"INSERT INTO t(a,t.[b c])VALUES(1,-2+3);", "INSERT INTO t (a, [b c]) VALUES (1, -2 + 3)"},
        {"INSERT INTO t VALUES('x',Now())", "INSERT INTO t VALUES ('x', Now())"},
        {"INSERT INTO t(a)IN 'o.mdb' SELECT b FROM u", "INSERT INTO t (a) IN 'o.mdb' SELECT b FROM u"},
        {"INSERT INTO t IN 'o.mdb' (SELECT b FROM u)", "INSERT INTO t IN 'o.mdb' SELECT b FROM u"},
        {"PARAMETERS [Which season?]Short,d DateTime,v Value,s Text(20);SELECT a FROM t WHERE a=[Which "
         "season?];",
         "PARAMETERS [Which season?] SHORT, d DATETIME, v VALUE, s TEXT(20); SELECT a FROM t WHERE a = "
         "[Which "
         "season?]"},
        {"PARAMETERS [Forms]![F g]![From] DateTime; SELECT a FROM t WHERE a > Forms![F g]!From",
         "PARAMETERS [Forms!F g!From] DATETIME; SELECT a FROM t WHERE a > Forms![F g]![From]"},
        {"EXEC [my query] 1,'x'", "EXECUTE [my query] 1, 'x'"},
        {"PROCEDURE p n Long; UPDATE t SET a=n", "PROCEDURE p n LONG; UPDATE t SET a = n"},
        // Definitions.
        {"CREATE TABLE [Stock Class Names]([Class ID]COUNTER PRIMARY KEY,[Class Name]TEXT(50)NOT NULL UNIQUE,"
         "[Stock Type ID]LONG CONSTRAINT fk REFERENCES[Stock Types]([Type ID])ON DELETE CASCADE ON UPDATE "
         "SET NULL)",
         "CREATE TABLE [Stock Class Names] ([Class ID] COUNTER PRIMARY KEY, [Class Name] TEXT(50) NOT NULL "
         "UNIQUE, "
         "[Stock Type ID] LONG CONSTRAINT fk REFERENCES [Stock Types] ([Type ID]) ON DELETE CASCADE ON "
         "UPDATE SET "
         "NULL)"},
        {"CREATE TABLE t(Order SHORT DEFAULT -1 NOT NULL,Key CHAR WITH COMPRESSION NULL,Date DATE DEFAULT "
         "Now(),"
         "CONSTRAINT pk PRIMARY KEY(Order,Key),UNIQUE(Date),FOREIGN KEY NO INDEX(Key)REFERENCES "
         "u,CHECK(Order>0))",
         "CREATE TABLE t ([Order] SHORT NOT NULL DEFAULT -1, [Key] TEXT(255), Date DATETIME DEFAULT Now(), "
         "CONSTRAINT pk PRIMARY KEY ([Order], [Key]), UNIQUE (Date), FOREIGN KEY NO INDEX ([Key]) REFERENCES "
         "u, "
         "CHECK ([Order] > 0))"},
        {"ALTER TABLE t ADD COLUMN a TEXT(5) NOT NULL, b YESNO",
         "ALTER TABLE t ADD COLUMN a TEXT(5) NOT NULL, b BIT"},
        {"ALTER TABLE t ADD c DECIMAL(10,2)", "ALTER TABLE t ADD COLUMN c DECIMAL(10, 2)"},
        {"ALTER TABLE t DROP COLUMN a,[b c]", "ALTER TABLE t DROP COLUMN a, [b c]"},
        {"ALTER TABLE t ALTER COLUMN a VARCHAR(9)", "ALTER TABLE t ALTER COLUMN a TEXT(9)"},
        {"ALTER TABLE t ALTER a SET DEFAULT 'x'", "ALTER TABLE t ALTER COLUMN a SET DEFAULT 'x'"},
        {"ALTER TABLE t ALTER COLUMN a DROP DEFAULT", "ALTER TABLE t ALTER COLUMN a DROP DEFAULT"},
        {"ALTER TABLE t ADD CONSTRAINT c FOREIGN KEY(a,b)REFERENCES u(x,y)",
         "ALTER TABLE t ADD CONSTRAINT c FOREIGN KEY (a, b) REFERENCES u (x, y)"},
        {"ALTER TABLE t DROP CONSTRAINT c", "ALTER TABLE t DROP CONSTRAINT c"},
        {"CREATE INDEX i ON t(a)", "CREATE INDEX i ON t (a)"},
        {"create unique index[i j]on t(a desc,b asc)with disallow null",
         "CREATE UNIQUE INDEX [i j] ON t (a DESC, b) WITH DISALLOW NULL"},
        {"CREATE INDEX i ON t(a)WITH PRIMARY", "CREATE INDEX i ON t (a) WITH PRIMARY"},
        {"CREATE INDEX i ON t(a)WITH IGNORE NULL", "CREATE INDEX i ON t (a) WITH IGNORE NULL"},
        {"DROP TABLE [t u];", "DROP TABLE [t u]"},
        {"DROP INDEX i ON t", "DROP INDEX i ON t"},
        {"DROP VIEW v", "DROP VIEW v"},
        {"DROP PROC p", "DROP PROCEDURE p"},
        {"CREATE VIEW v(x,y)AS SELECT a,b FROM t;", "CREATE VIEW v (x, y) AS SELECT a, b FROM t"},
        {"CREATE PROCEDURE p(n LONG)AS UPDATE t SET a=n",
         "CREATE PROCEDURE p AS PARAMETERS n LONG; UPDATE t SET a = n"},
        {"CREATE PROC p n LONG,[m m]MEMO AS SELECT n",
         "CREATE PROCEDURE p AS PARAMETERS n LONG, [m m] MEMO; SELECT n"},
    };
    for (const auto& c : cases)
        ExpectPrinted(c.text, c.printed);
}

// Every word of a type means what it means in a table of a real database.
TEST(Statements, TypesOfColumns) {
    const struct {
        const char* text;
        const char* printed;
    } cases[] = {
        {"TEXT", "TEXT(255)"},
        {"CHAR(3)", "TEXT(3)"},
        {"CHARACTER VARYING (7)", "TEXT(7)"},
        {"VARCHAR(9)", "TEXT(9)"},
        {"STRING(2)", "TEXT(2)"},
        {"MEMO", "MEMO"},
        {"LONGTEXT", "MEMO"},
        {"BYTE", "BYTE"},
        {"SHORT", "SHORT"},
        {"SMALLINT", "SHORT"},
        {"INTEGER2", "SHORT"},
        {"LONG", "LONG"},
        {"INT", "LONG"},
        {"Integer", "LONG"},
        {"COUNTER", "COUNTER"},
        {"AUTOINCREMENT", "COUNTER"},
        {"IDENTITY(10,-5)", "COUNTER(10, -5)"},
        {"SINGLE", "SINGLE"},
        {"REAL", "SINGLE"},
        {"DOUBLE", "DOUBLE"},
        {"FLOAT", "DOUBLE"},
        {"NUMBER", "DOUBLE"},
        {"NUMERIC", "DOUBLE"},
        {"NUMERIC(9,2)", "DECIMAL(9, 2)"},
        {"DECIMAL", "DECIMAL(18, 0)"},
        {"CURRENCY", "CURRENCY"},
        {"MONEY", "CURRENCY"},
        {"DATETIME", "DATETIME"},
        {"DATE", "DATETIME"},
        {"TIME", "DATETIME"},
        {"BIT", "BIT"},
        {"YESNO", "BIT"},
        {"LOGICAL", "BIT"},
        {"BOOLEAN", "BIT"},
        {"GUID", "GUID"},
        {"LONGBINARY", "LONGBINARY"},
        {"OLEOBJECT", "LONGBINARY"},
        {"BINARY(16)", "BINARY(16)"},
        {"text ( 4 )", "TEXT(4)"},
    };
    for (const auto& c : cases)
        ExpectPrinted(("CREATE TABLE t (a " + std::string(c.text) + ")").c_str(),
                      ("CREATE TABLE t (a " + std::string(c.printed) + ")").c_str());
    for (const char* bad : {"", "TEXT(0)", "TEXT(a)", "TEXT(1,2)", "TEXT(-1)", "WORD", "VALUE", "[TEXT]",
                            "DECIMAL(29)", "DECIMAL(2,3)", "COUNTER(1,0)", "LONG 5", "TEXT(99999999999)"}) {
        SCOPED_TRACE(bad);
        EXPECT_EQ(ErrorOf([&] { Parse("CREATE TABLE t (a " + std::string(bad) + ")"); }), 3292);
    }
}

// What printing cannot show.
TEST(Statements, TreesTellWhatTheTextTells) {
    const std::string text = "CREATE VIEW v AS  SELECT a FROM t ; ";
    const Statement view = Parse(text);
    const Place body = view.As<CreateQuery>()->bodyPlace;
    EXPECT_EQ(text.substr(body.begin, body.end - body.begin), "SELECT a FROM t");

    const std::string nested = "SELECT x.c FROM [SELECT bc AS c FROM u]. AS x";
    const Statement derived = Parse(nested);
    const auto* table = derived.As<Query>()->As<Select>()->from.front().As<DerivedTable>();
    ASSERT_NE(table, nullptr);
    const Place item = table->query->As<Select>()->items.front().place;
    EXPECT_EQ(nested.substr(item.begin, item.end - item.begin), "bc AS c");

    const Statement unique = Parse("CREATE TABLE t (a LONG UNIQUE)");
    EXPECT_EQ(unique.As<CreateTable>()->columns[0].constraints[0].columns, std::vector<std::string>{"a"});

    // AND binds before OR: a placeholder row of country 0 is listed.
    const Statement listed = Parse("Select * from c where p = 0 or p = 64 AND n<>\"<Please Select>\"");
    EXPECT_EQ(*listed.As<Query>()->As<Select>()->where,
              ParseExpression("(p = 0) Or ((p = 64) And (n <> '<Please Select>'))"));
}

TEST(Statements, ScriptsSplitAtTheEndsOfStatements) {
    const char* const script = "-- what the farmer's diary holds; nothing more\n"
                               "CREATE TABLE t (\n"
                               "    a TEXT(5), -- b\n" // within a line it is no note
                               ");\n\n"
                               "   -- it's a note\r\n"
                               "INSERT INTO t VALUES ('a;b\n-- text', \"c;\", #1/1/2007#);;\n"
                               "SELECT [x;y]\n"
                               "-- left out; too\n"
                               "FROM t;"
                               "PARAMETERS p LONG; SELECT p; CREATE PROC q AS PARAMETERS r LONG; SELECT r;\n"
                               "SELECT a AS Parameters FROM t; SELECT 'open; ";
    const std::vector<ScriptPiece> pieces = SplitScript(script);
    const std::vector<std::pair<int, std::string>> expected = {
        {2, "CREATE TABLE t (\n    a TEXT(5), -- b\n)"},
        {7, "INSERT INTO t VALUES ('a;b\n-- text', \"c;\", #1/1/2007#)"},
        {9, "SELECT [x;y]\nFROM t"},
        {11, "PARAMETERS p LONG; SELECT p"},
        {11, "CREATE PROC q AS PARAMETERS r LONG; SELECT r"},
        {12, "SELECT a AS Parameters FROM t"},
        {12, "SELECT 'open; "},
    };
    ASSERT_EQ(pieces.size(), expected.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        EXPECT_EQ(pieces[i].text, expected[i].second);
        EXPECT_EQ(pieces[i].line, expected[i].first) << pieces[i].text;
    }
    EXPECT_EQ(ParseScript("-- a\nSELECT 1;\n\n DELETE FROM t").size(), 2U);
    EXPECT_EQ(ErrorOf([] { ParseScript("SELECT 1; SELECT"); }), 3141);
    EXPECT_TRUE(SplitScript(" ; ;\n-- nothing").empty());
}

TEST(Statements, TellStatementsFromNames) {
    for (const char* text :
         {"SELECT 1", "  select\n*from t", "(SELECT 1)", "DROP TABLE t", "Parameters a Long;"})
        EXPECT_TRUE(IsStatement(text)) << text;
    for (const char* text : {"", "Farm Details", "[Select]", "Select", "qry_UpdateAccountantsCode", "12"})
        EXPECT_FALSE(IsStatement(text)) << text;
}

} // namespace
} // namespace quillary::database::jet_sql
