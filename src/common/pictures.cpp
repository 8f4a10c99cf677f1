#include "common/pictures.h"

#include "platform/system/paths.h"

#include <array>
#include <fstream>

namespace quillary::common {

bool IsPicture(std::string_view path) {
    using namespace std::string_view_literals;
    if (!system::FileExists(path))
        return false;
    std::ifstream file(system::ToNative(path), std::ios::binary);
    std::array<char, 4> head{};
    file.read(head.data(), head.size());
    const std::string_view start(head.data(), static_cast<std::size_t>(file.gcount()));
    return start.starts_with("BM") || start.starts_with("\x89PNG") || start.starts_with("\xFF\xD8\xFF") ||
           start.starts_with("GIF8") || start == "\0\0\1\0"sv;
}

} // namespace quillary::common
