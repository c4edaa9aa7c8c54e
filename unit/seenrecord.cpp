#include "unit/seenrecord.h"

#include "unit/unittype.h"

#include <hidapi.h>

#include <algorithm>

namespace seenrecord {

namespace {

#ifdef Q_OS_LINUX
constexpr auto remedy =
    " The udev rule 70-talvex-updater.rules gives permission; after installing it, plug the unit in again.";
#else
constexpr auto remedy = "";
#endif

/// As lsusb and device managers show it: 3a5d:0a21.
QString ids(std::uint16_t productId)
{
    return QString::asprintf("%04x:%04x", unitVendorId, productId);
}

QString printable(const wchar_t* product)
{
    QString text = QString::fromWCharArray(product);
    std::replace_if(
        text.begin(), text.end(), [](QChar character) { return !character.isPrint(); }, '?');
    return text;
}

} // namespace

Kind kindOf(const wchar_t* product, const char* path)
{
    if (product == nullptr)
        return Kind::nameless;
    if (!isProductName(product))
        return Kind::foreign;
    return path == nullptr ? Kind::pathless : Kind::unit;
}

Choice choose(hid_device_info* first, bool isDeck, bool firstDeckSeen)
{
    Choice choice;
    for (hid_device_info* record = first; record != nullptr; record = record->next) {
        if (kindOf(record->product_string, record->path) != Kind::unit)
            continue;
        if (!isDeck || firstDeckSeen || choice.firstDeck != nullptr) {
            choice.chosen = record;
            break;
        }
        choice.firstDeck = record;
    }
    return choice;
}

std::optional<QString> lineForSkipped(std::uint16_t productId, const wchar_t* product, const char* path)
{
    switch (kindOf(product, path)) {
    case Kind::nameless:
        return QString("The name of device %1 cannot be read: this user seems to have no permission.%2")
            .arg(ids(productId), remedy);
    case Kind::foreign:
        return QString("Device %1 calls itself \"%2\", which is no unit's name: skipped.")
            .arg(ids(productId), printable(product));
    default:
        return std::nullopt;
    }
}

QString lineForUnopened(std::uint16_t productId)
{
    return QString("Unit %1 cannot be opened: this user has no permission, or another program has it open.%2")
        .arg(ids(productId), remedy);
}

} // namespace seenrecord
