#pragma once

class QCoreApplication;

/// The signals that end a program on log-out, on Ctrl+C or when its terminal closes: SIGTERM, SIGINT and
/// SIGHUP. They end this one just as closing its window does. A signal that is ignored at the start (nohup)
/// stays ignored. A second signal of the same kind ends the process at once; one of another kind does not, as
/// a log-out sends SIGTERM and SIGHUP together. Windows has none of them.
namespace exitsignals {

/// From now on the first of these signals calls `told`, on a separate thread, since the GUI thread may be
/// blocked. Call once, before anything else.
void listen(void (*told)());

/// Makes such a signal quit this application, even one that arrived before this call.
void quitOnSignal(QCoreApplication& application);

} // namespace exitsignals
