#include "tests/harness/owntime.h"

#include "tests/harness/processtime.h"
#include "tests/harness/waiting.h"

#include <algorithm>

OwnTime::OwnTime(qint64 watched, const Desktop& shownOn)
    : process(watched), desktop(shownOn), before(see()), began(before.at)
{
}

void OwnTime::look()
{
    // If much more time has passed, the test itself had no processor, and the process hardly had one either.
    const Span most = 25 * pauseBetweenLooks();
    const Sight now = see();
    const Span queued = std::max(now.queued - before.queued, Span(0)); // what has ended is not counted
    const Span rested = std::min<Span>(now.at - before.at, most) - queued;
    const Span worked = now.worked - before.worked;
    own += std::max(now.resting && before.resting ? rested : worked, Span(0));
    before = now;
}

OwnTime::Sight OwnTime::see() const
{
    Sight now{std::chrono::steady_clock::now(), isAsleep(process), timeInQueue(process),
              processorTime(process)};
    const QVector<qint64> servers = desktop.processes();
    for (const qint64 server : servers) {
        now.resting = now.resting && isAsleep(server);
        now.queued += timeInQueue(server);
    }
    return now;
}
