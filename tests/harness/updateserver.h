#pragma once

#include "tests/harness/childprocess.h"
#include "tests/harness/outcome.h"
#include "tests/support/cataloguetext.h"

#include <QTemporaryDir>
#include <QVector>

/// The vendor's update server, on loopback: hands out what is published, whatever host name is asked for, and
/// keeps a log of the requests.
class UpdateServer
{
public:
    struct Request
    {
        QString line;      ///< "GET http://host/path HTTP/1.1"
        QString userAgent; ///< "-": none was sent
        int status;
    };

    Outcome start();

    /// The value for http_proxy that leads every plain HTTP request here.
    [[nodiscard]] QString proxy() const { return "http://127.0.0.1:" + QString::number(port); }

    /// The directory of what is published.
    [[nodiscard]] QString root() const { return base.filePath("root"); }

    /// Makes these bytes the answer for a path ("/bin/HB4.sb").
    Outcome publish(const QString& path, const QByteArray& bytes);
    void withdraw(const QString& path) { QFile::remove(base.filePath("root") + path); }

    /// All requests answered until now, in order.
    [[nodiscard]] QVector<Request> requests() const;
    void forgetRequests();

private:
    Outcome startOn(quint16 candidate);

    QTemporaryDir base;
    quint16 port = 0;
    ChildProcess process;
};

/// A catalogue that offers this image (HTTP address) for the models of one key stem. The other keys are those
/// of an updater that is current.
[[nodiscard]] QByteArray catalogueOf(const QString& stem, const QString& version, const QString& imageAddress,
                                     const QString& changeLogAddress);

/// Publishes a catalogue with one firmware, its change log and its image.
Outcome publishFirmware(UpdateServer& server, const QString& stem, const QString& version,
                        const QByteArray& image, const QByteArray& changeLog);

/// The host it asks, and the header it sends.
inline constexpr const char* updateHost = TALVEX_UPDATE_HOST;
inline constexpr const char* expectedUserAgent = "MyOwnBrowser 1.0";
