#include "ui/mainwindow.h"
#include "ui_mainwindow.h"
#include "unit/hidio.h"
#include "unit/report.h"
#include "unit/seenrecord.h"

#include <QMessageBox>

#include <hidapi.h>

namespace {

constexpr int firstReportMs = 1000;

/// Opens the unit of `record`; nullptr, with a line in the diagnostics, if that fails.
hid_device* openUnit(const hid_device_info& record)
{
    hid_device* const opened = hidio::open(record.path);
    if (opened == nullptr)
        qWarning("%s", qUtf8Printable(seenrecord::lineForUnopened(record.product_id)));
    return opened;
}

} // namespace

/// Opens the unit of `record`, or the pair that it completes, and announces it. Sets `result` to 0 if it was
/// opened, otherwise to 1.
void MainWindow::findDevice(hid_device_info* record, int& result)
{
    if (deckCount == 2) {
        findPair(record, result);
        return;
    }
    device = record != nullptr ? openUnit(*record) : nullptr;
    result = device != nullptr ? 0 : 1;
    if (device == nullptr)
        return;
    ui->connect_button->setEnabled(false);
    hidio::askForSerialNumber(device);
    if (readVersion(device))
        tellVersion();
    if (const UnitModel* model = findUnitModel(unitType))
        showConnected(model->connectedMessage);
    tellLogDownloader();
    startUpdateCheck();
}

void MainWindow::findPair(hid_device_info* record, int& result)
{
    hid_device* const opened = record != nullptr ? openUnit(*record) : nullptr;
    if (record != nullptr)
        device = opened;
    // Intentional: only the deck seen first must open; the one completing the pair need not.
    secondDevice = pendingDeckInfo->path != nullptr ? openUnit(*pendingDeckInfo) : nullptr;
    if (secondDevice == nullptr) {
        result = 1;
        if (opened != nullptr)
            hidio::close(opened); // a failed attempt leaves nothing open
        device = nullptr;
        return;
    }
    ui->connect_button->setEnabled(false);
    result = 0;
    hidio::askForSerialNumber(device);
    hidio::askForSerialNumber(secondDevice);
    if (readVersion(device))
        tellVersion();
    // Intentional: the version of the deck seen first is kept here, while the checker goes by that of the one
    // completing the pair.
    (void)readVersion(secondDevice);
    if (const UnitModel* model = findUnitModel(unitType); model != nullptr && model->pairMessage != nullptr)
        showConnected(model->pairMessage);
    startUpdateCheck(); // intentional: the log downloader gets no device of a pair
}

/// Takes the version from the first report, which a unit sends unasked. Intentional: a unit that sends none
/// in time has version 0. False if the read failed; the version then stays unchanged, and intentionally the
/// unit is connected all the same.
bool MainWindow::readVersion(hid_device* unit)
{
    report::Input input{};
    if (hidio::read(unit, input.data(), firstReportMs) < 0) {
        qErrnoWarning("Can't read current version\n");
        return false;
    }
    currentVersion = report::firmwareVersion(input, unitType);
    return true;
}

void MainWindow::showConnected(const char* message)
{
    QMessageBox::information(this, tr("Info"), tr(message));
}
