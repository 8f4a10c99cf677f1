#include "platform/controls/form.h"
#include "platform/controls/text_box.h"
#include "platform/qt/form_view.h"
#include "platform/qt/keys.h"
#include "platform/qt/text.h"
#include "platform/qt/theme.h"
#include "platform/qt/views.h"

#include <QCoreApplication>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QTextCursor>

namespace quillary::qt {

using controls::Aspect;

namespace {

constexpr int kRed = 255;

// What line and many-line fields have in common: keys go through the control's events first, and then the
// field edits by itself, with cursor, clipboard, undo and input methods as everywhere.
class TextView : public ControlView {
public:
    TextView(FormView& form, controls::TextBox& box, QWidget& widget)
        : ControlView(form, box, widget), box_(box) {}

    void Show(Aspect aspect) override {
        ControlView::Show(aspect);
        switch (aspect) {
        case Aspect::Text:
            ShowText();
            break;
        case Aspect::Selection:
            if (!telling_)
                SetSelection(box_.SelStart, box_.SelLength);
            break;
        case Aspect::Limits:
            ShowLimits();
            break;
        case Aspect::Colour:
            ShowWrong();
            break;
        default:
            break;
        }
    }

    bool KeyPressed(const QKeyEvent& event) override {
        return FilterKey(event, Widget(), [this](const controls::Key& key) { return LeavesField(key); });
    }

    bool WantsKey(const QKeyEvent& event) override {
        const controls::Key key = KeyOf(event);
        if (key.shift & controls::kAltMask)
            return ControlView::WantsKey(event);
        // The field itself claims its editing keys; the others must not go to a shortcut of the window.
        return key.code != 0 && !(key.shift & controls::kCtrlMask);
    }

    // What an input method commits was typed, too: each character asks the control's routines.
    bool OtherEvent(QWidget& on, QEvent& event) override {
        if (event.type() != QEvent::InputMethod || committing_)
            return false;
        auto& input = static_cast<QInputMethodEvent&>(event);
        if (input.commitString().isEmpty())
            return false;
        QString allowed;
        for (const char32_t typed : input.commitString().toUcs4()) {
            controls::Key rest;
            if (!Do([&] { rest = box_.GetForm().FilterKey(box_, controls::KeyOfCharacter(typed)); }))
                return true;
            const auto kept = static_cast<char32_t>(rest.character);
            if (rest.character >= ' ')
                allowed += QString::fromUcs4(&kept, 1);
        }
        if (allowed == input.commitString())
            return false;
        QInputMethodEvent changed(input.preeditString(), input.attributes());
        changed.setCommitString(allowed, input.replacementStart(), input.replacementLength());
        committing_ = true;
        QCoreApplication::sendEvent(&on, &changed);
        committing_ = false;
        return true;
    }

protected:
    virtual void ShowText() = 0;
    virtual void ShowLimits() = 0;
    virtual void SetSelection(int start, int length) = 0;
    // Whether a key is the form's, not the field's.
    virtual bool LeavesField(const controls::Key& key) const {
        return key.code == controls::kKeyTab || key.code == controls::kKeyReturn ||
               key.code == controls::kKeyEscape || key.code >= controls::kKeyF1 ||
               ((key.shift & controls::kAltMask) && key.code >= 'A' && key.code <= 'Z');
    }

    // The user has edited the field.
    void Edited(std::string text, int cursor) {
        if (showing_)
            return;
        telling_ = true;
        const bool here = Do([&] { box_.UserEdits(std::move(text), cursor); });
        telling_ = false;
        if (here)
            ShowText(); // a routine may have set another text
    }
    void Selected(int start, int length) {
        box_.SelStart.Store(start);
        box_.SelLength.Store(length);
    }

    controls::TextBox& box_;
    bool showing_ = false;

private:
    // Red marks an entry that is not accepted, in a red that the theme's ground lets read.
    void ShowWrong() {
        if (box_.ForeColor != kRed)
            return;
        QPalette palette = Widget().palette();
        palette.setColor(QPalette::Text, CurrentTheme().wrong);
        Widget().setPalette(palette);
    }

    bool committing_ = false, telling_ = false;
};

class LineView : public TextView {
public:
    LineView(FormView& form, controls::TextBox& box, QLineEdit& edit)
        : TextView(form, box, edit), edit_(edit) {
        connect(&edit_, &QLineEdit::textEdited, this, [this] { TakeEdit(); });
        connect(&edit_, &QLineEdit::selectionChanged, this, [this] { TellSelection(); });
        connect(&edit_, &QLineEdit::cursorPositionChanged, this, [this] { TellSelection(); });
    }

private:
    void ShowText() override {
        const QString text = ToQt(box_.Text.Get());
        if (edit_.text() == text)
            return;
        showing_ = true;
        if (box_.MaxLength > 0 && edit_.maxLength() < text.size())
            GiveRoom(edit_, box_.MaxLength, text);
        edit_.setText(text);
        if (!edit_.hasFocus())
            edit_.setCursorPosition(0); // the beginning is what one reads
        showing_ = false;
    }
    void ShowLimits() override {
        constexpr int kNoLimit = 32767;
        if (box_.MaxLength > 0)
            GiveRoom(edit_, box_.MaxLength, edit_.text());
        else
            edit_.setMaxLength(kNoLimit);
        edit_.setReadOnly(box_.Locked);
    }
    void TakeEdit() {
        if (box_.MaxLength > 0)
            CutTo(edit_, box_.MaxLength, box_.Text);
        Edited(FromQt(edit_.text()), edit_.cursorPosition());
    }
    void SetSelection(int start, int length) override {
        if (length > 0)
            edit_.setSelection(start, length);
        else
            edit_.setCursorPosition(start);
    }
    void TellSelection() {
        if (!showing_)
            Selected(edit_.hasSelectedText() ? edit_.selectionStart() : edit_.cursorPosition(),
                     edit_.selectionLength());
    }
    QLineEdit& edit_;
};

class LinesView : public TextView {
public:
    LinesView(FormView& form, controls::TextBox& box, QPlainTextEdit& edit)
        : TextView(form, box, edit), edit_(edit) {
        edit_.setTabChangesFocus(true);
        connect(&edit_, &QPlainTextEdit::textChanged, this,
                [this] { Edited(LinesFromQt(edit_.toPlainText()), edit_.textCursor().position()); });
        connect(&edit_, &QPlainTextEdit::cursorPositionChanged, this, [this] {
            const QTextCursor cursor = edit_.textCursor();
            if (!showing_)
                Selected(cursor.selectionStart(), cursor.selectionEnd() - cursor.selectionStart());
        });
    }
    QList<QWidget*> InputWidgets() override { return {&edit_, edit_.viewport()}; }
    bool TakesWheel() override { return true; }

private:
    void ShowText() override {
        const QString text = LinesToQt(box_.Text.Get());
        if (edit_.toPlainText() == text)
            return;
        showing_ = true;
        edit_.setPlainText(text);
        showing_ = false;
    }
    void ShowLimits() override { edit_.setReadOnly(box_.Locked); }
    void SetSelection(int start, int length) override {
        QTextCursor cursor = edit_.textCursor();
        cursor.setPosition(std::min<int>(start, static_cast<int>(edit_.document()->characterCount()) - 1));
        cursor.movePosition(QTextCursor::Right, QTextCursor::KeepAnchor, length);
        edit_.setTextCursor(cursor);
    }
    bool LeavesField(const controls::Key& key) const override {
        const bool newLine = key.code == controls::kKeyReturn && !(key.shift & controls::kCtrlMask);
        return TextView::LeavesField(key) && !newLine;
    }
    QPlainTextEdit& edit_;
};

} // namespace

std::unique_ptr<ControlView> MakeTextView(FormView& form, controls::Control& control, QWidget& widget) {
    auto& box = static_cast<controls::TextBox&>(control);
    if (auto* line = qobject_cast<QLineEdit*>(&widget))
        return std::make_unique<LineView>(form, box, *line);
    if (auto* lines = qobject_cast<QPlainTextEdit*>(&widget))
        return std::make_unique<LinesView>(form, box, *lines);
    return nullptr;
}

} // namespace quillary::qt
