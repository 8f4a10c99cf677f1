#include "platform/system/services.h"

#include "platform/runtime/dates.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/machine.h"

#include <ctime>

namespace quillary::system {

namespace {

[[noreturn]] void Missing() {
    throw runtime::RunTimeError(runtime::kErrObjectNotSet);
}

struct NoMessageBoxes : MessageBoxes {
    int Show(const MessageRequest&) override { Missing(); }
};
struct NoInputBoxes : InputBoxes {
    std::optional<std::string> Ask(const InputRequest&) override { Missing(); }
};
struct NoErrorReports : ErrorReports {
    void Report(const ErrorReportText&) override { Missing(); }
};
struct NoKeyboard : Keyboard {
    void SendKey(int, bool) override { Missing(); }
};
struct NoHelpViewer : HelpViewer {
    void Show(const std::string&, int, long, const std::string&) override { Missing(); }
    void CloseAll() override { Missing(); }
};
struct NoFileDialogs : FileDialogs {
    std::optional<std::string> ChooseFile(const std::string&, const std::vector<FileFilter>&,
                                          const std::string&) override {
        Missing();
    }
};

struct MachineClock : Clock {
    runtime::Date Now() override {
        const std::time_t now = std::time(nullptr);
        std::tm local{};
        ::localtime_r(&now, &local);
        return runtime::MakeDate(local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                                 local.tm_min, local.tm_sec);
    }
};

template <class T>
void FillIn(std::shared_ptr<T>& member, const std::shared_ptr<T>& machine) {
    if (!member)
        member = machine;
}

} // namespace

Services MachineServices() {
    return Services{.messageBoxes = std::make_shared<NoMessageBoxes>(),
                    .inputBoxes = std::make_shared<NoInputBoxes>(),
                    .errorReports = std::make_shared<NoErrorReports>(),
                    .clock = std::make_shared<MachineClock>(),
                    .regional = MachineRegionalSettings(),
                    .folders = MachineFolders(),
                    .processes = MachineProcesses(),
                    .keyboard = std::make_shared<NoKeyboard>(),
                    .helpViewer = std::make_shared<NoHelpViewer>(),
                    .memory = MachineMemory(),
                    .fileVersions = MachineFileVersions(),
                    .fileDialogs = std::make_shared<NoFileDialogs>()};
}

Services& TheServices() {
    static Services services = [] {
        runtime::SetClock([] { return TheServices().clock->Now(); });
        return MachineServices();
    }();
    return services;
}

void SetServices(Services services) {
    const Services machine = MachineServices();
    FillIn(services.messageBoxes, machine.messageBoxes);
    FillIn(services.inputBoxes, machine.inputBoxes);
    FillIn(services.errorReports, machine.errorReports);
    FillIn(services.clock, machine.clock);
    FillIn(services.regional, machine.regional);
    FillIn(services.folders, machine.folders);
    FillIn(services.processes, machine.processes);
    FillIn(services.keyboard, machine.keyboard);
    FillIn(services.helpViewer, machine.helpViewer);
    FillIn(services.memory, machine.memory);
    FillIn(services.fileVersions, machine.fileVersions);
    FillIn(services.fileDialogs, machine.fileDialogs);
    TheServices() = std::move(services);
}

} // namespace quillary::system
