#pragma once

#include <QString>

/// What a step came to: nothing to report, or what went wrong and what stood on the screen then.
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

/// In a test: the step must succeed.
#define MUST(step)                                                                                           \
    do {                                                                                                     \
        const Outcome outcome_ = (step);                                                                     \
        QVERIFY2(outcome_.good(), qPrintable(outcome_.problem()));                                           \
    } while (false)

/// In a function that returns an Outcome: the first step that fails is its result.
#define STEP(step)                                                                                           \
    do {                                                                                                     \
        Outcome outcome_ = (step);                                                                           \
        if (!outcome_.good())                                                                                \
            return outcome_;                                                                                 \
    } while (false)
