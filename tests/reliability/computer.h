#pragma once

/// What the computer under the program does to it. This process, Linux.
namespace computer {

/// The wall clock is set this many seconds forward, or back. Time that only runs forward is left alone.
void setClock(long seconds);

/// Sleeps for so long, as a laptop does: no thread of the process runs meanwhile.
void suspend(int ms);

/// The process is gone at once.
void kill();

/// The process is asked to end, as at a logout, and has not arranged for it: it is gone at once, too.
void endSession();

/// No file grows beyond this size from now on: the disk is full.
void fillDisk(unsigned long bytes);

/// The program's directory takes no new file, and nothing in it can be renamed, also for root.
void makeDirectoryReadOnly();

} // namespace computer
