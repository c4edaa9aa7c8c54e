#include "tests/random/user.h"

#include "tests/random/answers.h"
#include "tests/support/boxlines.h"
#include "tests/support/imagefiles.h"
#include "tests/support/limits.h"
#include "tests/support/texts.h"
#include "virtualunit/hidapi/virtualbus.h"

#include <QApplication>
#include <QKeyEvent>
#include <QLabel>
#include <QProgressBar>
#include <QSet>
#include <QTest>
#include <QTimer>
#include <QWindow>

namespace {

constexpr auto controls = {Control::connect, Control::update, Control::log, Control::stop};

// How long the user waits, in turns that last so long on an idle machine: a busy one gets as many turns.
constexpr int unchangedMs = 300; ///< with nothing new to see
constexpr int wholeMs = 5000;
constexpr int longestEndMs = 3000;

/// For what must come, however busy the machine is: the run is killed after limits::hang(), and its judge
/// must still be able to say what is missing.
int longestWaitMs()
{
    return limits::hangMs() / 2;
}

bool isModal()
{
    return QApplication::activeModalWidget() != nullptr;
}

} // namespace

User::User(const Plan& thePlan, const RawServer& theServer, MainWindow& theWindow, Boxes& theBoxes)
    : plan(thePlan), server(theServer), window(theWindow), boxes(theBoxes)
{
    for (const Control control : controls)
        buttons[control] = window.findChild<QPushButton*>(objectNameOf(control));
    // The window's own slots run first; from then on the table holds the buttons to these.
    connect(buttons[Control::update], &QPushButton::released, this, [this] { seen.updatePressed = true; });
    connect(buttons[Control::log], &QPushButton::pressed, this, [this] { seen.logPressed = true; });
    connect(buttons[Control::stop], &QPushButton::pressed, this, [this] { seen.stopPressed = true; });
    seen.pair = plan.isPair();
}

void User::begin()
{
    waiting.start();
    QTimer::singleShot(0, this, &User::turn);
}

void User::turn()
{
    // Armed first, and anew each time: what the turn does may open a box, with an event loop of its own.
    QTimer::singleShot(plan.paceMs, this, &User::turn);
    ++turns;
    strike();
    look();
    if (endedIt)
        return;
    if (isBored()) {
        plan.seed % 2 == 0 && !isModal() ? close() : endSession();
        return;
    }
    act(plan.turns[next++ %
                   plan.turns.size()]); // from the first again, as long as there is something new to see
}

/// The plan's fault of the bus, at its turn.
void User::strike()
{
    using BusFault = Plan::BusFault;
    if (plan.busFault == BusFault::none || next != static_cast<std::size_t>(plan.busFaultTurn))
        return;
    const int device = plan.busFaultUnit + 1;
    if (plan.busFault == BusFault::unplug)
        virtualbus::unplug(device);
    else if (plan.busFault == BusFault::failWrites)
        virtualbus::failNextWrites(device, plan.busFaultCount);
    else if (plan.busFault == BusFault::failReads)
        virtualbus::failReads(device, true);
    else
        virtualbus::failOpens(device, true);
}

void User::look()
{
    if (lines.size() != static_cast<qsizetype>(boxes.seen().size()))
        lines = boxes.lines();
    seen.handleOpen = virtualbus::openHandles() > 0;
    seen.logEndTold = lines.contains(boxline::logComplete);
    const bool imageAsked =
        !imageArrived && server.requests().size() > 2 && server.paths().contains(imagePath);
    const bool neverEnds = plan.imageWay == Plan::Way::silent || plan.imageWay == Plan::Way::stalling;
    seen.awaitsForEver = imageAsked && neverEnds;
    if (const auto arriving = plan.arrivingImage(); imageAsked && arriving)
        imageArrived =
            ImageFiles::at(QCoreApplication::applicationDirPath() + '/' + filename::image).image == *arriving;
    seen.imageThere = plan.hasServiceFile || imageArrived;
    if (!endedIt)
        lookAtControls();
    lookForTheEnd();
}

void User::lookAtControls()
{
    for (const Control control : controls) {
        const bool enabled = buttons[control]->isEnabled() && buttons[control]->isVisible();
        if (enabled && !mayBeEnabled(control, seen))
            complain(QString("%1 is enabled where it must not be").arg(objectNameOf(control)));
        if (!enabled && mustBeEnabled(control, seen))
            complain(QString("%1 is not enabled where it must be").arg(objectNameOf(control)));
    }
}

/// Once a closing message is dismissed, or the user has ended the program, it must not go on.
void User::lookForTheEnd()
{
    const bool told = boxline::closing(lines) > 0 && boxes.openCount() == 0;
    if (!told && !endedIt)
        return;
    if (++endingTurns > turnsIn(longestEndMs)) {
        complain("the program does not end");
        endSession();
    }
}

bool User::isBored()
{
    ++turnsSinceChange;
    const QStringList now = sight();
    if (now != lastSight) {
        lastSight = now;
        turnsSinceChange = 0;
    }
    const QString due = plan.dueOutcome(); // with any other than this, the program ends by itself
    if (due == "up to date" ? !lines.contains(boxline::upToDate) : !due.isEmpty())
        return waiting.hasExpired(longestWaitMs());
    return turns > turnsIn(wholeMs) || turnsSinceChange > turnsIn(unchangedMs);
}

int User::turnsIn(int ms) const
{
    return ms / plan.paceMs;
}

/// What there is to see, save a box seen before, and the installation's bar: it creeps whatever happens.
QStringList User::sight() const
{
    QStringList all{QString::number(QSet<QString>(lines.begin(), lines.end()).size()),
                    QString::number(window.findChild<QProgressBar*>("progressBarTransfer")->value())};
    for (const auto& [control, button] : buttons)
        all += button->isEnabled() && button->isVisible() ? "1" : "0";
    for (const char* name : {"labelTransfer", "labelUpdate"})
        all += window.findChild<QLabel*>(name)->text();
    return all;
}

void User::act(Plan::Act act)
{
    using Act = Plan::Act;
    switch (act) {
    case Act::connect:
        return press(Control::connect);
    case Act::update:
        return press(Control::update);
    case Act::log:
        return press(Control::log);
    case Act::stop:
        return press(Control::stop);
    case Act::logKey:
        return pressLogKey();
    case Act::agree:
    case Act::refuse:
    case Act::escape:
        return answer(act);
    case Act::close:
        return isModal() ? void() : close(); // no window system closes a window behind its open box
    case Act::endSession:
        return endSession();
    case Act::wait:
        return;
    }
}

/// The mouse goes down and up where the button is, enabled and visible or not.
void User::press(Control control)
{
    const QPoint at = buttons[control]->mapTo(&window, buttons[control]->rect().center());
    const QPoint global = window.mapToGlobal(at);
    static int clock = 0;
    clock += 1000; // never a double click
    qt_handleMouseEvent(window.windowHandle(), at, global, Qt::LeftButton, Qt::LeftButton,
                        QEvent::MouseButtonPress, Qt::NoModifier, clock);
    qt_handleMouseEvent(window.windowHandle(), at, global, Qt::NoButton, Qt::LeftButton,
                        QEvent::MouseButtonRelease, Qt::NoModifier, clock + 1);
}

void User::pressLogKey()
{
    if (isModal())
        return;
    seen.logKeyPressed = seen.logKeyPressed || seen.handleOpen;
    // At once: posted, it could come under a box that opens meanwhile, where no window system delivers it.
    QKeyEvent press(QEvent::KeyPress, Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
    QCoreApplication::sendEvent(&window, &press);
}

void User::answer(Plan::Act act)
{
    auto* const box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
    if (box == nullptr)
        return;
    if (act == Plan::Act::escape) {
        QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
        QApplication::sendEvent(box, &escape);
    } else if (act == Plan::Act::refuse && box->button(QMessageBox::No) != nullptr) {
        box->button(QMessageBox::No)->click();
    } else {
        box->defaultButton()->click();
    }
}

void User::close()
{
    endedIt = true;
    window.close();
}

void User::endSession()
{
    endedIt = true;
    QCoreApplication::quit();
}

/// Each thing once: it goes on being so in the turns behind.
void User::complain(const QString& what)
{
    if (wrong.filter(what).isEmpty())
        wrong += QString("before turn %1: %2").arg(next).arg(what);
}
