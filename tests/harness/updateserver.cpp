#include "tests/harness/updateserver.h"

#include "tests/harness/waiting.h"
#include "tests/support/filecontent.h"

#include <QDir>
#include <QFileInfo>
#include <QNetworkProxy>
#include <QTcpServer>
#include <QTcpSocket>

namespace {

constexpr int mostPortsTried = 5;

constexpr auto lastRequest = "GET /last HTTP/1.0"; ///< nobody publishes that

/// A port that was free a moment ago; 0: there is none.
quint16 freePort()
{
    QTcpServer finder;
    return finder.listen(QHostAddress::LocalHost) ? finder.serverPort() : quint16(0);
}

/// Makes a request of its own and waits for the end of its answer. The server handles one request after the
/// other and notes each before it closes the connection, so by then all that came before are noted, too.
void awaitNotes(quint16 port)
{
    QTcpSocket caller;
    caller.setProxy(QNetworkProxy::NoProxy);
    caller.connectToHost(QHostAddress(QHostAddress::LocalHost), port);
    if (!caller.waitForConnected(limits::hangMs()))
        return;
    caller.write(QByteArray(lastRequest) + "\r\n\r\n");
    while (caller.waitForReadyRead(limits::hangMs()))
        caller.readAll();
}

} // namespace

Outcome UpdateServer::start()
{
    if (!QDir(base.path()).mkpath("root") || !QDir(base.path()).mkpath("run"))
        return Outcome("cannot make the server's directories");
    Outcome outcome;
    for (int tried = 0; tried < mostPortsTried; ++tried) {
        outcome = startOn(freePort());
        if (outcome.good())
            break; // otherwise somebody else was quicker to take the port
    }
    return outcome;
}

Outcome UpdateServer::startOn(quint16 candidate)
{
    process.start(TALVEX_SERVE_SCRIPT,
                  {base.filePath("root"), QString::number(candidate), base.filePath("run")});
    // The server writes this file once it has the port. That something listens on the port would not prove
    // that it is this server.
    const bool up = waitUntil([&] {
        return process.state() == QProcess::NotRunning || QFile::exists(base.filePath("run/nginx.pid"));
    });
    if (!up || process.state() == QProcess::NotRunning)
        return Outcome("the update server did not start: " + process.errorString() +
                       process.readAllStandardError());
    port = candidate;
    return {};
}

Outcome UpdateServer::publish(const QString& path, const QByteArray& bytes)
{
    const QString full = base.filePath("root") + path;
    const bool isThere = QDir().mkpath(QFileInfo(full).path()) && writeFile(full, bytes);
    return isThere ? Outcome() : Outcome("cannot publish " + full);
}

QVector<UpdateServer::Request> UpdateServer::requests() const
{
    awaitNotes(port);
    QVector<Request> all;
    const QList<QByteArray> lines = contentOf(base.filePath("run/access.log")).split('\n');
    for (const QByteArray& line : lines) {
        const QList<QByteArray> fields = line.split('|');
        if (fields.size() == 3 && fields[0] != lastRequest)
            all.append({QString::fromUtf8(fields[0]), QString::fromUtf8(fields[1]), fields[2].toInt()});
    }
    return all;
}

void UpdateServer::forgetRequests()
{
    awaitNotes(port);
    QFile::resize(base.filePath("run/access.log"), 0);
}

QByteArray catalogueOf(const QString& stem, const QString& version, const QString& imageAddress,
                       const QString& changeLogAddress)
{
    const QString host = QString("http://") + updateHost;
    CatalogueEntries entries = catalogueEntries(stem, version, imageAddress, changeLogAddress);
    entries["MainChangeLog"] = host + mainChangeLogPath;
    entries["MacMainBin"] = host + "/bin/updater.zip";
    return "[updater]\r\n" + catalogueText(entries, "\r\n");
}

Outcome publishFirmware(UpdateServer& server, const QString& stem, const QString& version,
                        const QByteArray& image, const QByteArray& changeLog)
{
    const QString binPath = "/bin/" + stem + ".sb";
    const QString logPath = "/logs/" + stem + ".txt";
    const QString host = QString("http://") + updateHost;
    STEP(server.publish(binPath, image));
    STEP(server.publish(logPath, changeLog));
    return server.publish(cataloguePath, catalogueOf(stem, version, host + binPath, host + logPath));
}
