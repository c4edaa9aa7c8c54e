#pragma once

#include <functional>
#include <string>
#include <vector>

/// Stands before the C library's file calls of this process (Linux) and lets some of them go wrong, as a full
/// disk, a broken one or a sudden end would. Writes to anything but regular files are left alone, and so are
/// the standard streams. Only one thread may use files meanwhile.
namespace faultycalls {

enum class Call { write, fsync, unlink, rename };

/// The nth call of this kind from now on, counted from 1, does nothing but fail with this errno. One plan for
/// each kind.
void fail(Call call, int nth, int error);

/// The next write reports success, and this is what the disk keeps of its bytes.
void spoil(std::function<std::string(std::string)> kept);

/// The process is killed (SIGKILL) before the nth call of any kind from now on; a write is half done then.
void kill(int nth);

/// The calls since the last clear(), in order, also those that failed.
[[nodiscard]] std::vector<Call> calls();

/// Everything works again.
void clear();

} // namespace faultycalls
