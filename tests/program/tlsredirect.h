#pragma once

#include "tests/harness/updateserver.h"
#include "tests/program/scenario.h"
#include "tests/support/rawserver.h"
#include "tests/support/selfsigned.h"

/// Runs the program, from its start to its end, with a unit HB4 and a server that sends it from the
/// catalogue's address on to another server. That one speaks TLS, and says that the unit is up to date.
inline Outcome followRedirectToTls(Program& program)
{
    const auto tls = selfSigned();
    if (!tls)
        return Outcome("needs the package openssl");
    RawServer secure(tls);
    secure.setAnswer("/versions.txt", ok(catalogueOf("HB4", QString::number(scenario::unitVersion),
                                                     "http://any/", "http://any/")));
    RawServer plain;
    const QByteArray location = "Location: " + secure.address("/versions.txt").toUtf8();
    plain.setAnswer(cataloguePath, {{httpAnswer("302 Found", {}, {location})}});
    STEP(scenario::startWithUnit(program, plain.address({})));
    STEP(scenario::connectUnit(program));
    STEP(program.waitForBox(infoBox(text::upToDate)));
    if (secure.paths() != QStringList{"/versions.txt"})
        return Outcome("asked of the second server: " + secure.paths().join(' '));
    STEP(program.answer("Ok"));
    return scenario::leave(program);
}
