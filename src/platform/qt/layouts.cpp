#include "platform/qt/layouts.h"

#include "platform/runtime/run_time_error.h"

#include <vector>

namespace quillary::qt {

namespace {

std::vector<Layout>& Added() {
    static std::vector<Layout> added;
    return added;
}

} // namespace

void AddLayout(const Layout& layout) {
    Added().push_back(layout);
}

const Layout& FindLayout(std::string_view name) {
    for (const std::span<const Layout> layouts : {std::span<const Layout>(Added()), Layouts()})
        for (const Layout& layout : layouts)
            if (name == layout.name)
                return layout;
    throw runtime::RunTimeError(runtime::kErrFileNotFound, "View",
                                "There is no layout '" + std::string(name) + ".ui'");
}

} // namespace quillary::qt
