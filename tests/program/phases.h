#pragma once

#include "tests/program/scenario.h"

#include <vector>

/// How far the program has come when its end begins.
struct Phase
{
    const char* name;
    const char* fault; ///< of the unit, as an option
    scenario::Deed reach;
    bool isUnderABox = false; ///< which keeps the window from being closed
    int imageSize = 6000;     ///< of the image that the server offers
};

[[nodiscard]] inline const std::vector<Phase>& phases()
{
    using namespace scenario;
    const auto doNothing = [](Program&) { return Outcome(); };
    const auto seeConnectionsBox = [](Program& program) {
        STEP(program.press("connect_button"));
        return program.waitForBox(infoBox(models::hb4.connected));
    };
    const auto download = [](Program& program) { return connectAndDownload(program); };
    const auto seeRefusal = [](Program& program) {
        STEP(pressUpdate(program));
        return program.waitFor("the box", &View::hasBox);
    };
    static const std::vector<Phase> all{
        {"right after the start", "", doNothing},
        {"under the connection's box", "", seeConnectionsBox, true},
        {"under the offer", "", seeOffer, true},
        {"after a declined offer", "", declineOffer},
        {"with an image to send", "", download},
        {"while the unit does not answer", ",fault=never-answers", pressUpdate},
        {"under a refusal's box", ",fault=refuses-timeout", seeRefusal, true},
        {"in the middle of the transfer", "", streamImage, false, longOnItsWay},
        {"during the installation", silentInstallation, install},
    };
    return all;
}

/// Starts the program with a unit HB4 plugged in, and brings it into the phase.
[[nodiscard]] inline Outcome reachPhase(const Phase& phase, Program& program, UpdateServer& server)
{
    STEP(scenario::publish(server, imageOf(phase.imageSize)));
    STEP(scenario::startWithUnit(program, server.proxy(), phase.fault));
    return phase.reach(program);
}

Q_DECLARE_METATYPE(Phase)
