// What the user of a journey does.

#include "tests/reliability/journey.h"
#include "update/transferstate.h"

#include <QPushButton>
#include <QTest>

void Journey::goOn()
{
    if (!reached || !scenario.fault || faultDone) // the answer that makes the phase comes behind the fault
        server.goOn();
    if (boxes.openCount() > 0 || boxesOpen.isActive())
        return;
    const auto press = [this](const char* name, bool& pressed,
                              const std::function<void(Journey&)>& before = {}) {
        auto* button = mainWindow->findChild<QPushButton*>(name);
        if (pressed || !button->isEnabled() || !button->isVisible())
            return;
        pressed = true;
        later([this, button, before] {
            if (before)
                before(*this);
            QTest::mouseClick(button, Qt::LeftButton);
            if (transferstate::transferTimer != nullptr)
                connect(transferstate::transferTimer, &QTimer::timeout, this, &Journey::lookAtThePhase,
                        Qt::UniqueConnection);
        });
    };
    press("connect_button", connectPressed, scenario.beforeConnect);
    if (!scenario.fetchesLog) {
        press("updateDeviceButton", updatePressed, scenario.beforeUpdate);
    } else if (connectPressed && !logPressed) {
        later([this] { QTest::keyClick(mainWindow, Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier); });
        press("downloadLogFile", logPressed);
    }
}

void Journey::pressEverything()
{
    const auto buttons = mainWindow->findChildren<QPushButton*>();
    for (QPushButton* button : buttons)
        for (int time = 0; time < 2; ++time)
            if (button->isVisible())
                QTest::mouseClick(button, Qt::LeftButton);
    QTest::keyClick(mainWindow, Qt::Key_L, Qt::ControlModifier | Qt::ShiftModifier);
}

void Journey::leaveBoxesOpen(int ms)
{
    boxes.leaveOpen();
    boxesOpen.start(ms);
    connect(&boxesOpen, &QTimer::timeout, this, [this] {
        calmSteps = 0;
        connect(&clock, &QTimer::timeout, this, [this] { boxes.dismissTop(); });
    });
}
