#pragma once

/// Keeps the computer awake while a unit is being updated: on Linux with logind's inhibitor lock "sleep:idle"
/// (org.freedesktop.login1.Manager.Inhibit), elsewhere with the platform's own call. If that fails, the
/// update runs anyway, with a line in the diagnostics. GUI thread; never blocks.
namespace sleepinhibitor {

/// Call before anything is registered with atexit(): exit() waits for the same threads as hold() does,
/// perhaps indefinitely, and waits last for what was created first.
void prepare();

/// From now on the computer stays awake. No effect if already held.
void hold();

/// The computer may sleep again. No effect if nothing is held. The end of the process does the same.
void release();

} // namespace sleepinhibitor
