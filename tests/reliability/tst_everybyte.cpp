#include "tests/log/exchange.h"
#include "tests/support/boxlines.h"
#include "tests/support/limits.h"
#include "tests/support/transferdesk.h"

#include <QtTest>

namespace {

constexpr int bytes = 256;

/// The places of the status of both report layouts.
constexpr std::array bothLayouts{UNIT_HB4, UNIT_PLT65};

QString deviation(int byte, UnitType type, const QString& seen)
{
    return QString("0x%1, unit type %2: %3").arg(byte, 2, 16, QChar('0')).arg(type).arg(seen);
}

/// Runs `look` for every byte and both layouts. What it returns ought to be what `expected` says of the byte.
template<typename Look, typename Expected> QStringList deviations(Look look, Expected expected)
{
    QStringList all;
    for (const UnitType type : bothLayouts)
        for (int byte = 0; byte < bytes; ++byte) {
            const QString seen = look(static_cast<std::uint8_t>(byte), type);
            if (seen != expected(byte))
                all += deviation(byte, type, seen);
        }
    return all;
}

QString labels(TestWindow& window)
{
    return window.label("labelTransfer").text() + '|' + window.label("labelUpdate").text();
}

/// What becomes of a log when its unit says this byte in the phase, and a good word after each answer to it.
QString logAfter(const std::vector<ReplyingUnit::Replies>& script)
{
    Exchange exchange(unitSaying(script));
    exchange.downloader->startDownload(1);
    if (!QTest::qWaitFor([&] { return !exchange.finished.isEmpty(); }, limits::hangMs()))
        return "hangs";
    return exchange.commands().join(' ') + ' ' + exchange.stored();
}

} // namespace

/// Whatever byte a unit says, wherever it says it.
class TestEveryByte : public QObject
{
    Q_OBJECT

private slots:
    void firstReport();
    void answerToTheRequest();
    void inTheStream();
    void inTheInstallation();
    void insteadOfTheHeader();
    void insteadOfAPart();
};

void TestEveryByte::firstReport()
{
    placeServiceFile(); // no server is asked
    const QStringList wrong = deviations(
        [](std::uint8_t byte, UnitType type) {
            TestWindow window;
            placeServiceFile();
            ScriptedUnit::plugIn(type)->say(Bytes(64, byte));
            window->connectSlot();
            return QString("%1 %2").arg(window->currentVersion).arg(window.boxes.lines().size());
        },
        [](int byte) { return QString("%1 1").arg(byte); });
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.mid(0, 5).join("; ")));
}

void TestEveryByte::answerToTheRequest()
{
    const QStringList wrong = deviations(
        [](std::uint8_t byte, UnitType type) {
            TransferDesk desk(type);
            desk.load(imageOf(200));
            desk.tick();
            desk.unit->sayStatus(byte);
            desk.tick();
            return desk.phase() + desk.window.boxes.lines().join("");
        },
        [](int byte) {
            switch (byte >> 4) {
            case 0x9:
                return QString("1 0 1 1");
            case 0xA:
                return "0 1 1 0" + boxline::timedOut;
            case 0xB:
                return "0 1 1 0" + boxline::skipped;
            default:
                return QString("0 0 1 0");
            }
        });
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.mid(0, 5).join("; ")));
}

void TestEveryByte::inTheStream()
{
    const QByteArray image = imageOf(200);
    const QStringList wrong = deviations(
        [&](std::uint8_t byte, UnitType type) {
            TransferDesk desk(type);
            desk.startStream(image);
            desk.unit->sayStatus(byte);
            desk.tick(3);
            std::vector<Bytes> packets = desk.writes();
            packets.erase(packets.begin()); // the request
            const bool whole = packets == packetsOf(unitModels[type].layout, image);
            return QString(whole ? "whole" : "broken") + desk.window.boxes.lines().join("");
        },
        [](int) { return QString("whole"); });
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.mid(0, 5).join("; ")));
}

void TestEveryByte::inTheInstallation()
{
    const QStringList wrong = deviations(
        [](std::uint8_t byte, UnitType type) {
            TransferDesk desk(type);
            desk.window->applyingPhase = 1;
            desk.unit->sayStatus(byte);
            desk.tick();
            QCoreApplication::processEvents();
            QCoreApplication::sendPostedEvents();
            return labels(desk.window) + desk.window.boxes.lines().join("");
        },
        [](int byte) {
            switch (byte >> 4) {
            case 0x7:
                return "Transfer:|Update:" + boxline::rejected;
            case 0xC:
                return "Transfer:|Update:" + boxline::wrongDigest;
            case 0xE:
                return QString("Transfer: completed|Update: in progress. Do not power off device!");
            case 0xF:
                return "Transfer:|Update: finished" + boxline::finished;
            default:
                return QString("Transfer:|Update:");
            }
        });
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.mid(0, 5).join("; ")));
}

void TestEveryByte::insteadOfTheHeader()
{
    QStringList wrong;
    for (int byte = 0; byte < bytes; ++byte) {
        const QByteArray said = byte == 0x20 ? headerReply(1) : QByteArray(1, static_cast<char>(byte));
        const QString seen = logAfter({{said, headerReply(1)}, {lastReply(1, 'd')}});
        const QString expected = byte == 0x60 ? "10 " : byte == 0x20 ? "10 30 70 30 d" : "10 30 30 d";
        if (seen != expected)
            wrong += deviation(byte, UNIT_HB4, seen);
    }
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.mid(0, 5).join("; ")));
}

void TestEveryByte::insteadOfAPart()
{
    QStringList wrong;
    for (int byte = 0; byte < bytes; ++byte) {
        const QByteArray said(64, static_cast<char>(byte));
        const int parts = byte == 0x40 ? 2 : 1;
        const QString seen = logAfter({{headerReply(parts)}, {said}, {lastReply(1, 'd')}});
        QString expected = "10 30 70 30 d";
        if (byte == 0x40)
            expected = "10 30 30 30 " + QString(63, '@') + 'd';
        if (byte == 0x50) // says that it holds more than it can
            expected = "10 30 30 " + QString(62, 'P');
        if (seen != expected)
            wrong += deviation(byte, UNIT_HB4, seen);
    }
    QVERIFY2(wrong.isEmpty(), qPrintable(wrong.mid(0, 5).join("; ")));
}

QTEST_MAIN(TestEveryByte)
#include "tst_everybyte.moc"
