#include "commands.h"

#include "config/installation_check.h"

#include <iostream>

namespace quillary::tools {

int CheckCommand(const Words& words) {
    for (const std::string& word : words) {
        if (word.starts_with("-") && word.size() > 1) {
            return WrongUse("unknown option '" + word + "'");
        }
    }
    if (words.size() != 1 || words[0].empty()) {
        return WrongUse(words.size() > 1 ? "more than one folder given" : "no folder given");
    }
    bool whole = true;
    for (const auto& check : config::CheckInstallation(words[0])) {
        if (check.problems.empty()) {
            std::cout << check.file.string() << ": ok\n";
        }
        for (const std::string& problem : check.problems) {
            std::cout << check.file.string() << ": " << problem << "\n";
            whole = false;
        }
    }
    return whole ? 0 : 1;
}

} // namespace quillary::tools
