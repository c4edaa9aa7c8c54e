#pragma once

#include "tests/random/observed.h"
#include "tests/random/plan.h"
#include "tests/support/boxes.h"
#include "tests/support/rawserver.h"
#include "ui/mainwindow.h"

#include <QElapsedTimer>
#include <QPushButton>

#include <array>
#include <map>

/// The user of one run. Follows the plan, one turn every few milliseconds, with mouse and keyboard as far as
/// the window system delivers the input, and checks what is visible before each turn.
class User : public QObject
{
public:
    User(const Plan& plan, const RawServer& server, MainWindow& window, Boxes& boxes);

    void begin();

    /// What the user saw that must never happen.
    [[nodiscard]] const QStringList& violations() const { return wrong; }
    [[nodiscard]] const Observed& observed() const { return seen; }
    /// True if the user closed the window or ended the session. False if the program ended by itself, or not
    /// at all.
    [[nodiscard]] bool hasEndedIt() const { return endedIt; }

private:
    void turn();
    void strike();
    void look();
    void lookAtControls();
    void lookForTheEnd();
    [[nodiscard]] bool isBored();
    [[nodiscard]] int turnsIn(int ms) const;
    [[nodiscard]] QStringList sight() const;
    void act(Plan::Act act);
    void press(Control control);
    void pressLogKey();
    void answer(Plan::Act act);
    void close();
    void endSession();
    void complain(const QString& what);

    const Plan& plan;
    const RawServer& server;
    MainWindow& window;
    Boxes& boxes;
    std::map<Control, QPushButton*> buttons;

    QStringList lines;    ///< boxes so far
    std::size_t next = 0; ///< index of the next turn
    Observed seen;
    QStringList wrong;
    bool endedIt = false;
    bool imageArrived = false; ///< seen complete on disk
    QElapsedTimer waiting;     ///< since the begin
    QStringList lastSight;
    int turns = 0; ///< so far, including those after the plan's last one
    int turnsSinceChange = 0;
    int endingTurns = 0; ///< since the program should have ended
};
