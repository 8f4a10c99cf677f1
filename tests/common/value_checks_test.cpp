#include "common/value_checks.h"

#include "common/version_info.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/fake_services.h"
#include "platform/system/temporary_folder.h"

#include <gtest/gtest.h>

namespace quillary::common {

using runtime::Currency;
using runtime::Variant;

class ValueChecks : public testing::Test {
protected:
    ValueChecks() {
        runtime::SetLocale("en_NZ");
        auto folders = std::make_shared<test::FakeFolders>();
        folders->documents = folders->config = root_.Path();
        root_.Write("Quillary/Common/Quillary.ini", "[START]\nFirm=A & B\n");
        system::SetServices({.messageBoxes = messages_,
                             .errorReports = reports_,
                             .folders = folders,
                             .keyboard = keys_,
                             .fileVersions = versions_});
    }
    ~ValueChecks() override { system::SetServices({}); }

    test::TemporaryFolder root_;
    std::shared_ptr<test::RecordedMessages> messages_ = std::make_shared<test::RecordedMessages>();
    std::shared_ptr<test::RecordedReports> reports_ = std::make_shared<test::RecordedReports>();
    std::shared_ptr<test::RecordedKeys> keys_ = std::make_shared<test::RecordedKeys>();
    std::shared_ptr<test::FixedVersions> versions_ = std::make_shared<test::FixedVersions>();
};

TEST_F(ValueChecks, ConvertOnlyWhatIsANumber) {
    const Variant none = std::int16_t{0};
    const struct {
        Variant value;
        const char* kind;
        Variant result;
        std::size_t reports;
    } cases[] = {
        {"", "cdbl", none, 0},
        {"abc", "ccur", none, 0},
        {Variant::Null(), "csng", none, 0},
        {Variant(), "cdbl", none, 0},
        {"12.345", "CCur", Currency{123400}, 0},
        {"12.5", "cSng", 12.5F, 0},
        {"1,234.5", "cdbl", 1234.5, 0},
        {"2.5", "clng", std::int32_t{2}, 0},
        {"3.5", "", std::int32_t{4}, 0},
        {"99999999999", "long", none, 1},
        {"1e300", "csng", none, 1},
        {"1e300", "ccur", none, 1},
        {"1e308", "ccur", none, 1},
    };
    for (const auto& c : cases) {
        reports_->reports.clear();
        EXPECT_EQ(GetVal(c.value, c.kind), c.result) << runtime::TextOf(c.value) << " " << c.kind;
        ASSERT_EQ(reports_->reports.size(), c.reports) << runtime::TextOf(c.value) << " " << c.kind;
        if (c.reports > 0) {
            EXPECT_EQ(reports_->reports[0].routine, "GetVal");
            EXPECT_EQ(reports_->reports[0].number, runtime::kErrOverflow);
        }
    }
}

TEST_F(ValueChecks, RoundMoneyHalvesToEven) {
    const struct {
        Variant value;
        std::int64_t scaled;
    } cases[] = {
        {"12.345", 123400},
        {"12.355", 123600},
        {"-12.345", -123400},
        {"-12.355", -123600},
        {" 0.575 ", 5800},
        {"0.565", 5600},
        {"1.005", 10000},
        {"1.015", 10200},
        {"12.34501", 123500},
        {"0", 0},
        {7, 70000},
        {Currency{123450}, 123400},
        {2.675, 26800},
        {"-0.004", 0},
        {"1000000.005", 10000000000},
    };
    for (const auto& c : cases)
        EXPECT_EQ(RoundCurrency(c.value).scaled, c.scaled) << runtime::TextOf(c.value);
    for (const Variant& bad : {Variant("x"), Variant(""), Variant("1e300")})
        EXPECT_THROW(RoundCurrency(bad), runtime::RunTimeError);
}

TEST_F(ValueChecks, KnowTheRangeOfEachKind) {
    const struct {
        Variant value;
        int kind;
        bool allowNegative, out;
    } cases[] = {
        {"-1", 4, false, true},
        {"-1", 4, true, false},
        {"0", 4, false, false},
        {"2147483647", 4, false, false},
        {"2147483648", 4, false, true},
        {"-2147483647", 4, true, false},
        {"-2147483648", 4, true, true},
        {"32767", 3, false, false},
        {"32768", 3, false, true},
        {"922337203685471", 5, false, false},
        {"922337203685472", 5, false, true},
        {"3.4E+38", 6, false, false},
        {"3.5E+38", 6, false, true},
        {"1.7E+308", 7, false, false},
        {"1.75E+308", 7, false, true},
        {"1E+400", 7, false, true},
        {"abc", 6, true, true},
        {"", 6, true, true},
        {Variant::Null(), 6, true, true},
        {12.5F, 6, false, false},
    };
    for (const auto& c : cases)
        EXPECT_EQ(OutOfRange(c.value, c.kind, c.allowNegative), c.out)
            << runtime::TextOf(c.value) << " " << c.kind;
}

TEST_F(ValueChecks, RefuseWhatIsTooLong) {
    const struct {
        Variant value;
        int limit;
        bool required, refused, message;
        Variant after;
    } cases[] = {
        {"", 5, false, false, false, ""},
        {Variant::Null(), 5, false, false, false, ""},
        {"", 5, true, true, false, ""},
        {Variant::Null(), 5, true, true, false, Variant::Null()},
        {"12345", 5, true, false, false, "12345"},
        {"\xC3\xA9\xC3\xA9\xC3\xA9", 3, true, false, false,
         "\xC3\xA9\xC3\xA9\xC3\xA9"}, // characters, not bytes
        {"a|0|cdef", 5, false, true, true, "a|0|cdef"},
    };
    for (const auto& c : cases) {
        messages_->shown.clear();
        Variant value = c.value;
        EXPECT_EQ(TooLong(value, c.limit, c.required), c.refused);
        EXPECT_EQ(value, c.after);
        ASSERT_EQ(messages_->shown.size(), c.message ? 1U : 0U);
    }
    EXPECT_EQ(messages_->shown[0].prompt, "a|0|cdef is too long, please enter less than 5 characters");
    EXPECT_EQ(messages_->shown[0].heading, "Entry Too Long");
    EXPECT_EQ(messages_->shown[0].caption, "A & B");
    EXPECT_EQ(messages_->shown[0].subHeading, "A && B");
    EXPECT_EQ(messages_->shown[0].icon, 6);
}

TEST_F(ValueChecks, DoTheSmallThings) {
    EXPECT_EQ(ReplaceApostrophes("O'Brien's"), "O`Brien`s");
    EXPECT_EQ(NullToZero(Variant::Null()), Variant(std::int16_t{0}));
    EXPECT_EQ(NullToZero(""), Variant(""));
    PressKey(9, true);
    PressKey(9, false);
    EXPECT_EQ(keys_->sent, (std::vector<std::pair<int, bool>>{{9, true}, {9, false}}));
}

TEST_F(ValueChecks, PutVersionDataIntoWords) {
    const auto texts = [] {
        return gFileVersionShort + "/" + gFileVersion + "/" + gProductVersion + "/" + gFileFlags + "/" +
               gFileOS + "/" + gFileType;
    };
    versions_->version = system::FileVersion{{5, 0, 0, 80}, {5, 1, 2, 3}, 0, 0x40004, 1, 0};
    EXPECT_EQ(GetFileVersionInfo("x"), "5.0.0.80");
    EXPECT_EQ(texts(), "5.0/5.0.0.80/5.1.2.3//NT-Win32/App");
    versions_->version = system::FileVersion{{1, 2, 3, 4}, {}, 63, 0x10001, 3, 10};
    GetFileVersionInfo("x");
    EXPECT_EQ(texts(),
              "1.2/1.2.3.4/0.0.0.0/Debug PreRel Patched Private Info Special /DOS-Win16/Driver Comm drv");
    versions_->version = system::FileVersion{{}, {}, 64 + 2, 7, 6, 1};
    GetFileVersionInfo("x");
    EXPECT_EQ(texts(), "0.0/0.0.0.0/0.0.0.0/PreRel /Unknown/Unknown");
    EXPECT_TRUE(messages_->shown.empty());
    versions_->version.reset();
    EXPECT_EQ(GetFileVersionInfo("x"), "");
    EXPECT_EQ(texts(), "/////");
    ASSERT_EQ(messages_->shown.size(), 1U);
    EXPECT_EQ(messages_->shown[0].prompt, "No Version Info available!");
    EXPECT_EQ(messages_->shown[0].heading, "Information");
    EXPECT_EQ(messages_->shown[0].icon, 6);
}

} // namespace quillary::common
