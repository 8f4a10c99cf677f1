#include "farm/about_page.h"

#include "farm/page_fixture.h"

#include <chrono>
#include <ctime>
#include <fstream>

namespace quillary::farm {
namespace {

struct FixedMemory : system::MemoryStatus {
    system::MemoryFigures Read() override { return figures; }
    system::MemoryFigures figures;
};

class AboutPageTest : public PageTest {
protected:
    void SetUp() override {
        PageTest::SetUp();
        system::TheServices().memory = memory_;
    }
    std::shared_ptr<FixedMemory> memory_ = std::make_shared<FixedMemory>();
};

// What the machine tells, in the page's words: the second box is the page file, the third the memory in use.
TEST_F(AboutPageTest, ShowsTheMachinesMemory) {
    struct Case {
        system::MemoryFigures figures;
        const char* texts;
    };
    constexpr std::uint64_t kMega = 1 << 20;
    const Case cases[] = {
        {{47, 0, 8000 * kMega, 4000 * kMega, 1000 * kMega, 1000 * kMega, 333 * kMega},
         "8,192,000|25.00%|47.00%|33.30%"},
        {{100, 0, 1535, 3, 0, 200, 200}, "1|0.00%|100.00%|100.00%"},
        {{}, "0|0.00%|0.00%|0.00%"},
    };
    AboutPage page(screen_, screen_.panel);
    for (const Case& c : cases) {
        memory_->figures = c.figures;
        int frame = 7;
        page.SetUp(frame);
        EXPECT_EQ(page.txt_FreeMemory.Text.Get() + "|" + page.txt_FreeGDI.Text.Get() + "|" +
                      page.txt_FreeSystem.Text.Get() + "|" + page.txt_FreeUser.Text.Get(),
                  c.texts);
    }
}

TEST_F(AboutPageTest, ShowsTheDateOfTheSuitesProgram) {
    std::ofstream(folder_ / "quillary.exe").flush();
    std::tm noon{};
    noon.tm_year = 107, noon.tm_mon = 2, noon.tm_mday = 9, noon.tm_hour = 12;
    const auto day =
        std::chrono::file_clock::from_sys(std::chrono::system_clock::from_time_t(std::mktime(&noon)));
    fs::last_write_time(folder_ / "quillary.exe", day);
    AboutPage page(screen_, screen_.panel);
    int frame = 7;
    page.SetUp(frame);
    EXPECT_EQ(page.lbl_EXEdate.Caption.Get(), "9/03/2007");
    EXPECT_EQ(page.lbl_versionnumber.Caption.Get(), "5.00.0080");
}

} // namespace
} // namespace quillary::farm
