#include "rcsimserver.h"

#include "controller.h"

#include <orbat/lineendpoint.h>
#include <orbat/transport.h>

#include <QPointer>
#include <QTcpServer>
#include <QTcpSocket>

namespace rc {

RcsimServer::RcsimServer(Controller *controller, QObject *parent)
    : QObject(parent), m_controller(controller), m_server(new QTcpServer(this))
{
    connect(m_server, &QTcpServer::newConnection, this, &RcsimServer::acceptConnections);
}

RcsimServer::~RcsimServer() = default;

bool RcsimServer::listen(const QHostAddress &address, quint16 port, QString *error)
{
    if (m_server->listen(address, port))
        return true;
    if (error)
        *error = m_server->errorString();
    return false;
}

QHostAddress RcsimServer::address() const
{
    return m_server->serverAddress();
}

quint16 RcsimServer::port() const
{
    return m_server->serverPort();
}

void RcsimServer::acceptConnections()
{
    while (QTcpSocket *socket = m_server->nextPendingConnection())
        serve(socket);
}

void RcsimServer::serve(QTcpSocket *socket)
{
    socket->setParent(this);
    orbat::LineEndpoint *session = m_controller->createSession();
    session->setParent(socket);
    QPointer<QTcpSocket> guard(socket);

    connect(session, &orbat::LineEndpoint::sendLine, socket, [guard](const QByteArray &line) {
        if (!guard || guard->state() != QAbstractSocket::ConnectedState)
            return;
        guard->write(line);
        guard->write("\n", 1);
    });
    connect(socket, &QTcpSocket::readyRead, socket, [guard, session] {
        QTcpSocket *s = guard.data();
        while (s && s->state() == QAbstractSocket::ConnectedState) {
            if (!s->canReadLine()) {
                // A line that has not ended within the cap never will be valid: drop the client.
                if (s->bytesAvailable() > orbat::Transport::maxLineBytes()) {
                    session->clientClosed();
                    s->abort();
                }
                return;
            }
            QByteArray line = s->readLine(qint64(orbat::Transport::maxLineBytes()) + 2);
            while (line.endsWith('\n') || line.endsWith('\r'))
                line.chop(1);
            if (line.size() > orbat::Transport::maxLineBytes()) {
                session->clientClosed();
                s->abort();
                return;
            }
            if (line.trimmed().isEmpty())
                continue;
            session->receiveLine(line);
            s = guard.data();
        }
    });
    connect(socket, &QTcpSocket::disconnected, socket, [socket, session] {
        session->clientClosed();
        socket->deleteLater();
    });
}

} // namespace rc
