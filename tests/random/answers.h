#pragma once

#include "tests/random/plan.h"
#include "tests/support/cataloguetext.h"
#include "tests/support/rawserver.h"

/// Sets up the server with the plan's answers.
void setAnswers(RawServer& server, const Plan& plan);
