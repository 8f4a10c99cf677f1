#include "platform/database/jet_sql/corpus.h"
#include "platform/database/jet_sql/parser.h"
#include "platform/database/jet_sql/printer.h"

#include <gtest/gtest.h>

#include <iterator>
#include <random>

namespace quillary::database::jet_sql {
namespace {

TEST(Corpus, EveryStatementParsesAndPrintsToTheSameTree) {
    const std::vector<CorpusStatement> corpus = ReadCorpus();
    ASSERT_EQ(corpus.size(), 97U);
    for (const CorpusStatement& c : corpus) {
        SCOPED_TRACE(c.id);
        std::string text;
        ASSERT_EQ(ErrorOf([&] { Parse(c.sql); }, &text), 0) << text << '\n' << c.sql;
        const Statement statement = Parse(c.sql);
        const std::string printed = Print(statement);
        EXPECT_TRUE(Parse(printed) == statement) << printed;
        EXPECT_EQ(Print(Parse(printed)), printed);
        const Query* query = statement.As<Query>();
        EXPECT_EQ(statement.As<Update>() != nullptr, c.kind == "update");
        EXPECT_EQ(statement.As<Delete>() != nullptr, c.kind == "delete");
        EXPECT_EQ(query && query->As<Crosstab>(), c.kind == "crosstab");
        EXPECT_EQ(query && query->As<Select>(), c.kind == "select");
    }
}

// Damaged statements: each ends in a tree, which prints to itself again, or in a run-time error.
TEST(Corpus, DamagedStatementsEndInATreeOrAnError) {
    std::vector<std::string> seeds;
    for (CorpusStatement& c : ReadCorpus())
        seeds.push_back(std::move(c.sql));
    ASSERT_FALSE(seeds.empty());
    for (const char* more :
         {"SELECT a FROM (SELECT b FROM t) AS x UNION ALL (SELECT TOP 5 PERCENT c FROM u ORDER BY c) ORDER "
          "BY 1",
          "INSERT INTO t (a, b) IN 'f' VALUES (-1.5e3, Left$(\"x\", 2) Not Like '*' Or &HFF = ALL (SELECT "
          "1))",
          "CREATE TABLE t (a COUNTER(1,2) PRIMARY KEY, b TEXT(5) DEFAULT 'x' REFERENCES u (c) ON DELETE SET "
          "NULL)",
          "PARAMETERS [p q] Text(5); SELECT a INTO b FROM t WHERE c Between #1/2/2007 10:00# And p!q!r",
          "CREATE PROCEDURE p (n LONG) AS DELETE FROM t WHERE NOT EXISTS (SELECT * FROM [SELECT a FROM b]. "
          "AS c)"})
        seeds.emplace_back(more);
    const char* const pieces[] = {"(",        ")",      "'",       "\"",   "[", "]",    "#",     ".",
                                  ",",        ";",      "*",       "-",    "!", "`",    " ",     " AS ",
                                  " IN ",     " NOT ",  "\xFF",    "\xC3", "é", "&H",   "1e9",   "\n--",
                                  " SELECT ", " FROM ", " ON ",    " BY ", "@", " OR ", " NULL", "TOP ",
                                  "=",        " JOIN ", " UNION ", "0"};
    std::mt19937 random(20070815);
    const auto below = [&](std::size_t bound) { return bound == 0 ? 0 : random() % bound; };
    int trees = 0;
    constexpr int kRounds = 20'000;
    for (int round = 0; round < kRounds; ++round) {
        std::string text = seeds[below(seeds.size())];
        for (std::size_t change = 1 + below(3); change > 0; --change) {
            const std::size_t at = below(text.size() + 1);
            switch (below(6)) {
            case 0:
                text.erase(at, 1 + below(8));
                break;
            case 1:
                text.insert(at, pieces[below(std::size(pieces))]);
                break;
            case 2:
                text.resize(at);
                break;
            case 3: {
                const std::string& other = seeds[below(seeds.size())];
                text.insert(at, other, below(other.size()), below(40));
                break;
            }
            case 4:
                text.insert(at, 1, static_cast<char>(below(256)));
                break;
            default:
                text.insert(at, text, below(text.size()), below(30));
            }
        }
        SCOPED_TRACE(text);
        Statement statement;
        std::string description;
        const int error = ErrorOf([&] { statement = Parse(text); }, &description);
        EXPECT_EQ(error == 0, description.empty());
        if (error != 0)
            continue;
        ++trees;
        EXPECT_EQ(ErrorOf([&] { EXPECT_TRUE(Parse(Print(statement)) == statement) << Print(statement); }), 0)
            << Print(statement);
    }
    // Both ends are reached often enough for the run to mean something.
    EXPECT_GT(trees, kRounds / 20);
    EXPECT_LT(trees, kRounds * 19 / 20);
}

} // namespace
} // namespace quillary::database::jet_sql
