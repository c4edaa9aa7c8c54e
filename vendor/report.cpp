#include "vendor/report.h"

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

void judgeRows(Report& report)
{
    for (Report::Row& row : report.rows)
        row.isGood =
            isGood(row.stem.isEmpty() ? checks::updaterKeys() : checks::keysOf(row.stem), report.findings);
}

} // namespace

Report reportOn(const QString& source, const QByteArray& served, const QVector<options::Viewer>& viewers,
                const Genuineness& genuineness)
{
    const catalogue::Entries entries = catalogue::parse(catalogue::withoutCarriageReturns(served));
    Report report;
    report.source = source;
    report.size = served.size();
    report.genuineness = genuineness;
    report.findings = checks::ofSignature(genuineness) + checks::ofCatalogue(served, genuineness.isRequired);
    for (const UnitModel& model : unitModels)
        report.rows.append(rowOf(model, entries));
    report.rows.append(updaterRow(entries));
    judgeRows(report);
    for (const options::Viewer& viewer : viewers)
        report.views.append({viewer, sightOf(entries, viewer.stem, viewer.version, genuineness)});
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
