#pragma once

#include "unit/hidhandle.h"

#include <QString>

#include <cstdint>
#include <optional>

/// What the search for a unit makes of the records that the HID library lists under a unit's IDs, and what
/// the diagnostics say of a unit that is present but cannot be used. Meant for whoever helps the user: the
/// window says only that no unit was found.
namespace seenrecord {

/// What the search does with the records listed for one model.
struct Choice
{
    hid_device_info* chosen = nullptr;    ///< a single unit, or the deck that completes a pair; ends the walk
    hid_device_info* firstDeck = nullptr; ///< a deck that has to wait for its twin
};

/// Walks the records from `first` on, in their order. `isDeck`: they are decks, `firstDeckSeen`: one of the
/// two was seen before. The records stay those of the list.
[[nodiscard]] Choice choose(hid_device_info* first, bool isDeck, bool firstDeckSeen);

/// How a record looks before anything is opened.
enum class Kind {
    unit,     ///< may be opened
    nameless, ///< no product string: in the libusb flavour a unit that this user may not open
    foreign,  ///< a product string that no unit has
    pathless, ///< a unit's product string, but nothing to open it by
};

/// `product` and `path` are the record's own fields; nullptr where it has none.
[[nodiscard]] Kind kindOf(const wchar_t* product, const char* path);

/// The line for a record that the search skips, without a line end; nothing where there is nothing to say.
/// The device writes `product`: what cannot be printed becomes "?".
[[nodiscard]] std::optional<QString> lineForSkipped(std::uint16_t productId, const wchar_t* product,
                                                    const char* path);

/// The line for a unit whose opening failed.
[[nodiscard]] QString lineForUnopened(std::uint16_t productId);

} // namespace seenrecord
