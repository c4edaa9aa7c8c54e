#include "vendor/report.h"

#include "base/sizelimit.h"
#include "vendor/checks.h"
#include "vendor/models.h"
#include "vendor/valuechecks.h"

#include <algorithm>

namespace {

bool isGood(const QStringList& keys, const Findings& findings)
{
    return std::none_of(findings.begin(), findings.end(), [&](const Finding& finding) {
        return finding.severity == Severity::error && keys.contains(finding.key.trimmed());
    });
}

Report::Row rowOf(const UnitModel& model, const catalogue::Entries& entries)
{
    const QString stem = model.catalogueStem;
    const catalogue::Offer offer = catalogue::lookUp(entries, stem);
    return {models::nameOf(model), stem, offer.newVersion, offer.binUrl, offer.changeLogUrl,
            offer.imageDigest,     true};
}

Report::Row updaterRow(const catalogue::Entries& entries)
{
    const catalogue::Offer offer = catalogue::lookUp(entries, {});
    return {"updater", {}, offer.mainVersion, offer.mainBinUrl, offer.mainChangeLogUrl, {}, true};
}

QVector<Report::Row> rowsOf(const catalogue::Entries& entries)
{
    QVector<Report::Row> rows;
    for (const UnitModel& model : unitModels)
        rows.append(rowOf(model, entries));
    rows.append(updaterRow(entries));
    return rows;
}

bool isGivenUp(const QByteArray& served)
{
    return served.size() > sizeLimit;
}

void judgeRows(Report& report)
{
    for (Report::Row& row : report.rows)
        row.isGood =
            isGood(row.stem.isEmpty() ? checks::updaterKeys() : checks::keysOf(row.stem), report.findings);
}

} // namespace

catalogue::Entries entriesOf(const QByteArray& served)
{
    return isGivenUp(served) ? catalogue::Entries()
                             : catalogue::parse(catalogue::withoutCarriageReturns(served));
}

Report reportOn(const QString& source, const QByteArray& served, const QVector<options::Viewer>& viewers,
                const Genuineness& genuineness)
{
    const catalogue::Entries entries = entriesOf(served);
    Report report;
    report.source = source;
    report.size = served.size();
    report.genuineness = genuineness;
    report.findings = checks::ofSignature(genuineness) + checks::ofCatalogue(served, genuineness.isRequired);
    if (!isGivenUp(served))
        report.rows = rowsOf(entries);
    judgeRows(report);
    const qint64 size = isGivenUp(served) ? served.size() : served.size() - served.count('\r');
    for (const options::Viewer& viewer : viewers)
        report.views.append({viewer, sightOf(entries, size, viewer.stem, viewer.version, genuineness)});
    return report;
}

void addFetched(Report& report, const QVector<Fetched>& fetched, const catalogue::Entries& entries)
{
    report.fetched = fetched;
    for (const Fetched& one : fetched)
        report.findings += checks::ofFetched(one, entries);
    judgeRows(report);
}

int countOf(const Findings& findings, Severity severity)
{
    return static_cast<int>(std::count_if(findings.begin(), findings.end(), [&](const Finding& finding) {
        return finding.severity == severity;
    }));
}

Findings shortened(const Findings& findings)
{
    constexpr int mostOfLines = 100;
    Findings shown;
    int ofLines = 0;
    Severity worst = Severity::note; // of those left out
    for (const Finding& finding : findings) {
        if (finding.line == 0 || ++ofLines <= mostOfLines)
            shown.append(finding);
        else
            worst = std::max(worst, finding.severity);
    }
    if (ofLines > mostOfLines)
        shown.append({worst, "more", 0, {}, QString("and %1 more").arg(ofLines - mostOfLines)});
    return shown;
}
