#pragma once

#include "tests/harness/childprocess.h"
#include "tests/harness/desktop.h"
#include "tests/harness/outcome.h"
#include "tests/harness/probeclient.h"
#include "tests/harness/terminal.h"
#include "tests/harness/view.h"

#include <QTemporaryDir>

#include <functional>
#include <optional>

/// One run of the shipped program, unchanged, in a fresh directory of its own, used as a person uses it: with
/// the mouse, the keyboard and the window manager. Every wait is for a condition; it is given up as a hang
/// when nothing changes on the screen any more.
class Program
{
public:
    /// The desktop must outlive the run. TALVEX_TEST_PROGRAM in the environment names another executable than
    /// that of this build tree.
    explicit Program(Desktop& desktop);

    /// A path in the program's own directory, or in the scratch directory beside it.
    [[nodiscard]] QString ownPath(const QString& file) const { return base.filePath("app/" + file); }
    [[nodiscard]] QString scratchPath(const QString& file) const { return base.filePath("scratch/" + file); }

    /// Puts a file into the program's own directory.
    Outcome placeFile(const QString& name, const QByteArray& content);
    /// What a file there holds; nothing: there is none.
    [[nodiscard]] std::optional<QByteArray> fileContent(const QString& name) const;

    // Before the start.
    void setVariable(const QString& name, const QString& value) { environment.insert(name, value); }
    /// Units that are plugged in, as the virtual HID library is told of them.
    void plugIn(const QStringList& units) { setVariable("TALVEX_VIRTUAL_UNITS", units.join(';')); }
    /// Not the virtual HID library but the system's.
    void useSystemsHid();
    /// A further library to preload, before the others.
    void preload(const QString& library) { libraries.prepend(library); }
    /// A terminal to run in, as the program that the terminal was opened for.
    void setTerminal(const Terminal& terminal) { process.setTerminal(terminal.programsEnd()); }
    /// The screen to start on, of a desktop that has several of their own.
    void setScreen(int number) { startScreen = QString(".%1").arg(number); }
    /// A directory to look for commands in before all others.
    void putFirstInPath(const QString& directory);

    /// Starts it and waits for its window.
    Outcome start();

    [[nodiscard]] View look() { return probe.look(); }
    [[nodiscard]] QJsonDocument ask(const QByteArray& request) { return probe.ask(request); }
    /// What it has written to its error output until now, without what this screen alone brings about.
    [[nodiscard]] QString errorOutput();
    [[nodiscard]] bool isRunning() const { return process.state() == QProcess::Running; }
    [[nodiscard]] qint64 processId() const { return process.processId(); }

    /// Clicks on a control of the main window once it can be used.
    Outcome press(const QString& name);
    /// Clicks on a control of the main window as soon as it is to be seen, enabled or not.
    Outcome clickOn(const QString& name);
    /// Clicks a button of the top box ("Ok", "Yes", "No") and waits until this box is gone.
    Outcome answer(const QString& button);
    /// Presses keys together (X key symbols) once the main window takes them.
    Outcome pressKeys(std::initializer_list<unsigned long> symbols);
    /// The window manager's close button, of the main window and of the top box.
    Outcome closeWindow();
    Outcome closeBox();

    /// Sends the process a signal; nothing happens when it has ended.
    void sendSignal(int signal);
    /// Whether the process handles this signal in a way of its own.
    [[nodiscard]] bool handlesSignal(int signal) const { return isInSet("SigCgt", signal); }
    /// Whether one was sent that it has not begun to handle.
    [[nodiscard]] bool isPending(int signal) const { return isInSet("ShdPnd", signal); }

    Outcome waitFor(const QString& what, const std::function<bool(const View&)>& condition);
    /// A box on top that says exactly this.
    Outcome waitForBox(const BoxText& expected);
    Outcome waitForNoBox();
    Outcome waitForText(const QString& name, const QString& text);
    Outcome waitForExit(int code);
    /// The same, within 3 s of its own time, asleep or at work: standing in line for a busy processor does
    /// not count.
    Outcome waitForPromptExit(int code);
    /// Whether it came to its end in order, by leaving its event loop; not by exit() or a limit.
    [[nodiscard]] bool hasQuit() const { return QFile::exists(base.filePath("probe-quit")); }
    /// That this signal ends it, without a word of its own.
    Outcome waitForDeathBy(int signal);
    /// That nothing of this kind shows up in so many looks. The program answers each from its event loop,
    /// which has served all else that was due since the one before; while an installation is followed, that
    /// is a poll of 100 ms.
    Outcome staysAway(const QString& what, const std::function<bool(const View&)>& unwanted, int looks = 50);

private:
    /// Of the sets of signals in /proc/PID/status.
    [[nodiscard]] bool isInSet(const QByteArray& set, int signal) const;
    [[nodiscard]] Outcome failed(const QString& what);
    Outcome click(const QString& what, const std::function<std::optional<Target>(const View&)>& find);

    Desktop& desktop;
    QString startScreen; ///< ".1"; empty: the desktop's first
    QTemporaryDir base;
    QProcessEnvironment environment;
    QStringList libraries;
    QByteArray written;
    ChildProcess process;
    ProbeClient probe;
    View last; ///< as of the latest look while waiting
};
