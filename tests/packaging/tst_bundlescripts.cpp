// What the bundle's scripts do without a unit wherever they are run; with one, in the guest (tests/usb).

#include "tests/packaging/bundlecopy.h"

#include <QtTest>

#include <QDir>
#include <QTemporaryDir>

class tst_bundlescripts : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { base.reset(); }

    void tornOut_data();
    void tornOut();
    void reportIsNotInItself();
    void canOpen_data();
    void canOpen();

private:
    [[nodiscard]] ScriptRun shell(const QString& commands, const QStringList& arguments) const;

    QScopedPointer<QTemporaryDir> base;
};

void tst_bundlescripts::init()
{
    base.reset(new QTemporaryDir);
    QVERIFY(installSurroundings(base->filePath("updater")));
}

/// With $1, $2, ... in the commands, in the unpacked folder.
ScriptRun tst_bundlescripts::shell(const QString& commands, const QStringList& arguments) const
{
    const QStringList given{"-c", "cd \"$0\" && " + commands, base->filePath("updater")};
    return runScript("sh", given + arguments, QProcessEnvironment::systemEnvironment());
}

void tst_bundlescripts::tornOut_data()
{
    QTest::addColumn<QString>("script");
    QTest::addColumn<QString>("missing");
    for (const char* script : {"install-for-this-computer.sh", "scripts/support-report.sh"})
        for (const char* missing : {"share", "scripts/lib"})
            QTest::addRow("%s without %s", script, missing) << script << missing;
}

/// An archive manager may unpack the one file that was clicked at.
void tst_bundlescripts::tornOut()
{
    QFETCH(QString, script);
    QFETCH(QString, missing);
    const ScriptRun run = shell("rm -r \"$2\" && \"./$1\"", {script, missing});
    QCOMPARE(run.code, 2);
    QCOMPARE(run.output, QFileInfo(script).fileName() + ": this script must stay in the program's folder. "
                                                        "Run it in the unpacked folder.\n");
}

void tst_bundlescripts::reportIsNotInItself()
{
    QCOMPARE(shell("scripts/support-report.sh > report.txt", {}).code, 0);
    const QString report = contentOf(base->filePath("updater/report.txt"));
    QVERIFY2(report.contains(" share/version\n"), qPrintable(report));
    QVERIFY2(!report.contains(" report.txt\n"), qPrintable(report));
}

void tst_bundlescripts::canOpen_data()
{
    QTest::addColumn<QString>("node");
    QTest::addColumn<int>("code");
    QTest::newRow("device") << "/dev/null" << 0;
    QTest::newRow("unit that was pulled out") << "hidraw7" << 1;
}

void tst_bundlescripts::canOpen()
{
    QFETCH(QString, node);
    const QStringList before = QDir(base->filePath("updater")).entryList();
    QTEST(shell(". scripts/lib/unitaccess.sh && canOpen \"$1\"", {node}).code, "code");
    QCOMPARE(QDir(base->filePath("updater")).entryList(), before);
}

QTEST_GUILESS_MAIN(tst_bundlescripts)

#include "tst_bundlescripts.moc"
