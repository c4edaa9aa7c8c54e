#include "reliability/journey.h"

#include "net/updatechecker.h"
#include "virtualunit/hidapi/virtualbus.h"

#include <QApplication>
#include <QDir>
#include <QLabel>
#include <QPushButton>
#include <QTest>

#include <cstdio>
#include <utility>

namespace {

constexpr int stepMs = 5;
constexpr int usualCalmMs = 1300; ///< more than the longest pause that the program makes by itself
constexpr int roadMs = 20000;     ///< nobody gives up on the way to the phase before that
constexpr int packetsBeforeTheFault = 50;
constexpr int partsBeforeTheFault = 50;
constexpr int partLength = 63; // bytes

MainWindow* findWindow()
{
    const QWidgetList all = QApplication::topLevelWidgets();
    for (QWidget* widget : all)
        if (auto* window = qobject_cast<MainWindow*>(widget))
            return window;
    qFatal("no window");
}

RawServer::Answer heldBack(const QByteArray& body)
{
    const QByteArray whole = httpAnswer("200 OK", body);
    const int head = whole.size() - body.size();
    return {{whole.left(head), whole.mid(head)}, RawServer::End::keepOpen, true};
}

/// Comes before anything can go wrong, or is an offer.
bool belongsToTheRoad(const SeenBox& box)
{
    return box.kind == "plain" || box.text.endsWith("connected") ||
           box.text.endsWith("has the latest software");
}

/// After how long without any change a user takes it that nothing will come.
int calmMs()
{
    bool given = false;
    const int ms = qEnvironmentVariableIntValue("TALVEX_JOURNEY_CALM_MS", &given); // for slow machines
    return given ? ms : usualCalmMs;
}

void say(const QString& line)
{
    std::fputs(qPrintable(line + '\n'), stdout);
    std::fflush(stdout);
}

qint64 logOnDisk()
{
    const QDir directory(QCoreApplication::applicationDirPath());
    const QFileInfoList logs = directory.entryInfoList({"*_log.enc"});
    return logs.isEmpty() ? 0 : logs.first().size();
}

/// Outside the clock's own slot: it must go on while a box that this opens stands.
void later(const std::function<void()>& act)
{
    QMetaObject::invokeMethod(qApp, act, Qt::QueuedConnection);
}

/// The request for this path has come.
bool asked(const RawServer& server, const char* path)
{
    return server.paths().contains(path);
}

} // namespace

QByteArray catalogueOf(const QByteArray& stem, const QByteArray& version)
{
    return "MainVer=11\nMainChangeLog=http://vendor.example/main.txt\nMacMainBin=http://vendor.example/"
           "main.zip\n" +
           stem + "Ver=" + version + '\n' + stem + "Bin=http://vendor.example" + imagePath + '\n' + stem +
           "ChangeLog=http://vendor.example" + changeLogPath + '\n';
}

Journey::Journey(Scenario plan) : scenario(std::move(plan)), mainWindow(findWindow())
{
    qputenv("http_proxy", server.address({}).toUtf8());
    server.setAnswer(cataloguePath, heldBack(catalogueOf("HB4", scenario.fetchesLog ? "23" : "27")));
    server.setAnswer(changeLogPath, heldBack("All is better now."));
    server.setAnswer(imagePath, heldBack(newImage()));
    for (auto answer = scenario.answers.begin(); answer != scenario.answers.end(); ++answer)
        server.setAnswer(answer.key(), answer.value());
    for (const virtualunit::Options& unit : scenario.units)
        virtualbus::attach(unit);
    connect(qApp, &QCoreApplication::aboutToQuit, this, [this] {
        conclude();
        say("ending");
        deleteLater();
    });
    connect(&clock, &QTimer::timeout, this, [this] { step(); });
    boxesOpen.setSingleShot(true);
    calm.start();
    clock.start(stepMs);
}

/// One look at the program, and what a user does on it.
void Journey::step()
{
    if (!reached && isAtPhase()) {
        reached = true;
        if (scenario.fault)
            later([this] {
                scenario.fault(*this);
                faultDone = true;
            });
    }
    goOn();
    const QStringList seen = visible();
    if (seen != lastSeen) {
        lastSeen = seen;
        calm.restart();
    } else if (calm.elapsed() > (reached ? calmMs() : roadMs) && !boxesOpen.isActive()) {
        conclude();
        say("closing");
        mainWindow->close();
    }
}

bool Journey::isAtPhase() const
{
    switch (scenario.phase) {
    case Phase::search:
    case Phase::identification: // both within the press of Connect
        return true;
    case Phase::catalogue:
        return mainWindow->updateChecker->reply != nullptr;
    case Phase::changeLog:
        return asked(server, changeLogPath);
    case Phase::download:
    case Phase::store:
        return asked(server, imagePath);
    case Phase::request:
        return mainWindow->requestSent == 1 || (updatePressed && mainWindow->applyingPhase == 1);
    case Phase::stream:
        return mainWindow->packetNumber >= packetsBeforeTheFault;
    case Phase::installation:
        return mainWindow->fakeProgressActive == 1;
    case Phase::logHeader:
        return !virtualbus::writesTo(1).empty();
    case Phase::logParts:
        return logOnDisk() >= partsBeforeTheFault * partLength;
    case Phase::quit:
        return mainWindow->endTold;
    }
    return false;
}

/// Everything a user could notice, but for the percentages.
QStringList Journey::visible() const
{
    QStringList all{QString::number(boxes.seen().size()),      QString::number(boxes.openCount()),
                    QString::number(mainWindow->packetNumber), QString::number(logOnDisk()),
                    QString::number(server.requests().size()), QString::number(server.bytesSent())};
    const auto labels = mainWindow->findChildren<QLabel*>();
    for (const QLabel* label : labels)
        all += label->text();
    const auto buttons = mainWindow->findChildren<QPushButton*>();
    for (const QPushButton* button : buttons)
        all += QString::number(button->isEnabled()) + QString::number(button->isVisible());
    return all;
}

void Journey::goOn()
{
    if (!reached || !scenario.fault || faultDone) // the answer that makes the phase comes behind the fault
        server.goOn();
    if (boxes.openCount() > 0 || boxesOpen.isActive())
        return;
    const auto press = [this](const char* name, bool& pressed,
                              const std::function<void(Journey&)>& before = {}) {
        auto* button = mainWindow->findChild<QPushButton*>(name);
        if (pressed || !button->isEnabled() || !button->isVisible())
            return;
        pressed = true;
        later([this, button, before] {
            if (before)
                before(*this);
            QTest::mouseClick(button, Qt::LeftButton);
        });
    };
    press("connect_button", connectPressed, scenario.beforeConnect);
    if (!scenario.fetchesLog) {
        press("updateDeviceButton", updatePressed, scenario.beforeUpdate);
    } else if (connectPressed && !logPressed) {
        later([this] { QTest::keyClick(mainWindow, Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier); });
        press("downloadLogFile", logPressed);
    }
}

void Journey::conclude()
{
    if (std::exchange(concluded, true))
        return;
    clock.stop();
    if (!reached && (scenario.fault || !isAtPhase())) // a bad answer's box may be gone before the next step
        say("phase not reached");
    for (const SeenBox& box : boxes.seen())
        if (!belongsToTheRoad(box))
            say("box " + (box.text + ' ' + box.informativeText).simplified());
    if (!scenario.fetchesLog)
        say("unit " + unitOutcome());
    for (int number = 1; number <= static_cast<int>(scenario.units.size()); ++number)
        for (const std::string& error : virtualbus::unit(number).errors)
            say("complaint " + QString::fromStdString(error));
}

QString Journey::unitOutcome() const
{
    const auto isInstalled = [](int number) {
        return virtualbus::unit(number).verdict == virtualunit::Verdict::Installed;
    };
    int installed = 0;
    for (int number = 1; number <= static_cast<int>(scenario.units.size()); ++number)
        installed += isInstalled(number) ? 1 : 0;
    if (installed > 0)
        return installed == static_cast<int>(scenario.units.size()) ? "updated" : "one deck updated";
    return updatePressed ? "not updated" : "untouched";
}

void Journey::pressEverything()
{
    const auto buttons = mainWindow->findChildren<QPushButton*>();
    for (QPushButton* button : buttons)
        for (int time = 0; time < 2; ++time)
            if (button->isVisible())
                QTest::mouseClick(button, Qt::LeftButton);
    QTest::keyClick(mainWindow, Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
}

void Journey::leaveBoxesOpen(int ms)
{
    boxes.leaveOpen();
    boxesOpen.start(ms);
    connect(&boxesOpen, &QTimer::timeout, this, [this] {
        calm.restart();
        connect(&clock, &QTimer::timeout, this, [this] { boxes.dismissTop(); });
    });
}
