#include "base/sizelimit.h"
#include "ui/mainwindow.h"
#include "ui_mainwindow.h"
#include "unit/hidio.h"
#include "update/sleepinhibitor.h"
#include "update/transferprotocol.h"
#include "update/transferstate.h"

#include <QCryptographicHash>
#include <QMessageBox>
#include <QTimer>

#include <algorithm>

namespace {

using transferprotocol::PacketKind;
using transferstate::transferTimer;

constexpr int tickMs = 1;
constexpr int acceptanceReadMs = 1;

} // namespace

/// Begins an update. Intentional: a second press, while the timer exists, only stops it.
void MainWindow::updateDevice()
{
    updateBegun = true;
    ui->updateDeviceButton->setEnabled(false);
    ui->downloadLogFile->setEnabled(false);
    if (transferTimer != nullptr)
        transferTimer->stop(); // before a box can open: no protocol step is made under one
    if (!readImage() || !mayBeSent(firmwareData)) {
        QMessageBox::critical(this, tr("Error"),
                              tr("File updater is not found.\nCheck the HD free space and try again."));
        applyingPhase = 1; // intentional: the timer starts anyway and only polls the installation
    }
    if (transferTimer != nullptr) {
        sleepinhibitor::release();
        transferTimer->disconnect(this);
        delete transferTimer;
        transferTimer = nullptr;
        return;
    }
    transferTimer = new QTimer;
    connect(transferTimer, SIGNAL(timeout()), this, SLOT(transmitSlot()));
    transferTimer->start(tickMs);
    if (applyingPhase == 0)
        sleepinhibitor::hold();
}

/// Reads the whole image. False if the file cannot be opened or read, or is empty or too large.
bool MainWindow::readImage()
{
    firmwareData.clear();
    if (updaterFile.open(QIODevice::ReadOnly) && updaterFile.size() <= sizeLimit)
        firmwareData = updaterFile.readAll();
    const bool whole = updaterFile.error() == QFile::NoError && firmwareData.size() == updaterFile.size();
    updaterFile.close();
    return whole && !firmwareData.isEmpty();
}

void MainWindow::transmitSlot()
{
    std::array<unsigned char, report::outputLength> buffer{};
    if (fakeProgressActive == 1)
        updateFakeProgressSlot();
    if (applyingPhase != 0) {
        waitingApplyingUpdate(0, buffer.data());
        return;
    }
    if (transferStarted == 0)
        startTransfer(); // intentional: an answer counts even before the request
    if (requestSent == 0)
        transferRequest(0, buffer.data());
    else if (transferStarted == 1)
        transfer(buffer.data(), 0);
}

/// Looks once for the unit's answer to the request. Boxes opened here stop the ticks: one box, then its state
/// change.
void MainWindow::startTransfer()
{
    if (deckCount == 2) {
        startTransferOfPair();
        return;
    }
    report::Input input{};
    if (hidio::read(device, input.data(), acceptanceReadMs) <= 0)
        return;
    const unsigned char status = report::statusCode(input.data(), layout());
    if (status == transferprotocol::transferAccepted) {
        transferStarted = 1;
        ui->progressBarTransfer->setEnabled(true);
        ui->progressBarTransfer->setValue(0);
        ui->labelTransfer->setText("Transfer: in progress");
        ui->labelTransfer->setEnabled(true);
    }
    refuseTransfer({status});
}

/// Intentional: either deck may accept or refuse, but only when both have answered in one tick; and neither
/// the bar nor the label is touched.
void MainWindow::startTransferOfPair()
{
    report::Input first{};
    report::Input second{};
    const int firstResult = hidio::read(device, first.data(), acceptanceReadMs);
    const int secondResult = hidio::read(secondDevice, second.data(), acceptanceReadMs);
    if (firstResult <= 0 || secondResult <= 0)
        return;
    const unsigned char firstStatus = report::statusCode(first.data(), layout());
    const unsigned char secondStatus = report::statusCode(second.data(), layout());
    if (firstStatus == transferprotocol::transferAccepted ||
        secondStatus == transferprotocol::transferAccepted)
        transferStarted = 1;
    refuseTransfer({firstStatus, secondStatus});
}

/// Reports a status that refuses the transfer, and leaves the transfer phase. Intentional: the texts
/// keep their odd "and to try".
void MainWindow::refuseTransfer(std::initializer_list<unsigned char> statuses)
{
    const auto anyIs = [statuses](unsigned char code) {
        return std::find(statuses.begin(), statuses.end(), code) != statuses.end();
    };
    if (anyIs(transferprotocol::transferTimedOut))
        abandonTransfer(tr(
            "Transfer timeout failed.\nCheck the connections between PC and the unit and to try the update again."));
    if (anyIs(transferprotocol::packetsSkipped))
        abandonTransfer(tr(
            "Transfer failed. Packets skipped.\nCheck the connections between PC and the unit and to try the update again."));
}

void MainWindow::abandonTransfer(const QString& text)
{
    sleepinhibitor::release();
    QMessageBox::critical(this, tr("Error"), text);
    endTransferPhase();
}

/// From the next tick on, follows the installation. Intentional: even after an error.
void MainWindow::endTransferPhase()
{
    transferStarted = 0;
    applyingPhase = 1;
    packetNumber = 0;
}

/// Announces the image by its digest. Intentional: written once, with no time-out on the answer.
void MainWindow::transferRequest(int /*unused*/, unsigned char* buffer)
{
    updateSize = firmwareData.size();
    const QByteArray digest = QCryptographicHash::hash(firmwareData, QCryptographicHash::Md5).toHex();
    const report::Output request = transferprotocol::buildTransferRequest(layout(), digest);
    std::copy(request.begin(), request.end(), buffer);
    writeRequest(device, buffer);
    if (deckCount == 2)
        writeRequest(secondDevice, buffer);
}

void MainWindow::writeRequest(hid_device* unit, const unsigned char* request)
{
    if (hidio::write(unit, request) != hidio::failed) {
        requestSent = 1;
        return;
    }
    sleepinhibitor::release();
    QMessageBox::critical(this, tr("Error HID device"),
                          // intentional: not translated
                          "Check the connections between PC and the unit and to try the update again.");
    applyingPhase = 1;
}

/// Writes the next packet.
void MainWindow::transfer(unsigned char* buffer, int /*unused*/)
{
    ui->progressBarTransfer->setValue(transferprotocol::transferPercent(packetNumber, updateSize));
    ++packetNumber;
    const auto number = static_cast<std::uint32_t>(packetNumber);
    const PacketKind kind = transferprotocol::packetKind(updateSize, packetNumber);
    const transferprotocol::ImageBytes bytes = transferprotocol::packetBytes(firmwareData, packetNumber);
    const report::Output packet = kind == PacketKind::final
                                      ? transferprotocol::buildFinalPacket(layout(), number, bytes)
                                      : transferprotocol::buildDataPacket(layout(), number, bytes);
    std::copy(packet.begin(), packet.end(), buffer);
    if (kind != PacketKind::full)
        endTransferPhase();
    if (kind == PacketKind::behindTheEnd) // intentional: its packet is still written; the advice is a button
        QMessageBox::critical(this, tr("Error"), tr("Cannot read from file updater"),
                              tr("Check the HD free space and try again."), QString(), QString(), 0, -1);
    const int written = hidio::write(device, buffer);
    if (deckCount == 2)
        hidio::write(secondDevice, buffer);
    else if (written == hidio::failed)
        hidio::write(device, buffer); // intentional: once more, whatever the result; nothing else is resent
}
