#include "tests/support/testwindow.h"

#include "log/logdownloader.h"
#include "net/updatechecker.h"
#include "tests/support/filecontent.h"
#include "tests/support/limits.h"
#include "tests/support/texts.h"
#include "update/sleepinhibitor.h"
#include "update/transferstate.h"
#include "virtualunit/hidapi/virtualbus.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QRegularExpression>
#include <QTest>
#include <QThread>
#include <QTimer>

namespace {

/// A quit that nobody's event loop took ends every later one at once; a loop of its own takes it.
void takePendingQuit()
{
    QTimer::singleShot(0, qApp, &QCoreApplication::quit);
    QCoreApplication::exec();
}

void clearProgramDirectory()
{
    QDir directory(QCoreApplication::applicationDirPath());
    const QStringList left = directory.entryList({"updater.sb*", filename::service, filename::anyLog});
    for (const QString& name : left)
        directory.remove(name);
}

void clearProgramState()
{
    sleepinhibitor::release();
    delete transferstate::transferTimer;
    transferstate::transferTimer = nullptr;
    transferstate::fakeProgressValue = 0;
    transferstate::fakeProgressTick = 0;
}

} // namespace

TestWindow::TestWindow()
{
    takePendingQuit();
    virtualbus::clear();
    clearProgramState();
    window = std::make_unique<MainWindow>();
    window->show();
}

TestWindow::~TestWindow()
{
    clearProgramState();
    UpdateChecker* const oldChecker = &checker();
    LogDownloader* const oldDownloader = &downloader();
    QThread* const worker = window->leftovers().worker;
    window.reset();
    worker->quit();
    worker->wait();
    delete oldDownloader;
    delete worker;
    delete oldChecker;
    clearProgramDirectory();
}

QStringList TestWindow::controls() const
{
    QStringList all;
    const auto widgets = window->findChildren<QWidget*>();
    for (const QWidget* widget : widgets) {
        if (widget->objectName().isEmpty() || widget->window() != window.get())
            continue;
        const QString state = QString(widget->isEnabled() ? "enabled" : "disabled") +
                              (widget->isVisible() ? " visible" : " hidden");
        all += QStringList{widget->objectName(), state, widget->property("text").toString(),
                           widget->property("value").toString()}
                   .join('|');
    }
    return all;
}

void placeFile(const QString& name, const QByteArray& content)
{
    const QString path = QCoreApplication::applicationDirPath() + '/' + name;
    if (!writeFile(path, content))
        qFatal("cannot write %s", qPrintable(path));
}

void placeServiceFile(const QByteArray& image)
{
    placeFile(filename::service, image);
}

void expectDiagnostic(const QString& beginning)
{
    const QRegularExpression line('^' + QRegularExpression::escape(beginning));
    QTest::ignoreMessage(QtCriticalMsg, line); // qErrnoWarning's type, whatever its name says
}

bool quits(const std::function<void()>& act)
{
    bool late = false;
    QTimer limit;
    limit.setSingleShot(true);
    QObject::connect(&limit, &QTimer::timeout, [&late] {
        late = true; // a box that this ends may itself be followed by a quit
        QCoreApplication::exit(1);
    });
    limit.start(limits::hang());
    QTimer::singleShot(0, qApp, act);
    return QCoreApplication::exec() == 0 && !late;
}

bool runsOn(const std::function<void()>& act, const std::function<bool()>& isReached)
{
    constexpr int ticksBeyond = 30; // a quit that is to come would have come in them
    int ticks = 0;
    const QDeadlineTimer limit(limits::hang());
    QTimer beat;
    QObject::connect(&beat, &QTimer::timeout, [&] {
        if (ticks > 0 || isReached())
            ++ticks;
        if (ticks >= ticksBeyond || limit.hasExpired())
            QCoreApplication::exit(1);
    });
    beat.start(1);
    QTimer::singleShot(0, qApp, act);
    QCoreApplication::exec(); // its exit code tells nothing: a box that the exit ends may be followed by a
                              // quit
    return ticks >= ticksBeyond;
}
