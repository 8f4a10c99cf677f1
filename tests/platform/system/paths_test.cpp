#include "platform/system/paths.h"

#include "platform/runtime/dates.h"
#include "platform/system/temporary_folder.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

namespace quillary::system {

using test::TemporaryFolder;

TEST(Paths, BecomeNativeWhateverTheirCase) {
    const TemporaryFolder folder;
    folder.Write("Data Root/Map/Farm32.MDB", "x");
    folder.Write("both/a.txt", "x");
    folder.Write("both/A.txt", "x");
    folder.Write("several/B.txt", "x");
    folder.Write("several/b.TXT", "x");
    folder.Write("\xC3\x9C"
                 "ber.ini",
                 "x");
    const struct {
        const char* given;
        const char* native;
    } cases[] = {
        {"\\data root\\map\\farm32.mdb", "/Data Root/Map/Farm32.MDB"},
        {"/Data Root\\MAP/farm32.mdb", "/Data Root/Map/Farm32.MDB"},
        {"\\both\\a.txt", "/both/a.txt"},
        {"\\both\\A.txt", "/both/A.txt"},
        {"\\several\\b.txt", "/several/B.txt"},                      // of several the first
        {"\\data root\\New\\Other.mdb", "/Data Root/New/Other.mdb"}, // what is not there stays as given
        {"\\DATA ROOT\\", "/Data Root/"},
        {"\\data root\\..\\BOTH\\a.txt", "/Data Root/../both/a.txt"},
        {"\\\xC3\xBC"
         "BER.INI",
         "/\xC3\x9C"
         "ber.ini"},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ToNative(folder.Path() + c.given), folder.Path() + c.native) << c.given;
    EXPECT_EQ(ToNative("C:\\No\\Such.mdb"), "C:/No/Such.mdb");
    EXPECT_EQ(ToNative("\\\\server\\share\\x"), "//server/share/x");
    EXPECT_EQ(ToNative(""), "");
    EXPECT_NO_THROW(ToNative(std::string("a\0b", 3)));
}

TEST(Paths, TellFilesFromFolders) {
    const TemporaryFolder folder;
    const std::string file = folder.Write("Sub/File.txt", "x");
    EXPECT_TRUE(FileExists(folder.Path() + "\\SUB\\file.TXT"));
    EXPECT_FALSE(FolderExists(file));
    EXPECT_TRUE(FolderExists(folder.Path() + "\\sub"));
    EXPECT_FALSE(FileExists(folder.Path() + "\\sub"));
    for (const std::string& none :
         {std::string(), file + "2", file + "/below", file + std::string("\0", 1)}) {
        EXPECT_FALSE(FileExists(none)) << none;
        EXPECT_FALSE(FolderExists(none)) << none;
        EXPECT_FALSE(FileDate(none)) << none;
    }
    const auto date = FileDate(file);
    ASSERT_TRUE(date);
    EXPECT_NEAR(date->days, runtime::Now().days, 1.0 / 24);
}

TEST(Paths, AreJoinedAndTakenApart) {
    EXPECT_EQ(Join("C:\\x", "y"), "C:\\x\\y");
    EXPECT_EQ(Join("C:\\x\\", "y"), "C:\\x\\y");
    EXPECT_EQ(Join("/x/", "y"), "/x/y");
    const struct {
        const char *path, *folder, *name;
    } cases[] = {
        {"C:\\x\\y.mdb", "C:\\x", "y.mdb"}, {"/x/z\\y", "/x/z", "y"}, {"/y", "/", "y"}, {"y", "", "y"}};
    for (const auto& c : cases) {
        EXPECT_EQ(FolderOf(c.path), c.folder);
        EXPECT_EQ(FileNameOf(c.path), c.name);
    }
}

TEST(TextFiles, AreReadInEitherEncoding) {
    using namespace std::string_literals;
    const TemporaryFolder folder;
    const struct {
        std::string bytes, text;
    } cases[] = {
        {"caf\xC3\xA9", "caf\xC3\xA9"},
        {"\xEF\xBB\xBF[A]", "[A]"},
        {"\xFF\xFE[\0\x6B\x01\x3D\xD8\x04\xDC]\0?"s, "[\xC5\xAB\xF0\x9F\x90\x84]"}, // UTF-16
        {"caf\xE9 \x80 \x81", "caf\xC3\xA9 \xE2\x82\xAC \xC2\x81"}, // Windows Latin, the euro sign in it
        {"\xED\xA0\x80", "\xC3\xAD\xC2\xA0\xE2\x82\xAC"},           // half a surrogate is no UTF-8
        {"", ""},
    };
    for (const auto& c : cases)
        EXPECT_EQ(ReadTextFile(folder.Write("t", c.bytes)), c.text);
    EXPECT_EQ(ReadTextFile(folder.Path()), std::nullopt);
    EXPECT_EQ(ReadTextFile(folder / "missing"), std::nullopt);
    const std::string pipe = folder / "pipe";
    ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
    EXPECT_EQ(ReadTextFile(pipe), std::nullopt);
}

} // namespace quillary::system
