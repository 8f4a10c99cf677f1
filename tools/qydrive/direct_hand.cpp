#include "hand.h"

namespace quillary::tools {

namespace {

constexpr int kScreenWidth = 19200; // twips: 1280 by 1024 points of a fifteenth of a twip
constexpr int kScreenHeight = 15360;

// Shows nothing: forms are open by their own account.
class InvisibleHost : public controls::FormHost {
public:
    explicit InvisibleHost(ModalPlay play) : play_(std::move(play)) {}
    void FormShown(controls::Form&, bool) override {}
    void FormHidden(controls::Form&) override {}
    void RunModal(controls::Form& form) override { play_(form); }
    void PopupMenu(controls::Form&, controls::MenuItem&, int, int) override {}
    void DoEvents() override {}
    int ScreenWidth() const override { return kScreenWidth; }
    int ScreenHeight() const override { return kScreenHeight; }

private:
    ModalPlay play_;
};

// The gestures of the controls themselves.
class DirectHand : public Hand {
public:
    explicit DirectHand(ModalPlay play) : host_(std::move(play)) {}
    controls::FormHost& Host() override { return host_; }
    Outcome Focus(controls::Control& control) override { return control.Focus(); }
    Outcome TypeText(controls::Control& control, std::string_view text) override {
        return control.TypeText(text);
    }
    Outcome PressKey(controls::Control& control, std::string_view key) override {
        return control.PressKey(controls::ParseKey(key));
    }
    Outcome Click(controls::Control& control) override { return control.Press(); }
    Outcome Check(controls::Control& control, bool on) override { return control.Check(on); }
    Outcome Choose(controls::Control& control, int entry) override { return control.Choose(entry); }
    Outcome Pick(controls::Control& control, runtime::Date date) override { return control.Pick(date); }
    Outcome Spin(controls::Control& control, bool up) override { return control.Step(up ? 1 : -1); }
    Outcome PickTab(controls::Control& control, int tab) override { return control.PickTab(tab); }
    Outcome GoToRow(controls::Grid& grid, long row) override { return grid.GoToRow(row); }
    Outcome GoToNewRow(controls::Grid& grid) override { return grid.GoToNewRow(); }
    Outcome EditCell(controls::Grid& grid, int col, std::string_view text) override {
        return grid.EditCell(col, text);
    }
    Outcome MoveToColumn(controls::Grid& grid, int col) override { return grid.MoveToColumn(col); }
    Outcome ToggleCell(controls::Grid& grid, int col) override { return grid.ToggleCell(col); }
    Outcome CommitRow(controls::Grid& grid) override {
        Outcome reachable = grid.Reachable();
        return reachable ? grid.CommitRow() : reachable;
    }
    Outcome DeleteRow(controls::Grid& grid) override { return grid.DeleteRow(); }
    Outcome Leave(controls::Form& form) override { return form.Leave(); }
    Outcome Close(controls::Form& form) override { return form.RequestClose(); }

private:
    InvisibleHost host_;
};

} // namespace

std::unique_ptr<Hand> MakeDirectHand(ModalPlay play) {
    return std::make_unique<DirectHand>(std::move(play));
}

} // namespace quillary::tools
