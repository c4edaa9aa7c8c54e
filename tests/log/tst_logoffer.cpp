#include "log/logoffer.h"

#include <QtTest>

using logoffer::Situation;
Q_DECLARE_METATYPE(Situation)

/// When the key for the unit's log does something.
class TestLogOffer : public QObject
{
    Q_OBJECT

private slots:
    void situation_data()
    {
        QTest::addColumn<Situation>("now");
        QTest::addColumn<bool>("isAllowed");
        QTest::newRow("a single unit") << Situation{.unitIsOpen = true} << true;
        QTest::newRow("no unit") << Situation{} << false;
        QTest::newRow("a pair of decks") << Situation{.unitIsOpen = true, .isPair = true} << false;
        QTest::newRow("an update has begun")
            << Situation{.unitIsOpen = true, .updateHasBegun = true} << false;
        QTest::newRow("a log has begun") << Situation{.unitIsOpen = true, .logHasBegun = true} << false;
        QTest::newRow("the server may still answer")
            << Situation{.unitIsOpen = true, .answerIsAwaited = true} << false;
    }
    void situation()
    {
        QFETCH(Situation, now);
        QFETCH(bool, isAllowed);
        QCOMPARE(logoffer::isAllowed(now), isAllowed);
    }
};

QTEST_APPLESS_MAIN(TestLogOffer)
#include "tst_logoffer.moc"
