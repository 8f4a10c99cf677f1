#include "common/restore_points.h"
#include "config/configuration_fixture.h"
#include "platform/database/engine.h"

// The copies that a cascade leaves behind, in the common folder of an installation.
namespace quillary::common {

namespace {

namespace fs = std::filesystem;

class RestorePointsTest : public test::ConfigurationTest {
protected:
    RestorePointsTest() {
        system::TheServices().errorReports = reports_;
        for (const std::string& path : {farm_, diary_}) {
            config::DbEngine().CreateDatabase(path)->Execute("CREATE TABLE T (a LONG)");
        }
    }
    ~RestorePointsTest() override { config::DbEngine().ReleaseIdle(); }

    std::string Names() const {
        std::string names;
        for (const RestorePoint& point : ListRestorePoints(points_)) {
            names += point.folder.filename().string() + ":";
            for (const fs::path& file : point.files) {
                names += " " + file.filename().string();
            }
            names += "\n";
        }
        return names;
    }

    std::shared_ptr<test::RecordedReports> reports_ = std::make_shared<test::RecordedReports>();
    std::string farm_ = root_ / "documents\\Farm32.mdb", diary_ = root_ / "documents\\Diary.mdb";
    fs::path points_ = fs::path(root_ / "documents") / "Quillary/Common/Backup";
};

TEST_F(RestorePointsTest, AreCalledByTimeAndCauseAndHoldWhatIsThere) {
    MakeRestorePoint("Deleting A/B: \"C|D\"", {farm_, diary_});
    MakeRestorePoint("Deleting " + std::string(300, 'x') + "ū", {farm_, root_ / "gone.mdb"});
    MakeRestorePoint("", {farm_});
    MakeRestorePoint("nothing there", {root_ / "gone.mdb"});
    EXPECT_EQ(Names(), "2008-08-15 14.05.09-03: Farm32.mdb\n"
                       "2008-08-15 14.05.09-02 Deleting " +
                           std::string(91, 'x') +
                           ": Farm32.mdb\n"
                           "2008-08-15 14.05.09 Deleting A_B_ _C_D_: Diary.mdb Farm32.mdb\n");
    EXPECT_TRUE(reports_->reports.empty());
}

TEST_F(RestorePointsTest, TheNewestTwentyAreKeptAndNothingElseIsTouched) {
    for (int day = 1; day <= 25; ++day) {
        system::TheServices().clock = std::make_shared<test::FixedClock>(runtime::MakeDate(2008, 9, day));
        MakeRestorePoint("x", {farm_});
        if (day == 1) {
            for (const char* name : {"letters", "2008-09-02 11.00.00 x.part", "2008-09-20 11.00.00 x.part"}) {
                fs::create_directory(points_ / name);
            }
        }
    }
    const auto points = ListRestorePoints(points_);
    ASSERT_EQ(points.size(), kMostRestorePoints);
    EXPECT_EQ(points.front().folder.filename(), "2008-09-25 00.00.00 x");
    EXPECT_EQ(points.back().folder.filename(), "2008-09-06 00.00.00 x");
    EXPECT_TRUE(fs::exists(points_ / "letters"));
    EXPECT_TRUE(fs::exists(points_ / "2008-09-20 11.00.00 x.part"));
    EXPECT_FALSE(fs::exists(points_ / "2008-09-02 11.00.00 x.part"));

    // A clock that was ahead and has been put right: the point of the moment is not taken for the oldest.
    system::TheServices().clock = std::make_shared<test::FixedClock>(runtime::MakeDate(2008, 8, 31));
    MakeRestorePoint("now", {farm_});
    const auto later = ListRestorePoints(points_);
    ASSERT_EQ(later.size(), kMostRestorePoints);
    EXPECT_EQ(later.back().folder.filename(), "2008-08-31 00.00.00 now");
}

TEST_F(RestorePointsTest, AFailureIsReportedAndLeavesNothingHalfMade) {
    MakeRestorePoint("whole", {farm_});
    root_.Write("documents/Diary.mdb", "no database");
    MakeRestorePoint("half", {farm_, diary_});
    EXPECT_EQ(Names(), "2008-08-15 14.05.09 whole: Farm32.mdb\n");
    EXPECT_EQ(std::distance(fs::directory_iterator(points_), fs::directory_iterator()), 1);

    fs::remove_all(points_);
    root_.Write("documents/Quillary/Common/Backup", "a file is in the way");
    MakeRestorePoint("none", {farm_});
    ASSERT_EQ(reports_->reports.size(), 2U);
    EXPECT_EQ(reports_->reports[0].number, 3343);
    EXPECT_EQ(reports_->reports[1].number, 75);
    EXPECT_EQ(reports_->reports[1].routine, "MakeRestorePoint");
    EXPECT_NE(reports_->reports[1].description.find(points_.string()), std::string::npos);
}

} // namespace

} // namespace quillary::common
