#include "tests/random/shift.h"

#include "tests/random/judge.h"
#include "tests/support/limits.h"

#include <QMap>
#include <QTextStream>

#include <cstdio>
#include <filesystem>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace shift {

namespace {

struct Process
{
    pid_t id = -1;
    int output = -1; ///< what it writes to stdout, or as its report
};

QByteArray readAll(int file)
{
    QByteArray all;
    char buffer[4096];
    for (ssize_t size = 0; (size = read(file, buffer, sizeof buffer)) > 0;)
        all.append(buffer, static_cast<int>(size));
    close(file);
    return all;
}

void writeAll(int file, const QByteArray& bytes)
{
    for (int done = 0; done < bytes.size();) {
        const ssize_t size =
            write(file, bytes.constData() + done, static_cast<std::size_t>(bytes.size() - done));
        if (size <= 0)
            return;
        done += static_cast<int>(size);
    }
}

/// Forks; the child runs `child` with the pipe's end and is over then.
template<typename Child> Process start(Child child)
{
    int ends[2];
    if (pipe(ends) != 0)
        std::abort();
    std::fflush(nullptr);
    const pid_t id = fork();
    if (id < 0)
        std::abort();
    if (id == 0) {
        close(ends[0]);
        child(ends[1]);
        _exit(0);
    }
    close(ends[1]);
    return {id, ends[0]};
}

/// The run of this seed in a process of its own. Returns its report, or what killed it.
QString runApart(std::uint64_t seed, bool verbose)
{
    const Process run = start([seed, verbose](int report) {
        alarm(static_cast<unsigned>(limits::hangMs() / 1000)); // a run gives up by itself long before
        const Plan plan = drawPlan(seed);
        const Ending ending = runOnce(plan, verbose);
        const QStringList wrong = violations(plan, ending);
        if (verbose) {
            for (const QString& box : ending.boxes)
                fprintf(stderr, "  box: %s\n", qPrintable(QString(box).replace('\n', ' ')));
            for (const virtualbus::UnitView& unit : ending.units)
                for (const std::string& line : unit.journal)
                    fprintf(stderr, "  unit: %s\n", line.c_str());
        }
        writeAll(report, (wrong.isEmpty() ? outcomeOf(ending) : "FAILED " + wrong.join("; ")).toUtf8());
    });
    const QByteArray report = readAll(run.output);
    int status = 0;
    waitpid(run.id, &status, 0);
    if (WIFSIGNALED(status))
        return WTERMSIG(status) == SIGALRM ? "FAILED hangs"
                                           : QString("FAILED killed by signal %1").arg(WTERMSIG(status));
    if (WEXITSTATUS(status) != 0 || report.isEmpty())
        return QString("FAILED exit code %1").arg(WEXITSTATUS(status));
    return report;
}

/// A copy of the program in a directory of its own: the files of a run lie beside the executable.
std::filesystem::path ownProgram(const std::filesystem::path& program, int worker)
{
    const std::filesystem::path folder = program.parent_path() / ("worker-" + std::to_string(worker));
    std::filesystem::remove_all(folder);
    std::filesystem::create_directories(folder);
    std::error_code failed;
    std::filesystem::create_hard_link(program, folder / program.filename(), failed);
    if (failed)
        std::filesystem::copy_file(program, folder / program.filename());
    return folder / program.filename();
}

Process startWorker(const std::filesystem::path& program, const Seeds& seeds)
{
    return start([&](int output) {
        dup2(output, STDOUT_FILENO);
        setenv("LD_BIND_NOW", "1", 1); // symbols are looked up once, not once a run
        const std::string first = std::to_string(seeds.first);
        const std::string count = std::to_string(seeds.count);
        const std::string step = std::to_string(seeds.step);
        execl(program.c_str(), program.c_str(), "--from", first.c_str(), "--runs", count.c_str(),
              "--worker-step", step.c_str(), nullptr);
        _exit(127);
    });
}

/// What the runs must reach often enough for the whole to mean anything: runs in a thousand.
const QMap<QString, int> leastShares{
    {"finished", 120}, {"log complete", 60},   {"network problem", 60}, {"up to date", 30},
    {"not found", 20}, {"handed over", 10},    {"not saved", 10},       {"rejected", 5},
    {"timed out", 5},  {"packets skipped", 5}, {"wrong digest", 4},     {"request not written", 1},
};

int sumUp(const std::map<std::uint64_t, QString>& reports, const Seeds& seeds, const char* program)
{
    QTextStream out(stdout);
    QMap<QString, int> outcomes;
    int failures = 0;
    for (const auto& [seed, report] : reports) {
        if (!report.startsWith("FAILED")) {
            ++outcomes[report];
            continue;
        }
        ++failures;
        out << "seed " << seed << ": " << report << "\n  again: " << program << " --seed " << seed << '\n';
    }
    const auto total = static_cast<int>(reports.size());
    out << total << " runs, seeds " << seeds.first << " to " << seeds.first + seeds.count - 1 << ", "
        << failures << " failed\n";
    for (auto outcome = outcomes.begin(); outcome != outcomes.end(); ++outcome)
        out << "  " << outcome.value() << ' ' << outcome.key() << '\n';
    bool good = failures == 0 && reports.size() == seeds.count;
    for (auto share = leastShares.begin(); total >= 500 && share != leastShares.end(); ++share) {
        if (outcomes[share.key()] * 1000 >= share.value() * total)
            continue;
        out << "too few runs ended with '" << share.key() << "': fewer than " << share.value()
            << " in 1000\n";
        good = false;
    }
    return good ? 0 : 1;
}

} // namespace

int showRun(std::uint64_t seed)
{
    fprintf(stderr, "%s\n", qPrintable(drawPlan(seed).describe()));
    const QString report = runApart(seed, true);
    fprintf(stderr, "%s\n", qPrintable(report));
    return report.startsWith("FAILED") ? 1 : 0;
}

int direct(const char* program, const Seeds& seeds, int jobs)
{
    const std::filesystem::path self = std::filesystem::canonical("/proc/self/exe");
    std::vector<Process> workers;
    for (int worker = 0; worker < jobs; ++worker) {
        const auto offset = static_cast<std::uint64_t>(worker);
        const auto step = static_cast<std::uint64_t>(jobs);
        if (offset < seeds.count)
            workers.push_back(
                startWorker(ownProgram(self, worker),
                            {seeds.first + offset, (seeds.count - offset + step - 1) / step, step}));
    }
    std::map<std::uint64_t, QString> reports;
    for (const Process& worker : workers) {
        for (const QByteArray& line : readAll(worker.output).split('\n'))
            if (const auto blank = line.indexOf(' '); blank > 0)
                reports[line.left(blank).toULongLong()] = line.mid(blank + 1);
        waitpid(worker.id, nullptr, 0);
    }
    return sumUp(reports, seeds, program);
}

int work(const Seeds& seeds)
{
    for (std::uint64_t run = 0; run < seeds.count; ++run) {
        const std::uint64_t seed = seeds.first + run * seeds.step;
        std::printf("%llu %s\n", static_cast<unsigned long long>(seed), qPrintable(runApart(seed, false)));
        std::fflush(stdout);
    }
    return 0;
}

} // namespace shift
