#pragma once

#include <QString>
#include <QTcpServer>

/// A server on loopback that accepts connections and never answers.
class SilentServer : public QTcpServer
{
public:
    SilentServer() { listen(QHostAddress::LocalHost); }
    [[nodiscard]] QString address() const { return "http://127.0.0.1:" + QString::number(serverPort()); }
};
