#include "tests/program/scenario.h"
#include "tests/support/filecontent.h"
#include "tests/support/silentserver.h"
#include "tests/support/texts.h"

#include <X11/keysym.h>

#include <QCryptographicHash>

#include <csignal>

namespace scenario {

QString unitOptions(const Program& program, const QString& model, const QString& more, const QString& label)
{
    // It speaks when it has something to say: one that goes on speaking is not heard, 32 reports later, by a
    // program that had no processor in between, and an outcome is told once.
    return QString("%1,version=%2,image=%3,journal=%4,period-ms=0%5")
        .arg(model, QString::number(unitVersion), program.scratchPath(label + ".image"),
             program.scratchPath(label + ".journal"), more);
}

QStringList options(const Program& program, const models::Connection& connection)
{
    QStringList all;
    for (const models::Model& unit : connection.units)
        all += unitOptions(program, unit.option, {}, unit.option);
    return all;
}

QByteArray receivedImage(const Program& program, const QString& label)
{
    return contentOf(program.scratchPath(label + ".image"));
}

QStringList journal(const Program& program, const QString& label)
{
    return linesOf(program.scratchPath(label + ".journal"));
}

QString lastWord(const Program& program)
{
    const QStringList lines = journal(program);
    return lines.isEmpty() ? QString("closed") : lines.last();
}

Outcome seeGivenBack(const Program& program)
{
    const QString last = lastWord(program);
    return last == "closed" ? Outcome() : Outcome("the unit's last word: " + last);
}

QStringList faultlessJournal(const QByteArray& image)
{
    const QString digest =
        QString::fromLatin1(QCryptographicHash::hash(image, QCryptographicHash::Md5).toHex());
    return {"opened",     "request digest=" + digest,
            "accepted",   "image-complete size=" + QString::number(image.size()),
            "installing", "verdict installed",
            "closed"};
}

Outcome publish(UpdateServer& server, const QByteArray& image, const QString& version)
{
    return publishFirmware(server, models::hb4.stem, version, image, changeLog);
}

Outcome offer(Program& program, UpdateServer& server, const models::Connection& connection,
              const QByteArray& image)
{
    STEP(publishFirmware(server, connection.stem(), offeredVersion, image, changeLog));
    program.setVariable("http_proxy", server.proxy());
    return {};
}

Outcome startWithUnit(Program& program, const QString& proxy, const QString& more)
{
    program.setVariable("http_proxy", proxy);
    program.plugIn({unitOptions(program, "hb4", more)});
    return program.start();
}

Outcome connectUnit(Program& program, const QString& message)
{
    STEP(program.press("connect_button"));
    STEP(program.waitForBox(infoBox(message)));
    return program.answer("Ok");
}

Outcome connectInVain(Program& program)
{
    STEP(program.press("connect_button"));
    STEP(program.waitForBox(errorBox(text::notFound)));
    STEP(program.answer("Ok"));
    return program.waitForNoBox();
}

Outcome askSilentServer(Program& program, const SilentServer& server)
{
    STEP(startWithUnit(program, server.address()));
    STEP(connectUnit(program));
    return program.waitFor("a request", [&](const View&) { return server.hasPendingConnections(); });
}

Outcome acceptOffer(Program& program, const QString& version)
{
    STEP(program.waitForBox(offerBox(offerText(version), changeLog)));
    STEP(program.answer("Yes"));
    return program.waitFor("the stored image",
                           [](const View& view) { return view.enabled("updateDeviceButton"); });
}

Outcome seeOffer(Program& program)
{
    STEP(connectUnit(program));
    return program.waitFor("the offer", &View::hasBox);
}

Outcome declineOffer(Program& program)
{
    STEP(seeOffer(program));
    STEP(program.answer("No"));
    return program.waitForNoBox();
}

Outcome acceptAnyOffer(Program& program)
{
    STEP(seeOffer(program));
    return program.answer("Yes");
}

Outcome connectAndDownload(Program& program, const QString& message)
{
    STEP(connectUnit(program, message));
    return acceptOffer(program);
}

Outcome pressUpdate(Program& program)
{
    STEP(connectAndDownload(program));
    return program.press("updateDeviceButton");
}

Outcome streamImage(Program& program)
{
    STEP(pressUpdate(program));
    return awaitStream(program);
}

Outcome install(Program& program)
{
    STEP(pressUpdate(program));
    return awaitInstallation(program);
}

Outcome updateByHand(Program& program)
{
    STEP(connectUnit(program));
    return program.press("updateDeviceButton");
}

Outcome lookHostUp(Program& program)
{
    const QString noted = program.scratchPath("looked-up");
    program.preload(TALVEX_SILENT_RESOLVER);
    program.setVariable("TALVEX_LOOKED_UP", noted);
    program.plugIn({unitOptions(program, "hb4")}); // and no proxy: the name itself is needed
    STEP(program.start());
    STEP(connectUnit(program));
    return program.waitFor("the look-up", [&](const View&) { return QFile::exists(noted); });
}

Outcome pressLogKeys(Program& program)
{
    return program.pressKeys({XK_Control_L, XK_Shift_L, XK_l});
}

Outcome askForLog(Program& program, const QString& message)
{
    STEP(connectUnit(program, message));
    STEP(program.waitForNoBox());
    STEP(pressLogKeys(program));
    return program.press("downloadLogFile");
}

Outcome fetchLog(Program& program, const QString& line)
{
    STEP(askForLog(program));
    return program.waitFor(line, [&](const View&) { return journal(program).contains(line); });
}

Outcome awaitStream(Program& program)
{
    return program.waitFor("the transfer under way", [](const View& view) {
        return view.text("labelTransfer") == text::transferInProgress &&
               view.value("progressBarTransfer") > 0;
    });
}

Outcome awaitInstallation(Program& program)
{
    return program.waitFor("the installation",
                           [](const View& view) { return view.value("progressBarUpdate") > 0; });
}

Outcome seeFinished(Program& program)
{
    STEP(program.waitForBox(finishedBox));
    STEP(program.waitFor("the finished installation", [](const View& view) {
        return view.text("labelUpdate") == text::updateFinished && !view.enabled("labelUpdate") &&
               view.value("progressBarUpdate") == 100 && !view.enabled("progressBarUpdate") &&
               view.text("labelTransfer") == text::transferCompleted && !view.enabled("labelTransfer") &&
               view.value("progressBarTransfer") == 100 && !view.enabled("progressBarTransfer") &&
               !view.enabled("updateDeviceButton") && !view.enabled("connect_button");
    }));
    STEP(program.answer("Ok"));
    return program.waitForExit(0);
}

Outcome seeLastBox(Program& program, const BoxText& box)
{
    STEP(program.waitForBox(box));
    STEP(program.answer("Ok"));
    return program.waitForPromptExit(0);
}

Outcome leave(Program& program)
{
    STEP(program.closeWindow());
    return program.waitForPromptExit(0);
}

Outcome closeAndWait(Program& program)
{
    STEP(program.closeWindow());
    return program.waitForExit(0);
}

Outcome terminate(Program& program)
{
    program.sendSignal(SIGTERM);
    return {};
}

QString offerText(const QString& version)
{
    return firmwareOffer(version, "2.8");
}

} // namespace scenario
