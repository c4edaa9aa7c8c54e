// What the server offers: nothing newer, a firmware, a newer updater; and what it fails to hand out.

#include "tests/program/programtest.h"
#include "tests/program/scenario.h"
#include "tests/support/filecontent.h"
#include "tests/support/texts.h"

#include <QtTest>

namespace {

/// A command that notes down what it was called with.
Outcome placeFakeOpener(const Program& program)
{
    const QString script = program.scratchPath("xdg-open");
    const QByteArray noted = program.scratchPath("opened").toUtf8();
    const QByteArray text = "#!/bin/sh\nprintf '%s\\n' \"$#\" \"$@\" > \"" + noted + ".part\"\nmv \"" +
                            noted + ".part\" \"" + noted + "\"\n";
    const bool isThere =
        writeFile(script, text) &&
        QFile::setPermissions(script, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return isThere ? Outcome() : Outcome("cannot write " + script);
}

} // namespace

class tst_offers : public ServedProgramTest
{
    Q_OBJECT

private slots:
    void unitIsUpToDate();
    void declinedOfferChangesNothing();
    void updaterOfferIsHandedToTheBrowser_data();
    void updaterOfferIsHandedToTheBrowser();
    void updaterOfferDeclined();
    void missingOnTheServer_data();
    void missingOnTheServer();
    void imageThatCannotBeSaved();
    void announcedSize_data();
    void announcedSize();

private:
    Outcome publishUpdater(const QByteArray& path = "/bin/updater.zip");

    const QByteArray image = imageOf(60'000);
};

/// A catalogue with a newer updater, and a newer firmware that must not be offered before it.
Outcome tst_offers::publishUpdater(const QByteArray& path)
{
    STEP(scenario::publish(server, image));
    STEP(server.publish("/logs/updater.txt", "New window."));
    QByteArray catalogue =
        catalogueOf("HB4", scenario::offeredVersion, QString("http://%1/bin/HB4.sb").arg(updateHost),
                    QString("http://%1/logs/HB4.txt").arg(updateHost));
    catalogue.replace(QByteArray("MainVer=") + updater::own, QByteArray("MainVer=") + updater::next)
        .replace("/bin/updater.zip", path);
    return server.publish(cataloguePath, catalogue);
}

void tst_offers::unitIsUpToDate()
{
    MUST(scenario::publish(server, image, QString::number(scenario::unitVersion)));
    Program program(desktop);
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(scenario::connectUnit(program));
    MUST(program.waitForBox(infoBox(text::upToDate)));
    MUST(program.answer("Ok"));
    MUST(program.waitForNoBox());
    QVERIFY(!program.look().enabled("updateDeviceButton"));
    MUST(scenario::leave(program));
}

void tst_offers::declinedOfferChangesNothing()
{
    MUST(scenario::publish(server, image));
    server.forgetRequests();
    Program program(desktop);
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(scenario::declineOffer(program));
    const View view = program.look();
    QVERIFY(!view.enabled("updateDeviceButton"));
    QCOMPARE(view.text("labelTransfer"), QString(text::transferIdle));
    QVERIFY(!view.enabled("labelTransfer"));
    QVERIFY(!view.enabled("progressBarTransfer"));
    QCOMPARE(server.requests().size(), 2); // the catalogue and the change log
    QVERIFY(!program.fileContent(filename::image));
    MUST(scenario::leave(program));
}

void tst_offers::updaterOfferIsHandedToTheBrowser_data()
{
    QTest::addColumn<QByteArray>("path");
    QTest::addColumn<QByteArray>("handedOver");
    QTest::newRow("plain") << QByteArray("/bin/updater.zip") << QByteArray("/bin/updater.zip");
    QTest::newRow("letters beyond ASCII") << QByteArray("/\u0414\u0430 \u66F4\u65B0.zip?a=b&c")
                                          << QByteArray("/%D0%94%D0%B0 %E6%9B%B4%E6%96%B0.zip?a=b&c");
}

void tst_offers::updaterOfferIsHandedToTheBrowser()
{
    QFETCH(QByteArray, path);
    QFETCH(QByteArray, handedOver);
    MUST(publishUpdater(path));
    Program program(desktop);
    MUST(placeFakeOpener(program));
    program.putFirstInPath(program.scratchPath(""));
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(scenario::connectUnit(program));
    MUST(program.waitForBox(offerBox(updaterOffer(), "New window.")));
    MUST(program.answer("Yes"));
    MUST(program.waitForBox(infoBox(text::handOver)));
    const QString noted = program.scratchPath("opened");
    MUST(program.waitFor("the address handed over", [&](const View&) { return QFile::exists(noted); }));
    QCOMPARE(QString(contentOf(noted)), QString("1\nhttp://%1%2\n").arg(updateHost, QString(handedOver)));
    MUST(scenario::seeLastBox(program, infoBox(text::handOver)));
}

void tst_offers::updaterOfferDeclined()
{
    MUST(publishUpdater());
    Program program(desktop);
    MUST(placeFakeOpener(program));
    program.putFirstInPath(program.scratchPath(""));
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(scenario::declineOffer(program));
    MUST(program.staysAway("another offer", &View::hasBox));
    QVERIFY(!QFile::exists(program.scratchPath("opened")));
    MUST(scenario::leave(program));
}

void tst_offers::missingOnTheServer_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("offered"); // the offer comes before the problem
    QTest::newRow("the catalogue") << cataloguePath << false;
    QTest::newRow("the change log") << "/logs/HB4.txt" << false;
    QTest::newRow("the image") << "/bin/HB4.sb" << true;
}

void tst_offers::missingOnTheServer()
{
    QFETCH(QString, path);
    QFETCH(bool, offered);
    MUST(scenario::publish(server, image));
    server.withdraw(path);
    Program program(desktop);
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(offered ? scenario::acceptAnyOffer(program) : scenario::connectUnit(program));
    MUST(scenario::seeLastBox(program, scenario::networkProblemBox));
    QVERIFY(!program.fileContent(filename::image));
}

void tst_offers::imageThatCannotBeSaved()
{
    MUST(scenario::publish(server, image));
    Program program(desktop);
    MUST(program.placeFile(filename::image, "an older image"));
    QVERIFY(QDir().mkpath(program.ownPath(filename::download) + "/in the way"));
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(scenario::acceptAnyOffer(program));
    MUST(scenario::seeLastBox(program, errorBox(QString(text::savingProblem) + '\n' + text::savingAdvice)));
    QVERIFY(!program.fileContent(filename::image)); // an older image must never be taken for the new one
}

void tst_offers::announcedSize_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<bool>("isReported");
    QTest::newRow("the largest that is not reported") << 15'000'000 << false;
    QTest::newRow("one byte more") << 15'000'001 << true;
}

/// A large image is reported once, however many pieces it comes in. Qt may hold its completion back until the
/// box is dismissed, which ends the program: so much about the image itself is for tests in the process.
void tst_offers::announcedSize()
{
    QFETCH(int, size);
    QFETCH(bool, isReported);
    const QByteArray large = imageOf(size);
    MUST(scenario::publish(server, large));
    Program program(desktop);
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(scenario::acceptAnyOffer(program));
    if (isReported) {
        MUST(program.waitForBox(scenario::networkProblemBox));
        MUST(program.staysAway("a second box", [](const View& view) { return view.boxCount() != 1; }));
        MUST(program.answer("Ok"));
    } else {
        MUST(program.waitFor("the image",
                             [](const View& view) { return view.enabled("updateDeviceButton"); }));
        QVERIFY(program.fileContent(filename::image) == large); // not compared aloud
        MUST(program.closeWindow());
    }
    MUST(program.waitForPromptExit(0));
}

QTEST_GUILESS_MAIN(tst_offers)

#include "tst_offers.moc"
