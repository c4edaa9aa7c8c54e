#include "base/timestamp.h"

#include "tests/support/easternlocales.h"

#include <QCoreApplication>
#include <QProcess>
#include <QtTest>

#include <cstdio>

namespace {

const QDateTime moment(QDate(2016, 3, 1), QTime(14, 5, 9));
const char* const speak = "--speak";

QByteArray inAllForms()
{
    return timestamp::forFileName(moment).toUtf8() + ' ' + timestamp::forLine(moment).toUtf8();
}

} // namespace

class TestTimestamp : public QObject
{
    Q_OBJECT

private slots:
    void fields();
    void digits_data() { addEasternLocales(); }
    void digits();
};

void TestTimestamp::fields()
{
    QCOMPARE(timestamp::forFileName(moment), QString("2016-03-01_14_05_09"));
    QCOMPARE(timestamp::forLine(moment), QString("2016-03-01_14:05:09"));
}

/// As the system's locale, which a process takes over when it starts, and as Qt's default.
void TestTimestamp::digits()
{
    QFETCH(QByteArray, locale);
    const QByteArray expected = "2016-03-01_14_05_09 2016-03-01_14:05:09"; // as in any other
#ifndef Q_OS_WIN // where it is a setting of the user's
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("LC_ALL", locale);
    QProcess process;
    process.setProcessEnvironment(environment);
    process.start(QCoreApplication::applicationFilePath(), {speak});
    QVERIFY(process.waitForFinished(-1));
    const QList<QByteArray> said = process.readAllStandardOutput().split('\n');
    QCOMPARE(said.size(), 3);
    const QString year = QString::fromUtf8(said[0]);
    QVERIFY2(year != "2016", "the locale is not in force: this row would see nothing");
    QCOMPARE(said[1], expected);
#endif

    const QLocale before;
    QLocale::setDefault(QLocale(QString::fromLatin1(locale)));
    const QByteArray byDefault = inAllForms();
    QLocale::setDefault(before);
    QCOMPARE(byDefault, expected);
}

int main(int argc, char** argv)
{
    const QCoreApplication application(argc, argv);
    if (QCoreApplication::arguments().value(1) == speak) {
        std::printf("%s\n%s\n", moment.toString("yyyy").toUtf8().constData(), inAllForms().constData());
        return 0;
    }
    TestTimestamp test;
    return QTest::qExec(&test, argc, argv);
}
#include "tst_timestamp.moc"
