#pragma once

#include "net/catalogue.h"
#include "vendor/finding.h"

#include <QByteArray>
#include <QString>
#include <QVector>

/// A change log or an image that a catalogue names.
struct Wanted
{
    QString key;
    QString url; ///< as the program asks for it
    bool isImage;
};

/// The result of a request.
struct Fetched
{
    Wanted wanted;
    int status = 0;           ///< 0: there was no answer
    qint64 size = 0;          ///< bytes received, after any content decoding
    QString type;             ///< the header Content-Type
    QString encoding;         ///< the header Content-Encoding
    QByteArray digest;        ///< SHA-256, 64 hexadecimal digits
    QString failure;          ///< why it did not arrive whole
    QString certificateFault; ///< what the program ignores about a certificate; empty: nothing
    bool isAnswer = false;    ///< the program would take it
    bool isNoImage = false;   ///< the program would not take it for an image
    bool isReported = false;  ///< the program reports its size
};

/// Everything that can be requested: the updater's change log, then stem by stem in the models' order.
[[nodiscard]] QVector<Wanted> wantedBy(const catalogue::Entries& entries);

namespace checks {

/// What the program would trip over, given the catalogue that names it.
[[nodiscard]] Findings ofFetched(const Fetched& fetched, const catalogue::Entries& entries);

} // namespace checks
