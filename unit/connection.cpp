#include "ui/mainwindow.h"
#include "unit/seenrecord.h"

#include <QMessageBox>

#include <hidapi.h>

#include <utility>

namespace {

/// Writes the diagnostics for the records that the search went through, up to the one that ended it.
void reportSkipped(const hid_device_info* first, const hid_device_info* end)
{
    for (const hid_device_info* record = first; record != end; record = record->next)
        if (const auto line =
                seenrecord::lineForSkipped(record->product_id, record->product_string, record->path))
            qWarning("%s", qUtf8Printable(*line));
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
    // Intentional: only this result is reset. A deck seen without its twin stays remembered, and Connect then
    // has no effect for the rest of the run.
    int result = 0;
    for (const UnitModel& model : unitModels)
        if (searchModel(model, result))
            break;
    if (result == 0)
        return;
    deckCount = 1; // so that the next press does not treat every model as a pair
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

    const seenrecord::Choice choice = seenrecord::choose(list.get(), isDeck(model), firstDeckSeen);
    reportSkipped(list.get(), choice.chosen);
    if (choice.firstDeck != nullptr)
        rememberFirstDeck(*choice.firstDeck);
    if (isDeck(model) && choice.chosen != nullptr)
        deckCount = 2; // intentional: any two decks make a pair; its model is that of the one completing it

    // A deck without its twin waits for the next model, unless a pair was already open when the search began.
    // Intentional: while one waits, no single unit of a later model is opened.
    if (!firstDeckSeen || deckCount == 2) {
        findDevice(choice.chosen, result);
        if (std::exchange(firstDeckSeen, false))
            return true;
    }
    return result == 0 && deckCount != 2;
}

/// Keeps what is needed to open the deck later: the record itself is freed with its enumeration list.
void MainWindow::rememberFirstDeck(const hid_device_info& record)
{
    firstDeckSeen = true;
    pendingDeckPath = record.path;
    *pendingDeckInfo = hid_device_info{};
    pendingDeckInfo->path = pendingDeckPath.data();
    pendingDeckInfo->product_id = record.product_id;
}
