#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>

class QWidget;

// The Designer files, compiled in.
namespace quillary::qt {

struct Layout {
    const char* name;                     // "farm_page"
    std::span<const char* const> widgets; // the names of all its widgets
    void (*build)(QWidget& parent);       // makes them in the parent
};

// Made by the build from the files that stand beside the pages.
std::span<const Layout> Layouts();

// Adds one that stands in no file (tests). The names and the function must live on.
void AddLayout(const Layout& layout);

// Raises 53 when there is none of this name.
const Layout& FindLayout(std::string_view name);

} // namespace quillary::qt
