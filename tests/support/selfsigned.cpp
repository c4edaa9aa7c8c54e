#include "tests/support/selfsigned.h"

#include "tests/support/limits.h"

#include <QFile>
#include <QProcess>
#include <QSslCertificate>
#include <QSslKey>
#include <QTemporaryDir>

std::optional<QSslConfiguration> selfSigned()
{
    const QTemporaryDir folder;
    const QString key = folder.filePath("key");
    const QString certificate = folder.filePath("certificate");
    const QStringList arguments{
        "req",   "-x509", "-newkey", "rsa:2048", "-nodes", "-subj",    "/CN=nobody.example",
        "-days", "1",     "-keyout", key,        "-out",   certificate};
    QFile keyFile(key);
    QProcess openssl;
    openssl.start("openssl", arguments);
    if (!openssl.waitForFinished(limits::hangMs()) || openssl.exitCode() != 0 ||
        !keyFile.open(QIODevice::ReadOnly))
        return std::nullopt;
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setPrivateKey(QSslKey(&keyFile, QSsl::Rsa));
    tls.setLocalCertificateChain(QSslCertificate::fromPath(certificate));
    return tls;
}
