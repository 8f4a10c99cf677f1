#include "import_job.h"

#include "platform/database/engine.h"
#include "platform/runtime/run_time_error.h"

#include <cerrno>
#include <csignal>
#include <cstring>
#include <deque>
#include <exception>
#include <iostream>
#include <system_error>

#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace quillary::tools {

namespace fs = std::filesystem;

namespace {

constexpr const char* kSideFiles[] = {"", "-journal", "-wal", "-shm"};

// Names of what has to go when the process is ended from outside: a signal handler may use no more.
std::deque<std::string> unfinished;
volatile std::sig_atomic_t child = 0;
volatile std::sig_atomic_t stopped = 0;

void RemoveUnfinished() {
    for (const std::string& name : unfinished) {
        unlink(name.c_str());
    }
}

void EndImport(int signal) {
    RemoveUnfinished();
    _exit(128 + signal);
}

void PassOn(int signal) {
    stopped = signal;
    if (child > 0) {
        kill(static_cast<pid_t>(child), SIGTERM);
    }
}

void HandleEnd(void (*handler)(int)) {
    struct sigaction action {};
    action.sa_handler = handler;
    sigfillset(&action.sa_mask);
    for (const int signal : kEndSignals) {
        sigaction(signal, &action, nullptr);
    }
}

[[noreturn]] void RunChild(const ImportJob& job, pid_t parent) {
    HandleEnd(EndImport);
    // An end of the parent that it cannot see coming reaches the child as this signal.
    prctl(PR_SET_PDEATHSIG, SIGTERM);
    if (getppid() != parent) {
        EndImport(SIGTERM);
    }
    int status = kImportFailed;
    try {
        status = RunImport(job);
    } catch (const runtime::RunTimeError& error) {
        std::cout.flush();
        std::cerr << "error " << error.Number() << ": " << error.Description() << std::endl;
    } catch (const std::exception& error) {
        std::cout.flush();
        std::cerr << "error 51: " << error.what() << std::endl;
    }
    std::cout.flush();
    // The last to leave a database takes away what SQLite keeps beside it.
    database::CreateSqliteEngine()->ReleaseIdle();
    std::_Exit(status);
}

// Folders that an import makes are gone again when it fails.
std::vector<fs::path> MakeFolders(const fs::path& folder) {
    std::vector<fs::path> made;
    std::error_code error;
    for (fs::path each = folder; !each.empty() && !fs::exists(each, error); each = each.parent_path()) {
        made.push_back(each);
    }
    fs::create_directories(folder, error);
    if (error) {
        throw runtime::RunTimeError(75, "", // Path/File access error
                                    "Path/File access error: " + folder.string() + ": " + error.message());
    }
    return made;
}

} // namespace

int RunGuarded(const ImportJob& job) {
    std::vector<fs::path> made;
    for (const auto& file : job.files) {
        const auto folders = MakeFolders(file.target.parent_path());
        made.insert(made.begin(), folders.begin(), folders.end());
        for (const char* ending : kSideFiles) {
            unfinished.push_back(file.part.string() + ending);
        }
    }
    HandleEnd(PassOn);
    const pid_t parent = getpid();
    std::cout.flush();
    const pid_t started = fork();
    if (started < 0) {
        throw runtime::RunTimeError(51, "", std::string("No process can be made: ") + std::strerror(errno));
    }
    if (started == 0) {
        RunChild(job, parent);
    }
    child = started;
    int state = 0;
    while (waitpid(started, &state, 0) < 0 && errno == EINTR) {
    }
    child = 0;
    const bool ended = WIFEXITED(state);
    const int status = ended ? WEXITSTATUS(state) : kImportFailed;
    if (status != kImportWhole && status != kImportWithLosses) {
        RemoveUnfinished();
        std::error_code none;
        for (const fs::path& folder : made) {
            fs::remove(folder, none); // stays where something is in it
        }
    }
    if (stopped != 0) {
        return 128 + stopped;
    }
    if (!ended) {
        std::cerr << "error 3343: a file is so badly damaged that the reading broke off (signal "
                  << WTERMSIG(state) << "). Nothing has been changed." << std::endl;
    }
    return status;
}

} // namespace quillary::tools
