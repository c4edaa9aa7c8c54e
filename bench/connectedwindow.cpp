#include "bench/connectedwindow.h"

#include <QApplication>
#include <QMessageBox>
#include <QPushButton>
#include <QTimer>

namespace {

void writeServiceFile(int bytes)
{
    QFile file(QCoreApplication::applicationDirPath() + "/SUPER_MEGA_UPDATE.sb");
    if (!file.open(QIODevice::WriteOnly) || file.write(QByteArray(bytes, 'x')) != bytes)
        qFatal("cannot write %s", qPrintable(file.fileName()));
}

} // namespace

void dismissNextBox()
{
    constexpr int lookEveryMs = 20;
    QTimer::singleShot(lookEveryMs, [] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
            box->accept();
        else
            dismissNextBox();
    });
}

void press(const MainWindow& window, const char* button)
{
    window.findChild<QPushButton*>(button)->click();
}

std::unique_ptr<MainWindow> connectedWindow(const std::shared_ptr<QuickUnit>& unit, int imageBytes)
{
    writeServiceFile(imageBytes);
    qputenv("TALVEX_VIRTUAL_UNITS", ""); // with it set the bus keeps no record of the calls
    virtualbus::attach(QuickUnit::record(), unit);
    auto window = std::make_unique<MainWindow>();
    window->show();
    dismissNextBox();
    press(*window, "connect_button");
    return window;
}
