#pragma once

#include <QString>
#include <QWidget>

class QTextBrowser;

namespace quillary::qt {

// Where a help call leads. A ".chm" name stands for the folder of the same base name beside it; its first
// page is index.html, and a context number is looked up in contexts.tsv (number, tab, page) of that folder,
// else of the one around it. A number that is not listed leads to the first page.
struct HelpPlace {
    QString book;    // "QYFarm"
    QString first;   // native path of the book's first page
    QString page;    // native path of the page to show
    QString missing; // the file or folder that is not there; else empty
};
HelpPlace FindHelp(const QString& path, long context);

// The window of the help: pages of HTML, with back, forward and home.
class HelpWindow : public QWidget {
public:
    HelpWindow();
    void Go(const HelpPlace& place);
    QString Text() const; // of the page shown

private:
    QTextBrowser* pages_;
    QString home_;
};

} // namespace quillary::qt
