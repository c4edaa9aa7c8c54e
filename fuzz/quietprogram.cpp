#include "fuzz/quietprogram.h"

#include <QApplication>
#include <QMessageBox>
#include <QThread>
#include <QTimer>

#include <deque>
#include <utility>

namespace {

QStringList boxes;

/// A single shot that waits for its turn.
struct Shot
{
    QObject* receiver;
    QByteArray slot; ///< its bare name
};
std::deque<Shot> shots;

QMessageBox::StandardButton note(const QString& text)
{
    boxes += text;
    return QMessageBox::Ok;
}

} // namespace

namespace quietprogram {

void start()
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext&, const QString&) {});
    static char name[] = "fuzz";
    static char* arguments[] = {name, nullptr};
    static int count = 1;
    new QApplication(count, arguments); // to the process's end
}

QStringList takeBoxes()
{
    return std::exchange(boxes, {});
}

int fireTimers(int most)
{
    int fired = 0;
    for (; !shots.empty() && fired < most; ++fired) {
        const Shot shot = shots.front();
        shots.pop_front();
        QMetaObject::invokeMethod(shot.receiver, shot.slot.constData());
    }
    shots.clear();
    return fired;
}

} // namespace quietprogram

// These stand before the toolkit's own: the program's objects, which are linked in, call them instead.

void QThread::msleep(unsigned long) {}

void QTimer::singleShot(int, const QObject* receiver, const char* member)
{
    const QByteArray slot(member + 1); // behind SLOT's mark
    shots.push_back({const_cast<QObject*>(receiver), slot.left(slot.indexOf('('))});
}

QMessageBox::StandardButton QMessageBox::critical(QWidget*, const QString&, const QString& text,
                                                  StandardButtons, StandardButton)
{
    return note(text);
}

QMessageBox::StandardButton QMessageBox::information(QWidget*, const QString&, const QString& text,
                                                     StandardButtons, StandardButton)
{
    return note(text);
}

int QMessageBox::critical(QWidget*, const QString&, const QString& text, const QString&, const QString&,
                          const QString&, int, int)
{
    note(text);
    return 0;
}
