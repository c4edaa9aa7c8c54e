#pragma once

/// What the computer does to the program. Affects this process only; Linux.
namespace computer {

/// Sets the wall clock forward (or back, if negative) by this many seconds. Monotonic clocks are not
/// affected.
void setClock(long seconds);

/// Suspends the whole process for this long, like a laptop going to sleep: none of its threads runs.
void suspend(int ms);

/// Kills the process immediately.
void kill();

/// Asks the process to end, as at a logout. With no handler installed, this kills it immediately, too.
void endSession();

/// Simulates a full disk: from now on no file can grow beyond this size, in bytes.
void fillDisk(unsigned long bytes);

/// Makes the program's directory read-only, even for root: no file can be created or renamed in it.
void makeDirectoryReadOnly();

} // namespace computer
