#include "config/installation_completion.h"

#include "config/database_templates.h"
#include "config/suite_files.h"
#include "platform/database/engine.h"
#include "platform/database/sql_script.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/ini_file.h"
#include "platform/system/paths.h"

#include <algorithm>
#include <fstream>
#include <tuple>

namespace quillary::config {

namespace fs = std::filesystem;
using database::FieldDef;
using database::FieldType;
using database::TableDef;
using runtime::EqualName;

namespace {

constexpr int kErrPathAccess = 75;
constexpr std::string_view kCatalogue = "Catalogue";

const TableDef* FindTable(database::Database& database, std::string_view name) {
    const auto& tables = database.TableDefs();
    const auto found = std::find_if(tables.begin(), tables.end(),
                                    [&](const TableDef& table) { return EqualName(table.name, name); });
    return found == tables.end() ? nullptr : &*found;
}

std::string InQuotes(const std::string& text) {
    std::string result = "'";
    for (const char c : text) {
        result += c == '\'' ? "''" : std::string(1, c);
    }
    return result + "'";
}

std::string TypeWord(const FieldDef& field) {
    switch (field.type) {
    case FieldType::Boolean:
        return "BIT";
    case FieldType::Byte:
        return "BYTE";
    case FieldType::Integer:
        return "SHORT";
    case FieldType::Long:
        return field.counter ? "COUNTER" : "LONG";
    case FieldType::Currency:
        return "CURRENCY";
    case FieldType::Single:
        return "SINGLE";
    case FieldType::Double:
        return "DOUBLE";
    case FieldType::Date:
        return "DATETIME";
    case FieldType::Text:
        return "TEXT(" + std::to_string(field.size) + ")";
    case FieldType::Guid:
        return "GUID";
    case FieldType::Binary:
    case FieldType::LongBinary:
        return "LONGBINARY";
    case FieldType::Memo:
        break;
    }
    return "MEMO";
}

// The table that a statement of the schema makes, or makes an index of.
bool IsAbout(const std::string& statement, const std::string& table) {
    const std::string name = "[" + table + "] (";
    return statement.starts_with("CREATE TABLE " + name) ||
           (statement.starts_with("CREATE INDEX ") && statement.find(" ON " + name) != std::string::npos) ||
           (statement.starts_with("CREATE UNIQUE INDEX ") &&
            statement.find(" ON " + name) != std::string::npos);
}

void AddTable(database::Database& database, const TableDef& table, const std::string& schema,
              const fs::path& from) {
    for (const auto& piece : database::SplitScript(schema)) {
        if (IsAbout(piece.text, table.name)) {
            database.Execute(piece.text, database::kFailOnError);
        }
    }
    database.Execute("INSERT INTO [" + table.name + "] SELECT * FROM [" + table.name + "] IN " +
                         InQuotes(from.string()),
                     database::kFailOnError);
}

// Older data know the editions by other keys than a new installation.
std::string KeyOf(database::Database& database, std::int32_t edition) {
    std::vector<std::string> keys{std::string(EditionKey(edition))};
    if (edition == kFarmEdition) {
        keys.emplace_back("QYF");
    } else if (edition == kBusinessEdition) {
        keys.emplace_back("QYM");
    }
    for (const std::string& key : keys) {
        const auto rows =
            database.OpenRecordset("SELECT TOP 1 [modules] FROM [Setup] WHERE [modules] = " + InQuotes(key),
                                   database::RecordsetType::Snapshot);
        if (!rows->EOF_()) {
            return key;
        }
    }
    return keys.front();
}

struct Move {
    std::string from; // as the other machine called it
    fs::path to;
};

// The value under the new folder where it lies below one of the old ones; the same otherwise.
std::string Moved(const std::string& value, const std::vector<Move>& moves) {
    for (const Move& move : moves) {
        const std::size_t length = move.from.size();
        const bool below = value.size() >= length && EqualName(value.substr(0, length), move.from) &&
                           (value.size() == length || value[length] == '\\' || value[length] == '/');
        if (below) {
            std::string rest = value.substr(length);
            std::replace(rest.begin(), rest.end(), '\\', '/');
            return move.to.string() + rest;
        }
    }
    return value;
}

// The value behind "=" and the line's end stay apart.
std::string MendedLine(const std::string& line, const std::vector<Move>& moves) {
    const std::size_t equals = line.find('=');
    if (equals == std::string::npos || line.starts_with(";")) {
        return line;
    }
    const std::size_t begin = line.find_first_not_of(" \t\"'", equals + 1);
    if (begin == std::string::npos) {
        return line;
    }
    const std::size_t last = line.find_last_not_of(" \t\r\"'");
    return line.substr(0, begin) + Moved(line.substr(begin, last + 1 - begin), moves) + line.substr(last + 1);
}

std::vector<Move> MovesOf(const std::string& ini, const InstallationLayout& layout) {
    std::vector<Move> moves;
    const auto add = [&](std::string from, const fs::path& to) {
        while (from.ends_with("\\") || from.ends_with("/")) {
            from.pop_back();
        }
        if (!from.empty()) {
            moves.push_back({std::move(from), to});
        }
    };
    const auto read = [&](std::string_view key) {
        return system::ReadProfileString("QUILLARY", key, "", ini);
    };
    add(read("ProgramDirectory"), layout.program);
    add(read("DataRoot"), layout.data);
    add(std::string(system::FolderOf(read("DataFileName"))), layout.data);
    add(std::string(system::FolderOf(read("ModuleFileName"))), layout.common);
    // A folder within another one goes first.
    std::stable_sort(moves.begin(), moves.end(),
                     [](const Move& a, const Move& b) { return a.from.size() > b.from.size(); });
    return moves;
}

} // namespace

std::vector<std::string> CompleteDatabase(const fs::path& path, std::string_view file,
                                          const InstallationOptions& given, bool editionGiven) {
    const auto& files = InstallationDatabases();
    const auto known = std::find_if(files.begin(), files.end(),
                                    [&](const DatabaseFile& each) { return EqualName(each.name, file); });
    std::vector<std::string> added;
    if (known == files.end()) {
        return added;
    }
    InstallationOptions options = given;
    options.level = InstallationLevel::Empty;
    options.moduleKey = EditionKey(options.moduleNumber);
    const fs::path whole = TemplateOf(options, *known);
    const std::string schema =
        system::ReadTextFile((ShareFolder() / "schema" / (std::string(known->folder) + ".sql")).string())
            .value_or("");
    const auto engine = database::CreateSqliteEngine();
    {
        const auto wanted = engine->OpenDatabase(whole.string(), true);
        const auto database = engine->OpenDatabase(path.string());
        bool newCatalogue = false;
        for (const TableDef& table : wanted->TableDefs()) {
            const TableDef* there = FindTable(*database, table.name);
            if (there == nullptr) {
                AddTable(*database, table, schema, whole);
                newCatalogue = newCatalogue || EqualName(table.name, kCatalogue);
                added.push_back(std::string(file) + ": table " + table.name);
                continue;
            }
            const TableDef before = *there; // the list changes with the first field
            for (const FieldDef& field : table.fields) {
                const bool has =
                    std::any_of(before.fields.begin(), before.fields.end(),
                                [&](const FieldDef& each) { return EqualName(each.name, field.name); });
                if (!has) {
                    database->Execute("ALTER TABLE [" + table.name + "] ADD COLUMN [" + field.name + "] " +
                                          TypeWord(field),
                                      database::kFailOnError);
                    added.push_back(std::string(file) + ": field " + field.name + " of table " + table.name);
                }
            }
        }
        for (const auto& query : wanted->QueryDefs()) {
            if (!database->FindQueryDef(query->Name())) {
                database->CreateQueryDef(query->Name(), query->SQL());
                added.push_back(std::string(file) + ": saved query " + query->Name());
            }
        }
        if (known->shared && (newCatalogue || editionGiven)) {
            const std::string key = KeyOf(*database, options.moduleNumber);
            database->Execute("UPDATE [Catalogue] SET [ModuleNumber] = " +
                                  std::to_string(options.moduleNumber) + ", [ModuleKey] = " + InQuotes(key),
                              database::kFailOnError);
        }
        if (known->shared) {
            database->Execute("UPDATE [Catalogue] SET [ProgramPath] = " +
                                  InQuotes(options.layout.program.string()),
                              database::kFailOnError);
        }
        database->Flush();
        database->Close();
    }
    engine->ReleaseIdle();
    return added;
}

void TakeOverSettings(const fs::path& from, const InstallationLayout& layout) {
    const std::string source = fs::absolute(from).string();
    const auto text = system::ReadTextFile(source);
    const fs::path ini = layout.common / files::kSuiteIni;
    const auto fail = [](const fs::path& path) {
        throw runtime::RunTimeError(kErrPathAccess, "", "Path/File access error: " + path.string());
    };
    if (!text) {
        fail(from);
    }
    const std::vector<Move> moves = MovesOf(source, layout);
    const fs::path part = ini.string() + ".part";
    {
        std::ofstream file(part, std::ios::binary);
        for (std::size_t at = 0; at < text->size();) {
            const std::size_t end = std::min(text->find('\n', at), text->size());
            file << MendedLine(text->substr(at, end - at), moves) << (end < text->size() ? "\n" : "");
            at = end + 1;
        }
        file.close();
        if (!file) {
            fail(part);
        }
    }
    for (const auto& [key, value] :
         {std::tuple{"ProgramDirectory", layout.program}, std::tuple{"DataRoot", layout.data},
          std::tuple{"DataFileName", layout.data / files::kFarmData},
          std::tuple{"DiaryFileName", layout.data / files::kDiaryData},
          std::tuple{"WageFileName", layout.data / files::kWageData},
          std::tuple{"ModuleFileName", layout.common / files::kModuleData}}) {
        if (!system::WriteProfileString("QUILLARY", key, value.string(), part.string())) {
            fail(part);
        }
    }
    std::error_code error;
    fs::rename(part, ini, error);
    if (error) {
        fail(ini);
    }
}

} // namespace quillary::config
