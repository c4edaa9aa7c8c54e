#include "ui/mainwindow.h"

#include "log/logdownloader.h"
#include "log/logoffer.h"
#include "net/updatechecker.h"
#include "ui/windowscale.h"
#include "ui_mainwindow.h"
#include "update/imagestore.h"

#include <QCloseEvent>
#include <QCoreApplication>
#include <QThread>

#include <hidapi.h>

namespace {

struct Connection
{
    const QObject* sender;
    const char* signal;
    const QObject* receiver;
    const char* slot;
};

void connectChecked(const Connection& connection)
{
    if (!QObject::connect(connection.sender, connection.signal, connection.receiver, connection.slot))
        qFatal("not connected: %s to %s", connection.signal, connection.slot);
}

} // namespace

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent), ui(std::make_unique<Ui_MainWindow>()), updaterFile(ImageStore::imagePath())
{
    ui->setupUi(this);
    scale = std::make_unique<WindowScale>(*this, *ui);
    pendingDeckInfo = std::make_unique<hid_device_info>();
    // Intentional: these two live until the process ends; a reply or a read may still be under way.
    updateChecker = new UpdateChecker;
    logDownloader = new LogDownloader(device, nullptr);
    startLogWorker();
    connectAll();
    setStartingState();
}

MainWindow::~MainWindow() = default;

/// Ends the program at once: when the last window closes, Qt itself posts an event, which a box opening at
/// that moment would swallow and then remain on its own.
void MainWindow::closeEvent(QCloseEvent* event)
{
    QMainWindow::closeEvent(event);
    QCoreApplication::quit();
}

MainWindow::Leftovers MainWindow::leftovers() const
{
    return {logDownloader->thread(), updateChecker};
}

void MainWindow::startLogWorker()
{
    auto* worker = new QThread; // lives until the process ends: it may be blocked in a read
    logDownloader->moveToThread(worker);
    // clang-format off
    connectChecked({worker, SIGNAL(started ()), logDownloader, SLOT(process ())}); // blanks included
    // clang-format on
    worker->start(QThread::InheritPriority);
}

// The signatures in this table are passed on with their blanks.
// clang-format off

/// Connections 2 to 20, in order; startLogWorker has made the first.
void MainWindow::connectAll()
{
    const std::array<Connection, 19> connections{{
        {ui->connect_button,     SIGNAL(clicked()), this, SLOT(connectSlot())},
        {ui->updateDeviceButton, SIGNAL(clicked()), this, SLOT(updateDevice())},
        {updateChecker, SIGNAL(findMainNewVersion(QString,QString)), this, SLOT(onFindMainNewVersion(QString, QString))},
        {updateChecker, SIGNAL(findNewVersion(QString,QString)),     this, SLOT(onFindNewVersion(QString, QString))},
        {updateChecker, SIGNAL(downloadProgress(int)),    ui->progressBarTransfer, SLOT(setValue(int))},
        {logDownloader, SIGNAL(logDownloadProgress(int)), ui->progressBarTransfer, SLOT(setValue(int))},
        {logDownloader, SIGNAL(logDownloadFinished()), this,          SLOT(onLogDownloadFinished())},
        {logDownloader, SIGNAL(needwaitLogFileMd5()),  logDownloader, SLOT(waitLogFileMd5())},
        {logDownloader, SIGNAL(needreadLogPart()),     logDownloader, SLOT(readLogPart())},
        // To the downloader itself: a direct call on the worker thread, as the log exchange requires.
        {logDownloader, SIGNAL(needdataCompleted(int)), logDownloader, SLOT(dataCompleted(int))},
        {logDownloader, SIGNAL(needresendMessage(int)), logDownloader, SLOT(resendMessage(int))},
        {this,          SIGNAL(needDataCompleted(int)), logDownloader, SLOT(dataCompleted(int))},
        {updateChecker, SIGNAL(newUpdateFileDownloaded(bool)), ui->updateDeviceButton, SLOT(setEnabled(bool))},
        {updateChecker, SIGNAL(youHaveLastVersion()),            this, SLOT(onYouHaveLastVersion())},
        {updateChecker, SIGNAL(youHaveProblem(QString,QString)), this, SLOT(onYouHaveProblem(QString,QString))},
        {updateChecker, SIGNAL(changeUpdateFileName(QString)),   this, SLOT(onChangeUpdateFileName(QString))},
        {updateChecker, SIGNAL(startDownloadMainUpdate()),       this, SLOT(onStartDownloadMainUpdate())},
        {this, SIGNAL(needDownloadNewFirmware()),     updateChecker, SLOT(onNeedDownloadNewFirmware())},
        {this, SIGNAL(needDownloadNewMainFirmware()), updateChecker, SLOT(onNeedDownloadNewMainFirmware())},
    }};
    for (const Connection& connection : connections)
        connectChecked(connection);
}

// clang-format on

/// Intentional: the labels' texts are not translated, unlike the buttons'.
void MainWindow::setStartingState()
{
    ui->updateDeviceButton->setEnabled(false);
    ui->progressBarTransfer->setEnabled(false);
    ui->labelTransfer->setText("Transfer:");
    ui->labelTransfer->setEnabled(false);
    ui->progressBarUpdate->setEnabled(false);
    ui->labelUpdate->setText("Update:");
    ui->labelUpdate->setEnabled(false);
    ui->stopDownloadingFile->hide();
    ui->downloadLogFile->hide();
    ui->downloadLogFile->setEnabled(false);
}

void MainWindow::tellVersion()
{
    updateChecker->setCurVersion(currentVersion);
    updateChecker->setCurVersion(QString::number(currentVersion, 10));
}

void MainWindow::tellLogDownloader()
{
    logDownloader->setDevice(device, unitType);
}

void MainWindow::startUpdateCheck()
{
    updateChecker->setUnitType(unitType);
    updateChecker->checkUpdate();
}

/// A service file, placed by hand, is sent whatever it holds.
bool MainWindow::mayBeSent(const QByteArray& image) const
{
    if (updaterFile.fileName() != ImageStore::imagePath() || updateChecker->mayBeSent(image))
        return true;
    qWarning("The image on the disk is not the one that was downloaded");
    return false;
}

bool MainWindow::mayOfferLog() const
{
    return logoffer::isAllowed({.unitIsOpen = device != nullptr,
                                .isPair = deckCount == 2,
                                .updateHasBegun = updateBegun,
                                .logHasBegun = !ui->stopDownloadingFile->isHidden(),
                                .answerIsAwaited = updateChecker->isBusy()});
}
