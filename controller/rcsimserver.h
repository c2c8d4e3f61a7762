#pragma once

#include <QHostAddress>
#include <QObject>

class QTcpServer;
class QTcpSocket;

namespace rc {

class Controller;

// Serves the wire protocol over TCP: one session per connection, one JSON line per message.
class RcsimServer : public QObject
{
    Q_OBJECT

public:
    explicit RcsimServer(Controller *controller, QObject *parent = nullptr);
    ~RcsimServer() override;

    bool listen(const QHostAddress &address, quint16 port, QString *error = nullptr);
    QHostAddress address() const;
    quint16 port() const;

private:
    void acceptConnections();
    void serve(QTcpSocket *socket);

    Controller *m_controller;
    QTcpServer *m_server;
};

} // namespace rc
