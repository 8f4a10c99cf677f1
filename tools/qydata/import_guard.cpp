#include "import_job.h"

#include "platform/database/engine.h"
#include "platform/runtime/run_time_error.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
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

// Names of what has to go when the process is ended from outside: a signal handler may use no more. Folders
// that have been made for the import: the inner ones first; one stays where something is in it.
std::deque<std::string> unfinished, madeFolders;
volatile std::sig_atomic_t child = 0;
volatile std::sig_atomic_t stopped = 0;

void RemoveUnfinished() {
    for (const std::string& name : unfinished) {
        unlink(name.c_str());
    }
    for (const std::string& name : madeFolders) {
        rmdir(name.c_str());
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
    if (stopped != 0) {
        EndImport(SIGTERM);
    }
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

void MakeFolders(const fs::path& folder) {
    std::deque<std::string> missing;
    std::error_code error;
    for (fs::path each = folder; !each.empty() && !fs::exists(each, error); each = each.parent_path()) {
        missing.push_back(each.string());
    }
    madeFolders.insert(madeFolders.begin(), missing.begin(), missing.end());
    fs::create_directories(folder, error);
    if (error) {
        RemoveUnfinished();
        throw runtime::RunTimeError(75, "", // Path/File access error
                                    "Path/File access error: " + folder.string() + ": " + error.message());
    }
}

// Where the databases are made that a whole installation is compared with. The child makes them, and cannot
// tidy up when it is ended; its parent can.
class WorkFolder {
public:
    WorkFolder() {
        std::string pattern = (fs::temp_directory_path(none_) / "quillary-import-XXXXXX").string();
        if (mkdtemp(pattern.data()) != nullptr) {
            folder_ = pattern;
            madeFolders.push_front(pattern);
            setenv("TMPDIR", pattern.c_str(), 1);
        }
    }
    ~WorkFolder() {
        if (!folder_.empty()) {
            fs::remove_all(folder_, none_);
        }
    }
    WorkFolder(const WorkFolder&) = delete;
    WorkFolder& operator=(const WorkFolder&) = delete;

private:
    std::error_code none_;
    fs::path folder_;
};

} // namespace

int RunGuarded(const ImportJob& job) {
    HandleEnd(PassOn);
    const WorkFolder work;
    for (const auto& file : job.files) {
        MakeFolders(file.target.parent_path());
        for (const char* ending : kSideFiles) {
            unfinished.push_back(file.part.string() + ending);
        }
    }
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
    if (stopped != 0) {
        PassOn(stopped);
    }
    int state = 0;
    while (waitpid(started, &state, 0) < 0 && errno == EINTR) {
    }
    child = 0;
    const bool ended = WIFEXITED(state);
    const int status = ended ? WEXITSTATUS(state) : kImportFailed;
    if (ended && (status == kImportWhole || status == kImportWithLosses)) {
        return status; // an end from outside came too late
    }
    RemoveUnfinished();
    if (stopped != 0) {
        return 128 + stopped;
    }
    if (!ended && WTERMSIG(state) == SIGKILL) {
        std::cerr << "error 51: the import was ended from outside before it was done." << std::endl;
    } else if (!ended) {
        std::cerr << "error 3343: a file is so badly damaged that the reading broke off (signal "
                  << WTERMSIG(state) << "). Nothing has been changed." << std::endl;
    }
    return status;
}

} // namespace quillary::tools
