#pragma once

#include "tests/reliability/journeyfiles.h"
#include "tests/reliability/outcome.h"
#include "tests/support/boxes.h"
#include "tests/support/cataloguetext.h"
#include "tests/support/inside.h"
#include "tests/support/rawserver.h"
#include "ui/mainwindow.h"
#include "virtualunit/options.h"

#include <QMap>
#include <QObject>
#include <QTimer>

#include <array>
#include <functional>
#include <memory>
#include <vector>

/// What the program goes through, in this order; an update up to `installation`, or the download of a log.
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
    bool fetchesLog = false; ///< the log's road instead of the update's
    std::vector<virtualunit::Options> units;
    QByteArray (*log)() = nullptr;            ///< of the first unit; none: it has none
    QMap<QString, RawServer::Answer> answers; ///< in place of the good ones, by path
    std::function<void()> beforeStart;        ///< done before the program starts
    std::function<void(Journey&)> beforeConnect;
    std::function<void(Journey&)> beforeUpdate;
    std::function<void(Journey&)> fault; ///< done once the phase is reached
};

/// A scenario and what it must come to.
struct Cell
{
    Scenario scenario;
    Outcome expected;
    QStringList complaints = {}; ///< of its units about the program, each once, sorted
};

/// A user with a plan in front of the program, in the program's own process: brings it to the phase, lets the
/// fault happen there, goes on as anybody would, waits for what is expected, and then until nothing changes
/// any more, notes what there is to be seen and closes the window. Tells standard output what it sees. GUI
/// thread.
class Journey : public QObject
{
public:
    explicit Journey(Cell plan);

    [[nodiscard]] MainWindow& window() const { return *mainWindow; }
    RawServer server;
    Boxes boxes;

    /// Presses every control that is to be seen, twice, and the log's key.
    void pressEverything();

    /// Boxes stay open for so long from now on.
    void leaveBoxesOpen(int ms);

private:
    /// Outside the clock's own slot: it must go on while a box that this opens stands.
    static void later(const std::function<void()>& act);

    void listenToTheProgram();
    void step();
    void lookAtThePhase();
    [[nodiscard]] bool isAtPhase() const;
    [[nodiscard]] QStringList visible() const;
    void goOn();
    [[nodiscard]] int patience() const;
    void conclude();
    [[nodiscard]] QStringList boxTexts() const;
    [[nodiscard]] QString unitOutcome() const;

    Scenario scenario;
    Outcome expected;
    MainWindow* mainWindow;
    inside::Window state; ///< of the window
    QTimer clock;
    QTimer boxesOpen;
    QStringList lastSeen;
    int calmSteps = 0; ///< since the last change
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
