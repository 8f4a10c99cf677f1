#include "commands.h"
#include "editions.h"
#include "import_job.h"

#include "config/installation_check.h"
#include "config/suite_files.h"
#include "platform/database/errors.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/ini_file.h"
#include "platform/system/paths.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <csignal>

#include <unistd.h>

namespace quillary::tools {

namespace fs = std::filesystem;
using runtime::EqualName;
using runtime::RunTimeError;

namespace {

constexpr int kErrFileExists = 3204;
constexpr std::string_view kPartEnding = ".part";

struct Wrong {
    std::string fault;
};

ImportJob JobOf(const Words& words) {
    ImportJob job;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (word == "--replace") {
            job.replace = true;
        } else if (word == "--into" || word == "--edition" || word == "--country" || word == "--code-page") {
            if (++i == words.size()) {
                throw Wrong{word + " needs a value"};
            }
            if (word == "--into") {
                job.into = words[i];
            } else if (word == "--edition") {
                job.edition = EditionOf(words[i]);
                if (!job.edition) {
                    throw Wrong{"unknown edition '" + words[i] + "'"};
                }
            } else if (word == "--code-page") {
                job.codePage = NumberOf(words[i]).value_or(0);
                if (job.codePage <= 0) {
                    throw Wrong{"not a code page: '" + words[i] + "'"};
                }
            } else {
                job.country = CountryOf(words[i]);
                if (!job.country) {
                    throw Wrong{"unknown country '" + words[i] + "'"};
                }
            }
        } else if (word.starts_with("-") && word.size() > 1) {
            throw Wrong{"unknown option '" + word + "'"};
        } else if (EqualName(fs::path(word).extension().string(), ".ini")) {
            if (!job.ini.empty()) {
                throw Wrong{"more than one settings file given"};
            }
            job.ini = word;
        } else if (!fs::path(word).has_filename()) {
            throw Wrong{"'" + word + "' is no name of a file"};
        } else {
            job.files.push_back({fs::path(word), {}, {}, {}});
        }
    }
    if (job.files.empty()) {
        throw Wrong{"no file given"};
    }
    if (job.into.empty()) {
        throw Wrong{"no folder given; name it behind --into"};
    }
    job.into = fs::absolute(job.into).lexically_normal();
    return job;
}

// The suite's settings, where they lie beside the main database.
fs::path IniBeside(const fs::path& file) {
    std::error_code none;
    const fs::path folder = file.parent_path().empty() ? fs::path(".") : file.parent_path();
    for (const auto& entry : fs::directory_iterator(folder, none)) {
        if (EqualName(entry.path().filename().string(), config::files::kSuiteIni)) {
            return entry.path();
        }
    }
    return {};
}

struct Role {
    std::string_view name; // of the file in a new installation
    std::string_view key;  // of the setting that may call it otherwise
    fs::path config::InstallationFiles::*place;
};
constexpr Role kRoles[] = {
    {config::files::kFarmData, "DataFileName", &config::InstallationFiles::farm},
    {config::files::kWageData, "WageFileName", &config::InstallationFiles::wages},
    {config::files::kDiaryData, "DiaryFileName", &config::InstallationFiles::diary},
    {config::files::kModuleData, "ModuleFileName", &config::InstallationFiles::modules}};

// What the file is by its name: by the one in the settings of the other machine, else by the usual one.
const Role* RoleOf(const fs::path& file, const fs::path& ini) {
    const std::string name = file.filename().string();
    for (const Role& role : kRoles) {
        const std::string told =
            ini.empty() ? std::string()
                        : system::ReadProfileString("QUILLARY", role.key, "", fs::absolute(ini).string());
        if (EqualName(name, told.empty() ? role.name : system::FileNameOf(told))) {
            return &role;
        }
    }
    return nullptr;
}

// The main database makes it a whole installation, if it is none yet; its files have places and names of
// their own.
void SetTargets(ImportJob& job) {
    std::vector<const Role*> roles;
    const fs::path given = job.ini;
    for (const auto& file : job.files) {
        const fs::path ini = given.empty() ? IniBeside(file.source) : given;
        roles.push_back(RoleOf(file.source, ini));
        if (roles.back() == &kRoles[0]) {
            job.ini = ini;
        }
    }
    job.layout = config::DocumentsLayout(job.into);
    std::error_code none;
    job.installation = std::count(roles.begin(), roles.end(), &kRoles[0]) > 0 || job.edition || job.country ||
                       !job.ini.empty() || fs::exists(job.layout.common / config::files::kSuiteIni, none);
    // The settings of the other machine, where they take the place of those that are here, name the usual
    // places.
    const config::InstallationFiles places =
        job.replace && !job.ini.empty() ? config::UsualFiles(job.layout) : config::PlacesFor(job.layout);
    for (std::size_t i = 0; i < job.files.size(); ++i) {
        ImportJob::File& file = job.files[i];
        file.target = (job.installation ? job.layout.data : job.into) / file.source.filename();
        if (job.installation && roles[i] != nullptr) {
            file.role = roles[i]->name;
            file.target = places.*roles[i]->place;
        }
        file.part = file.target.string() + "." + std::to_string(getpid()) + std::string(kPartEnding);
    }
}

// Left by an import that was killed together with its watcher.
void RemoveAbandoned(const fs::path& target) {
    std::error_code none;
    const std::string head = target.filename().string() + ".";
    for (const auto& entry : fs::directory_iterator(target.parent_path(), none)) {
        std::string name = entry.path().filename().string();
        for (const std::string_view side : {"-journal", "-wal", "-shm"}) {
            name.resize(name.size() - (name.ends_with(side) ? side.size() : 0));
        }
        if (!name.starts_with(head) || !name.ends_with(kPartEnding) ||
            name.size() <= head.size() + kPartEnding.size()) {
            continue;
        }
        const char* const begin = name.data() + head.size();
        const char* const end = name.data() + name.size() - kPartEnding.size();
        pid_t maker = 0;
        const auto read = std::from_chars(begin, end, maker);
        if (read.ec == std::errc() && read.ptr == end && maker > 0 && kill(maker, 0) != 0 && errno == ESRCH) {
            fs::remove(entry.path(), none);
        }
    }
}

void CheckTargets(const ImportJob& job) {
    std::error_code none;
    if (!job.ini.empty() && !fs::is_regular_file(job.ini, none)) {
        throw RunTimeError(database::kErrFileNotFound, "", "Could not find file '" + job.ini.string() + "'.");
    }
    for (auto file = job.files.begin(); file != job.files.end(); ++file) {
        const bool twice = std::any_of(job.files.begin(), file, [&](const ImportJob::File& other) {
            return EqualName(other.target.string(), file->target.string());
        });
        if (twice) {
            throw RunTimeError(kErrFileExists, "",
                               "Two of the files would become '" + file->target.string() +
                                   "'. Import them into different folders.");
        }
        RemoveAbandoned(file->target);
        if (!fs::exists(file->target, none)) {
            continue;
        }
        if (fs::equivalent(file->source, file->target, none)) {
            throw RunTimeError(kErrFileExists, "",
                               "'" + file->target.string() +
                                   "' would take its own place. Import it into another folder.");
        }
        if (!job.replace) {
            RaiseTargetExists(file->target);
        }
    }
}

} // namespace

int ImportCommand(const Words& words) {
    ImportJob job;
    try {
        job = JobOf(words);
    } catch (const Wrong& wrong) {
        return WrongUse(wrong.fault);
    }
    SetTargets(job);
    CheckTargets(job);
    return RunGuarded(job);
}

} // namespace quillary::tools
