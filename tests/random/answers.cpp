#include "tests/random/answers.h"

#include "tests/net/scene.h"
#include "tests/support/models.h"

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
    return announced(body.size() + 1, body.left(body.size() / 2));
}

RawServer::Answer answerOf(Way way, const QByteArray& body, const QString& elsewhere)
{
    switch (way) {
    case Way::whole:
        return ok(body);
    case Way::inChunks:
        return {{inChunks(body, body.size() / 3 + 1)}, RawServer::End::keepOpen};
    case Way::dripping:
        return {pieces(httpAnswer("200 OK", body)), RawServer::End::keepOpen};
    case Way::redirected:
        return {{httpAnswer("302 Found", {}, {"Location: " + elsewhere.toUtf8()})}, RawServer::End::keepOpen};
    case Way::compressed:
        return ok(gzip(body), {"Content-Encoding: gzip"});
    case Way::overlong:
        return {{announced(body.size() / 2, body)}};
    case Way::cut:
        return {{half(body)}};
    case Way::reset:
        return {{half(body)}, RawServer::End::reset};
    case Way::silent:
        return silence();
    case Way::stalling:
        return {{half(body)}, RawServer::End::keepOpen};
    case Way::notFound:
        return {{httpAnswer("404 Not Found", "nothing here")}, RawServer::End::keepOpen};
    case Way::html:
        return ok("<html><body>Log in=first</body></html>", {"Content-Type: text/html; charset=utf-8"});
    }
    return {};
}

QByteArray goodCatalogue(const RawServer& server, const Plan& plan)
{
    using Kind = Plan::Catalogue;
    const virtualunit::Options unit = plan.units.empty() ? virtualunit::Options{} : plan.units.back();
    const QString stem = models::of(unit.type).stem;
    const QString noPath = server.address({});
    const int version = plan.catalogue == Kind::same    ? unit.version
                        : plan.catalogue == Kind::older ? unit.version - 1
                                                        : unit.version + 1;
    CatalogueEntries entries =
        catalogueEntries(stem, QString::number(version),
                         plan.catalogue == Kind::noPathToImage ? noPath : server.address(imagePath),
                         plan.catalogue == Kind::noPathToChangeLog ? noPath : server.address(changeLogPath));
    entries["MainChangeLog"] = server.address(mainChangeLogPath);
    if (plan.catalogue == Kind::newerUpdater)
        entries["MainVer"] = updater::next;
    if (plan.catalogue == Kind::incomplete)
        entries.remove(stem + "Bin");
    const QByteArray text = "[updater]\r\n" + catalogueText(entries, "\r\n");
    return plan.catalogue == Kind::oversized ? text + QByteArray(11000, '-') : text;
}

QByteArray catalogueOf(const RawServer& server, const Plan& plan)
{
    switch (plan.catalogue) {
    case Plan::Catalogue::empty:
        return "";
    case Plan::Catalogue::broken:
        return QByteArray("\xFF\xFE no entry here\n\n").repeated(20);
    default:
        return goodCatalogue(server, plan);
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
    set(changeLogPath, plan.changeLogWay, "What is new:\r\n- everything\r\n");
    set(mainChangeLogPath, plan.changeLogWay, "A better updater\n");
    set(imagePath, plan.imageWay, plan.image);
}
