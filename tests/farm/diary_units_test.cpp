#include "farm/farm_page.h"
#include "farm/page_fixture.h"

namespace quillary::farm {
namespace {

using DiaryUnitsTest = PageTest;

// The routine asks an option pair whose first element is metric. The screen has none, so that a call is
// reported and changes nothing.
TEST_F(DiaryUnitsTest, FollowAnOptionPairOfTheScreen) {
    db_->Execute("INSERT INTO [Farm Details] ([Diary Units]) VALUES ('I')");
    controls::DataControl::SetEngine([]() -> database::Engine& { return config::DbEngine(); });
    FarmPage page(screen_, screen_.panel);
    screen_.farmDetails.DatabaseName = Farm();
    screen_.farmDetails.RecordSource = "SELECT DISTINCTROW [Farm Details].* FROM [Farm Details];";
    screen_.farmDetails.Refresh();
    const auto units = [&] { return db_->OpenRecordset("Farm Details")->operator[]("Diary Units").Value(); };

    page.optDiaryChange();
    EXPECT_EQ(reports_->routines, std::vector<std::string>{"optDiaryChange"});
    EXPECT_EQ(units(), runtime::Variant("I"));

    controls::OptionButtonArray opt_diary(screen_.form, "opt_diary", {0, 1});
    opt_diary(0).Value = true;
    page.optDiaryChange();
    EXPECT_EQ(units(), runtime::Variant("M"));
    opt_diary(1).Value = true;
    page.optDiaryChange();
    EXPECT_EQ(units(), runtime::Variant("I"));
    EXPECT_EQ(reports_->routines.size(), 1u);
}

} // namespace
} // namespace quillary::farm
