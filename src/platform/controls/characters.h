#pragma once

#include <string>
#include <string_view>

namespace quillary::controls {

// The characters of a UTF-8 text one by one, and back.
std::u32string Characters(std::string_view text);
std::string Utf8(char32_t character);

} // namespace quillary::controls
