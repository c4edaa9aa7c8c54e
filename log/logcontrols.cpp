#include "log/logdownloader.h"
#include "log/logprotocol.h"
#include "ui/mainwindow.h"
#include "ui_mainwindow.h"

#include <QCoreApplication>
#include <QKeyEvent>
#include <QMessageBox>

namespace {

bool only_one_time = false; ///< the closing box has been shown; once per run

} // namespace

/// Intentional: only Ctrl+Shift+L offers the log, as it is meant for support staff.
void MainWindow::keyPressEvent(QKeyEvent* event)
{
    if (event->key() != Qt::Key_L || event->modifiers() != (Qt::ControlModifier | Qt::ShiftModifier)) {
        QMainWindow::keyPressEvent(event);
    } else if (mayOfferLog()) {
        ui->downloadLogFile->setEnabled(true);
        ui->downloadLogFile->show();
    }
}

void MainWindow::on_downloadLogFile_pressed()
{
    static bool downloadStarted = false; // intentional: one log per run
    ui->stopDownloadingFile->setEnabled(true);
    ui->downloadLogFile->setEnabled(false);
    ui->updateDeviceButton->setEnabled(false);
    ui->stopDownloadingFile->show();
    if (downloadStarted)
        return;
    downloadStarted = true;
    logDownloader->startDownload(logprotocol::requestNumber);
}

/// Intentional: enables Update Device, whether there is an image or not.
void MainWindow::on_stopDownloadingFile_pressed()
{
    ui->stopDownloadingFile->setEnabled(false);
    ui->updateDeviceButton->setEnabled(true);
    ui->progressBarTransfer->setValue(0);
    logDownloader->stopTransfer();
    logDownloader->dumpFile(); // intentional: requests the closing box again; it is shown once
}

/// Intentional: every end of a log download, good or bad, shows this box and ends the program.
void MainWindow::onLogDownloadFinished()
{
    if (only_one_time)
        return;
    only_one_time = true;
    ui->stopDownloadingFile->setEnabled(false);
    ui->updateDeviceButton->setEnabled(true);
    ui->progressBarTransfer->setValue(0);
    QMessageBox::information(this, tr("Info"),
                             tr("Download log file is complete.\nYou can find it in program directory."));
    QCoreApplication::quit();
}

/// Intentional: nothing is connected to this relay.
void MainWindow::dataCompleted(int type)
{
    emit needDataCompleted(type);
}

/// Intentional: nothing is connected to this slot, and nothing sets the flag.
void MainWindow::timerSlot()
{
    if (!logAckPending)
        return;
    logDownloader->dataCompleted(0);
    logAckPending = false;
}
