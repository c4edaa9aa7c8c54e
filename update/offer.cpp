#include "base/shownversion.h"
#include "base/updaterversion.h"
#include "ui/mainwindow.h"
#include "ui_mainwindow.h"
#include "update/labeltexts.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QTextEdit>

namespace {

/// Of a change log, in UTF-16 units: far more than any has, and what Qt still lays out within a second, even
/// if all of it is one line or nothing but line ends.
constexpr int mostShown = 100'000;

QString shownPart(const QString& changeLog)
{
    return changeLog.size() <= mostShown ? changeLog : changeLog.left(mostShown) + "\n[...]";
}

} // namespace

/// Shows an offer and its change log. Neither: the program ended before the box was answered. Intentional:
/// the texts of offers are not translated.
MainWindow::Answer MainWindow::offer(const QString& text, const QString& changeLog)
{
    QMessageBox box;
    box.setText(text);
    box.setInformativeText("Would you like to update to latest version?");
    box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
    box.setDefaultButton(QMessageBox::Yes);
    box.setDetailedText(shownPart(changeLog));
    if (auto* const details = box.findChild<QTextEdit*>())
        details->setFocusPolicy(Qt::StrongFocus); // Qt leaves it to the mouse, but long ones need keys
    switch (box.exec()) {
    case QMessageBox::Yes:
        return Answer::yes;
    case QMessageBox::No:
        return Answer::no;
    default:
        return Answer::neither;
    }
}

/// Intentional: a version that is not a whole number, such as "1.5", is offered as 0.0, although the decision
/// uses its value.
void MainWindow::onFindNewVersion(QString newVersion, QString detailText)
{
    const Answer answer = offer("Your unit current version: " + shownVersion(currentVersion) +
                                    "\nLatest version: " + shownVersion(newVersion.toInt()),
                                detailText);
    if (answer == Answer::yes) {
        emit needDownloadNewFirmware();
        ui->labelTransfer->setEnabled(true);
        ui->labelTransfer->setText(labeltexts::longestOfTransfer);
        ui->progressBarTransfer->setEnabled(true);
    } else if (answer == Answer::neither) {
        reportUnansweredOffer();
    }
}

void MainWindow::onFindMainNewVersion(QString newVersion, QString detailText)
{
    const Answer answer = offer("Your Talvex updater version: " + shownUpdaterVersion(updaterVersion) +
                                    "\nLatest version: " + shownUpdaterVersion(newVersion.toInt()),
                                detailText);
    if (answer == Answer::yes)
        emit needDownloadNewMainFirmware();
    else if (answer == Answer::neither)
        reportUnansweredOffer();
}

void MainWindow::reportUnansweredOffer()
{
    qErrnoWarning("Bug with avaible download window\n"); // intentional spelling
    emit notNeedDownloadNewFirmware();                   // intentional: nothing is connected to it
}

void MainWindow::onChangeUpdateFileName(QString filename)
{
    updaterFile.setFileName(filename);
}

void MainWindow::onStartDownloadMainUpdate()
{
    QMessageBox::information(
        this, tr("Info"),
        tr("Wait for download new Talvex Updater.\nClose program and insall new version Talvex Updater.\nTry again update unit.")); // intentional spelling
    QCoreApplication::quit();
}

void MainWindow::onYouHaveLastVersion()
{
    QMessageBox::information(this, tr("Info"), tr("Your unit has the latest software"));
}

void MainWindow::onYouHaveProblem(QString text, QString msg2)
{
    if (problemShown) // the first problem's box ends the program; the others are in the diagnostics
        return;
    problemShown = true;
    // Intentional: a detail that is empty, not null, adds its line break.
    const QString shown = msg2.isNull() ? text : text + "\n" + msg2;
    QMessageBox::critical(this, tr("Error"), shown);
    QCoreApplication::quit();
}
