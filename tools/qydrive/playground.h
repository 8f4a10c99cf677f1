#pragma once

#include "platform/database/engine.h"

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

// The installation that a scenario plays in: a temporary folder with common, data and program.
namespace quillary::tools {

class Playground {
public:
    Playground();
    ~Playground(); // removes the folder, unless it is kept
    Playground(const Playground&) = delete;
    Playground& operator=(const Playground&) = delete;

    const std::filesystem::path& Folder() const { return folder_; }
    void Keep() { keep_ = true; }

    // The `use` that is to come: commands before it set up its installation already.
    void Foresee(std::string_view level) { level_ = level; }
    void ForeseeFolder(const std::string& path);
    // "empty", "minimal", "new" or "sample". Once, and not after an installation of another kind has been
    // made.
    void Use(std::string_view level);
    // A copy of the installation in a folder. A path that begins with "$NAME" is continued from that variable
    // of the environment, a relative one from the scenario's own folder. ScenarioSkip when there is none.
    void UseFolder(const std::string& path);
    // Makes the installation where it has not been made yet.
    void Prepare();

    void SetEdition(int number, const std::string& key);
    void SetIni(const std::string& section, const std::string& key, const std::string& value);
    void AppendIniLine(const std::string& line);
    void RemoveIni();
    void SetWinIni(const std::string& section, const std::string& key, const std::string& value);
    void RunSql(const std::string& database, const std::string& statement);
    void DropQuery(const std::string& database, const std::string& name);
    void MakeFile(const std::string& path);
    void MakePicture(const std::string& path);

    std::string IniValue(const std::string& section, const std::string& key) const;
    bool IniHolds(const std::string& section, const std::string& key) const;
    // A row a text, its fields joined by "|".
    std::vector<std::string> Query(const std::string& database, const std::string& sql);
    // The lines of the error log; none when there is no log.
    std::vector<std::string> LogLines() const;
    // A path of the program as the scenario names it: below the folder, with "/".
    std::string Relative(std::string_view path) const;
    std::filesystem::path Below(const std::string& path) const;

private:
    void CopyInstallation();
    std::shared_ptr<database::Database> Open(const std::string& database);
    std::filesystem::path IniFile() const;

    std::filesystem::path folder_;
    std::string level_ = "empty";
    std::string source_; // the folder of `use folder`
    bool used_ = false;  // `use` has been played
    bool prepared_ = false;
    bool keep_ = false;
};

} // namespace quillary::tools
