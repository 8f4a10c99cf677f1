#pragma once

#include "platform/system/services.h"

#include <QDialog>

#include <functional>
#include <map>

class QAbstractButton;
class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QVBoxLayout;

namespace quillary::qt {

// What the boxes have in common: their edge.
class Box : public QDialog {
protected:
    explicit Box(QWidget* parent) : QDialog(parent) {}
    void paintEvent(QPaintEvent* event) override;
};

// The suite's message box: heading in large type, sub-heading, a drawing that tells its kind, the text, and
// the buttons. It grows with its text up to two thirds of the screen; a longer text scrolls.
class MessageBox : public Box {
public:
    MessageBox(const system::MessageRequest& request, QWidget* parent);
    // The number of the pressed button; of closing it: Cancel, else No, else OK.
    int Answer() const { return answer_; }
    QAbstractButton* Button(int answer) const; // nullptr where the box has none
    QString Text() const;

protected:
    // A button's letter presses it, with or without Alt: nothing is typed in such a box.
    void keyPressEvent(QKeyEvent* event) override;
    void reject() override;

private:
    void AddButtons(int buttons, QHBoxLayout& row);
    QPlainTextEdit* text_;
    std::map<int, QAbstractButton*> buttons_;
    int answer_ = 0;
};

// One line from the user.
class InputBox : public Box {
public:
    InputBox(const system::InputRequest& request, QWidget* parent);
    QLineEdit& Field() const { return *field_; }
    std::string Entered() const;

private:
    QLineEdit* field_;
};

// A report of an error, which can be copied and read at leisure.
class ErrorWindow : public Box {
public:
    ErrorWindow(const system::ErrorReportText& report, const QString& keptIn, QWidget* parent);
    QString Text() const;
};

// The report as text: one block of lines, as it is copied and kept.
std::string ReportBlock(const system::ErrorReportText& report);

} // namespace quillary::qt
