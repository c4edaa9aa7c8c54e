// Without a server.

#include "tests/program/programtest.h"
#include "tests/program/scenario.h"
#include "tests/support/texts.h"

#include <QtTest>

class tst_offline : public ProgramTest
{
    Q_OBJECT

private slots:
    void noServer();
    void localImageIsInstalledWithoutServer();
};

void tst_offline::noServer()
{
    Program program(desktop);
    MUST(scenario::startWithUnit(program, scenario::deadProxy));
    MUST(scenario::connectUnit(program));
    MUST(scenario::seeLastBox(program, scenario::networkProblemBox));
    QVERIFY2(program.errorOutput().contains("Error by download info file"),
             qPrintable(program.errorOutput()));
}

void tst_offline::localImageIsInstalledWithoutServer()
{
    const QByteArray image = imageOf(60'000);
    Program program(desktop);
    MUST(program.placeFile(filename::service, image));
    MUST(scenario::startWithUnit(program, scenario::deadProxy));
    MUST(scenario::updateByHand(program));
    MUST(scenario::seeFinished(program));
    QCOMPARE(scenario::receivedImage(program), image);
    QCOMPARE(scenario::journal(program), scenario::faultlessJournal(image));
    QCOMPARE(program.fileContent(filename::service), std::optional(image));
    QVERIFY(!program.fileContent(filename::image));
}

QTEST_GUILESS_MAIN(tst_offline)

#include "tst_offline.moc"
