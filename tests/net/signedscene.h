#pragma once

#include "tests/net/scene.h"
#include "tests/support/limits.h"
#include "tests/support/signer.h"
#include "tests/support/testkey.h"

#include <QTest>

inline constexpr auto signaturePath = "/wp-content/uploads/versions.txt.minisig";

/// A checker with a key and its server, the owner of the key, and somebody else with another one.
class SignedScene : public Scene
{
public:
    void reset()
    {
        testkey::set(signer.publicKey());
        Scene::reset();
    }

    /// A catalogue as of Scene, with the digest that a program with a key demands.
    [[nodiscard]] QByteArray signable(const CatalogueEntries& changes = {}) const
    {
        CatalogueEntries all{{"HB4Sha256", QString(64, 'a')}};
        for (auto change = changes.begin(); change != changes.end(); ++change)
            all[change.key()] = change.value();
        return catalogue(all);
    }

    /// Has the server give this catalogue and its signature.
    void publish(const QByteArray& bytes)
    {
        server.setAnswer(cataloguePath, ok(bytes));
        server.setAnswer(signaturePath, ok(signer.sign(bytes)));
    }

    /// Makes the checker check, and waits until it rests after this many events.
    void check(qsizetype events)
    {
        journal->events.clear();
        checker->checkUpdate();
        QVERIFY(
            QTest::qWaitFor([&] { return rests(events); }, limits::hangMs())); // looks more often than QTRY
    }

    /// Whether a download finds no address of an image. Forgets the events so far.
    [[nodiscard]] bool knowsNoImage()
    {
        journal->events.clear();
        checker->onNeedDownloadNewFirmware();
        return journal->events == told::downloadError();
    }

    Signer signer;
    Signer stranger;
};
