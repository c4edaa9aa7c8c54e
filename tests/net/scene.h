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

/// Their names, in that order.
inline constexpr std::array requestNames{"catalogue", "change log", "updater's change log", "image"};

/// Gives a test a row for each, with the column "request".
void addRequests();

/// One update checker for an HB4 at version 23, and its server. The vendor's host is reached through the
/// system's proxy settings, as in the program; the other addresses are the server's own.
class Scene
{
public:
    Scene();

    /// A fresh checker and journal; the server forgets everything.
    void reset();

    /// Makes the checker ask. For changeLog, mainChangeLog and image its address is set before, to this
    /// server's.
    void ask(Request request) { ask(request, server); }
    void ask(Request request, const RawServer& whom);
    [[nodiscard]] static QString path(Request request);

    /// What the checker says when this request's answer is a network error; the error text is that of the
    /// reply it keeps then.
    [[nodiscard]] QStringList networkError(Request request) const;

    /// A good catalogue for an HB4: firmware 27, updater 11, addresses of this server. `changes` replaces
    /// values, adds keys, and drops those with a null value. Lines end in LF.
    [[nodiscard]] QByteArray catalogue(const CatalogueEntries& changes = {}) const;

    /// What the checker keeps to itself.
    [[nodiscard]] inside::Checker state() const { return inside::of(*checker); }
    /// Its clock against silence.
    [[nodiscard]] QTimer& clock() const { return *checker->findChild<QTimer*>(); }

    /// True once the checker waits for no answer and its journal holds as many events.
    [[nodiscard]] bool rests(qsizetype events) const;

    RawServer server;
    std::unique_ptr<UpdateChecker> checker;
    std::unique_ptr<CheckerJournal> journal; ///< after the checker: goes first
};

/// A body in a gzip member.
[[nodiscard]] QByteArray gzip(const QByteArray& body);
