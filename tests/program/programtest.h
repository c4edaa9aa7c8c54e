#pragma once

#include "tests/harness/desktop.h"
#include "tests/harness/updateserver.h"

#include <QTest>

/// A test of the whole program, on a desktop of its own that all its rows share.
class ProgramTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        MUST(desktop.start());
        MUST(begin());
    }

protected:
    /// Called once the desktop is there, before the first row.
    virtual Outcome begin() { return {}; }

    Desktop desktop;
};

/// The same, with an update server.
class ServedProgramTest : public ProgramTest
{
protected:
    Outcome begin() override { return server.start(); }

    UpdateServer server;
};
