#include "tests/support/rows.h"
#include "tests/vendor/tool.h"

#include <QDir>
#include <QtTest>

#include <memory>

/// "talvex-catalogue hash" as a process.
class TestHashCommand : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void writes();
    void changesNothing_data();
    void changesNothing();
    void tellsWhy_data();
    void tellsWhy();
    void keepsPermissions();

private:
    [[nodiscard]] Tool::Outcome hashA() { return tool->run({"hash", "versions.txt", "--image", "HB4=a.sb"}); }

    std::unique_ptr<Tool> tool;
};

void TestHashCommand::init()
{
    tool = std::make_unique<Tool>();
    tool->write("a.sb", "abc");
}

void TestHashCommand::writes()
{
    tool->write("versions.txt", "HB4Ver=27\r\nHB2Ver=1\r\n");
    tool->write("b.sb", "b");
    const Tool::Outcome outcome =
        tool->run({"hash", "versions.txt", "--image", "HB4=a.sb", "--image", "hb2=b.sb"});
    QCOMPARE(outcome.exitCode, 0);
    QCOMPARE(tool->read("versions.txt"),
             QByteArray("HB4Ver=27\r\n"
                        "HB4Sha256=ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad\r\n"
                        "HB2Ver=1\r\n"
                        "HB2Sha256=3e23e8160039594a33894f6564e1b1348bbd7a0088d42c4acb73eeaed59c009d\r\n"));
    QCOMPARE(outcome.errors,
             QByteArray("talvex-catalogue: versions.txt has changed: its signature is no longer valid, "
                        "sign it again\n"));
    const Tool::Outcome again = hashA();
    QCOMPARE(again.exitCode, 0);
    QVERIFY(again.errors.isEmpty());
    QCOMPARE(QFileInfo(tool->path("a.sb")).dir().entryList(QDir::Files | QDir::Hidden),
             QStringList({"a.sb", "b.sb", "versions.txt"}));
}

void TestHashCommand::changesNothing_data()
{
    const Rows<QStringList, int> row("images", "exitCode");
    row("no such image", {"--image", "HB4=absent"}, 1);
    row("a good one and none", {"--image", "HB4=a.sb", "--image", "HB2=absent"}, 1);
    row("an empty image", {"--image", "HB4=empty"}, 1);
    row("an image larger than the program takes", {"--image", "HB4=large"}, 1);
    row("stem without a line", {"--image", "HBX=a.sb"}, 1);
    row("two images for a stem", {"--image", "HB4=a.sb", "--image", "HB4=a.sb"}, 2);
}

void TestHashCommand::changesNothing()
{
    QFETCH(QStringList, images);
    const QByteArray before = "HB4Ver=27\nHB2Ver=1\n";
    tool->write("versions.txt", before);
    tool->write("empty", "");
    tool->write("large", {});
    QVERIFY(QFile::resize(tool->path("large"), 64LL * 1024 * 1024 + 1));
    const Tool::Outcome outcome = tool->run(QStringList{"hash", "versions.txt"} + images);
    QTEST(outcome.exitCode, "exitCode");
    QCOMPARE(tool->read("versions.txt"), before);
    QVERIFY(outcome.errors.startsWith("talvex-catalogue: "));
}

void TestHashCommand::tellsWhy_data()
{
    const Rows<QByteArray, QByteArray> row("catalogue", "why");
    row("no line", "HB2Ver=1\n", "no line for HB4: run check");
    row("NUL", QByteArray("HB4Ver=1\n\0", 10), "contains a NUL byte: the updater ignores the rest");
    const QByteArray large = "HB4Ver=27\n" + QByteArray(64 * 1024 * 1024, 'x'); // which is read only in part
    row("large", large, "more than 67108864 bytes");
}

void TestHashCommand::tellsWhy()
{
    QFETCH(QByteArray, catalogue);
    QFETCH(QByteArray, why);
    tool->write("versions.txt", catalogue);
    const Tool::Outcome outcome = hashA();
    QCOMPARE(outcome.exitCode, 1);
    QCOMPARE(outcome.errors, "talvex-catalogue: versions.txt: " + why + '\n');
    QVERIFY(tool->read("versions.txt") == catalogue); // not compared aloud: 64 MiB
}

void TestHashCommand::keepsPermissions()
{
    tool->write("versions.txt", "HB4Ver=27\n");
    const auto permissions = QFile::ReadOwner | QFile::WriteOwner | QFile::ReadUser | QFile::WriteUser |
                             QFile::ReadGroup | QFile::ReadOther;
    QVERIFY(QFile::setPermissions(tool->path("versions.txt"), permissions));
    QCOMPARE(hashA().exitCode, 0);
    QCOMPARE(QFile::permissions(tool->path("versions.txt")), permissions);
}

QTEST_GUILESS_MAIN(TestHashCommand)
#include "tst_hashcommand.moc"
