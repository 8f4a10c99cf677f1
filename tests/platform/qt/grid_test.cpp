#include "platform/qt/demo_form.h"

#include "platform/qt/grid_model.h"
#include "platform/qt/grid_view.h"
#include "platform/runtime/conversions.h"

#include <QAbstractItemModelTester>
#include <QApplication>
#include <QClipboard>
#include <QHeaderView>
#include <QLineEdit>
#include <QListView>
#include <QMouseEvent>
#include <QTableView>

#include <gtest/gtest.h>

#include <map>

namespace quillary::qt::testing {

using controls::Key;

class GridTest : public ::testing::Test, protected QtTest {
protected:
    void ShowGrid(long rows) {
        form.FillGrid(rows);
        form.Show();
        QApplication::setActiveWindow(&ViewOf(form).Window());
        Settle();
    }
    QTableView& Table() { return WidgetOf<QTableView>(form.tgrd_rows); }
    GridView& View() { return dynamic_cast<GridView&>(*ViewOf(form).ViewOf(form.tgrd_rows)); }
    std::string Cell(long row, int col) { return form.tgrd_rows.Shown(row, col); }
    DemoForm form;
};

TEST_F(GridTest, TheModelKeepsItsPromisesWhileRowsAndColumnsChange) {
    form.FillGrid(5);
    GridModel model(form.tgrd_rows, nullptr);
    const QAbstractItemModelTester tester(&model, QAbstractItemModelTester::FailureReportingMode::Fatal);
    EXPECT_EQ(model.rowCount(), 5);
    EXPECT_EQ(model.data(model.index(2, 0), Qt::DisplayRole), "row 2");
    EXPECT_EQ(model.data(model.index(2, 2), kPictureRole), 102);
    EXPECT_EQ(model.data(model.index(2, 3), Qt::DisplayRole), "Sheep");
    EXPECT_EQ(model.headerData(1, Qt::Horizontal, Qt::DisplayRole), "Number");

    form.tgrd_rows.AllowAddNew = true;
    model.TakeRows();
    EXPECT_EQ(model.rowCount(), 6);
    form.rows->AppendRows(10);
    form.tgrd_rows.ReBind();
    model.TakeRows();
    EXPECT_EQ(model.rowCount(), 16);
    form.rows->DeleteRows(0, 12);
    // Not taken up yet: what is gone reads empty, and nothing is out of bounds.
    EXPECT_FALSE(model.data(model.index(15, 0), Qt::DisplayRole).isValid());
    model.TakeRows();
    EXPECT_EQ(model.rowCount(), 4);
    form.tgrd_rows.RemoveColumn(0);
    model.TakeColumns();
    EXPECT_EQ(model.columnCount(), 3);
    form.tgrd_rows.GoToRow(2);
    model.TakeCurrent();
    model.Detach();
    EXPECT_EQ(model.rowCount(), 0);
}

TEST_F(GridTest, ColumnsAreShownAsTheGridHasThem) {
    form.FillGrid(3);
    form.tgrd_rows.Columns(1).Visible = false;
    form.tgrd_rows.Columns(0).Width = 3000;
    form.tgrd_rows.HeadLines = 3;
    form.tgrd_rows.FetchCellStyle = [](int, int, std::int64_t bookmark, int col, controls::CellStyle& style) {
        if (col == 3 && bookmark == 1)
            style.backColor = 255;
    };
    ShowGrid(3);
    const int oneLine = Table().horizontalHeader()->height() / 2;
    EXPECT_TRUE(Table().isColumnHidden(1));
    EXPECT_GT(Table().columnWidth(0), 3000 / 15 - 1);
    form.tgrd_rows.Columns(1).Visible = true;
    form.tgrd_rows.HeadLines = 1;
    Settle();
    EXPECT_FALSE(Table().isColumnHidden(1));
    EXPECT_GT(Table().horizontalHeader()->height(), 0);
    EXPECT_LT(Table().horizontalHeader()->height(), oneLine * 2);
    const QAbstractItemModel& model = *Table().model();
    EXPECT_EQ(model.data(model.index(1, 3), Qt::BackgroundRole).value<QColor>(), QColor(255, 0, 0));
    EXPECT_FALSE(model.data(model.index(0, 3), Qt::BackgroundRole).isValid());
}

TEST_F(GridTest, EscapeDropsFirstTheCellThenTheRow) {
    auto& grid = form.tgrd_rows;
    ShowGrid(4);
    hand.GoToRow(grid, 1);
    hand.EditCell(grid, 0, "y");
    hand.PressKey(grid, controls::ParseKey("z"));
    ASSERT_NE(View().Editor(), nullptr);
    hand.PressKey(grid, controls::ParseKey("Escape"));
    EXPECT_EQ(Cell(1, 0), "y");
    EXPECT_EQ(View().Editor(), nullptr);
    hand.PressKey(grid, controls::ParseKey("Escape"));
    EXPECT_EQ(Cell(1, 0), "row 1");
    EXPECT_FALSE(grid.DataChanged);
}

TEST_F(GridTest, CellsAndRowsAreCopiedAsTheyRead) {
    auto& grid = form.tgrd_rows;
    ShowGrid(4);
    grid.Columns(2).Visible = false;
    ASSERT_TRUE(hand.GoToRow(grid, 2));
    ASSERT_TRUE(hand.MoveToColumn(grid, 3));
    hand.PressKey(grid, controls::ParseKey("Ctrl+C"));
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), Cell(2, 3));
    hand.PressKey(grid, controls::ParseKey("Ctrl+Shift+C"));
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(),
              Cell(2, 0) + "\t" + Cell(2, 1) + "\t" + Cell(2, 3));
    EXPECT_FALSE(grid.EditActive);
    // A routine that takes the key for itself keeps it.
    grid.KeyDown = [](int& keyCode, int) { keyCode = 0; };
    QApplication::clipboard()->setText("former");
    hand.PressKey(grid, controls::ParseKey("Ctrl+C"));
    EXPECT_EQ(QApplication::clipboard()->text().toStdString(), "former");
}

TEST_F(GridTest, ARefusedEditShowsTheOldValueAgain) {
    auto& grid = form.tgrd_rows;
    int asked = 0;
    grid.BeforeColEdit = [&](int col, int, bool& cancel) {
        ++asked;
        cancel = col == 1;
    };
    grid.BeforeColUpdate = [](int col, runtime::Variant&, bool& cancel) { cancel = col == 0; };
    ShowGrid(2);
    hand.EditCell(grid, 1, "123");
    EXPECT_EQ(asked, 1) << "one refusal ends the typing";
    EXPECT_EQ(Cell(0, 1), "0");
    hand.EditCell(grid, 0, "new");
    EXPECT_EQ(Cell(0, 0), "row 0");
    EXPECT_EQ(View().Editor(), nullptr);
    EXPECT_FALSE(grid.EditActive);
}

TEST_F(GridTest, ColumnsThatFillTheTableKeepRoomForTheirCaptions) {
    auto& grid = form.tgrd_rows;
    ShowGrid(2);
    grid.Columns(0).Caption = "Goods and services registrations";
    grid.Columns(0).Width = 100;
    Table().setProperty("fillWidth", true);
    const auto widthUnder = [&](int headLines) {
        grid.HeadLines = headLines;
        View().Flush();
        return Table().columnWidth(0);
    };
    const QFontMetrics metrics = Table().horizontalHeader()->fontMetrics();
    const int whole = metrics.horizontalAdvance(QStringLiteral("Goods and services registrations"));
    EXPECT_GE(widthUnder(1), whole);
    // Where it may wrap, its longest word has to fit.
    EXPECT_LT(widthUnder(2), whole);
    EXPECT_GE(widthUnder(2), metrics.horizontalAdvance(QStringLiteral("registrations")));
}

TEST_F(GridTest, ABorderThatTheUserMovesStaysWhereItWasLet) {
    auto& grid = form.tgrd_rows;
    ShowGrid(2);
    QHeaderView& heads = *Table().horizontalHeader();
    for (const bool fills : {false, true}) {
        Table().setProperty("fillWidth", fills);
        grid.Columns(0).Width = 1500;
        View().Flush();
        const int former = Table().columnWidth(0);
        const auto mouse = [&](QEvent::Type type, int x, Qt::MouseButtons held) {
            const QPointF place(x, 5);
            QMouseEvent event(type, place, heads.viewport()->mapToGlobal(place), Qt::LeftButton, held,
                              Qt::NoModifier);
            QApplication::sendEvent(heads.viewport(), &event);
        };
        const int border = heads.sectionViewportPosition(0) + former - 1;
        mouse(QEvent::MouseButtonPress, border, Qt::LeftButton);
        for (int moved = 10; moved <= 40; moved += 10) {
            mouse(QEvent::MouseMove, border + moved, Qt::LeftButton);
            Settle();
        }
        mouse(QEvent::MouseButtonRelease, border + 40, Qt::NoButton);
        Settle();
        EXPECT_NEAR(Table().columnWidth(0), former + 40, 2) << fills;
        grid.Columns(1).Caption = "Shown anew";
        View().Flush();
        EXPECT_NEAR(Table().columnWidth(0), former + 40, 3) << fills;
    }
}

TEST_F(GridTest, TheEditorKeepsTheKeyboardAndLeavingTheGridWritesTheRow) {
    auto& grid = form.tgrd_rows;
    ShowGrid(3);
    hand.Focus(grid);
    hand.MoveToColumn(grid, 0);
    SendKey(*View().FocusWidget(), controls::ParseKey("a"));
    ASSERT_NE(View().Editor(), nullptr);
    EXPECT_EQ(QApplication::focusWidget(), View().Editor());
    SendKey(*View().FocusWidget(), controls::ParseKey("b"));
    EXPECT_EQ(grid.EditText(), "ab");
    EXPECT_TRUE(grid.HasFocus());
    hand.Click(form.cmd_add);
    EXPECT_FALSE(grid.HasFocus());
    EXPECT_EQ(View().Editor(), nullptr);
    EXPECT_EQ(runtime::TextOf((*form.rows)(0, 0)), "ab");
}

TEST_F(GridTest, TypingInAListColumnPointsAtItsEntry) {
    auto& grid = form.tgrd_rows;
    ShowGrid(2);
    hand.MoveToColumn(grid, 3);
    SendKey(*View().FocusWidget(), controls::ParseKey("B"));
    ASSERT_TRUE(grid.EditActive);
    QListView* list = View().DropDown();
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->currentIndex().data(), "Beef");
    SendKey(*list, {controls::kKeyReturn, 0, 13});
    Settle();
    EXPECT_EQ(Cell(0, 3), "Beef");
}

TEST_F(GridTest, RowsAreDraggedAndPressedTwice) {
    auto& grid = form.tgrd_rows;
    std::string log;
    grid.RowDropped = [&](controls::Grid& from, long before) {
        log += std::to_string(from.Row) + ">" + std::to_string(before) + " ";
    };
    ShowGrid(4);
    Table().setMinimumHeight(400); // all rows and the space below them are seen
    Settle();
    ASSERT_TRUE(hand.DragRow(grid, 3, grid, 1));
    EXPECT_EQ(log, "") << "rows stay where they are until the grid lets them be dragged";
    grid.DragRows = true;
    ASSERT_TRUE(hand.DragRow(grid, 3, grid, 1));
    ASSERT_TRUE(hand.DragRow(grid, 0, grid, 4));
    // The way of the mouse within a row is a click.
    ASSERT_TRUE(hand.GoToRow(grid, 2));
    EXPECT_EQ(log, "3>1 0>4 ");

    // Without a routine a double click edits the cell, with one it does what the routine does.
    ASSERT_TRUE(hand.DoubleClick(grid));
    EXPECT_TRUE(grid.EditActive);
    grid.CancelEdit();
    grid.DblClick = [&] { log += "twice " + std::to_string(grid.Row); };
    ASSERT_TRUE(hand.DoubleClick(grid));
    EXPECT_FALSE(grid.EditActive);
    EXPECT_EQ(log, "3>1 0>4 twice 2");
}

TEST_F(GridTest, LongGridsReadWhatIsSeenAndNoMore) {
    constexpr long kRows = 100000;
    std::map<std::int64_t, int> asked;
    form.tgrd_rows.FetchCellStyle = [&](int, int, std::int64_t bookmark, int, controls::CellStyle&) {
        ++asked[bookmark];
    };
    ShowGrid(kRows);
    Table().grab();
    EXPECT_GT(asked.size(), 0u);
    EXPECT_LT(asked.size(), 200u) << "rows that nobody sees were drawn";
    ASSERT_TRUE(hand.GoToRow(form.tgrd_rows, kRows - 1));
    EXPECT_EQ(form.tgrd_rows.Row, kRows - 1);
    EXPECT_TRUE(Table().rowAt(Table().viewport()->height() - 2) >= kRows - 2);
    Table().grab();
    EXPECT_LT(asked.size(), 400u);
}

} // namespace quillary::qt::testing
