// How install-for-this-computer.sh asks for root, and what it says if that was in vain. What it does as root
// is tested in the guest (tests/usb), where this runs once more: a computer with the rule has nothing to ask
// for.

#include "tests/packaging/scriptuser.h"

#include <QtTest>

namespace {

constexpr const char* rule = "/etc/udev/rules.d/70-talvex-updater.rules";
constexpr int absent = -1;

/// Notes that it was asked, and ends with a code.
QByteArray ending(const QByteArray& name, int code)
{
    return "#!/bin/sh\necho " + name + " >> \"$ASKED\"\nexit " + QByteArray::number(code) + '\n';
}

/// Does as it is told, but in a folder of the test's own.
constexpr const char* tamePkexec = "#!/bin/sh\necho pkexec >> \"$ASKED\"\n"
                                   "sh -c \"$(printf %s \"$3\" | sed \"s,/etc/udev,$ASKED.d,g\")\"\n";

} // namespace

class tst_installrule : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup() { user.reset(); }

    void inVain_data();
    void inVain();
    void nobodyToAsk();
    void commandMissing();

private:
    QScopedPointer<ScriptUser> user;
};

void tst_installrule::initTestCase()
{
    if (QFile::exists(rule))
        QSKIP("this computer has the rule");
}

void tst_installrule::init()
{
    user.reset(new ScriptUser);
    QVERIFY(user->isReady());
}

void tst_installrule::inVain_data()
{
    QTest::addColumn<int>("sudo");
    QTest::addColumn<int>("pkexec");
    QTest::addColumn<bool>("desktop");
    QTest::addColumn<QString>("asked");
    QTest::newRow("sudo refuses") << 1 << absent << true << "sudo";
    QTest::newRow("sudo says yes and does nothing") << 0 << absent << true << "sudo";
    QTest::newRow("pkexec says yes and does nothing") << 0 << 0 << true << "pkexec";
    QTest::newRow("pkexec is dismissed") << 0 << 126 << true << "pkexec";
    QTest::newRow("pkexec can ask nobody") << 1 << 127 << true << "pkexec sudo";
    QTest::newRow("pkexec can ask nobody, and there is no sudo") << absent << 127 << true << "pkexec";
    QTest::newRow("both, but no desktop") << 1 << 1 << false << "sudo";
    QTest::newRow("pkexec alone, and no desktop") << absent << 1 << false << "pkexec";
}

void tst_installrule::inVain()
{
    QFETCH(int, sudo);
    QFETCH(int, pkexec);
    QFETCH(bool, desktop);
    QVERIFY(sudo == absent ? user->removeCommand("sudo") : user->setCommand("sudo", ending("sudo", sudo)));
    QVERIFY(pkexec == absent || user->setCommand("pkexec", ending("pkexec", pkexec)));
    if (desktop)
        user->environment.insert("DISPLAY", ":0");
    const ScriptRun installed = user->install(user->copyNamed("updater"));
    QTEST(user->asked().join(' '), "asked");
    QCOMPARE(installed.code, 1);
    QVERIFY2(
        installed.says(QString("System rule (udev) that lets whoever sits at this computer use a unit: ") +
                       rule + '\n'),
        qPrintable(installed.output));
    QVERIFY2(installed.says("FAILED: the rule was not installed. An administrator can copy "
                            "share/70-talvex-updater.rules to /etc/udev/rules.d.\n"),
             qPrintable(installed.output));
    QVERIFY(!installed.says("Installed."));
    QVERIFY(QFile::exists(user->entry())); // which needs no root
}

void tst_installrule::nobodyToAsk()
{
    QVERIFY(user->removeCommand("sudo"));
    const ScriptRun installed = user->install(user->copyNamed("updater"));
    QCOMPARE(installed.code, 1);
    QVERIFY2(installed.says(
                 "  Neither pkexec nor sudo is installed, so nobody can be asked for the administrator's "
                 "password.\n  FAILED: the rule was not installed."),
             qPrintable(installed.output));
}

/// Such an end of what was done as root is no refusal: nobody is asked a second time.
void tst_installrule::commandMissing()
{
    QVERIFY(user->setCommand("pkexec", tamePkexec));
    user->environment.insert("DISPLAY", ":0");
    const ScriptRun installed = user->install(user->copyNamed("updater"));
    QVERIFY2(installed.says("udevadm"), qPrintable(installed.output));
    QCOMPARE(user->asked(), QStringList("pkexec"));
    QCOMPARE(contentOf(user->path("asked.d/rules.d/70-talvex-updater.rules")),
             contentOf(user->path("updater/share/70-talvex-updater.rules")));
    QCOMPARE(installed.code, 1);
}

QTEST_GUILESS_MAIN(tst_installrule)

#include "tst_installrule.moc"
