#include "app/exitsignals.h"
#include "app/logmessageoutput.h"
#include "app/programend.h"
#include "base/updaterversion.h"
#include "ui/mainwindow.h"

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QNetworkProxyFactory>
#include <QTextCodec>

#include <cstdlib>

namespace {

/// Gives windows the program's icon, in the sizes that title bars, task bars and window switchers show. From
/// plain pixels: to read a PNG, Qt would first load all its plug-ins for pictures.
void setIcon()
{
#ifndef Q_OS_MACOS // there the Dock would show it in place of the bundle's own
    QIcon icon;
    for (const int size : {16, 32, 48, 128}) {
        QFile file(QString(":/icon/%1").arg(size));
        QImage image(size, size, QImage::Format_RGBA8888);
        if (file.open(QIODevice::ReadOnly) &&
            file.read(reinterpret_cast<char*>(image.bits()), image.sizeInBytes()) == image.sizeInBytes())
            icon.addPixmap(QPixmap::fromImage(image));
    }
    QApplication::setWindowIcon(icon);
#endif
}

/// Runs the window. When this returns, the window and then the application have been destroyed.
int runWindow(int argc, char** argv)
{
#ifdef Q_OS_WIN
    // There, each screen has its own scale. On X there is one resolution, which the window's layout follows.
    QApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    QApplication::setHighDpiScaleFactorRoundingPolicy(Qt::HighDpiScaleFactorRoundingPolicy::PassThrough);
#endif
    QApplication application(argc, argv);
    setIcon();
    programend::giveBackAtExit();
    exitsignals::quitOnSignal(application);
    MainWindow window;
    // Intentional: without the "0." of the offers, and not translated.
    window.setWindowTitle("Talvex updater v. " + QString::number(updaterVersion));
    window.show();
    const int result = QApplication::exec();
    programend::limitTheEnd(result);
    programend::endThreads(window.leftovers());
    return result;
}

} // namespace

int main(int argc, char** argv)
{
    exitsignals::listen([] { programend::limitTheEnd(EXIT_SUCCESS); });
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
    programend::giveBack();
    return result;
}
