// An update by the keyboard and by what the accessibility bus tells, without a look at the window:
// blinduser.py is the user. Runs in a session of its own (dbus-run-session), in which the bus of assistive
// technology is started.

#include "tests/harness/program.h"
#include "tests/harness/updateserver.h"
#include "tests/harness/waiting.h"
#include "tests/program/scenario.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

class tst_blinduser : public QObject
{
    Q_OBJECT

private slots:
    void updatesAUnit();
};

void tst_blinduser::updatesAUnit()
{
    const QByteArray image = imageOf(6000);
    Desktop desktop;
    UpdateServer server;
    MUST(desktop.start());
    MUST(server.start());
    MUST(scenario::publish(server, image));
    Program program(desktop);
    program.setVariable("DBUS_SESSION_BUS_ADDRESS", qEnvironmentVariable("DBUS_SESSION_BUS_ADDRESS"));
    program.setVariable("QT_LINUX_ACCESSIBILITY_ALWAYS_ON", "1");
    MUST(scenario::startWithUnit(program, server.proxy(), ",install-ms=800"));

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("DISPLAY", desktop.name());
    environment.insert("TALVEX_HANG_LIMIT_S", QString::number(limits::hangMs() / 1000));
    environment.insert("TALVEX_TEXTS", QJsonDocument(QJsonObject{
                                                         {"title", text::windowTitle},
                                                         {"connected", models::hb4.connected},
                                                         {"offer", scenario::offerText()},
                                                         {"question", text::offerQuestion},
                                                         {"transferIdle", text::transferIdle},
                                                         {"transferDownload", text::transferDownload},
                                                         {"transferInProgress", text::transferInProgress},
                                                         {"transferCompleted", text::transferCompleted},
                                                         {"updateIdle", text::updateIdle},
                                                         {"updateInProgress", text::updateInProgress},
                                                         {"updateFinished", text::updateFinished},
                                                         {"finished", text::finished},
                                                     })
                                           .toJson());
    ChildProcess user;
    user.setProcessEnvironment(environment);
    user.setProcessChannelMode(QProcess::ForwardedChannels);
    user.start("/usr/bin/python3", {TALVEX_BLIND_USER, "talvex-updater"});
    while (user.state() != QProcess::NotRunning) // which has limits of its own
        letOthersRun();
    QCOMPARE(user.exitStatus(), QProcess::NormalExit);
    QCOMPARE(user.exitCode(), 0);

    MUST(program.waitForExit(0));
    QCOMPARE(scenario::receivedImage(program), image);
    QCOMPARE(scenario::journal(program), scenario::faultlessJournal(image));
}

QTEST_GUILESS_MAIN(tst_blinduser)

#include "tst_blinduser.moc"
