#include "tests/support/signer.h"

#include "tests/support/filecontent.h"
#include "tests/support/limits.h"

#include <QProcess>

namespace {

void runMinisign(const QStringList& arguments)
{
    QProcess minisign;
    minisign.setProcessChannelMode(QProcess::MergedChannels);
    minisign.start("minisign", arguments);
    minisign.closeWriteChannel(); // nobody answers a question
    if (!minisign.waitForFinished(limits::hangMs()) || minisign.exitStatus() != QProcess::NormalExit ||
        minisign.exitCode() != 0)
        qFatal("minisign %s: %s %s", qPrintable(arguments.join(' ')), qPrintable(minisign.errorString()),
               minisign.readAll().constData());
}

} // namespace

Signer::Signer() : key(folder.filePath("own"))
{
    runMinisign({"-G", "-W", "-p", key + ".pub", "-s", key});
}

Signer::Signer(const QString& secretKey) : key(secretKey) {}

QByteArray Signer::publicKey() const
{
    return contentOrFatal(key + ".pub").split('\n').value(1);
}

QByteArray Signer::sign(const QByteArray& content, Kind kind, const QByteArray& trustedComment) const
{
    const QString name = folder.filePath("content");
    if (!writeFile(name, content))
        qFatal("cannot write %s", qPrintable(name));
    QStringList arguments{"-S", "-s", key, "-m", name, "-x", name + ".minisig", "-t", trustedComment};
    if (kind == Kind::whole)
        arguments += "-l";
    runMinisign(arguments);
    return contentOrFatal(name + ".minisig");
}

QByteArray withLine(const QByteArray& file, int line, const QByteArray& text)
{
    QByteArrayList lines = file.split('\n');
    lines[line] = text;
    return lines.join('\n');
}

QByteArray withDecodedLine(const QByteArray& file, int line, const QByteArray& bytes)
{
    return withLine(file, line, bytes.toBase64());
}

QByteArray decodedLine(const QByteArray& file, int line)
{
    return QByteArray::fromBase64(file.split('\n').at(line));
}

QByteArray withBitFlipped(QByteArray bytes, int bit)
{
    bytes[bit / 8] = static_cast<char>(bytes.at(bit / 8) ^ (1 << (bit % 8)));
    return bytes;
}
