#pragma once

#include "net/updatechecker.h"
#include "tests/net/checkerjournal.h"
#include "tests/support/cataloguetext.h"
#include "tests/support/inside.h"
#include "tests/support/rawserver.h"

#include <QMetaType>
#include <QTimer>

#include <array>
#include <memory>

/// The four kinds of request that the checker makes.
enum class Request { catalogue, changeLog, mainChangeLog, image };
Q_DECLARE_METATYPE(Request)

/// All of them, in that order.
inline constexpr std::array everyRequest{Request::catalogue, Request::changeLog, Request::mainChangeLog,
                                         Request::image};

[[nodiscard]] QByteArray nameOf(Request request);

/// Adds a test row for each request, with the column "request".
void addRequests();

using Answer = RawServer::Answer;
using End = RawServer::End;
Q_DECLARE_METATYPE(Answer)

/// An update checker for an HB4 at version 23, and its server. The vendor's host is reached through the
/// system's proxy settings, as in the program; all other addresses point to the server itself.
class Scene
{
public:
    Scene();

    /// Creates a new checker and journal, and clears the server but for the change logs ("better" and "new
    /// look").
    void reset();

    /// Makes the checker send the request. For changeLog, mainChangeLog and image, the checker first gets
    /// this server's address, and of a change log the version: firmware 27, or the next updater.
    void ask(Request request) { ask(request, server); }
    void ask(Request request, const RawServer& whom) { ask(request, whom.address(path(request))); }
    /// At this address, as a catalogue would give it; the catalogue has an address of its own.
    void ask(Request request, const QString& address);
    [[nodiscard]] static QString path(Request request);

    /// Has the server give this catalogue, and the checker ask for it.
    void checkAgainst(const QByteArray& catalogue);

    /// What the checker reports when this request fails with a network error. The error text is taken from
    /// the reply that the checker then holds.
    [[nodiscard]] QStringList networkError(Request request) const;

    /// A good catalogue for an HB4: firmware 27, our own updater, addresses of this server. `changes`
    /// replaces values, adds keys, and removes keys whose new value is null. Lines end in LF.
    [[nodiscard]] QByteArray catalogue(const CatalogueEntries& changes = {}) const;

    /// The checker's private state.
    [[nodiscard]] inside::Checker state() const { return inside::of(*checker); }
    /// How many bytes of the answer in flight the checker has taken: no signal or file tells it.
    [[nodiscard]] qint64 received() const { return state().received; }
    /// As if the checker had taken so much of the answer in flight already.
    void pretendReceived(qint64 bytes) { state().received = bytes; }
    /// The reply that the checker holds; null if it holds none.
    [[nodiscard]] QNetworkReply* reply() const { return state().reply; }
    /// The checker's timeout timer.
    [[nodiscard]] QTimer& clock() const { return *checker->findChild<QTimer*>(); }
    /// As if its time were over: no test waits for it.
    void letTheClockFire() const;

    /// Has a check fail that has received a firmware version: that is left behind.
    void leaveStaleCatalogue();
    /// Whether it still precedes what the next check receives. Forgets the events so far.
    [[nodiscard]] bool hasStaleCatalogue();

    /// True once the checker is not waiting for an answer and its journal holds this many events.
    [[nodiscard]] bool rests(qsizetype events) const;

    RawServer server;
    std::unique_ptr<UpdateChecker> checker;
    std::unique_ptr<CheckerJournal> journal; ///< after the checker: destroyed first
};

/// Compresses a body into one gzip member.
[[nodiscard]] QByteArray gzip(const QByteArray& body);
