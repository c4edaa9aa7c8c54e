#include "reliability/computer.h"
#include "reliability/faults.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>

namespace {

QString beside(const char* name)
{
    return QCoreApplication::applicationDirPath() + '/' + name;
}

Scenario at(Phase phase, const std::function<void()>& fault)
{
    Scenario scenario = roadTo(phase);
    scenario.fault = [fault](Journey&) { fault(); };
    return scenario;
}

/// A log's road whose directory takes no file from before the program starts.
Scenario withoutLogFile()
{
    Scenario scenario = roadTo(Phase::logHeader);
    scenario.beforeStart = [] { computer::makeDirectoryReadOnly(); };
    return scenario;
}

Scenario withoutImageAtThePress(const std::function<void()>& fault)
{
    Scenario scenario = roadTo(Phase::request);
    scenario.beforeUpdate = [fault](Journey&) { fault(); };
    return scenario;
}

void takeName(const char* name)
{
    QFile::remove(beside(name));
    QDir().mkpath(beside(name) + "/taken");
}

void emptyImage()
{
    QFile image(beside("updater.sb"));
    if (!image.open(QIODevice::WriteOnly | QIODevice::Truncate))
        qFatal("cannot empty the image");
}

} // namespace

std::vector<FaultRow> diskFaults()
{
    constexpr auto written = "no file is written or read then";
    return {
        {"disk",
         "is full",
         written,
         {at(Phase::store, [] { computer::fillDisk(10000); }),
          at(Phase::logParts, [] { computer::fillDisk(10000); })}},
        {"disk",
         "takes no new file (read-only directory)",
         "no file is made then; the log's is made when the program starts",
         {at(Phase::store, [] { computer::makeDirectoryReadOnly(); }), withoutLogFile()}},
        {"disk",
         "has a directory named like the download",
         written,
         {at(Phase::store, [] { takeName("updater.sb.upd"); })}},
        {"disk",
         "has a directory named like the backup",
         written,
         {at(Phase::store, [] { takeName("updater.sb.bkp"); })}},
        {"disk",
         "has a directory named like the image",
         written,
         {at(Phase::store, [] { takeName("updater.sb"); })}},
        {"disk",
         "has lost the image",
         "the image is read once, when Update Device is pressed",
         {withoutImageAtThePress([] { QFile::remove(beside("updater.sb")); })}},
        {"disk",
         "has an empty image",
         "the image is read once, when Update Device is pressed",
         {withoutImageAtThePress(emptyImage)}},
    };
}
