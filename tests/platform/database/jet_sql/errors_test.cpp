#include "platform/database/jet_sql/corpus.h"
#include "platform/database/jet_sql/parser.h"

#include <gtest/gtest.h>

namespace quillary::database::jet_sql {
namespace {

TEST(Errors, CarryTheNumberOfTheirPlace) {
    const struct {
        const char* sql;
        int number;
        const char* part; // of the description
    } cases[] = {
        // Text broken by an apostrophe, wherever it stands.
        {"SELECT DISTINCTROW [Feed Demand].[Stock Name] From [Feed Demand] WHERE ((([Feed Demand].[Stock "
         "Name])='O'Brien'));",
         3075, "(missing operator) in query expression '((([Feed Demand].[Stock Name])='O'Brien'));'"},
        {"SELECT a FROM t WHERE (((a)='Lambs''));", 3075, "string in query expression '(((a)='Lambs''));'"},
        {"UPDATE t SET t.a = 'O'Brien' WHERE (((t.a)='x'));", 3075, "'O'Brien'"},
        {"UPDATE t SET t.a = 'Lambs'' WHERE (((t.a)='x'));", 3075, "(missing operator)"},
        {"UPDATE t SET t.a = 'a',b' WHERE (((t.a)='x'));", 3075, "string"},
        {"UPDATE t SET t.a = 'a';b' WHERE (((t.a)='x'));", 3075, "string"},
        {"SELECT a FROM t WHERE b <> 'O'Brien' ORDER BY a", 3075, "'b <> 'O'Brien' ORDER BY a'"},
        {"INSERT INTO t VALUES ('O'Brien')", 3075, "''O'Brien')'"},
        {"DELETE t.* FROM t WHERE a='", 3075, "string in query expression 'a=''"},
        // Broken expressions.
        {"SELECT a b FROM t", 3075, "(missing operator) in query expression 'a b'."},
        {"SELECT a FROM t WHERE a = 1,5", 3075, "(comma) in query expression 'a = 1,5'."},
        {"SELECT a FROM t WHERE (a = 1", 3075, "Missing ), ], or Item in query expression '(a = 1'."},
        {"SELECT a FROM t WHERE a = 1)", 3075, "Extra ) in query expression 'a = 1)'."},
        {"SELECT a FROM t WHERE a = ", 3075, "(missing operator) in query expression 'a ='."},
        {"SELECT a FROM t WHERE a = = 1", 3075, "(missing operator)"},
        {"SELECT a FROM t WHERE a Between 1 Or 2", 3075, "Between operator without And"},
        {"SELECT a FROM t WHERE a Is 1", 3075, "(missing operator)"},
        {"SELECT a FROM t WHERE a In ()", 3075, "(missing operator)"},
        {"SELECT a FROM t WHERE f(1,)", 3075, "(missing operator)"},
        {"SELECT a FROM t WHERE a. = 1", 3075, "(missing name)"},
        {"SELECT a FROM t WHERE a = 1 ORDER a", 3075, "(missing operator) in query expression 'a = 1"},
        {"SELECT a FROM t ORDER BY a WHERE b", 3075, "(missing operator) in query expression 'a"},
        {"SELECT Count(DISTINCT a) FROM t", 3075, "(missing operator)"},
        {"SELECT Sum(*) FROM t", 3075, "(missing operator)"},
        {"SELECT a FROM t WHERE a = 1e999", 3075, "number"},
        {"SELECT a FROM t WHERE a = &H123456789", 3075, "number"},
        {"SELECT a FROM t WHERE a = &HFG", 3075, "number"},
        {"SELECT a FROM t WHERE a = #2/30/2007#", 3075, "date in query expression 'a = #2/30/2007#'."},
        {"SELECT a FROM t WHERE a ? b", 3075, "in query expression 'a ? b'."},
        {"SELECT a FROM t WHERE a = 1 || 2", 3075, "in query expression"},
        {"SELECT a FROM t WHERE b == 1", 3075, "in query expression"},
        {"SELECT \xFF FROM t", 3075, "invalid character"},
        {"SELECT [\xED\xA0\x80] FROM t", 3075, "invalid character"},
        // Brackets.
        {"SELECT [a FROM t", 3126, "'[a FROM t'"},
        {"SELECT a FROM []", 3126, "'[]'"},
        // Clauses.
        {"SELECT", 3141, "SELECT statement includes"},
        {"SELECT FROM t", 3141, ""},
        {"SELECT a, FROM t", 3141, ""},
        {"SELECT a AS FROM t", 3141, ""},
        {"SELECT * x FROM t", 3141, ""},
        {"SELECT a AS b c FROM t", 3141, ""},
        {"SELECT TOP 1.5 a FROM t", 3141, ""},
        {"SELECT a FROM t WHERE b IN (SELECT c INTO d FROM u)", 3141, ""},
        {"SELECT a FROM", 3131, "FROM clause"},
        {"SELECT a FROM WHERE b", 3131, ""},
        {"SELECT a FROM t,", 3131, ""},
        {"SELECT a FROM t x y", 3131, ""},
        {"SELECT a FROM (t", 3131, ""},
        {"SELECT a FROM t JOIN u ON t.i=u.i", 3131, ""},
        {"SELECT a FROM 'x'", 3131, ""},
        {"SELECT a FROM t IN x", 3131, ""},
        {"SELECT a FROM t INNER JOIN ON t.i=u.i", 3135, "JOIN operation"},
        {"SELECT a FROM t INNER JOIN u", 3135, ""},
        {"SELECT a FROM t LEFT OUTER u ON t.i=u.i", 3135, ""},
        {"SELECT a FROM t INNER JOIN u ON WHERE b", 3135, ""},
        {"SELECT a FROM t WHERE", 3145, "WHERE clause"},
        {"SELECT a FROM t WHERE ORDER BY a", 3145, ""},
        {"SELECT a FROM t GROUP BY", 3132, "GROUP BY clause"},
        {"SELECT a FROM t GROUP BY a, HAVING b", 3132, ""},
        {"SELECT a FROM t GROUP BY a HAVING", 3133, "HAVING clause"},
        {"SELECT a FROM t ORDER BY", 3138, "ORDER BY clause"},
        {"SELECT a FROM t ORDER BY a,", 3138, ""},
        {"SELECT a FROM t ORDER BY a UNION SELECT b FROM u", 3138, ""},
        {"SELECT a FROM t UNION", 3141, ""},
        {"TRANSFORM SELECT a FROM t PIVOT b", 3143, "TRANSFORM"},
        {"TRANSFORM Sum(a) SELECT a FROM t", 3143, ""},
        {"TRANSFORM Sum(a) SELECT a FROM t PIVOT b IN (c.d)", 3143, ""},
        {"PARAMETERS a; SELECT b", 3139, "PARAMETER"},
        {"PARAMETERS a LONG SELECT b", 3139, ""},
        {"PROCEDURE ; SELECT b", 3140, "PROCEDURE"},
        // Action statements. A comma as decimal sign ends a SET value.
        {"UPDATE DISTINCTROW TaxRates SET TaxRates.[Rate %] = 12,5 WHERE (((TaxRates.[Rate %])>0));", 3144,
         "UPDATE statement"},
        {"UPDATE TaxRates SET TaxRates.[Rate %] =  WHERE (((TaxRates.[Rate %])>0));", 3144, ""},
        {"UPDATE t", 3144, ""},
        {"UPDATE t SET", 3144, ""},
        {"UPDATE t SET 1 = 2", 3144, ""},
        {"UPDATE t SET a = 1,", 3144, ""},
        {"UPDATE SET a = 1", 3144, ""},
        {"DELETE a t FROM t", 3075, ""},
        {"DELETE *", 3130, "DELETE statement"},
        {"DELETE FROM", 3131, ""},
        {"DELETE FROM t ORDER BY a", 3131, ""},
        {"INSERT t VALUES (1)", 3134, "INSERT INTO statement"},
        {"INSERT INTO t", 3134, ""},
        {"INSERT INTO t (a,) VALUES (1)", 3134, ""},
        {"INSERT INTO t VALUES 1", 3134, ""},
        {"INSERT INTO t VALUES ()", 3134, ""},
        {"INSERT INTO t VALUES (1,)", 3134, ""},
        {"INSERT INTO t VALUES (1), (2)", 3137, "Missing semicolon"},
        // Definitions.
        {"CREATE TABLE", 3290, "CREATE TABLE"},
        {"CREATE TABLE t", 3290, ""},
        {"CREATE TABLE t (a LONG", 3290, ""},
        {"CREATE TEMPORARY TABLE t (a LONG)", 3290, ""},
        {"CREATE TABLE t ()", 3292, "field definition"},
        {"CREATE TABLE t (a LONG,)", 3292, ""},
        {"CREATE TABLE t (a LONG NOT)", 3292, ""},
        {"CREATE TABLE t (a LONG DEFAULT)", 3292, ""},
        {"CREATE TABLE t (a LONG CONSTRAINT c)", 3289, "CONSTRAINT clause"},
        {"CREATE TABLE t (a LONG, PRIMARY KEY)", 3289, ""},
        {"CREATE TABLE t (a LONG REFERENCES u (b) ON DELETE MAYBE)", 3289, ""},
        {"CREATE INDEX i ON t", 3291, "CREATE INDEX"},
        {"CREATE UNIQUE TABLE t (a LONG)", 3291, ""},
        {"CREATE INDEX i ON t (a) WITH NULL", 3291, ""},
        {"ALTER TABLE t", 3293, "ALTER TABLE"},
        {"ALTER TABLE t RENAME a", 3293, ""},
        {"ALTER TABLE t ADD COLUMN a", 3292, ""},
        {"DROP t", 3295, "DROP TABLE or DROP INDEX"},
        {"DROP INDEX i", 3295, ""},
        {"CREATE VIEW v SELECT 1", 3140, ""},
        {"CREATE VIEW v AS DELETE FROM t", 3141, ""},
        // The statement as a whole.
        {"", 3129, "expected 'DELETE'"},
        {" ; ", 3129, ""},
        {"Farm Details", 3129, ""},
        {"BEGIN TRANSACTION", 3129, ""},
        {"(a)", 3129, ""},
        {"SELECT 1; SELECT 2", 3142, "Characters found after end"},
        {"SELECT 1;;", 3142, ""},
        {"DROP TABLE t CASCADE", 3142, ""},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.sql);
        std::string text;
        EXPECT_EQ(ErrorOf([&] { Parse(c.sql); }, &text), c.number) << text;
        EXPECT_NE(text.find(c.part), std::string::npos) << text;
    }
}

TEST(Errors, OfFindCriteria) {
    for (const char* broken :
         {"", "[TaxRateNumber] = ", "[TaxRateNumber] = 1,5", "[RebateID]=1,000", "a = 1;", "a b", "a = 1)",
          "a = 'O'Brien'", "(a = 1", "code = 1 ORDER BY code", "*"})
        EXPECT_EQ(ErrorOf([&] { ParseExpression(broken); }), 3075) << broken;
    EXPECT_EQ(ErrorOf([] { ParseExpression(std::string_view("a = 1\0", 6)); }), 3075);
}

std::string Repeated(const std::string& text, int times) {
    std::string all;
    for (; times > 0; --times)
        all += text;
    return all;
}

// Deep nesting and long chains are refused with a number of their own; what is merely long is not.
TEST(Errors, TooDeepATextIsRefused) {
    const struct {
        std::string open, core, close;
        int fits; // so many times
    } cases[] = {
        {"(", "1", ")", 150},
        {"-", "1", "", 150},
        {"Not ", "a", "", 150},
        {"f(", "1", ")", 150},
        {"a In (", "1", ")", 150},
        {"(SELECT ", "1", ")", 60},
        {"Exists (SELECT a FROM t WHERE ", "b", ")", 60},
        {"1 Imp a Eqv b Xor c Or d And Not e = f & g + h Mod i \\ j * k ^ (", "1", ")", 30},
        {"", "1", " + 1", 450},
        {"", "a", " And b Is Null", 450},
        {"", "a", " Like b", 450},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.open + c.close);
        const auto text = [&](int times) {
            return Repeated(c.open, times) + c.core + Repeated(c.close, times);
        };
        EXPECT_EQ(ErrorOf([&] { ParseExpression(text(c.fits)); }), 0);
        EXPECT_EQ(ErrorOf([&] { ParseExpression(text(1000)); }), 3360);
        EXPECT_EQ(ErrorOf([&] { ParseExpression(text(20'000)); }), 3360);
    }
    EXPECT_EQ(ErrorOf([] { Parse("SELECT a FROM " + Repeated("(", 5000) + "t"); }), 3360);
    EXPECT_EQ(ErrorOf([] { Parse(Repeated("(", 5000) + "SELECT 1"); }), 3360);
    EXPECT_EQ(ErrorOf([] { Parse(Repeated("CREATE PROC p AS ", 5000) + "SELECT 1"); }), 3360);
    EXPECT_EQ(ErrorOf([] { Parse("SELECT a FROM t" + Repeated(" INNER JOIN t ON a", 5000)); }), 3360);

    EXPECT_EQ(ErrorOf([] { ParseExpression("a In (1" + Repeated(",1", 50'000) + ")"); }), 0);
    EXPECT_EQ(ErrorOf([] { Parse("SELECT 1" + Repeated(" UNION ALL SELECT 1", 20'000)); }), 0);
    EXPECT_EQ(ErrorOf([] { Parse("SELECT '" + Repeated("x", 2'000'000) + "'"); }), 0);
}

} // namespace
} // namespace quillary::database::jet_sql
