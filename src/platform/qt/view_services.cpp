#include "platform/qt/view_services.h"

#include "platform/qt/boxes.h"
#include "platform/qt/form_host.h"
#include "platform/qt/form_view.h"
#include "platform/qt/form_window.h"
#include "platform/qt/help_window.h"
#include "platform/qt/keys.h"
#include "platform/qt/text.h"
#include "platform/system/paths.h"

#include <QApplication>
#include <QFile>
#include <QFileDialog>
#include <QKeyEvent>
#include <QPointer>

#include <utility>

namespace quillary::qt {

namespace {

BoxRunner& Runner() {
    static BoxRunner runner;
    return runner;
}

void RunBox(QDialog& box) {
    CountModalLoop();
    if (Runner())
        Runner()(box);
    else
        box.exec();
    // The keyboard goes back to the window below, also where no window manager sees to it.
    if (QWidget* below = box.parentWidget())
        below->activateWindow();
}

class Boxes : public system::MessageBoxes {
public:
    explicit Boxes(const QtFormHost& host) : host_(host) {}
    int Show(const system::MessageRequest& request) override {
        MessageBox box(request, host_.TopWindow());
        RunBox(box);
        return box.Answer();
    }

private:
    const QtFormHost& host_;
};

class Inputs : public system::InputBoxes {
public:
    explicit Inputs(const QtFormHost& host) : host_(host) {}
    std::optional<std::string> Ask(const system::InputRequest& request) override {
        InputBox box(request, host_.TopWindow());
        RunBox(box);
        return box.result() == QDialog::Accepted ? std::optional(box.Entered()) : std::nullopt;
    }

private:
    const QtFormHost& host_;
};

class Reports : public system::ErrorReports {
public:
    Reports(const QtFormHost& host, std::function<std::string()> file)
        : host_(host), file_(std::move(file)) {}
    void Report(const system::ErrorReportText& report) override {
        try {
            const QString kept = Keep(ReportBlock(report));
            ErrorWindow window(report, kept, host_.TopWindow());
            RunBox(window);
        } catch (const std::exception&) {
            // A report about the report would help nobody.
        }
    }

private:
    // The file that the report was kept in; empty where it could not be.
    QString Keep(const std::string& block) {
        const std::string path = file_ ? file_() : std::string();
        if (path.empty())
            return {};
        QFile file(ToQt(system::ToNative(path)));
        if (!file.open(QIODevice::WriteOnly | QIODevice::Append))
            return {};
        const std::string entry = block + "\r\n";
        const auto size = static_cast<qint64>(entry.size());
        return file.write(entry.data(), size) == size && file.flush() ? file.fileName() : QString();
    }

    const QtFormHost& host_;
    std::function<std::string()> file_;
};

class Keys : public system::Keyboard {
public:
    void SendKey(int code, bool down) override {
        const int key = QtKeyOf(code);
        QWidget* focused = QApplication::focusWidget();
        if (key == 0 || focused == nullptr)
            return;
        // Behind the key that is being handled now.
        QCoreApplication::postEvent(
            focused, new QKeyEvent(down ? QEvent::KeyPress : QEvent::KeyRelease, key, Qt::NoModifier));
    }
};

class Help : public system::HelpViewer {
public:
    ~Help() override { CloseAll(); }
    void Show(const std::string& path, int command, long context, const std::string&) override {
        const long asked = command == system::kHelpContext ? context : 0;
        if (!window_)
            window_ = new HelpWindow;
        window_->Go(FindHelp(ToQt(system::ToNative(path)), asked));
        window_->show();
        window_->raise();
        window_->activateWindow();
    }
    void CloseAll() override { delete window_.data(); }

private:
    QPointer<HelpWindow> window_;
};

class Files : public system::FileDialogs {
public:
    explicit Files(const QtFormHost& host) : host_(host) {}
    std::optional<std::string> ChooseFile(const std::string& title,
                                          const std::vector<system::FileFilter>& filters,
                                          const std::string& start) override {
        QStringList kinds;
        for (const system::FileFilter& filter : filters) {
            QStringList patterns;
            for (const std::string& pattern : filter.patterns)
                patterns << ToQt(pattern) << ToQt(pattern).toUpper();
            patterns.removeDuplicates();
            kinds << ToQt(filter.name) + QStringLiteral(" (") + patterns.join(QLatin1Char(' ')) +
                         QLatin1Char(')');
        }
        QFileDialog dialog(host_.TopWindow(), ToQt(title),
                           start.empty() ? QString() : ToQt(system::ToNative(start)),
                           kinds.join(QStringLiteral(";;")));
        dialog.setFileMode(QFileDialog::ExistingFile);
        RunBox(dialog);
        const QStringList chosen = dialog.selectedFiles();
        if (dialog.result() != QDialog::Accepted || chosen.isEmpty())
            return std::nullopt;
        return FromQt(chosen.first());
    }

private:
    const QtFormHost& host_;
};

} // namespace

void SetBoxRunner(BoxRunner runner) {
    Runner() = std::move(runner);
}

void AddViewServices(system::Services& services, const QtFormHost& host,
                     std::function<std::string()> reportFile) {
    services.messageBoxes = std::make_shared<Boxes>(host);
    services.inputBoxes = std::make_shared<Inputs>(host);
    services.errorReports = std::make_shared<Reports>(host, std::move(reportFile));
    services.keyboard = std::make_shared<Keys>();
    services.helpViewer = std::make_shared<Help>();
    services.fileDialogs = std::make_shared<Files>(host);
}

void ShowFatalError(const runtime::RunTimeError& error, bool atStart) {
    system::MessageRequest request;
    request.caption = "Setup";
    request.heading = "The program cannot go on";
    request.subHeading = "Run-time error " + std::to_string(error.Number());
    request.prompt = error.Description();
    if (atStart)
        request.prompt += "\r\n\r\nNothing has been changed in your data.";
    request.icon = 6;
    MessageBox box(request, nullptr);
    RunBox(box);
}

} // namespace quillary::qt
