#include "base/sizelimit.h"
#include "vendor/commands.h"
#include "vendor/fetcher.h"
#include "vendor/files.h"
#include "vendor/report.h"
#include "vendor/terminal.h"

#include <QTimer>

#include <optional>

namespace commands {

namespace {

constexpr int interrupted = 130; ///< as a shell counts SIGINT

/// As long as it lives, Ctrl+C stops the fetcher.
class Interruption
{
public:
    explicit Interruption(Fetcher& fetcher)
    {
        terminal::noteInterrupts();
        constexpr int intervalMs = 50; // a signal handler may do next to nothing itself
        QObject::connect(&timer, &QTimer::timeout, &fetcher, [&fetcher] {
            if (terminal::isInterrupted())
                fetcher.stop();
        });
        timer.start(intervalMs);
    }

private:
    QTimer timer;
};

std::optional<QByteArray> readUrl(const QString& url, int timeoutMs)
{
    Fetcher fetcher(timeoutMs);
    const Interruption interruption(fetcher);
    QByteArray body;
    const Fetched answer = fetcher.fetchBody({{}, url, false}, body);
    if (!answer.certificateFault.isEmpty())
        terminal::complain(url + ": note: certificate not valid: " + answer.certificateFault);
    if (answer.isAnswer || body.size() > sizeLimit) // the report tells what the updater makes of too much
        return body;
    terminal::complain(url + ": " +
                       (answer.failure.isEmpty() ? QString("status %1").arg(answer.status) : answer.failure));
    return std::nullopt;
}

std::optional<QByteArray> read(const QString& source, int timeoutMs)
{
    return source.contains("://") ? readUrl(source, timeoutMs) : readFile(source);
}

void showProgress(int ended, int all, qint64 bytes)
{
    constexpr double megabyte = 1e6;
    terminal::showProgress(
        QString("%1 of %2, %3 MB").arg(ended).arg(all).arg(static_cast<double>(bytes) / megabyte, 0, 'f', 1));
}

/// False: Ctrl+C ended it.
bool fetchAll(Report& report, const catalogue::Entries& entries, int timeoutMs)
{
    const bool shows = terminal::isErrors();
    Fetcher fetcher(timeoutMs, shows ? showProgress : Fetcher::Progress());
    const Interruption interruption(fetcher);
    addFetched(report, fetcher.fetch(wantedBy(entries)), entries);
    if (shows)
        terminal::showProgress({});
    return !fetcher.isStopped();
}

} // namespace

int check(const options::Check& wanted)
{
    const auto served = read(wanted.source, wanted.timeoutMs);
    Genuineness genuineness;
    if (served && wanted.key && served->size() <= sizeLimit)
        genuineness = judged(*wanted.key, *served, read(wanted.source + ".minisig", wanted.timeoutMs));
    if (terminal::isInterrupted())
        return interrupted;
    if (!served)
        return options::faulty;
    Report report = reportOn(wanted.source, *served, wanted.viewers, genuineness);
    if (wanted.fetch && !fetchAll(report, entriesOf(*served), wanted.timeoutMs)) {
        terminal::complain("interrupted");
        return interrupted;
    }
    const QByteArray text = wanted.json ? asJson(report) : asText(report, terminal::isOutput());
    if (!terminal::print(text))
        return options::faulty;
    return countOf(report.findings, Severity::error) == 0 ? options::good : options::faulty;
}

} // namespace commands
