#include "base/sizelimit.h"
#include "tests/support/rows.h"
#include "tests/support/texts.h"
#include "tests/vendor/goodcatalogue.h"
#include "vendor/sight.h"

#include <QtTest>

Q_DECLARE_METATYPE(Genuineness)

namespace {

constexpr qint64 someSize = 1000;

QString quoted(const char* text)
{
    return QString("\"%1\"").arg(text);
}

} // namespace

class TestSight : public QObject
{
    Q_OBJECT

private slots:
    void sees_data();
    void sees();
    void seesWithAKey_data();
    void seesWithAKey();
    void seesALargeCatalogue_data();
    void seesALargeCatalogue();
};

void TestSight::sees_data()
{
    const Rows<QByteArray, QByteArray, int, QString, QString> row("from", "to", "version", "kind", "text");
    const char* const any = "[HB4]";
    const QByteArray nextUpdater = QByteArray("MainVer=") + updater::next;
    row("newer", any, any, 23, "firmware",
        "an offer of firmware 2.7, from http://updates.example.com/bin/HB4.sb");
    row("same", any, any, 27, "up-to-date", quoted(text::upToDate));
    row("older", any, any, 28, "up-to-date", quoted(text::upToDate));
    row("https image", "HB4Bin=http", "HB4Bin=https", 23, "firmware",
        "an offer of firmware 2.7, from http://updates.example.com/bin/HB4.sb");
    row("fraction", "HB4Ver=27", "HB4Ver=27.5", 27, "firmware",
        "an offer of firmware 0.0, from http://updates.example.com/bin/HB4.sb");
    row("missing value", "HB4Ver=27", "", 23, "problem",
        quoted(text::networkProblem) + ": a value is missing");
    row("another model's missing value", "HB2Ver=27", "", 27, "up-to-date", quoted(text::upToDate));
    row("change log that cannot be asked for", "HB4ChangeLog=http://", "HB4ChangeLog=", 23, "problem",
        quoted(text::networkProblem) + ": the address of the change log cannot be split");
    row("and need not be", "HB4ChangeLog=http://", "HB4ChangeLog=", 27, "up-to-date", quoted(text::upToDate));
    row("image that cannot be asked for", "HB4Bin=http://", "HB4Bin=", 23, "firmware",
        "an offer of firmware 2.7, then a problem when it is accepted: the address of the image cannot be split");
    row("newer updater", "MainVer=11", nextUpdater, 27, "updater",
        QString("an offer of updater 0.%1 (this one is 0.%2), which the browser downloads from "
                "https://updates.example.com/updater.zip")
            .arg(updater::next, updater::own));
    row("newer updater without a change log", "MainVer=11\nMainChangeLog", nextUpdater + "\nX", 23, "problem",
        quoted(text::networkProblem) + ": the address of the updater's change log cannot be split");
}

void TestSight::sees()
{
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    QFETCH(int, version);
    const Sight sight = sightOf(catalogue::parse(catalogueWith(from, to)), someSize, "HB4", version);
    QTEST(QString(sight.kind), "kind");
    QTEST(sight.text, "text");
}

void TestSight::seesWithAKey_data()
{
    const Rows<Genuineness, QByteArray, QString, QString> row("genuineness", "digest", "kind", "text");
    const Genuineness good{true, true, nullptr};
    row("good", good, someDigest, "up-to-date", quoted(text::upToDate));
    row("no digest", good, "", "problem", quoted(text::networkProblem) + ": a value or a digest is missing");
    row("malformed digest", good, "12", "problem",
        quoted(text::networkProblem) + ": a value or a digest is missing");
    row("no signature", {true, false, nullptr}, someDigest, "problem",
        quoted(text::networkProblem) + ": there is no signature");
    row("bad signature", {true, true, "why"}, someDigest, "problem", quoted(text::notGenuine));
}

void TestSight::seesWithAKey()
{
    QFETCH(Genuineness, genuineness);
    QFETCH(QByteArray, digest);
    const auto entries = catalogue::parse(catalogueWith("HB4Ver=27", "HB4Ver=27\nHB4Sha256=" + digest));
    const Sight sight = sightOf(entries, someSize, "HB4", 27, genuineness);
    QTEST(QString(sight.kind), "kind");
    QTEST(sight.text, "text");
}

void TestSight::seesALargeCatalogue_data()
{
    const Rows<qint64, Genuineness, QString> row("size", "genuineness", "text");
    const QString upToDate = quoted(text::upToDate);
    const QString tooLarge = quoted(text::networkProblem) + ": the catalogue is too large";
    row("as large as may be", 10245, {}, upToDate);
    row("one byte more", 10246, {}, tooLarge);
    row("given up", sizeLimit + 1, {}, tooLarge);
    row("good signature", 10246, {true, true, nullptr}, tooLarge);
    row("no signature", 10246, {true, false, nullptr},
        quoted(text::networkProblem) + ": there is no signature");
    row("bad signature", 10246, {true, true, "why"}, quoted(text::notGenuine));
}

void TestSight::seesALargeCatalogue()
{
    QFETCH(qint64, size);
    QFETCH(Genuineness, genuineness);
    const auto entries = catalogue::parse(catalogueWithDigests(someDigest));
    QTEST(sightOf(entries, size, "HB4", 27, genuineness).text, "text");
}

QTEST_GUILESS_MAIN(TestSight)
#include "tst_sight.moc"
