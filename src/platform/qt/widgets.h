#pragma once

#include <QDate>
#include <QFrame>
#include <QImage>
#include <QLabel>
#include <QPointer>
#include <QToolButton>
#include <QWidget>

#include <functional>

class QCalendarWidget;

// The widgets that the toolkit lacks. Designer files name them as promoted classes.
namespace quillary::qt {

// A calendar behind a small button, beside the text box that shows the date.
class DateButton : public QToolButton {
public:
    explicit DateButton(QWidget* parent = nullptr);
    void SetDate(QDate date);
    QDate Date() const { return date_; }
    void SetPicked(std::function<void(QDate)> picked) { picked_ = std::move(picked); }
    void Drop(); // opens the calendar
    // The open calendar; nullptr.
    QCalendarWidget* Calendar() const;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QDate date_;
    std::function<void(QDate)> picked_;
    QPointer<QCalendarWidget> calendar_;
};

// Two arrows, one above the other.
class StepButtons : public QWidget {
public:
    explicit StepButtons(QWidget* parent = nullptr);
    void SetStepped(std::function<void(int)> stepped) { stepped_ = std::move(stepped); }
    void SetEnds(bool canGoUp, bool canGoDown);
    QToolButton& Up() const { return *up_; }
    QToolButton& Down() const { return *down_; }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QToolButton* up_;
    QToolButton* down_;
    std::function<void(int)> stepped_;
};

// A picture on white ground, scaled into its frame; a word of explanation where there is none. With the
// property "icon" of the Designer file it is the picture alone, or nothing.
class PictureFrame : public QFrame {
public:
    explicit PictureFrame(QWidget* parent = nullptr);
    // An empty path clears it; one that cannot be read leaves the former picture.
    void SetPicture(const QString& path);
    void SetStretch(bool stretch);
    bool HasPicture() const { return !picture_.isNull(); }
    QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QImage picture_;
    bool stretch_ = true;
};

// The band across the top of the screen, with the screen's title.
class TitleBand : public QFrame {
public:
    explicit TitleBand(QWidget* parent = nullptr);
    void SetTitle(const QString& title);
    QString Title() const { return title_; }
    void SetColour(const QColor& colour);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString title_;
    QColor colour_;
};

// The ground behind the firm's name: hills and furrows at its right end.
class HeaderBand : public QFrame {
public:
    explicit HeaderBand(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

// A group of related controls on a raised ground.
class Card : public QFrame {
public:
    explicit Card(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

// What the tabs stand on.
class TabGround : public QFrame {
public:
    explicit TabGround(QWidget* parent = nullptr) : QFrame(parent) {}

protected:
    void paintEvent(QPaintEvent* event) override;
};

// Closes the screen at its foot.
class Footer : public QFrame {
public:
    explicit Footer(QWidget* parent = nullptr) : QFrame(parent) {}

protected:
    void paintEvent(QPaintEvent* event) override;
};

// A button on the title band.
class TitleBarButton : public QToolButton {
public:
    explicit TitleBarButton(QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;
};

// One of the pages of a stack. While another one is shown it asks for no room: a stack wants that of its
// largest page, and a short page would scroll because of a long one.
class StackPage : public QWidget {
public:
    explicit StackPage(QWidget* parent = nullptr) : QWidget(parent) {}
    QSize minimumSizeHint() const override { return isHidden() ? QSize(0, 0) : QWidget::minimumSizeHint(); }
    int heightForWidth(int width) const override { return isHidden() ? -1 : QWidget::heightForWidth(width); }
};

// The place of a page, which the page's own layout fills. It stays empty while the page has none.
class PagePlace : public StackPage {
public:
    explicit PagePlace(QWidget* parent = nullptr) : StackPage(parent) {}
};

// A word of explanation, less strong than the text around it.
class Hint : public QLabel {
public:
    explicit Hint(QWidget* parent = nullptr);
};

// The title of a card.
class Heading : public QLabel {
public:
    explicit Heading(QWidget* parent = nullptr);
    explicit Heading(const QString& text, QWidget* parent = nullptr);
};

} // namespace quillary::qt
