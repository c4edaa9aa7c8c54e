// Without a server.

#include "tests/harness/program.h"
#include "tests/program/scenario.h"
#include "tests/support/texts.h"

#include <QtTest>

class tst_offline : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();

    void noServer();
    void localImageIsInstalledWithoutServer();

private:
    Desktop desktop;
    QByteArray image;
};

void tst_offline::initTestCase()
{
    image = imageOf(60'000);
    MUST(desktop.start());
}

void tst_offline::noServer()
{
    Program program(desktop);
    MUST(scenario::startWithUnit(program, scenario::deadProxy));
    MUST(scenario::connectUnit(program));
    MUST(program.waitForBox(scenario::networkProblemBox()));
    QVERIFY2(program.errorOutput().contains("Error by download info file"),
             qPrintable(program.errorOutput()));
    MUST(program.answer("Ok"));
    MUST(program.waitForPromptExit(0));
}

void tst_offline::localImageIsInstalledWithoutServer()
{
    Program program(desktop);
    MUST(program.placeFile(filename::service, image));
    MUST(scenario::startWithUnit(program, scenario::deadProxy));
    MUST(scenario::connectUnit(program));
    MUST(program.press("updateDeviceButton"));
    MUST(scenario::seeFinished(program));
    QCOMPARE(scenario::receivedImage(program), image);
    QCOMPARE(scenario::journal(program), scenario::faultlessJournal(image));
    QCOMPARE(program.fileContent(filename::service), std::optional(image));
    QVERIFY(!program.fileContent(filename::image));
}

QTEST_GUILESS_MAIN(tst_offline)

#include "tst_offline.moc"
