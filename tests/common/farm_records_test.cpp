#include "common/error_report.h"
#include "common/farm_details.h"
#include "common/tax_records.h"
#include "config/configuration_fixture.h"
#include "config/installation.h"
#include "platform/runtime/conversions.h"

// The farm's row and the tax records on the engine itself.
namespace quillary::common {

namespace {

using runtime::Variant;

class FarmRecordsTest : public test::ConfigurationTest {
protected:
    FarmRecordsTest() {
        auto& services = system::TheServices();
        services.messageBoxes = messages_;
        services.errorReports = reports_;
        config::InstallationOptions options;
        options.layout = config::DocumentsLayout(root_ / "documents");
        options.level = config::InstallationLevel::Empty;
        config::MakeInstallation(options);
        config::gModuleID = config::kFarmEdition;
        db_ = config::DbEngine().OpenDatabase((root_ / "documents") + "/data/Farm32.mdb");
    }
    ~FarmRecordsTest() override {
        db_.reset();
        config::DbEngine().ReleaseIdle();
    }
    void Run(const std::string& statement) { db_->Execute(statement, database::kFailOnError); }
    std::string Field(const std::string& sql) {
        auto rows = db_->OpenRecordset(sql);
        return rows->EOF_() ? "no row" : runtime::TextOf((*rows)[0].Value());
    }

    std::shared_ptr<test::RecordedMessages> messages_ = std::make_shared<test::RecordedMessages>();
    std::shared_ptr<test::RecordedReports> reports_ = std::make_shared<test::RecordedReports>();
    std::shared_ptr<database::Database> db_;
};

TEST_F(FarmRecordsTest, YearsFallBackFromStoredDateToSeasonToToday) {
    const struct {
        const char* today;
        const char* financialYear; // as a date literal, or Null
        const char* season;
        const char* budgetYear;
        const char* expectedFinancial;
        const char* expectedBudget;
    } cases[] = {
        {"2012-03-10", "#4/1/2009#", "107", "#8/3/2010#", "1/04/2009", "3/08/2010"},
        {"2012-03-10", "Null", "107", "Null", "1/07/2007", "1/07/2007"},
        {"2012-03-10", "Null", "Null", "#12/31/1994#", "1/07/2011", "1/07/1995"},
        {"2012-07-01", "Null", "Null", "#1/1/1995#", "1/07/2012", "1/01/1995"},
        {"2012-07-01", "#10/15/2009#", "0", "Null", "15/10/2009", "1/10/1995"},
    };
    for (const auto& c : cases) {
        system::TheServices().clock = std::make_shared<test::FixedClock>(*runtime::ParseIso(c.today));
        Run("DELETE FROM [Farm Details]");
        Run(std::string(
                "INSERT INTO [Farm Details] ([Financial Year], [Current Season], [Budget Year]) VALUES (") +
            c.financialYear + ", " + c.season + ", " + c.budgetYear + ")");
        EXPECT_EQ(GetFinancialYear(*db_), c.expectedFinancial) << c.today;
        EXPECT_EQ(GetBudgetYear(*db_), c.expectedBudget) << c.today;
    }
}

TEST_F(FarmRecordsTest, TaxStartIsWrittenBackWhereItWasNeverSet) {
    Run("INSERT INTO [Farm Details] ([GST Start Date], [Current Season], [Financial Year]) "
        "VALUES (#1/1/1990#, 108, #4/1/2008#)");
    Run("INSERT INTO [Map Layers] (Season, [Use]) VALUES ('105', 'C')");
    EXPECT_EQ(runtime::CStr(GetGSTStartDate(*db_)), "1/04/2005");
    EXPECT_EQ(Field("SELECT [GST Start Date] FROM [Farm Details]"), "1/04/2005");
    // A season before 1995 counts as 1995; a stored date from then on is kept.
    Run("UPDATE [Map Layers] SET Season = '80'");
    EXPECT_EQ(GetMapFirstSeason(*db_), 1995);
    EXPECT_EQ(runtime::CStr(GetGSTStartDate(*db_)), "1/04/2005");
}

TEST_F(FarmRecordsTest, NameAreaAndUnitsGoByEditionAndRow) {
    EXPECT_EQ(GetFarmName(*db_), ""); // no row
    EXPECT_EQ(GetSeasonYear(*db_), 0);
    EXPECT_EQ(GetCurrentSeason(*db_), 95);
    Run("INSERT INTO [Farm Details] ([Effective Area], [Diary Units]) VALUES (12.5, 'm')");
    EXPECT_EQ(GetFarmName(*db_), "Your Farm Name");
    EXPECT_EQ(GetEffectiveArea(*db_), 12); // halves to even
    EXPECT_FALSE(IsMetric(*db_));
    config::gModuleID = config::kClubEdition;
    EXPECT_EQ(GetFarmName(*db_), "Your Club Name");
    EXPECT_EQ(GetEffectiveArea(*db_), 0);
    Run("UPDATE [Farm Details] SET [Diary Units] = 'M', [Farm Name] = 'Hill', [Current Season] = 0");
    EXPECT_TRUE(IsMetric(*db_));
    EXPECT_EQ(GetFarmName(*db_), "Hill");
    EXPECT_EQ(GetSeasonYear(*db_), 1900);
    EXPECT_EQ(GetCurrentSeason(*db_), 95);
}

TEST_F(FarmRecordsTest, TheFirstEntityTakesTheFarmsFields) {
    UpdatePartnerField("O'Brien's", "PartnerName"); // the empty table gets its default entity
    Run("INSERT INTO Partners (PartnerName) VALUES ('Second')");
    UpdatePartnerField("12-345", "PartnerGSTNum");
    UpdatePartnerField(Variant::Null(), "PartnerName");
    EXPECT_EQ(Field("SELECT PartnerName & '|' & PartnerGSTNum & '|' & PartnerDefault FROM Partners"),
              "O`Brien`s|12-345|-1");
    EXPECT_TRUE(reports_->reports.empty());
    UpdatePartnerField(std::string(31, 'x'), "PartnerName");
    ASSERT_EQ(reports_->reports.size(), 1U);
    EXPECT_EQ(reports_->reports[0].routine, "UpdatePartnerTable");
    EXPECT_EQ(reports_->reports[0].number, 3163);
    EXPECT_EQ(Field("SELECT PartnerName FROM Partners"), "O`Brien`s");
}

TEST_F(FarmRecordsTest, PayeInfoIsMadeOnceAndStoresFourKindsAlone) {
    EXPECT_EQ(runtime::CLng(payeinfo(*db_, "PayeFreq", 3)), 3);
    savepayeinfo(*db_, "PAYEFreq", "2");
    savepayeinfo(*db_, "PayeStart", runtime::MakeDate(2008, 4, 1));
    savepayeinfo(*db_, "PayeNonCash", true);
    EXPECT_EQ(Field("SELECT Count(*) FROM PayeInfo"), "1");
    EXPECT_EQ(runtime::CLng(payeinfo(*db_, "payefreq", 3)), 2);
    EXPECT_EQ(runtime::CStr(payeinfo(*db_, "PayeStart", "")), "1/04/2008");
    EXPECT_EQ(runtime::CStr(payeinfo(*db_, "WageAccount", 401001)), "401001"); // Null: the default
    Run("ALTER TABLE PayeInfo ADD COLUMN Rate SINGLE");
    savepayeinfo(*db_, "Rate", 1.5);
    EXPECT_EQ(Field("SELECT Rate FROM PayeInfo"), "");
    EXPECT_TRUE(messages_->shown.empty());

    EXPECT_EQ(runtime::CStr(payeinfo(*db_, "Nothing", "default")), "default");
    savepayeinfo(*db_, "PayeFreq", "monthly");
    ASSERT_EQ(messages_->shown.size(), 2U);
    EXPECT_NE(messages_->shown[0].prompt.find("(3265) was generated in commoncode.payeinfo"),
              std::string::npos);
    EXPECT_EQ(messages_->shown[0].subHeading, "Error 3265 Nothing");
    EXPECT_EQ(messages_->shown[0].caption, "Quillary Error");
    EXPECT_NE(messages_->shown[1].prompt.find("(13) was generated in commoncode.savepayeinfo"),
              std::string::npos);
    EXPECT_EQ(runtime::CLng(payeinfo(*db_, "PayeFreq", 3)), 2);
}

TEST_F(FarmRecordsTest, WhatARoutineRaisesIsReportedUnderItsName) {
    EXPECT_FALSE(Trap(
        "frm_setup.x_Click", [] { throw runtime::RunTimeError(6); }, "SETUP.FRM"));
    EXPECT_FALSE(Trap("other", [] { throw std::bad_alloc(); }));
    ASSERT_EQ(reports_->reports.size(), 2U);
    EXPECT_EQ(reports_->reports[0].number, 6);
    EXPECT_EQ(reports_->reports[0].where, "SETUP.FRM frm_setup.x_Click");
    EXPECT_EQ(reports_->reports[1].number, 7);
}

} // namespace

} // namespace quillary::common
