#include "tests/harness/surroundings.h"

QProcessEnvironment bareEnvironment()
{
    const QProcessEnvironment own = QProcessEnvironment::systemEnvironment();
    QProcessEnvironment bare;
    for (const char* name :
         {"PATH", "LD_LIBRARY_PATH", "TZ", "ASAN_OPTIONS", "LSAN_OPTIONS", "UBSAN_OPTIONS"}) {
        if (own.contains(name))
            bare.insert(name, own.value(name));
    }
    bare.insert("LANG", "C.UTF-8");
    bare.insert("QT_QPA_PLATFORM", "xcb");
    bare.insert("NO_AT_BRIDGE", "1");
    bare.insert("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nonexistent"); // this computer may sleep as it likes
    return bare;
}

bool isAboutSurroundings(const QString& line)
{
    return line.startsWith("qt.qpa.xcb: QXcbConnection: XCB error: 3 (BadWindow)") ||
           line.startsWith("The computer may go to sleep: ") ||
           line.startsWith("QPixmap::fromWinHICON(), failed to GetIconInfo()") ||
           // A thread of Wine's that the end of its process has overtaken.
           (line.startsWith("wine client error:") && line.endsWith("sendmsg: Bad file descriptor"));
}
