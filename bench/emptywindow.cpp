// The least that shows a window, as Qt makes one that is told nothing: ready for OpenGL.

#include <QApplication>
#include <QMainWindow>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QMainWindow window;
    window.resize(488, 440);
    window.show();
    return QApplication::exec();
}
