// Does with the program's window what a person does, from Connect to "Update: finished", and keeps a picture
// of each stage; then pulls the unit's log in a second run.
//
//     talvex-demo-driver --proxy http://127.0.0.1:PORT --unit OPTIONS --pictures FOLDER --log FILE
//     [--mishaps]
//                        [--set NAME=VALUE]...
//
// FILE gets what the program stored of the unit's log. --mishaps adds the pictures of what rarely shows: an
// offer's change log, no unit, no network, a pair. --set is for the program's environment. Exit code: 0 both
// runs came to their end and the program ended with 0; 1 a stage failed, said on the error output.

#include "program.h"
#include "waiting.h"

#include <QCommandLineParser>
#include <QDir>
#include <QFile>

#include <X11/keysym.h>

#include <cstdio>

namespace {

class Demo
{
public:
    Demo(Desktop& shownOn, const QDir& folder, int picturesBefore, const QStringList& variables)
        : desktop(shownOn), program(shownOn), pictures(folder), count(picturesBefore)
    {
        for (const QString& variable : variables)
            program.setVariable(variable.section('=', 0, 0), variable.section('=', 1));
    }

    Outcome update(const QString& proxy, const QString& unit);
    Outcome pullLog(const QString& proxy, const QString& unit, const QString& target);
    Outcome seeFirstBox(const QString& stage, const QString& proxy, const QStringList& units);
    Outcome seeProblem(const QString& unit);
    Outcome seeChangeLog(const QString& proxy, const QString& unit);

    [[nodiscard]] int pictureCount() const { return count; }

private:
    Outcome open(const QString& proxy, const QStringList& units);
    Outcome offerLog(const QString& proxy, const QString& unit);
    Outcome seeConnection();
    Outcome seeTransfer();
    Outcome seeInstallation();
    Outcome keepPicture(const QString& stage);
    Outcome keepPictureOfBox(const QString& stage);

    Desktop& desktop;
    Program program;
    QDir pictures;
    int count;
};

Outcome Demo::keepPicture(const QString& stage)
{
    const QString path = pictures.filePath(QString("%1-%2.png").arg(++count, 2, 10, QChar('0')).arg(stage));
    if (!desktop.savePicture(path))
        return Outcome("cannot store " + path);
    std::printf("%s\n", qPrintable(path));
    std::fflush(stdout);
    return {};
}

/// Pictures a box once it is painted: when two looks at the screen see the same.
Outcome Demo::keepPictureOfBox(const QString& stage)
{
    QImage before = desktop.screen().picture();
    const bool still = waitUntil([&] {
        QImage now = desktop.screen().picture();
        before.swap(now);
        return now == before && desktop.screen().originOf(program.look().boxWindow()).has_value();
    });
    return still ? keepPicture(stage) : Outcome("the screen does not come to rest: " + stage);
}

Outcome Demo::open(const QString& proxy, const QStringList& units)
{
    program.setVariable("http_proxy", proxy);
    program.plugIn(units);
    STEP(program.start());
    return program.waitFor("the window in front",
                           [](const View& view) { return view.window()["active"].toBool(); });
}

Outcome Demo::update(const QString& proxy, const QString& unit)
{
    STEP(open(proxy, {unit}));
    STEP(keepPicture("started"));
    STEP(seeConnection());
    STEP(program.answer("Yes"));
    STEP(program.waitFor("the stored image",
                         [](const View& view) { return view.enabled("updateDeviceButton"); }));
    STEP(keepPicture("downloaded"));
    STEP(seeTransfer());
    STEP(seeInstallation());
    return program.waitForExit(0);
}

Outcome Demo::seeConnection()
{
    STEP(program.press("connect_button"));
    STEP(program.waitFor("the connected unit", [](const View& view) { return view.box().has_value(); }));
    STEP(keepPictureOfBox("connected"));
    STEP(program.answer("Ok"));
    STEP(program.waitFor("the offer", [](const View& view) {
        return view.box().has_value() && view.box()->buttons.contains("Yes");
    }));
    return keepPictureOfBox("offered");
}

Outcome Demo::seeTransfer()
{
    STEP(program.press("updateDeviceButton"));
    for (const int percent : {10, 50, 90}) {
        const auto reached = [percent](const View& view) {
            return view.text("labelTransfer") == "Transfer: in progress" &&
                   view.value("progressBarTransfer") >= percent;
        };
        STEP(program.waitFor(QString("the transfer at %1 %").arg(percent), reached));
        STEP(keepPicture(QString("transfer-%1-percent").arg(percent)));
    }
    return {};
}

Outcome Demo::seeInstallation()
{
    const auto installing = [](const View& view) {
        return view.text("labelUpdate").startsWith("Update: in progress") &&
               view.value("progressBarUpdate") >= 10;
    };
    STEP(program.waitFor("the installation", installing));
    STEP(keepPicture("installing"));
    STEP(program.waitForText("labelUpdate", "Update: finished"));
    STEP(program.waitFor("the last box", [](const View& view) { return view.box().has_value(); }));
    STEP(keepPictureOfBox("finished"));
    return program.answer("Ok");
}

/// Stores what the program stored, whatever it named it.
Outcome copyLog(const Program& program, const QString& target)
{
    const QStringList files = QDir(program.ownPath(".")).entryList({"*_log.enc"}, QDir::Files);
    if (files.size() != 1)
        return Outcome("not one log beside the program: " + files.join(", "));
    QFile::remove(target);
    return QFile::copy(program.ownPath(files.first()), target) ? Outcome()
                                                               : Outcome("cannot store " + target);
}

Outcome Demo::offerLog(const QString& proxy, const QString& unit)
{
    STEP(open(proxy, {unit}));
    STEP(seeConnection());
    STEP(program.answer("No"));
    STEP(program.waitForNoBox());
    STEP(program.pressKeys({XK_Control_L, XK_Shift_L, XK_l}));
    return program.waitFor("the log button",
                           [](const View& view) { return view.enabled("downloadLogFile"); });
}

Outcome Demo::pullLog(const QString& proxy, const QString& unit, const QString& target)
{
    STEP(offerLog(proxy, unit));
    STEP(keepPicture("log-offered"));
    STEP(program.press("downloadLogFile"));
    const auto halfWay = [](const View& view) {
        const int percent = view.value("progressBarTransfer"); // at first still that of the catalogue
        return view.enabled("stopDownloadingFile") && percent >= 50 && percent < 90;
    };
    STEP(program.waitFor("half of the log", halfWay));
    STEP(keepPicture("log-50-percent"));
    STEP(program.waitFor("the last box", [](const View& view) { return view.box().has_value(); }));
    STEP(keepPictureOfBox("log-complete"));
    STEP(program.answer("Ok"));
    STEP(program.waitForExit(0));
    return copyLog(program, target);
}

Outcome Demo::seeFirstBox(const QString& stage, const QString& proxy, const QStringList& units)
{
    STEP(open(proxy, units));
    STEP(program.press("connect_button"));
    STEP(program.waitFor("a box", [](const View& view) { return view.box().has_value(); }));
    return keepPictureOfBox(stage);
}

/// Nobody answers for the update server.
Outcome Demo::seeProblem(const QString& unit)
{
    STEP(open("http://127.0.0.1:1", {unit}));
    STEP(program.press("connect_button"));
    STEP(program.waitForBox(infoBox("HB4 connected")));
    STEP(program.answer("Ok"));
    STEP(program.waitForBox(errorBox("Problem with internet connection\n")));
    return keepPictureOfBox("problem");
}

Outcome Demo::seeChangeLog(const QString& proxy, const QString& unit)
{
    STEP(open(proxy, {unit}));
    STEP(seeConnection());
    const QString details = "Show Details...";
    STEP(program.waitFor("the button " + details, [&](const View& view) {
        const std::optional<Target> target = view.targetOfButton(details);
        return target && desktop.screen().pointAt(target->middle, target->window);
    }));
    desktop.screen().click();
    STEP(program.waitFor("the change log", [&](const View& view) { return !view.targetOfButton(details); }));
    return keepPictureOfBox("change-log");
}

Outcome demonstrateMishaps(Desktop& desktop, const QDir& pictures, int count,
                           const QCommandLineParser& arguments)
{
    const QString proxy = arguments.value("proxy");
    const QString unit = arguments.value("unit").section(',', 0, 1);
    const QStringList variables = arguments.values("set");
    STEP(Demo(desktop, pictures, count, variables).seeFirstBox("not-found", proxy, {}));
    STEP(Demo(desktop, pictures, count + 1, variables)
             .seeFirstBox("pair", proxy, {"trk900-left,version=23", "trk900-right,version=23"}));
    STEP(Demo(desktop, pictures, count + 2, variables).seeProblem(unit));
    return Demo(desktop, pictures, count + 3, variables).seeChangeLog(proxy, unit);
}

Outcome demonstrate(const QCommandLineParser& arguments)
{
    const QDir pictures(arguments.value("pictures"));
    if (!pictures.mkpath("."))
        return Outcome("cannot make the folder " + pictures.path());
    Desktop desktop;
    STEP(desktop.start());
    const QString proxy = arguments.value("proxy");
    const QString unit = arguments.value("unit");
    const QStringList variables = arguments.values("set");
    Demo first(desktop, pictures, 0, variables);
    STEP(first.update(proxy, unit));
    Demo second(desktop, pictures, first.pictureCount(), variables);
    STEP(second.pullLog(proxy, unit, arguments.value("log")));
    return arguments.isSet("mishaps")
               ? demonstrateMishaps(desktop, pictures, second.pictureCount(), arguments)
               : Outcome();
}

} // namespace

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCommandLineParser arguments;
    arguments.addOptions({
        {"proxy", "Where the update server answers.", "address"},
        {"unit", "The unit that is plugged in, as the virtual HID library is told.", "options"},
        {"pictures", "Where the pictures go.", "folder"},
        {"log", "Where the stored log goes.", "file"},
        {"mishaps", "Picture what rarely shows, too."},
        {"set", "A variable of the program's environment.", "name=value"},
    });
    arguments.addHelpOption();
    arguments.process(application);
    const Outcome outcome = demonstrate(arguments);
    if (!outcome.good())
        std::fprintf(stderr, "%s\n", qPrintable(outcome.problem()));
    return outcome.good() ? 0 : 1;
}
