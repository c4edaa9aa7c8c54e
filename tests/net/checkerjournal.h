#pragma once

#include "tests/support/logcapture.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVector>

class UpdateChecker;

/// Records everything an update checker reports: signals and diagnostics, in order.
class CheckerJournal
{
public:
    explicit CheckerJournal(UpdateChecker& checker);
    Q_DISABLE_COPY_MOVE(CheckerJournal)

    QStringList events;    ///< without downloadProgress, whose timing depends on the network
    QStringList all;       ///< including downloadProgress
    QVector<int> progress; ///< per cent

private:
    void add(const QString& event);
    void followOutcomes(UpdateChecker& checker);
    void followFiles(UpdateChecker& checker);

    LogCapture log;
    QObject context; ///< owns the connections; last, so that it is destroyed first
};

/// How the journal words each event.
namespace told {

[[nodiscard]] QString log(const QString& line);
/// A signal with its text parameters; a null string is written as "null", unlike an empty one.
[[nodiscard]] QString signal(const QString& name, const QStringList& parameters = {});
[[nodiscard]] QString problem(); ///< the only network problem
[[nodiscard]] QString savingProblem();
[[nodiscard]] QStringList upToDate();
[[nodiscard]] QStringList offer(const QString& changeLog = "better");          ///< of firmware 27
[[nodiscard]] QStringList updaterOffer(const QString& changeLog = "new look"); ///< of the next updater
[[nodiscard]] QStringList imageStored();
[[nodiscard]] QStringList exitSlot();      ///< a silent server, or a catalogue that is too large
[[nodiscard]] QStringList downloadError(); ///< of a bad address, or of a size that is too large
[[nodiscard]] QStringList incomplete();    ///< of a catalogue without a value that is needed

} // namespace told
