#include "platform/database/engine.h"
#include "platform/database/jet_sql/parser.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <unistd.h>

// Every statement that the program runs, on databases made from data/schema and a few rows of
// corpus/*.sql. The statements are those of the suite's list, which stands beside the project. A line of
// corpus/expected.tsv: a statement's name, the values for its {places}, a query to look at what an action
// did, and what comes of it: rows with " / " between (Null is "~"), for an action the number of rows before
// them.
namespace quillary::database {
namespace {

namespace fs = std::filesystem;

constexpr const char* kFiles[] = {"farm32", "modules", "wage32", "diary"};

std::string ReadText(const fs::path& path) {
    std::ifstream file(path);
    EXPECT_TRUE(file) << path;
    std::stringstream text;
    text << file.rdbuf();
    return text.str();
}

std::string Shown(const Variant& value) {
    switch (value.Type()) {
    case runtime::VarType::Null:
        return "~";
    case runtime::VarType::Currency:
        return runtime::NumberText(value.Get<runtime::Currency>());
    case runtime::VarType::Date:
        return runtime::IsoText(value.Get<runtime::Date>());
    default:
        return runtime::CStr(value);
    }
}

std::string Rows(Database& database, const std::string& sql, RecordsetType type) {
    std::string result;
    for (auto rows = database.OpenRecordset(sql, type); !rows->EOF_(); rows->MoveNext()) {
        result += result.empty() ? "" : " / ";
        for (int i = 0; i < rows->FieldCount(); ++i) {
            result += (i > 0 ? "|" : "") + Shown((*rows)[i].Value());
        }
    }
    return result;
}

struct CorpusLine {
    std::string name, file, sql, check, expected;
};

std::vector<std::string> Cells(const std::string& line, std::size_t count) {
    std::vector<std::string> cells;
    std::istringstream text(line);
    for (std::string cell; std::getline(text, cell, '\t');) {
        cells.push_back(cell);
    }
    cells.resize(count);
    return cells;
}

// File and text of each statement, by its name.
std::map<std::string, std::pair<std::string, std::string>> ReadStatements() {
    std::map<std::string, std::pair<std::string, std::string>> statements;
    std::istringstream file(ReadText(QY_SOURCE_FOLDER "/../shared/jet_sql_corpus.tsv"));
    std::string line;
    std::getline(file, line); // headings
    while (std::getline(file, line)) {
        const auto cells = Cells(line, 4);
        statements[cells[0]] = {cells[1], cells[3]};
    }
    return statements;
}

std::vector<CorpusLine> ReadCorpus(const fs::path& path) {
    const auto statements = ReadStatements();
    std::vector<CorpusLine> lines;
    std::istringstream file(ReadText(path));
    for (std::string line; std::getline(file, line);) {
        const auto cells = Cells(line, 4);
        const auto found = statements.find(cells[0]);
        if (found == statements.end()) {
            ADD_FAILURE() << "there is no statement " << cells[0];
            continue;
        }
        std::string sql = found->second.second;
        std::istringstream values(cells[1]);
        for (std::string pair; std::getline(values, pair, ';');) {
            const auto equals = pair.find('=');
            const std::string place = "{" + pair.substr(0, equals) + "}";
            for (std::size_t at; (at = sql.find(place)) != std::string::npos;) {
                sql.replace(at, place.size(), pair.substr(equals + 1));
            }
        }
        lines.push_back({cells[0], found->second.first, sql, cells[2], cells[3]});
    }
    EXPECT_EQ(lines.size(), statements.size());
    return lines;
}

class Corpus : public ::testing::Test {
protected:
    void SetUp() override {
        runtime::SetLocale("en_NZ");
        fs::remove_all(folder_);
        fs::create_directories(folder_ / "work");
        for (const std::string name : kFiles) {
            const auto database = engine_->CreateDatabase((folder_ / name).string());
            for (const fs::path& script : {source_ / "data/schema" / (name + ".sql"),
                                           source_ / "tests/platform/database/corpus" / (name + ".sql")}) {
                for (const auto& piece : jet_sql::SplitScript(ReadText(script))) {
                    database->Execute(piece.text, kFailOnError);
                }
            }
        }
        engine_->ReleaseIdle();
    }
    void TearDown() override {
        engine_->ReleaseIdle();
        fs::remove_all(folder_);
    }

    // A statement finds the files as they were made.
    std::shared_ptr<Database> OpenFresh(const std::string& file) {
        const std::string name = runtime::LCase(file.substr(0, file.find('.')));
        engine_->ReleaseIdle();
        fs::remove_all(folder_ / "work");
        fs::create_directories(folder_ / "work");
        fs::copy_file(folder_ / name, folder_ / "work" / file);
        return engine_->OpenDatabase((folder_ / "work" / file).string());
    }

    const fs::path source_ = QY_SOURCE_FOLDER;
    const fs::path folder_ = fs::path(::testing::TempDir()) / ("corpus_" + std::to_string(getpid()));
    std::unique_ptr<Engine> engine_ = CreateSqliteEngine();
};

TEST_F(Corpus, EveryStatementOfTheProgram) {
    const auto lines = ReadCorpus(source_ / "tests/platform/database/corpus/expected.tsv");
    EXPECT_EQ(lines.size(), 97U);
    for (const CorpusLine& line : lines) {
        const auto database = OpenFresh(line.file);
        try {
            std::string result;
            if (line.check.empty()) {
                result = Rows(*database, line.sql, RecordsetType::Snapshot);
                EXPECT_EQ(Rows(*database, line.sql, RecordsetType::Dynaset), result) << line.name;
            } else {
                database->Execute(line.sql, kFailOnError);
                result = std::to_string(database->RecordsAffected()) + ": " +
                         Rows(*database, line.check, RecordsetType::Snapshot);
            }
            EXPECT_EQ(result, line.expected) << line.name << "\n" << line.sql;
        } catch (const runtime::RunTimeError& error) {
            ADD_FAILURE() << line.name << ": error " << error.Number() << " " << error.Description();
        }
    }
}

} // namespace
} // namespace quillary::database
