#include "platform/qt/form_window.h"

#include "platform/qt/guard.h"
#include "platform/qt/text.h"
#include "platform/qt/theme.h"

#include <QCloseEvent>
#include <QScreen>
#include <QTimer>

#include <algorithm>

namespace quillary::qt {

namespace {

constexpr double kDesignFont = 14; // pixels of the font that sizes of forms are meant for

} // namespace

FormWindow::FormWindow(controls::Form& form, QWidget* parent, bool modal)
    : QWidget(parent, modal ? Qt::Dialog : Qt::Window), form_(form) {
    setObjectName(ToQt(form.Name()));
    if (modal)
        setWindowModality(Qt::ApplicationModal);
    setFocusPolicy(Qt::NoFocus);
    view_ = std::make_unique<FormView>(form, *this);
}

FormWindow::~FormWindow() {
    view_.reset(); // while the widgets are still there
}

void FormWindow::Place() {
    const QScreen* onScreen = screen();
    const QRect space = onScreen ? onScreen->availableGeometry() : QRect(0, 0, 1280, 1000);
    // The layout's own size is what the font asks for; the form's may be larger, and grows with the font.
    QSize wanted = sizeHint().expandedTo(minimumSizeHint());
    const double growth = std::max(1.0, fontInfo().pixelSize() / kDesignFont);
    if (form_.Width > 0 && form_.Height > 0)
        wanted = wanted.expandedTo(QSize(PixelsOf(form_.Width), PixelsOf(form_.Height)) * growth);
    wanted = wanted.boundedTo(space.size() - QSize(24, 48));
    resize(wanted);
    QPoint place = space.center() - QPoint(wanted.width() / 2, wanted.height() / 2) +
                   QPoint(PixelsOf(form_.OffMiddleLeft), PixelsOf(form_.OffMiddleTop));
    if (form_.Left != 0 || form_.Top != 0)
        place = {PixelsOf(form_.Left), PixelsOf(form_.Top)};
    place.setX(std::clamp(place.x(), space.left(), std::max(space.left(), space.right() - wanted.width())));
    place.setY(std::clamp(place.y(), space.top(), std::max(space.top(), space.bottom() - wanted.height())));
    move(place);
}

void FormWindow::Finish() {
    view_->Detach();
    hide();
    deleteLater();
}

void FormWindow::closeEvent(QCloseEvent* event) {
    // Whether it may close is the form's to say; when it does, it hides its window itself.
    event->ignore();
    if (!view_->IsDetached())
        Guarded([this] { form_.RequestClose(); });
}

void FormWindow::paintEvent(QPaintEvent* event) {
    QWidget::paintEvent(event);
    if (isModal())
        DrawBareEdge(*this);
    if (shown_)
        QTimer::singleShot(0, this, std::exchange(shown_, nullptr));
}

} // namespace quillary::qt
