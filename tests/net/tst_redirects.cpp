#include "tests/net/scene.h"
#include "tests/support/imagefiles.h"
#include "tests/support/rows.h"
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
    void throughTls_data();
    void throughTls();

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
    QTRY_COMPARE(scene.journal->events, told::upToDate());
    QCOMPARE(scene.server.paths(), (QStringList{cataloguePath, "/second", "/new/versions.txt"}));
}

/// No byte of the redirects' own pages gets into the image.
void TestRedirects::imageIsTheLastAnswersBody()
{
    const QByteArray image(100000, 'i');
    scene.server.setAnswer(imagePath, redirect("302 Found", "/mirror/HB4.sb"));
    scene.server.setAnswer("/mirror/HB4.sb", inTwoSteps(httpAnswer("200 OK", image), 5000));
    scene.ask(Request::image);
    QTRY_VERIFY(scene.received() > 0);
    scene.server.goOn();
    QTRY_COMPARE(scene.journal->events, told::imageStored());
    QCOMPARE(ImageFiles::at(programImage()).image, image);
    QVERIFY(ImageFiles{}.placeAt(programImage()));
}

void TestRedirects::everyRequestKeepsItsHeader()
{
    scene.server.setAnswer(cataloguePath, redirect("302 Found", "/new/versions.txt"));
    scene.checker->checkUpdate();
    QTRY_COMPARE(scene.journal->events, told::upToDate());
    QCOMPARE(scene.server.requests().size(), 2);
    for (const QByteArray& head : scene.server.requests())
        QVERIFY(head.contains("\r\nUser-Agent: MyOwnBrowser 1.0\r\n"));
}

void TestRedirects::refused_data()
{
    const Rows<Request, QString> row("request", "location");
    for (const Request request : everyRequest) {
        row(nameOf(request) + ", in a circle", request, Scene::path(request));
        row(nameOf(request) + ", to a missing page", request, "/missing");
        row(nameOf(request) + ", to a file of the disk", request, "file:///etc/hostname");
        row(nameOf(request) + ", to another protocol", request, "ftp://127.0.0.1/x");
        row(nameOf(request) + ", to nowhere", request, "http://");
    }
}

void TestRedirects::refused()
{
    QFETCH(Request, request);
    QFETCH(QString, location);
    scene.server.setAnswer(Scene::path(request), redirect("302 Found", location));
    scene.ask(request);
    QTRY_VERIFY(scene.rests(scene.networkError(request).size()));
    QCOMPARE(scene.journal->events, scene.networkError(request));
    QVERIFY2(scene.server.requests().size() <= 60, "a circle is left");
}

void TestRedirects::throughTls_data()
{
    QTest::addColumn<bool>("isLedBack");
    QTest::newRow("to TLS, with any certificate") << false;
    QTest::newRow("never from TLS to plain") << true;
}

void TestRedirects::throughTls()
{
#ifdef Q_OS_WIN
    QSKIP("no certificate can be made there: openssl is a program of this system");
#endif
    QFETCH(bool, isLedBack);
    const auto tls = selfSigned();
    QVERIFY2(tls.has_value(), "needs the package openssl");
    RawServer secure(tls);
    const QString plain = scene.server.address("/new/versions.txt");
    secure.setAnswer("/versions.txt", isLedBack ? redirect("302 Found", plain) : ok(upToDate));
    scene.server.setAnswer(cataloguePath, redirect("302 Found", secure.address("/versions.txt")));
    scene.checker->checkUpdate();
    QTRY_VERIFY(scene.rests(isLedBack ? 2 : 1));
    QCOMPARE(scene.journal->events, isLedBack ? scene.networkError(Request::catalogue) : told::upToDate());
    QCOMPARE(secure.paths(), QStringList{"/versions.txt"});
    QCOMPARE(scene.server.paths(), QStringList{cataloguePath});
}

QTEST_GUILESS_MAIN(TestRedirects)
#include "tst_redirects.moc"
