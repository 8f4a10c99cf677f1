#pragma once

#include "platform/qt/control_view.h"

#include <memory>

// One maker a kind of control; nullptr when the widget is of the wrong class.
namespace quillary::qt {

using ViewMaker = std::unique_ptr<ControlView>(FormView& form, controls::Control& control, QWidget& widget);

ViewMaker MakeLabelView;   // QLabel
ViewMaker MakeButtonView;  // QPushButton, QToolButton, QCheckBox, QRadioButton
ViewMaker MakePanelView;   // any QWidget
ViewMaker MakePictureView; // PictureFrame
ViewMaker MakeTabView;     // QTabBar
ViewMaker MakeDateView;    // DateButton
ViewMaker MakeUpDownView;  // StepButtons
ViewMaker MakeTextView;    // QLineEdit, QPlainTextEdit
ViewMaker MakeComboView;   // QComboBox
ViewMaker MakeListView;    // QListView
ViewMaker MakeGridView;    // QTableView

} // namespace quillary::qt
