#include "tests/reliability/faults.h"

#include "net/updatechecker.h"

#include <QCoreApplication>
#include <QCryptographicHash>
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

const std::array<Asked, 3>& allRequests()
{
    static const std::array<Asked, 3> all{{
        {Phase::catalogue, cataloguePath, catalogueOf("HB4", "27")},
        {Phase::changeLog, changeLogPath, "All is better now."},
        {Phase::download, imagePath, newImage()},
    }};
    return all;
}

constexpr auto noRequest = "no request is under way then";

/// In place of the catalogue, the change log and the image.
using Three = std::array<Outcome, 3>;
const Three allBad{outcome::noInternet, outcome::noInternet, outcome::noInternet};
const Three allGood{outcome::updated, outcome::updated, outcome::updated};
const Three onlyImageBad{outcome::updated, outcome::updated, outcome::noInternet};
/// A change log may be anything.
const Three onlyChangeLogGood{outcome::noInternet, outcome::updated, outcome::noInternet};
const Three imageCut{outcome::noInternet, outcome::updated, outcome::updatedByCutImage};
const Three imageEmpty{outcome::noInternet, outcome::updated, outcome::noFile};

FaultRow row(const char* name, const Three& expected, const std::function<Answer(const Asked&)>& answer)
{
    FaultRow row{"server", name, noRequest, {}};
    for (std::size_t i = 0; i < expected.size(); ++i) {
        const Asked& asked = allRequests().at(i);
        row.cells.push_back({roadTo(asked.phase), expected.at(i)});
        row.cells.back().scenario.answers[asked.path] = answer(asked);
    }
    return row;
}

QByteArray promising(const Asked& asked, int missing)
{
    return announced(asked.body.size() + missing, asked.body);
}

Answer redirectTo(const char* address)
{
    return {{httpAnswer("302 Found", "", {QByteArray("Location: ") + address})}, End::keepOpen};
}

/// The program's patience of 30 s is over at once.
FaultRow silent()
{
    FaultRow silent = row("says nothing for 30 s", allBad, [](const Asked&) { return silence(); });
    for (Cell& cell : silent.cells)
        cell.scenario.fault = [](Journey& journey) {
            auto* timer = journey.window().leftovers().checker->findChild<QTimer*>();
            QTimerEvent event(timer->timerId());
            QCoreApplication::sendEvent(timer, &event);
        };
    return silent;
}

FaultRow unreachable()
{
    Scenario scenario = roadTo(Phase::catalogue);
    scenario.beforeConnect = [](Journey& journey) { journey.server.stopListening(); };
    constexpr auto told = "the network problem is reported";
    constexpr auto nobodyListens = "tst_answers::nobodyListens";
    return {"server",
            "cannot be reached",
            noRequest,
            {{scenario, outcome::noInternet}},
            {{Phase::changeLog, told, nobodyListens}, {Phase::download, told, nobodyListens}}};
}

/// An answer to the request for the image whose digest is in the catalogue.
FaultRow besideTheDigest(const char* name, const Answer& answer, const Outcome& expected)
{
    const QByteArray digest = QCryptographicHash::hash(newImage(), QCryptographicHash::Sha256).toHex();
    Scenario scenario = roadTo(Phase::download);
    scenario.answers[cataloguePath] = ok(catalogueOf("HB4", "27") + "\nHB4Sha256=" + digest + '\n');
    scenario.answers[imagePath] = answer;
    return {"server", name, "the digest is only about the image", {{scenario, expected}}};
}

std::vector<FaultRow> digestFaults()
{
    const QByteArray image = newImage();
    return {
        besideTheDigest("gives the image's digest and sends that image", ok(image), outcome::updated),
        besideTheDigest("gives the image's digest and sends another image", ok(image.chopped(1) + '!'),
                        outcome::damaged),
        besideTheDigest("gives the image's digest and sends more than it announced",
                        Answer{{announced(image.size() - 3, image)}}, outcome::damaged),
    };
}

/// In a build with a catalogue key.
std::vector<FaultRow> signatureFaults()
{
    constexpr auto onlyCatalogue = "only the catalogue is signed";
    constexpr auto told = "“The update server's answer is not genuine.…”; nothing in it is used";
    const auto row = [](const char* name, const char* outcome, const char* test) {
        return FaultRow{"server", name, onlyCatalogue, {}, {{Phase::catalogue, outcome, test}}};
    };
    return {
        row("with a catalogue key: alters catalogue or signature", told, "tst_signedcheck::refused"),
        row("with a catalogue key: has no signature, or breaks off", "the network problem is reported",
            "tst_signedcheck::otherAnswersByTheServer"),
        row("with a catalogue key: gives no digest of the image", "the network problem is reported",
            "tst_signedcheck::outcome"),
    };
}

FaultRow twoAtOnce()
{
    return {
        "server",
        "answers two requests at once",
        "no control starts a second request then",
        {},
        {{Phase::catalogue, "whatever happens to the two, the next check works",
          "tst_overlappingrequests::secondCheckInFlight"},
         {Phase::download, "no partial image is stored", "tst_overlappingrequests::checkDuringADownload"}}};
}

} // namespace

std::vector<FaultRow> serverFaults()
{
    const QByteArray page = "<html><body>Welcome to the hotel's network. Please sign in.</body></html>";
    const QByteArray piece(128 * 1024, 'x');
    std::vector<FaultRow> rows{
        unreachable(),
        silent(),
        row("closes without a word", allBad, [](const Asked&) { return Answer{{}}; }),
        row("resets the connection", allBad,
            [](const Asked& asked) {
                return Answer{{promising(asked, 9)}, End::reset};
            }),
        row("cuts the answer short", allBad,
            [](const Asked& asked) { return Answer{{promising(asked, 9)}}; }),
        row("sends more than it announced", imageCut,
            [](const Asked& asked) { return Answer{{promising(asked, -3)}}; }),
        row("sends its first 200 bytes one by one", allGood,
            [](const Asked& asked) {
                const QByteArray whole = httpAnswer("200 OK", asked.body);
                return Answer{drops(whole.left(200)) + QByteArrayList{whole.mid(200)}, End::keepOpen};
            }),
        row("sends chunks", allGood,
            [](const Asked& asked) {
                return Answer{{inChunks(asked.body, 11)}, End::keepOpen};
            }),
        row("cuts between two chunks", allBad,
            [](const Asked& asked) { return Answer{{inChunks(asked.body, 11).chopped(5)}}; }),
        row("compresses", onlyImageBad,
            [](const Asked& asked) {
                return ok(qCompress(asked.body).mid(4), {"Content-Encoding: deflate"});
            }),
        row("announces neither length nor end", allGood,
            [](const Asked& asked) { return Answer{{unannounced(asked.body)}}; }),
        row("never ends", allBad, [piece](const Asked&) { return endless(piece); }),
        row("is a captive portal", onlyChangeLogGood,
            [page](const Asked&) { return ok(page, {"Content-Type: text/html"}); }),
        row("sends an empty answer", imageEmpty, [](const Asked&) { return ok(""); }),
        row("does not find it (404)", allBad,
            [](const Asked&) { return Answer{{httpAnswer("404 Not Found", "no")}}; }),
        row("is broken (500)", allBad,
            [](const Asked&) { return Answer{{httpAnswer("500 Internal Server Error", "no")}}; }),
        row("asks for credentials (401)", allBad,
            [](const Asked&) {
                return Answer{
                    {httpAnswer("401 Unauthorized", "no", {"WWW-Authenticate: Basic realm=\"x\""})}};
            }),
        row("redirects in a circle", allBad,
            [](const Asked& asked) {
                return redirectTo(("http://vendor.example" + QByteArray(asked.path)).constData());
            }),
        row("redirects to another kind of address", allBad,
            [](const Asked&) { return redirectTo("file:///etc/hostname"); }),
        row("speaks another protocol", allBad, [](const Asked&) { return Answer{{"SSH-2.0-server\r\n"}}; }),
        twoAtOnce(),
    };
    for (const std::vector<FaultRow>& more : {digestFaults(), signatureFaults()})
        rows.insert(rows.end(), more.begin(), more.end());
    return rows;
}
