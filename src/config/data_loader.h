#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace quillary::database {
class Database;
}

// Runs the files of the data folder against a database: scripts in Jet SQL, and tables as text. A failure
// is raised with the engine's number; its description names the file and the line.
namespace quillary::config {

// Values for the words in braces of a file, by word: "season" for {season}.
using Placeholders = std::map<std::string, std::string, std::less<>>;

// The text with its words in braces replaced; an unknown word stays as it is.
std::string FillPlaceholders(std::string_view text, const Placeholders& values);

// Statements ended by ";". Values are put in as parts of quoted text: apostrophes are doubled.
void RunScript(database::Database& database, std::string_view script, const Placeholders& values);

// Rows of one table: the first line names the fields, tabs separate the values, an empty value is Null,
// dates are YYYY-MM-DD, True is -1.
void LoadRows(database::Database& database, std::string_view table, std::string_view text);

// A file by its name: "NN-subject.sql" a script, "NN-Table.tsv" rows of that table.
void LoadFile(database::Database& database, const std::filesystem::path& file, const Placeholders& values);
// All files of a folder in the order of their names. A folder that is not there holds none.
void LoadFolder(database::Database& database, const std::filesystem::path& folder,
                const Placeholders& values);

} // namespace quillary::config
