#pragma once

class QCoreApplication;

/// The signals by which a log-out, Ctrl+C or a closed terminal ends a program: SIGTERM, SIGINT and SIGHUP.
/// They end this one as closing its window does. One that is ignored at the start (nohup) stays ignored. A
/// second one of the same kind ends the process at once; one of another kind does not, as a log-out sends
/// SIGTERM and SIGHUP together. Windows has none of them.
namespace exitsignals {

/// From now on the first of these signals calls `told`, on a thread of its own: the GUI thread may be
/// blocked. Call once, before anything else.
void listen(void (*told)());

/// Has such a signal quit this application, also one that came before.
void quitOnSignal(QCoreApplication& application);

} // namespace exitsignals
