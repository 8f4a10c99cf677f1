#include "config/profile_store.h"

#include "config/configuration_fixture.h"
#include "platform/runtime/conversions.h"

#include <sys/stat.h>

namespace quillary::config {

using ProfileStore = test::ConfigurationTest;

// What is read, and the line that it leaves in the log of a fresh process ("" for none).
TEST_F(ProfileStore, ReadsAndNotesWhatIsMissing) {
    const std::string path = WriteIni("[TAX]\r\n"
                                      "TaxNumberName=IRD\r\n"
                                      "GSTRateOld=1\r\n"
                                      "  Blanks=2\r\n"
                                      "Empty=\r\n"
                                      "[Options]\r\n"
                                      "HideLocked=N\r\n"
                                      "[SORT]\r\n"
                                      "UnsortedStock=Y");
    const struct {
        const char *section, *key, *value, *log;
    } cases[] = {
        {"TAX", "TaxNumberName", "IRD", ""},
        {"tax", "TaxNumberName", "IRD", ""}, // the section's name is put in upper case
        {"TAX", "Empty", "", ""},
        {"TAX", "GSTRate", "", ""}, // GSTRateOld stands for it
        {"TAX", "taxnumbername", "IRD", "A key from FILE is missing.Section=TAX, Key=taxnumbername"},
        {"tax", "Blanks", "2", "A key from FILE is missing.Section=tax, Key=Blanks"},
        {"TAX", "HideLocked", "", "A key from FILE is missing.Section=TAX, Key=HideLocked"},
        {"SORT", "Missing", "", "A key from FILE is missing.Section=SORT, Key=Missing"},
        {"TAX", "Invalid Index", "", ""}, // a probe
        {"OPTIONS", "HideLocked", "N", "A section from FILE is missing.Section=OPTIONS, Key=HideLocked"},
        {"Map", "Invalid Index", "", "A section from FILE is missing.Section=Map, Key=Invalid Index"},
    };
    for (const auto& c : cases) {
        ResetGlobals();
        std::filesystem::remove(root_ / "documents/Quillary/Common/QYErrors.log");
        EXPECT_EQ(GetProfileValue(c.section, c.key, path), c.value) << c.section << " " << c.key;
        std::string log = c.log;
        if (!log.empty())
            log = runtime::CStr(kMoment) + "\t" + log.replace(log.find("FILE"), 4, path) + "\r\n";
        EXPECT_EQ(Log(), log) << c.section << " " << c.key;
    }
}

TEST_F(ProfileStore, NotesNothingOfTheSystemsOwnSettings) {
    EXPECT_EQ(GetProfileValue("INTL", "iCountry", "WIN.INI"), "64");
    EXPECT_EQ(GetProfileValue("FONTS", "None", "WIN.INI"), "");
    EXPECT_EQ(Log(), "");
    EXPECT_EQ(GetProfileValue("INTL", "iCountry", "win.ini"), "64"); // the exception goes by case
    EXPECT_NE(Log().find("A section from win.ini is missing.Section=INTL, Key=iCountry"), std::string::npos);
}

TEST_F(ProfileStore, LogsOneLineAProcess) {
    AppendErrorLog("first");
    AppendErrorLog("second");
    const std::string first = runtime::CStr(kMoment) + "\tfirst\r\n";
    EXPECT_EQ(Log(), first);
    ResetGlobals(); // the next process
    AppendErrorLog("third");
    EXPECT_EQ(Log(), first + runtime::CStr(kMoment) + "\tthird\r\n");
}

TEST_F(ProfileStore, GoesOnWithoutALog) {
    std::filesystem::remove_all(root_ / "documents");
    EXPECT_NO_THROW(AppendErrorLog("lost"));
    root_.Write("documents/Quillary/Common/x", "");
    AppendErrorLog("still lost"); // meant: the process has had its line
    EXPECT_EQ(Log(), "");
    ResetGlobals();
    ASSERT_EQ(::mkfifo((root_ / "documents/Quillary/Common/QYErrors.log").c_str(), 0600), 0);
    EXPECT_NO_THROW(AppendErrorLog("nobody reads"));
}

TEST_F(ProfileStore, ScansLinesExactly) {
    const std::string path = WriteIni("[A]\n[B=C]\nnot a key\nKey=1\n[]\nOther=2\n[A]\nLate=3");
    const struct {
        const char *section, *key;
        bool sectionThere, keyThere;
    } cases[] = {
        {"A", "Key", true, true},    {"A", "K", true, true},      {"A", "Key=1", true, true},
        {"A", "key", true, false},   {"A", "Other", true, false}, {"A", "Late", true, false},
        {"", "Other", true, true},   {"a", "Key", false, false},  {"B=C", "Key", true, true},
        {"A]", "Key", false, false},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(SectionExists(path, c.section), c.sectionThere) << c.section;
        EXPECT_EQ(KeyExists(path, c.section, c.key), c.keyThere) << c.section << " " << c.key;
    }
    EXPECT_FALSE(SectionExists(root_ / "none", "A"));
    EXPECT_FALSE(KeyExists(root_ / "none", "A", "Key"));
    EXPECT_FALSE(SectionExists(root_.Path(), "A"));
    EXPECT_TRUE(LineHasEquals("=") && LineHasEquals("[a=b]") && !LineHasEquals("ab"));
    EXPECT_TRUE(IsSectionLine("[]") && !IsSectionLine("[a] ") && !IsSectionLine("") &&
                !IsSectionLine(" [a]"));
}

TEST_F(ProfileStore, FindsTheSuitesFileAnewAtEachCall) {
    EXPECT_EQ(GetSuiteIniPath(), "Quillary.ini");
    WriteSuiteValue("START", "Firm", "Bare & Co"); // to the configuration folder
    EXPECT_EQ(root_.Read("config/Quillary.ini"), "[START]\r\nFirm=Bare & Co\r\n");
    EXPECT_EQ(GetFirm(), "Bare & Co");
    WriteIni("[OPTIONS]\nHideLocked=Y\n");
    EXPECT_EQ(GetSuiteIniPath(), folders_->documents + "\\Quillary\\Common\\Quillary.ini");
    EXPECT_EQ(GetFirm(), "Quillary");
    WriteSuiteValue("Options", "HideLocked", "N");
    WriteSuiteValue("Sort", "UnsortedStock", "Y");
    EXPECT_EQ(Ini(), "[OPTIONS]\nHideLocked=N\n[Sort]\nUnsortedStock=Y\n");
}

TEST_F(ProfileStore, TellsTheFoldersOfTheSuite) {
    const std::string documents = folders_->documents;
    const auto all = [] {
        return std::vector{GetProgramDirectory(), GetCommonDocuments(), GetCommonDirectory(),
                           GetDataRoot(),         GetDataFileName(),    GetFirm()};
    };
    WriteIni("[QUILLARY]\nProgramDirectory=\nDataRoot=\n[START]\nFirm=\n");
    EXPECT_EQ(all(),
              (std::vector<std::string>{folders_->program, documents, documents + "\\Quillary\\Common",
                                        documents + "\\data", documents + "\\data\\Farm32.mdb", "Quillary"}));
    WriteIni("[QUILLARY]\nProgramDirectory=P:\\x\\\nDataRoot=D:\\y\n[START]\nFirm=A & B\n");
    EXPECT_EQ(all(), (std::vector<std::string>{"P:\\x\\", documents, documents + "\\Quillary\\Common",
                                               "D:\\y", "D:\\y\\Farm32.mdb", "A & B"}));
    WriteIni("[QUILLARY]\nDataFileName=Z:\\none.mdb\n");
    EXPECT_EQ(GetDataFileName(), "Z:\\none.mdb");
}

} // namespace quillary::config
