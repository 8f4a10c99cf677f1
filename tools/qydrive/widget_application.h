#pragma once

#include <memory>

namespace quillary::tools {

// The toolkit's application object while the widgets play; without them there is none. Shows on the
// platform "offscreen" unless the environment tells another.
class WidgetApplication {
public:
    WidgetApplication(bool wanted, int& argc, char** argv);
    ~WidgetApplication();

private:
    struct Holder;
    std::unique_ptr<Holder> holder_;
};

} // namespace quillary::tools
