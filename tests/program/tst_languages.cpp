// The shipped program where the user's language writes numbers with other digits than 0 to 9.

#include "tests/program/programtest.h"
#include "tests/program/scenario.h"
#include "tests/support/easternlocales.h"

#include <QtTest>

class tst_languages : public ServedProgramTest
{
    Q_OBJECT

private slots:
    void digits_data();
    void digits();
};

void tst_languages::digits_data()
{
    QTest::addColumn<QString>("locale");
    for (const QByteArray& locale : easternLocales())
        QTest::newRow(locale) << QString(locale);
}

void tst_languages::digits()
{
    QFETCH(QString, locale);
    MUST(scenario::publish(server, "image"));
    Program program(desktop);
    program.setVariable("LC_ALL", locale);
    MUST(scenario::startWithUnit(program, server.proxy()));
    const QStringList logs = QDir(program.ownPath(".")).entryList({"*.enc"}, QDir::Files);
    QCOMPARE(logs.size(), 1);
    const QRegularExpression name("^[0-9]{4}-[0-9]{2}-[0-9]{2}_[0-9]{2}_[0-9]{2}_[0-9]{2}_log\\.enc$");
    QVERIFY2(name.match(logs.first()).hasMatch(), qPrintable(logs.first()));
    MUST(program.waitForText("progressBarUpdate", "0%"));
    MUST(scenario::connectAndDownload(program)); // the offer's versions are among its texts
    MUST(program.waitForText("progressBarTransfer", "100%"));
    MUST(scenario::leave(program));
    QCOMPARE(program.errorOutput(), QString());
}

QTEST_GUILESS_MAIN(tst_languages)

#include "tst_languages.moc"
