#pragma once

#include <string_view>

namespace quillary::common {

// Whether the file begins as a BMP, PNG, JPEG, GIF or ICO picture does. False for a file that is missing or
// cannot be read.
bool IsPicture(std::string_view path);

} // namespace quillary::common
