#pragma once

#include "tests/support/texts.h"

#include <QStringList>
#include <QTest>

#include <algorithm>
#include <cstring>
#include <vector>

/// A transfer that goes wrong: what the unit does, what the user sees in the end, and what the unit's
/// journal says.
struct TransferFault
{
    const char* option; ///< the virtual unit's option: "fault=..."
    const char* box;    ///< the box's text; nullptr: no box
    const char* title;
    const char* transfer; ///< the label; nullptr: unchanged since before Update Device was pressed
    const char* update;   ///< the label
    QStringList journal;  ///< after "opened" and the request, if received; for an image of 6000 bytes
};

[[nodiscard]] inline const std::vector<TransferFault>& transferFaults()
{
    using namespace text;
    const QStringList arrived{"accepted", "image-complete size=6000"};
    static const std::vector<TransferFault> all{
        {"never-answers", nullptr, error, nullptr, updateIdle, {"unanswered"}},
        {"refuses-timeout", timedOut, error, nullptr, updateIdle, {"refused timeout"}},
        {"refuses-skipped", skipped, error, nullptr, updateIdle, {"refused skipped"}},
        {"loses-packet:5",
         wrongDigest,
         error,
         transferInProgress,
         updateIdle,
         {"accepted", "lost packet=5", "error packet-number expected=5 got=6", "image-complete size=5940",
          "verdict wrong-digest"}},
        {"wrong-digest", wrongDigest, error, transferInProgress, updateIdle,
         arrived + QStringList{"verdict wrong-digest"}},
        {"rejects-image", rejected, error, transferInProgress, updateIdle,
         arrived + QStringList{"verdict rejected"}},
        {"installation-fails", rejected, error, transferCompleted, updateInProgress,
         arrived + QStringList{"installing", "verdict rejected"}},
        {"silent-installation", nullptr, error, transferCompleted, updateInProgress,
         arrived + QStringList{"installing"}},
        {"unplugged-at:5", nullptr, error, transferInProgress, updateIdle, {"accepted", "unplugged"}},
        {"unplugged-at:1", nullptr, error, nullptr, updateIdle, {"unplugged"}},
        {"takes-nothing", noRequest, deviceError, nullptr, updateIdle, {}},
    };
    return all;
}

/// The fault that the current test row is named after.
[[nodiscard]] inline const TransferFault& transferFaultOfRow()
{
    return *std::find_if(transferFaults().begin(), transferFaults().end(), [](const TransferFault& fault) {
        return std::strcmp(fault.option, QTest::currentDataTag()) == 0;
    });
}
