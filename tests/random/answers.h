#pragma once

#include "tests/random/plan.h"
#include "tests/support/cataloguetext.h"
#include "tests/support/rawserver.h"

/// Gives the server the answers of this plan.
void setAnswers(RawServer& server, const Plan& plan);
