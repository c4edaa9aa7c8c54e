#include "tests/harness/demo.h"

#include "tests/harness/halfserver.h"
#include "tests/harness/waiting.h"
#include "tests/support/models.h"
#include "tests/support/texts.h"

#include <QFile>

#include <X11/keysym.h>

#include <cstdio>

namespace {

/// Stores what the program stored, whatever it named it.
Outcome copyLog(const Program& program, const QString& target)
{
    const QStringList files = QDir(program.ownPath(".")).entryList({filename::anyLog}, QDir::Files);
    if (files.size() != 1)
        return Outcome("not one log beside the program: " + files.join(", "));
    QFile::remove(target);
    return QFile::copy(program.ownPath(files.first()), target) ? Outcome()
                                                               : Outcome("cannot store " + target);
}

} // namespace

Outcome Demo::keepPicture(const QString& stage)
{
    const QString path = pictures.filePath(QString("%1-%2.png").arg(++count, 2, 10, QChar('0')).arg(stage));
    if (!desktop.savePicture(path))
        return Outcome("cannot store " + path);
    std::printf("%s\n", qPrintable(path));
    std::fflush(stdout);
    return {};
}

/// Once all is painted: when two looks at the screen see the same.
Outcome Demo::keepPictureAtRest(const QString& stage)
{
    QImage before = desktop.screen().picture();
    const bool still = waitUntil([&] {
        QImage now = desktop.screen().picture();
        before.swap(now);
        return now == before;
    });
    return still ? keepPicture(stage) : Outcome("the screen does not come to rest: " + stage);
}

Outcome Demo::keepPictureOfBox(const QString& stage)
{
    STEP(program.waitFor("the box on the screen", [this](const View& view) {
        return desktop.screen().originOf(view.boxWindow()).has_value();
    }));
    return keepPictureAtRest(stage);
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
    STEP(keepPictureAtRest("started"));
    STEP(seeConnection());
    STEP(program.answer("Yes"));
    STEP(program.waitFor("the stored image",
                         [](const View& view) { return view.enabled("updateDeviceButton"); }));
    STEP(keepPictureAtRest("downloaded"));
    STEP(seeTransfer());
    STEP(seeInstallation());
    return program.waitForExit(0);
}

/// Without a picture; seeOffer() goes on as far as the offer.
Outcome Demo::connectUnit()
{
    STEP(program.press("connect_button"));
    STEP(program.waitForBox(infoBox(models::hb4.connected)));
    return program.answer("Ok");
}

Outcome Demo::seeOffer()
{
    STEP(connectUnit());
    return program.waitFor("the offer", &View::hasBox);
}

Outcome Demo::seeConnection()
{
    STEP(program.press("connect_button"));
    STEP(program.waitFor("the connected unit", &View::hasBox));
    STEP(keepPictureOfBox("connected"));
    STEP(program.answer("Ok"));
    STEP(program.waitFor("the offer", &View::hasBox));
    return keepPictureOfBox("offered");
}

Outcome Demo::seeTransfer()
{
    STEP(program.press("updateDeviceButton"));
    for (const int percent : {10, 50, 90}) {
        const auto reached = [percent](const View& view) {
            return view.text("labelTransfer") == text::transferInProgress &&
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
        return view.text("labelUpdate") == text::updateInProgress && view.value("progressBarUpdate") >= 10;
    };
    STEP(program.waitFor("the installation", installing));
    STEP(keepPicture("installing"));
    STEP(program.waitForText("labelUpdate", text::updateFinished));
    STEP(program.waitFor("the last box", &View::hasBox));
    STEP(keepPictureOfBox("finished"));
    return program.answer("Ok");
}

Outcome Demo::offerLog(const QString& proxy, const QString& unit)
{
    STEP(open(proxy, {unit}));
    STEP(seeOffer());
    STEP(program.answer("No"));
    STEP(program.waitForNoBox());
    STEP(program.pressKeys({XK_Control_L, XK_Shift_L, XK_l}));
    return program.waitFor("the log button",
                           [](const View& view) { return view.enabled("downloadLogFile"); });
}

Outcome Demo::pullLog(const QString& proxy, const QString& unit, const QString& target)
{
    STEP(offerLog(proxy, unit));
    STEP(keepPictureAtRest("log-offered"));
    STEP(seeHalfOfLog());
    STEP(program.waitFor("the last box", &View::hasBox));
    STEP(keepPictureOfBox("log-complete"));
    STEP(program.answer("Ok"));
    STEP(program.waitForExit(0));
    return copyLog(program, target);
}

Outcome Demo::seeHalfOfLog()
{
    STEP(program.press("downloadLogFile"));
    const auto halfWay = [](const View& view) {
        const int percent = view.value("progressBarTransfer"); // at first still that of the catalogue
        return view.enabled("stopDownloadingFile") && percent >= 50 && percent < 90;
    };
    STEP(program.waitFor("half of the log", halfWay));
    return keepPicture("log-50-percent");
}

Outcome Demo::stopLog(const QString& proxy, const QString& unit)
{
    STEP(offerLog(proxy, unit));
    STEP(program.press("downloadLogFile"));
    STEP(program.press("stopDownloadingFile"));
    STEP(program.waitFor("the last box", &View::hasBox));
    return keepPictureOfBox("log-stopped");
}

/// The server stops in its midst, so that there is time for a picture.
Outcome Demo::seeDownload(const QString& unit)
{
    HalfServer server;
    STEP(open(server.address(), {unit}));
    STEP(seeOffer());
    STEP(program.answer("Yes"));
    STEP(program.waitFor("half of the image", [](const View& view) {
        const int percent = view.value("progressBarTransfer"); // at first still that of the change log
        return view.text("labelTransfer") == text::transferDownload && percent > 0 && percent < 100;
    }));
    return keepPictureAtRest("downloading");
}

Outcome Demo::seeFirstBox(const QString& stage, const QString& proxy, const QStringList& units)
{
    STEP(open(proxy, units));
    STEP(program.press("connect_button"));
    STEP(program.waitFor("a box", &View::hasBox));
    return keepPictureOfBox(stage);
}

/// Nobody answers for the update server.
Outcome Demo::seeProblem(const QString& unit)
{
    STEP(open("http://127.0.0.1:1", {unit}));
    STEP(connectUnit());
    STEP(program.waitForBox(errorBox(QString(text::networkProblem) + '\n')));
    return keepPictureOfBox("problem");
}

Outcome Demo::seeChangeLog(const QString& proxy, const QString& unit)
{
    STEP(open(proxy, {unit}));
    STEP(seeOffer());
    const QString details = "Show Details...";
    STEP(program.waitFor("the button " + details, [&](const View& view) {
        const std::optional<Target> target = view.targetOfButton(details);
        return target && desktop.screen().pointAt(target->middle, target->window);
    }));
    desktop.screen().click();
    STEP(program.waitFor("the change log", [&](const View& view) { return !view.targetOfButton(details); }));
    return keepPictureOfBox("change-log");
}

/// The unit, or the disk, is against an image that was put beside the program by hand.
Outcome Demo::seeRefusal(const QString& stage, const QString& unit, bool isImageThere)
{
    const QString image = filename::service;
    STEP(program.placeFile(image, QByteArray(600, 'i')));
    STEP(open({}, {unit}));
    STEP(connectUnit());
    if (!isImageThere)
        QFile::remove(program.ownPath(image));
    STEP(program.press("updateDeviceButton"));
    STEP(program.waitFor("a box", &View::hasBox));
    return keepPictureOfBox(stage);
}

Outcome Demo::seeLatest(const QString& proxy)
{
    STEP(open(proxy, {"hb4,version=99"}));
    STEP(connectUnit());
    STEP(program.waitForBox(infoBox(text::upToDate)));
    return keepPictureOfBox("latest");
}

Outcome Demo::seeUpdaterOffer(const QString& unit)
{
    HalfServer server(updater::next);
    STEP(open(server.address(), {unit}));
    STEP(seeOffer());
    return keepPictureOfBox("updater-offered");
}
