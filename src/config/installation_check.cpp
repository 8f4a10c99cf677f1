#include "config/installation_check.h"

#include "config/database_templates.h"
#include "config/installation.h"
#include "config/suite_files.h"
#include "platform/database/engine.h"
#include "platform/database/integrity.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/ini_file.h"
#include "platform/system/paths.h"

#include <algorithm>

namespace quillary::config {

namespace fs = std::filesystem;
using database::FieldDef;
using database::FieldType;
using database::IndexDef;
using database::TableDef;

namespace {

// The one saved query that the program makes itself when it is missing.
constexpr std::string_view kMadeByProgram = "qry Update Secondary heading names";

using Problems = std::vector<std::string>;

template <class T>
const T* FindNamed(const std::vector<T>& list, std::string_view name) {
    const auto found = std::find_if(list.begin(), list.end(),
                                    [&](const T& item) { return runtime::EqualName(item.name, name); });
    return found == list.end() ? nullptr : &*found;
}

std::string TypeText(const FieldDef& field) {
    switch (field.type) {
    case FieldType::Boolean:
        return "yes/no";
    case FieldType::Byte:
        return "byte";
    case FieldType::Integer:
        return "short";
    case FieldType::Long:
        return field.counter ? "counter" : "long";
    case FieldType::Currency:
        return "currency";
    case FieldType::Single:
        return "single";
    case FieldType::Double:
        return "double";
    case FieldType::Date:
        return "date";
    case FieldType::Text:
        return "text of " + std::to_string(field.size);
    case FieldType::Memo:
        return "memo";
    case FieldType::Guid:
        return "guid";
    case FieldType::Binary:
    case FieldType::LongBinary:
        return "binary";
    }
    return "another type";
}

bool SameFields(const IndexDef& left, const IndexDef& right) {
    return std::equal(left.fields.begin(), left.fields.end(), right.fields.begin(), right.fields.end(),
                      [](const std::string& a, const std::string& b) { return runtime::EqualName(a, b); });
}

void CompareTable(const TableDef& wanted, const TableDef& found, Problems& problems) {
    for (const FieldDef& field : wanted.fields) {
        const FieldDef* there = FindNamed(found.fields, field.name);
        const std::string name = "field " + field.name + " of table " + wanted.name;
        if (there == nullptr) {
            problems.push_back(name + " is missing");
            continue;
        }
        // A wider text field does no harm; a memo is the widest of all.
        const bool wider =
            field.type == FieldType::Text &&
            (there->type == FieldType::Memo ||
             (there->type == FieldType::Text && (there->size == 0 || there->size >= field.size)));
        if (!wider && (there->type != field.type || there->counter != field.counter ||
                       (field.type == FieldType::Text && there->size < field.size))) {
            problems.push_back(name + " is a " + TypeText(*there) + ", not a " + TypeText(field));
        }
    }
    for (const IndexDef& index : wanted.indexes) {
        const bool there =
            std::any_of(found.indexes.begin(), found.indexes.end(),
                        [&](const IndexDef& other) { return other.unique && SameFields(index, other); });
        if (index.unique && !there) {
            problems.push_back("table " + wanted.name + " has no unique index on " + index.fields.front());
        }
    }
}

void CompareDatabase(database::Database& wanted, database::Database& found, Problems& problems) {
    for (const TableDef& table : wanted.TableDefs()) {
        if (const TableDef* there = FindNamed(found.TableDefs(), table.name)) {
            CompareTable(table, *there, problems);
        } else {
            problems.push_back("table " + table.name + " is missing");
        }
    }
    for (const auto& query : wanted.QueryDefs()) {
        if (query->Name() != kMadeByProgram && !found.FindQueryDef(query->Name())) {
            problems.push_back("saved query " + query->Name() + " is missing");
        }
    }
}

FileCheck CheckDatabase(const fs::path& path, const DatabaseFile& file) {
    FileCheck check{path, {}};
    try {
        InstallationOptions plain;
        plain.level = InstallationLevel::Empty;
        const auto engine = database::CreateSqliteEngine();
        const auto found = engine->OpenDatabase(path.string(), true);
        const auto wanted = engine->OpenDatabase(TemplateOf(plain, file).string(), true);
        CompareDatabase(*wanted, *found, check.problems);
        const Problems broken = database::CheckIntegrity(path.string());
        check.problems.insert(check.problems.end(), broken.begin(), broken.end());
    } catch (const runtime::RunTimeError& error) {
        check.problems.push_back("error " + std::to_string(error.Number()) + ": " + error.Description());
    }
    return check;
}

InstallationLayout LayoutOf(const fs::path& folder) {
    std::error_code none;
    for (const auto& layout : {DocumentsLayout(folder), ScenarioLayout(folder)}) {
        if (fs::exists(layout.common / files::kSuiteIni, none)) {
            return layout;
        }
    }
    const auto scenario = ScenarioLayout(folder);
    return fs::is_directory(scenario.common, none) ? scenario : DocumentsLayout(folder);
}

// As the ini file tells; where it does not, at the usual places.
InstallationFiles FilesOf(const InstallationLayout& layout) {
    InstallationFiles found = UsualFiles(layout);
    const auto read = [&](std::string_view key) {
        return system::ReadProfileString("QUILLARY", key, "", found.ini.string());
    };
    const std::string data = read("DataRoot");
    if (!data.empty()) {
        found = UsualFiles({layout.common, system::ToNative(data), layout.program});
    }
    const auto take = [&](std::string_view key, fs::path& file) {
        if (const std::string value = read(key); !value.empty()) {
            file = system::ToNative(value);
        }
    };
    take("ModuleFileName", found.modules);
    take("DataFileName", found.farm);
    take("WageFileName", found.wages);
    take("DiaryFileName", found.diary);
    return found;
}

} // namespace

InstallationFiles FilesOfInstallation(const fs::path& folder) {
    return FilesOf(LayoutOf(fs::absolute(folder).lexically_normal()));
}

InstallationFiles UsualFiles(const InstallationLayout& layout) {
    return {layout.common / files::kSuiteIni, layout.common / files::kModuleData,
            layout.data / files::kFarmData, layout.data / files::kWageData, layout.data / files::kDiaryData};
}

InstallationFiles PlacesFor(const InstallationLayout& layout) {
    InstallationFiles places = UsualFiles(layout);
    const InstallationFiles told = FilesOf(layout);
    std::error_code none;
    for (fs::path InstallationFiles::*file : {&InstallationFiles::modules, &InstallationFiles::farm,
                                              &InstallationFiles::wages, &InstallationFiles::diary}) {
        if ((told.*file).is_absolute() && fs::is_directory((told.*file).parent_path(), none)) {
            places.*file = told.*file;
        }
    }
    return places;
}

std::vector<FileCheck> CheckInstallation(const fs::path& folder) {
    const InstallationFiles found = FilesOfInstallation(folder);
    std::vector<FileCheck> checks{{found.ini, {}}};
    if (!system::FileExists(found.ini.string())) {
        checks[0].problems.emplace_back("the file is missing");
    }
    const auto& databases = InstallationDatabases();
    checks.push_back(CheckDatabase(found.modules, databases[0]));
    checks.push_back(CheckDatabase(found.farm, databases[1]));
    checks.push_back(CheckDatabase(found.wages, databases[2]));
    checks.push_back(CheckDatabase(found.diary, databases[3]));
    return checks;
}

} // namespace quillary::config
