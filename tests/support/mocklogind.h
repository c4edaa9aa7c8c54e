#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

/// A private message bus with Debian's mock of logind (python3-dbusmock) on it, which this process takes for
/// the system bus. Ends both with itself.
class MockLogind
{
public:
    MockLogind();
    ~MockLogind();
    MockLogind(const MockLogind&) = delete;
    MockLogind& operator=(const MockLogind&) = delete;

    /// False: the packages dbus and python3-dbusmock are missing, or did not start within 20 s.
    [[nodiscard]] bool isReady() const { return ready; }

    /// Where the system bus of this process is, also without a mock: libdbus asks the environment only once.
    [[nodiscard]] static QString busPath();

    /// "what|who|why|mode" of each inhibitor lock in force.
    [[nodiscard]] QStringList inhibitors() const;

private:
    QProcess bus;
    QProcess logind;
    bool ready = false;
};
