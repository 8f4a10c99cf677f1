#pragma once

#include "platform/controls/form.h"
#include "platform/qt/form_view.h"

#include <QWidget>

#include <functional>
#include <memory>

namespace quillary::qt {

// The window of one form, from its showing to its closing.
class FormWindow : public QWidget {
public:
    // Builds the form's layout; the errors of FormView.
    FormWindow(controls::Form& form, QWidget* parent, bool modal);
    ~FormWindow() override;

    FormView& View() const { return *view_; }
    // Stands at the form's own place and size, where it has them, else in the middle of the screen.
    void Place();
    // The form has closed: nothing is told to it any more, and the window goes.
    void Finish();
    void SetShown(std::function<void()> shown) { shown_ = std::move(shown); }

protected:
    void closeEvent(QCloseEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    controls::Form& form_;
    std::unique_ptr<FormView> view_;
    std::function<void()> shown_; // once, after the first drawing
};

} // namespace quillary::qt
