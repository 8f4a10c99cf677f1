#include "platform/qt/theme.h"

#include "platform/qt/suite_style.h"

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QPainter>
#include <QPalette>
#include <QToolTip>
#include <QWidget>

namespace quillary::qt {

namespace {

constexpr double kSmallestFont = 10; // points
constexpr int kDarkLightness = 128;

Theme& Current() {
    static Theme theme;
    return theme;
}

// Desktops that tell the toolkit nothing still leave their wish in the settings of the other toolkit.
bool GtkPrefersDark() {
    QString folder = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (folder.isEmpty())
        folder = QDir::homePath() + QLatin1String("/.config");
    QFile file(folder + QLatin1String("/gtk-3.0/settings.ini"));
    if (!file.open(QIODevice::ReadOnly))
        return false;
    for (const QByteArray& line : file.readAll().split('\n')) {
        const int equals = static_cast<int>(line.indexOf('='));
        const QByteArray key = line.left(equals).trimmed(), value = line.mid(equals + 1).trimmed().toLower();
        if (key == "gtk-application-prefer-dark-theme" && (value == "1" || value == "true"))
            return true;
        if (key == "gtk-theme-name" && value.endsWith("-dark"))
            return true;
    }
    return false;
}

bool WantsDark() {
    const QByteArray asked = qgetenv("QUILLARY_THEME").toLower();
    if (asked == "dark" || asked == "light")
        return asked == "dark";
    const QByteArray gtkTheme = qgetenv("GTK_THEME").toLower();
    if (!gtkTheme.isEmpty())
        return gtkTheme.endsWith("dark");
    return QGuiApplication::palette().color(QPalette::Window).lightness() < kDarkLightness ||
           GtkPrefersDark();
}

struct Colours {
    QRgb window, base, alternate, text, faint, button, line, strong, accent, onAccent, selection, onSelection,
        link, wrong, shaded;
};
constexpr Colours kLight = {0xFFF3F5F0, 0xFFFFFFFF, 0xFFF6F8F4, 0xFF1D241A, 0xFF5C6658,
                            0xFFFFFFFF, 0xFFCBD2C5, 0xFF8FA083, 0xFF336601, 0xFFFFFFFF,
                            0xFFDCEBCB, 0xFF1D241A, 0xFF2C6A2F, 0xFFC62828, 0xFFECEFE8};
constexpr Colours kDark = {0xFF1B1F1A, 0xFF242922, 0xFF292F27, 0xFFE6EAE2, 0xFFA2AC9C,
                           0xFF2F362C, 0xFF434C3F, 0xFF6C7A64, 0xFF8BC34A, 0xFF14200A,
                           0xFF3D5426, 0xFFF2F6EE, 0xFFA5D66F, 0xFFFF8A80, 0xFF1F241D};

QPalette PaletteOf(const Colours& colours) {
    QPalette palette;
    const auto set = [&](QPalette::ColorRole role, QRgb colour) { palette.setColor(role, QColor(colour)); };
    set(QPalette::Window, colours.window);
    set(QPalette::WindowText, colours.text);
    set(QPalette::Base, colours.base);
    set(QPalette::AlternateBase, colours.alternate);
    set(QPalette::Text, colours.text);
    set(QPalette::PlaceholderText, colours.faint);
    set(QPalette::Button, colours.button);
    set(QPalette::ButtonText, colours.text);
    set(QPalette::BrightText, colours.wrong);
    set(QPalette::Highlight, colours.selection);
    set(QPalette::HighlightedText, colours.onSelection);
    set(QPalette::Link, colours.link);
    set(QPalette::LinkVisited, colours.link);
    set(QPalette::ToolTipBase, colours.base);
    set(QPalette::ToolTipText, colours.text);
    set(QPalette::Light, colours.base);
    set(QPalette::Midlight, colours.alternate);
    set(QPalette::Mid, colours.line);
    set(QPalette::Dark, colours.strong);
    set(QPalette::Shadow, colours.strong);
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(colours.strong));
    return palette;
}

} // namespace

const Theme& CurrentTheme() {
    return Current();
}

void DrawBareEdge(QWidget& dialog) {
    if (dialog.frameGeometry() != dialog.geometry())
        return;
    QPainter painter(&dialog);
    painter.setPen(CurrentTheme().strong);
    painter.drawRect(dialog.rect().adjusted(0, 0, -1, -1));
}

void ApplyTheme(QApplication& application) {
    const bool dark = WantsDark();
    const Colours& colours = dark ? kDark : kLight;
    Theme& theme = Current();
    theme.dark = dark;
    theme.card = QColor(colours.base);
    theme.line = QColor(colours.line);
    theme.strong = QColor(colours.strong);
    theme.accent = QColor(colours.accent);
    theme.onAccent = QColor(colours.onAccent);
    theme.faint = QColor(colours.faint);
    theme.wrong = QColor(colours.wrong);
    theme.shaded = QColor(colours.shaded);

    QApplication::setStyle(new SuiteStyle);
    QApplication::setPalette(PaletteOf(colours));
    QFont font = QApplication::font();
    if (font.pointSizeF() < kSmallestFont) {
        font.setPointSizeF(kSmallestFont);
        QApplication::setFont(font);
    }
    QToolTip::setPalette(PaletteOf(colours));
    application.setEffectEnabled(Qt::UI_AnimateCombo, false);
}

} // namespace quillary::qt
