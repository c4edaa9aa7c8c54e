#include "tests/random/run.h"

#include "app/programend.h"
#include "tests/random/answers.h"
#include "tests/random/user.h"
#include "tests/support/filesizelimit.h"
#include "tests/support/limits.h"
#include "tests/support/testwindow.h"
#include "tests/support/texts.h"

#include <QApplication>
#include <QDir>
#include <QNetworkProxyFactory>
#include <QThread>

#include <optional>

namespace {

bool isVerbose = false;

void takeMessage(QtMsgType type, const QMessageLogContext& /*context*/, const QString& message)
{
    if (isVerbose || type == QtFatalMsg)
        fprintf(stderr, "  | %s\n", qPrintable(message));
}

QString imageName()
{
    return QCoreApplication::applicationDirPath() + '/' + filename::image;
}

QString takenName(Plan::Taken taken)
{
    switch (taken) {
    case Plan::Taken::image:
        return filename::image;
    case Plan::Taken::download:
        return filename::download;
    case Plan::Taken::backup:
        return filename::backup;
    case Plan::Taken::none:
        break;
    }
    return {};
}

/// The files as an earlier run, or somebody else, has left them.
ImageFiles prepareDisk(const Plan& plan)
{
    QDir directory(QCoreApplication::applicationDirPath());
    for (const QString& name : directory.entryList({filename::service, filename::anyLog}))
        directory.remove(name);
    if (!ImageFiles{plan.oldImage, plan.oldDownload, plan.oldBackup}.placeAt(imageName()))
        qFatal("cannot place the image's files");
    if (plan.hasServiceFile)
        placeServiceFile(plan.image);
    if (const QString taken = takenName(plan.taken); !taken.isEmpty()) {
        directory.remove(taken);
        if (!directory.mkdir(taken))
            qFatal("cannot make %s", qPrintable(taken));
        placeFile(taken + "/somebody's", "file");
    }
    return ImageFiles::at(imageName());
}

QList<QByteArray> readLogs()
{
    QList<QByteArray> logs;
    const QDir directory(QCoreApplication::applicationDirPath());
    for (const QString& name : directory.entryList({filename::anyLog})) {
        QFile file(directory.filePath(name));
        logs += file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("unreadable");
    }
    return logs;
}

/// The program's run, from its window to its end, as main() does it.
void runWindow(const Plan& plan, const RawServer& server, Ending& ending)
{
    MainWindow::Leftovers left;
    {
        Boxes boxes;
        boxes.leaveOpen();
        MainWindow window;
        window.show();
        std::optional<FileSizeLimit> limit;
        if (plan.fileSizeLimit)
            limit.emplace(static_cast<rlim_t>(*plan.fileSizeLimit));
        User user(plan, server, window, boxes);
        user.begin();
        ending.exitCode = QApplication::exec();
        left = window.leftovers();
        programend::endThreads(left);
        ending.endedByUser = user.hasEndedIt();
        ending.wrong = user.violations();
        ending.last = user.observed();
        ending.boxes = boxes.lines();
    }
    if (!ending.last.logPressed)
        left.worker->wait(static_cast<unsigned long>(
            limits::hangMs())); // it is not blocked: only a slow machine could keep it
    programend::giveBack();
}

} // namespace

Ending runOnce(const Plan& plan, bool verbose)
{
    isVerbose = verbose;
    qInstallMessageHandler(takeMessage);
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qputenv("PATH", "/nowhere"); // no browser opens
    qputenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere");
    qputenv("DBUS_SESSION_BUS_ADDRESS", "disabled:");
    char name[] = "tst_random";
    char* arguments[] = {name, nullptr};
    int count = 1;
    QApplication application(count, arguments);
    Ending ending;
    ending.before = prepareDisk(plan);
    RawServer server;
    setAnswers(server, plan);
    qputenv("http_proxy", server.address({}).toUtf8());
    QNetworkProxyFactory::setUseSystemConfiguration(true);
    for (const virtualunit::Options& unit : plan.units)
        virtualbus::attach(unit);
    runWindow(plan, server, ending);
    for (int unit = 1; unit <= static_cast<int>(plan.units.size()); ++unit)
        ending.units.push_back(virtualbus::unit(unit));
    ending.openHandles = virtualbus::openHandles();
    ending.enumerationsNotFreed = virtualbus::enumerationsNotFreed();
    ending.asked = server.paths();
    ending.after = ImageFiles::at(imageName());
    ending.logs = readLogs();
    return ending;
}
