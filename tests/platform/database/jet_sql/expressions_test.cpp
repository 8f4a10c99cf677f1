#include "platform/database/jet_sql/corpus.h"
#include "platform/database/jet_sql/parser.h"
#include "platform/database/jet_sql/printer.h"
#include "platform/database/jet_sql/walk.h"
#include "platform/runtime/dates.h"

#include <gtest/gtest.h>

namespace quillary::database::jet_sql {
namespace {

using runtime::Variant;

// Each expression has the shape of its fully bracketed form, and prints without needless brackets.
TEST(Expressions, OperatorsBindByTheirLevel) {
    const struct {
        const char* text;
        const char* bracketed;
        const char* printed;
    } cases[] = {
        {"1+2*3", "1+(2*3)", "1 + 2 * 3"},
        {"(1+2)*3", "(1+2)*3", "(1 + 2) * 3"},
        {"-2^2", "(-2)^2", "-2 ^ 2"},
        {"-(2^2)", "-((2)^(2))", "-(2 ^ 2)"},
        {"2^-2^3", "(2^(-2))^3", "2 ^ -2 ^ 3"},
        {"2^(3^2)", "2^((3^2))", "2 ^ (3 ^ 2)"},
        {"- -a", "-(-a)", "-(-a)"},
        {"+a - +b", "a-b", "a - b"},
        {"a*b\\c Mod d+e&f", "(((a*b)\\c) Mod d + e) & f", "a * b \\ c Mod d + e & f"},
        {"a Mod b\\c*d", "a Mod (b\\(c*d))", "a Mod b \\ c * d"},
        {"a\\b\\c", "(a\\b)\\c", "a \\ b \\ c"},
        {"a-(b-c)-d", "(a-(b-c))-d", "a - (b - c) - d"},
        {"a & b + c & d", "(a & (b + c)) & d", "a & b + c & d"},
        {"a & b = c & d", "(a & b) = (c & d)", "a & b = c & d"},
        {"a=b<c", "(a=b)<c", "a = b < c"},
        {"a=(b<c)", "a=(b<c)", "a = (b < c)"},
        {"Not a=b And c", "(Not (a=b)) And c", "Not a = b And c"},
        {"(Not a)=b", "(Not a)=b", "(Not a) = b"},
        {"a = Not b = c", "a = (Not (b = c))", "a = (Not b = c)"},
        {"Not Not a", "Not (Not a)", "Not Not a"},
        {"a Or b And c", "a Or (b And c)", "a Or b And c"},
        {"(a Or b) And c", "(a Or b) And c", "(a Or b) And c"},
        {"a Or b Xor c Or d", "(a Or b) Xor (c Or d)", "a Or b Xor c Or d"},
        {"a Imp b Eqv c Xor d Or e And Not f", "a Imp (b Eqv (c Xor (d Or (e And (Not f)))))",
         "a Imp b Eqv c Xor d Or e And Not f"},
        {"a Between b And c And d", "(a Between b And c) And d", "a Between b And c And d"},
        {"a Not Between 1+1 And 2&3 Or d", "(a Not Between (1+1) And (2&3)) Or d",
         "a Not Between 1 + 1 And 2 & 3 Or d"},
        {"a Between (b And c) And d", "a Between (b And c) And d", "a Between (b And c) And d"},
        {"a Is Null Or b Is Not Null", "(a Is Null) Or (b Is Not Null)", "a Is Null Or b Is Not Null"},
        {"a + b Is Null = c", "((a+b) Is Null) = c", "a + b Is Null = c"},
        {"a Like 'x' & '*' And b", "(a Like ('x' & '*')) And b", "a Like 'x' & '*' And b"},
        {"Not a Not Like b", "Not (a Not Like b)", "Not a Not Like b"},
        {"a In (1,b+2) And c Not In('x')", "(a In (1,(b+2))) And (c Not In ('x'))",
         "a In (1, b + 2) And c Not In ('x')"},
        {"(((a)=1) AND ((b)=2)) OR ((c)=3)", "((a=1) And (b=2)) Or (c=3)", "a = 1 And b = 2 Or c = 3"},
        {"a<=b=>c><d", "((a<=b)>=c)<>d", "a <= b >= c <> d"},
        {"a>All(Select b From t)And c", "(a > All (Select b From t)) And c",
         "a > All (SELECT b FROM t) And c"},
        {"a=Some(Select b From t)", "a=Any(Select b From t)", "a = Any (SELECT b FROM t)"},
        {"1+(Select Max(b)From t)*2", "1+((Select Max(b) From t)*2)", "1 + (SELECT Max(b) FROM t) * 2"},
        {"Not Exists(Select*From t)Or a", "(Not (Exists (Select * From t))) Or a",
         "Not Exists (SELECT * FROM t) Or a"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const Expr expr = ParseExpression(c.text);
        EXPECT_EQ(expr, ParseExpression(c.bracketed)) << Print(expr);
        EXPECT_EQ(Print(expr), c.printed);
        EXPECT_EQ(ParseExpression(Print(expr)), expr);
    }
    // The comparison itself tells trees apart.
    EXPECT_NE(ParseExpression("a-b-c"), ParseExpression("a-(b-c)"));
    EXPECT_NE(ParseExpression("a"), ParseExpression("[A]"));
    EXPECT_EQ(ParseExpression("a . b"), ParseExpression("[a].[b]"));
}

TEST(Expressions, LiteralsCarryTheirKind) {
    const struct {
        const char* text;
        Variant value;
        const char* printed;
    } cases[] = {
        {"12", 12, "12"},
        {"2147483647", 2147483647, "2147483647"},
        {"2147483648", 2147483648.0, "2147483648.0"},
        {"12.", 12.0, "12.0"},
        {".5", 0.5, "0.5"},
        {"1.50", 1.5, "1.5"},
        {"1e3", 1000.0, "1000.0"},
        {"2.5E-3", 0.0025, "0.0025"},
        {"0.1000000000000000055", 0.1, "0.1"},
        {"&HfF", 255, "255"},
        {"&h7FFFFFFF", 2147483647, "2147483647"},
        {"&O17", 15, "15"},
        {"'O''Brien'", "O'Brien", "'O''Brien'"},
        {"\"O'Brien\"", "O'Brien", "'O''Brien'"},
        {"\"say \"\"x\"\"\"", "say \"x\"", "'say \"x\"'"},
        {"''", "", "''"},
        {"'a]b;c#d--'", "a]b;c#d--", "'a]b;c#d--'"},
        {"'Ma\xC4\x81ra'", "Ma\xC4\x81ra", "'Ma\xC4\x81ra'"},
        {"tRuE", true, "True"},
        {"Yes", true, "True"},
        {"on", true, "True"},
        {"FALSE", false, "False"},
        {"No", false, "False"},
        {"off", false, "False"},
        {"null", Variant::Null(), "Null"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const Expr expr = ParseExpression(c.text);
        ASSERT_NE(expr.As<Literal>(), nullptr);
        EXPECT_EQ(expr.As<Literal>()->value, c.value);
        EXPECT_EQ(Print(expr), c.printed);
        EXPECT_EQ(ParseExpression(Print(expr)), expr);
    }
    EXPECT_EQ(Print(ParseExpression("&HFFFFFFFF")), "-1");
    EXPECT_EQ(Print(ParseExpression("'a'&Head")), "'a' & Head"); // no number behind an operand
    EXPECT_EQ(Print(ParseExpression("a & &HFF")), "a & 255");
}

TEST(Expressions, DatesAreReadMonthFirst) {
    const struct {
        const char* text;
        runtime::Date date;
    } cases[] = {
        {"#8/15/2007#", runtime::MakeDate(2007, 8, 15)},
        {"#02/03/2007#", runtime::MakeDate(2007, 2, 3)},
        {"#13/2/2007#", runtime::MakeDate(2007, 2, 13)}, // 13 can only be the day
        {"# 2-3-07 #", runtime::MakeDate(2007, 2, 3)},
        {"#2/3/30#", runtime::MakeDate(1930, 2, 3)},
        {"#2/3/29#", runtime::MakeDate(2029, 2, 3)},
        {"#2007-02-03#", runtime::MakeDate(2007, 2, 3)},
        {"#2008/2/29 14:05#", runtime::MakeDate(2008, 2, 29, 14, 5)},
        {"#2/3/2007 2:05:09 pm#", runtime::MakeDate(2007, 2, 3, 14, 5, 9)},
        {"#12:00 AM#", runtime::MakeDate(1899, 12, 30)},
        {"#5 PM#", runtime::MakeDate(1899, 12, 30, 17)},
        {"#14:05:09#", runtime::MakeDate(1899, 12, 30, 14, 5, 9)},
        {"#1 Jan 2007#", runtime::MakeDate(2007, 1, 1)},
        {"#Sept 3, 2007#", runtime::MakeDate(2007, 9, 3)},
        {"#3-february-07 10:00#", runtime::MakeDate(2007, 2, 3, 10)},
        {"#3/2007#", runtime::MakeDate(2007, 3, 1)},
        {"#1/2/0100#", runtime::MakeDate(100, 1, 2)},
        {"#12/31/9999 23:59:59#", runtime::MakeDate(9999, 12, 31, 23, 59, 59)},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const Expr expr = ParseExpression(c.text);
        ASSERT_NE(expr.As<Literal>(), nullptr);
        EXPECT_EQ(expr.As<Literal>()->value, Variant(c.date));
        EXPECT_EQ(ParseExpression(Print(expr)), expr) << Print(expr);
    }
    runtime::SetClock([] { return runtime::MakeDate(2009, 6, 1); });
    EXPECT_EQ(ParseExpression("#13/4#"), ParseExpression("#4/13/2009#"));
    EXPECT_EQ(ParseExpression("#13 Apr#"), ParseExpression("#4/13/2009#"));
    runtime::SetClock(nullptr);

    for (const char* bad :
         {"#2/30/2007#", "#13/13/2007#", "#2007-13-01#", "##", "#x#", "#1/2/3/4#", "#25:00#", "#13:00 PM#",
          "#1/2/2007 10#", "#10:60#", "#1/2/#", "#10:#", "#2/29/2007#", "#0/1/2007#", "#1/1/99999#",
          "#Jan Feb 2007#", "#1/1/99 1/1#", "#1/1/2007", "#1/1/2007\n#"}) {
        SCOPED_TRACE(bad);
        std::string text;
        EXPECT_EQ(ErrorOf([&] { ParseExpression(bad); }, &text), 3075);
        EXPECT_NE(text.find("date in query expression '#"), std::string::npos) << text;
    }
}

TEST(Expressions, NamesAreWhateverStandsInBracketsOrBehindADot) {
    const struct {
        const char* text;
        std::vector<std::string> parts;
        const char* printed;
    } cases[] = {
        {"Season", {"Season"}, "Season"},
        {"[Rate %]", {"Rate %"}, "[Rate %]"},
        {"TaxRates.[Rate %]", {"TaxRates", "Rate %"}, "TaxRates.[Rate %]"},
        {"[Setup].[Order]", {"Setup", "Order"}, "Setup.[Order]"},
        {"PaymentTypes.Order", {"PaymentTypes", "Order"}, "PaymentTypes.[Order]"},
        {"t.Select", {"t", "Select"}, "t.[Select]"},
        {"Select.Where", {"Select", "Where"}, "[Select].[Where]"},
        {"t . From", {"t", "From"}, "t.[From]"},
        {"t!f", {"t", "f"}, "t!f"},
        {"[Forms]![Main]![Code]", {"Forms", "Main", "Code"}, "Forms!Main!Code"},
        {"db.[a b].c", {"db", "a b", "c"}, "db.[a b].c"},
        {"Name", {"Name"}, "Name"},
        {"Value", {"Value"}, "Value"},
        {"Date", {"Date"}, "Date"},
        {"Order", {"Order"}, "[Order]"},
        {"Use", {"Use"}, "Use"},
        {"Left", {"Left"}, "[Left]"},
        {"Top", {"Top"}, "[Top]"},
        {"`odd ]name`", {"odd ]name"}, "`odd ]name`"},
        {"[it's `x' (a.b);#]", {"it's `x' (a.b);#"}, "[it's `x' (a.b);#]"},
        {"Gr\xC3\xB6\xC3\x9F"
         "e",
         {"Gr\xC3\xB6\xC3\x9F"
          "e"},
         "[Gr\xC3\xB6\xC3\x9F"
         "e]"},
        {"[Which season?]", {"Which season?"}, "[Which season?]"},
        {"True.No", {"True", "No"}, "[True].[No]"},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(c.text);
        const Expr expr = ParseExpression(c.text);
        ASSERT_NE(expr.As<NameRef>(), nullptr);
        EXPECT_EQ(expr.As<NameRef>()->parts, c.parts);
        EXPECT_EQ(Print(expr), c.printed);
        EXPECT_EQ(ParseExpression(Print(expr)), expr);
    }
    const Expr three = ParseExpression("db.t.f");
    EXPECT_EQ(three.As<NameRef>()->Table(), "t");
    EXPECT_EQ(three.As<NameRef>()->Field(), "f");
    EXPECT_EQ(ParseExpression("f").As<NameRef>()->Table(), "");
}

TEST(Expressions, CallsTakeAnyWordAsTheirName) {
    for (const char* text : {"Now()", "IIf(a > 1, 'x', Null)", "Left$(a, 2)", "Right(a, 1)", "Count(*)",
                             "Sum(a * b) / Count(b)", "Asc(a)", "Replace(Mid(a, 1), 'x', '')", "Date()"})
        EXPECT_EQ(Print(ParseExpression(text)), text);
    EXPECT_TRUE(ParseExpression("count ( * )").As<Call>()->star);
}

// Places are bytes of the text; brackets belong to what they hold.
TEST(Expressions, PlacesPointIntoTheText) {
    const std::string text = "  a + (b * 'x') > Len([c d]) And Exists (SELECT e FROM t)";
    const Expr expr = ParseExpression(text);
    std::vector<std::string> seen;
    ForEachExpr(expr, [&](const Expr& e) {
        seen.push_back(text.substr(e.place.begin, e.place.end - e.place.begin));
        if (const Query* query = QueryOf(e))
            seen.push_back(text.substr(query->place.begin, query->place.end - query->place.begin));
    });
    EXPECT_EQ(seen, (std::vector<std::string>{"a + (b * 'x') > Len([c d]) And Exists (SELECT e FROM t)",
                                              "a + (b * 'x') > Len([c d])", "a + (b * 'x')", "a", "(b * 'x')",
                                              "b", "'x'", "Len([c d])", "[c d]", "Exists (SELECT e FROM t)",
                                              "SELECT e FROM t"}));
}

} // namespace
} // namespace quillary::database::jet_sql
