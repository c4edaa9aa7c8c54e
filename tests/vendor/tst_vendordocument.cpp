#include "tests/harness/updateserver.h"
#include "tests/support/filecontent.h"
#include "tests/support/limits.h"
#include "tests/vendor/goodcatalogue.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFileInfo>
#include <QTemporaryDir>
#include <QtTest>

namespace {

const QByteArray oldImage = "image";
const QByteArray newImage = "new image";
const QByteArray password = "a password\n";

QByteArray sha256(const QByteArray& bytes)
{
    return QCryptographicHash::hash(bytes, QCryptographicHash::Sha256).toHex();
}

} // namespace

/// The commands of docs/vendor.md, as they stand there: on a web server, with a key protected by a password.
class TestVendorDocument : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void isShort();
    void publishes();
    void keepsLineEnds();
    void stopsAtAFailedUpload();
    void stopsAtAnError();

private:
    [[nodiscard]] QString path(const QString& name) const { return directory.filePath(name); }
    void write(const QString& name, const QByteArray& bytes) const { QVERIFY(writeFile(path(name), bytes)); }
    [[nodiscard]] bool type(const QByteArray& commands, const QByteArray& answers);
    [[nodiscard]] QString served(const QString& path) const { return server.root() + path; }

    QTemporaryDir directory;
    UpdateServer server;
    QByteArray keyLine;
    QByteArray hashLines; ///< for a catalogue without digests
    QByteArray shellLines;
    QByteArray output;
};

/// Runs the commands with a shell, in the directory. True if they succeed.
bool TestVendorDocument::type(const QByteArray& commands, const QByteArray& answers)
{
    ChildProcess shell;
    auto environment = QProcessEnvironment::systemEnvironment();
    environment.insert("root", served({}));
    environment.insert("http_proxy", server.proxy());
    environment.insert("PATH", QFileInfo(TALVEX_CATALOGUE_TOOL).path() + ':' + environment.value("PATH"));
    shell.setProcessEnvironment(environment);
    shell.setWorkingDirectory(directory.path());
    shell.setProcessChannelMode(QProcess::MergedChannels);
    shell.start("sh", {"-c", QString::fromUtf8(commands)});
    shell.write(answers);
    shell.closeWriteChannel();
    const bool ended = shell.waitForFinished(limits::hangMs());
    output = shell.readAll();
    return ended && shell.exitStatus() == QProcess::NormalExit && shell.exitCode() == 0;
}

void TestVendorDocument::initTestCase()
{
    MUST(server.start());
    const QByteArray document = contentOf(TALVEX_VENDOR_DOCUMENT);
    for (const QByteArray& line : document.split('\n'))
        if (line.startsWith("    minisign -G"))
            keyLine = line;
    const int hashing = document.indexOf("    talvex-catalogue hash");
    hashLines = document.mid(hashing, document.indexOf("\n\n", hashing) - hashing);
    const QByteArray begin = "```sh\n";
    const int first = document.indexOf(begin) + begin.size();
    shellLines = document.mid(first, document.indexOf("```", first) - first);

    MUST(server.publish("/logs/updater.txt", "log"));
    for (const QByteArray& stem : everyStem()) {
        MUST(server.publish("/bin/" + stem + ".sb", oldImage));
        MUST(server.publish("/logs/" + stem + ".txt", "log"));
        write(stem + ".sb", oldImage);
    }
    write("versions.txt", goodCatalogue());
    write("HB4_28.sb", newImage);
    write("HB4_28.txt", "new log");
    QVERIFY2(type(keyLine, password + password), output.constData());
    QVERIFY2(type(hashLines, {}), output.constData());
    const QByteArray hashed = contentOf(path("versions.txt"));
    QCOMPARE(hashed.count("Sha256=" + sha256(oldImage) + '\n'), everyStem().size());
    MUST(server.publish("/wp-content/uploads/versions.txt", hashed));
}

void TestVendorDocument::isShort()
{
    QCOMPARE(shellLines.count('\n'), 10);
}

void TestVendorDocument::publishes()
{
    QVERIFY2(type(shellLines, password), output.constData());
    QVERIFY2(output.endsWith("\n0 errors, 0 notes\n"), output.constData());
    QVERIFY2(output.contains("hb4 at 2.7 sees  an offer of firmware 2.8"), output.constData());
    const QByteArray catalogue = contentOf(served("/wp-content/uploads/versions.txt"));
    QVERIFY(catalogue.contains("\nHB4Ver=28\n"));
    QVERIFY(catalogue.contains("\nHB4Sha256=" + sha256(newImage) + '\n'));
    QVERIFY(catalogue.contains("\nHB4Bin=http://updates.example.com/bin/HB4_28.sb\n"));
    QCOMPARE(contentOf(served("/bin/HB4_28.sb")), newImage);
    QCOMPARE(contentOf(served("/logs/HB4_28.txt")), QByteArray("new log"));
    const QByteArray secret = contentOf(path("catalogue.key")).split('\n').value(1);
    QVERIFY(secret.startsWith("RWRTY0Iy")); // an unprotected key begins with RWQAAEIy
}

void TestVendorDocument::keepsLineEnds()
{
    const QByteArray before = contentOf(path("versions.txt"));
    write("versions.txt", goodCatalogue().replace("\n", "\r\n"));
    const int edit = shellLines.indexOf("sed -i");
    const QByteArray line = shellLines.mid(edit, shellLines.indexOf('\n', edit) - edit);
    QVERIFY2(type("site=http://host; " + line, {}), output.constData());
    const QByteArray after = contentOf(path("versions.txt"));
    write("versions.txt", before);
    QVERIFY(after.contains("\r\nHB4Ver=28\r\nHB4Bin=http://host/bin/HB4_28.sb\r\n"
                           "HB4ChangeLog=http://host/logs/HB4_28.txt\r\n"));
}

void TestVendorDocument::stopsAtAFailedUpload()
{
    const QByteArray before = contentOf(served("/wp-content/uploads/versions.txt"));
    write("versions.txt", "[changed]\n" + before);
    QVERIFY(QDir().rename(served("/bin"), served("/away")));
    const bool succeeded = type(shellLines, password);
    QVERIFY(QDir().rename(served("/away"), served("/bin")));
    QVERIFY(!succeeded);
    QVERIFY2(output.contains("\n0 errors, 0 notes\n"), output.constData());
    QCOMPARE(contentOf(served("/wp-content/uploads/versions.txt")), before);
}

void TestVendorDocument::stopsAtAnError()
{
    const QByteArray before = contentOf(served("/wp-content/uploads/versions.txt"));
    QByteArray wrong = contentOf(path("versions.txt"));
    write("versions.txt", wrong.replace("HB2Ver=27", "HB2Ver=2,8"));
    QVERIFY(!type(shellLines, password));
    QVERIFY2(output.endsWith("\n1 error, 0 notes\n"), output.constData());
    QCOMPARE(contentOf(served("/wp-content/uploads/versions.txt")), before);
}

QTEST_GUILESS_MAIN(TestVendorDocument)
#include "tst_vendordocument.moc"
