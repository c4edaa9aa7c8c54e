#include "app/leftovers.h"
#include "app/logmessageoutput.h"
#include "app/version.h"
#include "ui/mainwindow.h"

#include <QApplication>
#include <QNetworkProxyFactory>
#include <QTextCodec>

namespace {

/// Runs the window. The window, then the application, is gone when this returns.
int runWindow(int argc, char** argv, MainWindow::Leftovers& left)
{
#ifdef Q_OS_WIN
    // Each screen has a scale of its own there. On X the window's layout follows the one resolution there is.
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
#endif
    QApplication application(argc, argv);
    MainWindow window;
    window.setWindowTitle("Talvex updater v. " + QString::number(updaterVersion));
    window.show();
    const int result = QApplication::exec();
    left = window.leftovers();
    leftovers::limitTheEnd(left, result);
    leftovers::endThreads(left);
    return result;
}

} // namespace

int main(int argc, char** argv)
{
#ifdef TALVEX_LOG_FILE
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& message) {
        logMessageOutput(type, message.toLocal8Bit().constData());
    });
#endif
    // Else every window has Qt load the driver for OpenGL, half of the start; nothing here draws with it.
    QCoreApplication::setAttribute(Qt::AA_ForceRasterWidgets);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("CP1251"));
    QNetworkProxyFactory::setUseSystemConfiguration(true);
    MainWindow::Leftovers left;
    const int result = runWindow(argc, argv, left);
    leftovers::giveBack(left);
    return result;
}
