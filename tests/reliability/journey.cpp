#include "tests/reliability/journey.h"

#include "log/logdownloader.h"
#include "net/updatechecker.h"
#include "tests/support/limits.h"
#include "tests/support/models.h"
#include "tests/support/texts.h"
#include "virtualunit/hidapi/virtualbus.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QLabel>
#include <QMessageBox>
#include <QPushButton>

#include <algorithm>
#include <cstdio>
#include <utility>

namespace {

constexpr int stepMs = 5;
constexpr int fewSteps = 120; ///< to see that nothing comes behind what was expected
constexpr int packetsBeforeTheFault = 50;
constexpr int partsBeforeTheFault = 50;
constexpr int partLength = 63; // bytes

/// How long the user waits in vain: the test must still see the end, which it awaits for limits::hang().
std::chrono::milliseconds longestWait()
{
    return limits::hang() / 2;
}

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
    return box.icon == "NoIcon" || box.text.endsWith("connected") || box.text == text::upToDate;
}

void say(const QString& line)
{
    std::fputs(qPrintable(line + '\n'), stdout);
    std::fflush(stdout);
}

qint64 logOnDisk()
{
    const QDir directory(QCoreApplication::applicationDirPath());
    const QFileInfoList logs = directory.entryInfoList({filename::anyLog});
    return logs.isEmpty() ? 0 : logs.first().size();
}

const char* stemOf(const std::vector<virtualunit::Options>& units)
{
    return models::of(units.empty() ? UNIT_HB4 : units.front().type).stem;
}

/// The request for this path has come.
bool asked(const RawServer& server, const char* path)
{
    return server.paths().contains(path);
}

} // namespace

QByteArray catalogueOf(const QString& stem, const QString& version)
{
    const QString host = "http://vendor.example";
    return catalogueText(catalogueEntries(stem, version, host + imagePath, host + changeLogPath));
}

Journey::Journey(Cell plan)
    : scenario(std::move(plan.scenario)),
      expected(std::move(plan.expected)),
      complaints(std::move(plan.complaints)),
      mainWindow(findWindow()),
      state(inside::of(*mainWindow))
{
    qputenv("http_proxy", server.address({}).toUtf8());
    server.setAnswer(cataloguePath,
                     heldBack(catalogueOf(stemOf(scenario.units), scenario.fetchesLog ? "23" : "27")));
    server.setAnswer(changeLogPath, heldBack("All is better now."));
    server.setAnswer(imagePath, heldBack(newImage()));
    for (auto answer = scenario.answers.begin(); answer != scenario.answers.end(); ++answer)
        server.setAnswer(answer.key(), answer.value());
    if (scenario.log != nullptr) {
        const QByteArray log = scenario.log();
        scenario.units.front().log.emplace(log.begin(), log.end());
    }
    for (const virtualunit::Options& unit : scenario.units)
        virtualbus::attach(unit);
    listenToTheProgram();
    boxes.whileOpen = [this](QMessageBox& box) { awaitComplaints(&box); };
    boxesOpen.setSingleShot(true);
    clock.start(stepMs);
    calmTime.start();
}

/// Some phases are over in a moment on a machine that stands still in between: they are looked for whenever
/// the program does something, right behind it.
void Journey::listenToTheProgram()
{
    connect(qApp, &QCoreApplication::aboutToQuit, this, [this] {
        conclude();
        say("ending");
        deleteLater();
    });
    connect(&clock, &QTimer::timeout, this, [this] { step(); });
    connect(mainWindow->findChild<QPushButton*>("downloadLogFile"), &QPushButton::pressed, this, [this] {
        logAsked = true;
        lookAtThePhase();
    });
    connect(&state.logDownloader, &LogDownloader::logDownloadProgress, this, [this] { lookAtThePhase(); });
}

/// One look at the program, and what a user does on it.
void Journey::step()
{
    lookAtThePhase();
    goOn();
    const QStringList seen = visible();
    if (seen != lastSeen) {
        lastSeen = seen;
        calmSteps = 0;
        calmTime.start();
    } else if (++calmSteps; isCalm() && !boxesOpen.isActive() && !readsOn) {
        conclude();
        say("closing");
        mainWindow->close();
    }
}

void Journey::later(const std::function<void()>& act)
{
    QMetaObject::invokeMethod(qApp, act, Qt::QueuedConnection);
}

void Journey::lookAtThePhase()
{
    if (reached || !isAtPhase())
        return;
    reached = true;
    if (scenario.fault)
        later([this] {
            scenario.fault(*this);
            faultDone = true;
        });
}

/// Nothing has changed for so long that the user closes the window: for a few steps once everything expected
/// has come, else only when it will not come any more.
bool Journey::isCalm() const
{
    const bool hasCome = reached && expected.end == endword::waits && hasExpectedBoxes() &&
                         (scenario.fetchesLog || unitOutcome() == expected.unit);
    return hasCome ? calmSteps > fewSteps : calmTime.hasExpired(longestWait().count());
}

bool Journey::hasExpectedBoxes() const
{
    const QStringList texts = boxTexts();
    return std::all_of(expected.boxes.begin(), expected.boxes.end(),
                       [&texts](const QString& box) { return texts.contains(box); });
}

bool Journey::isAtPhase() const
{
    switch (scenario.phase) {
    case Phase::search:
    case Phase::identification: // both within the press of Connect
        return true;
    case Phase::catalogue:
        return inside::of(*mainWindow->leftovers().checker).reply != nullptr;
    case Phase::changeLog:
        return asked(server, changeLogPath);
    case Phase::download:
    case Phase::store:
        return asked(server, imagePath);
    case Phase::request:
        return state.requestSent == 1 || (updatePressed && state.applyingPhase == 1);
    case Phase::stream:
        return state.packetNumber >= packetsBeforeTheFault;
    case Phase::installation:
        return state.fakeProgressActive == 1;
    case Phase::logHeader:
        return logAsked;
    case Phase::logParts:
        return logOnDisk() >= partsBeforeTheFault * partLength;
    case Phase::quit:
        return state.endTold;
    }
    return false;
}

/// Everything a user could notice, but for the percentages.
QStringList Journey::visible() const
{
    QStringList all{QString::number(boxes.seen().size()),      QString::number(boxes.openCount()),
                    QString::number(state.packetNumber),       QString::number(logOnDisk()),
                    QString::number(server.requests().size()), QString::number(server.bytesSent())};
    const auto labels = mainWindow->findChildren<QLabel*>();
    for (const QLabel* label : labels)
        all += label->text();
    const auto buttons = mainWindow->findChildren<QPushButton*>();
    for (const QPushButton* button : buttons)
        all += QString::number(button->isEnabled()) + QString::number(button->isVisible());
    return all;
}

void Journey::conclude()
{
    if (std::exchange(concluded, true))
        return;
    clock.stop();
    if (!reached && (scenario.fault || !isAtPhase())) // a bad answer's box may be gone before the next step
        say("phase not reached");
    const QStringList texts = boxTexts();
    for (const QString& text : texts)
        say("box " + text);
    if (!scenario.fetchesLog)
        say("unit " + unitOutcome());
    const QStringList heard = unitComplaints();
    for (const QString& complaint : heard)
        say("complaint " + complaint);
}

/// The program may end with this box before the units have complained. So the user goes on reading it until
/// they have, or until it is clear that they will not.
void Journey::awaitComplaints(const QPointer<QMessageBox>& box)
{
    if (expected.boxes.isEmpty() || !hasExpectedBoxes() || complaints.isEmpty())
        return;
    readsOn = true;
    const QDeadlineTimer limit(longestWait());
    while (box && box->isVisible() && !limit.hasExpired() && unitComplaints() != complaints)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents); // the boxes' timer goes on
    readsOn = false;
}

/// Without duplicates, sorted.
QStringList Journey::unitComplaints() const
{
    QStringList all;
    for (int number = 1; number <= static_cast<int>(scenario.units.size()); ++number)
        for (const std::string& error : virtualbus::unit(number).errors)
            all += QString::fromStdString(error);
    all.removeDuplicates();
    all.sort();
    return all;
}

QStringList Journey::boxTexts() const
{
    QStringList texts;
    for (const SeenBox& box : boxes.seen())
        if (!belongsToTheRoad(box))
            texts += (box.text + ' ' + box.informative).simplified();
    texts.removeDuplicates();
    return texts;
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
        return installed == static_cast<int>(scenario.units.size()) ? unitword::updated
                                                                    : unitword::oneDeckUpdated;
    return updatePressed ? unitword::notUpdated : unitword::untouched;
}
