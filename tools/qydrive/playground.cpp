#include "playground.h"

#include "config/globals.h"
#include "config/installation.h"
#include "config/installation_check.h"
#include "config/installation_completion.h"
#include "platform/system/ini_file.h"
#include "platform/system/paths.h"
#include "script.h"
#include "text/row_text.h"

#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>

namespace quillary::tools {

namespace fs = std::filesystem;

namespace {

constexpr int kDefaultEdition = 14;
constexpr const char* kDefaultKey = "ALL";
constexpr const char* kFolderLevel = "folder";
// Given back by the ini reader where a key is not there.
constexpr const char* kAbsent = "\x01";

// A picture of two by two grey points.
constexpr unsigned char kPicture[] = {
    'B',  'M',  70,   0,    0,    0,    0,    0,    0,    0,    54,   0,    0,    0,    40, 0, 0,  0,
    2,    0,    0,    0,    2,    0,    0,    0,    1,    0,    24,   0,    0,    0,    0,  0, 16, 0,
    0,    0,    0x13, 0x0B, 0,    0,    0x13, 0x0B, 0,    0,    0,    0,    0,    0,    0,  0, 0,  0,
    0x80, 0x80, 0x80, 0xC0, 0xC0, 0xC0, 0,    0,    0xC0, 0xC0, 0xC0, 0x80, 0x80, 0x80, 0,  0};

const std::map<std::string, std::string> kDatabases = {{"farm", "data/Farm32.mdb"},
                                                       {"wage", "data/Wage32.mdb"},
                                                       {"diary", "data/Diary.mdb"},
                                                       {"modules", "common/Modules.mdb"}};

void MakeParent(const fs::path& file) {
    fs::create_directories(file.parent_path());
}

} // namespace

Playground::Playground() {
    std::string name = (fs::temp_directory_path() / "qydrive-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr)
        throw ScenarioFault("no temporary folder can be made in " + fs::temp_directory_path().string());
    folder_ = name;
    fs::create_directories(folder_ / "documents/Quillary");
    fs::create_directory(folder_ / "config");
    fs::create_directory(folder_ / "temp");
    fs::create_directory(folder_ / "common");
    fs::create_directory_symlink("../../common", folder_ / "documents/Quillary/Common");
    fs::create_directory_symlink("../data", folder_ / "documents/data");
}

Playground::~Playground() {
    config::DbEngine().ReleaseIdle();
    std::error_code ignored;
    if (!keep_)
        fs::remove_all(folder_, ignored);
}

void Playground::Use(std::string_view level) {
    if (used_ || (prepared_ && level != level_))
        throw ScenarioFault("`use` stands once in a scenario, before `start`");
    used_ = true;
    level_ = level;
    Prepare();
}

void Playground::ForeseeFolder(const std::string& path) {
    level_ = kFolderLevel;
    source_ = path;
}

void Playground::UseFolder(const std::string& path) {
    if (!prepared_)
        ForeseeFolder(path);
    Use(kFolderLevel);
}

void Playground::CopyInstallation() {
    fs::path folder = source_;
    if (source_.starts_with("$")) {
        const std::size_t end = source_.find('/');
        const std::string name = source_.substr(1, end == std::string::npos ? end : end - 1);
        const char* const value = std::getenv(name.c_str());
        if (value == nullptr || *value == '\0')
            throw ScenarioSkip{name + " names no installation"};
        folder = value + (end == std::string::npos ? "" : source_.substr(end));
    }
    const config::InstallationFiles files = config::FilesOfInstallation(folder);
    if (!fs::exists(files.ini))
        throw ScenarioSkip{"there is no installation in " + folder.string()};
    const config::InstallationLayout layout = config::ScenarioLayout(folder_);
    fs::create_directories(layout.common);
    fs::create_directories(layout.data);
    config::InstallationOptions options;
    options.layout = layout;
    const config::InstallationFiles copies = config::UsualFiles(layout);
    for (const auto& [file, copy] : {std::pair{files.modules, copies.modules},
                                     {files.farm, copies.farm},
                                     {files.wages, copies.wages},
                                     {files.diary, copies.diary}}) {
        if (!fs::exists(file))
            continue;
        config::DbEngine().BackupDatabase(file.string(), copy.string());
        config::CompleteDatabase(copy, copy.filename().string(), options, false);
    }
    config::TakeOverSettings(files.ini, layout);
    config::MakeInstallation(options);
}

void Playground::Prepare() {
    if (prepared_)
        return;
    if (level_ == kFolderLevel) {
        prepared_ = true;
        CopyInstallation();
        return;
    }
    config::InstallationOptions options;
    options.layout = config::ScenarioLayout(folder_);
    options.moduleNumber = kDefaultEdition;
    options.moduleKey = kDefaultKey;
    if (level_ == "empty")
        options.level = config::InstallationLevel::Empty;
    else if (level_ == "minimal")
        options.level = config::InstallationLevel::Minimal;
    else if (level_ == "sample")
        options.level = config::InstallationLevel::Sample;
    else if (level_ == "new")
        options.level = config::InstallationLevel::New;
    else
        throw ScenarioFault("`use` takes empty, minimal, new, sample, or folder with a path");
    if (level_ == "new" || level_ == "sample")
        options.moduleKey.clear();
    config::MakeInstallation(options);
    prepared_ = true;
}

fs::path Playground::IniFile() const {
    return folder_ / "common/Quillary.ini";
}

void Playground::SetEdition(int number, const std::string& key) {
    auto db = Open("modules");
    auto catalogue = db->OpenRecordset("Catalogue", database::RecordsetType::Dynaset);
    if (catalogue->EOF_())
        catalogue->AddNew();
    else
        catalogue->Edit();
    (*catalogue)["ModuleNumber"] = number;
    (*catalogue)["ModuleKey"] = key;
    catalogue->Update();
}

void Playground::SetIni(const std::string& section, const std::string& key, const std::string& value) {
    Prepare();
    if (!system::WriteProfileString(section, key, value, IniFile().string()))
        throw ScenarioFault("the ini file cannot be written");
}

void Playground::AppendIniLine(const std::string& line) {
    Prepare();
    std::ofstream(IniFile(), std::ios::app | std::ios::binary) << line << "\r\n";
}

void Playground::RemoveIni() {
    Prepare();
    fs::remove(IniFile());
}

void Playground::SetWinIni(const std::string& section, const std::string& key, const std::string& value) {
    const fs::path file = folder_ / "config/WIN.INI";
    if (!fs::exists(file))
        std::ofstream(file).flush();
    if (!system::WriteProfileString(section, key, value, file.string()))
        throw ScenarioFault("WIN.INI cannot be written");
}

std::shared_ptr<database::Database> Playground::Open(const std::string& database) {
    Prepare();
    const auto found = kDatabases.find(database);
    if (found == kDatabases.end())
        throw ScenarioFault("there is no database \"" + database + "\": farm, wage, diary, modules");
    return config::DbEngine().OpenDatabase((folder_ / found->second).string());
}

void Playground::RunSql(const std::string& database, const std::string& statement) {
    Open(database)->Execute(statement, database::kFailOnError);
}

void Playground::DropQuery(const std::string& database, const std::string& name) {
    Open(database)->DeleteQueryDef(name);
}

void Playground::MakeFile(const std::string& path) {
    Prepare();
    MakeParent(Below(path));
    std::ofstream(Below(path)).flush();
}

void Playground::MakePicture(const std::string& path) {
    Prepare();
    MakeParent(Below(path));
    std::ofstream(Below(path), std::ios::binary)
        .write(reinterpret_cast<const char*>(kPicture), sizeof kPicture);
}

std::string Playground::IniValue(const std::string& section, const std::string& key) const {
    return system::ReadProfileString(section, key, "", IniFile().string());
}

bool Playground::IniHolds(const std::string& section, const std::string& key) const {
    return system::ReadProfileString(section, key, kAbsent, IniFile().string()) != kAbsent;
}

std::vector<std::string> Playground::Query(const std::string& database, const std::string& sql) {
    auto db = Open(database);
    auto rows = db->OpenRecordset(sql, database::RecordsetType::Snapshot);
    std::vector<std::string> result;
    for (; !rows->EOF_(); rows->MoveNext()) {
        std::string row;
        for (int field = 0; field < rows->FieldCount(); ++field)
            row += (field == 0 ? "" : "|") + PlainText((*rows)[field].Value());
        result.push_back(std::move(row));
    }
    return result;
}

std::vector<std::string> Playground::LogLines() const {
    std::ifstream file(folder_ / "common/QYErrors.log", std::ios::binary);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) {
        if (line.ends_with('\r'))
            line.pop_back();
        lines.push_back(line);
    }
    return lines;
}

fs::path Playground::Below(const std::string& path) const {
    return folder_ / path;
}

std::string Playground::Relative(std::string_view path) const {
    if (path.empty())
        return {};
    // The folders are reached through links, too: see the constructor.
    const std::string native = fs::weakly_canonical(system::ToNative(path)).string();
    const std::string root = fs::weakly_canonical(folder_).string() + "/";
    return native.starts_with(root) ? native.substr(root.size()) : native;
}

} // namespace quillary::tools
