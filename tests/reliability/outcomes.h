#pragma once

#include "tests/reliability/outcome.h"
#include "tests/support/boxlines.h"

/// The expected outcomes of the journeys.
namespace outcome {

/// The text part of a line from Boxes::lines(), including what the box shows below it.
[[nodiscard]] inline QStringList box(const QString& line)
{
    return {line.section('|', 2, 2).simplified()};
}

/// The unit's update succeeds, fails with an explanation, or never ends.
/// @{
inline const Outcome updated{box(boxline::finished), unitword::updated, diskword::newImage, endword::ends};
inline const Outcome keepsFirmware{{}, unitword::notUpdated, diskword::newImage, endword::waits};
inline const Outcome notWritten{box(boxline::noRequest), unitword::notUpdated, diskword::newImage,
                                endword::waits};
inline const Outcome timedOut{box(boxline::timedOut), unitword::notUpdated, diskword::newImage,
                              endword::waits};
inline const Outcome skipped{box(boxline::skipped), unitword::notUpdated, diskword::newImage, endword::waits};
inline const Outcome wrongDigest{box(boxline::wrongDigest), unitword::notUpdated, diskword::newImage,
                                 endword::waits};
inline const Outcome rejected{box(boxline::rejected), unitword::notUpdated, diskword::newImage,
                              endword::waits};
inline const Outcome oneDeck{{}, unitword::oneDeckUpdated, diskword::newImage, endword::waits};
inline const Outcome oneDeckTold{box(boxline::finished), unitword::oneDeckUpdated, diskword::newImage,
                                 endword::ends};
inline const Outcome oneDeckRejected{box(boxline::rejected), unitword::oneDeckUpdated, diskword::newImage,
                                     endword::waits};
/// @}

/// No update takes place.
/// @{
inline const Outcome notFound{box(boxline::notFound), unitword::untouched, diskword::oldImage,
                              endword::waits};
inline const Outcome noInternet{box(boxline::noInternet), unitword::untouched, diskword::oldImage,
                                endword::ends};
inline const Outcome damaged{box(boxline::damagedImage), unitword::untouched, diskword::oldImage,
                             endword::ends};
inline const Outcome declined{{}, unitword::untouched, diskword::oldImage, endword::waits};
/// @}

/// The image file differs from the usual one.
/// @{
inline const Outcome notSaved{box(boxline::notSaved), unitword::untouched, diskword::oldImage, endword::ends};
inline const Outcome notSavedBackup{box(boxline::notSaved), unitword::untouched, diskword::onlyBackup,
                                    endword::ends};
inline const Outcome noFile{box(boxline::noFile), unitword::notUpdated, diskword::onlyBackup, endword::waits};
inline const Outcome updatedWithoutBackup{box(boxline::finished), unitword::updated, diskword::onlyNewImage,
                                          endword::ends};
inline const Outcome updatedByCutImage{box(boxline::finished), unitword::updated, diskword::cutImage,
                                       endword::ends};
/// @}

/// The unit's log is reported as complete, or never finishes.
/// @{
inline const Outcome wholeLog{box(boxline::logComplete), {}, diskword::wholeLog, endword::ends};
inline const Outcome cutLog{box(boxline::logComplete), {}, diskword::cutLog, endword::ends};
inline const Outcome otherLog{box(boxline::logComplete), {}, diskword::otherLog, endword::ends};
inline const Outcome emptyLog{box(boxline::logComplete), {}, diskword::emptyLog, endword::ends};
inline const Outcome noLog{box(boxline::logComplete), {}, diskword::noLog, endword::ends};
inline const Outcome awaitsHeader{{}, {}, diskword::emptyLog, endword::waits};
inline const Outcome awaitsPart{{}, {}, diskword::cutLog, endword::waits};
/// @}

/// The user, or the system, ends the program while it is working.
/// @{
inline const Outcome closedBefore{{}, unitword::untouched, diskword::oldImage, endword::ends};
inline const Outcome closedInUpdate{{}, unitword::notUpdated, diskword::newImage, endword::ends};
inline const Outcome closedBeforeLog{{}, {}, diskword::emptyLog, endword::ends};
inline const Outcome closedInLog{{}, {}, diskword::cutLog, endword::ends};
inline const Outcome goneBefore{{}, {}, diskword::oldImage, endword::gone};
inline const Outcome goneInUpdate{{}, {}, diskword::newImage, endword::gone};
inline const Outcome goneBeforeLog{{}, {}, diskword::emptyLog, endword::gone};
inline const Outcome goneInLog{{}, {}, diskword::cutLog, endword::gone};
/// @}

} // namespace outcome
