#include "tests/random/answers.h"

#include "tests/net/scene.h"

namespace {

using Way = Plan::Way;

QByteArrayList pieces(const QByteArray& bytes)
{
    QByteArrayList all;
    const int size = bytes.size() / 40 + 1;
    for (int start = 0; start < bytes.size(); start += size)
        all += bytes.mid(start, size);
    return all;
}

/// Half of the body that the head announces.
QByteArray half(const QByteArray& body)
{
    return httpHead({"HTTP/1.1 200 OK", "Content-Length: " + QByteArray::number(body.size() + 1)}) +
           body.left(body.size() / 2);
}

RawServer::Answer answerOf(Way way, const QByteArray& body, const QString& elsewhere)
{
    const QByteArray lengthOfHalf = "Content-Length: " + QByteArray::number(body.size() / 2);
    switch (way) {
    case Way::whole:
        return ok(body);
    case Way::inChunks:
        return {{httpHead({"HTTP/1.1 200 OK", "Transfer-Encoding: chunked"}) +
                 chunked(body, body.size() / 3 + 1)},
                RawServer::End::keepOpen};
    case Way::dripping:
        return {pieces(httpAnswer("200 OK", body)), RawServer::End::keepOpen};
    case Way::redirected:
        return {{httpAnswer("302 Found", {}, {"Location: " + elsewhere.toUtf8()})}, RawServer::End::keepOpen};
    case Way::compressed:
        return ok(gzip(body), {"Content-Encoding: gzip"});
    case Way::overlong:
        return {{httpHead({"HTTP/1.1 200 OK", lengthOfHalf}) + body}};
    case Way::cut:
        return {{half(body)}};
    case Way::reset:
        return {{half(body)}, RawServer::End::reset};
    case Way::silent:
        return {{}, RawServer::End::keepOpen};
    case Way::stalling:
        return {{half(body)}, RawServer::End::keepOpen};
    case Way::notFound:
        return {{httpAnswer("404 Not Found", "nothing here")}, RawServer::End::keepOpen};
    case Way::html:
        return ok("<html><body>Log in=first</body></html>", {"Content-Type: text/html; charset=utf-8"});
    }
    return {};
}

QByteArray entries(const RawServer& server, const Plan& plan)
{
    using Kind = Plan::Catalogue;
    const virtualunit::Options unit = plan.units.empty() ? virtualunit::Options{} : plan.units.back();
    const QString stem = unitModels.at(static_cast<std::size_t>(unit.type)).catalogueStem;
    const QString noPath = server.address({});
    const int version = plan.catalogue == Kind::same    ? unit.version
                        : plan.catalogue == Kind::older ? unit.version - 1
                                                        : unit.version + 1;
    QStringList lines{"[updater]", "MainVer=" + QString(plan.catalogue == Kind::newerUpdater ? "12" : "11"),
                      "MainChangeLog=" + server.address(path::mainChangeLog),
                      "MacMainBin=http://upd.test/updater.zip", stem + "Ver=" + QString::number(version)};
    if (plan.catalogue != Kind::incomplete)
        lines +=
            stem + "Bin=" + (plan.catalogue == Kind::noPathToImage ? noPath : server.address(path::image));
    lines += stem + "ChangeLog=" +
             (plan.catalogue == Kind::noPathToChangeLog ? noPath : server.address(path::changeLog));
    if (plan.catalogue == Kind::oversized)
        lines += QString(11000, '-');
    return (lines.join("\r\n") + "\r\n").toUtf8();
}

QByteArray catalogueOf(const RawServer& server, const Plan& plan)
{
    switch (plan.catalogue) {
    case Plan::Catalogue::empty:
        return "";
    case Plan::Catalogue::broken:
        return QByteArray("\xFF\xFE no entry here\n\n").repeated(20);
    default:
        return entries(server, plan);
    }
}

} // namespace

void setAnswers(RawServer& server, const Plan& plan)
{
    const auto set = [&server](const QString& at, Way way, const QByteArray& body) {
        server.setAnswer(at, answerOf(way, body, server.address("/elsewhere" + at)));
        server.setAnswer("/elsewhere" + at, ok(body));
    };
    set(cataloguePath, plan.catalogueWay, catalogueOf(server, plan));
    set(path::changeLog, plan.changeLogWay, "What is new:\r\n- everything\r\n");
    set(path::mainChangeLog, plan.changeLogWay, "A better updater\n");
    set(path::image, plan.imageWay, plan.image);
}
