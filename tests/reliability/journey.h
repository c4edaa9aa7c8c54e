#pragma once

#include "tests/reliability/journeyfiles.h"
#include "tests/reliability/outcome.h"
#include "tests/support/boxes.h"
#include "tests/support/cataloguetext.h"
#include "tests/support/inside.h"
#include "tests/support/rawserver.h"
#include "ui/mainwindow.h"
#include "virtualunit/options.h"

#include <QElapsedTimer>
#include <QMap>
#include <QObject>
#include <QTimer>

#include <array>
#include <functional>
#include <memory>
#include <vector>

/// The phases of a run, in order: an update up to `installation`, or the download of a log.
enum class Phase {
    search,
    identification,
    catalogue,
    changeLog,
    download,
    store,
    request,
    stream,
    installation,
    logHeader,
    logParts,
    quit,
};

inline constexpr std::array phaseNames{
    "search",  "identification", "catalogue",    "change log", "download",  "store",
    "request", "stream",         "installation", "log header", "log parts", "quit",
};

class Journey;

/// One fault in one phase.
struct Scenario
{
    Phase phase = Phase::search;
    bool fetchesLog = false; ///< downloads the log instead of updating
    std::vector<virtualunit::Options> units;
    QByteArray (*log)() = nullptr;            ///< the first unit's log; nullptr: it has none
    QMap<QString, RawServer::Answer> answers; ///< by path; they replace the good answers
    std::function<void()> beforeStart;        ///< called before the program starts
    std::function<void(Journey&)> beforeConnect;
    std::function<void(Journey&)> beforeUpdate;
    std::function<void(Journey&)> fault; ///< called once the phase is reached
};

/// A scenario and its expected outcome.
struct Cell
{
    Scenario scenario;
    Outcome expected;
    QStringList complaints = {}; ///< its units' complaints about the program, without duplicates, sorted
};

/// A scripted user in the program's own process. Brings the program to the phase, triggers the fault there,
/// carries on as anybody would, waits for the expected outcome and then until nothing changes any more,
/// notes what is visible and closes the window. Writes what it sees to standard output. GUI thread.
class Journey : public QObject
{
public:
    explicit Journey(Cell plan);

    [[nodiscard]] MainWindow& window() const { return *mainWindow; }
    RawServer server;
    Boxes boxes;

    /// Presses every visible control twice, and the log key.
    void pressEverything();

    /// Leaves boxes open for this long from now on.
    void leaveBoxesOpen(int ms);

private:
    /// Runs `act` outside the clock's slot, so that the clock keeps running while a box opened by it is
    /// open.
    static void later(const std::function<void()>& act);

    void listenToTheProgram();
    void step();
    void lookAtThePhase();
    [[nodiscard]] bool isAtPhase() const;
    [[nodiscard]] QStringList visible() const;
    void goOn();
    [[nodiscard]] bool isCalm() const;
    [[nodiscard]] bool hasExpectedBoxes() const;
    void conclude();
    void awaitComplaints(const QPointer<QMessageBox>& box);
    [[nodiscard]] QStringList unitComplaints() const;
    [[nodiscard]] QStringList boxTexts() const;
    [[nodiscard]] QString unitOutcome() const;

    Scenario scenario;
    Outcome expected;
    QStringList complaints; ///< expected
    MainWindow* mainWindow;
    inside::Window state; ///< of the window
    QTimer clock;
    QTimer boxesOpen;
    QStringList lastSeen;
    int calmSteps = 0;      ///< since the last change
    QElapsedTimer calmTime; ///< likewise
    bool readsOn = false;   ///< keeps a box open until the complaints have come
    bool reached = false;
    bool faultDone = false;
    bool connectPressed = false;
    bool updatePressed = false;
    bool logPressed = false;
    bool logAsked = false;
    bool concluded = false;
};

/// A catalogue with this version for the units of one key stem.
[[nodiscard]] QByteArray catalogueOf(const QString& stem, const QString& version);
