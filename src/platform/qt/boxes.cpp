#include "platform/qt/boxes.h"

#include "platform/controls/control.h"
#include "platform/qt/icons.h"
#include "platform/qt/text.h"
#include "platform/qt/theme.h"
#include "platform/qt/widgets.h"
#include "platform/runtime/conversions.h"
#include "platform/runtime/dates.h"

#include <QApplication>
#include <QClipboard>
#include <QDoubleValidator>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QScreen>
#include <QScrollBar>
#include <QTextDocument>
#include <QTextLayout>
#include <QTextOption>
#include <QVBoxLayout>

namespace quillary::qt {

namespace {

constexpr int kIconSize = 44;
constexpr int kCorrectIcon = 3, kQuestionIcon = 9;
constexpr int kNarrowest = 360, kWidest = 620; // of the text, pixels at the usual font

struct Kind {
    Drawing drawing;
    QColor colour;
};

Kind KindOf(int icon) {
    const Theme& theme = CurrentTheme();
    if (icon == kCorrectIcon)
        return {Drawing::Correct, theme.dark ? QColor(0xFF, 0xB7, 0x4D) : QColor(0xB3, 0x5C, 0x00)};
    if (icon == kQuestionIcon)
        return {Drawing::Question, theme.accent};
    return {Drawing::Notice, theme.dark ? QColor(0x90, 0xCA, 0xF9) : QColor(0x1F, 0x5F, 0xA8)};
}

// What a text takes below each other; a word without end is broken anywhere.
int HeightOf(const QString& text, const QFont& font, int width) {
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    qreal height = 0;
    for (const QString& paragraph : text.split(QLatin1Char('\n'))) {
        QTextLayout layout(paragraph, font);
        layout.setTextOption(option);
        layout.beginLayout();
        for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
            line.setLineWidth(width);
            height += line.height();
        }
        layout.endLayout();
    }
    return static_cast<int>(height);
}

// A text that can be marked and copied, without a frame, as high as it needs to be.
QPlainTextEdit* MakeText(const QString& text, QWidget* parent) {
    auto* shown = new QPlainTextEdit(text, parent);
    shown->setReadOnly(true);
    shown->setFrameShape(QFrame::NoFrame);
    shown->setTabChangesFocus(true);
    shown->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    shown->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    shown->document()->setDocumentMargin(0);
    shown->viewport()->setAutoFillBackground(false);
    QPalette palette = shown->palette();
    palette.setColor(QPalette::Base, Qt::transparent);
    shown->setPalette(palette);

    const QFontMetrics metrics = shown->fontMetrics();
    int widest = kNarrowest;
    for (const QString& line : text.split(QLatin1Char('\n')))
        widest = std::max(widest, metrics.horizontalAdvance(line) + 12);
    widest = std::min(widest, kWidest);
    const int height = HeightOf(text, shown->font(), widest - 8) + metrics.lineSpacing() / 2;
    const QScreen* onScreen = parent->screen();
    const int limit = (onScreen ? onScreen->availableGeometry().height() : 900) * 2 / 3 - 160;
    shown->setMinimumWidth(widest);
    if (height <= limit) {
        shown->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
        shown->setFixedHeight(height);
    } else {
        shown->setMinimumHeight(std::max(limit, 120));
    }
    return shown;
}

void MakeFaint(QWidget& widget) {
    QPalette faint = widget.palette();
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text})
        faint.setColor(role, CurrentTheme().faint);
    widget.setPalette(faint);
}

// Light where the window is light: the upper part of a box on the ground of cards, the buttons below it.
struct BoxParts {
    QVBoxLayout* body;
    QHBoxLayout* buttons;
};
BoxParts MakeParts(QDialog& box) {
    auto* whole = new QVBoxLayout(&box);
    whole->setContentsMargins(1, 1, 1, 1); // beside the edge
    whole->setSpacing(0);
    auto* upper = new QFrame(&box);
    upper->setAutoFillBackground(true);
    upper->setBackgroundRole(QPalette::Base);
    auto* body = new QVBoxLayout(upper);
    body->setContentsMargins(22, 20, 22, 20);
    whole->addWidget(upper, 1);
    auto* row = new QHBoxLayout;
    row->setContentsMargins(22, 12, 22, 14);
    row->setSpacing(10);
    row->addStretch(1);
    whole->addLayout(row);
    return {body, row};
}

QLabel* MakeLine(const QString& text, QWidget* parent) {
    auto* line = new QLabel(text, parent);
    line->setTextFormat(Qt::PlainText);
    line->setWordWrap(true);
    return line;
}

} // namespace

void Box::paintEvent(QPaintEvent* event) {
    QDialog::paintEvent(event);
    DrawBareEdge(*this);
}

// ---- MessageBox

MessageBox::MessageBox(const system::MessageRequest& request, QWidget* parent) : Box(parent) {
    setWindowTitle(ToQt(request.caption));
    setWindowIcon(ProgramIcon());
    const BoxParts parts = MakeParts(*this);
    auto* beside = new QHBoxLayout;
    beside->setSpacing(18);
    parts.body->addLayout(beside);

    const Kind kind = KindOf(request.icon);
    auto* sign = new QLabel(this);
    sign->setPixmap(DrawnPixmap(kind.drawing, kIconSize, kind.colour, devicePixelRatioF()));
    beside->addWidget(sign, 0, Qt::AlignTop);

    auto* lines = new QVBoxLayout;
    lines->setSpacing(2);
    beside->addLayout(lines, 1);
    if (!request.plain && !request.heading.empty()) {
        auto* heading = MakeLine(ToQt(request.heading), this);
        QFont large = heading->font();
        large.setPointSizeF(large.pointSizeF() * 1.5);
        large.setWeight(QFont::DemiBold);
        heading->setFont(large);
        lines->addWidget(heading);
    }
    if (!request.plain && !request.subHeading.empty()) {
        auto* sub = MakeLine(ToQt(controls::PlainCaption(request.subHeading)), this);
        MakeFaint(*sub);
        lines->addWidget(sub);
    }
    if (lines->count() > 0)
        lines->addSpacing(10);
    text_ = MakeText(LinesToQt(request.prompt), this);
    lines->addWidget(text_, 1);
    lines->addStretch();
    // A screen reader says what kind it is and what it says.
    setAccessibleName(ToQt(request.heading.empty() ? request.caption : request.heading));
    setAccessibleDescription(text_->toPlainText());
    AddButtons(request.buttons, *parts.buttons);
}

void MessageBox::AddButtons(int buttons, QHBoxLayout& row) {
    const auto add = [&](int answer, const QString& caption, bool isDefault) {
        auto* button = new QPushButton(caption, this);
        button->setAutoDefault(true);
        button->setDefault(isDefault);
        connect(button, &QPushButton::clicked, this, [this, answer] {
            answer_ = answer;
            accept();
        });
        row.addWidget(button);
        buttons_[answer] = button;
        if (isDefault)
            button->setFocus();
    };
    switch (buttons) {
    case system::kButtonsOkCancel:
        add(system::kAnswerOk, tr("&OK"), true);
        add(system::kAnswerCancel, tr("&Cancel"), false);
        break;
    case system::kButtonsYesNoCancel:
        add(system::kAnswerYes, tr("&Yes"), true);
        add(system::kAnswerNo, tr("&No"), false);
        add(system::kAnswerCancel, tr("&Cancel"), false);
        break;
    case system::kButtonsYesNo:
        add(system::kAnswerYes, tr("&Yes"), true);
        add(system::kAnswerNo, tr("&No"), false);
        break;
    default:
        add(system::kAnswerOk, tr("&OK"), true);
        break;
    }
}

QAbstractButton* MessageBox::Button(int answer) const {
    const auto found = buttons_.find(answer);
    return found == buttons_.end() ? nullptr : found->second;
}

QString MessageBox::Text() const {
    return text_->toPlainText();
}

void MessageBox::keyPressEvent(QKeyEvent* event) {
    if (event->modifiers() == Qt::NoModifier || event->modifiers() == Qt::ShiftModifier)
        for (const auto& [answer, button] : buttons_)
            if (button->shortcut() == QKeySequence(Qt::ALT | static_cast<Qt::Key>(event->key()))) {
                button->click();
                return;
            }
    Box::keyPressEvent(event);
}

void MessageBox::reject() {
    for (const int closing : {system::kAnswerCancel, system::kAnswerNo, system::kAnswerOk})
        if (buttons_.contains(closing)) {
            answer_ = closing;
            break;
        }
    QDialog::reject();
}

// ---- InputBox

InputBox::InputBox(const system::InputRequest& request, QWidget* parent) : Box(parent) {
    setWindowTitle(ToQt(request.title));
    setWindowIcon(ProgramIcon());
    const BoxParts parts = MakeParts(*this);
    auto* prompt = MakeLine(LinesToQt(request.prompt), this);
    prompt->setMinimumWidth(kNarrowest);
    parts.body->addWidget(prompt);
    field_ = new QLineEdit(this);
    if (request.maxLength > 0) {
        GiveRoom(*field_, request.maxLength, ToQt(request.defaultText));
        connect(
            field_, &QLineEdit::textEdited, this,
            [this, limit = request.maxLength, first = request.defaultText] { CutTo(*field_, limit, first); });
    }
    if (request.numeric)
        field_->setValidator(new QDoubleValidator(field_));
    field_->setText(ToQt(request.defaultText));
    field_->selectAll();
    field_->setAccessibleName(prompt->text());
    prompt->setBuddy(field_);
    parts.body->addWidget(field_);

    auto* okay = new QPushButton(tr("&OK"), this);
    okay->setDefault(true);
    auto* cancel = new QPushButton(tr("&Cancel"), this);
    connect(okay, &QPushButton::clicked, this, &QDialog::accept);
    connect(cancel, &QPushButton::clicked, this, &QDialog::reject);
    parts.buttons->addWidget(okay);
    parts.buttons->addWidget(cancel);
    field_->setFocus();
    if (request.xPos && request.yPos)
        move(PixelsOf(*request.xPos), PixelsOf(*request.yPos));
}

std::string InputBox::Entered() const {
    return FromQt(field_->text());
}

// ---- ErrorWindow

std::string ReportBlock(const system::ErrorReportText& report) {
    const auto line = [](const char* name, const std::string& value) {
        return value.empty() ? std::string() : std::string(name) + value + "\r\n";
    };
    const bool sameAsWhere = report.where == report.routine || report.where == " " + report.routine;
    return line("Time:        ", runtime::CStr(runtime::Variant(runtime::Now()))) +
           line("Program:     ", report.appName) + line("Error:       ", std::to_string(report.number)) +
           line("Description: ", report.description) + line("Place:       ", report.routine) +
           line("Module:      ", sameAsWhere ? std::string() : report.module) +
           line("Source:      ", report.source) + line("Further:     ", report.extra);
}

ErrorWindow::ErrorWindow(const system::ErrorReportText& report, const QString& keptIn, QWidget* parent)
    : Box(parent) {
    setWindowTitle(tr("Error report"));
    setWindowIcon(ProgramIcon());
    const BoxParts parts = MakeParts(*this);
    auto* beside = new QHBoxLayout;
    beside->setSpacing(18);
    parts.body->addLayout(beside);
    auto* sign = new QLabel(this);
    sign->setPixmap(DrawnPixmap(Drawing::Notice, kIconSize, CurrentTheme().wrong, devicePixelRatioF()));
    beside->addWidget(sign, 0, Qt::AlignTop);
    auto* lines = new QVBoxLayout;
    beside->addLayout(lines, 1);

    auto* heading = MakeLine(tr("Something went wrong"), this);
    QFont large = heading->font();
    large.setPointSizeF(large.pointSizeF() * 1.5);
    large.setWeight(QFont::DemiBold);
    heading->setFont(large);
    lines->addWidget(heading);
    lines->addWidget(MakeLine(tr("The program goes on. What you did last may not have been saved."), this));
    lines->addSpacing(6);

    const QString block = LinesToQt(ReportBlock(report)).trimmed();
    auto* text = new QPlainTextEdit(block, this);
    text->setObjectName(QStringLiteral("report"));
    text->setReadOnly(true);
    text->setTabChangesFocus(true);
    text->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    text->setAccessibleName(tr("Report"));
    const QFontMetrics metrics(text->font());
    text->setMinimumSize(metrics.averageCharWidth() * 62, metrics.lineSpacing() * 9);
    lines->addWidget(text, 1);
    if (!keptIn.isEmpty()) {
        auto* kept = MakeLine(tr("Kept in %1").arg(keptIn), this);
        MakeFaint(*kept);
        lines->addWidget(kept);
    }

    auto* copy = new QPushButton(tr("C&opy"), this);
    copy->setObjectName(QStringLiteral("copy"));
    connect(copy, &QPushButton::clicked, this, [block] { QApplication::clipboard()->setText(block); });
    auto* close = new QPushButton(tr("&Close"), this);
    close->setDefault(true);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    parts.buttons->addWidget(copy);
    parts.buttons->addWidget(close);
    close->setFocus();
}

QString ErrorWindow::Text() const {
    return findChild<QPlainTextEdit*>(QStringLiteral("report"))->toPlainText();
}

} // namespace quillary::qt
