#pragma once

#include <string>
#include <vector>

// The commands of qydata, each on the words behind its name. The result is the exit status: 0 done, 1 an
// error (told on standard error), 2 wrong use (told with the usage).
namespace quillary::tools {

using Words = std::vector<std::string>;

int NewCommand(const Words& words);
int SqlCommand(const Words& words);
int CheckCommand(const Words& words);
int ImportCommand(const Words& words); // 3: done, but something could not be carried
int RestoreCommand(const Words& words);

// Prints the fault and the usage on standard error.
int WrongUse(const std::string& fault);

} // namespace quillary::tools
