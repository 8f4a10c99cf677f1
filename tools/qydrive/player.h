#pragma once

#include "hand.h"
#include "platform/runtime/run_time_error.h"
#include "playground.h"
#include "recorder.h"
#include "script.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quillary::tools {

struct PlayOptions {
    bool widgets = false;
    bool keep = false;
    bool trace = false;
};

struct PlayResult {
    bool passed = false;
    std::string fault; // "FILE:LINE: what was expected, what was there"
    std::string keptFolder;
    std::string skipped; // why it was not played; "" when it was
};

// Plays one scenario in an installation of its own.
class Player {
public:
    Player(std::string file, std::vector<Command> commands, const PlayOptions& options);
    ~Player();
    PlayResult Play();

private:
    using Words = std::vector<std::string>;

    // Plays commands from the present one on while the form is open (nullptr: all of them).
    void Run(const controls::Form* modal);
    // A path of `use folder`, a relative one below the scenario's own folder.
    std::string FolderOf(const std::string& path) const;
    void Execute(const Command& command);
    bool ExecuteSetup(const Command& command);
    bool ExecuteGesture(const Command& command);
    bool ExecuteGridGesture(const Command& command);
    bool ExecuteCheck(const Command& command);
    bool ExecuteBoxCheck(const Command& command);

    void Start(const std::string& tail);
    void EndProgram();
    bool ProgramRuns() const;
    void EndFatally(const runtime::RunTimeError& error);
    // Carries out a gesture; what a user could not have done is a fault.
    void Do(const std::function<Outcome()>& gesture);

    controls::Control& FindControl(const std::string& name) const;
    controls::Grid& FindGrid(const std::string& name) const;
    controls::Form& TopForm() const;
    int ColumnOf(const controls::Grid& grid, const std::string& column) const;
    std::string PropertyOf(const std::string& controlAndProperty) const;
    void CheckLog(const Command& command);
    [[noreturn]] void Fail(const std::string& what) const;

    std::string file_;
    std::vector<Command> commands_;
    PlayOptions options_;
    std::size_t next_ = 0;
    Playground playground_;
    Recorder recorder_;
    std::unique_ptr<Hand> hand_;
    bool started_ = false;
    bool allowReports_ = false;
    std::string fault_; // the first fault; the rest of the scenario is passed over
    int faultLine_ = 0;
    std::string skipped_;
    std::optional<runtime::RunTimeError> fatal_;
    bool unwinding_ = false; // open dialogs are closed on the way out
};

// The texts are equal, CR LF, a lone CR and a lone LF being the same line end.
bool SameText(std::string_view left, std::string_view right);

} // namespace quillary::tools
