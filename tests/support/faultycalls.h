#pragma once

#include <functional>
#include <string>
#include <vector>

/// Intercepts the C library's file calls in this process (Linux) and makes some of them fail, as with a full
/// disk, a broken disk or a sudden end of the process. Writes to anything but regular files, and to the
/// standard streams, are not affected. Only one thread may use files meanwhile.
namespace faultycalls {

enum class Call { write, fsync, unlink, rename };

/// Makes the nth call of this kind from now on, counted from 1, fail with this errno and do nothing else.
/// Only one such failure can be set per kind.
void fail(Call call, int nth, int error);

/// Makes the next write report success but store what `kept` returns for its bytes.
void spoil(std::function<std::string(std::string)> kept);

/// Kills the process (SIGKILL) before the nth call of any kind from now on; if that call is a write, half of
/// it is done first.
void kill(int nth);

/// The calls since the last clear(), in order, including those that failed.
[[nodiscard]] std::vector<Call> calls();

/// Makes all calls work again.
void clear();

} // namespace faultycalls
