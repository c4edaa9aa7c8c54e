#include "ui/mainwindow.h"

namespace {

constexpr int mostBoxes = 16; // open at once; thousands of nested ones would end in a stack overflow

} // namespace

/// Opens a box outside the tick, as the timer would otherwise stand still under it: polling and creeping
/// continue. Intentional: a repeated status opens another box on top.
void MainWindow::openInstallationBox(bool always, const std::function<void()>& showBox)
{
    if (installationBoxes >= mostBoxes && !always)
        return;
    ++installationBoxes;
    const auto show = [this, showBox] {
        showBox();
        --installationBoxes;
    };
    QMetaObject::invokeMethod(this, show, Qt::QueuedConnection);
}
