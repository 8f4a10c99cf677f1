#include "platform/qt/help_window.h"

#include "platform/qt/icons.h"
#include "platform/qt/theme.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QScreen>
#include <QShortcut>
#include <QTextBrowser>
#include <QToolButton>
#include <QUrl>
#include <QVBoxLayout>

namespace quillary::qt {

namespace {

const QString kFirstPage = QStringLiteral("index.html");
const QString kContexts = QStringLiteral("contexts.tsv");

QString PageOfContext(const QString& folder, long context) {
    for (const QString& holder : {folder, QFileInfo(folder).path()}) {
        QFile file(QDir(holder).filePath(kContexts));
        if (!file.open(QIODevice::ReadOnly))
            continue;
        for (const QByteArray& line : file.readAll().split('\n')) {
            const QList<QByteArray> fields = line.trimmed().split('\t');
            bool isNumber = false;
            if (fields.size() >= 2 && fields[0].toLong(&isNumber) == context && isNumber)
                return QString::fromUtf8(fields[1]);
        }
    }
    return kFirstPage;
}

QString MissingPage(const HelpPlace& place) {
    return QStringLiteral("<h2>%1</h2><p>%2</p><p><code>%3</code></p><p>%4</p>")
        .arg(HelpWindow::tr("This help is not installed"),
             HelpWindow::tr("The help of “%1” was asked for, and this is not there:")
                 .arg(place.book.toHtmlEscaped()),
             QDir::toNativeSeparators(place.missing).toHtmlEscaped(),
             HelpWindow::tr(
                 "The help pages lie in the folder Help of the program folder. Installing the suite "
                 "again brings them back; your data stay as they are."));
}

} // namespace

HelpPlace FindHelp(const QString& path, long context) {
    HelpPlace place;
    const QFileInfo asked(path);
    place.book = asked.completeBaseName();
    // A page by its own name is shown as it is.
    if (asked.suffix().startsWith(QLatin1String("htm"), Qt::CaseInsensitive)) {
        place.first = place.page = asked.filePath();
    } else {
        QDir folder(asked.path());
        // Names of the suite come in any case.
        const QStringList same = folder.entryList({place.book}, QDir::Dirs | QDir::NoDotAndDotDot);
        const QDir book(folder.filePath(same.isEmpty() ? place.book : same.first()));
        place.first = book.filePath(kFirstPage);
        const QString page = context > 0 ? PageOfContext(book.path(), context) : kFirstPage;
        place.page = QDir::cleanPath(book.filePath(page));
        if (!QFileInfo::exists(place.page) && QFileInfo::exists(place.first))
            place.page = place.first;
    }
    if (!QFileInfo::exists(place.page))
        place.missing = place.page;
    return place;
}

HelpWindow::HelpWindow() : QWidget(nullptr, Qt::Window), pages_(new QTextBrowser(this)) {
    setWindowTitle(tr("Help"));
    setWindowIcon(ProgramIcon());
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    auto* bar = new QHBoxLayout;
    bar->setContentsMargins(8, 6, 8, 6);
    bar->setSpacing(4);
    const auto add = [&](Drawing drawing, const QString& name, const QKeySequence& key, auto pressed) {
        auto* button = new QToolButton(this);
        button->setAutoRaise(true);
        button->setIcon(DrawnIcon(drawing, {}));
        button->setIconSize({20, 20});
        button->setToolTip(name + QStringLiteral(" (") + key.toString(QKeySequence::NativeText) +
                           QStringLiteral(")"));
        button->setAccessibleName(name);
        connect(button, &QToolButton::clicked, this, pressed);
        connect(new QShortcut(key, this), &QShortcut::activated, this, pressed);
        bar->addWidget(button);
        return button;
    };
    auto* back =
        add(Drawing::ChevronLeft, tr("Back"), Qt::ALT | Qt::Key_Left, [this] { pages_->backward(); });
    auto* forward =
        add(Drawing::ChevronRight, tr("Forward"), Qt::ALT | Qt::Key_Right, [this] { pages_->forward(); });
    add(Drawing::House, tr("First page"), Qt::ALT | Qt::Key_Home, [this] {
        if (!home_.isEmpty())
            pages_->setSource(QUrl::fromLocalFile(home_));
    });
    bar->addStretch(1);
    auto* close = new QToolButton(this);
    close->setText(tr("Close"));
    close->setToolTip(tr("Close (Esc)"));
    connect(close, &QToolButton::clicked, this, &QWidget::close);
    connect(new QShortcut(Qt::Key_Escape, this), &QShortcut::activated, this, &QWidget::close);
    bar->addWidget(close);
    layout->addLayout(bar);

    back->setEnabled(false);
    forward->setEnabled(false);
    connect(pages_, &QTextBrowser::backwardAvailable, back, &QWidget::setEnabled);
    connect(pages_, &QTextBrowser::forwardAvailable, forward, &QWidget::setEnabled);
    connect(pages_, &QTextBrowser::sourceChanged, this, [this] {
        const QString title = pages_->documentTitle();
        setWindowTitle(title.isEmpty() ? tr("Help") : title + tr(" - Help"));
    });
    pages_->setOpenExternalLinks(false);
    pages_->setFrameShape(QFrame::NoFrame);
    pages_->setAccessibleName(tr("Help page"));
    pages_->document()->setDocumentMargin(20);
    layout->addWidget(pages_, 1);
    resize(fontMetrics().averageCharWidth() * 96, fontMetrics().height() * 38);
    if (const QScreen* onScreen = screen()) {
        const QRect space = onScreen->availableGeometry();
        resize(size().boundedTo(space.size() - QSize(24, 48)));
        move(space.center() - rect().center());
    }
    pages_->setFocus();
}

void HelpWindow::Go(const HelpPlace& place) {
    home_ = place.missing.isEmpty() ? place.first : QString();
    if (place.missing.isEmpty())
        pages_->setSource(QUrl::fromLocalFile(place.page));
    else
        pages_->setHtml(MissingPage(place));
}

QString HelpWindow::Text() const {
    return pages_->toPlainText();
}

} // namespace quillary::qt
