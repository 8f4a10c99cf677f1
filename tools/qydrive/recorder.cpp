#include "recorder.h"

#include "platform/runtime/dates.h"
#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/paths.h"

#include <algorithm>

namespace quillary::tools {

namespace fs = std::filesystem;
using namespace system;

namespace {

constexpr ProcessId kFirstProcess = 1000;
runtime::Date scenarioDate;

bool Offers(int buttons, int answer) {
    switch (buttons) {
    case kButtonsOk:
        return answer == kAnswerOk;
    case kButtonsOkCancel:
        return answer == kAnswerOk || answer == kAnswerCancel;
    case kButtonsYesNoCancel:
        return answer == kAnswerYes || answer == kAnswerNo || answer == kAnswerCancel;
    case kButtonsYesNo:
        return answer == kAnswerYes || answer == kAnswerNo;
    default:
        return false;
    }
}

int WayOut(int buttons) {
    return buttons == kButtonsOk ? kAnswerOk : buttons == kButtonsYesNo ? kAnswerNo : kAnswerCancel;
}

struct RecordedMessages : MessageBoxes {
    explicit RecordedMessages(Recorder& r) : recorder(r) {}
    int Show(const MessageRequest& request) override {
        if (recorder.over)
            return WayOut(request.buttons);
        recorder.messages.push_back(request);
        if (request.buttons == kButtonsOk) {
            // One button needs no answer, but may have one.
            if (!recorder.answers.empty() && recorder.answers.front() == kAnswerOk)
                recorder.answers.pop_front();
            return kAnswerOk;
        }
        if (recorder.answers.empty()) {
            recorder.fault("a message box asks and no answer is queued: \"" + request.prompt + "\"");
            return WayOut(request.buttons);
        }
        const int answer = recorder.answers.front();
        recorder.answers.pop_front();
        if (!Offers(request.buttons, answer)) {
            recorder.fault("the queued answer is on no button of the message box: \"" + request.prompt +
                           "\"");
            return WayOut(request.buttons);
        }
        return answer;
    }
    Recorder& recorder;
};

struct RecordedInputs : InputBoxes {
    explicit RecordedInputs(Recorder& r) : recorder(r) {}
    std::optional<std::string> Ask(const InputRequest& request) override {
        if (recorder.over)
            return std::nullopt;
        recorder.inputBoxes.push_back(request);
        if (recorder.inputs.empty()) {
            recorder.fault("an input box asks and no input is queued: \"" + request.prompt + "\"");
            return std::nullopt;
        }
        auto input = recorder.inputs.front();
        recorder.inputs.pop_front();
        if (input && request.maxLength > 0) // the box takes no more
            input = std::string(runtime::LeftChars(*input, static_cast<std::size_t>(request.maxLength)));
        return input;
    }
    Recorder& recorder;
};

struct RecordedReports : ErrorReports {
    explicit RecordedReports(Recorder& r) : recorder(r) {}
    void Report(const ErrorReportText& report) override {
        if (!recorder.over)
            recorder.reports.push_back(report);
    }
    Recorder& recorder;
};

struct ScenarioClock : Clock {
    runtime::Date Now() override { return scenarioDate; }
};

struct ScenarioFolders : Folders {
    explicit ScenarioFolders(fs::path f) : folder(std::move(f)) {}
    // The suite's folder below the common documents is a link to the scenario's common folder.
    std::string CommonDocuments() override { return (folder / "documents").string(); }
    std::string ConfigHome() override { return (folder / "config").string(); }
    std::string ProgramFolder() override { return (folder / "program").string(); }
    std::string Temp() override { return (folder / "temp").string(); }
    fs::path folder;
};

// The program as it is found: under its own name, or under it with ".exe".
std::optional<std::string> FindProgram(const std::string& program) {
    for (const std::string& name : {program, program + ".exe"})
        if (FileExists(name))
            return ToNative(name);
    return std::nullopt;
}

struct RecordedProcesses : Processes {
    explicit RecordedProcesses(Recorder& r) : recorder(r) {}
    ProcessId Launch(const std::string& program, const std::string& arguments) override {
        const auto found = FindProgram(program);
        if (!found)
            throw runtime::RunTimeError(runtime::kErrFileNotFound, "QYSettings",
                                        "File not found: " + program);
        recorder.started.push_back({*found, arguments});
        recorder.launches.push_back(recorder.started.size() - 1);
        return kFirstProcess + static_cast<ProcessId>(recorder.started.size()) - 1;
    }
    bool Running(ProcessId process) override {
        const auto* launch = Find(process);
        return launch && launch->running;
    }
    Window FindWindow(ProcessId process) override { return Running(process) ? process : 0; }
    void Activate(Window) override {}
    void CloseWindow(Window window) override {
        if (auto* launch = Find(window))
            launch->running = false;
    }
    tools::Launch* Find(ProcessId process) {
        const auto index = static_cast<std::size_t>(process - kFirstProcess);
        return process >= kFirstProcess && index < recorder.started.size() ? &recorder.started[index]
                                                                           : nullptr;
    }
    Recorder& recorder;
};

struct RecordedKeyboard : Keyboard {
    explicit RecordedKeyboard(Recorder& r) : recorder(r) {}
    void SendKey(int code, bool down) override {
        if (down)
            recorder.keys.push_back(code);
    }
    Recorder& recorder;
};

struct RecordedHelp : HelpViewer {
    explicit RecordedHelp(Recorder& r) : recorder(r) {}
    void Show(const std::string& path, int command, long context, const std::string&) override {
        recorder.helpCalls.push_back(path + " " + std::to_string(command) + " " + std::to_string(context));
    }
    void CloseAll() override { recorder.helpCalls.emplace_back("close all"); }
    Recorder& recorder;
};

struct NoFileDialogs : FileDialogs {
    std::optional<std::string> ChooseFile(const std::string&, const std::vector<FileFilter>&,
                                          const std::string&) override {
        return std::nullopt;
    }
};

} // namespace

Services RecordingServices(Recorder& recorder, const fs::path& folder) {
    Services services = MachineServices();
    services.messageBoxes = std::make_shared<RecordedMessages>(recorder);
    services.inputBoxes = std::make_shared<RecordedInputs>(recorder);
    services.errorReports = std::make_shared<RecordedReports>(recorder);
    services.clock = std::make_shared<ScenarioClock>();
    services.folders = std::make_shared<ScenarioFolders>(folder);
    services.processes = std::make_shared<RecordedProcesses>(recorder);
    services.keyboard = std::make_shared<RecordedKeyboard>(recorder);
    services.helpViewer = std::make_shared<RecordedHelp>(recorder);
    services.fileDialogs = std::make_shared<NoFileDialogs>();
    return services;
}

void SetScenarioDate(runtime::Date date) {
    scenarioDate = date;
    runtime::SetClock([] { return scenarioDate; });
}

} // namespace quillary::tools
