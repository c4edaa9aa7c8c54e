// The program with a catalogue key: an update whose catalogue is signed, and what it makes of other answers.

#include "tests/program/programtest.h"
#include "tests/program/scenario.h"
#include "tests/support/rawserver.h"
#include "tests/support/signer.h"

#include <QCryptographicHash>
#include <QtTest>

namespace {

const QString signaturePath = QString(cataloguePath) + ".minisig";
const BoxText notGenuine = errorBox(QString(text::notGenuine) + '\n' + text::nothingChanged);
const BoxText damaged = errorBox(QString(text::damagedImage) + '\n' + text::nothingChanged);

/// A catalogue that offers this version of the image, which is known by its digest.
QByteArray catalogueFor(const QByteArray& image, const QString& version = scenario::offeredVersion)
{
    const QString host = QString("http://") + updateHost;
    return catalogueOf("HB4", version, host + imagePath, host + changeLogPath) +
           "HB4Sha256=" + QCryptographicHash::hash(image, QCryptographicHash::Sha256).toHex() + "\r\n";
}

} // namespace
Q_DECLARE_METATYPE(BoxText)

class tst_signed : public ServedProgramTest
{
    Q_OBJECT

private slots:
    void init();

    void update();
    void refusedAnswer_data();
    void refusedAnswer();
    void redirectToOtherBytes();
    void nextRunWorks();
    void olderCatalogueOffersNothing();
    void alteredImage();
    void imageSwappedBeforeThePress();

private:
    Outcome begin() override;
    Outcome publish(const QByteArray& catalogue);

    const Signer signer{QString(TALVEX_SIGNING_KEY)};
    const QByteArray image = imageOf(6000);
};

Outcome tst_signed::begin()
{
    if (!QFile::exists(TALVEX_SIGNED_PROGRAM))
        return Outcome("scripts/test.sh tests builds " TALVEX_SIGNED_PROGRAM);
    qputenv("TALVEX_TEST_PROGRAM", TALVEX_SIGNED_PROGRAM);
    STEP(ServedProgramTest::begin());
    return server.publish(changeLogPath, scenario::changeLog);
}

void tst_signed::init()
{
    MUST(server.publish(imagePath, image));
    MUST(publish(catalogueFor(image)));
    server.forgetRequests();
}

/// With its signature.
Outcome tst_signed::publish(const QByteArray& catalogue)
{
    STEP(server.publish(cataloguePath, catalogue));
    return server.publish(signaturePath, signer.sign(catalogue));
}

void tst_signed::update()
{
    Program program(desktop);
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(scenario::install(program));
    MUST(scenario::seeFinished(program));
    QCOMPARE(scenario::receivedImage(program), image);
    QCOMPARE(scenario::journal(program), scenario::faultlessJournal(image));
    QStringList asked;
    for (const UpdateServer::Request& request : server.requests()) {
        QCOMPARE(request.userAgent, QString(expectedUserAgent));
        asked += request.line.section(' ', 1, 1).section(updateHost, 1);
    }
    QCOMPARE(asked, (QStringList{cataloguePath, signaturePath, changeLogPath, imagePath}));
}

void tst_signed::refusedAnswer_data()
{
    QTest::addColumn<QByteArray>("catalogue");
    QTest::addColumn<QByteArray>("signature"); // null: there is none
    QTest::addColumn<BoxText>("box");
    const QByteArray good = catalogueFor(image);
    const QByteArray signature = signer.sign(good);
    QTest::newRow("altered catalogue")
        << QByteArray(good).replace("Ver=28", "Ver=29") << signature << notGenuine;
    QTest::newRow("altered signature")
        << good << withDecodedLine(signature, 1, withBitFlipped(decodedLine(signature, 1), 300))
        << notGenuine;
    QTest::newRow("signature by a stranger") << good << Signer().sign(good) << notGenuine;
    QTest::newRow("empty signature") << good << QByteArray("") << notGenuine;
    QTest::newRow("unsigned") << good << QByteArray() << scenario::networkProblemBox;
}

void tst_signed::refusedAnswer()
{
    QFETCH(QByteArray, catalogue);
    QFETCH(QByteArray, signature);
    QFETCH(BoxText, box);
    MUST(server.publish(cataloguePath, catalogue));
    if (signature.isNull())
        server.withdraw(signaturePath);
    else
        MUST(server.publish(signaturePath, signature));
    Program program(desktop);
    MUST(program.placeFile(filename::image, "an older image"));
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(scenario::connectUnit(program));
    MUST(scenario::seeLastBox(program, box));
    QCOMPARE(server.requests().size(), 2);
    QCOMPARE(program.fileContent(filename::image), std::optional<QByteArray>("an older image"));
}

void tst_signed::redirectToOtherBytes()
{
    const QByteArray good = catalogueFor(image);
    RawServer raw;
    raw.setAnswer(cataloguePath, {{httpAnswer("302 Found", good, {"Location: /other"})}});
    raw.setAnswer("/other", ok(QByteArray(good).replace("Ver=28", "Ver=29")));
    raw.setAnswer(signaturePath, ok(signer.sign(good)));
    Program program(desktop);
    MUST(scenario::startWithUnit(program, raw.address({})));
    MUST(scenario::connectUnit(program));
    MUST(scenario::seeLastBox(program, notGenuine));
    QCOMPARE(raw.paths(), (QStringList{cataloguePath, "/other", signaturePath}));
}

void tst_signed::nextRunWorks()
{
    const QByteArray good = catalogueFor(image);
    MUST(server.publish(cataloguePath, good + "HB4Ver=29\r\n"));
    {
        Program program(desktop);
        MUST(scenario::startWithUnit(program, server.proxy()));
        MUST(scenario::connectUnit(program));
        MUST(scenario::seeLastBox(program, notGenuine));
    }
    MUST(server.publish(cataloguePath, good));
    Program program(desktop);
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(scenario::connectAndDownload(program));
    QCOMPARE(program.fileContent(filename::image), std::optional(image));
    MUST(scenario::leave(program));
}

void tst_signed::olderCatalogueOffersNothing()
{
    MUST(publish(catalogueFor(image, QString::number(scenario::unitVersion - 1))));
    Program program(desktop);
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(scenario::connectUnit(program));
    MUST(program.waitForBox(infoBox(text::upToDate)));
    MUST(program.answer("Ok"));
    MUST(scenario::leave(program));
}

void tst_signed::alteredImage()
{
    MUST(server.publish(imagePath, withBitFlipped(image, 4000)));
    Program program(desktop);
    MUST(program.placeFile(filename::image, "an older image"));
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(scenario::acceptAnyOffer(program));
    MUST(program.waitForBox(damaged));
    QVERIFY(!program.look().enabled("updateDeviceButton"));
    QCOMPARE(scenario::journal(program), QStringList{"opened"});
    MUST(scenario::seeLastBox(program, damaged));
    QCOMPARE(program.fileContent(filename::image), std::optional<QByteArray>("an older image"));
    QVERIFY(!program.fileContent(filename::download) && !program.fileContent(filename::backup));
}

void tst_signed::imageSwappedBeforeThePress()
{
    Program program(desktop);
    MUST(scenario::startWithUnit(program, server.proxy()));
    MUST(scenario::connectAndDownload(program));
    MUST(program.placeFile(filename::image, imageOf(6001)));
    MUST(program.press("updateDeviceButton"));
    MUST(program.waitForBox(errorBox(text::noImage)));
    MUST(program.answer("Ok"));
    MUST(program.waitForNoBox());
    QCOMPARE(scenario::journal(program), QStringList{"opened"});
    MUST(scenario::leave(program));
}

QTEST_GUILESS_MAIN(tst_signed)

#include "tst_signed.moc"
