#include "config/tokens.h"

#include <gtest/gtest.h>

namespace quillary::config {

TEST(TranslateTokens, PutsTheWordsIn) {
    const std::vector<std::string> words{"Name", "25"};
    const struct {
        const char *text, *result;
    } cases[] = {
        {"", ""},
        {"no token", "no token"},
        {"|0| is too long, please enter less than |1| characters",
         "Name is too long, please enter less than 25 characters"},
        {"|0| and |0|", "Name and Name"},
        {"|0||1|", "Name25"},
        {"a |0 b", "a Name|0 b"},
        {"||", "Name"},
        {"a||b", "aNameb"},
        {"|1x| y", "25 y"}, // leading digits count
        {"|1 words| y", "25 y"},
        {"|0.6|", "25"},   // rounded
        {"|0.5|", "Name"}, // halves to even
        {"|5|", ""},
        {"Tax |5|", "Tax ?"},
        {"Tax |-1| x", "Tax ?"},
        {"Tax |1e300|", "Tax ?"},
        {"Tax |1e999|", "Tax ?"},
        {"\xC3\xA9|0|\xC3\xA9", "\xC3\xA9Name\xC3\xA9"},
        {"end|", "endName|"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(TranslateTokens(c.text, words), c.result) << c.text;
    EXPECT_EQ(TranslateTokens("x|0|", std::vector<std::string>{}), "x?");
}

TEST(TranslateTokens, TakesValues) {
    const std::vector<runtime::Variant> values{runtime::Variant::Null(), {}, 7, "|1|"};
    EXPECT_EQ(TranslateTokens("a|0|b|1|c|2|d|3|", values), "a...bc7d|1|"); // what is put in is not read again
}

} // namespace quillary::config
