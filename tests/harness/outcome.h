#pragma once

#include <QString>

/// The result of a step: success, or what went wrong and what was on the screen at the time.
class [[nodiscard]] Outcome
{
public:
    Outcome() = default;
    explicit Outcome(QString what) : text(std::move(what)) {}

    [[nodiscard]] bool good() const { return text.isEmpty(); }
    [[nodiscard]] const QString& problem() const { return text; }

private:
    QString text;
};

/// For tests: fails the test unless the step succeeds.
#define MUST(step)                                                                                           \
    do {                                                                                                     \
        const Outcome outcome_ = (step);                                                                     \
        QVERIFY2(outcome_.good(), qPrintable(outcome_.problem()));                                           \
    } while (false)

/// For functions that return an Outcome: returns the step's outcome if it failed.
#define STEP(step)                                                                                           \
    do {                                                                                                     \
        Outcome outcome_ = (step);                                                                           \
        if (!outcome_.good())                                                                                \
            return outcome_;                                                                                 \
    } while (false)
