#include "tests/harness/program.h"

#include "tests/harness/surroundings.h"
#include "tests/harness/waiting.h"
#include "tests/harness/wine.h"
#include "tests/support/filecontent.h"

#include <QDir>
#include <QFileInfo>

#include <algorithm>
#include <utility>

namespace {

/// Where a failed step leaves its picture; "": nowhere.
QString pictureOfFailure()
{
    static int count = 0;
    const QString folder = qEnvironmentVariable("TALVEX_TEST_ARTIFACTS");
    if (folder.isEmpty() || !QDir().mkpath(folder))
        return {};
    return QString("%1/%2-%3-%4.png")
        .arg(folder, QCoreApplication::applicationName())
        .arg(QCoreApplication::applicationPid())
        .arg(++count);
}

} // namespace

Program::Program(Desktop& shownOn)
    : desktop(shownOn), environment(bareEnvironment()), libraries{TALVEX_PROBE, TALVEX_VIRTUAL_HID}
{
    QDir directory(base.path());
    for (const char* name : {"app", "scratch", "home", "work"})
        directory.mkdir(name);
    QFile::setPermissions(base.filePath("home"), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void Program::setFolder(const QString& name)
{
    appFolder = name;
    QDir(base.path()).mkpath(name);
}

void Program::putFirstInPath(const QString& directory)
{
    setVariable("PATH", directory + ":" + environment.value("PATH"));
}

Outcome Program::placeFile(const QString& name, const QByteArray& content)
{
    return writeFile(ownPath(name), content) ? Outcome() : Outcome("cannot write " + ownPath(name));
}

std::optional<QByteArray> Program::fileContent(const QString& name) const
{
    const QByteArray content = contentOf(ownPath(name));
    return content.isNull() ? std::nullopt : std::optional(content);
}

void Program::useSystemsHid()
{
    libraries.removeAll(TALVEX_VIRTUAL_HID);
}

/// Puts the program into its directory, and sets up what it runs in.
Outcome Program::place()
{
    environment.insert("DISPLAY", desktop.name() + startScreen);
    environment.insert("HOME", base.filePath("home"));
    environment.insert("XDG_RUNTIME_DIR", base.filePath("home"));
    environment.insert("TALVEX_PROBE", base.filePath("probe"));
    if (wine::isUsed()) {
        STEP(wine::unpack(ownPath(".")));
        return wine::prepare(environment, registry);
    }
    environment.insert("LD_PRELOAD", libraries.join(':'));
    const QString executable = qEnvironmentVariable("TALVEX_TEST_PROGRAM", TALVEX_PROGRAM);
    return QFile::copy(executable, ownPath(wine::programName()))
               ? Outcome()
               : Outcome("cannot copy the program from " + executable);
}

Outcome Program::start()
{
    STEP(place());
    const QString own = ownPath(wine::programName());
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(base.filePath("work"));
    QStringList command = launcher + (wine::isUsed() ? QStringList{"wine", own} : QStringList{own});
    const QString first = command.takeFirst();
    process.start(first, command);
    // On a busy machine the probe may answer before Qt has been told that the process runs.
    const bool listens = waitUntil([&] {
        return process.state() == QProcess::NotRunning || (isRunning() && probe.open(base.filePath("probe")));
    });
    if (!listens || !isRunning())
        return failed("the program did not start: " + process.errorString());
    return waitFor("the main window", [](const View& view) { return view.window()["exposed"].toBool(); });
}

QString Program::errorOutput()
{
    QCoreApplication::processEvents();
    written += process.readAllStandardError().replace("\r\n", "\n");
    QStringList lines = QString::fromUtf8(written).split('\n', Qt::SkipEmptyParts);
    lines.erase(std::remove_if(lines.begin(), lines.end(), isAboutSurroundings), lines.end());
    return lines.join('\n');
}

Outcome Program::failed(const QString& what)
{
    const QString picture = pictureOfFailure();
    const QString stored =
        !picture.isEmpty() && desktop.savePicture(picture) ? "\npicture: " + picture : QString();
    return Outcome(what + "\nthe program showed:\n" + last.describe() + "its error output:\n" +
                   errorOutput() + stored);
}

Outcome Program::waitFor(const QString& what, const std::function<bool(const View&)>& condition)
{
    bool met = false;
    bool changes = true;
    const auto isMet = [&] {
        const View now = look();
        if (!now.isEmpty()) {
            changes = changes || !(now == last);
            last = now;
        }
        return !isRunning() || (!now.isEmpty() && condition(now));
    };
    while (!met && std::exchange(changes, false))
        met = waitUntil(isMet);
    if (!isRunning())
        return failed("the program ended while this was awaited: " + what);
    return met ? Outcome() : failed("not seen, and nothing changes any more: " + what);
}

Outcome Program::waitForBox(const BoxText& expected)
{
    STEP(waitFor("a box", [](const View& view) { return view.box().has_value(); }));
    return last.box() == expected ? Outcome() : failed("another box than " + expected.describe());
}

Outcome Program::waitForNoBox()
{
    return waitFor("no box", std::not_fn(&View::hasBox));
}

Outcome Program::waitForText(const QString& name, const QString& text)
{
    return waitFor(name + " reading \"" + text + '"',
                   [&](const View& view) { return view.text(name) == text; });
}

Outcome Program::staysAway(const QString& what, const std::function<bool(const View&)>& unwanted, int looks)
{
    for (int look = 0; look < looks; ++look) {
        last = this->look();
        if (!isRunning())
            return failed("the program ended");
        if (unwanted(last))
            return failed("not expected: " + what);
        letOthersRun();
    }
    return {};
}

Outcome Program::click(const QString& what, const std::function<std::optional<Target>(const View&)>& find)
{
    constexpr int longAmiss = 300; // looks
    XScreen& screen = desktop.screen();
    int amiss = 0;
    STEP(waitFor(what + " to click on", [&](const View& view) {
        const std::optional<Target> target = find(view);
        // Under Wine a window may miss, for good, what the window manager says of its size.
        if (wine::isUsed() && target && screen.sizeOf(target->window) != target->windowSize &&
            ++amiss % longAmiss == 0)
            screen.resize(target->window, target->windowSize);
        // Both must agree where the window is, and nothing may cover it: it may still be on its way.
        return target && screen.originOf(target->window) == target->windowOrigin &&
               screen.pointAt(target->middle, target->window);
    }));
    screen.click();
    return {};
}

Outcome Program::press(const QString& name)
{
    STEP(waitFor(name + " enabled", [&](const View& view) { return view.enabled(name); }));
    return clickOn(name);
}

Outcome Program::clickOn(const QString& name)
{
    return click(name, [&](const View& view) { return view.targetOfWidget(name); });
}

Outcome Program::answer(const QString& button)
{
    unsigned long box = 0;
    STEP(click("button " + button, [&](const View& view) {
        box = view.boxWindow();
        return view.targetOfButton(button);
    }));
    if (waitUntil([&] { return !isRunning() || look().boxWindow() != box; }))
        return {};
    return failed("the box stayed open after " + button);
}

Outcome Program::pressKeys(std::initializer_list<unsigned long> symbols)
{
    STEP(waitFor("the main window's focus", [&](const View& view) {
        // Wine may know of the focus before the server sends keys there.
        return view.window()["active"].toBool() &&
               (!wine::isUsed() || desktop.screen().hasFocus(view.mainWindow()));
    }));
    desktop.screen().pressKeys(symbols);
    return {};
}

Outcome Program::closeWindow()
{
    STEP(waitFor("the main window", [](const View& view) { return !view.window().isEmpty(); }));
    watchEnd();
    desktop.screen().close(last.mainWindow());
    return {};
}

Outcome Program::closeBox()
{
    STEP(waitFor("a box",
                 [&](const View& view) { return desktop.screen().originOf(view.boxWindow()).has_value(); }));
    desktop.screen().close(last.boxWindow());
    return {};
}
