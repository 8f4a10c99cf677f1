#include "commands.h"
#include "editions.h"

#include "config/installation.h"

#include <iostream>
#include <optional>

namespace quillary::tools {

int NewCommand(const Words& words) {
    config::InstallationOptions options;
    std::optional<std::string> folder;
    bool sample = false, placed = false;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const std::string& word = words[i];
        if (word == "--sample") {
            sample = true;
        } else if (word == "--edition" || word == "--country" || word == "--season") {
            if (++i == words.size()) {
                return WrongUse(word + " needs a value");
            }
            const std::string& value = words[i];
            const auto number = NumberOf(value);
            if (word == "--edition") {
                const auto edition = EditionOf(value);
                if (!edition) {
                    return WrongUse("unknown edition '" + value + "'");
                }
                options.moduleNumber = *edition;
            } else if (word == "--country") {
                if (!number || !config::IsSupportedCountry(*number)) {
                    return WrongUse("unknown country '" + value + "'");
                }
                options.country = *number;
                placed = placed || *number != config::kNewZealand;
            } else {
                // The season is kept as the year less 1900, and the program takes years up to 89 as unset.
                if (!number || *number < 1990 || *number > 2899) {
                    return WrongUse("not a season: '" + value + "'");
                }
                options.season = *number;
                placed = true;
            }
        } else if (word.starts_with("-") && word.size() > 1) {
            return WrongUse("unknown option '" + word + "'");
        } else if (folder) {
            return WrongUse("more than one folder given");
        } else {
            folder = word;
        }
    }
    if (!folder || folder->empty()) {
        return WrongUse("no folder given");
    }
    if (sample && placed) {
        return WrongUse("the sample farm has its own country and season");
    }
    options.level = sample ? config::InstallationLevel::Sample : config::InstallationLevel::New;
    options.layout = config::DocumentsLayout(*folder);
    const auto report = config::MakeInstallation(options);
    for (const auto& path : report.made) {
        std::cout << "made " << path.string() << "\n";
    }
    for (const auto& path : report.kept) {
        std::cout << "kept " << path.string() << "\n";
    }
    return 0;
}

} // namespace quillary::tools
