// install-for-this-computer.sh, as far as it needs no unit and no root: whoever it asks for root only notes
// the question. The rest is tested in the guest (tests/usb).

#include "tests/packaging/bundlecopy.h"
#include "tests/support/rows.h"

#include <QtTest>

#include <QDir>
#include <QDirIterator>
#include <QTemporaryDir>

namespace {

constexpr const char* script = "/install-for-this-computer.sh";
constexpr const char* entryName = "/applications/example.talvex.updater.desktop";

/// Notes where it was started and from which folder.
constexpr const char* program = "#!/bin/sh\nprintf '%s\\n' \"$0\" \"$PWD\" > \"$STARTED.new\"\n"
                                "mv \"$STARTED.new\" \"$STARTED\"\n";
constexpr const char* willingSudo = "#!/bin/sh\necho asked >> \"$ASKED\"\n";
constexpr const char* deniedSudo = "#!/bin/sh\necho asked >> \"$ASKED\"\nexit 1\n";

/// What the script needs of the system; not what it becomes root with.
constexpr std::array tools{"cat", "cmp", "cut", "df", "dirname", "find",  "grep", "ls",   "mkdir",
                           "mv",  "rm",  "sed", "sh", "sort",    "touch", "tr",   "uname"};

/// On such a computer nobody is asked for root; the guest is one that certainly has no rule.
bool hasRule()
{
    return QFile::exists("/etc/udev/rules.d/70-talvex-updater.rules");
}

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
    void initTestCase();
    void init();
    void cleanup() { base.reset(); }

    void menuStartsTheProgram_data();
    void menuStartsTheProgram();
    void rootIsAskedForOnce();
    void secondRunChangesNothing();
    void movedFolderIsPutRight();
    void anotherCopyIsNamed();
    void removal();
    void removalThatFails();
    void removalSparesAnotherCopy();
    void lineBreakInTheName();
    void toolFails_data();
    void toolFails();
    void startedAsRoot_data();
    void startedAsRoot();
    void unknownOption();

private:
    QString copyNamed(const QString& name);
    ScriptRun run(const QString& folder, const QStringList& arguments = {});
    [[nodiscard]] QString data() const { return base->filePath("data"); }

    QTemporaryDir original;
    QScopedPointer<QTemporaryDir> base;
    QProcessEnvironment environment;
};

void tst_installscript::initTestCase()
{
    QVERIFY(installSurroundings(original.path()));
    QVERIFY(writeExecutable(original.filePath("talvex-updater"), program));
}

void tst_installscript::init()
{
    base.reset(new QTemporaryDir);
    QVERIFY(QDir(base->path()).mkdir("bin"));
    for (const char* tool : tools)
        QVERIFY(QFile::link(QStandardPaths::findExecutable(tool), base->filePath("bin/") + tool));
    QVERIFY(writeExecutable(base->filePath("bin/id"), "#!/bin/sh\necho 1000\n"));
    QVERIFY(writeExecutable(base->filePath("bin/sudo"), willingSudo));
    environment.clear();
    environment.insert("PATH", base->filePath("bin"));
    environment.insert("HOME", base->filePath("home"));
    environment.insert("XDG_DATA_HOME", data());
    environment.insert("ASKED", base->filePath("asked"));
    environment.insert("STARTED", base->filePath("started"));
}

QString tst_installscript::copyNamed(const QString& name)
{
    const QString folder = base->filePath(name);
    return copyFolder(original.path(), folder) ? folder : QString();
}

ScriptRun tst_installscript::run(const QString& folder, const QStringList& arguments)
{
    return runScript(folder + script, arguments, environment);
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
    const QString folder = copyNamed(name);
    const ScriptRun installed = run(folder);
    QVERIFY2(!installed.says("FAILED"), qPrintable(installed.output));
    QVERIFY2(installed.says(data() + entryName), qPrintable(installed.output));

    environment.insert("PATH", qEnvironmentVariable("PATH"));
    const ScriptRun valid = runScript("desktop-file-validate", {data() + entryName}, environment);
    QVERIFY2(valid.code == 0 && valid.output.isEmpty(), qPrintable(valid.output));
    const ScriptRun launched = runScript("gio", {"launch", data() + entryName}, environment);
    QVERIFY2(launched.code == 0, qPrintable(launched.output));
    QTRY_VERIFY_WITH_TIMEOUT(QFile::exists(base->filePath("started")), limits::hangMs());
    QCOMPARE(QString::fromUtf8(contentOf(base->filePath("started"))),
             folder + "/talvex-updater\n" + folder + '\n');
}

void tst_installscript::rootIsAskedForOnce()
{
    if (hasRule())
        QSKIP("this computer has the rule");
    const ScriptRun installed = run(copyNamed("updater"));
    QVERIFY2(installed.says("/etc/udev/rules.d/70-talvex-updater.rules"), qPrintable(installed.output));
    QCOMPARE(contentOf(base->filePath("asked")), QByteArray("asked\n"));
}

void tst_installscript::secondRunChangesNothing()
{
    const QString folder = copyNamed("updater");
    QVERIFY(!run(folder).says("FAILED"));
    const QMap<QString, QByteArray> once = filesIn(base->path());
    QVERIFY(once.contains(data() + entryName));
    QFile::remove(base->filePath("asked"));
    const ScriptRun again = run(folder);
    QVERIFY2(!again.says("FAILED") && !again.says("copy"), qPrintable(again.output));
    QCOMPARE(filesIn(base->path()), once);
}

void tst_installscript::movedFolderIsPutRight()
{
    const QString before = copyNamed("be\\fore");
    QVERIFY(!run(before).says("FAILED"));
    const QString after = base->filePath("after");
    QVERIFY(QDir().rename(before, after));
    const ScriptRun again = run(after);
    QVERIFY2(again.says("The menu still names " + before + ','), qPrintable(again.output));
    QVERIFY(contentOf(data() + entryName).contains("\nPath=" + after.toUtf8() + '\n'));
    QVERIFY(!run(after).says("still names"));
}

void tst_installscript::anotherCopyIsNamed()
{
    const QString first = copyNamed("first");
    const QString second = copyNamed("second");
    QVERIFY(!run(first).says("Another copy"));
    const ScriptRun run2 = run(second);
    QVERIFY2(run2.says("Another copy is in the menu, " + first + '.'), qPrintable(run2.output));
    QVERIFY(contentOf(data() + entryName).contains("\nPath=" + second.toUtf8() + '\n'));
}

void tst_installscript::removal()
{
    const QString folder = copyNamed("updater");
    QVERIFY(!run(folder).says("FAILED"));
    const ScriptRun removed = run(folder, {"--remove"});
    QVERIFY2(removed.code == 0 && removed.says("removed: " + data() + entryName), qPrintable(removed.output));
    QVERIFY(filesIn(data()).isEmpty());
    const ScriptRun again = run(folder, {"--remove"});
    QVERIFY2(again.code == 0 && !again.says("removed:"), qPrintable(again.output));
}

void tst_installscript::removalThatFails()
{
    const QString folder = copyNamed("updater");
    QVERIFY(!run(folder).says("FAILED"));
    QVERIFY(QFile::remove(base->filePath("bin/rm")));
    QVERIFY(writeExecutable(base->filePath("bin/rm"), "#!/bin/sh\nexit 1\n"));
    const ScriptRun removed = run(folder, {"--remove"});
    QCOMPARE(removed.code, 1);
    QVERIFY2(removed.says("FAILED: cannot remove " + data() + entryName + ".\n"), qPrintable(removed.output));
}

void tst_installscript::removalSparesAnotherCopy()
{
    const QString first = copyNamed("first");
    const QString second = copyNamed("second");
    QVERIFY(!run(second).says("FAILED"));
    const QMap<QString, QByteArray> before = filesIn(base->path());
    const ScriptRun removed = run(first, {"--remove"});
    QCOMPARE(removed.code, 1);
    QVERIFY2(removed.says("the menu starts another copy, " + second + '.'), qPrintable(removed.output));
    QCOMPARE(filesIn(base->path()), before);
}

void tst_installscript::lineBreakInTheName()
{
    const ScriptRun installed = run(copyNamed("two\nlines"));
    QCOMPARE(installed.code, 1);
    QVERIFY2(installed.says("FAILED: the folder's name has a line break"), qPrintable(installed.output));
    QVERIFY(!QFile::exists(data() + entryName));
}

void tst_installscript::toolFails_data()
{
    const Rows<QString, QByteArray, QStringList> row("tool", "itsReplacement", "said"); // null: it is missing
    const QString noRule = "FAILED: the rule was not installed.";
    row("root is denied", "sudo", deniedSudo, {noRule});
    row("nobody to ask for root", "sudo", {}, {"Neither pkexec nor sudo is there", noRule});
    row("space unknown", "df", {}, {"FAILED: the system does not say how much space is free"});
}

void tst_installscript::toolFails()
{
    QFETCH(QString, tool);
    QFETCH(QByteArray, itsReplacement);
    QFETCH(QStringList, said);
    if (tool == "sudo" && hasRule())
        QSKIP("this computer has the rule");
    QVERIFY(QFile::remove(base->filePath("bin/" + tool)));
    if (!itsReplacement.isNull())
        QVERIFY(writeExecutable(base->filePath("bin/" + tool), itsReplacement));
    const ScriptRun installed = run(copyNamed("updater"));
    QCOMPARE(installed.code, 1);
    for (const QString& text : qAsConst(said))
        QVERIFY2(installed.says(text), qPrintable(installed.output));
    if (tool == "sudo")
        QVERIFY(QFile::exists(data() + entryName)); // which needs no root
}

void tst_installscript::startedAsRoot_data()
{
    QTest::addColumn<QString>("variable");
    QTest::newRow("by sudo") << "SUDO_UID";
    QTest::newRow("by pkexec") << "PKEXEC_UID";
}

void tst_installscript::startedAsRoot()
{
    QFETCH(QString, variable);
    QVERIFY(writeExecutable(base->filePath("bin/id"), "#!/bin/sh\necho 0\n"));
    environment.insert(variable, "1000");
    const ScriptRun installed = run(copyNamed("updater"));
    QCOMPARE(installed.code, 2);
    QVERIFY2(installed.says("without sudo"), qPrintable(installed.output));
    QVERIFY(filesIn(data()).isEmpty());
}

void tst_installscript::unknownOption()
{
    const ScriptRun installed = run(copyNamed("updater"), {"--uninstall"});
    QCOMPARE(installed.code, 2);
    QVERIFY2(installed.says("usage:"), qPrintable(installed.output));
    QVERIFY(filesIn(data()).isEmpty());
}

QTEST_GUILESS_MAIN(tst_installscript)

#include "tst_installscript.moc"
