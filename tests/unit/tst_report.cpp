#include "unit/report.h"

#include "tests/support/models.h"

#include <QByteArray>
#include <QtTest>

class TestReport : public QObject
{
    Q_OBJECT

private slots:
    void putBigEndian_data();
    void putBigEndian();
    void bigEndian32_data();
    void bigEndian32();
    void highNibble_data();
    void highNibble();
    void commandIndex();
    void statusCode_data();
    void statusCode();
    void firmwareVersion_data();
    void firmwareVersion();
};

void TestReport::putBigEndian_data()
{
    QTest::addColumn<quint32>("value");
    QTest::addColumn<int>("length");
    QTest::addColumn<QByteArray>("bytes");
    QTest::newRow("74565 in four bytes") << 74565U << 4 << QByteArray::fromHex("00012345");
    QTest::newRow("two bytes keep the low sixteen bits") << 74565U << 2 << QByteArray::fromHex("2345");
    QTest::newRow("one byte keeps the low eight bits") << 74565U << 1 << QByteArray::fromHex("45");
    QTest::newRow("all bits") << 0xFFFFFFFFU << 4 << QByteArray::fromHex("ffffffff");
    QTest::newRow("zero") << 0U << 4 << QByteArray::fromHex("00000000");
}

void TestReport::putBigEndian()
{
    QFETCH(quint32, value);
    QFETCH(int, length);
    QFETCH(QByteArray, bytes);
    constexpr char untouched = '\x5A';
    QByteArray target(length + 1, untouched);
    report::putBigEndian(reinterpret_cast<unsigned char*>(target.data()), static_cast<std::size_t>(length),
                         value);
    QCOMPARE(target.left(length).toHex(), bytes.toHex());
    QCOMPARE(target.at(length), untouched);
}

void TestReport::bigEndian32_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<quint32>("value");
    QTest::newRow("74565") << QByteArray::fromHex("00012345") << 74565U;
    QTest::newRow("top bit") << QByteArray::fromHex("80000000") << 0x80000000U;
    QTest::newRow("each byte in its place") << QByteArray::fromHex("deadbeef") << 0xDEADBEEFU;
}

void TestReport::bigEndian32()
{
    QFETCH(QByteArray, bytes);
    QFETCH(quint32, value);
    QCOMPARE(report::bigEndian32(reinterpret_cast<const unsigned char*>(bytes.constData())), value);
}

void TestReport::highNibble_data()
{
    QTest::addColumn<int>("byte");
    QTest::addColumn<int>("code");
    QTest::newRow("the low nibble does not count") << 0xE7 << 0xE0;
    QTest::newRow("low nibble only") << 0x0F << 0x00;
    QTest::newRow("high nibble only") << 0xF0 << 0xF0;
    QTest::newRow("nothing") << 0x00 << 0x00;
}

void TestReport::highNibble()
{
    QFETCH(int, byte);
    QFETCH(int, code);
    QCOMPARE(int{report::highNibble(static_cast<unsigned char>(byte))}, code);
}

void TestReport::commandIndex()
{
    QCOMPARE(report::commandIndex(layoutA), std::size_t{1});
    QCOMPARE(report::commandIndex(layoutB), std::size_t{61});
}

void TestReport::statusCode_data()
{
    QTest::addColumn<int>("headerOffset");
    QTest::addColumn<int>("statusIndex");
    QTest::addColumn<int>("code");
    QTest::newRow("older family: first byte") << 0 << 0 << 0x90;
    QTest::newRow("older family: not byte 60") << 0 << 60 << 0x00;
    QTest::newRow("players: byte 60") << 60 << 60 << 0x90;
    QTest::newRow("players: not the first byte") << 60 << 0 << 0x00;
}

void TestReport::statusCode()
{
    QFETCH(int, headerOffset);
    QFETCH(int, statusIndex);
    QFETCH(int, code);
    report::Input input{};
    input[static_cast<std::size_t>(statusIndex)] = 0x95;
    const ReportLayout layout = headerOffset == 0 ? layoutA : layoutB;
    QCOMPARE(int{report::statusCode(input.data(), layout)}, code);
}

void TestReport::firmwareVersion_data()
{
    QTest::addColumn<int>("type");
    QTest::addColumn<int>("version");
    for (const models::Model& model : models::all)
        QTest::newRow(model.option) << int{model.type} << (model.versionByte == 62 ? 0x17 : 0x20);
    QTest::newRow("a type without a model") << models::count << 0x20;
}

void TestReport::firmwareVersion()
{
    QFETCH(int, type);
    QFETCH(int, version);
    report::Input input{};
    input[62] = 0x17;
    input[63] = 0x20;
    QCOMPARE(int{report::firmwareVersion(input, static_cast<UnitType>(type))}, version);
}

QTEST_APPLESS_MAIN(TestReport)
#include "tst_report.moc"
