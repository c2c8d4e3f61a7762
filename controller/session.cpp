#include "session.h"

#include "controller.h"
#include "controllerprivate.h"
#include "protocol.h"

#include <orba/json.h>
#include <orba/moduleobject.h>

#include <orbat/transport.h>

namespace rc {

Session::Session(Controller *controller) : m_controller(controller)
{
    m_heard.start();
}

Session::~Session()
{
    if (m_controller && m_registered)
        m_controller->d_func()->sessionClosed(this);
}

void Session::setWatched(const QString &name, bool on)
{
    if (on)
        m_watched.insert(name);
    else
        m_watched.remove(name);
}

void Session::deliver(const QByteArray &line)
{
    if (!m_closed)
        emit sendLine(line);
}

void Session::clientClosed()
{
    if (m_closed)
        return;
    m_closed = true;
    m_watched.clear();
    if (m_controller && m_registered)
        m_controller->d_func()->sessionClosed(this);
    m_registered = false;
}

void Session::receiveLine(const QByteArray &line)
{
    if (m_closed)
        return;
    m_heard.restart();
    if (!m_controller) {
        emit sendLine(protocol::resultLine("null", Reply::error(InternalError, QStringLiteral("controller gone"))));
        return;
    }
    ControllerPrivate *d = m_controller->d_func();
    if (!m_registered) {
        d->sessionOpened(this);
        m_registered = true;
    }
    if (line.size() > orbat::Transport::maxLineBytes()) {
        emit sendLine(protocol::resultLine("null", Reply::error(InvalidRequest, QStringLiteral("line too long"))));
        return;
    }

    orba::ModuleObject request(QStringLiteral("request"));
    QString parseError;
    if (!orba::json::read(nullptr, &request, line, &parseError)) {
        emit sendLine(protocol::resultLine("null", Reply::error(ParseError, QStringLiteral("parse error: %1").arg(parseError))));
        return;
    }
    QByteArray id = "null";
    if (request.cmobjCount() == 0 || request.isArray()) {
        emit sendLine(protocol::resultLine(id, Reply::error(InvalidRequest, QStringLiteral("request must be an object"))));
        return;
    }
    orba::ModuleObject *idNode = request.c(QStringLiteral("id"));
    if (!idNode->isEmpty()) {
        qint64 n;
        QString s;
        if (protocol::readInt(idNode, &n))
            id = QByteArray::number(n);
        else if (protocol::readString(idNode, &s))
            id = protocol::toJson(s);
    }
    QString op, method;
    if (!protocol::readString(request.c(QStringLiteral("op")), &op)) {
        emit sendLine(protocol::resultLine(id, Reply::error(InvalidRequest, QStringLiteral("\"op\" missing"))));
        return;
    }
    if (!protocol::readString(request.c(QStringLiteral("method")), &method) || method.isEmpty()) {
        emit sendLine(protocol::resultLine(id, Reply::error(InvalidRequest, QStringLiteral("\"method\" missing"))));
        return;
    }
    orba::ModuleObject *params = request.c(QStringLiteral("params"));
    QString key;
    protocol::readString(request.c(QStringLiteral("key")), &key);

    QPointer<Session> self(this);
    const Reply reply = d->handle(this, op, method, params->isEmpty() ? nullptr : params, key);
    if (self && !m_closed)
        emit sendLine(protocol::resultLine(id, reply));
}

} // namespace rc
