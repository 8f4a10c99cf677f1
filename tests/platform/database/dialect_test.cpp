#include "platform/database/engine.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <unistd.h>

// Runs the texts of dialect/*.test on the engine, each on a database of its own. A piece is a word or two,
// a statement, and for a query "----" and the rows that it has to give; a blank line ends it:
//   statement ok | statement error 3061 | affects 3     an action, a definition; or anything that fails
//   query                                               rows, values with "|" between
//   names                                               the names of a query's columns
// "{folder}" in a statement is the folder of the database.
namespace quillary::database {
namespace {

struct Piece {
    std::string what;
    std::string sql;
    std::vector<std::string> rows;
    int line = 0;
};

std::vector<Piece> ReadPieces(const std::filesystem::path& path) {
    std::ifstream file(path);
    std::vector<Piece> pieces;
    std::string text;
    bool inRows = false;
    bool open = false;
    for (int line = 1; std::getline(file, text); ++line) {
        if (text.empty()) {
            open = inRows = false;
        } else if (!open && text.front() == '#') {
            continue;
        } else if (!open) {
            pieces.push_back({text, {}, {}, line});
            open = true;
        } else if (text == "----") {
            inRows = true;
        } else if (inRows) {
            pieces.back().rows.push_back(text);
        } else {
            pieces.back().sql += (pieces.back().sql.empty() ? "" : "\n") + text;
        }
    }
    return pieces;
}

std::string ShownText(const Variant& value) {
    switch (value.Type()) {
    case runtime::VarType::Null:
        return "<null>";
    case runtime::VarType::Boolean:
        return value.Get<bool>() ? "-1" : "0";
    case runtime::VarType::Single:
        return runtime::NumberText(value.Get<float>());
    case runtime::VarType::Double:
        return runtime::NumberText(value.Get<double>());
    case runtime::VarType::Currency:
        return runtime::NumberText(value.Get<runtime::Currency>());
    case runtime::VarType::Date:
        return runtime::IsoText(value.Get<runtime::Date>());
    default:
        return runtime::CStr(value);
    }
}

std::vector<std::string> ReadRows(Database& database, const std::string& sql, RecordsetType type) {
    std::vector<std::string> rows;
    for (auto records = database.OpenRecordset(sql, type); !records->EOF_(); records->MoveNext()) {
        std::string row;
        for (int i = 0; i < records->FieldCount(); ++i) {
            row += (i > 0 ? "|" : "") + ShownText((*records)[i].Value());
        }
        rows.push_back(std::move(row));
    }
    return rows;
}

bool IsQuery(const std::string& sql) {
    const std::string word = runtime::LCase(sql.substr(0, sql.find_first_of(" \n(")));
    return (word == "select" && runtime::LCase(sql).find(" into ") == std::string::npos) ||
           word == "transform" || word == "parameters";
}

void RunStatement(Database& database, const std::string& sql) {
    if (IsQuery(sql)) {
        ReadRows(database, sql, RecordsetType::Snapshot);
    } else {
        database.Execute(sql, kFailOnError);
    }
}

void Check(Database& database, const Piece& piece, const std::string& where) {
    if (piece.what == "query") {
        EXPECT_EQ(ReadRows(database, piece.sql, RecordsetType::Snapshot), piece.rows) << where;
        EXPECT_EQ(ReadRows(database, piece.sql, RecordsetType::Dynaset), piece.rows) << where << " (dynaset)";
    } else if (piece.what == "names") {
        std::string names;
        const auto records = database.OpenRecordset(piece.sql, RecordsetType::Snapshot);
        for (int i = 0; i < records->FieldCount(); ++i) {
            names += (i > 0 ? "|" : "") + (*records)[i].Name();
        }
        EXPECT_EQ(std::vector<std::string>{names}, piece.rows) << where;
    } else {
        RunStatement(database, piece.sql);
        if (piece.what.starts_with("affects ")) {
            EXPECT_EQ("affects " + std::to_string(database.RecordsAffected()), piece.what) << where;
        } else {
            EXPECT_EQ("statement ok", piece.what) << where;
        }
    }
}

class Dialect : public ::testing::TestWithParam<std::string> {};

TEST_P(Dialect, File) {
    runtime::SetLocale("en_NZ");
    namespace fs = std::filesystem;
    const fs::path folder =
        fs::path(::testing::TempDir()) / ("dialect_" + GetParam() + "_" + std::to_string(getpid()));
    fs::remove_all(folder);
    fs::create_directories(folder);
    const auto engine = CreateSqliteEngine();
    engine->CreateDatabase((folder / "other.mdb").string());
    {
        const auto database = engine->CreateDatabase((folder / "test.mdb").string());
        const fs::path source =
            fs::path(QY_SOURCE_FOLDER) / "tests/platform/database/dialect" / (GetParam() + ".test");
        const auto pieces = ReadPieces(source);
        ASSERT_FALSE(pieces.empty());
        for (Piece piece : pieces) {
            const std::string where = GetParam() + ".test:" + std::to_string(piece.line) + ": " + piece.sql;
            if (const auto at = piece.sql.find("{folder}"); at != std::string::npos) {
                piece.sql.replace(at, 8, folder.string());
            }
            try {
                Check(*database, piece, where);
            } catch (const runtime::RunTimeError& error) {
                EXPECT_EQ("statement error " + std::to_string(error.Number()), piece.what)
                    << where << "\n"
                    << error.Description();
            }
        }
    }
    engine->ReleaseIdle();
    fs::remove_all(folder);
}

std::vector<std::string> Files() {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(std::string(QY_SOURCE_FOLDER) +
                                                                 "/tests/platform/database/dialect")) {
        if (entry.path().extension() == ".test") {
            names.push_back(entry.path().stem().string());
        }
    }
    std::sort(names.begin(), names.end());
    return names;
}

INSTANTIATE_TEST_SUITE_P(Dialect, Dialect, ::testing::ValuesIn(Files()),
                         [](const auto& each) { return each.param; });

} // namespace
} // namespace quillary::database
