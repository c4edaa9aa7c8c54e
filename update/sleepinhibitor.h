#pragma once

/// Keeps the computer awake while a unit is being written: on Linux by logind's inhibitor lock "sleep:idle"
/// (org.freedesktop.login1.Manager.Inhibit), elsewhere by the platform's own call. An update runs all the
/// same where that fails, with a line in the diagnostics. GUI thread; never waits.
namespace sleepinhibitor {

/// From now on the computer stays awake. Without effect while it is held already.
void hold();

/// The computer may sleep again. Without effect while nothing is held. The end of the process does the same.
void release();

} // namespace sleepinhibitor
