#include "tests/random/observed.h"

// state of the run                                  Connect  Update  Download log  Stop
// no unit open                                      must     no      no            no
// unit open, no image yet                           no       no      by key        no
// unit open, image there                            no       may     by key        no
// Update pressed, until the end                     no       no      no            no
// Download log pressed, until the log's end         no       no      no            may
// Stop pressed, or the closing box of the log up    no       may     no            no
//
// by key: it may be, once the support key was pressed with one single unit open and no answer awaited.

bool mayBeEnabled(Control control, const Observed& now)
{
    const bool logUnderWay = now.logPressed && !now.logEndTold && !now.stopPressed;
    const bool logOver = now.logPressed && !logUnderWay;
    switch (control) {
    case Control::connect:
        return !now.handleOpen;
    case Control::update:
        return now.handleOpen && !now.updatePressed && !logUnderWay && (now.imageThere || logOver);
    case Control::log:
        return now.handleOpen && !now.pair && now.logKeyPressed && !now.awaitsForEver && !now.updatePressed &&
               !now.logPressed;
    case Control::stop:
        return logUnderWay;
    }
    return false;
}

bool mustBeEnabled(Control control, const Observed& now)
{
    return control == Control::connect && !now.handleOpen;
}

const char* objectNameOf(Control control)
{
    switch (control) {
    case Control::connect:
        return "connect_button";
    case Control::update:
        return "updateDeviceButton";
    case Control::log:
        return "downloadLogFile";
    case Control::stop:
        return "stopDownloadingFile";
    }
    return "";
}
