#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

/// A private message bus with Debian's mock of logind (python3-dbusmock) on it, used by this process as its
/// system bus. Stops both in its destructor.
class MockLogind
{
public:
    MockLogind();
    ~MockLogind();
    Q_DISABLE_COPY_MOVE(MockLogind)

    /// False if the packages dbus and python3-dbusmock are missing or their programs did not start within 20
    /// s.
    [[nodiscard]] bool isReady() const { return ready; }

    /// The path of this process's system bus, needed even without a mock, because libdbus reads the
    /// environment only once.
    [[nodiscard]] static QString busPath();

    /// "what|who|why|mode" of each inhibitor lock in force.
    [[nodiscard]] QStringList inhibitors() const;

private:
    QProcess bus;
    QProcess logind;
    bool ready = false;
};
