#include "tests/virtualunit/hidcalls.h"

#include <QTest>

#include <functional>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using Action = std::function<void()>;
Q_DECLARE_METATYPE(Action)

namespace {

struct Ending
{
    int status = 0; ///< of waitpid
    QByteArray errorOutput;
};

/// Runs `action` in a process of its own, which then ends by exit(0).
Ending inChildProcess(const Action& action)
{
    int ends[2];
    if (pipe(ends) != 0)
        return {-1, "no pipe"};
    const pid_t child = fork();
    if (child == 0) {
        dup2(ends[1], STDERR_FILENO);
        const rlimit none{0, 0};
        setrlimit(RLIMIT_CORE, &none);
        signal(SIGABRT, SIG_DFL); // QtTest's own handler would write a report
        action();
        std::exit(0);
    }
    close(ends[1]);
    Ending ending;
    char buffer[256];
    for (ssize_t size = 1; size > 0;) {
        size = read(ends[0], buffer, sizeof buffer);
        ending.errorOutput.append(buffer, static_cast<int>(std::max<ssize_t>(size, 0)));
    }
    close(ends[0]);
    waitpid(child, &ending.status, 0);
    return ending;
}

unsigned char bytes[65] = {};
wchar_t text[16] = {};

} // namespace

/// What tests can ask and arrange, and what becomes of callers with a bug.
class TestVirtualBus : public QObject
{
    Q_OBJECT

private slots:
    void init() { virtualbus::clear(); }
    void cleanup() { virtualbus::clear(); }

    void badHandleEndsTheProcess_data();
    void badHandleEndsTheProcess();
    void callsAreRecordedInOrder();
    void failedReads();
    void clearLeavesHandlesUnplugged();
    void listsMayBeFreedAfterClear();
    void viewOfAUnit();
    void viewOfNothing();
};

void TestVirtualBus::badHandleEndsTheProcess_data()
{
    QTest::addColumn<Action>("call");
    const auto row = [](const char* complaint, Action call) { QTest::newRow(complaint) << call; };
    row("hid_write called with a null handle", [] { hid_write(nullptr, bytes, 65); });
    row("hid_read_timeout called with a null handle", [] { hid_read_timeout(nullptr, bytes, 64, 0); });
    row("hid_read called with a null handle", [] { hid_read(nullptr, bytes, 64); });
    row("hid_set_nonblocking called with a null handle", [] { hid_set_nonblocking(nullptr, 1); });
    row("hid_send_feature_report called with a null handle",
        [] { hid_send_feature_report(nullptr, bytes, 65); });
    row("hid_get_feature_report called with a null handle",
        [] { hid_get_feature_report(nullptr, bytes, 65); });
    row("hid_get_input_report called with a null handle", [] { hid_get_input_report(nullptr, bytes, 65); });
    row("hid_close called with a null handle", [] { hid_close(nullptr); });
    row("hid_get_manufacturer_string called with a null handle",
        [] { hid_get_manufacturer_string(nullptr, text, 16); });
    row("hid_get_product_string called with a null handle",
        [] { hid_get_product_string(nullptr, text, 16); });
    row("hid_get_serial_number_string called with a null handle",
        [] { hid_get_serial_number_string(nullptr, text, 16); });
    row("hid_get_indexed_string called with a null handle",
        [] { hid_get_indexed_string(nullptr, 1, text, 16); });
    row("hid_get_device_info called with a null handle", [] { hid_get_device_info(nullptr); });
    row("hid_write called with a closed handle", [] {
        hid_device* const device = hidcalls::openUnit("hb4");
        hid_close(device);
        hid_write(device, bytes, 65);
    });
    row("hid_close called with a foreign handle", [] { hid_close(reinterpret_cast<hid_device*>(bytes)); });
    row("hid_free_enumeration called with a foreign list", [] { // which it is once it was freed
        virtualbus::attach(host::options("hb4"));
        hid_device_info* const list = hid_enumerate(0, 0);
        hid_free_enumeration(list);
        hid_free_enumeration(list);
    });
}

void TestVirtualBus::badHandleEndsTheProcess()
{
    QFETCH(Action, call);
    const Ending ending = inChildProcess(call);
    QVERIFY(WIFSIGNALED(ending.status));
    QCOMPARE(WTERMSIG(ending.status), SIGABRT);
    QCOMPARE(ending.errorOutput, QByteArray("talvex-virtual-hid: ") + QTest::currentDataTag() + '\n');
}

void TestVirtualBus::callsAreRecordedInOrder()
{
    virtualbus::attach(host::options("hb4"));
    hid_device_info* list = hid_enumerate(0x3A5D, 0x0A21);
    hid_device* device = hid_open_path(list->path);
    QVERIFY(hid_open_path("virtual:9") == nullptr);
    hid_free_enumeration(list);
    hid_get_serial_number_string(device, text, 16);
    hid_read_timeout(device, bytes, 64, 1000);
    const unsigned char report[3] = {0, 0x80, 0x0a};
    hid_write(device, report, 3);
    hid_close(device);
    QStringList lines;
    for (const virtualbus::Call& call : virtualbus::calls())
        lines << QString::fromStdString(virtualbus::lineOf(call));
    const QStringList expected{"hid_enumerate vendor=3a5d product=0a21 result=1",
                               "hid_open_path path=virtual:1 result=1",
                               "hid_open_path path=virtual:9 result=0",
                               "hid_free_enumeration",
                               "hid_get_serial_number_string handle=1 length=16 result=0",
                               "hid_read_timeout handle=1 length=64 timeout=1000 result=64",
                               "hid_write handle=1 length=3 bytes=00800a result=3",
                               "hid_close handle=1"};
    QCOMPARE(lines, expected);
}

void TestVirtualBus::failedReads()
{
    hid_device* const device = hidcalls::openUnit("hb4");
    virtualbus::failReads(1, true);
    QCOMPARE(hid_read_timeout(device, bytes, 64, 1000), -1);
    virtualbus::failReads(1, false);
    QCOMPARE(hid_read_timeout(device, bytes, 64, 1000), 64);
}

void TestVirtualBus::clearLeavesHandlesUnplugged()
{
    const auto [script, number, device] = hidcalls::OpenScript();
    virtualbus::clear();
    QCOMPARE(script.use_count(), 1L);
    QCOMPARE(virtualbus::openHandles(), 0);
    QVERIFY(virtualbus::calls().empty());
    QCOMPARE(hid_write(device, bytes, 65), -1);
    QCOMPARE(hid_read_timeout(device, bytes, 64, -1), -1);
    hid_close(device);
    QCOMPARE(script->closings, 0);
    QCOMPARE(virtualbus::attach(host::options("hb4")), 1);
    QVERIFY(hid_open_path("virtual:1") != nullptr);
    QVERIFY(virtualbus::callsOf("hid_open_path").back().result == 1);
}

void TestVirtualBus::listsMayBeFreedAfterClear()
{
    virtualbus::attach(host::options("hb4"));
    hid_device_info* list = hid_enumerate(0, 0);
    QCOMPARE(virtualbus::enumerationsNotFreed(), 1);
    virtualbus::clear();
    QCOMPARE(virtualbus::enumerationsNotFreed(), 0);
    hid_free_enumeration(list);
}

void TestVirtualBus::viewOfAUnit()
{
    hidcalls::write(hidcalls::openUnit("hb4"), host::finalPacket(host::older, 1, "abc"));
    const virtualbus::UnitView view = virtualbus::unit(1);
    QVERIFY(view.journal == (std::vector<std::string>{"opened", "error packet-unexpected"}));
    QVERIFY(view.errors == (std::vector<std::string>{"error packet-unexpected"}));
    QVERIFY(view.verdict == virtualunit::Verdict::None);
}

void TestVirtualBus::viewOfNothing()
{
    const int script = virtualbus::attach({}, std::make_shared<ScriptedUnit>());
    QVERIFY(virtualbus::unit(script).journal.empty());
    QVERIFY(virtualbus::unit(99).journal.empty());
}

QTEST_GUILESS_MAIN(TestVirtualBus)
#include "tst_virtualbus.moc"
