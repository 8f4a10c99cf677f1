#pragma once

#include <cstdint>
#include <string>

// How far the import of a file is: a bar on a terminal, else a line for each table.
namespace quillary::tools {

class ImportProgress {
public:
    explicit ImportProgress(std::string file);
    ~ImportProgress(); // takes the bar away
    ImportProgress(const ImportProgress&) = delete;
    ImportProgress& operator=(const ImportProgress&) = delete;

    // rows equal to total: the table is done.
    void Show(const std::string& table, std::int64_t rows, std::int64_t total);

private:
    std::string file_;
    bool terminal_;
};

} // namespace quillary::tools
