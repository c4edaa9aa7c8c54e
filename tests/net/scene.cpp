#include "tests/net/scene.h"

#include "tests/support/limits.h"
#include "tests/support/systemproxy.h"

#include <QNetworkProxyFactory>
#include <QTest>

#include <array>
#include <cstdint>

namespace {

QByteArray littleEndian(std::uint32_t value)
{
    QByteArray bytes;
    for (int shift = 0; shift < 32; shift += 8)
        bytes.append(static_cast<char>(value >> shift));
    return bytes;
}

std::uint32_t crc32(const QByteArray& bytes)
{
    std::uint32_t crc = ~0U;
    for (const char byte : bytes) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc >> 1) ^ ((crc & 1) != 0 ? 0xEDB88320U : 0U);
    }
    return ~crc;
}

} // namespace

QByteArray nameOf(Request request)
{
    constexpr std::array names{"catalogue", "change log", "updater's change log", "image"};
    return names.at(static_cast<std::size_t>(request));
}

void addRequests()
{
    QTest::addColumn<Request>("request");
    for (const Request request : everyRequest)
        QTest::newRow(nameOf(request)) << request;
}

Scene::Scene()
{
    setSystemProxy(server.address({}));
    QNetworkProxyFactory::setUseSystemConfiguration(true);
}

void Scene::reset()
{
    journal.reset();
    checker.reset();
    server.clear();
    server.setAnswer(changeLogPath, ok("better"));
    server.setAnswer(mainChangeLogPath, ok("new look"));
    checker = std::make_unique<UpdateChecker>();
    checker->setUnitType(UNIT_HB4);
    checker->setCurVersion(static_cast<unsigned char>(23));
    checker->setCurVersion(QStringLiteral("23"));
    journal = std::make_unique<CheckerJournal>(*checker);
}

void Scene::ask(Request request, const QString& address)
{
    switch (request) {
    case Request::catalogue:
        checker->checkUpdate();
        break;
    case Request::changeLog:
        state().newVersion = "27";
        state().changeLogUrl = address;
        checker->downloadChangeLog();
        break;
    case Request::mainChangeLog:
        state().mainVersion = updater::next;
        state().mainChangeLogUrl = address;
        checker->downloadMainChangeLog();
        break;
    case Request::image:
        state().binUrl = address;
        checker->onNeedDownloadNewFirmware();
        break;
    }
}

void Scene::checkAgainst(const QByteArray& catalogue)
{
    server.setAnswer(cataloguePath, ok(catalogue));
    checker->checkUpdate();
}

void Scene::letTheClockFire() const
{
    QTimerEvent event(clock().timerId());
    QCoreApplication::sendEvent(&clock(), &event);
}

QString Scene::path(Request request)
{
    constexpr std::array paths{cataloguePath, changeLogPath, mainChangeLogPath, imagePath};
    return paths.at(static_cast<std::size_t>(request));
}

QStringList Scene::networkError(Request request) const
{
    if (request == Request::catalogue)
        return {told::log("Error by download info file"), told::problem()};
    constexpr std::array lines{"", "UpdateChecker::downloadChangeLogDone",
                               "UpdateChecker::downloadMainChangeLogDone", "UpdateChecker::onDone"};
    const QString error = reply() != nullptr ? reply()->errorString() : "(no reply was kept)";
    return {told::log(lines.at(static_cast<std::size_t>(request))), told::problem(),
            told::log("Error by download update file"), told::signal("checkversionError", {error})};
}

QByteArray Scene::catalogue(const CatalogueEntries& changes) const
{
    CatalogueEntries entries =
        catalogueEntries("HB4", "27", server.address(imagePath), server.address(changeLogPath));
    entries["MainChangeLog"] = server.address(mainChangeLogPath);
    for (auto change = changes.begin(); change != changes.end(); ++change)
        entries[change.key()] = change.value();
    return catalogueText(entries);
}

void Scene::leaveStaleCatalogue()
{
    server.setAnswer(cataloguePath, {{announced(1000, "HB4Ver=99\n")}});
    checker->checkUpdate();
    QTRY_COMPARE(journal->events, networkError(Request::catalogue));
    journal->events.clear();
}

bool Scene::hasStaleCatalogue()
{
    journal->events.clear();
    server.setAnswer(changeLogPath, ok("better"));
    checkAgainst(catalogue({{"HB4Ver", {}}}));
    (void)QTest::qWaitFor([this] { return rests(1); }, limits::hangMs());
    return journal->events == QStringList{told::signal("findNewVersion", {"99", "better"})};
}

bool Scene::rests(qsizetype events) const
{
    return !checker->isBusy() && journal->events.size() >= events;
}

QByteArray gzip(const QByteArray& body)
{
    constexpr int sizeAndZlibHead = 4 + 2;
    constexpr int zlibSum = 4;
    const QByteArray zlib = qCompress(body);
    const QByteArray deflated = zlib.mid(sizeAndZlibHead, zlib.size() - sizeAndZlibHead - zlibSum);
    const QByteArray head("\x1f\x8b\x08\0\0\0\0\0\0\xff", 10);
    return head + deflated + littleEndian(crc32(body)) +
           littleEndian(static_cast<std::uint32_t>(body.size()));
}
