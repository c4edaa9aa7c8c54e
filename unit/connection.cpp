#include "ui/mainwindow.h"

#include <QMessageBox>

#include <algorithm>

namespace {

/// The HID product strings that make a device acceptable, whatever its product ID is (meant so).
constexpr std::array unitProductNames{
    L"HB2",    L"HB4", L"PLT-70", L"PLT-65", L"TRK-300 L", L"TRK-300 R", L"TRK-900 L", L"TRK-900 R", L"PANEL",
    L"PANEL4", L"HBX", L"DSK-10", L"DSK-9",  L"DSK-6",     L"DSK-5",     L"LMB-1",     L"LMB-2"};

/// A record may come without product string (a unit that this user must not open, for example) or path.
bool isAcceptable(const hid_device_info& record)
{
    return record.product_string != nullptr && record.path != nullptr &&
           std::find(unitProductNames.begin(), unitProductNames.end(),
                     std::wstring_view(record.product_string)) != unitProductNames.end();
}

bool isDeck(const UnitModel& model)
{
    return model.pairMessage != nullptr;
}

struct FreeEnumeration
{
    void operator()(hid_device_info* list) const { hid_free_enumeration(list); }
};

} // namespace

void MainWindow::connectSlot()
{
    // Meant so: only this result starts anew. A deck seen without its twin stays remembered, and Connect is
    // then without effect for the rest of the run.
    int result = 0;
    for (const UnitModel& model : unitModels)
        if (searchModel(model, result))
            break;
    if (result == 0)
        return;
    deckCount = 1; // a pair that could not be opened must not send the next press down the pair's road
    QMessageBox::critical(this, tr("Error"), tr("Device is not found.\nPlease connect."));
}

/// Tries one model. True when the search is over: a unit or a pair was opened, or the pair could not be.
bool MainWindow::searchModel(const UnitModel& model, int& result)
{
    unitType = model.type;
    headerOffset = model.layout.headerOffset;
    payloadOffset = model.layout.payloadOffset;
    const std::unique_ptr<hid_device_info, FreeEnumeration> list(
        hid_enumerate(unitVendorId, model.productId));

    hid_device_info* taken = nullptr;
    for (hid_device_info* record = list.get(); record != nullptr && taken == nullptr; record = record->next) {
        if (!isAcceptable(*record))
            continue;
        if (!isDeck(model)) {
            taken = record;
        } else if (!firstDeckSeen) {
            rememberFirstDeck(*record);
        } else {
            deckCount = 2;
            findDevice(record, result);
            firstDeckSeen = false;
            return true;
        }
    }

    // A deck without its twin waits for the next model, unless a pair was open already when the search began.
    if (!firstDeckSeen || deckCount == 2) {
        findDevice(taken, result);
        if (firstDeckSeen) {
            firstDeckSeen = false;
            return true;
        }
    }
    return result == 0 && deckCount != 2;
}

/// Keeps what is needed to open the deck later: the record itself goes with its enumeration list.
void MainWindow::rememberFirstDeck(const hid_device_info& record)
{
    firstDeckSeen = true;
    pendingDeckPath = record.path;
    *pendingDeckInfo = hid_device_info{};
    pendingDeckInfo->path = pendingDeckPath.data();
}
