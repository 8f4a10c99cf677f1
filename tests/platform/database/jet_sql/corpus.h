#pragma once

#include "platform/runtime/run_time_error.h"

#include <string>
#include <vector>

namespace quillary::database::jet_sql {

struct CorpusStatement {
    std::string id;
    std::string kind; // select, update, delete, crosstab
    std::string sql;  // with plausible values for its placeholders
};

// Every statement that the program runs.
std::vector<CorpusStatement> ReadCorpus();

// The number of the run-time error that an action raises; 0 if it raises none.
template <class Action>
int ErrorOf(Action action, std::string* description = nullptr) {
    try {
        action();
    } catch (const runtime::RunTimeError& error) {
        if (description)
            *description = error.Description();
        return error.Number();
    }
    return 0;
}

} // namespace quillary::database::jet_sql
