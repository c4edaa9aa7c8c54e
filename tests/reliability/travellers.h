#pragma once

#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>
#include <QTimer>

#include <chrono>
#include <map>
#include <memory>
#include <optional>
#include <vector>

/// One journey, in a process and a directory of its own.
class Traveller
{
public:
    Traveller(const QString& program, const QStringList& arguments);
    ~Traveller();
    Q_DISABLE_COPY_MOVE(Traveller)

    [[nodiscard]] bool hasEnded() const { return process.state() == QProcess::NotRunning; }
    [[nodiscard]] bool crashed() const { return process.exitStatus() == QProcess::CrashExit; }
    [[nodiscard]] int exitCode() const { return process.exitCode(); }

    /// The lines that begin with this word, without it.
    [[nodiscard]] QStringList said(const QString& word) const;
    [[nodiscard]] QString errorOutput() const { return QString::fromLocal8Bit(errors); }

    /// How long the program took from the first word of its end to the process's, in ms: what it computed and
    /// what it waited, but not what it was kept waiting for by a busy machine.
    [[nodiscard]] qint64 endingMs() const { return computedMs + restingTicks * tickMs; }

    [[nodiscard]] QString path() const { return directory.path(); }

    /// What a file in its directory holds; null if there is none. A pattern finds the first that fits.
    [[nodiscard]] QByteArray file(const QString& pattern) const;

private:
    static constexpr int tickMs = 10;

    void take();
    void watchTheEnd();

    QTemporaryDir directory;
    QProcess process;
    QTimer endWatch; ///< runs from the first word of the end
    QByteArray output;
    QByteArray errors;
    std::optional<std::chrono::milliseconds> computedBefore; ///< the end
    qint64 computedMs = 0;
    qint64 restingTicks = 0;
};

/// Journeys under way side by side: a few, as most of their time is waiting.
class Travellers
{
public:
    explicit Travellers(QString journeyProgram) : program(std::move(journeyProgram)) {}

    void plan(const QStringList& arguments) { plans.push_back(arguments); }

    /// Starts the planned journeys up to this one and some more. Each is asked for once; the caller awaits
    /// its end.
    [[nodiscard]] std::unique_ptr<Traveller> take(std::size_t number);

private:
    QString program;
    std::vector<QStringList> plans;
    std::size_t started = 0;
    std::map<std::size_t, std::unique_ptr<Traveller>> underWay;
};
