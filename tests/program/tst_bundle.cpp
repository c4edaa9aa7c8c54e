// The program as it is unpacked on a system that has nothing of what it needs. TALVEX_TEST_PROGRAM is a
// command that starts it there; scripts/package.sh makes both.

#include "tests/program/programtest.h"
#include "tests/program/scenario.h"
#include "tests/program/tlsredirect.h"

#include <QtTest>

namespace {

/// The bundle has no such plug-in; the next one that Qt tries is the one that it has.
constexpr const char* noWayland = R"(qt.qpa.plugin: Could not find the Qt platform plugin "wayland" in "")";

/// What the program says beyond what its font library says of a system that has fonts and no settings for
/// them.
QString ownWords(Program& program)
{
    QStringList lines = program.errorOutput().split('\n');
    lines.removeAll("Fontconfig error: Cannot load default config file: No such file: (null)");
    return lines.join('\n');
}

/// What the program has left in the folders that are its home and its place on the system of the test, rather
/// than on its own. Both are empty before.
QString strayFiles(const Program& program)
{
    const auto filter = QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot;
    QStringList found;
    for (const char* folder : {"../home", "../work"})
        found += QDir(program.ownPath(folder)).entryList(filter);
    return found.join(' ');
}

} // namespace

class tst_bundle : public ServedProgramTest
{
    Q_OBJECT

private slots:
    void update_data();
    void update();
    void redirectToTls();
};

void tst_bundle::update_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<QString>("session");
    QTest::addColumn<QString>("words");
    QTest::newRow("first run") << 6000 << "x11"
                               << "";
    QTest::newRow("second run, which finds what the first has stored") << 6060 << "x11"
                                                                       << "";
    QTest::newRow("Wayland, by way of its X server") << 6000 << "wayland" << noWayland;
}

void tst_bundle::update()
{
    QFETCH(int, size);
    QFETCH(QString, session);
    const QByteArray image = imageOf(size);
    MUST(scenario::publish(server, image));
    Program program(desktop);
    program.setVariable("XDG_SESSION_TYPE", session);
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(scenario::pressUpdate(program));
    MUST(scenario::seeFinished(program));
    QCOMPARE(scenario::journal(program), scenario::faultlessJournal(image));
    QVERIFY(scenario::receivedImage(program) == image);
    QTEST(ownWords(program), "words");
    QCOMPARE(strayFiles(program), QString());
}

/// The program finds the TLS library that it brings along.
void tst_bundle::redirectToTls()
{
    Program program(desktop);
    MUST(followRedirectToTls(program));
    QCOMPARE(ownWords(program), QString());
}

QTEST_GUILESS_MAIN(tst_bundle)

#include "tst_bundle.moc"
