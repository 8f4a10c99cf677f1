// Opening what is no database, and what may not be opened: each has its number, the text names the file,
// and nothing in the folder changes.
#include "platform/database/errors.h"
#include "platform/database/scratch_database.h"

#include <sys/stat.h>

namespace quillary::database {
namespace {

using std::filesystem::perms;

class OpenErrors : public ScratchDatabase {
protected:
    // A database of some pages, closed, as bytes.
    std::string GoodFile() {
        Run({"CREATE TABLE Farm (ID COUNTER PRIMARY KEY, [Name] TEXT(50))",
             "INSERT INTO Farm ([Name]) VALUES ('Hilltop')"});
        db_.reset();
        engine_->ReleaseIdle();
        return ReadFile(PathOf("farm.mdb"));
    }
    std::shared_ptr<Database> Open(const std::string& name) { return engine_->OpenDatabase(PathOf(name)); }
};

TEST_F(OpenErrors, EachHasItsNumberAndNamesTheFile) {
    const std::string good = GoodFile();
    std::string oldEngine(4096, '\0');
    oldEngine.replace(0, 4, std::string("\0\1\0\0", 4)).replace(4, 15, "Standard Jet DB");
    std::string newerEngine = oldEngine;
    newerEngine.replace(4, 15, "Standard ACE DB");
    std::string badPageSize = good;
    badPageSize[16] = 3;
    std::string badRoot = good;
    badRoot[4096] = 'x'; // the head of the second page
    std::string badSchema = good;
    badSchema.replace(100, 300, std::string(300, '\xff'));

    const struct {
        const char* name;
        std::string bytes;
        int number;
        const char* text;
    } kFiles[] = {
        {"empty.mdb", "", kErrNotADatabase, ""},
        {"text.mdb", "This is a letter to the bank.\n", kErrNotADatabase, ""},
        {"header only.mdb", good.substr(0, 16), kErrNotADatabase, ""},
        {"cut within a page.mdb", good.substr(0, 700), kErrNotADatabase, ""},
        {"cut by a page.mdb", good.substr(0, good.size() - 4096), kErrNotADatabase, ""},
        {"page size.mdb", badPageSize, kErrNotADatabase, ""},
        {"root page.mdb", badRoot, kErrNotADatabase, ""},
        {"schema.mdb", badSchema, kErrNotADatabase, ""},
        {"old.mdb", oldEngine, kErrNotADatabase, "qydata import"},
        {"newer.accdb", newerEngine, kErrNotADatabase, "qydata import"},
    };
    for (const auto& each : kFiles) {
        WriteFile(PathOf(each.name), each.bytes);
    }
    std::filesystem::create_directory(PathOf("folder.mdb"));
    mkfifo(PathOf("pipe.mdb").c_str(), 0600);
    const auto before = Contents(folder_ / "folder.mdb");

    const auto expect = [&](const std::string& name, int number, const std::string& part) {
        SCOPED_TRACE(name);
        std::string text;
        EXPECT_EQ(ErrorOf([&] { Open(name); }, &text), number);
        EXPECT_NE(text.find(PathOf(name)), std::string::npos) << text;
        EXPECT_NE(text.find(part), std::string::npos) << text;
        for (const char* ending : {"-wal", "-shm", "-journal"}) {
            EXPECT_FALSE(std::filesystem::exists(PathOf(name) + ending));
        }
    };
    for (const auto& each : kFiles) {
        expect(each.name, each.number, each.text);
        EXPECT_EQ(ReadFile(PathOf(each.name)), each.bytes);
    }
    expect("missing.mdb", kErrFileNotFound, "");
    expect("no folder/missing.mdb", kErrFileNotFound, "");
    expect("farm.mdb/missing.mdb", kErrFileNotFound, "");
    expect("folder.mdb", kErrCannotOpenFile, "");
    expect("pipe.mdb", kErrCannotOpenFile, "");
    EXPECT_EQ(Contents(folder_ / "folder.mdb"), before);
    EXPECT_FALSE(std::filesystem::exists(PathOf("missing.mdb")));
}

TEST_F(OpenErrors, AFileThatMayNotBeReadOrWritten) {
    const std::string good = GoodFile();
    std::filesystem::permissions(PathOf("farm.mdb"), perms::none);
    EXPECT_EQ(ErrorOf([&] { Open("farm.mdb"); }), kErrCannotOpenFile);

    std::filesystem::permissions(PathOf("farm.mdb"), perms::owner_read | perms::group_read);
    db_ = Open("farm.mdb");
    EXPECT_TRUE(db_->ReadOnly());
    EXPECT_EQ(Rows("SELECT [Name] FROM Farm"), "Hilltop");
    EXPECT_EQ(Execute("UPDATE Farm SET [Name] = 'x'"), "error 3027");
    EXPECT_EQ(Execute("CREATE TABLE x (a LONG)"), "error 3027");
    EXPECT_EQ(ErrorOf([&] { db_->CreateQueryDef("q", "SELECT * FROM Farm"); }), kErrReadOnly);
    const auto rows = db_->OpenRecordset("Farm");
    EXPECT_EQ(ErrorOf([&] { rows->Edit(); }), kErrReadOnly);
    EXPECT_EQ(ErrorOf([&] { rows->AddNew(); }), kErrReadOnly);
    EXPECT_EQ(ErrorOf([&] { rows->Delete(); }), kErrReadOnly);
    EXPECT_EQ(ReadFile(PathOf("farm.mdb")), good);
    EXPECT_FALSE(std::filesystem::exists(PathOf("farm.mdb-wal")));

    // Once it may be written, the next opening can.
    rows->Close();
    db_.reset();
    std::filesystem::permissions(PathOf("farm.mdb"), perms::owner_read | perms::owner_write);
    db_ = Open("farm.mdb");
    EXPECT_EQ(Execute("UPDATE Farm SET [Name] = 'x'"), "");
}

TEST_F(OpenErrors, AReadOnlyDatabaseBesideOneThatIsWritten) {
    Run({"CREATE TABLE T (a LONG)"});
    const auto reader = engine_->OpenDatabase(PathOf("farm.mdb"), true);
    Run({"INSERT INTO T VALUES (5)"});
    EXPECT_EQ((*reader->OpenRecordset("T"))["a"].Value(), Variant(5));
    EXPECT_EQ(ErrorOf([&] { reader->Execute("INSERT INTO T VALUES (6)"); }), kErrReadOnly);
}

// Idle connections are kept, and must not stand in for a file that has gone or is another by now.
TEST_F(OpenErrors, AFileThatWasReplacedDamagedOrDeletedMeanwhile) {
    const std::string good = GoodFile();
    db_ = Open("farm.mdb");
    Run({"INSERT INTO Farm ([Name]) VALUES ('Valley')"});
    db_.reset();

    std::filesystem::rename(PathOf("farm.mdb"), PathOf("elsewhere.mdb"));
    EXPECT_EQ(ErrorOf([&] { Open("farm.mdb"); }), kErrFileNotFound);
    WriteFile(PathOf("farm.mdb"), good);
    db_ = Open("farm.mdb");
    EXPECT_EQ(Rows("SELECT [Name] FROM Farm"), "Hilltop");
    db_ = Open("elsewhere.mdb");
    EXPECT_EQ(Rows("SELECT [Name] FROM Farm"), "Hilltop; Valley");
    db_.reset();

    WriteFile(PathOf("farm.mdb"), "no database any more");
    EXPECT_EQ(ErrorOf([&] { Open("farm.mdb"); }), kErrNotADatabase);
    EXPECT_EQ(ReadFile(PathOf("farm.mdb")), "no database any more");
}

TEST_F(OpenErrors, Creating) {
    const struct {
        std::string path;
        int number;
    } kPaths[] = {{"farm.mdb", 3204}, {"folder/none.mdb", 3044}, {"", kErrCannotOpenFile}};
    for (const auto& each : kPaths) {
        EXPECT_EQ(ErrorOf([&] { engine_->CreateDatabase(PathOf(each.path)); }), each.number) << each.path;
    }
    EXPECT_EQ(ErrorOf([&] { engine_->BackupDatabase(PathOf("none.mdb"), PathOf("copy.mdb")); }),
              kErrFileNotFound);
    EXPECT_EQ(ErrorOf([&] { engine_->BackupDatabase(PathOf("farm.mdb"), PathOf("farm.mdb")); }), 3204);
}

TEST_F(OpenErrors, ABackupOfADatabaseInUse) {
    Run({"CREATE TABLE T (a LONG)", "INSERT INTO T VALUES (1)"});
    engine_->BackupDatabase(PathOf("farm.mdb"), PathOf("copy.mdb"));
    Run({"INSERT INTO T VALUES (2)"});
    db_ = engine_->OpenDatabase(PathOf("copy.mdb"));
    EXPECT_EQ(Rows("T"), "1");
}

TEST_F(OpenErrors, AfterClose) {
    Run({"CREATE TABLE T (a LONG)", "INSERT INTO T VALUES (1)"});
    const auto rows = db_->OpenRecordset("T");
    db_->Close();
    db_->Close();
    EXPECT_EQ(ErrorOf([&] { db_->Execute("DELETE FROM T"); }), 3420);
    EXPECT_EQ(ErrorOf([&] { db_->TableDefs(); }), 3420);
    rows->Close();
    EXPECT_EQ(ErrorOf([&] { rows->MoveFirst(); }), 3420);
    EXPECT_EQ(ErrorOf([&] { (*rows)[0].Value(); }), 3420);
}

} // namespace
} // namespace quillary::database
