#include "platform/runtime/locale.h"
#include "platform/runtime/run_time_error.h"
#include "platform/system/machine.h"
#include "platform/system/paths.h"

#include <csignal>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <set>

namespace quillary::system {

namespace {

// "a  "b c"" -> a, b c
std::vector<std::string> SplitArguments(std::string_view text) {
    std::vector<std::string> words;
    std::string word;
    bool inWord = false, quoted = false;
    for (const char c : text) {
        if (c == '"') {
            quoted = !quoted;
            inWord = true;
        } else if ((c == ' ' || c == '\t') && !quoted) {
            if (inWord)
                words.push_back(std::move(word));
            word.clear();
            inWord = false;
        } else {
            word += c;
            inWord = true;
        }
    }
    if (inWord)
        words.push_back(std::move(word));
    return words;
}

std::string FindProgram(const std::string& program) {
    if (FileExists(program))
        return ToNative(program);
    constexpr std::string_view kEnding = ".exe";
    if (program.size() > kEnding.size() && runtime::EqualName(program.substr(program.size() - 4), kEnding)) {
        const std::string plain = program.substr(0, program.size() - kEnding.size());
        if (FileExists(plain))
            return ToNative(plain);
    }
    throw runtime::RunTimeError(runtime::kErrFileNotFound);
}

// The handle of a window is the process that shows it: a window that comes late, or is made anew, is still
// the tool's, and the answer is there as soon as the process is.
class ProcessesOfMachine : public Processes {
public:
    ProcessId Launch(const std::string& program, const std::string& arguments) override {
        std::string native = FindProgram(program);
        if (native.find('/') == std::string::npos)
            native.insert(0, "./");
        std::vector<std::string> words = SplitArguments(arguments);
        std::vector<char*> argv{native.data()};
        for (std::string& word : words)
            argv.push_back(word.data());
        argv.push_back(nullptr);
        posix_spawnattr_t attributes;
        ::posix_spawnattr_init(&attributes);
        // A session of its own: ending this program from a terminal does not end the tool.
        ::posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETSID);
        pid_t process = 0;
        const int failure =
            ::posix_spawn(&process, native.c_str(), nullptr, &attributes, argv.data(), ::environ);
        ::posix_spawnattr_destroy(&attributes);
        if (failure != 0)
            throw runtime::RunTimeError(runtime::kErrInvalidProcedureCall);
        running_.insert(process);
        return process;
    }

    bool Running(ProcessId process) override {
        if (!running_.contains(process))
            return false;
        int status = 0;
        if (::waitpid(static_cast<pid_t>(process), &status, WNOHANG) == 0)
            return true;
        running_.erase(process); // the number may be another process's from now on
        return false;
    }

    Window FindWindow(ProcessId process) override { return Running(process) ? process : 0; }

    void Activate(Window window) override {
        if (Running(window))
            ActivateWindowsOf(window);
    }

    void CloseWindow(Window window) override {
        if (Running(window) && !CloseWindowsOf(window))
            ::kill(static_cast<pid_t>(window), SIGTERM); // a tool without a window is asked to end
    }

private:
    std::set<ProcessId> running_;
};

} // namespace

std::shared_ptr<Processes> MachineProcesses() {
    return std::make_shared<ProcessesOfMachine>();
}

} // namespace quillary::system
