// What the toolkit itself takes to show a window with ten filled grids: the measure for the program's own
// start (bench/start.py).
#include <QApplication>
#include <QTabWidget>
#include <QTableWidget>

int main(int argc, char** argv) {
    constexpr int kGrids = 10, kRows = 40, kColumns = 8;
    QApplication application(argc, argv);
    QTabWidget window;
    for (int grid = 0; grid < kGrids; ++grid) {
        auto* table = new QTableWidget(kRows, kColumns);
        for (int row = 0; row < kRows; ++row)
            for (int column = 0; column < kColumns; ++column)
                table->setItem(row, column, new QTableWidgetItem(QString::number(row * column)));
        window.addTab(table, QString::number(grid));
    }
    window.resize(920, 680);
    window.show();
    return QApplication::exec();
}
