#pragma once

#include "tests/support/cataloguetext.h"
#include "tests/support/rawserver.h"

#include <QTimer>

/// A proxy for an update server that all but stops sending in the middle of an image.
class HalfServer
{
public:
    /// `updaterVersion` is the version in its catalogue.
    explicit HalfServer(const QString& updaterVersion = updater::own)
    {
        CatalogueEntries entries = catalogueEntries("HB4", "28", QString("http://host") + imagePath,
                                                    QString("http://host") + changeLogPath);
        entries["MainVer"] = updaterVersion;
        server.setAnswer(cataloguePath, ok(catalogueText(entries)));
        for (const char* changeLog : {changeLogPath, mainChangeLogPath})
            server.setAnswer(changeLog, ok("Faster.\n"));
        server.setAnswer(imagePath, halfAnImage());
        QObject::connect(&beat, &QTimer::timeout, &server, &RawServer::goOn);
        beat.start(50);
    }
    [[nodiscard]] QString address() const { return server.address({}); }

private:
    /// In pieces, because Qt reports no progress until an answer has been arriving for a while; and then byte
    /// by byte, because it may have seen all of these at once.
    static RawServer::Answer halfAnImage()
    {
        const QByteArray piece(50'000, 'i');
        QByteArrayList pieces{announced(20 * piece.size(), {})};
        for (int sent = 0; sent < 10; ++sent)
            pieces += piece;
        return {pieces + drops(piece), RawServer::End::keepOpen, true};
    }

    RawServer server;
    QTimer beat; ///< a piece, or a byte, goes out with each
};
