#pragma once

#include "unit/hidhandle.h"
#include "unit/unittype.h"

#include <QByteArray>
#include <QFile>
#include <QMainWindow>
#include <QString>

#include <array>
#include <cstdint>
#include <functional>
#include <initializer_list>
#include <memory>
#include <string>

class LogDownloader;
class QThread;
class Ui_MainWindow;
class UpdateChecker;
class WindowScale;

/// The only window, and the owner of all state of the connection to a unit. Lives on the GUI thread; its
/// slots are defined in the folders of the subsystems they belong to.
class MainWindow : public QMainWindow
{
    Q_OBJECT

public:
    explicit MainWindow(QWidget* parent = nullptr);
    ~MainWindow() override;
    Q_DISABLE_COPY_MOVE(MainWindow)

    /// What the window leaves for the program's end: it stops no thread and closes no unit itself.
    struct Leftovers
    {
        QThread* worker = nullptr;        ///< runs the log downloader; never deleted
        UpdateChecker* checker = nullptr; ///< has its own thread while waiting for answers; never deleted
    };
    [[nodiscard]] Leftovers leftovers() const;

signals:
    void needDownloadNewFirmware();
    void needDownloadNewMainFirmware();
    void notNeedDownloadNewFirmware();
    void needDataCompleted(int type);

public slots: // in the order of the meta-object
    // update/offer.cpp
    void onFindNewVersion(QString newVersion, QString detailText);
    void onFindMainNewVersion(QString newVersion, QString detailText);
    void onChangeUpdateFileName(QString filename);
    void onStartDownloadMainUpdate();
    // log/logcontrols.cpp
    void dataCompleted(int type);
    void onLogDownloadFinished();
    // unit/connection.cpp
    void connectSlot();
    // update/transfer.cpp
    void updateDevice();
    void transmitSlot();
    // log/logcontrols.cpp
    void timerSlot();
    // update/installation.cpp
    void updateFakeProgressSlot();
    // update/offer.cpp
    void onYouHaveLastVersion();
    void onYouHaveProblem(QString, QString msg2);
    // log/logcontrols.cpp
    void on_downloadLogFile_pressed();
    void on_stopDownloadingFile_pressed();

protected:
    // ui/mainwindow.cpp
    void closeEvent(QCloseEvent* event) override;
    // log/logcontrols.cpp
    void keyPressEvent(QKeyEvent* event) override;

private:
    // ui/mainwindow.cpp
    void startLogWorker();
    void connectAll();
    void setStartingState();
    void tellVersion();
    void tellLogDownloader();
    void startUpdateCheck();
    [[nodiscard]] bool mayOfferLog() const;
    [[nodiscard]] bool mayBeSent(const QByteArray& image) const;
    [[nodiscard]] ReportLayout layout() const { return {headerOffset, payloadOffset}; }

    // unit/connection.cpp
    [[nodiscard]] bool searchModel(const UnitModel& model, int& result);
    void rememberFirstDeck(const hid_device_info& record);

    // unit/identification.cpp
    void findDevice(hid_device_info* record, int& result);
    void findPair(hid_device_info* record, int& result);
    [[nodiscard]] bool readVersion(hid_device* unit);
    void showConnected(const char* message);

    // update/transfer.cpp
    [[nodiscard]] bool readImage();
    void startTransfer();
    void startTransferOfPair();
    void refuseTransfer(std::initializer_list<unsigned char> statuses);
    void abandonTransfer(const QString& text);
    void endTransferPhase();
    void transferRequest(int, unsigned char* buffer); // intentional: int is not used, nor in the next two
    void writeRequest(hid_device* unit, const unsigned char* request);
    void transfer(unsigned char* buffer, int);

    // update/installation.cpp
    void waitingApplyingUpdate(int, unsigned char* buffer);
    void showInstallationStarted();
    void showInstallationFinished();

    // update/installationboxes.cpp
    void openInstallationBox(bool always, const std::function<void()>& showBox);

    // update/offer.cpp
    enum class Answer { yes, no, neither };
    [[nodiscard]] static Answer offer(const QString& text, const QString& changeLog);
    void reportUnansweredOffer();

    std::unique_ptr<Ui_MainWindow> ui;
    std::unique_ptr<WindowScale> scale; ///< declared after ui, which it reads
    UpdateChecker* updateChecker;       ///< lives until the process ends, like the next one
    LogDownloader* logDownloader;       ///< lives on the worker thread
    std::uint8_t currentVersion = 0;
    QFile updaterFile; ///< the image to send
    QByteArray firmwareData;
    int transferStarted = 0;    ///< 1: the unit has accepted the transfer
    int applyingPhase = 0;      ///< 1: ticks follow the installation
    int requestSent = 0;        ///< 1: the transfer request has been written
    int updateSize = 1;         ///< bytes of the image being sent
    int packetNumber = 0;       ///< data packets sent so far
    int fakeProgressActive = 0; ///< 1: the installation's bar is creeping
    // Of a pair, device is the deck completing it, and secondDevice the one seen first.
    hid_device* device = nullptr;
    hid_device* secondDevice = nullptr;
    std::unique_ptr<hid_device_info> pendingDeckInfo; ///< the deck seen first: product ID and path
    std::uint8_t deckCount = 1;
    bool firstDeckSeen = false;
    std::array<unsigned char, 25> reserveBlock{}; ///< intentional: zeroed, not used
    UnitType unitType = UNIT_HB4;
    std::uint8_t headerOffset = 0;
    std::uint8_t payloadOffset = 0;
    bool logAckPending = false; ///< timerSlot acknowledges a log part; intentional: nothing sets it
    std::string pendingDeckPath;
    bool updateBegun = false;  ///< Update Device has been pressed
    bool problemShown = false; ///< a problem's box is or was open; the program ends with it
    bool endTold = false;      ///< the box for a finished installation has been requested
    int installationBoxes = 0; ///< boxes of the installation phase requested and not yet dismissed
};
