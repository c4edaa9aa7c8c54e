#include "net/scene.h"

#include <QFile>
#include <QTemporaryDir>
#include <QtTest>

/// The updater's own new version: its address goes to the system's opener (Linux).
class TestUpdaterHandover : public QObject
{
    Q_OBJECT

private slots:
    void init() { scene.reset(); }
    void openerGetsTheAddress();
    void openerIsMissing();

private:
    Scene scene;
};

void TestUpdaterHandover::openerGetsTheAddress()
{
    const QTemporaryDir folder;
    const QString address = "http://update-server/bin/updater.zip?a=b c&d";
    QFile opener(folder.filePath("xdg-open"));
    QVERIFY(opener.open(QIODevice::WriteOnly));
    opener.write(
        "#!/bin/sh\nprintf '%s|' \"$#\" \"$@\" > \"${0%/*}/new\" && mv \"${0%/*}/new\" \"${0%/*}/opened\"\n");
    opener.close();
    QVERIFY(opener.setPermissions(QFile::ReadOwner | QFile::ExeOwner));
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", folder.path().toUtf8() + ':' + path);
    scene.checker->mainBinUrl = address;
    scene.checker->onNeedDownloadNewMainFirmware();
    qputenv("PATH", path);
    QCOMPARE(scene.journal->all, QStringList{told::signal("startDownloadMainUpdate")});
    QFile opened(folder.filePath("opened"));
    QTRY_VERIFY(opened.exists());
    QVERIFY(opened.open(QIODevice::ReadOnly));
    QCOMPARE(QString::fromUtf8(opened.readAll()), "1|" + address + '|');
    QVERIFY(!scene.checker->isBusy());
}

void TestUpdaterHandover::openerIsMissing()
{
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "/nowhere");
    scene.checker->onNeedDownloadNewMainFirmware();
    qputenv("PATH", path);
    QCOMPARE(scene.journal->all,
             (QStringList{told::log("Can't start xdg-open"), told::signal("startDownloadMainUpdate")}));
}

QTEST_GUILESS_MAIN(TestUpdaterHandover)
#include "tst_updaterhandover.moc"
