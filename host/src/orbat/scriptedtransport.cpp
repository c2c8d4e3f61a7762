#include <orbat/scriptedtransport.h>

#include "lineinfo.h"

#include <orba/json.h>
#include <orba/moduleobject.h>

#include <QThread>

namespace orbat {

struct ScriptedTransport::Private
{
    QHash<QString, QList<Reply>> queued;
    QHash<QString, Reply> standing;
    QHash<QString, bool> silent;
    Handler handler;
    QList<Request> requests;
    bool connected = true;
};

ScriptedTransport::ScriptedTransport(QObject *parent) : Transport(parent), d(new Private) {}

ScriptedTransport::~ScriptedTransport() = default;

void ScriptedTransport::queueReply(const QString &method, const Reply &reply)
{
    d->queued[method].append(reply);
}

void ScriptedTransport::queueReply(const QString &method, int status, const QByteArray &dataJson)
{
    Reply r;
    r.status = status;
    r.dataJson = dataJson;
    queueReply(method, r);
}

void ScriptedTransport::setReply(const QString &method, const Reply &reply)
{
    d->standing.insert(method, reply);
}

void ScriptedTransport::setReply(const QString &method, int status, const QByteArray &dataJson)
{
    Reply r;
    r.status = status;
    r.dataJson = dataJson;
    setReply(method, r);
}

void ScriptedTransport::setSilent(const QString &method, bool silent)
{
    if (silent)
        d->silent.insert(method, true);
    else
        d->silent.remove(method);
}

void ScriptedTransport::setHandler(Handler handler)
{
    d->handler = std::move(handler);
}

QList<ScriptedTransport::Request> ScriptedTransport::requests() const
{
    return d->requests;
}

QStringList ScriptedTransport::methods() const
{
    QStringList names;
    names.reserve(d->requests.size());
    for (const Request &r : d->requests)
        names.append(r.method);
    return names;
}

void ScriptedTransport::clearRequests()
{
    d->requests.clear();
}

void ScriptedTransport::setConnected(bool on)
{
    if (d->connected == on)
        return;
    d->connected = on;
    if (on)
        emit connected();
    else
        emit disconnected();
}

void ScriptedTransport::emitEvent(const QString &name, const QByteArray &dataJson)
{
    QByteArray line = "{\"event\":";
    detail::appendJsonString(line, name);
    line += ",\"data\":";
    line += dataJson.isEmpty() ? QByteArray("null") : dataJson;
    line += '}';
    emit eventLine(line);
}

bool ScriptedTransport::isConnected() const
{
    return d->connected;
}

void ScriptedTransport::open()
{
    setConnected(true);
}

void ScriptedTransport::close()
{
    setConnected(false);
}

std::optional<QByteArray> ScriptedTransport::request(qint64 id, const QByteArray &line, int timeoutMs)
{
    Q_UNUSED(id)
    if (!d->connected)
        return std::nullopt;
    std::optional<QByteArray> reply = answer(line);
    if (!reply) {
        // A hanging controller: the caller gets nothing before its deadline.
        if (timeoutMs > 0)
            QThread::msleep(static_cast<unsigned long>(timeoutMs));
        return std::nullopt;
    }
    return reply;
}

bool ScriptedTransport::post(const QByteArray &line)
{
    if (!d->connected)
        return false;
    answer(line);
    return true;
}

QString ScriptedTransport::peerName() const
{
    return QStringLiteral("scripted");
}

std::optional<QByteArray> ScriptedTransport::answer(const QByteArray &line)
{
    orba::ModuleObject parsed;
    const bool ok = orba::json::read(nullptr, &parsed, line);

    Request req;
    qint64 id = 0;
    if (ok) {
        req.op = parsed.c(QStringLiteral("op"))->getString();
        req.method = parsed.c(QStringLiteral("method"))->getString();
        req.key = parsed.c(QStringLiteral("key"))->getString();
        id = parsed.c(QStringLiteral("id"))->getInt64();
        if (parsed.hasCmobj(QStringLiteral("params"))) {
            orba::ModuleObject *params = parsed.take(nullptr, parsed.c(QStringLiteral("params")));
            req.params.reset(params);
            req.paramsJson = orba::json::write(params);
        }
    }
    if (!req.params)
        req.paramsJson = QByteArrayLiteral("null");
    d->requests.append(req);

    Reply reply;
    auto queued = d->queued.find(req.method);
    if (queued != d->queued.end() && !queued->isEmpty()) {
        reply = queued->takeFirst();
    } else if (d->standing.contains(req.method)) {
        reply = d->standing.value(req.method);
    } else if (d->handler) {
        reply = d->handler(req);
    }
    if (d->silent.value(req.method, false) || reply.silent)
        return std::nullopt;
    if (!reply.rawLine.isEmpty())
        return reply.rawLine;

    QByteArray out = "{\"id\":" + QByteArray::number(id);
    if (reply.errorCode != 0) {
        out += ",\"error\":{\"code\":" + QByteArray::number(reply.errorCode) + ",\"message\":";
        detail::appendJsonString(out, reply.errorMessage);
        out += "}}";
        return out;
    }
    out += ",\"result\":{\"status\":" + QByteArray::number(reply.status);
    if (!reply.dataJson.isEmpty())
        out += ",\"data\":" + reply.dataJson;
    out += "}}";
    return out;
}

} // namespace orbat
