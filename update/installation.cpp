#include "ui/mainwindow.h"
#include "ui_mainwindow.h"
#include "unit/hidio.h"
#include "update/labeltexts.h"
#include "update/sleepinhibitor.h"
#include "update/transferprotocol.h"
#include "update/transferstate.h"

#include <QCoreApplication>
#include <QMessageBox>

#include <utility>

namespace {

using transferstate::fakeProgressTick;
using transferstate::fakeProgressValue;

constexpr int pollReadMs = 100;
constexpr int complete = 100; ///< per cent

} // namespace

/// Reads one status and acts on it. Intentional: of a pair both decks must answer, and the status of the one
/// seen first counts; a silent unit is waited for indefinitely; after an error the polling goes on, and
/// labels and bar stay as they are.
void MainWindow::waitingApplyingUpdate(int /*unused*/, unsigned char* buffer)
{
    if (hidio::read(device, buffer, pollReadMs) <= 0)
        return;
    if (deckCount == 2 && hidio::read(secondDevice, buffer, pollReadMs) <= 0)
        return;
    switch (report::statusCode(buffer, layout())) {
    case transferprotocol::installationStarted:
        showInstallationStarted();
        break;
    case transferprotocol::installationFinished:
        showInstallationFinished();
        break;
    case transferprotocol::digestDiffers:
        sleepinhibitor::release();
        openInstallationBox(false, [this] {
            QMessageBox::critical(
                this, tr("Error"),
                tr("Transfer failed. Wrong md5.\nCheck the connections between PC and the unit and to try the update again."));
        });
        break;
    case transferprotocol::installationFailed:
        sleepinhibitor::release();
        openInstallationBox(false, [this] {
            QMessageBox::critical(
                this, tr("Error"),
                tr("Updating failed. Wrong file or some internal error.\nCheck the connections between PC and the unit and to try the update again."));
        });
        break;
    default:
        break;
    }
}

void MainWindow::showInstallationStarted()
{
    ui->progressBarTransfer->setValue(complete);
    ui->labelTransfer->setText("Transfer: completed");
    ui->labelTransfer->setEnabled(false);
    ui->progressBarTransfer->setEnabled(false);
    ui->progressBarUpdate->setEnabled(true);
    ui->labelUpdate->setEnabled(true);
    ui->labelUpdate->setText(labeltexts::longestOfUpdate);
    fakeProgressActive = 1;
}

/// Intentional: the transfer's label is not touched; without an earlier "started" status it still says
/// "Transfer: in progress".
void MainWindow::showInstallationFinished()
{
    sleepinhibitor::release();
    const bool isFirst = !std::exchange(endTold, true); // shown on top of any number of errors
    fakeProgressActive = 0;
    ui->progressBarUpdate->setValue(complete);
    ui->progressBarUpdate->setEnabled(false);
    ui->labelUpdate->setText("Update: finished");
    ui->labelUpdate->setEnabled(false);
    openInstallationBox(isFirst, [this] {
        QMessageBox::information(
            this, tr("Info"),
            tr("Update installed correctly, please close program, and disconnect/power off your controller.\nWhen reconnected/power ON your device will have the latest software."));
        QCoreApplication::quit();
    });
}

/// Moves the installation's bar on by one at every second call, up to 99. Intentional: the bar creeps at its
/// own pace, because the unit reports no percentage. Intentional: the slot is called directly; nothing is
/// connected to it.
void MainWindow::updateFakeProgressSlot()
{
    constexpr int highest = 99;
    if (fakeProgressValue > highest)
        return;
    const int tick = fakeProgressTick++;
    if (tick > 0) {
        ui->progressBarUpdate->setValue(fakeProgressValue++);
        fakeProgressTick = 0;
    }
}
