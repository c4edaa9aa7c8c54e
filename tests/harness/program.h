#pragma once

#include "tests/harness/childprocess.h"
#include "tests/harness/desktop.h"
#include "tests/harness/outcome.h"
#include "tests/harness/owntime.h"
#include "tests/harness/probeclient.h"
#include "tests/harness/terminal.h"
#include "tests/harness/view.h"

#include <QTemporaryDir>

#include <functional>
#include <optional>

/// One run of the shipped program, unchanged, in its own fresh directory, used as a person would use it:
/// with the mouse, the keyboard and the window manager. Every wait is for a condition, and is given up as a
/// hang once the screen has stopped changing.
class Program
{
public:
    /// The desktop must outlive the run. The environment variable TALVEX_TEST_PROGRAM selects a different
    /// executable from the one in this build tree.
    explicit Program(Desktop& desktop);

    /// A path in the program's own directory, or in the scratch directory next to it.
    [[nodiscard]] QString ownPath(const QString& file) const { return base.filePath(appFolder + '/' + file); }
    [[nodiscard]] QString scratchPath(const QString& file) const { return base.filePath("scratch/" + file); }

    /// Creates a file in the program's own directory.
    Outcome placeFile(const QString& name, const QByteArray& content);
    /// The content of a file there; nullopt if it does not exist.
    [[nodiscard]] std::optional<QByteArray> fileContent(const QString& name) const;

    // Before the start.
    void setVariable(const QString& name, const QString& value) { environment.insert(name, value); }
    /// Plugs in units, each given in the virtual HID library's option format.
    void plugIn(const QStringList& units) { setVariable("TALVEX_VIRTUAL_UNITS", units.join(';')); }
    /// Starts the program in a directory of this name instead of "app".
    void setFolder(const QString& name);
    /// Sets a value in the registry of Windows, given as to its command "reg add".
    void setInRegistry(const QStringList& value) { registry.append(value); }
    /// Starts the program through this command, which is given the program and its own arguments.
    void setLauncher(const QStringList& command) { launcher = command; }
    /// Uses the system's HID library instead of the virtual one.
    void useSystemsHid();
    /// Preloads another library, before the others.
    void preload(const QString& library) { libraries.prepend(library); }
    /// Runs the program in this terminal, as the command that the terminal was opened for.
    void setTerminal(const Terminal& terminal) { process.setTerminal(terminal.programsEnd()); }
    /// The screen to start on, for a desktop with several separate screens.
    void setScreen(int number) { startScreen = QString(".%1").arg(number); }
    /// Puts a directory first in the search path for commands.
    void putFirstInPath(const QString& directory);

    /// Starts the program and waits for its window.
    Outcome start();

    [[nodiscard]] View look()
    {
        if (ownTime)
            watchEnd();
        return probe.look();
    }
    [[nodiscard]] QJsonDocument ask(const QByteArray& request) { return probe.ask(request); }
    /// The program's error output so far, without messages caused only by the test screen.
    [[nodiscard]] QString errorOutput();
    [[nodiscard]] bool isRunning() const { return process.state() == QProcess::Running; }
    [[nodiscard]] qint64 processId() const { return process.processId(); }

    /// Clicks a control of the main window once it is enabled.
    Outcome press(const QString& name);
    /// Clicks a control of the main window as soon as it is visible, enabled or not.
    Outcome clickOn(const QString& name);
    /// Clicks a button of the top box ("Ok", "Yes", "No") and waits until that box is gone.
    Outcome answer(const QString& button);
    /// Presses keys together (X key symbols) once the main window accepts input.
    Outcome pressKeys(std::initializer_list<unsigned long> symbols);
    /// Use the window manager's close button, of the main window or of the top box.
    Outcome closeWindow();
    Outcome closeBox();
    /// Takes the screen away. The desktop must be a private one.
    Outcome loseDisplay();

    /// Sends a signal to the process; does nothing if it has ended.
    void sendSignal(int signal);
    /// Whether the process has its own handler for this signal.
    [[nodiscard]] bool handlesSignal(int signal) const { return isInSet("SigCgt", signal); }
    /// Whether this signal was sent but is still pending.
    [[nodiscard]] bool isPending(int signal) const { return isInSet("ShdPnd", signal); }

    /// Measures from now on how long a busy machine holds the program up, for an end that does not begin with
    /// sendSignal(), closeWindow() or loseDisplay(): these do so, too.
    void watchEnd();
    /// For how long it was held up, until the end was seen.
    [[nodiscard]] OwnTime::Span heldUp() const { return ownTime ? ownTime->heldUp() : OwnTime::Span(0); }

    Outcome waitFor(const QString& what, const std::function<bool(const View&)>& condition);
    /// Waits until the top box has exactly this content.
    Outcome waitForBox(const BoxText& expected);
    Outcome waitForNoBox();
    Outcome waitForText(const QString& name, const QString& text);
    Outcome waitForExit(int code);
    /// Like waitForExit(), but within 3 s of the program's own time, asleep or running: time in which it, the
    /// X server or the window manager waits for a busy processor does not count.
    Outcome waitForPromptExit(int code);
    /// Whether it ended normally by leaving its event loop, not by exit() or by being killed at a time
    /// limit.
    [[nodiscard]] bool hasQuit() const { return QFile::exists(base.filePath("probe-quit")); }
    /// Waits until this signal kills the process.
    Outcome waitForDeathBy(int signal);
    /// Checks that nothing of this kind appears in this many looks. The program answers each from its event
    /// loop, after handling everything else that became due since the previous one; during an installation
    /// that includes a poll every 100 ms.
    Outcome staysAway(const QString& what, const std::function<bool(const View&)>& unwanted, int looks = 50);

private:
    Outcome place();
    [[nodiscard]] bool hasEnded();
    /// Looks the signal up in one of the signal sets of /proc/PID/status.
    [[nodiscard]] bool isInSet(const QByteArray& set, int signal) const;
    [[nodiscard]] Outcome failed(const QString& what);
    Outcome click(const QString& what, const std::function<std::optional<Target>(const View&)>& find);

    Desktop& desktop;
    QString startScreen; ///< ".1"; empty: the desktop's first
    QTemporaryDir base;
    QString appFolder = "app";
    QProcessEnvironment environment;
    QVector<QStringList> registry;
    QStringList launcher;
    QStringList libraries;
    QByteArray written;
    ChildProcess process;
    ProbeClient probe;
    std::optional<OwnTime> ownTime; ///< since its end was to begin
    bool isEndSeen = false;
    View last; ///< from the latest look while waiting
};
