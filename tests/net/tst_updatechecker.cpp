#include "tests/net/scene.h"
#include "tests/support/filecontent.h"
#ifdef Q_OS_LINUX
#include "tests/support/httpthreads.h"
#endif
#include "tests/support/programfiles.h"
#include "tests/support/rows.h"
#include "tests/support/texts.h"

#include <QAuthenticator>
#include <QMetaMethod>
#include <QTimer>
#include <QtTest>

namespace {

/// "name(Type parameter, Type)", as the class declares it.
QString declaration(const QMetaMethod& method)
{
    QStringList parameters;
    const QList<QByteArray> types = method.parameterTypes();
    const QList<QByteArray> names = method.parameterNames();
    for (int i = 0; i < types.size(); ++i)
        parameters.append(QString::fromLatin1(types[i] + ' ' + names[i]).trimmed());
    return QString::fromLatin1(method.name()) + '(' + parameters.join(", ") + ')';
}

QStringList declarations(QMetaMethod::MethodType kind)
{
    const QMetaObject& meta = UpdateChecker::staticMetaObject;
    QStringList all;
    for (int i = meta.methodOffset(); i < meta.methodCount(); ++i)
        if (meta.method(i).methodType() == kind)
            all.append(declaration(meta.method(i)));
    return all;
}

/// A reply that was never sent; knows whether it was told to ignore TLS errors.
class ForeignReply : public QNetworkReply
{
public:
    bool ignoring = false;
    void abort() override {}
    void ignoreSslErrors() override { ignoring = true; }

protected:
    qint64 readData(char* /*data*/, qint64 /*size*/) override { return -1; }
};

} // namespace

/// The checker's face, its reports and its state; the requests have tests of their own.
class TestUpdateChecker : public QObject
{
    Q_OBJECT

private slots:
    void init() { scene.reset(); }
    void signalsInOrder();
    void slotsInOrder();
    void newChecker();
    void settersOnlyStore();
    void progress_data();
    void progress();
    void announcedSize_data();
    void announcedSize();
    void serviceFileGoesBeforeTheCatalogue();
    void tlsErrorsAreIgnoredOnTheOwnReply();
    void noCredentials();
    void goesAwayInMidRequest();
    void endsItsThreadInMidRequest();

private:
    Scene scene;
};

void TestUpdateChecker::signalsInOrder()
{
    const QStringList expected{
        "findMainNewVersion(QString newVersion, QString changeLog)",
        "findNewVersion(QString newVersion, QString changeLog)",
        "youHaveLastVersion()",
        "checkversionError(QString error)",
        "downloadProgress(int percent)",
        "newUpdateFileDownloaded(bool)",
        "youHaveProblem(QString, QString)",
        "changeUpdateFileName(QString)",
        "startDownloadMainUpdate()",
    };
    QCOMPARE(declarations(QMetaMethod::Signal), expected);
}

void TestUpdateChecker::slotsInOrder()
{
    const QStringList expected{
        "onNeedDownloadNewFirmware()",
        "onNeedDownloadNewMainFirmware()",
        "downloadChangeLog()",
        "downloadMainChangeLog()",
        "exitSlot()",
        "onDataReadProgress(qlonglong done, qlonglong total)",
        "replyFinished()",
        "httpReadyRead()",
        "httpReadyRead2()",
        "httpReadyRead3()",
        "replyFinishedOnDone()",
        "downloadChangeLogDone()",
        "downloadMainChangeLogDone()",
        "sslErrors(QNetworkReply*, QList<QSslError> errors)",
        "slotAuthenticationRequired(QNetworkReply*, QAuthenticator*)",
    };
    QCOMPARE(declarations(QMetaMethod::Slot), expected);
    QCOMPARE(declarations(QMetaMethod::Method), QStringList());
}

void TestUpdateChecker::newChecker()
{
    UpdateChecker checker;
    const inside::Checker kept = inside::of(checker);
    QVERIFY(kept.mainBinUrl.startsWith("http://"));
    QCOMPARE(kept.mainBinUrl.size(), 15);
    QCOMPARE(kept.reply, nullptr);
    QVERIFY(!checker.isBusy());
    const auto* clock = checker.findChild<QTimer*>(QString(), Qt::FindDirectChildrenOnly);
    QVERIFY(clock != nullptr);
    QVERIFY(!clock->isActive());
    QVERIFY(!clock->isSingleShot());
    QVERIFY(kept.infoData.isEmpty() && kept.firmwareData.isEmpty() && kept.changeLogText.isEmpty());
    QVERIFY(QMetaType::type("QList<QSslError>") != QMetaType::UnknownType);
}

void TestUpdateChecker::settersOnlyStore()
{
    scene.checker->setUnitType(UNIT_PLT65);
    scene.checker->setCurVersion(static_cast<unsigned char>(255));
    scene.checker->setCurVersion(QString("1.05"));
    QCOMPARE(scene.state().unitType, UNIT_PLT65);
    QCOMPARE(int(scene.state().curVersionByte), 255);
    QCOMPARE(scene.state().curVersion, QString("1.05"));
    QCOMPARE(scene.journal->all, QStringList());
    QVERIFY(!scene.checker->isBusy() && !scene.clock().isActive());
}

void TestUpdateChecker::progress_data()
{
    const Rows<qint64, qint64, int> row("done", "total", "percent");
    row("half", 512, 1024, 50);
    row("unknown total", 77, -1, 100);
    row("total of nothing", 0, 0, 100);
    row("more than announced", 2048, 1024, 200);
}

void TestUpdateChecker::progress()
{
    QFETCH(qint64, done);
    QFETCH(qint64, total);
    QFETCH(int, percent);
    scene.checker->onDataReadProgress(done, total);
    scene.checker->onDataReadProgress(done, total); // at every report
    QCOMPARE(scene.journal->progress, (QVector<int>{percent, percent}));
    QCOMPARE(scene.journal->events, QStringList());
}

void TestUpdateChecker::announcedSize_data()
{
    const Rows<qint64, qint64, int, bool> row("done", "total", "percent", "reported");
    row("15000000 bytes", 7500000, 15000000, 50, false);
    row("15000001 bytes", 7500001, 15000001, 50, true);
    row("much more", 4000000000, 8000000000, 50, true);
    row("a lying server's most", std::numeric_limits<qint64>::max(), std::numeric_limits<qint64>::max(), 100,
        true);
}

void TestUpdateChecker::announcedSize()
{
    QFETCH(qint64, done);
    QFETCH(qint64, total);
    QFETCH(int, percent);
    QFETCH(bool, reported);
    QStringList expected{told::signal("downloadProgress", {QString::number(percent)})};
    if (reported)
        expected = told::downloadError() + expected;
    scene.checker->onDataReadProgress(done, total);
    QCOMPARE(scene.journal->all, expected);
}

void TestUpdateChecker::serviceFileGoesBeforeTheCatalogue()
{
    scene.server.setAnswer(cataloguePath, ok(scene.catalogue()));
    const QString path = besideProgram(filename::service);
    QVERIFY(writeFile(path, "image"));
    scene.checker->checkUpdate();
    QVERIFY(QFile::remove(path));
    QCOMPARE(scene.journal->all,
             QStringList{told::signal("changeUpdateFileName", {path})} + told::imageStored());
    QVERIFY(!scene.checker->isBusy() && !scene.clock().isActive());
    scene.checker->checkUpdate(); // with the file gone again, the catalogue is asked for
    QTRY_COMPARE(scene.server.paths().value(0), QString(cataloguePath));
}

void TestUpdateChecker::tlsErrorsAreIgnoredOnTheOwnReply()
{
    ForeignReply own;
    ForeignReply failing;
    scene.state().reply = &own;
    scene.checker->sslErrors(&failing, {QSslError(QSslError::SelfSignedCertificate)});
    scene.state().reply = nullptr;
    scene.checker->sslErrors(&failing, {}); // with none in flight nothing happens
    QVERIFY(own.ignoring);
    QVERIFY(!failing.ignoring);
    QCOMPARE(scene.journal->all, QStringList());
}

void TestUpdateChecker::noCredentials()
{
    QAuthenticator asked;
    asked.setRealm("firmware");
    scene.checker->slotAuthenticationRequired(nullptr, &asked);
    QVERIFY(asked.user().isEmpty() && asked.password().isEmpty());
    QCOMPARE(scene.journal->all, QStringList());
}

void TestUpdateChecker::goesAwayInMidRequest()
{
    scene.server.setAnswer(imagePath, {{announced(9, "half")}, End::keepOpen});
    scene.ask(Request::image);
    QTRY_COMPARE(scene.state().firmwareData, QByteArray("half"));
    const QPointer<QNetworkReply> reply = scene.state().reply;
    scene.journal->events.clear();
    scene.journal->all.clear();
    scene.checker.reset();
    QVERIFY(reply.isNull());
    QCOMPARE(scene.journal->all, QStringList());
}

void TestUpdateChecker::endsItsThreadInMidRequest()
{
    scene.server.setAnswer(imagePath, {{announced(9, "half")}, End::keepOpen});
    scene.ask(Request::image);
    QTRY_COMPARE(scene.state().firmwareData, QByteArray("half"));
#ifdef Q_OS_LINUX // elsewhere threads have no names
    QCOMPARE(httpThreads(), 1);
#endif
    scene.journal->events.clear();
    scene.checker->endNetwork();
#ifdef Q_OS_LINUX
    QTRY_COMPARE(httpThreads(), 0);
#endif
    QCoreApplication::processEvents();
    QCOMPARE(scene.journal->events, QStringList());
}

QTEST_GUILESS_MAIN(TestUpdateChecker)
#include "tst_updatechecker.moc"
