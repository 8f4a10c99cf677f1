#include "platform/database/sqlite/like_pattern.h"
#include "platform/runtime/run_time_error.h"

#include <gtest/gtest.h>

namespace quillary::database::sqlite {
namespace {

TEST(LikePattern, Matches) {
    const struct {
        const char* pattern;
        const char* text;
        bool matches;
    } cases[] = {
        {"abc", "ABC", true},
        {"abc", "abc ", false}, // blanks at the end count
        {"", "", true},
        {"", "a", false},
        {"*", "", true},
        {"a*", "A", true},
        {"*b*", "abc", true},
        {"a*c*e", "abcde", true},
        {"a*c*e", "abcdef", false},
        {"*ab", "aab", true},
        {"*a*a*a*a*b", "aaaaaaaaaaaaaaaaaaaaaaaa", false},
        {"a?c", "abc", true},
        {"a?c", "ac", false},
        {"?", "é", true},
        {"##", "42", true},
        {"##", "4x", false},
        {"[a-c]x", "Bx", true},
        {"[a-c]x", "dx", false},
        {"[!a-c]x", "dx", true},
        {"[!a-c]x", "Ax", false},
        {"[A-C]", "b", true},
        {"[abc]", "c", true},
        {"[*]", "*", true},
        {"[*]", "a", false},
        {"a[?]b", "a?b", true},
        {"[[]", "[", true},
        {"[-a]", "-", true},
        {"[a-]", "-", true},
        {"[!]", "!", true},
        {"a[]b", "ab", true},
        {"a]", "A]", true},
        {"100%", "100%", true},
        {"a_c", "abc", false},
        {"%", "anything", false},
        {"CAFÉ*", "café au lait", true},
        {"cafe*", "café", false},
        {"e\u0301", "É", true}, // however the accent was typed
    };
    for (const auto& each : cases) {
        EXPECT_EQ(LikePattern(each.pattern).Matches(each.text), each.matches)
            << each.pattern << " ~ " << each.text;
    }
}

TEST(LikePattern, RefusesBrokenLists) {
    for (const char* pattern : {"[", "a[b", "[c-a]"}) {
        try {
            LikePattern made(pattern);
            ADD_FAILURE() << pattern;
        } catch (const runtime::RunTimeError& error) {
            EXPECT_EQ(error.Number(), 93) << pattern;
        }
    }
}

} // namespace
} // namespace quillary::database::sqlite
