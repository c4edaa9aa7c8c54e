#pragma once

#include "net/catalogue.h"
#include "vendor/fetched.h"
#include "vendor/finding.h"
#include "vendor/genuineness.h"
#include "vendor/options.h"
#include "vendor/sight.h"

#include <QByteArray>
#include <QString>
#include <QVector>

/// What is known about a catalogue, for printing. Its values come from outside: only the text report escapes
/// them.
struct Report
{
    struct Row
    {
        QString model;   ///< or "updater"
        QString stem;    ///< empty for the updater
        QString version; ///< as written in the catalogue, like the others
        QString image;
        QString changeLog;
        QString digest;
        bool isGood; ///< no error about any of its keys
    };

    struct View
    {
        options::Viewer viewer;
        Sight sight;
    };

    QString source;
    qint64 size = 0; ///< bytes
    Genuineness genuineness;
    QVector<Row> rows; ///< none of a catalogue that the updater gives up
    QVector<View> views;
    QVector<Fetched> fetched; ///< empty: nothing was requested
    Findings findings;
};

/// The entries as the updater reads them; none of a catalogue larger than `sizeLimit`, which it gives up.
[[nodiscard]] catalogue::Entries entriesOf(const QByteArray& served);

/// A row for every model, then the updater's; what the viewers see; the findings about the catalogue and its
/// signature.
[[nodiscard]] Report reportOn(const QString& source, const QByteArray& served,
                              const QVector<options::Viewer>& viewers, const Genuineness& genuineness = {});

/// Adds what was requested, and the findings about it.
void addFetched(Report& report, const QVector<Fetched>& fetched, const catalogue::Entries& entries);

[[nodiscard]] int countOf(const Findings& findings, Severity severity);

/// For printing: of those about single lines only the first 100, then one that counts the others.
[[nodiscard]] Findings shortened(const Findings& findings);

/// UTF-8, aligned; in colour for a terminal.
[[nodiscard]] QByteArray asText(const Report& report, bool inColour);

/// ASCII, one object.
[[nodiscard]] QByteArray asJson(const Report& report);
