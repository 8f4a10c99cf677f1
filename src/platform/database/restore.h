#pragma once

#include <string>
#include <vector>

namespace quillary::database {

struct RestoredFile {
    std::string path; // what is replaced; may be missing
    std::string copy; // a database that takes its place, and is kept
};

// Puts the content of the copies in place of the files, native paths both. All files are locked first, so
// that none is changed unless all can be. A file is replaced as a whole or, when the program ends half way,
// not at all. 3045 when another program (or this one) has a file open, 3343 when a copy or a file is no
// database, 3024 when a copy is missing. begun: set once the first file is about to be replaced; an error
// from then on (a full disk) leaves some files replaced and others not.
void RestoreDatabases(const std::vector<RestoredFile>& files, bool* begun = nullptr);

} // namespace quillary::database
