#pragma once

#include "tests/harness/program.h"

#include <QDir>

/// Uses the program as a person would, and saves numbered screenshots of what it shows.
class Demo
{
public:
    Demo(Desktop& shownOn, const QDir& folder, int picturesBefore, const QStringList& variables)
        : desktop(shownOn), program(shownOn), pictures(folder), count(picturesBefore)
    {
        for (const QString& variable : variables)
            program.setVariable(variable.section('=', 0, 0), variable.section('=', 1));
    }

    Outcome update(const QString& proxy, const QString& unit);
    Outcome pullLog(const QString& proxy, const QString& unit, const QString& target);
    Outcome seeFirstBox(const QString& stage, const QString& proxy, const QStringList& units);
    Outcome seeProblem(const QString& unit);
    Outcome seeChangeLog(const QString& proxy, const QString& unit);
    Outcome seeDownload(const QString& unit);
    Outcome stopLog(const QString& proxy, const QString& unit);
    Outcome seeRefusal(const QString& stage, const QString& unit, bool isImageThere);
    Outcome seeLatest(const QString& proxy);
    Outcome seeUpdaterOffer(const QString& unit);

    [[nodiscard]] int pictureCount() const { return count; }

private:
    Outcome open(const QString& proxy, const QStringList& units);
    Outcome offerLog(const QString& proxy, const QString& unit);
    Outcome connectUnit();
    Outcome seeOffer();
    Outcome seeConnection();
    Outcome seeHalfOfLog();
    Outcome seeTransfer();
    Outcome seeInstallation();
    Outcome keepPicture(const QString& stage);
    Outcome keepPictureAtRest(const QString& stage);
    Outcome keepPictureOfBox(const QString& stage);

    Desktop& desktop;
    Program program;
    QDir pictures;
    int count;
};
