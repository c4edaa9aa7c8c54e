#include "log/logprotocol.h"
#include "tests/support/rows.h"
#include "tests/support/testimage.h"
#include "tests/support/wire.h"

#include <QtTest>

namespace {

QByteArray bytesOf(const report::Output& output)
{
    return {reinterpret_cast<const char*>(output.data()), static_cast<int>(output.size())};
}

report::Input reply(const QByteArray& beginning)
{
    report::Input input{};
    std::copy(beginning.begin(), beginning.end(), input.begin());
    return input;
}

} // namespace

class TestLogProtocol : public QObject
{
    Q_OBJECT

private slots:
    void requestOfEachModel_data()
    {
        const Rows<int, QByteArray> row("type", "expected");
        for (const models::Model& model : models::all)
            row(model.option, model.type,
                wire::report({{model.command(), 0x10}, {model.command() + 1, 0x01}}));
        for (const int type : {-1, models::count})
            QTest::addRow("type %d, no model: bytes 1 and 2", type)
                << type << wire::report({{1, 0x10}, {2, 0x01}});
    }
    void requestOfEachModel()
    {
        QFETCH(const int, type);
        QTEST(bytesOf(logprotocol::buildRequest(static_cast<UnitType>(type), 1)), "expected");
    }

    void requestSendsTheLowByteOfItsNumber()
    {
        QCOMPARE(bytesOf(logprotocol::buildRequest(UNIT_HB4, 0x1FE)), wire::report({{1, 0x10}, {2, 0xFE}}));
    }

    void acknowledge() { QCOMPARE(bytesOf(logprotocol::buildAcknowledge()), wire::report({{1, '0'}})); }
    void resend() { QCOMPARE(bytesOf(logprotocol::buildResend()), wire::report({{1, 'p'}})); }

    void replyCodesAreTheCharactersTheyLookLike()
    {
        QCOMPARE(int(logprotocol::logHeader), int(' '));
        QCOMPARE(int(logprotocol::noLog), int('`'));
        QCOMPARE(int(logprotocol::dataPart), 0x40);
        QCOMPARE(int(logprotocol::lastPart), 0x50);
    }

    void header_data()
    {
        const Rows<QByteArray, int> row("count", "expected");
        row("three", QByteArray::fromHex("00000003"), 3);
        row("most significant byte first", QByteArray::fromHex("01020304"), 0x01020304);
        row("largest positive", QByteArray::fromHex("7fffffff"), 0x7FFFFFFF);
        row("top bit set: negative", QByteArray::fromHex("ffffffff"), -1);
    }
    void header()
    {
        QFETCH(const QByteArray, count);
        const QByteArray digest = "0123456789abcdef0123456789ABCDEF";
        const report::Input input = reply(" " + digest + count + QByteArray(27, 'x'));
        QCOMPARE(logprotocol::headerDigest(input.data()), digest);
        QTEST(int(logprotocol::headerParts(input.data())), "expected");
    }

    void dataPartHolds63Bytes()
    {
        const QByteArray data = imageOf(63);
        QCOMPARE(logprotocol::dataPartBytes(reply("@" + data).data()), data);
    }

    void lastPart_data()
    {
        QTest::addColumn<int>("length");
        QTest::addColumn<int>("expected");
        for (const int length : {0, 1, 10, 61, 62})
            QTest::addRow("%d bytes", length) << length << length;
        for (const int length : {63, 64, 128, 255})
            QTest::addRow("%d announced: the 62 that a report can hold", length) << length << 62;
    }
    void lastPart()
    {
        QFETCH(const int, length);
        QFETCH(const int, expected);
        const QByteArray data = imageOf(62);
        const report::Input input = reply("P" + QByteArray(1, static_cast<char>(length)) + data);
        QCOMPARE(logprotocol::lastPartBytes(input.data()), data.left(expected));
    }
};

QTEST_APPLESS_MAIN(TestLogProtocol)
#include "tst_logprotocol.moc"
