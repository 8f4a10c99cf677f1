#include "platform/system/machine.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>

namespace quillary::system {

namespace {

std::string Environment(const char* name) {
    const char* value = std::getenv(name);
    return value ? value : "";
}

std::string Home() {
    if (std::string home = Environment("HOME"); !home.empty())
        return home;
    const passwd* user = ::getpwuid(::getuid());
    return user && user->pw_dir ? user->pw_dir : "";
}

// A folder of the desktop's base directories: a relative value does not count. Empty without a home.
std::string BaseFolder(const char* name, std::string_view belowHome) {
    if (std::string folder = Environment(name); folder.starts_with('/'))
        return folder;
    const std::string home = Home();
    return home.empty() ? home : home + std::string(belowHome);
}

class FoldersOfMachine : public Folders {
public:
    std::string CommonDocuments() override {
        if (std::string folder = Environment("QUILLARY_DOCUMENTS"); !folder.empty())
            return folder;
        const std::string base = BaseFolder("XDG_DATA_HOME", "/.local/share");
        return base.empty() ? base : base + "/quillary";
    }
    std::string ConfigHome() override { return BaseFolder("XDG_CONFIG_HOME", "/.config"); }
    std::string ProgramFolder() override {
        std::error_code error;
        return std::filesystem::read_symlink("/proc/self/exe", error).parent_path().string();
    }
    std::string Temp() override {
        std::error_code error;
        const auto folder = std::filesystem::temp_directory_path(error);
        return error ? "/tmp" : folder.string();
    }
};

} // namespace

std::shared_ptr<Folders> MachineFolders() {
    return std::make_shared<FoldersOfMachine>();
}

} // namespace quillary::system
