#pragma once

#include "virtualunit/hidapi/virtualbus.h"

#include <QByteArray>

#include <deque>
#include <vector>

/// A device that answers the n-th output report with the n-th group of replies, byte by byte as told.
class ReplyingUnit : public virtualbus::Device
{
public:
    using Replies = std::vector<QByteArray>;

    explicit ReplyingUnit(std::vector<Replies> script = {}) : answers(script.begin(), script.end()) {}

    bool open(virtualbus::Milliseconds /*now*/) override { return true; }
    void close(virtualbus::Milliseconds /*now*/) override {}

    virtualunit::VirtualUnit::Receipt write(std::span<const std::uint8_t> bytes,
                                            virtualbus::Milliseconds /*now*/) override
    {
        ++writes;
        if (!answers.empty()) {
            for (const QByteArray& reply : answers.front())
                say(reply);
            answers.pop_front();
        } else if (whenScriptIsOver) {
            whenScriptIsOver(bytes);
        }
        return {};
    }

    std::optional<std::vector<std::uint8_t>> takeInput(virtualbus::Milliseconds /*now*/) override
    {
        saidOne = !saidOne; // the bus asks until there is nothing more
        if (due.empty() && saidOne && !saysForEver.isEmpty())
            say(saysForEver);
        if (due.empty())
            return std::nullopt;
        const QByteArray report = due.front();
        due.pop_front();
        return std::vector<std::uint8_t>(report.begin(), report.end());
    }

    /// Makes an input report of 64 bytes, padded with 0, due. Under the bus's lock only.
    void say(QByteArray report)
    {
        report.append(64 - report.size(), '\0');
        due.push_back(report);
    }

    int writes = 0;
    QByteArray saysForEver; ///< said whenever there is nothing else to say
    std::function<void(std::span<const std::uint8_t>)> whenScriptIsOver;

private:
    bool saidOne = false;
    std::deque<Replies> answers;
    std::deque<QByteArray> due;
};

/// Replies of the log exchange.
inline QByteArray headerReply(int parts)
{
    QByteArray reply = " " + QByteArray(32, 'd');
    for (const int shift : {24, 16, 8, 0})
        reply += static_cast<char>(parts >> shift & 0xFF);
    return reply;
}
inline QByteArray partReply(char fill)
{
    return "@" + QByteArray(63, fill);
}
inline QByteArray lastReply(int length, char fill)
{
    return "P" + QByteArray(1, static_cast<char>(length)) + QByteArray(62, fill);
}
