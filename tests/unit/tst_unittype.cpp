#include "unit/unittype.h"

#include <QtTest>

#include <limits>

namespace {

struct Row
{
    const char* name;
    int value;
    int productId;
    const char* message;
    int versionByte;
    int headerOffset;
    int payloadOffset;
    const char* pairMessage;
};

constexpr Row rows[] = {
    {"HB4", 0, 0x0A21, "HB4 connected", 63, 0, 5, nullptr},
    {"HB2", 1, 0x0A22, "HB2 connected", 63, 0, 5, nullptr},
    {"HBX", 2, 0x0A1F, "HBX connected", 63, 0, 5, nullptr},
    {"ZEQ PRO", 3, 0x0B06, "ZEQ PRO connected", 63, 0, 5, nullptr},
    {"ZEQ IO", 4, 0x0B10, "ZEQ IO connected", 63, 0, 5, nullptr},
    {"PANEL2V", 5, 0x0A24, "PANEL2V connected", 62, 0, 5, nullptr},
    {"PANEL4V", 6, 0x0A23, "PANEL4V connected", 62, 0, 5, nullptr},
    {"DSK10 and DSK9 share a line", 7, 0x2C16, "DSK10/DSK9 connected", 62, 0, 5, nullptr},
    {"DSK6 and DSK5 share a line", 8, 0x2C17, "DSK6/DSK5 connected", 62, 0, 5, nullptr},
    {"LMB-1", 9, 0x0D01, "LMB-1 connected", 63, 0, 5, nullptr},
    {"LMB-2", 10, 0x0D02, "LMB-2 connected", 63, 0, 5, nullptr},
    {"PLT70 is the first player", 11, 0x2C15, "PLT70 connected", 63, 60, 1, nullptr},
    {"TRK300 left", 12, 0x2A41, "TRK300_LEFT connected", 63, 60, 1, "TRK300 connected"},
    {"TRK300 right", 13, 0x2A40, "TRK300_RIGHT connected", 63, 60, 1, "TRK300 connected"},
    {"TRK900 left", 14, 0x2B55, "TRK900_LEFT connected", 63, 60, 1, "TRK900 connected"},
    {"TRK900 right has a blank", 15, 0x2B54, "TRK900 RIGHT connected", 63, 60, 1, "TRK900 connected"},
    {"PLT65", 16, 0x2C01, "PLT65 connected", 63, 60, 1, nullptr},
};

} // namespace

class TestUnitType : public QObject
{
    Q_OBJECT

private slots:
    void vendor();
    void modelsAreSeventeen();
    void model_data();
    void model();
    void mixersHaveNoProductName();
    void noModel_data();
    void noModel();
};

void TestUnitType::vendor()
{
    QCOMPARE(int{unitVendorId}, 14941);
}

void TestUnitType::modelsAreSeventeen()
{
    QCOMPARE(unitModels.size(), std::size(rows));
    QCOMPARE(unitModels.size(), std::size_t{17});
}

void TestUnitType::model_data()
{
    QTest::addColumn<int>("index");
    for (const Row& row : rows)
        QTest::newRow(row.name) << row.value;
}

void TestUnitType::model()
{
    QFETCH(int, index);
    const Row& row = rows[index];
    const UnitModel* model = findUnitModel(static_cast<UnitType>(index));
    QVERIFY(model != nullptr);
    QCOMPARE(static_cast<int>(model->type), row.value);
    QCOMPARE(int{model->productId}, row.productId);
    QCOMPARE(model->connectedMessage, row.message);
    QCOMPARE(int{model->versionByte}, row.versionByte);
    QCOMPARE(int{model->layout.headerOffset}, row.headerOffset);
    QCOMPARE(int{model->layout.payloadOffset}, row.payloadOffset);
    QCOMPARE(model->pairMessage, row.pairMessage);
}

void TestUnitType::mixersHaveNoProductName()
{
    for (const UnitModel& model : unitModels) {
        const bool isMixer = model.type == UNIT_ZEQ_PRO || model.type == UNIT_ZEQ_IO;
        QVERIFY2((model.productNames.front() == nullptr) == isMixer, model.connectedMessage);
    }
}

void TestUnitType::noModel_data()
{
    QTest::addColumn<int>("value");
    QTest::newRow("behind the last") << 17;
    QTest::newRow("before the first") << -1;
    QTest::newRow("largest") << std::numeric_limits<int>::max();
    QTest::newRow("smallest") << std::numeric_limits<int>::min();
}

void TestUnitType::noModel()
{
    QFETCH(int, value);
    QCOMPARE(findUnitModel(static_cast<UnitType>(value)), static_cast<const UnitModel*>(nullptr));
}

QTEST_APPLESS_MAIN(TestUnitType)
#include "tst_unittype.moc"
