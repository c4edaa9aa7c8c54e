#include "tests/reliability/computer.h"
#include "tests/reliability/faults.h"
#include "tests/support/texts.h"

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

constexpr unsigned long room = 10000; ///< in bytes: less than the image or the log takes

/// The disk is full from the start: once the log is on its way, another thread stores it, and might be done
/// first.
Scenario logOnAFullDisk()
{
    Scenario scenario = roadTo(Phase::logParts);
    scenario.beforeStart = [] { computer::fillDisk(room); };
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

void resizeImage(qint64 bytes)
{
    if (!QFile::resize(beside(filename::image), bytes))
        qFatal("cannot resize the image");
}

} // namespace

std::vector<FaultRow> diskFaults()
{
    constexpr auto written = "no file is written then";
    constexpr auto stored = "only storing a download uses this name";
    constexpr auto readOnce = "the image is read once, when Update Device is pressed";
    const auto lose = [] { QFile::remove(beside(filename::image)); };
    return {
        {"disk",
         "is full",
         written,
         {{at(Phase::store, [] { computer::fillDisk(room); }), outcome::notSavedBackup},
          {logOnAFullDisk(), outcome::cutLog}}},
        {"disk",
         "accepts no new file (read-only directory)",
         "no file is created then; the log file is created when the program starts",
         {{at(Phase::store, [] { computer::makeDirectoryReadOnly(); }), outcome::notSaved},
          {withoutLogFile(), outcome::noLog}}},
        {"disk",
         "has a directory named like the download",
         stored,
         {{at(Phase::store, [] { takeName(filename::download); }), outcome::notSavedBackup}}},
        {"disk",
         "has a directory named like the backup",
         stored,
         {{at(Phase::store, [] { takeName(filename::backup); }), outcome::notSaved}}},
        {"disk",
         "has a directory named like the image",
         "only storing a download and pressing Update Device use this name",
         {{at(Phase::store, [] { takeName(filename::image); }), outcome::updatedWithoutBackup},
          {withoutImageAtThePress([] { takeName(filename::image); }), outcome::noFile}}},
        {"disk", "has lost the image", readOnce, {{withoutImageAtThePress(lose), outcome::noFile}}},
        {"disk",
         "has an empty image",
         readOnce,
         {{withoutImageAtThePress([] { resizeImage(0); }), outcome::noFile}}},
        {"disk",
         "has an image of more than 64 MiB",
         readOnce,
         {{withoutImageAtThePress([] { resizeImage(64 * 1024 * 1024 + 1); }), outcome::noFile}}},
        {"disk",
         "with a catalogue key: has another image than the one downloaded",
         readOnce,
         {},
         {{Phase::request, "“File updater is not found.…”; nothing is sent to the unit",
           "tst_signedimage::press"}}},
    };
}
