// Two programs on one file: the other one is a child process with SQLite alone, so that nothing of this
// process's connections is shared with it.
#include "platform/database/errors.h"
#include "platform/database/scratch_database.h"
#include "platform/database/sqlite/connection.h"
#include "platform/database/sqlite/functions.h"

#include <csignal>
#include <sqlite3.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillary::database {
namespace {

// A program that runs statements when it is told to. It is started before this process opens the file,
// since connections do not survive a fork.
class OtherProgram {
public:
    explicit OtherProgram(const std::string& path) {
        int toChild[2];
        int fromChild[2];
        if (pipe(toChild) != 0 || pipe(fromChild) != 0) {
            throw std::runtime_error("pipe");
        }
        child_ = fork();
        if (child_ == 0) {
            close(toChild[1]);
            close(fromChild[0]);
            Serve(path, toChild[0], fromChild[1]);
        }
        close(toChild[0]);
        close(fromChild[1]);
        out_ = toChild[1];
        in_ = fromChild[0];
    }
    ~OtherProgram() {
        Kill();
        close(out_);
        close(in_);
    }
    OtherProgram(const OtherProgram&) = delete;
    OtherProgram& operator=(const OtherProgram&) = delete;

    // SQLite's result code.
    int Run(const std::string& sql) {
        const auto size = static_cast<std::uint32_t>(sql.size());
        int result = -1;
        const bool told = write(out_, &size, sizeof size) == sizeof size &&
                          write(out_, sql.data(), size) == static_cast<ssize_t>(size) &&
                          read(in_, &result, sizeof result) == sizeof result;
        return told ? result : -1;
    }
    void Kill() {
        if (child_ > 0) {
            kill(child_, SIGKILL);
            waitpid(child_, nullptr, 0);
            child_ = 0;
        }
    }

private:
    [[noreturn]] static void Serve(const std::string& path, int in, int out) {
        sqlite3* handle = nullptr;
        std::uint32_t size = 0;
        while (read(in, &size, sizeof size) == sizeof size) {
            std::string sql(size, '\0');
            if (read(in, sql.data(), size) != static_cast<ssize_t>(size)) {
                break;
            }
            if (handle == nullptr) {
                sqlite3_open(path.c_str(), &handle);
                sqlite::RegisterFunctions(handle);
                sqlite3_busy_timeout(handle, 2000);
            }
            const int result = sqlite3_exec(handle, sql.c_str(), nullptr, nullptr, nullptr);
            if (write(out, &result, sizeof result) != sizeof result) {
                break;
            }
        }
        _exit(0);
    }

    pid_t child_ = 0;
    int out_ = -1;
    int in_ = -1;
};

class TwoPrograms : public ScratchDatabase {
protected:
    TwoPrograms() {
        db_->Execute("CREATE TABLE T (ID COUNTER PRIMARY KEY, a LONG, b TEXT(20))", kFailOnError);
        for (int i = 1; i <= 300; ++i) {
            db_->Execute("INSERT INTO T (a) VALUES (" + std::to_string(i) + ")", kFailOnError);
        }
        db_.reset();
        engine_->ReleaseIdle();
        other_ = std::make_unique<OtherProgram>(PathOf("farm.mdb"));
        sqlite::SetBusyTimeout(50);
        db_ = engine_->OpenDatabase(PathOf("farm.mdb"));
    }
    std::unique_ptr<OtherProgram> other_;
};

TEST_F(TwoPrograms, AWriteOfTheOtherIsSeen) {
    const auto rows = db_->OpenRecordset("SELECT * FROM T ORDER BY ID", RecordsetType::Dynaset);
    ASSERT_EQ((*rows)["a"].Value(), Variant(1));
    ASSERT_EQ(other_->Run("UPDATE T SET a = a + 1000; DELETE FROM T WHERE ID = 200"), SQLITE_OK);
    EXPECT_EQ(Rows("SELECT a FROM T WHERE ID = 7"), "1007");
    rows->FindFirst("ID = 250"); // a page that is read now
    EXPECT_EQ((*rows)["a"].Value(), Variant(1250));
    rows->MoveFirst();
    rows->Edit(); // reads the row anew
    EXPECT_EQ((*rows)["a"].Value(), Variant(1001));
    rows->CancelUpdate();
    rows->SetBookmark(rows->BookmarkAt(199));
    EXPECT_EQ(ErrorOf([&] { (*rows)["a"].Value(); }), kErrRecordDeleted);
}

TEST_F(TwoPrograms, WhatTheOtherHasChangedSinceEdit) {
    const auto rows = db_->OpenRecordset("SELECT * FROM T WHERE ID <= 3", RecordsetType::Dynaset);
    rows->Edit();
    (*rows)["b"] = "mine";
    ASSERT_EQ(other_->Run("UPDATE T SET a = 77 WHERE ID = 1"), SQLITE_OK);
    rows->Update(); // another field
    EXPECT_EQ(Rows("SELECT a, b FROM T WHERE ID = 1"), "77|mine");
    rows->Edit();
    (*rows)["b"] = "again";
    ASSERT_EQ(other_->Run("UPDATE T SET b = 'theirs' WHERE ID = 1"), SQLITE_OK);
    EXPECT_EQ(ErrorOf([&] { rows->Update(); }), kErrRecordChanged);
    rows->MoveNext();
    rows->Edit();
    (*rows)["b"] = "late";
    ASSERT_EQ(other_->Run("DELETE FROM T WHERE ID = 2"), SQLITE_OK);
    EXPECT_EQ(ErrorOf([&] { rows->Update(); }), kErrRecordDeleted);
}

TEST_F(TwoPrograms, ALockThatTheOtherHolds) {
    const auto rows = db_->OpenRecordset("SELECT * FROM T", RecordsetType::Dynaset);
    rows->Edit();
    (*rows)["a"] = 5;
    ASSERT_EQ(other_->Run("BEGIN IMMEDIATE; UPDATE T SET a = 0"), SQLITE_OK);
    const struct {
        std::function<void()> act;
        int number;
    } kCases[] = {
        {[&] { db_->Execute("UPDATE T SET a = 1", kFailOnError); }, kErrCannotLock},
        {[&] { db_->Execute("DELETE FROM T"); }, kErrCannotLock},
        {[&] { db_->Execute("CREATE TABLE U (a LONG)"); }, 3211},
        {[&] { db_->CreateQueryDef("q", "SELECT 1"); }, kErrCannotLock},
        {[&] { rows->Update(); }, kErrPageLocked},
    };
    for (const auto& each : kCases) {
        std::string text;
        EXPECT_EQ(ErrorOf(each.act, &text), each.number);
        EXPECT_NE(text.find(PathOf("farm.mdb")), std::string::npos) << text;
    }
    EXPECT_EQ(Rows("SELECT Count(*), Sum(a) FROM T"), "300|45150"); // reading goes on
    ASSERT_EQ(other_->Run("ROLLBACK"), SQLITE_OK);
    rows->Update(); // the edit was still pending
    EXPECT_EQ(Rows("SELECT a FROM T WHERE ID = 1"), "5");
}

TEST_F(TwoPrograms, AFileThatIsLockedWhole) {
    db_.reset();
    engine_->ReleaseIdle();
    ASSERT_EQ(other_->Run("PRAGMA locking_mode = EXCLUSIVE; BEGIN EXCLUSIVE; SELECT 1 FROM T"), SQLITE_OK);
    std::string text;
    EXPECT_EQ(ErrorOf([&] { engine_->OpenDatabase(PathOf("farm.mdb")); }, &text), kErrFileInUse);
    EXPECT_NE(text.find(PathOf("farm.mdb")), std::string::npos) << text;
    other_->Kill();
    db_ = engine_->OpenDatabase(PathOf("farm.mdb"));
    EXPECT_EQ(Rows("SELECT Count(*) FROM T"), "300");
}

// Neither a half statement nor a lock stays behind when the other dies in the middle of its work.
TEST_F(TwoPrograms, TheOtherIsKilledWhileItWrites) {
    ASSERT_EQ(other_->Run("BEGIN IMMEDIATE; UPDATE T SET a = 0; DELETE FROM T WHERE ID > 100"), SQLITE_OK);
    other_->Kill();
    EXPECT_EQ(Rows("SELECT Count(*), Sum(a) FROM T"), "300|45150");
    EXPECT_EQ(Execute("UPDATE T SET a = 1"), "");
    db_.reset();
    engine_->ReleaseIdle();
    db_ = engine_->OpenDatabase(PathOf("farm.mdb"));
    EXPECT_EQ(Rows("SELECT Sum(a) FROM T"), "300");
}

TEST_F(TwoPrograms, TheOtherChangesTheTables) {
    EXPECT_EQ(Rows("SELECT * FROM T WHERE ID = 1"), "1|1|<null>");
    const auto rows = db_->OpenRecordset("SELECT ID, b FROM T", RecordsetType::Dynaset);
    ASSERT_EQ(other_->Run("ALTER TABLE T ADD COLUMN c LONG DEFAULT 9; ALTER TABLE T DROP COLUMN a; CREATE "
                          "TABLE U (x LONG)"),
              SQLITE_OK);
    EXPECT_EQ(db_->TableDefs().size(), 2U);
    EXPECT_EQ(Rows("SELECT * FROM T WHERE ID = 1"), "1|<null>|9");
    EXPECT_EQ(Rows("SELECT a FROM T"), "error 3061");
    EXPECT_EQ(Execute("UPDATE T SET a = 1"), "error 3061");
    rows->MoveLast();
    EXPECT_EQ((*rows)["ID"].Value(), Variant(300));
    ASSERT_EQ(other_->Run("DROP TABLE T"), SQLITE_OK);
    EXPECT_EQ(Rows("SELECT * FROM T"), "error 3078");
    rows->MoveFirst();
    EXPECT_EQ(ErrorOf([&] { (*rows)["ID"].Value(); }), kErrUnknownTable);
}

TEST_F(TwoPrograms, TheOtherReadsWhileWeWrite) {
    ASSERT_EQ(other_->Run("BEGIN; SELECT Count(*) FROM T"), SQLITE_OK);
    EXPECT_EQ(Execute("UPDATE T SET a = 1"), "");
    db_->Flush();
    ASSERT_EQ(other_->Run("COMMIT; CREATE TABLE Seen AS SELECT sum(a) AS s FROM T"), SQLITE_OK);
    EXPECT_EQ(Rows("SELECT s FROM Seen"), "300");
}

// A number that one program has taken for a new row is not given to the other.
TEST_F(TwoPrograms, NumbersAreTakenOnce) {
    const auto rows = db_->OpenRecordset("T");
    rows->AddNew();
    EXPECT_EQ((*rows)["ID"].Value(), Variant(301));
    ASSERT_EQ(other_->Run("INSERT INTO T (a) VALUES (1)"), SQLITE_OK);
    (*rows)["a"] = 2;
    rows->Update();
    EXPECT_EQ(Rows("SELECT ID, a FROM T WHERE ID > 300"), "301|2; 302|1");
}

} // namespace
} // namespace quillary::database
