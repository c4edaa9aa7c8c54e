#pragma once

#include "tests/support/texts.h"

#include <QRect>
#include <QString>
#include <QStringList>

#include <vector>

/// The window's state after the start, as seen from outside and from inside the program.
namespace windowtable {

struct Control
{
    const char* name;
    const char* type;
    const char* parent;
    QRect geometry;   ///< null: the layout decides
    const char* text; ///< nullptr: no text
    bool enabled;
    bool visible;
    const char* whatsThis = "";
};

[[nodiscard]] inline const std::vector<Control>& controls()
{
    constexpr auto centre = "centralWidget";
    constexpr auto row = "layoutWidget";
    constexpr auto bar = "QProgressBar";
    constexpr auto button = "QPushButton";
    static const std::vector<Control> all{
        {centre, "QWidget", "MainWindow", {}, nullptr, true, true},
        {"progressBarTransfer", bar, centre, {20, 160, 451, 21}, "0%", false, true, "Transfer progress"},
        {"progressBarUpdate", bar, centre, {20, 260, 451, 21}, "0%", false, true},
        {row, "QWidget", centre, {10, 410, 471, 32}, nullptr, true, true},
        {"connect_button", button, row, {}, "Connect", true, true},
        {"updateDeviceButton", button, row, {}, "Update Device", false, true},
        {"labelTransfer", "QLabel", centre, {20, 120, 411, 16}, text::transferIdle, false, true},
        {"labelUpdate", "QLabel", centre, {20, 230, 411, 16}, text::updateIdle, false, true},
        {"downloadLogFile", button, centre, {250, 380, 231, 23}, "Download log file", false, false},
        {"stopDownloadingFile",
         button,
         centre,
         {250, 350, 231, 23},
         "Stop downloading log file",
         true,
         false},
    };
    return all;
}

/// The controls' names, sorted.
[[nodiscard]] inline QStringList controlNames()
{
    QStringList names;
    for (const Control& control : controls())
        names += control.name;
    names.sort();
    return names;
}

[[nodiscard]] inline const Control& control(const QString& name)
{
    for (const Control& candidate : controls())
        if (name == candidate.name)
            return candidate;
    qFatal("no control %s", qPrintable(name));
}

/// "kind signature parameters" of the window's methods, in the order of its meta-object.
inline const QStringList methods{
    "signal needDownloadNewFirmware() ",
    "signal needDownloadNewMainFirmware() ",
    "signal notNeedDownloadNewFirmware() ",
    "signal needDataCompleted(int) type",
    "slot onFindNewVersion(QString,QString) newVersion,detailText",
    "slot onFindMainNewVersion(QString,QString) newVersion,detailText",
    "slot onChangeUpdateFileName(QString) filename",
    "slot onStartDownloadMainUpdate() ",
    "slot dataCompleted(int) type",
    "slot onLogDownloadFinished() ",
    "slot connectSlot() ",
    "slot updateDevice() ",
    "slot transmitSlot() ",
    "slot timerSlot() ",
    "slot updateFakeProgressSlot() ",
    "slot onYouHaveLastVersion() ",
    "slot onYouHaveProblem(QString,QString) ,msg2",
    "slot on_downloadLogFile_pressed() ",
    "slot on_stopDownloadingFile_pressed() ",
};

/// A connection exactly as the program makes it, spaces included: objects by class name, controls by object
/// name.
struct Connection
{
    const char* sender;
    const char* signal;
    const char* receiver;
    const char* slot;
};

/// The program's connections, in the order in which it makes them.
[[nodiscard]] inline const std::vector<Connection>& connections()
{
    constexpr auto window = "MainWindow";
    constexpr auto checker = "UpdateChecker";
    constexpr auto downloader = "LogDownloader";
    constexpr auto bar = "progressBarTransfer";
    static const std::vector<Connection> all{
        {"QThread", "started ()", downloader, "process ()"},
        {"connect_button", "clicked()", window, "connectSlot()"},
        {"updateDeviceButton", "clicked()", window, "updateDevice()"},
        {checker, "findMainNewVersion(QString,QString)", window, "onFindMainNewVersion(QString, QString)"},
        {checker, "findNewVersion(QString,QString)", window, "onFindNewVersion(QString, QString)"},
        {checker, "downloadProgress(int)", bar, "setValue(int)"},
        {downloader, "logDownloadProgress(int)", bar, "setValue(int)"},
        {downloader, "logDownloadFinished()", window, "onLogDownloadFinished()"},
        {downloader, "needwaitLogFileMd5()", downloader, "waitLogFileMd5()"},
        {downloader, "needreadLogPart()", downloader, "readLogPart()"},
        // The downloader sends the acknowledgement itself, on its own thread.
        {downloader, "needdataCompleted(int)", downloader, "dataCompleted(int)"},
        {downloader, "needresendMessage(int)", downloader, "resendMessage(int)"},
        {window, "needDataCompleted(int)", downloader, "dataCompleted(int)"},
        {checker, "newUpdateFileDownloaded(bool)", "updateDeviceButton", "setEnabled(bool)"},
        {checker, "youHaveLastVersion()", window, "onYouHaveLastVersion()"},
        {checker, "youHaveProblem(QString,QString)", window, "onYouHaveProblem(QString,QString)"},
        {checker, "changeUpdateFileName(QString)", window, "onChangeUpdateFileName(QString)"},
        {checker, "startDownloadMainUpdate()", window, "onStartDownloadMainUpdate()"},
        {window, "needDownloadNewFirmware()", checker, "onNeedDownloadNewFirmware()"},
        {window, "needDownloadNewMainFirmware()", checker, "onNeedDownloadNewMainFirmware()"},
    };
    return all;
}

} // namespace windowtable
