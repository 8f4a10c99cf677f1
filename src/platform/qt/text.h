#pragma once

#include <QColor>
#include <QString>

#include <string>
#include <string_view>

class QWidget;

// Between the texts, measures and colours of the controls and those of the toolkit.
namespace quillary::qt {

inline QString ToQt(std::string_view text) {
    return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}
inline std::string FromQt(const QString& text) {
    return text.toStdString();
}

// Line ends within: the controls hold CR LF, widgets show LF. A lone CR is a line end too.
QString LinesToQt(std::string_view text);
std::string LinesFromQt(QString text);

inline constexpr int kTwipsPerPixel = 15;
inline int PixelsOf(int twips) {
    return twips / kTwipsPerPixel;
}

// The suite's colour number as a colour; invalid for one that is left to the theme.
QColor ColourOf(int colour);
// The same for a text on this background: black follows the theme's text, and a colour too near to the
// background to be read is moved away from it.
QColor TextColourOf(int colour, const QColor& background, const QColor& themeText);

} // namespace quillary::qt
