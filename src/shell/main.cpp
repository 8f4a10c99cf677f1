#include "shell/program_start.h"

#include "config/profile_store.h"
#include "platform/controls/form_host.h"
#include "platform/database/errors.h"
#include "platform/qt/form_host.h"
#include "platform/qt/guard.h"
#include "platform/qt/icons.h"
#include "platform/qt/theme.h"
#include "platform/qt/view_services.h"
#include "platform/system/paths.h"
#include "platform/system/program_version.h"
#include "platform/system/services.h"

#include <QApplication>
#include <QByteArray>
#include <QWidget>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>

namespace {

using namespace quillary;

constexpr const char* kErrorReports = "QYErrorReports.txt";
constexpr const char* kScreenshotSwitch = "--screenshot";

constexpr const char* kUsage =
    R"(Usage: QYSettings [/TRUE] [--screenshot FILE]
  /TRUE              started by the suite's main window; the windows appear beside that
  --screenshot FILE  writes a picture of the screen and closes the program
  --help, --version
The farm is that of the folder $QUILLARY_DOCUMENTS, else of ~/.local/share/quillary; "qydata new" makes one there.
)";

// What stands behind the program's name, and the one switch that is this system's own:
// --screenshot FILE writes a picture of the screen, once it has been drawn, and closes the program.
struct CommandLine {
    std::string tail;
    std::string screenshot;
};

CommandLine ReadCommandLine(int count, char** words) {
    CommandLine line;
    for (int word = 1; word < count; ++word) {
        if (std::strcmp(words[word], kScreenshotSwitch) == 0 && word + 1 < count) {
            line.screenshot = words[++word];
            continue;
        }
        if (!line.tail.empty())
            line.tail += ' ';
        line.tail += words[word];
    }
    return line;
}

// What costs time at the start and serves nobody here.
void KeepStartShort() {
    // Without a bus of the session the toolkit would start a program to look for one.
    if (qEnvironmentVariableIsEmpty("DBUS_SESSION_BUS_ADDRESS") &&
        qEnvironmentVariableIsEmpty("XDG_RUNTIME_DIR"))
        qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    // No OpenGL is drawn with.
    if (qEnvironmentVariableIsEmpty("QT_XCB_GL_INTEGRATION"))
        qputenv("QT_XCB_GL_INTEGRATION", "none");
}

// A program that has just been installed finds no farm; the message says how to make one.
runtime::RunTimeError WithWayOut(const runtime::RunTimeError& error) {
    if (error.Number() != database::kErrFileNotFound)
        return error;
    return {error.Number(), error.Source(),
            error.Description() + " If there is no farm on this machine yet, \"qydata new\" makes one and "
                                  "\"qydata import\" brings one across; \"man qydata\" tells how."};
}

// The process ends with the error, whatever is running; everything written so far is in the files.
[[noreturn]] void EndWith(const runtime::RunTimeError& error, bool atStart) {
    std::fprintf(stderr, "QYSettings: run-time error %d: %s\n", error.Number(), error.Description().c_str());
    qt::ShowFatalError(error, atStart);
    std::fflush(nullptr);
    std::_Exit(EXIT_FAILURE);
}

std::string ReportFile() {
    const std::string folder = config::GetCommonDirectory();
    return folder.empty() ? std::string() : system::Join(folder, kErrorReports);
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view first = argc > 1 ? argv[1] : "";
    if (first == "--help" || first == "-h" || first == "--version") {
        const std::string version = "QYSettings " + std::string(system::kProgramVersionText) + "\n";
        std::fputs(first == "--version" ? version.c_str() : kUsage, stdout);
        return EXIT_SUCCESS;
    }
    const CommandLine line = ReadCommandLine(argc, argv);
    KeepStartShort();
    QApplication application(argc, argv);
    QApplication::setApplicationName(QStringLiteral("QYSettings"));
    QApplication::setDesktopFileName(QStringLiteral("QYSettings"));
    qt::ApplyTheme(application);
    QApplication::setWindowIcon(qt::ProgramIcon());

    qt::QtFormHost host;
    auto services = system::MachineServices();
    qt::AddViewServices(services, host, ReportFile);
    system::SetServices(std::move(services));
    int status = EXIT_SUCCESS;
    if (!line.screenshot.empty())
        host.SetFirstShown([&](QWidget& window) {
            if (!window.grab().save(QString::fromStdString(line.screenshot))) {
                std::fprintf(stderr, "QYSettings: %s cannot be written\n", line.screenshot.c_str());
                status = EXIT_FAILURE;
            }
            QMetaObject::invokeMethod(&window, "close", Qt::QueuedConnection);
        });

    // From the first event on: a dialog may already ask before the screen's own loop runs.
    qt::SetErrorHandler([](const runtime::RunTimeError& error) { EndWith(error, false); });
    try {
        shell::SubMain(line.tail);
    } catch (const runtime::RunTimeError& error) {
        EndWith(WithWayOut(error), true);
    }
    host.Run();
    shell::EndProgram();
    // Windows of the services go while the toolkit is still there.
    controls::SetControlMessage(nullptr);
    system::SetServices(system::MachineServices());
    return status;
}
