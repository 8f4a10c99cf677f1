#pragma once

#include "platform/system/services.h"

#include <deque>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>

// The services of a played program: boxes are answered from queues, and what the program shows, starts and
// sends is kept for the checks.
namespace quillary::tools {

struct Launch {
    std::string program; // native path
    std::string arguments;
    bool running = true;
};

struct Recorder {
    std::deque<int> answers;                       // to message boxes to come
    std::deque<std::optional<std::string>> inputs; // to input boxes to come; nullopt is Cancel

    std::deque<system::MessageRequest> messages; // not yet checked, as all below
    std::deque<system::InputRequest> inputBoxes;
    std::deque<system::ErrorReportText> reports;
    std::deque<std::size_t> launches; // positions in started
    std::deque<std::string> helpCalls;
    std::deque<int> keys;
    std::deque<Launch> started; // all of the scenario

    // Called with what a user could not have done (a question that the scenario does not answer).
    std::function<void(const std::string&)> fault = [](const std::string&) {};
    // The scenario is over: what still asks is cancelled without a fault.
    bool over = false;
};

// Services that record. folder: the scenario's own; config home and temporary files lie below it too.
system::Services RecordingServices(Recorder& recorder, const std::filesystem::path& folder);

// The clock of the scenario, as runtime::Now and the services see it.
void SetScenarioDate(runtime::Date date);

} // namespace quillary::tools
