#include "tests/reliability/travellers.h"

#include "tests/harness/processtime.h"
#include "tests/reliability/journeyfiles.h"
#include "tests/support/filecontent.h"
#include "tests/support/texts.h"

#include <QCoreApplication>
#include <QDir>

#include <unistd.h>

namespace {

constexpr std::size_t sideBySide = 10;
/// The last phases of the two roads: by then all has been made that could leak, and looking for leaks takes
/// more of the processor than the rest of a journey.
const QStringList leakPhases{"installation", "log parts"};

constexpr auto ending = "ending\n"; ///< said when the event loop ends

} // namespace

Traveller::Traveller(const QString& program, const QStringList& arguments)
    : directory(QCoreApplication::applicationDirPath() + "/journey-XXXXXX")
{
    // A link: the program keeps its files beside its executable.
    const QString own = directory.filePath("talvex-journey");
    if (!directory.isValid() || link(QFile::encodeName(program), QFile::encodeName(own)) != 0)
        qFatal("cannot make %s", qPrintable(own));
    if (!writeFile(directory.filePath(filename::image), oldImage))
        qFatal("cannot write the image in %s", qPrintable(directory.path()));

    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("QT_QPA_PLATFORM", "offscreen");
    environment.insert("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent");
    if (!leakPhases.contains(arguments.last()))
        environment.insert("ASAN_OPTIONS", "detect_leaks=0");
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(directory.path());
    QObject::connect(&process, &QProcess::readyReadStandardOutput, &process, [this] { take(); });
    QObject::connect(&process, &QProcess::readyReadStandardError, &process,
                     [this] { errors += process.readAllStandardError(); });
    QObject::connect(&process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished), &process, [this] {
        take();
        endWatch.stop();
    });
    QObject::connect(&endWatch, &QTimer::timeout, &process, [this] { watchTheEnd(); });
    process.start(own, arguments);
}

Traveller::~Traveller()
{
    process.kill();
    process.waitForFinished();
    QFile::setPermissions(directory.path(), QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
}

void Traveller::take()
{
    output += process.readAllStandardOutput();
    if (!endWatch.isActive() && output.contains(ending))
        endWatch.start(tickMs);
}

/// Ticks count in which the process neither ran nor wanted to: it waited for something of its own choice.
void Traveller::watchTheEnd()
{
    const std::chrono::milliseconds computed = processorTime(process.processId());
    if (computed.count() == 0) // it has ended
        return;
    computedBefore = computedBefore.value_or(computed);
    computedMs = (computed - *computedBefore).count();
    restingTicks += isAsleep(process.processId()) ? 1 : 0;
}

QStringList Traveller::said(const QString& word) const
{
    QStringList all;
    const QStringList lines = QString::fromUtf8(output).split('\n');
    for (const QString& line : lines)
        if (line == word || line.startsWith(word + ' '))
            all += line.mid(word.size() + 1);
    return all;
}

QByteArray Traveller::file(const QString& pattern) const
{
    const QDir all(directory.path());
    const QStringList names = all.entryList({pattern}, QDir::Files);
    return names.isEmpty() ? QByteArray() : contentOf(all.filePath(names.first()));
}

std::unique_ptr<Traveller> Travellers::take(std::size_t number)
{
    for (; started < plans.size() && started < number + sideBySide; ++started)
        if (started >= number)
            underWay[started] = std::make_unique<Traveller>(program, plans[started]);
    return std::move(underWay.extract(number).mapped());
}
