#include "platform/system/ini_file.h"

#include "platform/runtime/locale.h"
#include "platform/system/fake_services.h"
#include "platform/system/temporary_folder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <thread>

namespace quillary::system {

class IniFile : public testing::Test {
protected:
    IniFile() {
        auto folders = std::make_shared<test::FakeFolders>();
        folders->config = folder_ / "config";
        SetServices({.folders = folders});
    }
    ~IniFile() override {
        SetServices({});
        runtime::SetLocale("en_NZ");
    }
    test::TemporaryFolder folder_;
};

TEST_F(IniFile, IsReadWithTheOldHabits) {
    const std::string file = folder_.Write("x.ini", "outside=1\r\n"
                                                    "; [TAX] in a comment\r\n"
                                                    "[TAX]\r\n"
                                                    ";GSTRate=9\r\n"
                                                    "no key line\r\n"
                                                    "  GSTRate \t=  15 \r\n"
                                                    "gstrate=16\r\n"
                                                    "Empty=\r\n"
                                                    "Equals=a=b\r\n"
                                                    "Double=\"  yes \"\r\n"
                                                    "Single='it''s'\r\n"
                                                    "Mixed=\"x'\r\n"
                                                    "Quote=\"\r\n"
                                                    "  [Start] ; behind\r\n"
                                                    "Firm=A & B\n"
                                                    "Two words=caf\xE9\r"
                                                    "[TAX]\r\n"
                                                    "Late=1\r\n"
                                                    "[LAST]\r\n"
                                                    "End=of file");
    const struct {
        const char *section, *key, *value;
    } cases[] = {
        {"TAX", "GSTRate", "15"},
        {"tax", "gstRATE", "15"},
        {"TAX", " GSTRate ", "15"},
        {"TAX", "Empty", ""},
        {"TAX", "Equals", "a=b"},
        {"TAX", "Double", "  yes "},
        {"TAX", "Single", "it''s"},
        {"TAX", "Mixed", "\"x'"},
        {"TAX", "Quote", "\""},
        {"START", "Firm", "A & B"},
        {"START", "Two words", "caf\xC3\xA9"},
        {"TAX", "Late", "-"}, // only the first section of a name counts
        {"TAX", "outside", "-"},
        {"TAX", ";GSTRate", "-"},
        {"TAX", "no key line", "-"},
        {"NONE", "GSTRate", "-"},
        {"LAST", "End", "of file"},
        {"TAX", "Firm", "-"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ReadProfileString(c.section, c.key, "-", file), c.value) << c.section << " " << c.key;
    EXPECT_EQ(ReadProfileString("TAX", "GSTRate", "-", folder_ / "missing.ini"), "-");
    EXPECT_EQ(ReadProfileString("TAX", "GSTRate", "-", folder_.Path()), "-");
    EXPECT_EQ(ReadProfileString("TAX", "GSTRate", "-", ""), "-");
}

TEST_F(IniFile, CutsAValueToItsBufferByCharacters) {
    std::string value;
    for (int i = 0; i < 1100; ++i)
        value += "\xC3\xA9";
    const std::string file = folder_.Write("x.ini", "[A]\nK=" + value + "\n");
    EXPECT_EQ(ReadProfileString("A", "K", "", file), value.substr(0, 2 * kProfileValueSize));
}

TEST_F(IniFile, IsWrittenAndKeepsWhatStandsInIt) {
    const struct {
        const char *before, *section, *key, *value, *after;
    } cases[] = {
        {"", "A", "K", "1", "[A]\r\nK=1\r\n"},
        {"; top\n\n[a]\nX=0\n k = 5 \nY=2\n\n\n[B]\n", "A", "K", "1",
         "; top\n\n[a]\nX=0\n k =1\nY=2\n\n\n[B]\n"},
        {"[A]\nX=0\n; note\n\n[B]\nK=2\n", "A", "K", "1", "[A]\nX=0\n; note\nK=1\n\n[B]\nK=2\n"},
        {"[A]\n\n[B]\nK=2", "A", "K", "1", "[A]\nK=1\n\n[B]\nK=2"},
        {"[A]\r\nX=0", "A", "K", "1", "[A]\r\nX=0\r\nK=1\r\n"},
        {"[A]\nX=0", "Options", "K", "", "[A]\nX=0\n[Options]\nK=\n"},
        {"[A]\rK=0\r", "A", "K", "1", "[A]\rK=1\r"},
        {"[A]\nK=0\n[A]\nK=7\n", "A", "K", "1", "[A]\nK=1\n[A]\nK=7\n"},
        {"\xEF\xBB\xBF[A]\nK=0\n", "A", "K", "\xC3\xA9", "\xEF\xBB\xBF[A]\nK=\xC3\xA9\n"},
        {"[A]\nN=\xE9\n", "A", "K", "\xC3\xA9\xE2\x82\xAC", "[A]\nN=\xE9\nK=\xE9\x80\n"},
        // No place for the character in the old encoding: the file becomes UTF-8.
        {"[A]\nN=\xE9\n", "A", "K", "\xC4\x80", "[A]\nN=\xC3\xA9\nK=\xC4\x80\n"},
    };
    for (const auto& c : cases) {
        const std::string file = folder_.Write("x.ini", c.before);
        EXPECT_TRUE(WriteProfileString(c.section, c.key, c.value, file));
        EXPECT_EQ(folder_.Read("x.ini"), c.after);
        EXPECT_EQ(ReadProfileString(c.section, c.key, "-", file), c.value);
    }
    const auto entries = std::filesystem::directory_iterator(folder_.Path());
    EXPECT_EQ(std::distance(begin(entries), end(entries)), 1) << "a temporary file was left";
}

TEST_F(IniFile, RefusesWithoutAChange) {
    const std::string text = "[A]\nK=0\n";
    const std::string readOnly = folder_.Write("ro.ini", text);
    ::chmod(readOnly.c_str(), 0444);
    const std::string inFolder = folder_.Write("locked/x.ini", text);
    ::chmod((folder_ / "locked").c_str(), 0555);
    EXPECT_FALSE(WriteProfileString("A", "K", "1", readOnly));
    EXPECT_FALSE(WriteProfileString("A", "K", "1", inFolder));
    EXPECT_FALSE(WriteProfileString("A", "K", "1", folder_ / "none/x.ini"));
    EXPECT_FALSE(WriteProfileString("A", "K", "1", folder_.Path()));
    ::chmod((folder_ / "locked").c_str(), 0755);
    EXPECT_EQ(folder_.Read("ro.ini"), text);
    EXPECT_EQ(folder_.Read("locked/x.ini"), text);
    const std::string file = folder_.Write("x.ini", text);
    EXPECT_FALSE(WriteProfileString("A", "K", "1\n[B]", file));
    EXPECT_FALSE(WriteProfileString("A\r", "K", "1", file));
    EXPECT_FALSE(WriteProfileString("A", std::string("K\0", 2), "1", file));
    EXPECT_EQ(folder_.Read("x.ini"), text);
}

TEST_F(IniFile, KeepsModeAndLinks) {
    const std::string target = folder_.Write("real/x.ini", "[A]\n");
    ::chmod(target.c_str(), 0640);
    std::filesystem::create_symlink("real/x.ini", folder_ / "link.ini");
    std::filesystem::create_symlink("real/new.ini", folder_ / "dangling.ini");
    EXPECT_TRUE(WriteProfileString("A", "K", "1", folder_ / "link.ini"));
    EXPECT_TRUE(WriteProfileString("A", "K", "1", folder_ / "dangling.ini"));
    EXPECT_TRUE(std::filesystem::is_symlink(folder_ / "link.ini"));
    EXPECT_EQ(folder_.Read("real/x.ini"), "[A]\nK=1\n");
    EXPECT_EQ(folder_.Read("real/new.ini"), "[A]\r\nK=1\r\n");
    EXPECT_EQ(static_cast<int>(std::filesystem::status(target).permissions()), 0640);
}

TEST_F(IniFile, LosesNoKeyOfAnotherWriter) {
    const std::string file = folder_.Write("x.ini", "[A]\n");
    const auto writer = [&](const std::string& name) {
        for (int i = 0; i < 25; ++i)
            WriteProfileString("A", name + std::to_string(i), "1", file);
    };
    std::thread other(writer, "Other");
    writer("Mine");
    other.join();
    for (int i = 0; i < 25; ++i) {
        EXPECT_EQ(ReadProfileString("A", "Mine" + std::to_string(i), "-", file), "1") << i;
        EXPECT_EQ(ReadProfileString("A", "Other" + std::to_string(i), "-", file), "1") << i;
    }
}

TEST_F(IniFile, WithABareNameLiesInTheConfigurationFolder) {
    EXPECT_EQ(ReadProfileString("A", "K", "-", "Quillary.ini"), "-");
    EXPECT_TRUE(WriteProfileString("A", "K", "1", "Quillary.ini")); // the folder is made
    EXPECT_EQ(folder_.Read("config/Quillary.ini"), "[A]\r\nK=1\r\n");
    EXPECT_EQ(ReadProfileString("A", "K", "-", "QUILLARY.INI"), "1");
}

TEST_F(IniFile, OfTheSystemComesFromTheLocaleWhereThereIsNone) {
    const struct {
        const char *locale, *country, *language;
    } cases[] = {
        {"en_NZ", "64", "ENZ"},  {"en_AU.UTF-8", "61", "ENA"}, {"pt_BR", "55", "PTB"},
        {"es_UY", "598", "ESY"}, {"de_DE", "49", "DEU"},       {"es_DO", "-", "ESD"},
    };
    for (const auto& c : cases) {
        runtime::SetLocale(c.locale);
        EXPECT_EQ(ReadProfileString("INTL", "iCountry", "-", "WIN.INI"), c.country) << c.locale;
        EXPECT_EQ(ReadProfileString("intl", "sLanguage", "-", "win.ini"), c.language) << c.locale;
    }
    EXPECT_EQ(ReadProfileString("fonts", "iCountry", "-", "WIN.INI"), "-");
    EXPECT_EQ(ReadProfileString("intl", "iOther", "-", "WIN.INI"), "-");
    // A file ends this, for the keys that it lacks too.
    folder_.Write("config/win.ini", "[intl]\niCountry=61\n");
    EXPECT_EQ(ReadProfileString("INTL", "iCountry", "-", "WIN.INI"), "61");
    EXPECT_EQ(ReadProfileString("INTL", "sLanguage", "-", "WIN.INI"), "-");
}

} // namespace quillary::system
