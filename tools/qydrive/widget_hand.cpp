#include "hand.h"

#include "platform/qt/form_host.h"
#include "platform/qt/widget_gestures.h"

namespace quillary::tools {

namespace {

// The program's own windows; while a dialog is open the scenario plays on in place of an event loop.
class PlayingHost : public qt::QtFormHost {
public:
    explicit PlayingHost(ModalPlay play) : play_(std::move(play)) {}
    void RunModal(controls::Form& form) override { play_(form); }
    // A menu that stands open would wait for its user; its entries are clicked by name.
    void PopupMenu(controls::Form&, controls::MenuItem&, int, int) override {}

private:
    ModalPlay play_;
};

// Key presses, clicks and selections on the widgets.
class WidgetHand : public Hand {
public:
    explicit WidgetHand(ModalPlay play) : host_(std::move(play)), hand_(host_) {}
    controls::FormHost& Host() override { return host_; }
    Outcome Focus(controls::Control& control) override { return hand_.Focus(control); }
    Outcome TypeText(controls::Control& control, std::string_view text) override {
        return hand_.TypeText(control, text);
    }
    Outcome PressKey(controls::Control& control, std::string_view key) override {
        return hand_.PressKey(control, controls::ParseKey(key));
    }
    Outcome Click(controls::Control& control) override { return hand_.Click(control); }
    Outcome Check(controls::Control& control, bool on) override { return hand_.Check(control, on); }
    Outcome Choose(controls::Control& control, int entry) override { return hand_.Choose(control, entry); }
    Outcome Pick(controls::Control& control, runtime::Date date) override {
        return hand_.PickDate(control, date);
    }
    Outcome Spin(controls::Control& control, bool up) override { return hand_.Spin(control, up ? 1 : -1); }
    Outcome PickTab(controls::Control& control, int tab) override { return hand_.PickTab(control, tab); }
    Outcome GoToRow(controls::Grid& grid, long row) override { return hand_.GoToRow(grid, row); }
    Outcome GoToNewRow(controls::Grid& grid) override { return hand_.GoToNewRow(grid); }
    Outcome EditCell(controls::Grid& grid, int col, std::string_view text) override {
        return hand_.EditCell(grid, col, text);
    }
    Outcome MoveToColumn(controls::Grid& grid, int col) override { return hand_.MoveToColumn(grid, col); }
    Outcome ToggleCell(controls::Grid& grid, int col) override { return hand_.ToggleCell(grid, col); }
    Outcome CommitRow(controls::Grid& grid) override { return hand_.CommitRow(grid); }
    Outcome DeleteRow(controls::Grid& grid) override { return hand_.DeleteRow(grid); }
    Outcome Leave(controls::Form& form) override { return hand_.Leave(form); }
    Outcome Close(controls::Form& form) override { return hand_.CloseForm(form); }
    void Settle() override { host_.DoEvents(); }

private:
    PlayingHost host_;
    qt::WidgetHand hand_;
};

} // namespace

std::unique_ptr<Hand> MakeWidgetHand(ModalPlay play) {
    return std::make_unique<WidgetHand>(std::move(play));
}

} // namespace quillary::tools
