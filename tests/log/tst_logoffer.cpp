#include "log/logoffer.h"
#include "tests/support/rows.h"

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
        const Rows<Situation, bool> row("now", "isAllowed");
        row("a single unit", {.unitIsOpen = true}, true);
        row("no unit", {}, false);
        row("a pair of decks", {.unitIsOpen = true, .isPair = true}, false);
        row("an update has begun", {.unitIsOpen = true, .updateHasBegun = true}, false);
        row("a log has begun", {.unitIsOpen = true, .logHasBegun = true}, false);
        row("the server may still answer", {.unitIsOpen = true, .answerIsAwaited = true}, false);
    }
    void situation()
    {
        QFETCH(Situation, now);
        QTEST(logoffer::isAllowed(now), "isAllowed");
    }
};

QTEST_APPLESS_MAIN(TestLogOffer)
#include "tst_logoffer.moc"
