#pragma once

#include <QString>
#include <QStringList>

#include <vector>

/// What a program sees of units through the HID library's libusb flavour. One table for the real bus, in a
/// guest system of its own (tests/usb), and for the virtual one, which has to be like it.
struct Observation
{
    const char* name;
    const char* scene;    ///< of hidobserver
    QStringList units;    ///< each as for the virtual library and for talvex-gadget
    QStringList expected; ///< the observer's lines
};

/// All that do not depend on the user.
[[nodiscard]] std::vector<Observation> allObservations();

/// A unit of the model hb4 that the user must not open; the unit itself knows nothing of it.
[[nodiscard]] Observation forbiddenUnit();
