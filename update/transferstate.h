#pragma once

class QTimer;

/// What the transfer keeps once for the whole program. GUI thread only.
namespace transferstate {

inline QTimer* transferTimer = nullptr; ///< 1 ms per tick; null while no transfer runs; owned here
inline int fakeProgressValue = 0; ///< next value of the installation's bar; intentional: never starts anew
inline int fakeProgressTick = 0;  ///< divides the ticks by two

} // namespace transferstate
