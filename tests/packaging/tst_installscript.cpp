// install-for-this-computer.sh, as far as it needs no unit and no root. The rest is tested by tst_installrule
// and in the guest (tests/usb).

#include "tests/packaging/scriptuser.h"

#include <QtTest>

#include <QDir>
#include <QDirIterator>

namespace {

/// What it complains of, but for the system's rule: on a computer without it nobody can install it here.
QStringList complaints(const ScriptRun& run)
{
    return run.output.split('\n').filter(QRegularExpression("FAILED: (?!the rule )"));
}

/// Everything but menu entries gets its name.
constexpr const char* mvWithoutEntries =
    "#!/bin/sh\ncase $* in *.desktop) exit 1 ;; esac\nexec /bin/mv \"$@\"\n";

/// Every file below a folder, with its content.
QMap<QString, QByteArray> filesIn(const QString& folder)
{
    QMap<QString, QByteArray> files;
    QDirIterator each(folder, QDir::Files | QDir::Hidden, QDirIterator::Subdirectories);
    while (each.hasNext()) {
        const QString path = each.next();
        files[path] = contentOf(path);
    }
    return files;
}

} // namespace

class tst_installscript : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup() { user.reset(); }

    void menuStartsTheProgram_data();
    void menuStartsTheProgram();
    void secondRunChangesNothing();
    void movedFolderIsPutRight();
    void anotherCopyIsNamed();
    void menuStaysAsItWas_data();
    void menuStaysAsItWas();
    void removal();
    void removalThatFails();
    void removalSparesAnotherCopy();
    void nameNotInUtf8();
    void spaceUnknown();
    void startedAsRoot_data();
    void startedAsRoot();
    void noHome_data();
    void noHome();
    void usage_data();
    void usage();

private:
    [[nodiscard]] bool startsInMenu(const QString& folder) const;

    QScopedPointer<ScriptUser> user;
};

void tst_installscript::init()
{
    user.reset(new ScriptUser);
    QVERIFY(user->isReady());
}

/// Whether the menu starts the copy in this folder.
bool tst_installscript::startsInMenu(const QString& folder) const
{
    return contentOf(user->entry()).contains("\nPath=" + folder.toUtf8() + '\n');
}

void tst_installscript::menuStartsTheProgram_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("plain") << "updater";
    QTest::newRow("blanks") << " talvex  updater ";
    QTest::newRow("quotes") << "the \"new\" one's";
    QTest::newRow("per cent") << "100%f %% %U";
    QTest::newRow("dollar") << "$HOME $(touch x)";
    QTest::newRow("backslashes") << "a\\b\\\\s";
    QTest::newRow("backquotes") << "`touch x`";
    QTest::newRow("equals") << "a=b";
    QTest::newRow("Cyrillic") << QString::fromUtf8("Моя музыка");
    QTest::newRow("special to the shell") << "a;b&c|d>e#f*g?h[i]j~k!l(m)";
}

void tst_installscript::menuStartsTheProgram()
{
    QFETCH(QString, name);
    const QString folder = user->copyNamed(name);
    const ScriptRun installed = user->install(folder);
    QVERIFY2(complaints(installed).isEmpty(), qPrintable(installed.output));
    QVERIFY2(installed.says(user->entry()), qPrintable(installed.output));

    user->environment.insert("PATH", qEnvironmentVariable("PATH"));
    const ScriptRun valid = runScript("desktop-file-validate", {user->entry()}, user->environment);
    QVERIFY2(valid.code == 0 && valid.output.isEmpty(), qPrintable(valid.output));
    const ScriptRun launched = runScript("gio", {"launch", user->entry()}, user->environment);
    QVERIFY2(launched.code == 0, qPrintable(launched.output));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(user->path("started")), limits::hangMs());
    QCOMPARE(QString::fromUtf8(contentOf(user->path("started"))),
             folder + "/talvex-updater\n" + folder + '\n');
}

void tst_installscript::secondRunChangesNothing()
{
    const QString folder = user->copyNamed("updater");
    QVERIFY(complaints(user->install(folder)).isEmpty());
    const QMap<QString, QByteArray> once = filesIn(user->path("."));
    QVERIFY(startsInMenu(folder));
    QFile::remove(user->path("asked"));
    const ScriptRun again = user->install(folder);
    QVERIFY2(complaints(again).isEmpty() && !again.says("Another copy") && !again.says("The menu"),
             qPrintable(again.output));
    QCOMPARE(filesIn(user->path(".")), once);
}

void tst_installscript::movedFolderIsPutRight()
{
    const QString before = user->copyNamed("be\\fore");
    QVERIFY(complaints(user->install(before)).isEmpty());
    const QString after = user->path("after");
    QVERIFY(QDir().rename(before, after));
    const ScriptRun again = user->install(after);
    QVERIFY2(again.says("The menu still names " + before + ", where the program no longer is.\n"),
             qPrintable(again.output));
    QVERIFY2(again.says("  The menu now names this folder.\n"), qPrintable(again.output));
    QVERIFY(startsInMenu(after));
    QVERIFY(!user->install(after).says("The menu"));
}

void tst_installscript::anotherCopyIsNamed()
{
    const QString first = user->copyNamed("first");
    const QString second = user->copyNamed("second");
    QVERIFY(!user->install(first).says("Another copy"));
    const ScriptRun installed = user->install(second);
    QVERIFY2(installed.says("  Another copy is in the menu, " + first + ".\n"), qPrintable(installed.output));
    QVERIFY2(
        installed.says("  The menu now starts this copy.\n"
                       "  You may delete the other once you have taken your logs and backups out of it.\n"),
        qPrintable(installed.output));
    QVERIFY(startsInMenu(second));
}

void tst_installscript::menuStaysAsItWas_data()
{
    QTest::addColumn<QString>("name");
    QTest::addColumn<bool>("canWrite");
    QTest::addColumn<QString>("complaint");
    QTest::newRow("line break in the folder's name")
        << "sec\nond" << true
        << "the folder's name has a line break, which no menu entry can hold. Rename it.\n";
    QTest::newRow("menu entry cannot be written") << "second" << false << "cannot write ";
}

/// Nobody is told to delete the copy that the menu still starts.
void tst_installscript::menuStaysAsItWas()
{
    QFETCH(QString, name);
    QFETCH(bool, canWrite);
    QFETCH(QString, complaint);
    const QString first = user->copyNamed("first");
    QVERIFY(complaints(user->install(first)).isEmpty());
    QVERIFY(canWrite || user->setCommand("mv", mvWithoutEntries));
    const ScriptRun installed = user->install(user->copyNamed(name));
    QCOMPARE(installed.code, 1);
    QVERIFY2(installed.says("  Another copy is in the menu, " + first + ".\n"), qPrintable(installed.output));
    QVERIFY2(installed.says("FAILED: " + complaint), qPrintable(installed.output));
    QVERIFY2(!installed.says("delete") && !installed.says("The menu now"), qPrintable(installed.output));
    QVERIFY(startsInMenu(first));
}

void tst_installscript::removal()
{
    const QString folder = user->copyNamed("updater");
    QVERIFY(complaints(user->install(folder)).isEmpty());
    const ScriptRun removed = user->install(folder, {"--remove"});
    QVERIFY2(complaints(removed).isEmpty() && removed.says("removed: " + user->entry()),
             qPrintable(removed.output));
    QVERIFY(filesIn(user->data()).isEmpty());
    const ScriptRun again = user->install(folder, {"--remove"});
    QVERIFY2(complaints(again).isEmpty() && !again.says("removed:"), qPrintable(again.output));
}

void tst_installscript::removalThatFails()
{
    const QString folder = user->copyNamed("updater");
    QVERIFY(complaints(user->install(folder)).isEmpty());
    QVERIFY(user->setCommand("rm", "#!/bin/sh\nexit 1\n"));
    const ScriptRun removed = user->install(folder, {"--remove"});
    QCOMPARE(removed.code, 1);
    QVERIFY2(removed.says("FAILED: cannot remove " + user->entry() + ".\n"), qPrintable(removed.output));
}

void tst_installscript::removalSparesAnotherCopy()
{
    const QString first = user->copyNamed("first");
    const QString second = user->copyNamed("second");
    QVERIFY(complaints(user->install(second)).isEmpty());
    const QMap<QString, QByteArray> before = filesIn(user->path("."));
    const ScriptRun removed = user->install(first, {"--remove"});
    QCOMPARE(removed.code, 1);
    QVERIFY2(removed.says("the menu starts another copy, " + second + '.'), qPrintable(removed.output));
    QCOMPARE(filesIn(user->path(".")), before);
}

void tst_installscript::nameNotInUtf8()
{
    const QString inOtherFolder = R"(other=$1$(printf '\344') && mv "$1" "$other" || exit 3
        "$other/install-for-this-computer.sh"
        code=$?
        mv "$other" "$1"
        exit $code)"; // with a name that Qt can remove
    const ScriptRun installed =
        runScript("sh", {"-c", inOtherFolder, "sh", user->copyNamed("m")}, user->environment);
    QCOMPARE(installed.code, 1);
    QVERIFY2(installed.says("FAILED: the folder's name is not in UTF-8"), qPrintable(installed.output));
    QVERIFY(!QFile::exists(user->entry()));
}

void tst_installscript::spaceUnknown()
{
    QVERIFY(user->removeCommand("df"));
    const ScriptRun installed = user->install(user->copyNamed("updater"));
    QCOMPARE(installed.code, 1);
    QVERIFY2(installed.says("FAILED: the system does not say how much space is free there; "
                            "an update may need 200 MB.\n"),
             qPrintable(installed.output));
}

void tst_installscript::startedAsRoot_data()
{
    QTest::addColumn<QString>("variable");
    QTest::newRow("by sudo") << "SUDO_UID";
    QTest::newRow("by pkexec") << "PKEXEC_UID";
    QTest::newRow("by logging in") << "XDG_SEAT";
}

void tst_installscript::startedAsRoot()
{
    QFETCH(QString, variable);
    QVERIFY(user->setCommand("id", "#!/bin/sh\necho 0\n"));
    user->environment.insert(variable, "1000");
    const ScriptRun installed = user->install(user->copyNamed("updater"));
    QCOMPARE(installed.code, 2);
    QVERIFY2(installed.says("without sudo or pkexec, and not as root."), qPrintable(installed.output));
    QVERIFY(filesIn(user->data()).isEmpty());
}

void tst_installscript::noHome_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("installation") << QStringList();
    QTest::newRow("removal") << QStringList("--remove");
}

void tst_installscript::noHome()
{
    QFETCH(QStringList, arguments);
    user->environment.remove("HOME");
    user->environment.remove("XDG_DATA_HOME");
    const ScriptRun run = user->install(user->copyNamed("updater"), arguments);
    QCOMPARE(run.code, 2);
    QCOMPARE(run.output, QString("HOME is not set, so this script cannot tell where your menu is.\n"));
    QCOMPARE(user->asked(), QStringList());
}

void tst_installscript::usage_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::addColumn<int>("code");
    QTest::newRow("asked for") << QStringList("--help") << 0;
    QTest::newRow("unknown option") << QStringList("--uninstall") << 2;
    QTest::newRow("one argument too many") << QStringList{"--remove", "now"} << 2;
}

void tst_installscript::usage()
{
    QFETCH(QStringList, arguments);
    const ScriptRun run = user->install(user->copyNamed("updater"), arguments);
    QTEST(run.code, "code");
    QCOMPARE(run.output, QString("usage: install-for-this-computer.sh [--remove]\n"));
    QVERIFY(filesIn(user->data()).isEmpty());
}

QTEST_GUILESS_MAIN(tst_installscript)

#include "tst_installscript.moc"
