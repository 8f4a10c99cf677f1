#include "jet_import/expressions.h"
#include "jet_import/jet_text.h"
#include "jet_import/saved_query.h"

#include "platform/database/jet_sql/parser.h"

#include <gtest/gtest.h>

namespace quillary::jet_import {
namespace {

using database::FieldType;

TEST(OldTexts, DefaultsAndRulesBecomeExpressions) {
    const struct {
        const char* text;
        FieldType type;
        const char* wanted;
    } defaults[] = {
        {"=No", FieldType::Boolean, "No"},      {" 0 ", FieldType::Long, "0"},
        {"\"C\"", FieldType::Text, "\"C\""},    {"O'Brien", FieldType::Text, "'O''Brien'"},
        {"=Date()", FieldType::Date, "Date()"}, {"Now()", FieldType::Text, "Now()"},
        {"GenUniqueID()", FieldType::Long, ""}, {"Null", FieldType::Text, ""},
    };
    for (const auto& each : defaults) {
        EXPECT_EQ(DefaultExpression(each.text, each.type), each.wanted) << each.text;
    }
    const struct {
        const char* rule;
        const char* wanted;
    } rules[] = {
        {">=0", "[A b] >=0"},
        {">0 Or Is Null", "[A b] >0  Or [A b] Is Null"},
        {"Between 1 And 5 Or =9", "[A b] Between 1 And 5  Or [A b] =9"},
        {"Like \"a or b\" And Not \"x\"", "[A b] Like \"a or b\"  And [A b] Not \"x\""},
        {"[Start] < [End] And (1 Or 2)", "[Start] < [End]  And (1 Or 2)"},
    };
    for (const auto& each : rules) {
        EXPECT_EQ(FieldRule(each.rule, "A b"), each.wanted);
    }
}

TEST(OldTexts, CharactersOfBothGenerations) {
    using namespace std::string_view_literals;
    const JetText wide(0);
    EXPECT_EQ(wide.Read("A\0\x01\x01\x3d\xd8\x00\xde"sv), "A\u0101\U0001F600");
    EXPECT_EQ(wide.Read("\x3d\xd8"
                        "A\0\x00\xde"sv),
              "\uFFFDA\uFFFD");
    EXPECT_EQ(wide.Read("\xff\xfe"
                        "M\xe4u\0\x01\x01\0x"sv),
              "M\u00e4u\u0101x");
    EXPECT_EQ(wide.Read("\xff\xfe"sv), "");
    EXPECT_EQ(JetText(1252).Read("M\xe4\x80"), "M\u00e4\u20ac");
    EXPECT_EQ(JetText(936).Read("\xb1\xe0"), "\u7f16");
    EXPECT_EQ(JetText(9).Read("\xe4"), "\u00e4"); // no such code page
}

JetQueryRow Row(int attribute, int flag, std::string expression, std::string name1 = "",
                std::string name2 = "", std::string order = "") {
    return {attribute,        flag, flag != 0, std::move(expression), std::move(name1), std::move(name2),
            std::move(order), 0};
}

TEST(OldTexts, SavedQueriesAreRebuiltFromTheirPieces) {
    JetQueryRow parameter = Row(2, 10, "", "Which mob");
    parameter.extra = 20;
    const struct {
        const char* wanted;
        std::vector<JetQueryRow> rows;
    } queries[] = {
        {"SELECT *\nFROM [Stock Types];", {Row(3, 1, ""), Row(5, 0, "", "Stock Types")}},
        {"PARAMETERS [Which mob] Text(20);\nSELECT DISTINCT TOP 5 PERCENT A AS [No 1], B\nFROM T AS X\nWHERE "
         "A > 1\n"
         "GROUP BY A, B\nHAVING Count(*) > 1\nORDER BY A, B DESC;",
         {Row(3, 2 + 0x10 + 0x20, "", "5"), Row(5, 0, "", "T", "X"), Row(6, 0, "B", "", "", "2"),
          Row(6, 0, "A", "No 1", "", "1"), Row(8, 0, "A > 1"), Row(9, 0, "A", "", "", "1"),
          Row(9, 0, "B", "", "", "2"), Row(10, 0, "Count(*) > 1"), Row(11, 0, "A", "", "", "1"),
          Row(11, 0, "B", "D", "", "2"), parameter}},
        {"SELECT A.x\nFROM (A LEFT JOIN B ON (A.i = B.i) AND (A.j = B.j)) INNER JOIN C ON B.k = C.k, D;",
         {Row(5, 0, "", "A", "", "1"), Row(5, 0, "", "B", "", "2"), Row(5, 0, "", "C", "", "3"),
          Row(5, 0, "", "D", "", "4"), Row(6, 0, "A.x"), Row(7, 2, "A.i = B.i", "A", "B", "1"),
          Row(7, 2, "A.j = B.j", "A", "B", "2"), Row(7, 1, "B.k = C.k", "B", "C", "3")}},
        {"SELECT A\nINTO [New T]\nFROM T;", {Row(1, 2, "", "New T"), Row(5, 0, "", "T"), Row(6, 0, "A")}},
        {"INSERT INTO T (A, [B c])\nSELECT D, E\nFROM S;",
         {Row(1, 3, "", "T"), Row(5, 0, "", "S"), Row(6, 0, "D", "", "A", "1"),
          Row(6, 0, "E", "", "B c", "2")}},
        {"INSERT INTO T (A)\nVALUES (1);", {Row(1, 3, "", "T"), Row(6, 0x8000, "1", "", "A")}},
        {"UPDATE T\nSET T.A = 2\nWHERE B = 1;",
         {Row(1, 4, ""), Row(5, 0, "", "T"), Row(6, 0, "2", "", "T.A"), Row(8, 0, "B = 1")}},
        {"DELETE T.*\nFROM T\nWHERE A = 1;",
         {Row(1, 5, ""), Row(5, 0, "", "T"), Row(6, 0, "T.*"), Row(8, 0, "A = 1")}},
        {"TRANSFORM Sum(N) AS [The Sum]\nSELECT Y\nFROM T\nGROUP BY Y\nPIVOT M;",
         {Row(1, 6, ""), Row(5, 0, "", "T"), Row(6, 0, "Sum(N)", "The Sum"), Row(6, 2, "Y"), Row(6, 1, "M"),
          Row(9, 2, "Y", "", "", "1"), Row(9, 1, "M", "", "", "2")}},
        {"SELECT A FROM T\nUNION SELECT B FROM S\nORDER BY A;",
         {Row(1, 9, ""), Row(3, 2, ""), Row(5, 0, "SELECT B FROM S;\r\n", "", "X7YZ_____2"),
          Row(5, 0, "SELECT A FROM T", "", "X7YZ_____1"), Row(11, 0, "A")}},
        {"SELECT Q.A\nFROM (SELECT A FROM T) AS Q;",
         {Row(5, 0, "SELECT A FROM T;", "", "Q"), Row(6, 0, "Q.A")}},
        {"CREATE TABLE N (A LONG)", {Row(1, 7, "CREATE TABLE N (A LONG)")}},
    };
    for (const auto& each : queries) {
        const std::string sql = SqlOf({"Query", each.rows});
        EXPECT_EQ(sql, each.wanted);
        EXPECT_NO_THROW(database::jet_sql::Parse(sql)) << sql;
    }
    EXPECT_EQ(SqlOf({"Nothing", {}}), "");
}

} // namespace
} // namespace quillary::jet_import
