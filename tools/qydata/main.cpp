#include "commands.h"

#include "platform/runtime/run_time_error.h"
#include "platform/system/program_version.h"

#include <exception>
#include <iostream>

namespace quillary::tools {

namespace {

constexpr const char* kUsage =
    R"(Usage:
  qydata new [--edition farm|business|club|diary] [--country 64|61|55|598] [--season YEAR] [--sample] FOLDER
      Makes an installation in FOLDER: settings, databases, pictures and help. What is there already is kept.
      --sample fills it with a farm that is lived in. Without it the program asks at its first start for what
      the farm needs. YEAR is the season to begin with, else the present year.
      The programs use it when QUILLARY_DOCUMENTS names FOLDER.
  qydata sql DB [STATEMENT] [--json] [--create]
      Runs a statement in Jet SQL on the database file DB, or a script of statements ended by ";" from standard
      input, or asks for statements at a prompt. --json prints each row as a JSON array, --create makes the file.
  qydata import FILE.mdb... [Quillary.ini] --into FOLDER [--edition farm|business|club|diary] [--country 64|61|55|598]
                [--code-page N] [--replace]
      Brings databases of the suite's old engine across: tables, rows, keys, relations and saved queries. With the
      main database among the files (Farm32.mdb, or what the Quillary.ini calls it), FOLDER becomes a whole
      installation, with the settings of the Quillary.ini that is given or lies beside it. An installation that is
      there already gets the files in their places. --replace takes the place of databases that are there and keeps
      them as a restore point. --code-page is for very old files that name a wrong one. Exit status 0: everything
      has come across; 3: done, but some things, which are listed, could not be carried; 1: an error, and nothing has
      been changed.
  qydata check FOLDER
      Opens every database of an installation and tells what is missing or broken.
  qydata restore FOLDER [POINT]
      Lists the restore points of an installation, newest first, which the programs make before they delete much
      at once. With POINT, a number or a name of that list, brings its databases back; no program may have them
      open. What they hold before that becomes a restore point itself.
  qydata --help
  qydata --version
)";

int Run(const Words& words) {
    if (words.empty()) {
        return WrongUse("no command given");
    }
    const Words rest(words.begin() + 1, words.end());
    if (words[0] == "--help" || words[0] == "-h" || words[0] == "help") {
        std::cout << kUsage;
        return 0;
    }
    if (words[0] == "--version") {
        std::cout << "qydata " << system::kProgramVersionText << "\n";
        return 0;
    }
    for (const std::string& word : rest) {
        if (word == "--help" || word == "-h") {
            std::cout << kUsage;
            return 0;
        }
    }
    if (words[0] == "new") {
        return NewCommand(rest);
    }
    if (words[0] == "sql") {
        return SqlCommand(rest);
    }
    if (words[0] == "import") {
        return ImportCommand(rest);
    }
    if (words[0] == "check") {
        return CheckCommand(rest);
    }
    if (words[0] == "restore") {
        return RestoreCommand(rest);
    }
    return WrongUse("unknown command '" + words[0] + "'");
}

} // namespace

int WrongUse(const std::string& fault) {
    std::cerr << "qydata: " << fault << "\n" << kUsage;
    return 2;
}

} // namespace quillary::tools

int main(int argc, char** argv) {
    try {
        const int status = quillary::tools::Run({argv + 1, argv + argc});
        std::cout.flush();
        if (std::cout || status != 0) {
            return status;
        }
        std::cerr << "error 61: not all of the output could be written; the disk may be full." << std::endl;
    } catch (const quillary::runtime::RunTimeError& error) {
        std::cout.flush();
        std::cerr << "error " << error.Number() << ": " << error.Description() << std::endl;
    } catch (const std::exception& error) {
        std::cout.flush();
        std::cerr << "error 51: " << error.what() << std::endl; // internal error
    }
    return 1;
}
