#pragma once

#include <QColor>
#include <QString>

#include <string>
#include <string_view>

class QLineEdit;
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

// A field holds at most so many characters, or as many as code has put into it: a longer text stays whole.
// The field itself counts units, of which a character may take two. GiveRoom before the text is set; CutTo
// when it was edited takes back what was typed or pasted beyond the limit; former: the text before the edit.
void GiveRoom(QLineEdit& field, int characters, const QString& text);
void CutTo(QLineEdit& field, int characters, std::string_view former);

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
