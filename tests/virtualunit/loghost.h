#pragma once

#include "tests/virtualunit/host.h"

namespace host {

inline const Bytes acknowledge = report({{1, 0x30}});
inline const Bytes resend = report({{1, 0x70}});

inline Bytes logRequest(const models::Model& family, int number = 1)
{
    return report({{family.command(), 0x10}, {family.command() + 1, number}});
}

inline virtualunit::Options withLog(const QString& text, const Bytes& log)
{
    virtualunit::Options options = host::options(text);
    options.log.emplace(log.begin(), log.end());
    return options;
}

/// A host that has asked for a log.
class LogHost : public Host
{
public:
    LogHost(const QString& text, const Bytes& log) : Host(withLog(text, log)) { ask(); }
    explicit LogHost(const QString& text) : Host(text) { ask(); }

    /// The replies that arrive within 10 ms, in hexadecimal, without their trailing zero bytes.
    QStringList replies()
    {
        wait(10);
        QStringList all;
        for (Bytes reply : read()) {
            while (reply.size() > 1 && reply.endsWith('\0'))
                reply.chop(1);
            all << QString::fromLatin1(reply.toHex());
        }
        return all;
    }

    /// Acknowledges the previous reply and returns the next.
    Bytes next()
    {
        write(acknowledge);
        wait(10);
        return read().value(0);
    }

private:
    void ask()
    {
        read();
        write(logRequest(models::of(unit.settings().type)));
    }
};

/// The header that announces `log`, with its count in hexadecimal, as LogHost::replies() shows it.
inline QString headerOf(const Bytes& log, const QString& count)
{
    QString text = "20" + QString::fromLatin1(digestOf(log).toHex()) + count;
    while (text.endsWith("00"))
        text.chop(2);
    return text;
}

} // namespace host
