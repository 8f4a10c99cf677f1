#pragma once

#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

// A scenario file as commands.
namespace quillary::tools {

struct Command {
    int line = 0;
    std::vector<std::string> words; // the first is the command's name
    std::string rest;               // `sql DB` and `ini-raw`: the line behind the name (and DB), as it stands
};

// Something in a scenario that does not hold or cannot be done; the text tells what was expected and what
// was there.
struct ScenarioFault : std::runtime_error {
    using std::runtime_error::runtime_error;
};

// What the scenario plays in is not on this machine.
struct ScenarioSkip {
    std::string reason;
};

// The words of a line: separated by blanks, or in double quotes, where \" \\ \n \r \t stand for themselves.
// Raises ScenarioFault for a quote without its end.
std::vector<std::string> SplitWords(std::string_view line);

// One command a line; lines that are empty or begin with "#" are passed over. line: for ScenarioFault,
// where reading stopped.
std::vector<Command> ParseScript(std::string_view text, int& line);

} // namespace quillary::tools
