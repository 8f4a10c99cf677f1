#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace quillary::database {
class Database;
}

namespace quillary::config {

// Types of help menu entries; others open the file itself.
inline constexpr std::int32_t kHelpAtFormContext = 1; // also: the default help file
inline constexpr std::int32_t kHelpAtHowDoI = 2;

struct MenuEntry {
    std::string caption;
    bool visible = false;
    std::string group; // "Modules", "Help", "Tools", "Reports"
    std::string fileName;
    std::int32_t helpType = 0;
};

// What the suite knows of this installation: the edition, the menus with their help files, the numbers of
// help pages. It lies in Modules.mdb, in Catalogue (one row), MenuEntries and HelpContexts. Null and
// missing rows read as 0 and "". The database stays open as long as the object lives; everything may raise
// the engine's errors, the constructor too.
class ModuleCatalogue {
public:
    ModuleCatalogue();

    std::int32_t ModuleNumber() const;
    std::string ModuleKey() const;
    std::string ProgramPath() const;
    std::vector<MenuEntry> MenuEntries() const; // in menu order
    // Case and blanks at the end do not count. False leaves the entry as it is.
    bool FindEntryByCaption(std::string_view caption, MenuEntry& entry) const;
    std::int32_t FormContext(std::int32_t number) const;
    std::int32_t HowDoIContext(std::int32_t number) const;

private:
    std::shared_ptr<database::Database> database_;
};

} // namespace quillary::config
