#pragma once

class QTimer;

/// The transfer's state that exists once in the program. GUI thread only.
namespace transferstate {

inline QTimer* transferTimer = nullptr; ///< 1 ms per tick; null while no transfer runs; owned here
inline int fakeProgressValue = 0;       ///< next value of the installation's bar; intentional: never reset
inline int fakeProgressTick = 0;        ///< makes only every second tick count

} // namespace transferstate
