#include "platform/controls/lists.h"
#include "platform/qt/form_view.h"
#include "platform/qt/list_model.h"
#include "platform/qt/text.h"
#include "platform/qt/views.h"

#include <QComboBox>
#include <QKeyEvent>
#include <QListView>
#include <QMouseEvent>

namespace quillary::qt {

using controls::Aspect;

namespace {

constexpr int kShownInPopup = 14;

class ComboView : public ControlView {
public:
    ComboView(FormView& form, controls::ListControl& list, QComboBox& combo)
        : ControlView(form, list, combo), list_(list), combo_(combo), model_(list, this) {
        // Measuring all entries would take long with many of them.
        combo_.setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
        combo_.setMaxVisibleItems(kShownInPopup);
        combo_.setModel(&model_);
        if (auto* view = qobject_cast<QListView*>(combo_.view()))
            view->setUniformItemSizes(true);
        connect(&combo_, &QComboBox::activated, this, [this](int entry) {
            if (Do([&] { list_.Choose(entry); }))
                ShowSelected();
        });
    }

    ~ComboView() override { Detach(); }

    void Show(Aspect aspect) override {
        ControlView::Show(aspect);
        if (aspect == Aspect::List)
            model_.Changed([this] { ShowSelected(); });
        else if (aspect == Aspect::ListIndex)
            ShowSelected();
    }

    void Flush() override { model_.Flush(); }
    bool TakesWheel() override { return combo_.hasFocus(); }

    bool MousePressed(QWidget& on, const QMouseEvent& event) override {
        model_.Flush();
        return ControlView::MousePressed(on, event);
    }

    bool KeyPressed(const QKeyEvent& event) override {
        const bool alt = event.modifiers() & Qt::AltModifier;
        const bool drops = event.key() == Qt::Key_F4 || event.key() == Qt::Key_Space ||
                           (alt && (event.key() == Qt::Key_Down || event.key() == Qt::Key_Up));
        if (!drops)
            return ControlView::KeyPressed(event);
        model_.Flush();
        combo_.showPopup();
        return true;
    }

private:
    void Released() override { model_.Detach(); }

    void ShowSelected() {
        const int selected = list_.ListIndex;
        if (selected < model_.rowCount() && combo_.currentIndex() != selected)
            combo_.setCurrentIndex(selected);
    }

    controls::ListControl& list_;
    QComboBox& combo_;
    ListModel model_;
};

class ListBoxView : public ControlView {
public:
    ListBoxView(FormView& form, controls::ListControl& list, QListView& view)
        : ControlView(form, list, view), list_(list), view_(view), model_(list, this) {
        view_.setUniformItemSizes(true);
        view_.setSelectionMode(QAbstractItemView::SingleSelection);
        view_.setEditTriggers(QAbstractItemView::NoEditTriggers);
        view_.setModel(&model_);
    }

    ~ListBoxView() override { Detach(); }

    QList<QWidget*> InputWidgets() override { return {&view_, view_.viewport()}; }
    bool TakesWheel() override { return true; }
    void Flush() override { model_.Flush(); }

    void Show(Aspect aspect) override {
        ControlView::Show(aspect);
        if (aspect == Aspect::List)
            model_.Changed([this] { ShowSelected(); });
        else if (aspect == Aspect::ListIndex)
            ShowSelected();
    }

    bool MousePressed(QWidget& on, const QMouseEvent& event) override {
        if (&on != view_.viewport() || event.button() != Qt::LeftButton)
            return false;
        model_.Flush();
        const QModelIndex entry = view_.indexAt(event.position().toPoint());
        const bool twice = event.type() == QEvent::MouseButtonDblClick;
        if (!entry.isValid()) {
            ReachByMouse();
            return true;
        }
        const int row = entry.row();
        const bool here = Do([&] {
            if (twice)
                list_.DoublePress();
            else
                list_.Choose(row);
        });
        if (here)
            ShowSelected();
        return true;
    }

private:
    void Released() override { model_.Detach(); }

    void ShowSelected() {
        const int selected = list_.ListIndex;
        if (selected >= model_.rowCount())
            return;
        const QModelIndex entry = model_.index(selected);
        view_.setCurrentIndex(entry);
        if (entry.isValid())
            view_.scrollTo(entry);
        else
            view_.clearSelection();
    }

    controls::ListControl& list_;
    QListView& view_;
    ListModel model_;
};

} // namespace

std::unique_ptr<ControlView> MakeComboView(FormView& form, controls::Control& control, QWidget& widget) {
    auto* combo = qobject_cast<QComboBox*>(&widget);
    return combo ? std::make_unique<ComboView>(form, static_cast<controls::ListControl&>(control), *combo)
                 : nullptr;
}

std::unique_ptr<ControlView> MakeListView(FormView& form, controls::Control& control, QWidget& widget) {
    auto* list = qobject_cast<QListView*>(&widget);
    return list ? std::make_unique<ListBoxView>(form, static_cast<controls::ListControl&>(control), *list)
                : nullptr;
}

} // namespace quillary::qt
