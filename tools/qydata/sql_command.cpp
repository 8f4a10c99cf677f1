#include "commands.h"
#include "text/row_text.h"

#include "config/globals.h"
#include "platform/database/engine.h"
#include "platform/database/sql_script.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/paths.h"

#include <iostream>
#include <iterator>
#include <optional>

#include <unistd.h>

namespace quillary::tools {

namespace {

void PrintError(const runtime::RunTimeError& error) {
    std::cout.flush();
    std::cerr << "error " << error.Number() << ": " << error.Description() << std::endl;
}

class Shell {
public:
    Shell(database::Database& database, bool json) : database_(database), json_(json) {}

    // Whether it went well; else the error has been printed. tell: print the number of changed rows.
    bool Run(const std::string& statement, bool tell = false) {
        try {
            if (!GivesRows(database_, statement)) {
                database_.Execute(statement, database::kFailOnError);
                if (tell) {
                    std::cout << database_.RecordsAffected() << " rows changed\n";
                }
                return true;
            }
            const auto rows = database_.OpenRecordset(statement, database::RecordsetType::Snapshot);
            if (json_) {
                PrintJson(*rows, std::cout);
            } else {
                PrintTable(*rows, std::cout);
            }
            return true;
        } catch (const runtime::RunTimeError& error) {
            PrintError(error);
            return false;
        }
    }

    // Stops at the first error.
    bool RunScript(const std::string& script) {
        for (const auto& piece : database::SplitScript(script)) {
            if (!Run(piece.text)) {
                return false;
            }
        }
        return true;
    }

    void Prompt() {
        std::cout << "A statement ends with \";\". The word exit, or Ctrl+D, ends this.\n";
        std::string pending, line;
        while (std::cout << (pending.empty() ? "quillary> " : "     ...> ") << std::flush,
               std::getline(std::cin, line)) {
            if (pending.empty() && (line == "quit" || line == "exit" || line == "exit;")) {
                return;
            }
            pending += line + "\n";
            if (database::EndsStatement(pending)) {
                for (const auto& piece : database::SplitScript(pending)) {
                    Run(piece.text, true);
                }
                pending.clear();
            } else if (database::SplitScript(pending).empty()) {
                pending.clear(); // blank lines and notes
            }
        }
        std::cout << "\n";
    }

private:
    database::Database& database_;
    bool json_;
};

} // namespace

int SqlCommand(const Words& words) {
    bool json = false, create = false;
    std::vector<std::string> given;
    for (const std::string& word : words) {
        if (word == "--json") {
            json = true;
        } else if (word == "--create") {
            create = true;
        } else if (word.starts_with("-") && word.find(' ') == std::string::npos) {
            return WrongUse("unknown option '" + word + "'");
        } else {
            given.push_back(word);
        }
    }
    if (given.empty()) {
        return WrongUse("no database given");
    }
    if (given.size() > 2) {
        return WrongUse("more than one statement given; put quotes around it");
    }
    auto& engine = config::DbEngine();
    const auto database = create && !system::FileExists(given[0]) ? engine.CreateDatabase(given[0])
                                                                  : engine.OpenDatabase(given[0]);
    Shell shell(*database, json);
    if (given.size() == 2) {
        return shell.Run(std::string(runtime::Trim(given[1]))) ? 0 : 1;
    }
    if (::isatty(STDIN_FILENO) != 0) {
        shell.Prompt();
        return 0;
    }
    const std::string script{std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>()};
    return shell.RunScript(script) ? 0 : 1;
}

} // namespace quillary::tools
