#include "app/exitsignals.h"
#include "app/leftovers.h"
#include "app/logmessageoutput.h"
#include "base/version.h"
#include "ui/mainwindow.h"

#include <QApplication>
#include <QNetworkProxyFactory>
#include <QTextCodec>

#include <cstdlib>

namespace {

/// Runs the window. When this returns, the window and then the application have been destroyed.
int runWindow(int argc, char** argv)
{
#ifdef Q_OS_WIN
    // There, each screen has its own scale. On X there is one resolution, which the window's layout follows.
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
#endif
    QApplication application(argc, argv);
    leftovers::giveBackAtExit();
    exitsignals::quitOnSignal(application);
    MainWindow window;
    // Intentional: without the "0." of the offers, and not translated.
    window.setWindowTitle("Talvex updater v. " + QString::number(updaterVersion));
    window.show();
    const int result = QApplication::exec();
    leftovers::limitTheEnd(result);
    leftovers::endThreads(window.leftovers());
    return result;
}

} // namespace

int main(int argc, char** argv)
{
    exitsignals::listen([] { leftovers::limitTheEnd(EXIT_SUCCESS); });
#ifdef TALVEX_LOG_FILE
    qInstallMessageHandler([](QtMsgType type, const QMessageLogContext&, const QString& message) {
        logMessageOutput(type, message.toLocal8Bit().constData());
    });
#endif
    // Otherwise Qt loads the OpenGL driver for every window, which takes half of the start-up time; nothing
    // here uses it.
    QCoreApplication::setAttribute(Qt::AA_ForceRasterWidgets);
    QTextCodec::setCodecForLocale(QTextCodec::codecForName("CP1251"));
    QNetworkProxyFactory::setUseSystemConfiguration(true);
    const int result = runWindow(argc, argv);
    leftovers::giveBack();
    return result;
}
