#pragma once

#include <array>
#include <string_view>

namespace quillary::system {

inline constexpr std::array<int, 4> kProgramVersion{5, 0, 0, 80};
// As the About page shows it.
inline constexpr std::string_view kProgramVersionText = "5.00.0080";

} // namespace quillary::system
