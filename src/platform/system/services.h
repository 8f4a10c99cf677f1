#pragma once

#include "platform/runtime/variant.h"

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// What the program asks of the machine and of the person in front of it. One `Services` object a process
// gathers it. The program fills it with the real ones, tests and the scenario driver with their own.
namespace quillary::system {

// Answers of a message box, and its sets of buttons, in the old system's numbering.
inline constexpr int kAnswerOk = 1;
inline constexpr int kAnswerCancel = 2;
inline constexpr int kAnswerYes = 6;
inline constexpr int kAnswerNo = 7;
inline constexpr int kButtonsOk = 0;
inline constexpr int kButtonsOkCancel = 1;
inline constexpr int kButtonsYesNoCancel = 3;
inline constexpr int kButtonsYesNo = 4;

struct MessageRequest {
    std::string prompt;
    int buttons = kButtonsOk;
    std::string caption;
    std::string heading;    // large line; as it stands, "&" not doubled
    std::string subHeading; // "&" doubled: "&&" is shown as "&"
    int icon = 0;           // 3 correct an entry, 6 error or notice, 9 question
    bool shellFlag = false; // started by the suite's main window: decides where the box stands
    bool plain = false;     // the plain system message box: prompt and caption alone
};

struct MessageBoxes {
    virtual ~MessageBoxes() = default;
    // Modal; the answer is the number of the pressed button.
    virtual int Show(const MessageRequest& request) = 0;
};

struct InputRequest {
    std::string prompt;
    std::string title;
    std::string defaultText;
    std::optional<int> xPos, yPos; // twips; none: the box chooses its place
    std::string helpFile;
    int context = 0;
    int maxLength = 0; // characters; 0 no limit
    bool numeric = false;
    bool shellFlag = false;
};

struct InputBoxes {
    virtual ~InputBoxes() = default;
    // Modal; nullopt for Cancel.
    virtual std::optional<std::string> Ask(const InputRequest& request) = 0;
};

struct ErrorReportText {
    std::string description;
    int number = 0;
    std::string module;  // may be empty
    std::string routine; // "frm_setup.cmd_AddBulk_Click"
    std::string where;   // module, a blank, routine
    std::string source;
    std::string appName;
    int kind = 3; // a constant of the reporting interface
    std::string extra;
};

struct ErrorReports {
    virtual ~ErrorReports() = default;
    // Shows the report and keeps it in the report file. Never fails.
    virtual void Report(const ErrorReportText& report) = 0;
};

struct Clock {
    virtual ~Clock() = default;
    virtual runtime::Date Now() = 0; // local time; runtime::Now and Today follow it
};

// Kinds of regional settings, in the old system's numbering. Day names start at Monday.
namespace regional {
inline constexpr long kLanguage = 0x2;             // in its own words
inline constexpr long kLanguageAbbreviation = 0x3; // three letters: ENZ, ESP, DEU, PTB
inline constexpr long kCountryCode = 0x5;          // phone code: 64
inline constexpr long kCountry = 0x6;              // in the locale's language
inline constexpr long kCountryAbbreviation = 0x7;  // three letters: NZL
inline constexpr long kListSeparator = 0xC;
inline constexpr long kDecimal = 0xE;
inline constexpr long kThousand = 0xF;
inline constexpr long kCurrency = 0x14;
inline constexpr long kDateSeparator = 0x1D;
inline constexpr long kTimeSeparator = 0x1E;
inline constexpr long kShortDate = 0x1F;
inline constexpr long kLongDate = 0x20;
inline constexpr long kDateOrder = 0x21;      // 0 month-day-year, 1 day-month-year, 2 year-month-day
inline constexpr long kDayName = 0x2A;        // to 0x30
inline constexpr long kDayNameShort = 0x31;   // to 0x37
inline constexpr long kMonthName = 0x38;      // to 0x43
inline constexpr long kMonthNameShort = 0x44; // to 0x4F
inline constexpr long kIsoLanguage = 0x59;    // "en"
inline constexpr long kIsoCountry = 0x5A;     // "NZ"
inline constexpr long kEnglishLanguage = 0x1001;
inline constexpr long kEnglishCountry = 0x1002;
} // namespace regional

struct RegionalSettings {
    virtual ~RegionalSettings() = default;
    virtual std::string Value(long kind) = 0; // empty for an unknown kind
};

struct Folders {
    virtual ~Folders() = default;
    virtual std::string CommonDocuments() = 0; // documents common to all users; empty when there is none
    virtual std::string ConfigHome() = 0;      // where ini files with a bare name lie
    virtual std::string ProgramFolder() = 0;   // of the running program, no separator at its end
    virtual std::string Temp() = 0;
};

using ProcessId = long; // 0 none
using Window = long;    // 0 none

struct Processes {
    virtual ~Processes() = default;
    // Starts a program and does not wait. arguments: blanks separate them, double quotes keep blanks.
    // A name that ends in ".exe" may be a program without that ending. 53 no such program, 5 not startable.
    virtual ProcessId Launch(const std::string& program, const std::string& arguments) = 0;
    virtual bool Running(ProcessId process) = 0;
    // The window of a process that was launched here, 0 once it has ended. It stands for whatever window
    // the process has at the moment it is used, also one that appears later.
    virtual Window FindWindow(ProcessId process) = 0;
    virtual void Activate(Window window) = 0;    // brings it to the front, if it can
    virtual void CloseWindow(Window window) = 0; // asks it to close, as its user would; 0 is passed over
};

struct Keyboard {
    virtual ~Keyboard() = default;
    // One key event to the control that has the focus. code: the old system's virtual key.
    virtual void SendKey(int code, bool down) = 0;
};

// Commands of the help viewer.
inline constexpr int kHelpDisplayTopic = 0x1;
inline constexpr int kHelpContext = 0xF;

struct HelpViewer {
    virtual ~HelpViewer() = default;
    // path: a help file, a ".chm" name too. context: the page's number, 0 the first page. formName: the
    // form that asks.
    virtual void Show(const std::string& path, int command, long context, const std::string& formName) = 0;
    virtual void CloseAll() = 0;
};

struct MemoryFigures {
    int load = 0;                                           // per cent of the physical memory in use
    std::uint64_t totalPhysical = 0, availablePhysical = 0; // bytes, as all below
    std::uint64_t totalPageFile = 0, availablePageFile = 0; // physical memory and swap
    std::uint64_t totalVirtual = 0, availableVirtual = 0;   // of this process
};

struct MemoryStatus {
    virtual ~MemoryStatus() = default;
    virtual MemoryFigures Read() = 0;
};

// The version data that a program carries. Numbers of operating system, type and sub-type are the old
// system's.
struct FileVersion {
    std::array<int, 4> file{};
    std::array<int, 4> product{};
    std::uint32_t flags = 0;
    std::uint32_t os = 0;
    std::uint32_t type = 0;
    std::uint32_t subtype = 0;
};

struct FileVersions {
    virtual ~FileVersions() = default;
    // The running program knows its own; another file has it in a file beside it, "NAME.version", with
    // lines FileVersion=5.0.0.80, ProductVersion=, Flags=, OS=, Type=, Subtype=. nullopt without one.
    virtual std::optional<FileVersion> Read(std::string_view path) = 0;
};

struct FileFilter {
    std::string name;                  // "Pictures"
    std::vector<std::string> patterns; // "*.bmp"
};

struct FileDialogs {
    virtual ~FileDialogs() = default;
    // start: folder or file to begin with, may be empty. nullopt for Cancel.
    virtual std::optional<std::string> ChooseFile(const std::string& title,
                                                  const std::vector<FileFilter>& filters,
                                                  const std::string& start) = 0;
};

// No member is ever empty: what nobody has supplied raises 91 (object not set) when it is used.
struct Services {
    std::shared_ptr<MessageBoxes> messageBoxes = nullptr;
    std::shared_ptr<InputBoxes> inputBoxes = nullptr;
    std::shared_ptr<ErrorReports> errorReports = nullptr;
    std::shared_ptr<Clock> clock = nullptr;
    std::shared_ptr<RegionalSettings> regional = nullptr;
    std::shared_ptr<Folders> folders = nullptr;
    std::shared_ptr<Processes> processes = nullptr;
    std::shared_ptr<Keyboard> keyboard = nullptr;
    std::shared_ptr<HelpViewer> helpViewer = nullptr;
    std::shared_ptr<MemoryStatus> memory = nullptr;
    std::shared_ptr<FileVersions> fileVersions = nullptr;
    std::shared_ptr<FileDialogs> fileDialogs = nullptr;
};

// The machine's own services. What needs a window (boxes, reports, keyboard, help, file dialogs) raises 91
// until the view supplies it.
Services MachineServices();

// The services of the process: at first MachineServices(). A member may be replaced at any time.
Services& TheServices();
// Members left empty become those of MachineServices().
void SetServices(Services services);

} // namespace quillary::system
