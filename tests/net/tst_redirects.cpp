#include "tests/net/scene.h"
#include "tests/support/imagefiles.h"
#include "tests/support/selfsigned.h"

#include <QtTest>

namespace {

const QByteArray elsewhere = "<html>moved</html>";

RawServer::Answer redirect(const QByteArray& status, const QString& address)
{
    return {{httpAnswer(status, elsewhere, {"Location: " + address.toUtf8(), "Content-Type: text/html"})}};
}

} // namespace

/// Answers that send the checker elsewhere: followed, never from https down to http; their own body is
/// nobody's.
class TestRedirects : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void followed_data();
    void followed();
    void imageIsTheLastAnswersBody();
    void everyRequestKeepsItsHeader();
    void refused_data();
    void refused();
    void toTlsWithAnyCertificate();
    void neverFromTlsToPlain();

private:
    Scene scene;
    QByteArray upToDate;
};

void TestRedirects::init()
{
    scene.reset();
    upToDate = scene.catalogue({{"HB4Ver", "23"}});
    scene.server.setAnswer("/new/versions.txt", ok(upToDate));
}

void TestRedirects::followed_data()
{
    QTest::addColumn<QByteArray>("status");
    for (const char* status : {"301 Moved Permanently", "302 Found", "303 See Other",
                               "307 Temporary Redirect", "308 Permanent Redirect"})
        QTest::newRow(status) << QByteArray(status);
}

void TestRedirects::followed()
{
    QFETCH(QByteArray, status);
    scene.server.setAnswer(cataloguePath, redirect(status, "/second"));
    scene.server.setAnswer("/second", redirect(status, scene.server.address("/new/versions.txt")));
    scene.checker->checkUpdate();
    QTRY_COMPARE(scene.journal->events, QStringList{told::signal("youHaveLastVersion")});
    QCOMPARE(scene.server.paths(), (QStringList{cataloguePath, "/second", "/new/versions.txt"}));
}

/// No byte of the redirects' own pages gets into the image.
void TestRedirects::imageIsTheLastAnswersBody()
{
    const QByteArray image(100000, 'i');
    scene.server.setAnswer(imagePath, redirect("302 Found", "/mirror/HB4.sb"));
    RawServer::Answer slow = ok(image);
    slow.pieces = {slow.pieces.first().left(5000), slow.pieces.first().mid(5000)};
    slow.stepwise = true;
    scene.server.setAnswer("/mirror/HB4.sb", slow);
    scene.ask(Request::image);
    QTRY_VERIFY(scene.received() > 0);
    scene.server.goOn();
    QTRY_COMPARE(scene.journal->events, QStringList{told::signal("newUpdateFileDownloaded", {"true"})});
    QCOMPARE(ImageFiles::at(programImage()).image, image);
    QVERIFY(ImageFiles{}.placeAt(programImage()));
}

void TestRedirects::everyRequestKeepsItsHeader()
{
    scene.server.setAnswer(cataloguePath, redirect("302 Found", "/new/versions.txt"));
    scene.checker->checkUpdate();
    QTRY_COMPARE(scene.journal->events, QStringList{told::signal("youHaveLastVersion")});
    QCOMPARE(scene.server.requests().size(), 2);
    for (const QByteArray& head : scene.server.requests())
        QVERIFY(head.contains("\r\nUser-Agent: MyOwnBrowser 1.0\r\n"));
}

void TestRedirects::refused_data()
{
    QTest::addColumn<Request>("request");
    QTest::addColumn<QString>("location");
    for (const auto& [request, name] :
         {std::pair(Request::catalogue, "catalogue"), std::pair(Request::changeLog, "change log"),
          std::pair(Request::mainChangeLog, "updater's change log"), std::pair(Request::image, "image")}) {
        QTest::addRow("%s, in a circle", name) << request << Scene::path(request);
        QTest::addRow("%s, to a missing page", name) << request << "/missing";
        QTest::addRow("%s, to a file of the disk", name) << request << "file:///etc/hostname";
        QTest::addRow("%s, to another protocol", name) << request << "ftp://127.0.0.1/x";
        QTest::addRow("%s, to nowhere", name) << request << "http://";
    }
}

void TestRedirects::refused()
{
    QFETCH(Request, request);
    QFETCH(QString, location);
    scene.server.setAnswer(Scene::path(request), redirect("302 Found", location));
    scene.ask(request);
    const qsizetype count = scene.networkError(request).size();
    QTRY_VERIFY(scene.rests(count));
    QCOMPARE(scene.journal->events, scene.networkError(request));
    QVERIFY2(scene.server.requests().size() <= 60, "a circle is left");
}

void TestRedirects::toTlsWithAnyCertificate()
{
#ifdef Q_OS_WIN
    QSKIP("no certificate can be made there: openssl is a program of this system");
#endif
    const auto tls = selfSigned();
    QVERIFY2(tls.has_value(), "needs the package openssl");
    RawServer secure(tls);
    secure.setAnswer("/versions.txt", ok(upToDate));
    scene.server.setAnswer(cataloguePath, redirect("302 Found", secure.address("/versions.txt")));
    scene.checker->checkUpdate();
    QTRY_COMPARE(scene.journal->events, QStringList{told::signal("youHaveLastVersion")});
    QCOMPARE(secure.paths(), QStringList{"/versions.txt"});
}

void TestRedirects::neverFromTlsToPlain()
{
#ifdef Q_OS_WIN
    QSKIP("no certificate can be made there: openssl is a program of this system");
#endif
    const auto tls = selfSigned();
    QVERIFY2(tls.has_value(), "needs the package openssl");
    RawServer secure(tls);
    secure.setAnswer("/versions.txt", redirect("302 Found", scene.server.address("/new/versions.txt")));
    scene.server.setAnswer(cataloguePath, redirect("302 Found", secure.address("/versions.txt")));
    scene.checker->checkUpdate();
    QTRY_VERIFY(scene.rests(2));
    QCOMPARE(scene.journal->events, scene.networkError(Request::catalogue));
    QCOMPARE(secure.paths(), QStringList{"/versions.txt"});
    QCOMPARE(scene.server.paths(), QStringList{cataloguePath});
}

QTEST_GUILESS_MAIN(TestRedirects)
#include "tst_redirects.moc"
