#include "tests/net/scene.h"
#include "tests/support/filecontent.h"
#include "tests/support/rows.h"
#include "update/openeraddress.h"

#include <QTemporaryDir>
#include <QtTest>

/// The updater's own new version: its address goes to the system's opener (Linux).
class TestUpdaterHandover : public QObject
{
    Q_OBJECT

private slots:
    void init() { scene.reset(); }
    void address_data();
    void address();
    void openerGetsTheAddress_data();
    void openerGetsTheAddress();
    void openerIsMissing();

private:
    Scene scene;
};

void TestUpdaterHandover::address_data()
{
    const Rows<QString, QString> row("address", "handedOver");
    row("empty", "", "");
    row("two bytes a letter", "http://h\u00F6st/\u0414\u0430", "http://h%C3%B6st/%D0%94%D0%B0");
    row("three bytes a letter", "/\u66F4\u65B0.zip", "/%E6%9B%B4%E6%96%B0.zip");
    row("four bytes a letter", "/\U0001F3A7", "/%F0%9F%8E%A7");
    row("first and last beyond ASCII", "\u0080\U0010FFFF", "%C2%80%F4%8F%BF%BF");
    row("encoded already", "/%C3%B6 %zz %", "/%C3%B6 %zz %");
    QString ascii;
    for (char16_t character = 1; character <= 0x7F; ++character)
        ascii += QChar(character);
    row("all of ASCII", ascii, ascii);
}

void TestUpdaterHandover::address()
{
    QFETCH(QString, address);
    QTEST(openerAddress(address), "handedOver");
}

void TestUpdaterHandover::openerGetsTheAddress_data()
{
    const Rows<QString, QString> row("address", "handedOver");
    const QString plain = "http://update-server/bin/updater.zip?a=b c&d";
    row("plain", plain, plain);
    row("letters beyond the local encoding", "http://update-server/\u66F4\u65B0.zip",
        "http://update-server/%E6%9B%B4%E6%96%B0.zip");
}

void TestUpdaterHandover::openerGetsTheAddress()
{
#ifdef Q_OS_WIN
    QSKIP("Explorer is found in Windows' own folder; tst_windows looks at what it gets");
#endif
    QFETCH(QString, address);
    QFETCH(QString, handedOver);
    scene.checkAgainst(scene.catalogue({{"MainVer", updater::next}, {"MacMainBin", address}}));
    QTRY_COMPARE(scene.journal->events, told::updaterOffer());
    scene.journal->events.clear();

    const QTemporaryDir folder;
    const QString opener = folder.filePath("xdg-open");
    QVERIFY(writeFile(
        opener,
        "#!/bin/sh\nprintf '%s|' \"$#\" \"$@\" > \"${0%/*}/new\" && mv \"${0%/*}/new\" \"${0%/*}/opened\"\n"));
    QVERIFY(QFile::setPermissions(opener, QFile::ReadOwner | QFile::ExeOwner));
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", folder.path().toUtf8() + ':' + path);
    scene.checker->onNeedDownloadNewMainFirmware();
    qputenv("PATH", path);
    QCOMPARE(scene.journal->events, QStringList{told::signal("startDownloadMainUpdate")});
    QTRY_VERIFY(QFile::exists(folder.filePath("opened")));
    QCOMPARE(QString::fromUtf8(contentOf(folder.filePath("opened"))), "1|" + handedOver + '|');
    QVERIFY(!scene.checker->isBusy());
}

void TestUpdaterHandover::openerIsMissing()
{
#ifdef Q_OS_WIN
    QSKIP("Explorer is always there");
#endif
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/nowhere");
    scene.checker->onNeedDownloadNewMainFirmware();
    qputenv("PATH", path);
    QCOMPARE(scene.journal->all,
             (QStringList{told::log("Can't start xdg-open"), told::signal("startDownloadMainUpdate")}));
}

QTEST_GUILESS_MAIN(TestUpdaterHandover)
#include "tst_updaterhandover.moc"
