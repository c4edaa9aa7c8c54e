#pragma once

#include <QElapsedTimer>
#include <QProcess>
#include <QStringList>
#include <QTemporaryDir>

#include <map>
#include <memory>
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

    /// From the first word of the program's end to the process's, in ms.
    [[nodiscard]] qint64 endingMs() const { return endedAt - endingSince; }

    [[nodiscard]] QString path() const { return directory.path(); }

    /// What a file in its directory holds; null if there is none. A pattern finds the first that fits.
    [[nodiscard]] QByteArray file(const QString& pattern) const;

private:
    void take();

    QTemporaryDir directory;
    QProcess process;
    QElapsedTimer clock;
    QByteArray output;
    QByteArray errors;
    qint64 endingSince = 0;
    qint64 endedAt = 0;
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
