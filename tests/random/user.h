#pragma once

#include "tests/random/observed.h"
#include "tests/random/plan.h"
#include "tests/support/boxes.h"
#include "tests/support/rawserver.h"
#include "ui/mainwindow.h"

#include <QPushButton>

#include <array>
#include <map>

/// The user of one run: does what the plan says, a turn every few milliseconds, by mouse and key as far as
/// the window system lets them through, and looks before each turn whether what there is to see is right.
class User : public QObject
{
public:
    User(const Plan& plan, const RawServer& server, MainWindow& window, Boxes& boxes);

    void begin();

    /// What the user saw that must not be.
    [[nodiscard]] const QStringList& violations() const { return wrong; }
    [[nodiscard]] const Observed& observed() const { return seen; }
    /// Closed the window or ended the session; false: the program ended by itself, if at all.
    [[nodiscard]] bool hasEndedIt() const { return endedIt; }

private:
    void turn();
    void strike();
    void look();
    void readBoxes();
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

    QStringList lines;    ///< of the boxes so far
    std::size_t next = 0; ///< index of the turn to come
    Observed seen;
    QStringList wrong;
    bool endedIt = false;
    bool imageArrived = false; ///< seen whole on the disk
    QStringList lastSight;
    int turns = 0; ///< so far, those behind the last one of the plan too
    int turnsSinceChange = 0;
    int endingTurns = 0; ///< since the program ought to end
};
