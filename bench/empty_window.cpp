// The baseline of the start: a main window of the toolkit with nothing in it, painted once. Its
// width and height are the arguments.
#include <QApplication>
#include <QMainWindow>
#include <QPaintEvent>
#include <QTimer>
#include <cstdlib>
#include <unistd.h>

namespace {

class EmptyWindow : public QMainWindow {
protected:
    void paintEvent(QPaintEvent *event) override
    {
        QMainWindow::paintEvent(event);
        QTimer::singleShot(0, [] { _exit(EXIT_SUCCESS); });
    }
};

} // namespace

int main(int argc, char **argv)
{
    QApplication application(argc, argv);
    EmptyWindow window;
    if (argc != 3)
        return EXIT_FAILURE;
    window.resize(std::atoi(argv[1]), std::atoi(argv[2]));
    window.show();
    return QApplication::exec();
}
