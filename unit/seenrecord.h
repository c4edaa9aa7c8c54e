#pragma once

#include "unit/hidhandle.h"

#include <QString>

#include <cstdint>
#include <optional>

/// How the search for a unit treats the records that the HID library lists under a unit's IDs, and what the
/// diagnostics say about a unit that is present but cannot be used. The latter is for whoever helps the user:
/// the window only says that no unit was found.
namespace seenrecord {

/// What the search does with the records listed for one model.
struct Choice
{
    hid_device_info* chosen = nullptr; ///< a single unit, or the deck that completes a pair; ends the search
    hid_device_info* firstDeck = nullptr; ///< the deck seen first, which must wait for its twin
};

/// Goes through the records from `first`, in order. `isDeck`: they are decks; `firstDeckSeen`: another
/// deck was seen before. The list keeps its records.
[[nodiscard]] Choice choose(hid_device_info* first, bool isDeck, bool firstDeckSeen);

/// What a record is, as far as can be told before anything is opened.
enum class Kind {
    unit,     ///< can be opened
    nameless, ///< no product string: in the libusb flavour, a unit that this user may not open
    foreign,  ///< a product string that no unit has
    pathless, ///< a unit's product string, but no path to open it
};

/// `product` and `path` are the record's own fields; nullptr where it has none.
[[nodiscard]] Kind kindOf(const wchar_t* product, const char* path);

/// The line for a record that the search skips, without a line end; nothing if there is nothing to say.
/// `product` comes from the device: unprintable characters become "?".
[[nodiscard]] std::optional<QString> lineForSkipped(std::uint16_t productId, const wchar_t* product,
                                                    const char* path);

/// The line for a unit that could not be opened.
[[nodiscard]] QString lineForUnopened(std::uint16_t productId);

} // namespace seenrecord
