// bench_start_empty [TEXT]: the least that a program with a window can be, or with a window that shows
// something: loading the first font takes longer than all else.

#include <QApplication>
#include <QLabel>
#include <QMainWindow>

int main(int argc, char** argv) {
    QApplication application(argc, argv);
    QMainWindow window;
    window.resize(800, 600);
    if (argc > 1) window.setCentralWidget(new QLabel(QString::fromLocal8Bit(argv[1])));
    window.show();
    return QApplication::exec();
}
