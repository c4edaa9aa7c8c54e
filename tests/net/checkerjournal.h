#pragma once

#include "tests/support/logcapture.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

class UpdateChecker;

/// Everything an update checker says, signals and diagnostics in one order.
class CheckerJournal
{
public:
    explicit CheckerJournal(UpdateChecker& checker);
    Q_DISABLE_COPY_MOVE(CheckerJournal)

    QStringList events;    ///< without downloadProgress, which comes as the network pleases
    QStringList all;       ///< with it
    QVector<int> progress; ///< per cent

private:
    void add(const QString& event);
    void followOutcomes(UpdateChecker& checker);
    void followFiles(UpdateChecker& checker);

    LogCapture log;
    QObject context; ///< ends the connections; last, so that it goes first
};

/// The journal's wording of each event.
namespace told {

[[nodiscard]] QString log(const QString& line);
/// A signal with its text parameters; "null" stands for a null string, which an empty one is not.
[[nodiscard]] QString signal(const QString& name, const QStringList& parameters = {});
[[nodiscard]] QString problem(); ///< the one problem of the network
[[nodiscard]] QString savingProblem();

} // namespace told
