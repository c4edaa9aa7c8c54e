#pragma once

#include "vendor/fetched.h"

#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QObject>
#include <QVector>

#include <functional>
#include <memory>
#include <vector>

/// Requests files as the program would, with the same header, redirects and limits; at most 4 at once.
class Fetcher : public QObject
{
public:
    /// Requests ended, all requests, bytes received.
    using Progress = std::function<void(int ended, int all, qint64 bytes)>;

    explicit Fetcher(int silenceLimitMs, Progress told = {});
    ~Fetcher() override;

    /// Returns all results in the same order; runs an event loop meanwhile. Call once.
    [[nodiscard]] QVector<Fetched> fetch(const QVector<Wanted>& wanted);

    /// Like fetch() for one file, whose bytes are appended to `body`.
    [[nodiscard]] Fetched fetchBody(const Wanted& wanted, QByteArray& body);

    /// Makes fetch() return soon; requests that have not ended fail.
    void stop();
    [[nodiscard]] bool isStopped() const { return stopped; }

private:
    class Download;

    void startNext();
    void finish();
    void tell() const;

    QNetworkAccessManager manager;
    int silenceLimit; ///< ms
    Progress progress;
    QVector<Fetched> results;                         ///< one for each wanted file
    std::vector<std::unique_ptr<Download>> downloads; ///< started so far, in the order of results
    QByteArray* keptBody = nullptr;
    int ended = 0;
    qint64 bytes = 0;
    bool stopped = false;
    QEventLoop loop; ///< of fetch()
};
