#include "tests/harness/childprocess.h"
#include "tests/support/rows.h"
#include "tests/support/selfsigned.h"
#include "tests/support/signer.h"
#include "tests/vendor/goodcatalogue.h"
#include "tests/vendor/tool.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QtTest>

#include <csignal>
#include <memory>

const QString served = "http://updates.example.com/versions.txt";

/// talvex-catalogue as a process.
class TestVendorTool : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void exitCodes_data();
    void exitCodes();
    void outputThatCannotBeWritten_data();
    void outputThatCannotBeWritten();
    void endlessFile();
    void json();
    void colourOnATerminalOnly();
    void checksAnAddress();
    void checksAnAddressThatIsNotServed();
    void checksAnAddressOfAnUntrustedServer();
    void fetches();
    void fetchesWhatIsMissing();
    void progressOnATerminalOnly();
    void judgesASignature_data();
    void judgesASignature();
    void judgesASignatureThatIsServed();
    void endsOnInterrupt();
    void keepsIgnoringInterrupts();

private:
    void serveAll();
    void interrupt(ChildProcess& process, const QString& command, const QStringList& arguments);

    std::unique_ptr<Tool> tool;
};

void TestVendorTool::init()
{
    tool = std::make_unique<Tool>();
    tool->write("good", goodCatalogue());
}

/// The good catalogue, its change logs and its images.
void TestVendorTool::serveAll()
{
    tool->server.setAnswer("/versions.txt", ok(goodCatalogue(), {"Content-Type: text/plain"}));
    tool->server.setAnswer("/logs/updater.txt", ok("log"));
    for (const QByteArray& stem : everyStem()) {
        tool->server.setAnswer("/logs/" + stem + ".txt", ok("log"));
        tool->server.setAnswer("/bin/" + stem + ".sb", ok("image"));
    }
}

void TestVendorTool::exitCodes_data()
{
    // isAnswered: on standard output; else there is a complaint
    const Rows<QStringList, int, bool> row("arguments", "exitCode", "isAnswered");
    row("good", {"check", "good"}, 0, true);
    row("notes only", {"check", "notes"}, 0, true);
    row("errors", {"check", "bad"}, 1, true);
    row("no such file", {"check", "absent"}, 1, false);
    row("a directory", {"check", "."}, 1, false);
    row("misuse", {"check"}, 2, false);
    row("help", {"--help"}, 0, true);
    row("version", {"--version"}, 0, true);
}

void TestVendorTool::exitCodes()
{
    QFETCH(QStringList, arguments);
    QFETCH(bool, isAnswered);
    tool->write("notes", catalogueWith("HB4Bin=http:", "HB4Bin=https:"));
    tool->write("bad", catalogueWith("HB4Ver=27", "HB4Ver=2,8"));
    const Tool::Outcome outcome = tool->run(arguments);
    QTEST(outcome.exitCode, "exitCode");
    QCOMPARE(outcome.output.isEmpty(), !isAnswered);
    QCOMPARE(outcome.errors.isEmpty(), isAnswered);
}

void TestVendorTool::outputThatCannotBeWritten_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("text") << QStringList{"check", "good"};
    QTest::newRow("JSON") << QStringList{"check", "--json", "good"};
    QTest::newRow("help") << QStringList{"--help"};
}

void TestVendorTool::outputThatCannotBeWritten()
{
    QFETCH(QStringList, arguments);
    const Tool::Outcome outcome = tool->runIntoFullDisk(arguments);
    QCOMPARE(outcome.exitCode, 1);
    QVERIFY2(outcome.errors.startsWith("talvex-catalogue: standard output: "), outcome.errors.constData());
}

void TestVendorTool::endlessFile()
{
    const Tool::Outcome outcome = tool->run({"check", "/dev/zero", "--as", "hb4=27"});
    QCOMPARE(outcome.exitCode, 1);
    QVERIFY(outcome.output.contains("more than 67108864 bytes: the updater gives up\n"));
    QVERIFY(outcome.output.contains("the catalogue is too large\n"));
    QVERIFY(outcome.output.endsWith("\n1 error, 0 notes\n"));
}

void TestVendorTool::json()
{
    const Tool::Outcome outcome = tool->run({"check", "good", "--json", "--as", "hb4=23"});
    QCOMPARE(outcome.exitCode, 0);
    const QJsonObject object = QJsonDocument::fromJson(outcome.output).object();
    QCOMPARE(object["source"].toString(), QString("good"));
    QCOMPARE(object["errors"].toInt(-1), 0);
}

void TestVendorTool::colourOnATerminalOnly()
{
    const Tool::Outcome piped = tool->run({"check", "good"});
    QVERIFY(!piped.output.contains('\033'));
    const Tool::Outcome typed = tool->runOnTerminal("check good");
    QCOMPARE(typed.exitCode, 0);
    QVERIFY(typed.output.contains("\033[32mgood\033[0m"));
}

void TestVendorTool::checksAnAddress()
{
    tool->server.setAnswer("/versions.txt", ok(catalogueWith("HB4Ver=27", "HB4Ver=2,8")));
    const Tool::Outcome outcome = tool->run({"check", served});
    QCOMPARE(outcome.exitCode, 1);
    QVERIFY(outcome.output.startsWith(served.toUtf8() + ", "));
    QVERIFY(outcome.output.endsWith("\n1 error, 0 notes\n"));
    QCOMPARE(tool->server.paths(), QStringList("/versions.txt"));
}

void TestVendorTool::checksAnAddressThatIsNotServed()
{
    const Tool::Outcome outcome = tool->run({"check", served});
    QCOMPARE(outcome.exitCode, 1);
    QVERIFY(outcome.output.isEmpty());
    QVERIFY(outcome.errors.startsWith("talvex-catalogue: " + served.toUtf8() + ": "));
}

void TestVendorTool::checksAnAddressOfAnUntrustedServer()
{
    const auto tls = selfSigned();
    QVERIFY2(tls.has_value(), "needs the package openssl");
    RawServer secure(tls);
    secure.setAnswer("/versions.txt", ok(goodCatalogue()));
    const QString address = secure.address("/versions.txt");
    const Tool::Outcome outcome = tool->run({"check", address});
    QCOMPARE(outcome.exitCode, 0);
    QVERIFY2(outcome.output.endsWith("\n0 errors, 0 notes\n"), outcome.output.constData());
    const QString note = "talvex-catalogue: " + address + ": note: certificate not valid: ";
    QVERIFY2(QString::fromUtf8(outcome.errors).startsWith(note), outcome.errors.constData());
}

void TestVendorTool::fetches()
{
    serveAll();
    const Tool::Outcome outcome = tool->run({"check", "--fetch", served});
    QCOMPARE(outcome.exitCode, 0);
    QVERIFY2(outcome.output.endsWith("\n0 errors, 0 notes\n"), outcome.output.constData());
    QCOMPARE(tool->server.requests().size(), 1 + 1 + 2 * 9);
    QVERIFY(outcome.errors.isEmpty());
}

void TestVendorTool::fetchesWhatIsMissing()
{
    serveAll();
    tool->server.setAnswer("/bin/LMB2.sb", {{httpAnswer("404 Not Found", "no")}});
    const Tool::Outcome outcome = tool->run({"check", "--fetch", "good"});
    QCOMPARE(outcome.exitCode, 1);
    QVERIFY(outcome.output.contains("http://updates.example.com/bin/LMB2.sb is not served: "));
    QVERIFY(outcome.output.endsWith("\n1 error, 0 notes\n"));
}

void TestVendorTool::progressOnATerminalOnly()
{
    serveAll();
    const Tool::Outcome typed = tool->runOnTerminal("check --fetch good");
    QCOMPARE(typed.exitCode, 0);
    QVERIFY(typed.output.contains("\r0 of 19, 0.0 MB\033[K"));
    QVERIFY(typed.output.contains("\r19 of 19, 0.0 MB\033[K\r\033[K"));
}

void TestVendorTool::judgesASignature_data()
{
    const Rows<QByteArray, QByteArray, bool, int, QByteArray> row("from", "to", "isSigned", "exitCode",
                                                                  "part");
    row("good", {}, {}, true, 0, "bytes, signature good\n");
    row("altered", "HB4Ver=27", "HB4Ver=28", true, 1,
        "not genuine: the signature is not that of this file\n");
    row("carriage returns count", "\n", "\r\n", true, 1, "bytes, signature bad\n");
    row("unsigned", {}, {}, false, 1, "there is no signature beside it\n");
}

void TestVendorTool::judgesASignature()
{
    QFETCH(QByteArray, from);
    QFETCH(QByteArray, to);
    QFETCH(bool, isSigned);
    QFETCH(QByteArray, part);
    const Signer signer;
    const QByteArray content = catalogueWithDigests(someDigest);
    tool->write("versions.txt", from.isEmpty() ? content : QByteArray(content).replace(from, to));
    if (isSigned)
        tool->write("versions.txt.minisig", signer.sign(content));
    const Tool::Outcome outcome = tool->run({"check", "versions.txt", "--key", signer.publicKey()});
    QTEST(outcome.exitCode, "exitCode");
    QVERIFY2(outcome.output.contains(part), outcome.output.constData());
}

void TestVendorTool::judgesASignatureThatIsServed()
{
    const Signer signer;
    tool->server.setAnswer("/versions.txt", ok(catalogueWithDigests(someDigest)));
    tool->server.setAnswer("/versions.txt.minisig", ok(signer.sign(catalogueWithDigests(someDigest))));
    const Tool::Outcome outcome = tool->run({"check", served, "--json", "--key", signer.publicKey()});
    QCOMPARE(outcome.exitCode, 0);
    QVERIFY(QJsonDocument::fromJson(outcome.output).object()["isGenuine"].toBool());
    QCOMPARE(tool->server.paths(), QStringList({"/versions.txt", "/versions.txt.minisig"}));
}

/// Starts the tool, interrupts it while it waits for the server, and awaits its end.
void TestVendorTool::interrupt(ChildProcess& process, const QString& command, const QStringList& arguments)
{
    tool->server.setAnswer("/bin/HB4.sb", {{"HTTP/1.1 200 OK\r\n", "\r\n"}, RawServer::End::close, true});
    process.setProcessEnvironment(tool->environment());
    process.start(command, arguments);
    QVERIFY(process.waitForStarted());
    const auto id = static_cast<pid_t>(process.processId()); // later, a tool that has ended would have none
    QTRY_VERIFY(tool->server.paths().contains("/bin/HB4.sb"));
    kill(id, SIGINT);
    QTRY_COMPARE(process.state(), QProcess::NotRunning);
    QCOMPARE(process.exitStatus(), QProcess::NormalExit);
}

void TestVendorTool::endsOnInterrupt()
{
    (void)std::signal(SIGINT, SIG_DFL); // inherited; a shell's background jobs ignore it
    ChildProcess process;
    interrupt(process, Tool::program(), {"check", "--fetch", tool->path("good")});
    QCOMPARE(process.exitCode(), 130);
    QCOMPARE(process.readAllStandardOutput(), QByteArray());
    QCOMPARE(process.readAllStandardError(), QByteArray("talvex-catalogue: interrupted\n"));
}

/// As under nohup or in the background of a script: only the silence of the server ends it.
void TestVendorTool::keepsIgnoringInterrupts()
{
    ChildProcess process;
    interrupt(process, "sh",
              {"-c", "trap '' INT; exec \"$0\" \"$@\"", Tool::program(), "check", "--fetch", "--timeout", "3",
               tool->path("good")});
    QCOMPARE(process.exitCode(), 1);
    QVERIFY(process.readAllStandardOutput().contains("nothing received for 3 s"));
}

QTEST_GUILESS_MAIN(TestVendorTool)
#include "tst_vendortool.moc"
