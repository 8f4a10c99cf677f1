#include "widget_application.h"

#include "platform/qt/theme.h"

#include <QApplication>
#include <QString>

#include <cstdlib>

namespace quillary::tools {

namespace {

QtMessageHandler formerHandler = nullptr;

} // namespace

struct WidgetApplication::Holder {
    Holder(int& argc, char** argv) : application(argc, argv) { qt::ApplyTheme(application); }
    QApplication application;
};

WidgetApplication::WidgetApplication(bool wanted, int& argc, char** argv) {
    if (!wanted)
        return;
    setenv("QT_QPA_PLATFORM", "offscreen", 0);
    // The offscreen platform tells at every window what it cannot do.
    formerHandler =
        qInstallMessageHandler([](QtMsgType type, const QMessageLogContext& context, const QString& text) {
            if (!text.startsWith(QLatin1String("This plugin does not support")))
                formerHandler(type, context, text);
        });
    holder_ = std::make_unique<Holder>(argc, argv);
}

WidgetApplication::~WidgetApplication() = default;

} // namespace quillary::tools
