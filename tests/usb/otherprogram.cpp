#include "tests/usb/otherprogram.h"

#include "tests/harness/waiting.h"

namespace {

QString clientOf(const QString& flavour)
{
    return flavour == "hidraw" ? TALVEX_CLIENT_HIDRAW : TALVEX_CLIENT_LIBUSB;
}

} // namespace

Outcome OtherProgram::hold(const QString& flavour)
{
    process.start(clientOf(flavour), {"hold"});
    QByteArray told;
    const bool opened = waitUntil([&] {
        told += process.readAllStandardOutput();
        return told == "opened\n" || process.state() == QProcess::NotRunning;
    });
    return opened && told == "opened\n" ? Outcome() : Outcome("the other program has no unit: " + told);
}

Outcome OtherProgram::letGo()
{
    if (process.state() == QProcess::NotRunning)
        return {};
    process.closeWriteChannel();
    const bool ended = waitUntil([&] { return process.state() == QProcess::NotRunning; });
    return ended && process.exitCode() == 0 ? Outcome() : Outcome("the other program did not let go");
}

double OtherProgram::pacedRate(const QString& flavour, int reports)
{
    QProcess writer;
    writer.start(clientOf(flavour), {"pace", QString::number(reports)});
    if (!writer.waitForFinished(limits::hangMs()) || writer.exitCode() != 0)
        return 0;
    return reports * 1000.0 / writer.readAllStandardOutput().trimmed().toDouble();
}
