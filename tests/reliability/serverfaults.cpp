#include "reliability/faults.h"

#include "net/updatechecker.h"

#include <QCoreApplication>
#include <QTimer>
#include <QTimerEvent>

namespace {

using Answer = RawServer::Answer;
using End = RawServer::End;

struct Asked
{
    Phase phase;
    const char* path;
    QByteArray body;
};

std::vector<Asked> allRequests()
{
    return {
        {Phase::catalogue, cataloguePath, catalogueOf("HB4", "27")},
        {Phase::changeLog, changeLogPath, "All is better now."},
        {Phase::download, imagePath, newImage()},
    };
}

FaultRow row(const char* name, const std::function<Answer(const Asked&)>& answer)
{
    FaultRow row{"server", name, "no request to a server is under way then", {}};
    for (const Asked& asked : allRequests()) {
        Scenario scenario = roadTo(asked.phase);
        scenario.answers[asked.path] = answer(asked);
        row.cells.push_back(scenario);
    }
    return row;
}

QByteArray promising(const Asked& asked, int missing)
{
    return "HTTP/1.1 200 OK\r\nContent-Length: " + QByteArray::number(asked.body.size() + missing) +
           "\r\n\r\n" + asked.body;
}

Answer redirectTo(const char* address)
{
    return {{httpAnswer("302 Found", "", {QByteArray("Location: ") + address})}, End::keepOpen};
}

/// The program's patience of 30 s is over at once.
FaultRow silent()
{
    FaultRow silent = row("says nothing for 30 s", [](const Asked&) { return Answer{{}, End::keepOpen}; });
    for (Scenario& scenario : silent.cells)
        scenario.fault = [](Journey& journey) {
            QTimer* timer = journey.window().updateChecker->timeoutTimer;
            QTimerEvent event(timer->timerId());
            QCoreApplication::sendEvent(timer, &event);
        };
    return silent;
}

FaultRow unreachable()
{
    Scenario scenario = roadTo(Phase::catalogue);
    scenario.beforeConnect = [](Journey& journey) { journey.server.stopListening(); };
    return {"server", "cannot be reached", "no request to a server is under way then", {scenario}};
}

} // namespace

std::vector<FaultRow> serverFaults()
{
    const QByteArray page = "<html><body>Welcome to the hotel's network. Please sign in.</body></html>";
    const QByteArray piece(128 * 1024, 'x');
    return {
        unreachable(),
        silent(),
        row("closes without a word", [](const Asked&) { return Answer{{}}; }),
        row("resets the connection",
            [](const Asked& asked) {
                return Answer{{promising(asked, 9)}, End::reset};
            }),
        row("cuts the answer short", [](const Asked& asked) { return Answer{{promising(asked, 9)}}; }),
        row("sends more than it announced",
            [](const Asked& asked) { return Answer{{promising(asked, -3)}}; }),
        row("sends its first 200 bytes one by one",
            [](const Asked& asked) {
                const QByteArray whole = httpAnswer("200 OK", asked.body);
                return Answer{drops(whole.left(200)) + QByteArrayList{whole.mid(200)}, End::keepOpen};
            }),
        row("sends chunks",
            [](const Asked& asked) {
                return Answer{
                    {"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" + chunked(asked.body, 11)},
                    End::keepOpen};
            }),
        row("cuts between two chunks",
            [](const Asked& asked) {
                return Answer{{"HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n" +
                               chunked(asked.body, 11).chopped(5)}};
            }),
        row("compresses",
            [](const Asked& asked) {
                return ok(qCompress(asked.body).mid(4), {"Content-Encoding: deflate"});
            }),
        row("tells neither length nor end",
            [](const Asked& asked) { return Answer{{"HTTP/1.1 200 OK\r\n\r\n" + asked.body}}; }),
        row("never ends",
            [piece](const Asked&) {
                return Answer{
                    {"HTTP/1.1 200 OK\r\nConnection: close\r\n\r\n", piece}, End::close, false, true};
            }),
        row("is a captive portal", [page](const Asked&) { return ok(page, {"Content-Type: text/html"}); }),
        row("sends an empty answer", [](const Asked&) { return ok(""); }),
        row("does not find it (404)",
            [](const Asked&) { return Answer{{httpAnswer("404 Not Found", "no")}}; }),
        row("is broken (500)",
            [](const Asked&) { return Answer{{httpAnswer("500 Internal Server Error", "no")}}; }),
        row("asks for credentials (401)",
            [](const Asked&) {
                return Answer{
                    {httpAnswer("401 Unauthorized", "no", {"WWW-Authenticate: Basic realm=\"x\""})}};
            }),
        row("redirects in a circle",
            [](const Asked& asked) {
                return redirectTo(("http://vendor.example" + QByteArray(asked.path)).constData());
            }),
        row("redirects to another kind of address",
            [](const Asked&) { return redirectTo("file:///etc/hostname"); }),
        row("speaks another protocol", [](const Asked&) { return Answer{{"SSH-2.0-server\r\n"}}; }),
    };
}
