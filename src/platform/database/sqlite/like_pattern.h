#pragma once

#include <cstdint>
#include <string_view>
#include <utility>
#include <vector>

// Patterns of Like: * any characters, ? one, # a digit, [a-c] one of a list, [!a-c] one that is not. Case
// does not count; accents and blanks at the end do; % and _ are plain characters.
namespace quillary::database::sqlite {

bool HasWildcards(std::string_view pattern);

class LikePattern {
public:
    explicit LikePattern(std::string_view pattern); // 93 for a list without its end or a range backwards
    bool Matches(std::string_view text) const;

private:
    enum class Kind : std::uint8_t { Character, Any, One, Digit, List, ListNot };
    struct Element {
        Kind kind;
        char32_t character = 0;
        std::vector<std::pair<char32_t, char32_t>> ranges;
    };

    void ReadList(const std::vector<char32_t>& pattern, std::size_t& at);
    static bool MatchesOne(const Element& element, char32_t character);

    std::vector<Element> elements_;
};

} // namespace quillary::database::sqlite
