#include "tests/support/easternlocales.h"
#include "tests/support/testwindow.h"

#include <QLocale>
#include <QtTest>

/// What a user reads is in the digits 0 to 9 in every language.
class TestDigits : public QObject
{
    Q_OBJECT

private slots:
    void barsShow_data();
    void barsShow();
};

void TestDigits::barsShow_data()
{
    QTest::addColumn<QByteArray>("locale");
    QTest::addColumn<QByteArray>("bar");
    for (const QByteArray& locale : easternLocales())
        for (const char* bar : {"progressBarTransfer", "progressBarUpdate"})
            QTest::addRow("%s, %s", bar, locale.constData()) << locale << QByteArray(bar);
}

void TestDigits::barsShow()
{
    QFETCH(QByteArray, locale);
    QFETCH(QByteArray, bar);
    const QLocale before;
    QLocale::setDefault(QLocale(QString::fromLatin1(locale)));
    QStringList shown;
    {
        TestWindow window;
        for (const int value : {0, 42, 100}) {
            window.bar(bar).setValue(value);
            shown += window.bar(bar).text();
        }
    }
    QLocale::setDefault(before);
    QCOMPARE(shown, (QStringList{"0%", "42%", "100%"}));
}

QTEST_MAIN(TestDigits)
#include "tst_digits.moc"
