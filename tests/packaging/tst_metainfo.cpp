// What software catalogues and menus are told about the program.

#include "tests/support/filecontent.h"
#include "unit/unittype.h"

#include <QRegularExpression>
#include <QSettings>
#include <QXmlStreamReader>
#include <QtTest>

namespace {

const QString folder = TALVEX_PACKAGING "/linux/";

/// The texts of all elements of this name.
QStringList textsOf(const QString& element)
{
    QStringList texts;
    for (QXmlStreamReader reader(contentOrFatal(folder + "example.talvex.updater.metainfo.xml"));
         !reader.atEnd();)
        if (reader.readNext() == QXmlStreamReader::StartElement && reader.name() == element)
            texts += reader.readElementText(QXmlStreamReader::SkipChildElements).trimmed();
    return texts;
}

/// A key of the menu entry.
QString entry(const QString& key)
{
    const QSettings file(folder + "example.talvex.updater.desktop", QSettings::IniFormat);
    return file.value("Desktop Entry/" + key).toString();
}

/// What the kernel calls a device with these IDs when it is plugged in.
QString plugged(int vendor, int product)
{
    return QString::asprintf("usb:v%04Xp%04Xd0100dc00dsc00dp00ic03isc00ip00in00", vendor, product);
}

} // namespace

class tst_metainfo : public QObject
{
    Q_OBJECT

private slots:
    void unit_data();
    void unit();
    void noOtherDevice();
    void menuEntryIsThere();
    void iconIsThere();
    void programIsTheOneBuilt_data();
    void programIsTheOneBuilt();
};

void tst_metainfo::unit_data()
{
    QTest::addColumn<int>("productId");
    for (const UnitModel& model : unitModels)
        QTest::newRow(model.connectedMessage) << int(model.productId);
}

/// A unit that is plugged in leads to the program.
void tst_metainfo::unit()
{
    QFETCH(int, productId);
    int matching = 0;
    for (const QString& pattern : textsOf("modalias")) {
        const QRegularExpression match(QRegularExpression::wildcardToRegularExpression(pattern));
        matching += match.match(plugged(unitVendorId, productId)).hasMatch() ? 1 : 0;
    }
    QCOMPARE(matching, 1);
}

void tst_metainfo::noOtherDevice()
{
    QCOMPARE(textsOf("modalias").size(), static_cast<int>(unitModels.size()));
}

void tst_metainfo::menuEntryIsThere()
{
    const QString name = textsOf("launchable").value(0);
    QCOMPARE(name, textsOf("id").value(0) + ".desktop");
    QVERIFY(QFile::exists(folder + name));
}

void tst_metainfo::iconIsThere()
{
    const QString name = textsOf("icon").value(0);
    QCOMPARE(entry("Icon"), name);
    QVERIFY(QFile::exists(QString(TALVEX_PACKAGING "/icon/%1.svg").arg(name)));
}

void tst_metainfo::programIsTheOneBuilt_data()
{
    QTest::addColumn<QString>("named");
    QTest::newRow("by the catalogue") << textsOf("binary").value(0);
    QTest::newRow("by the menu entry") << entry("Exec");
}

void tst_metainfo::programIsTheOneBuilt()
{
    QFETCH(QString, named);
    QCOMPARE(named, QString("talvex-updater"));
}

QTEST_GUILESS_MAIN(tst_metainfo)

#include "tst_metainfo.moc"
