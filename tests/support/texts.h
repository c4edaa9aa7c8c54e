#pragma once

/// Every program text that a test expects, written from what a user reads, independently of the program's
/// own constants. Texts that name a model are in models.h.
namespace text {

inline constexpr auto windowTitle = "Talvex updater v. 11";

// the labels above the bars
inline constexpr auto transferIdle = "Transfer:";
inline constexpr auto transferDownload = "Transfer: download new version";
inline constexpr auto transferInProgress = "Transfer: in progress";
inline constexpr auto transferCompleted = "Transfer: completed";
inline constexpr auto updateIdle = "Update:";
inline constexpr auto updateInProgress = "Update: in progress. Do not power off device!";
inline constexpr auto updateFinished = "Update: finished";

// titles of boxes
inline constexpr auto error = "Error";
inline constexpr auto deviceError = "Error HID device";
inline constexpr auto info = "Info";

// boxes
inline constexpr auto notFound = "Device is not found.\nPlease connect.";
inline constexpr auto offerQuestion = "Would you like to update to latest version?";
inline constexpr auto upToDate = "Your unit has the latest software";
inline constexpr auto handOver =
    "Wait for download new Talvex Updater.\nClose program and insall new version "
    "Talvex Updater.\nTry again update unit.";
inline constexpr auto networkProblem = "Problem with internet connection";
inline constexpr auto savingProblem = "Error saving firmware to disk.";
inline constexpr auto savingAdvice =
    "Check the HD, connections between PC and the unit and to try the update again.";
inline constexpr auto damagedImage = "The downloaded firmware is damaged or not genuine.";
inline constexpr auto notGenuine = "The update server's answer is not genuine.";
inline constexpr auto nothingChanged =
    "Nothing was changed on your unit. Try again later or in another network.";
inline constexpr auto noImage = "File updater is not found.\nCheck the HD free space and try again.";
inline constexpr auto behindTheEnd = "Cannot read from file updater";
inline constexpr auto behindTheEndAdvice = "Check the HD free space and try again.";
inline constexpr auto noRequest =
    "Check the connections between PC and the unit and to try the update again.";
inline constexpr auto timedOut =
    "Transfer timeout failed.\nCheck the connections between PC and the unit and "
    "to try the update again.";
inline constexpr auto skipped = "Transfer failed. Packets skipped.\nCheck the connections between PC and the "
                                "unit and to try the update again.";
inline constexpr auto wrongDigest = "Transfer failed. Wrong md5.\nCheck the connections between PC and the "
                                    "unit and to try the update again.";
inline constexpr auto rejected = "Updating failed. Wrong file or some internal error.\nCheck the connections "
                                 "between PC and the unit and to try the update again.";
inline constexpr auto finished =
    "Update installed correctly, please close program, and disconnect/power off your controller.\nWhen "
    "reconnected/power ON your device will have the latest software.";
inline constexpr auto logComplete = "Download log file is complete.\nYou can find it in program directory.";

} // namespace text

/// The updater's own version and the next one, as in the catalogue. Raised together with
/// base/updaterversion.h, like the title above.
namespace updater {

inline constexpr auto own = "11";
inline constexpr auto next = "12";

} // namespace updater

/// The files in the program's directory.
namespace filename {

inline constexpr auto image = "updater.sb";
inline constexpr auto download = "updater.sb.upd";
inline constexpr auto backup = "updater.sb.bkp";
inline constexpr auto service = "SUPER_MEGA_UPDATE.sb";
inline constexpr auto anyLog = "*_log.enc";

} // namespace filename
