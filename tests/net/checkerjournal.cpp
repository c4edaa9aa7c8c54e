#include "tests/net/checkerjournal.h"

#include "net/updatechecker.h"
#include "tests/support/texts.h"

CheckerJournal::CheckerJournal(UpdateChecker& checker)
    : log([this](const QString& line) { add(told::log(line)); })
{
    followOutcomes(checker);
    followFiles(checker);
}

void CheckerJournal::add(const QString& event)
{
    events.append(event);
    all.append(event);
}

void CheckerJournal::followOutcomes(UpdateChecker& checker)
{
    QObject::connect(&checker, &UpdateChecker::findMainNewVersion, &context,
                     [this](const QString& version, const QString& changeLog) {
                         add(told::signal("findMainNewVersion", {version, changeLog}));
                     });
    QObject::connect(&checker, &UpdateChecker::findNewVersion, &context,
                     [this](const QString& version, const QString& changeLog) {
                         add(told::signal("findNewVersion", {version, changeLog}));
                     });
    QObject::connect(&checker, &UpdateChecker::youHaveLastVersion, &context,
                     [this] { add(told::signal("youHaveLastVersion")); });
    QObject::connect(&checker, &UpdateChecker::checkversionError, &context,
                     [this](const QString& error) { add(told::signal("checkversionError", {error})); });
    QObject::connect(&checker, &UpdateChecker::youHaveProblem, &context,
                     [this](const QString& text, const QString& detail) {
                         add(told::signal("youHaveProblem", {text, detail}));
                     });
}

void CheckerJournal::followFiles(UpdateChecker& checker)
{
    QObject::connect(&checker, &UpdateChecker::downloadProgress, &context, [this](int percent) {
        progress.append(percent);
        all.append(told::signal("downloadProgress", {QString::number(percent)}));
    });
    QObject::connect(&checker, &UpdateChecker::newUpdateFileDownloaded, &context, [this](bool enabled) {
        add(told::signal("newUpdateFileDownloaded", {enabled ? "true" : "false"}));
    });
    QObject::connect(&checker, &UpdateChecker::changeUpdateFileName, &context,
                     [this](const QString& name) { add(told::signal("changeUpdateFileName", {name})); });
    QObject::connect(&checker, &UpdateChecker::startDownloadMainUpdate, &context,
                     [this] { add(told::signal("startDownloadMainUpdate")); });
}

namespace told {

QString log(const QString& line)
{
    return "log: " + line;
}

QString signal(const QString& name, const QStringList& parameters)
{
    QStringList quoted;
    for (const QString& parameter : parameters)
        quoted.append(parameter.isNull() ? QStringLiteral("null") : '"' + parameter + '"');
    return name + '(' + quoted.join(", ") + ')';
}

QString problem()
{
    return signal("youHaveProblem", {text::networkProblem, ""});
}

QString savingProblem()
{
    return signal("youHaveProblem", {text::savingProblem, text::savingAdvice});
}

QStringList upToDate()
{
    return {signal("youHaveLastVersion")};
}

QStringList offer(const QString& changeLog)
{
    return {signal("findNewVersion", {"27", changeLog})};
}

QStringList updaterOffer(const QString& changeLog)
{
    return {signal("findMainNewVersion", {updater::next, changeLog})};
}

QStringList imageStored()
{
    return {signal("newUpdateFileDownloaded", {"true"})};
}

QStringList exitSlot()
{
    return {log("UpdateChecker::exitSlot"), problem()};
}

QStringList downloadError()
{
    return QStringList{log("UpdateChecker::downloadError")} + exitSlot();
}

QStringList incomplete()
{
    return {log("Can't find info about version and binary file"), problem()};
}

} // namespace told
