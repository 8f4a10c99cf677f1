#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <string_view>

namespace quillary::database::sqlite {

// Remembers, roughly, which texts came lately. Most statements have values in their text and come once;
// only what comes again is worth keeping.
class SeenBefore {
public:
    // Whether the text was asked about before. Now and then it says no though it was.
    bool operator()(std::string_view text) {
        const std::size_t hash = std::hash<std::string_view>()(text);
        std::size_t& place = hashes_[hash % hashes_.size()];
        const bool seen = place == hash;
        place = hash;
        return seen;
    }

private:
    std::array<std::size_t, 512> hashes_{};
};

} // namespace quillary::database::sqlite
