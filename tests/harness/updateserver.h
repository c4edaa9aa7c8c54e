#pragma once

#include "tests/harness/childprocess.h"
#include "tests/harness/outcome.h"
#include "tests/support/cataloguetext.h"

#include <QTemporaryDir>
#include <QVector>

/// The vendor's update server, on loopback: serves what is published, whatever host name is requested, and
/// logs the requests.
class UpdateServer
{
public:
    struct Request
    {
        QString line;      ///< "GET http://host/path HTTP/1.1"
        QString userAgent; ///< "-" if none was sent
        int status;
    };

    Outcome start();

    /// The value for http_proxy that sends every plain HTTP request here.
    [[nodiscard]] QString proxy() const { return "http://127.0.0.1:" + QString::number(port); }

    /// The directory of the published files.
    [[nodiscard]] QString root() const { return base.filePath("root"); }

    /// Publishes these bytes under a path ("/bin/HB4.sb").
    Outcome publish(const QString& path, const QByteArray& bytes);
    void withdraw(const QString& path) { QFile::remove(base.filePath("root") + path); }

    /// All requests answered so far, in order. Waits until the server has noted them.
    [[nodiscard]] QVector<Request> requests() const;
    void forgetRequests();

private:
    Outcome startOn(quint16 candidate);

    QTemporaryDir base;
    quint16 port = 0;
    ChildProcess process;
};

/// A catalogue that offers this image (HTTP address) for the models of one key stem. The updater's keys say
/// that the updater is up to date.
[[nodiscard]] QByteArray catalogueOf(const QString& stem, const QString& version, const QString& imageAddress,
                                     const QString& changeLogAddress);

/// Publishes a catalogue with one firmware, its change log and its image.
Outcome publishFirmware(UpdateServer& server, const QString& stem, const QString& version,
                        const QByteArray& image, const QByteArray& changeLog);

/// The host that the program contacts, and the User-Agent header that it sends.
inline constexpr const char* updateHost = TALVEX_UPDATE_HOST;
inline constexpr const char* expectedUserAgent = "MyOwnBrowser 1.0";
