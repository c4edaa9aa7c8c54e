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

/// One journey, in its own process and directory.
class Traveller
{
public:
    Traveller(const QString& program, const QStringList& arguments);
    ~Traveller();
    Q_DISABLE_COPY_MOVE(Traveller)

    [[nodiscard]] bool hasEnded() const { return process.state() == QProcess::NotRunning; }
    [[nodiscard]] bool crashed() const { return process.exitStatus() == QProcess::CrashExit; }
    [[nodiscard]] int exitCode() const { return process.exitCode(); }

    /// The output lines that begin with this word, with the word removed.
    [[nodiscard]] QStringList said(const QString& word) const;
    [[nodiscard]] QString errorOutput() const { return QString::fromLocal8Bit(errors); }

    /// How long the program took from the first report of its end until the process ended, in ms: computing
    /// and waiting, but not time lost to a busy machine.
    [[nodiscard]] qint64 endingMs() const { return computedMs + restingTicks * tickMs; }

    [[nodiscard]] QString path() const { return directory.path(); }

    /// The content of a file in its directory; null if there is none. A pattern selects the first match.
    [[nodiscard]] QByteArray file(const QString& pattern) const;

private:
    static constexpr int tickMs = 10;

    void take();
    void watchTheEnd();

    QTemporaryDir directory;
    QProcess process;
    QTimer endWatch; ///< runs from the first report of the end
    QByteArray output;
    QByteArray errors;
    std::optional<std::chrono::milliseconds> computedBefore; ///< before the end
    qint64 computedMs = 0;
    qint64 restingTicks = 0;
};

/// Runs a few journeys in parallel, as they spend most of their time waiting.
class Travellers
{
public:
    explicit Travellers(QString journeyProgram) : program(std::move(journeyProgram)) {}

    void plan(const QStringList& arguments) { plans.push_back(arguments); }

    /// Starts the planned journeys up to this one and a few more. Take each journey once; the caller waits
    /// for its end.
    [[nodiscard]] std::unique_ptr<Traveller> take(std::size_t number);

private:
    QString program;
    std::vector<QStringList> plans;
    std::size_t started = 0;
    std::map<std::size_t, std::unique_ptr<Traveller>> underWay;
};
