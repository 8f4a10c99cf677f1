#include "platform/database/translated_database.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"

#include <gtest/gtest.h>

// Expressions as SELECT gives them, and as conditions over a few rows.
namespace quillary::database::sqlite {
namespace {

struct Case {
    const char* expression;
    const char* expected;
};

class Expressions : public ::testing::Test {
protected:
    void SetUp() override {
        runtime::SetLocale("en_NZ");
        runtime::SetClock([] { return runtime::MakeDate(2007, 8, 15, 14, 5, 9); });
        using enum FieldType;
        database.AddTable("t", {MakeField("id", Long), MakeField("name", Text), MakeField("n", Long),
                                MakeField("d", Date), MakeField("c", Currency), MakeField("s", Single),
                                MakeField("x", Double), MakeField("y", Boolean), MakeField("code", Text)});
        database.Execute("INSERT INTO t VALUES (1, 'Wool', 10, #7/1/2007#, 15.5, 0.105, 1.25, True, '7')");
        database.Execute("INSERT INTO t VALUES (2, 'wool  ', 20, #7/2/2007 10:30:00#, 1000.1, 0.1, 1000.1, "
                         "False, '012')");
        database.Execute("INSERT INTO t (id) VALUES (3)");
        database.Execute("INSERT INTO t VALUES (4, 'Café-au-lait', -5, #12/30/1899 6:15:00#, -0.5, 2.5, 2.5, "
                         "True, '1,5')");
    }
    void TearDown() override { runtime::SetClock(nullptr); }

    void CheckValues(const std::vector<Case>& cases) {
        for (const Case& each : cases) {
            EXPECT_EQ(database.Value(each.expression), each.expected) << each.expression;
        }
    }

    // Which rows a condition holds for, by their ids.
    void CheckRows(const std::vector<Case>& cases) {
        for (const Case& each : cases) {
            EXPECT_EQ(database.Query("SELECT id FROM t WHERE " + std::string(each.expression)), each.expected)
                << each.expression;
        }
    }

    TranslatedDatabase database;
};

TEST_F(Expressions, OperatorsAndTheirPrecedence) {
    CheckValues({
        {"1 + 2 * 3", "7"},
        {"-2^2", "4"},
        {"2^3^2", "64"},
        {"7 \\ 2 * 3", "1"},
        {"7.5 \\ 2", "4"},
        {"6.5 Mod 4", "2"},
        {"7.5 Mod 3", "2"},
        {"-7 \\ 2", "-3"},
        {"-7 Mod 3", "-1"},
        {"7 / 2", "3.5"},
        {"1 / 0", "error 11"},
        {"1 \\ 0", "error 11"},
        {"5 Mod 0.4", "error 11"},
        {"(-8)^0.5", "error 5"},
        {"0.1 + 0.2", "0.3"},
        {"1 & 2 + 3", "15"},
        {"3 > 2 = True", "-1"},
        {"Not 1 = 2", "-1"},
        {"True Or False And False", "-1"},
        {"5 - -3", "8"},
        {"- -3", "3"},
        {"2147483647 + 1", "2147483648"}, // the reader refuses it
    });
}

TEST_F(Expressions, LogicIsTrueOrFalseAndNullIsNeither) {
    CheckValues({
        {"6 And 1", "-1"},
        {"Not 6", "0"},
        {"0.5 Or 0", "-1"},
        {"True Xor 5", "0"},
        {"True Eqv 5", "-1"},
        {"False Imp Null", "-1"},
        {"True Imp Null", "<null>"},
        {"Null And False", "0"},
        {"Null And True", "<null>"},
        {"Null Or True", "-1"},
        {"Not Null", "<null>"},
        {"Null = Null", "<null>"},
        {"Null Is Null", "-1"},
        {"1 In (2, Null)", "<null>"},
        {"1 Not In (1, Null)", "0"},
        {"Yes + On", "-2"},
        {"No Or Off", "0"},
    });
    CheckRows({
        {"y", "1 / 4"},
        {"Not y", "2 / 3"},
        {"y = True", "1 / 4"},
        {"y = Yes", "1 / 4"},
        {"y = 1", ""},
        {"y = -1", "1 / 4"},
        {"n", "1 / 2 / 4"},
        {"n = 10 Or n = 20 And y", "1"},
        {"n <> 10", "2 / 4"},
        {"Not (n = 10)", "2 / 4"},
        {"name Is Null", "3"},
        {"name Is Not Null And n > 0", "1 / 2"},
        {"(n > 5) = (x < 2)", "1 / 4"},
    });
}

TEST_F(Expressions, AmpersandSwallowsNullAndPlusDoesNot) {
    CheckValues({
        {"'a' & Null", "a"},
        {"Null & 'a'", "a"},
        {"Null & Null", "<null>"},
        {"'a' + Null", "<null>"},
        {"'a' + 'b'", "ab"},
        {"'2' + 3", "5"},
        {"'x' + 3", "error 3464"},
        {"1 & 2 & 3", "123"},
        {"1.5 & ''", "1.5"},
        {"True & ''", "-1"},
        {"(1 = 2) & ''", "0"},
        {"#8/15/2007# & ''", "15/08/2007"},
        {"#8/15/2007 2:05:09 PM# & ''", "15/08/2007 2:05:09 pm"},
        {"'it''s' & \" \"\"so\"\"\"", "it's \"so\""},
    });
    EXPECT_EQ(database.Query("SELECT name & ' : ' & n FROM t"),
              "Wool : 10 / wool   : 20 /  :  / Café-au-lait : -5");
    EXPECT_EQ(database.Query("SELECT name & code FROM t"), "Wool7 / wool  012 / <null> / Café-au-lait1,5");
    EXPECT_EQ(database.Query("SELECT name & Left(code, 1) FROM t WHERE id > 2"), "<null> / Café-au-lait1");
    EXPECT_EQ(database.Query("SELECT y & '', c & '', s & '', d & '' FROM t WHERE id < 3"),
              "-1|15.5|0.105|1/07/2007 / 0|1000.1|0.1|2/07/2007 10:30:00 am");
}

TEST_F(Expressions, TextComparesWithoutCaseAndTrailingBlanks) {
    CheckRows({
        {"name = 'WOOL'", "1 / 2"},
        {"'wool' = name", "1 / 2"},
        {"name <> 'wool'", "4"},
        {"name In ('WOOL', 'x')", "1 / 2"},
        {"Left(name, 4) = 'WOOL'", "1 / 2"},
        {"name & '' = 'WOOL'", "1 / 2"},
        {"Left(name, 2) & 'OL' In ('wool')", "1 / 2"},
        {"name = 'Cafe-au-lait'", ""},
        {"name > 'v'", "1 / 2"},
        {"name Between 'x' And 'd'", "1 / 2"},
        {"name Like 'wool'", "1"},
        {"name Like 'W*'", "1 / 2"},
        {"name Like 'wool?\?'", "2"},
        {"name Like '*É-*'", "4"},
        {"name Not Like '*o*'", "4"},
        {"name Like name", "1 / 2 / 4"},
        {"n Like '1#'", "1"},
        {"name Like Null", ""},
    });
}

TEST_F(Expressions, KindsThatDoNotCompare) {
    CheckRows({
        {"name = 5", "error 3464"},
        {"code > 5", "error 3464"},
        {"n = '10'", "error 3464"},
        {"n In (1, 'x')", "error 3464"},
        {"d = name", "error 3464"},
        {"d = 'no date'", "error 3464"},
        {"n = y", ""},
        {"Val(code & '') = 7", "1"},
        {"code + 1 = 8", "1"},
    });
}

TEST_F(Expressions, DatesAsLiteralsTextAndNumbers) {
    CheckRows({
        {"d = #7/1/2007#", "1"},
        {"d >= #7/1/2007#", "1 / 2"},
        {"d = #13/7/2007#", ""}, // a first number above 12 is the day
        {"d = '1/07/2007'", "1"},
        {"d Between '3/07/2007' And '1/07/2007'", "1 / 2"},
        {"d = #6:15:00#", "4"},
        {"d = 39264", "1"},
        {"d In ('1/07/2007', #7/2/2007 10:30:00 AM#)", "1 / 2"},
        {"d + 1 = #7/2/2007#", "1"},
        {"d - #7/1/2007# = 1.4375", "2"},
        {"d < Date()", "1 / 2 / 4"},
    });
    CheckValues({
        {"#1/31/2008# + 30", "2008-03-01"},
        {"#3/1/2008# - 1", "2008-02-29"},
        {"#3/1/2008# - #2/1/2008#", "29"},
        {"#1/1/2008# + 0.5", "2008-01-01 12:00:00"},
        {"#1/1/2008# * 1", "39448"},
        {"Date()", "2007-08-15"},
        {"Now()", "2007-08-15 14:05:09"},
        {"Time()", "1899-12-30 14:05:09"},
        {"#12/31/9999# + 1", "error 6"},
    });
}

TEST_F(Expressions, CurrencyAndSingleAreExact) {
    CheckRows({
        {"c = 15.5", "1"},
        {"c > 1000.05", "2"},
        {"c = 1000.1", "2"},
        {"c = x", "2"},
        {"x = c", "2"},
        {"c > n", "1 / 2 / 4"},
        {"c Between 20 And 15", "1"},
        {"c In (15.5, 1000.1)", "1 / 2"},
        {"c < 0.00001 And c <> 0", "4"},
        {"s = 0.105", "1"},
        {"s * 3 = 0.3", "2"},
        {"s + s = 0.2", "2"},
    });
    EXPECT_EQ(
        database.Query("SELECT c * 2, c + 1, c - 0.25, c * c, c / 2, -c, c * 1.5, Int(c), Fix(c) FROM t "
                       "WHERE c < 20"),
        "31|16.5|15.25|240.25|7.75|-15.5|23.25|15|15 / -1|0.5|-0.75|0.25|-0.25|0.5|-0.75|-1|0");
    EXPECT_EQ(database.Query("SELECT Sum(c), Avg(c), Min(c), Max(c), Count(c) FROM t"),
              "1015.1|338.3667|-0.5|1000.1|3");
}

TEST_F(Expressions, BetweenTakesItsBoundsInEitherOrder) {
    CheckRows({
        {"n Between 10 And 20", "1 / 2"},
        {"n Between 20 And 10", "1 / 2"},
        {"n Not Between 20 And 10", "4"},
        {"n Between x And 20", "1 / 2"},
        {"5 Between n And 0", "1 / 2"},
        {"n Between Null And 20", ""},
        {"c Between x And 0", "2"},
    });
}

TEST_F(Expressions, BranchesAreTakenOneAtATime) {
    CheckValues({
        {"IIf(Null, 1, 2)", "2"},
        {"IIf(True, 1, 1 / 0)", "1"},
        {"IIf(0, CInt('x'), 'no')", "no"},
        {"IIf(1, 1, 'a')", "1"},
        {"Switch(False, 1, True, 2, True, 1 / 0)", "2"},
        {"Switch(False, 1)", "<null>"},
        {"Choose(2, 'a', 'b')", "b"},
        {"Choose(3, 'a', 'b')", "<null>"},
        {"Choose(1.9, 'a', 'b')", "a"},
    });
    EXPECT_EQ(database.Query("SELECT IIf(n > 5, c, n) FROM t"), "15.5 / 1000.1 / <null> / -5");
    EXPECT_EQ(database.Query("SELECT IIf(y, d, Null) FROM t WHERE id < 3"), "2007-07-01 / <null>");
}

TEST_F(Expressions, NumberFunctions) {
    CheckValues({
        {"CInt(2.5)", "2"},
        {"CInt(3.5)", "4"},
        {"CInt(40000)", "error 6"},
        {"CLng('1,000')", "1000"},
        {"CLng(Null)", "error 94"},
        {"CInt('abc')", "error 13"},
        {"CByte(256)", "error 6"},
        {"CCur(1.23455)", "1.2346"},
        {"CCur(-922337203685000.5)", "-922337203685000.5"},
        {"CSng(0.1) * 3", "0.3"},
        {"CBool(5)", "-1"},
        {"CDbl('1.5')", "1.5"},
        {"Int(-2.5)", "-3"},
        {"Fix(-2.5)", "-2"},
        {"Abs(-3.5)", "3.5"},
        {"Sgn(-3)", "-1"},
        {"Sqr(2.25)", "1.5"},
        {"Sqr(-1)", "error 5"},
        {"Log(0)", "error 5"},
        {"Exp(0)", "1"},
        {"Round(2.5)", "2"},
        {"Round(0.125, 2)", "0.12"},
        {"Round(-1.5)", "-2"},
        {"Round(1, -1)", "error 5"},
        {"Val(' 1 2abc')", "12"},
        {"Val('&H1F')", "31"},
        {"Val('1e2x')", "100"},
        {"Val(Null)", "error 94"},
        {"Str(5)", " 5"},
        {"Str(-5)", "-5"},
        {"Hex(255)", "FF"},
        {"Oct(8)", "10"},
        {"Rnd() < 1", "-1"},
        {"Atn(0) + Sin(0) + Cos(0) + Tan(0)", "1"},
        {"IsNumeric('1,5')", "-1"},
        {"IsNumeric('x')", "0"},
        {"IsNumeric(Null)", "0"},
    });
}

TEST_F(Expressions, TextFunctions) {
    CheckValues({
        {"Left('abc', 2)", "ab"},
        {"Left('abc', 9)", "abc"},
        {"Left('abc', -1)", "error 5"},
        {"Left$('abc', 1 + 1)", "ab"},
        {"Right('abc', 2)", "bc"},
        {"Right('abc', 0)", ""},
        {"Right('abc', 5)", "abc"},
        {"Mid('abc', 2)", "bc"},
        {"Mid('abcdef', 2, 3)", "bcd"},
        {"Mid('abc', 0)", "error 5"},
        {"Mid('abc', 9)", ""},
        {"Left(Null, 1)", "<null>"},
        {"Len('né ')", "3"},
        {"Len(Null)", "<null>"},
        {"UCase('né')", "NÉ"},
        {"LCase('NÉ')", "né"},
        {"'|' & Trim(' a ') & '|'", "|a|"},
        {"LTrim(' a') & RTrim('b ')", "ab"},
        {"InStr('abc', 'C')", "3"},
        {"InStr(3, 'abcb', 'B')", "4"},
        {"InStr(1, 'abc', 'C', 0)", "0"},
        {"InStr('', 'a')", "0"},
        {"InStr('aéb', 'B')", "3"},
        {"InStrRev('abab', 'B')", "4"},
        {"InStrRev('abab', 'b', 3)", "2"},
        {"Replace('aAb', 'a', 'xy')", "xyxyb"},
        {"Replace('aab', 'a', 'x', 2)", "xb"},
        {"Replace('aaa', 'a', 'x', 1, 2)", "xxa"},
        {"'|' & Space(2) & '|'", "|  |"},
        {"String(3, 'xy')", "xxx"},
        {"String(2, 65)", "AA"},
        {"StrReverse('aé')", "éa"},
        {"StrComp('a', 'A')", "0"},
        {"StrComp('a', 'A', 0)", "1"},
        {"StrConv('new zealand', 3)", "New Zealand"},
        {"Asc('A')", "65"},
        {"Asc('')", "error 5"},
        {"Chr(8364 - 8236)", "€"},
        {"Asc('€')", "128"},
        {"Chr(300)", "error 5"},
        {"Space(-1)", "error 5"},
        {"Len(Space(100000000))", "error 14"},
        {"Partition(23, 20, 98, 5)", "20:24"},
        {"Partition(97, 0, 98, 5)", "95:98"},
        {"Partition(-3, 0, 100, 5)", "   : -1"},
        {"Partition(200, 0, 100, 5)", "101:   "},
        {"Partition(1, 5, 5, 1)", "error 5"},
        {"CStr(True)", "True"},
        {"CStr(#7/1/2007#)", "1/07/2007"},
        {"IsNull(Null)", "-1"},
        {"Format(1234.5, '#,##0.00')", "1,234.50"},
        {"Format(#7/1/2007#, 'yyyy')", "2007"},
        {"Format(Null, '0')", ""},
    });
}

TEST_F(Expressions, DateFunctions) {
    CheckValues({
        {"Year(#7/1/2007#)", "2007"},
        {"Month('1/07/2007')", "7"},
        {"Day(39264)", "1"},
        {"Hour(#7/1/2007 14:05:09#)", "14"},
        {"Minute(#14:05:09#) & Second(#14:05:09#)", "59"},
        {"Weekday(#7/1/2007#)", "1"},
        {"Weekday(#7/1/2007#, 2)", "7"},
        {"DateAdd('m', 1, #1/31/2007#)", "2007-02-28"},
        {"DateAdd('x', 1, #1/31/2007#)", "error 5"},
        {"DateDiff('d', #1/1/2007#, #2/1/2007#)", "31"},
        {"DateDiff('yyyy', #12/31/2006#, #1/1/2007#)", "1"},
        {"DateDiff('ww', #7/1/2007#, #7/2/2007#, 2)", "1"},
        {"DatePart('q', #7/1/2007#)", "3"},
        {"DatePart('ww', #1/1/2010#, 2, 2)", "53"},
        {"DateSerial(2007, 13, 1)", "2008-01-01"},
        {"DateSerial(2007, 3, 0)", "2007-02-28"},
        {"DateValue('1/07/2007 10:30')", "2007-07-01"},
        {"TimeValue('10:30')", "1899-12-30 10:30:00"},
        {"TimeSerial(6, -15, 0)", "1899-12-30 05:45:00"},
        {"MonthName(3) & MonthName(3, True)", "MarchMar"},
        {"WeekdayName(1)", "Sunday"},
        {"IsDate('30/02/2007')", "0"},
        {"CDate('no')", "error 13"},
        {"Year(Null)", "<null>"},
    });
}

TEST_F(Expressions, NamesOfFunctionsAndTheirArguments) {
    CheckValues({
        {"Nz(1, 2)", "error 3085"},
        {"DLookup('a', 'b')", "error 3085"},
        {"Left('abc')", "error 3075"},
        {"Year()", "error 3075"},
        {"Left(*)", "error 3075"},
        {"UCASE(lcase('A'))", "A"},
        {"[no such]", "error 3061"},
        {"no.such", "error 3061"},
    });
}

// What doubles at every step must end in an error before it fills the memory.
TEST_F(Expressions, GrowthHasAnEnd) {
    std::string sql = "SELECT n & 'some text' AS a0";
    for (int i = 1; i < 60; ++i) {
        const std::string before = "a" + std::to_string(i - 1);
        sql += ", " + before + " & " + before + " AS a" + std::to_string(i);
    }
    EXPECT_EQ(database.Query(sql + " FROM t"), "error 3360");
    database.AddQuery("q0", "SELECT id FROM t");
    for (int i = 1; i < 5000; ++i) {
        database.AddQuery("q" + std::to_string(i), "SELECT id FROM q" + std::to_string(i - 1));
    }
    EXPECT_EQ(database.Query("SELECT id FROM q20 WHERE id = 2"), "2");
    EXPECT_EQ(database.Query("SELECT id FROM q4999"), "error 3360");
}

TEST_F(Expressions, LongChainsStayFlat) {
    std::string condition = "id = 0";
    for (int i = 1; i < 400; ++i) {
        condition += " Or id = " + std::to_string(i * 2);
    }
    EXPECT_EQ(database.Query("SELECT id FROM t WHERE " + condition), "2 / 4");
}

} // namespace
} // namespace quillary::database::sqlite
