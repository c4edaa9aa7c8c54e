#include "unit/unittype.h"

#include "tests/support/models.h"

#include <QtTest>

#include <limits>

class TestUnitType : public QObject
{
    Q_OBJECT

private slots:
    void vendor();
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

void TestUnitType::model_data()
{
    QTest::addColumn<UnitType>("type");
    for (const models::Model& model : models::all)
        QTest::newRow(model.option) << model.type;
}

void TestUnitType::model()
{
    QFETCH(UnitType, type);
    const models::Model& expected = models::of(type);
    const UnitModel* model = findUnitModel(type);
    QVERIFY(model != nullptr);
    QCOMPARE(model->type, type);
    QCOMPARE(int{model->productId}, expected.productId);
    QCOMPARE(model->connectedMessage, expected.connected);
    QCOMPARE(int{model->versionByte}, expected.versionByte);
    QCOMPARE(model->layout.headerOffset, expected.layout.headerOffset);
    QCOMPARE(model->layout.payloadOffset, expected.layout.payloadOffset);
    QCOMPARE(model->pairMessage, expected.pair);
    QStringList names;
    for (const wchar_t* name : model->productNames)
        names += QString::fromWCharArray(name == nullptr ? L"" : name);
    QCOMPARE(names, QStringList(expected.names.begin(), expected.names.end()));
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
    QTest::newRow("behind the last") << models::count;
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
