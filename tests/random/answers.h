#pragma once

#include "tests/random/plan.h"
#include "tests/support/rawserver.h"

/// The paths of one run's server.
namespace path {
inline constexpr const char* image = "/bin/image.sb";
inline constexpr const char* changeLog = "/logs/unit.txt";
inline constexpr const char* mainChangeLog = "/logs/updater.txt";
} // namespace path

/// Gives the server the answers of this plan.
void setAnswers(RawServer& server, const Plan& plan);
