#pragma once

#include <QString>
#include <QStringList>

#include <vector>

/// What a program sees of units through the HID library's libusb flavour. The same table is used for the
/// real bus, in a guest system (tests/usb), and for the virtual one, which must behave alike.
struct Observation
{
    const char* name;
    const char* scene;    ///< the scene of hidobserver
    QStringList units;    ///< options, as for the virtual library and talvex-gadget
    QStringList expected; ///< the observer's lines
};

/// All observations that do not depend on the user.
[[nodiscard]] std::vector<Observation> allObservations();

/// An hb4 unit that the user is not permitted to open; the unit itself is not aware of that.
[[nodiscard]] Observation forbiddenUnit();
