#pragma once

#include "tests/support/boxes.h"

/// The boxes that an update can bring up, as Boxes::lines() gives them.
namespace boxline {

inline const QString notFound = criticalBox("Device is not found.\nPlease connect.");
inline const QString noFile =
    criticalBox("File updater is not found.\nCheck the HD free space and try again.");
inline const QString noRequest = criticalBox(
    "Check the connections between PC and the unit and to try the update again.", "Error HID device");
inline const QString timedOut =
    criticalBox("Transfer timeout failed.\nCheck the connections between PC and the unit and to try the "
                "update again.");
inline const QString skipped =
    criticalBox("Transfer failed. Packets skipped.\nCheck the connections between PC and the unit and to try "
                "the update again.");
inline const QString behindTheEnd =
    "critical|Error|Cannot read from file updater|Check the HD free space and try again.";
inline const QString wrongDigest =
    criticalBox("Transfer failed. Wrong md5.\nCheck the connections between PC and the unit and to try the "
                "update again.");
inline const QString rejected =
    criticalBox("Updating failed. Wrong file or some internal error.\nCheck the connections between PC and "
                "the unit and to try the update again.");
inline const QString finished =
    informationBox("Update installed correctly, please close program, and disconnect/power off your "
                   "controller.\nWhen reconnected/power ON your device will have the latest software.");

} // namespace boxline
