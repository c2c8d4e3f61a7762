#include <orbat/tservice.h>

#include <orbat/controllermanager.h>
#include <orbat/transport.h>

#include "lineinfo.h"

#include <orba/json.h>
#include <orba/log.h>
#include <orba/modulemanager.h>

#include <QDateTime>
#include <QPointer>

#include <limits>

namespace {

const QString kWatchRoot = QStringLiteral("tservice.watch");

QString logTag(char level)
{
    return QStringLiteral("[%1|%2]").arg(QLatin1Char(level)).arg(QDateTime::currentDateTime().toString(QStringLiteral("MM/dd hh:mm:ss.zzz")));
}

// Moves the children of `from` to the end of `to`, keeping their order.
void moveChildren(QObject *sender, orba::ModuleObject *from, orba::ModuleObject *to)
{
    QList<orba::ModuleObject *> moved;
    moved.reserve(from->cmobjCount());
    while (from->cmobjCount() > 0)
        moved.prepend(from->take(nullptr, from->cmobjCount() - 1));
    for (orba::ModuleObject *child : moved)
        to->append(sender, child);
}

} // namespace

struct TService::Private
{
    QPointer<orbat::Transport> transport;
    QMetaObject::Connection eventConnection;
    orbat::ControllerManager *manager = nullptr;
    int defaultTimeout = 3000;
    QHash<QString, int> timeouts;
    qint64 nextId = 0;
    int lastStatus = 0;
    QByteArray lastLine;
    QHash<QString, QPointer<orba::ModuleObject>> watchNodes;
};

TService *TService::instance()
{
    static TService service;
    return &service;
}

TService *tservice()
{
    return TService::instance();
}

TService::TService() : d(new Private)
{
    d->manager = new orbat::ControllerManager(this);
    // Commands that write the controller's store or read it whole may take longer than the rest.
    d->timeouts.insert(QStringLiteral("tray.data"), 15000);
    d->timeouts.insert(QStringLiteral("tray.set.one"), 10000);
    d->timeouts.insert(QStringLiteral("tray.add_one"), 10000);
    d->timeouts.insert(QStringLiteral("tray.del_one"), 10000);
    d->timeouts.insert(QStringLiteral("tray.set.name"), 10000);
    d->timeouts.insert(QStringLiteral("move.l.check"), 10000);
}

TService::~TService() = default;

void TService::setTransport(orbat::Transport *transport)
{
    if (d->transport == transport)
        return;
    if (d->transport)
        d->transport->disconnect(this);
    disconnect(d->eventConnection);
    d->transport = transport;
    if (transport) {
        d->eventConnection = connect(transport, &orbat::Transport::eventLine, this, [this](const QByteArray &line) {
            QString error;
            bool ok = false;
            const QVariant v = orba::json::toVariant(line, &ok, &error);
            const QVariantMap map = v.toMap();
            if (!ok || v.userType() != QMetaType::QVariantMap || map.value(QStringLiteral("event")).userType() != QMetaType::QString) {
                orba::FLog(logTag('E'), QStringLiteral("./log/%1"), QStringLiteral("tservice"), QStringLiteral("log"))
                    << "ignored malformed event line: " << line.left(200);
                return;
            }
            const QString name = map.value(QStringLiteral("event")).toString();
            const QVariant data = map.value(QStringLiteral("data"));
            orba::ModuleObject *node = watchNode(name);
            int notified = 0;
            const auto counter = connect(node, &orba::ModuleObject::changed, this, [&notified] { ++notified; });
            node->setValue(this, data, true);
            disconnect(counter);
            // Repeated data is still news (the same error raised twice).
            if (notified == 0)
                node->trigger(this);
            emit watchEvent(name, data);
        });
    }
    d->manager->follow(transport);
}

orbat::Transport *TService::transport() const
{
    return d->transport;
}

orbat::ControllerManager *TService::controllerManager() const
{
    return d->manager;
}

void TService::setDefaultTimeout(int ms)
{
    d->defaultTimeout = qMax(0, ms);
}

int TService::defaultTimeoutMs() const
{
    return d->defaultTimeout;
}

void TService::setTimeout(const QString &name, int ms)
{
    d->timeouts.insert(name, qMax(0, ms));
}

int TService::timeout(const QString &name) const
{
    return d->timeouts.value(name, d->defaultTimeout);
}

namespace {

struct Call
{
    const char *op;
    QString method;
    QString key;
    bool hasKey = false;
    QByteArray params; // JSON text; empty = absent
};

QByteArray requestLine(qint64 id, const Call &call)
{
    QByteArray line = "{\"id\":" + QByteArray::number(id) + ",\"op\":\"" + call.op + "\",\"method\":";
    orbat::detail::appendJsonString(line, call.method);
    if (!call.params.isEmpty())
        line += ",\"params\":" + call.params;
    if (call.hasKey) {
        line += ",\"key\":";
        orbat::detail::appendJsonString(line, call.key);
    }
    line += '}';
    return line;
}

QByteArray paramsOf(const orba::ModuleObject *param)
{
    if (!param || param->isNull())
        return QByteArray();
    return orba::json::write(param, true);
}

orba::MobjPtr newReply(int status)
{
    orba::MobjPtr reply(new orba::ModuleObject(QStringLiteral("reply")));
    reply->setValue(nullptr, status, false);
    return reply;
}

orba::MobjPtr errorReply(int status, int code, const QString &message)
{
    orba::MobjPtr reply = newReply(status);
    orba::ModuleObject *error = reply->append(nullptr, QStringLiteral("error"));
    error->set(nullptr, QStringLiteral("code"), code, false);
    error->set(nullptr, QStringLiteral("message"), message, false);
    return reply;
}

bool isIntValue(const orba::ModuleObject *node)
{
    const int type = node->value().userType();
    return node->cmobjCount() == 0
        && (type == QMetaType::Int || type == QMetaType::LongLong || type == QMetaType::UInt
            || type == QMetaType::ULongLong);
}

// Turns a reply line into a reply node; never fails, malformed lines give StatusBadReply.
orba::MobjPtr parseReply(qint64 id, const QByteArray &line)
{
    orba::ModuleObject parsed;
    QString error;
    if (!orba::json::read(nullptr, &parsed, line, &error))
        return errorReply(TService::StatusBadReply, TService::StatusBadReply, QStringLiteral("unreadable reply: %1").arg(error));
    const QStringList keys = parsed.cmobjNames();
    if (parsed.hasValue() || keys.isEmpty() || parsed.isArray())
        return errorReply(TService::StatusBadReply, TService::StatusBadReply, QStringLiteral("reply is not an object"));
    if (parsed.hasCmobj(QStringLiteral("id"))) {
        const orba::ModuleObject *idNode = parsed.c(QStringLiteral("id"));
        // A null id is what a controller sends when it could not read the request at all.
        if (idNode->hasValue() && (!isIntValue(idNode) || idNode->getInt64() != id))
            return errorReply(TService::StatusBadReply, TService::StatusBadReply, QStringLiteral("reply for another request"));
    }
    if (parsed.hasCmobj(QStringLiteral("error"))) {
        orba::ModuleObject *err = parsed.c(QStringLiteral("error"));
        orba::MobjPtr reply = newReply(TService::StatusError);
        orba::ModuleObject *kept = reply->append(nullptr, QStringLiteral("error"));
        kept->copyFrom(nullptr, err, false);
        return reply;
    }
    if (!parsed.hasCmobj(QStringLiteral("result")))
        return errorReply(TService::StatusBadReply, TService::StatusBadReply, QStringLiteral("reply without result"));
    orba::ModuleObject *result = parsed.c(QStringLiteral("result"));
    orba::ModuleObject *status = result->c(QStringLiteral("status"));
    if (!result->hasCmobj(QStringLiteral("status")) || !isIntValue(status))
        return errorReply(TService::StatusBadReply, TService::StatusBadReply, QStringLiteral("reply without integer status"));
    const qint64 code = status->getInt64();
    if (code < std::numeric_limits<int>::min() || code > std::numeric_limits<int>::max())
        return errorReply(TService::StatusBadReply, TService::StatusBadReply, QStringLiteral("reply status out of range"));
    orba::MobjPtr reply = newReply(int(code));
    if (result->hasCmobj(QStringLiteral("data"))) {
        orba::ModuleObject *data = result->take(nullptr, result->c(QStringLiteral("data")));
        reply->append(nullptr, data);
    }
    return reply;
}

} // namespace

namespace {

// One request/reply round; the reply node always exists and carries the status as its value.
orba::MobjPtr roundTrip(orbat::Transport *transport, qint64 id, const QByteArray &line,
                               int timeoutMs, int *status)
{
    orba::MobjPtr reply;
    if (!transport || !transport->isConnected()) {
        reply = errorReply(TService::StatusNoLink, TService::StatusNoLink, QStringLiteral("no controller link"));
    } else if (line.size() > orbat::Transport::maxLineBytes()) {
        reply = errorReply(TService::StatusError, TService::StatusError,
                           QStringLiteral("request of %1 bytes exceeds the line limit").arg(line.size()));
    } else {
        const std::optional<QByteArray> answer = transport->request(id, line, timeoutMs);
        if (answer)
            reply = parseReply(id, *answer);
        else if (transport->isConnected())
            reply = errorReply(TService::StatusTimeout, TService::StatusTimeout, QStringLiteral("no reply within %1 ms").arg(timeoutMs));
        else
            reply = errorReply(TService::StatusNoLink, TService::StatusNoLink, QStringLiteral("controller link lost"));
    }
    *status = reply->getInt(TService::StatusBadReply);
    return reply;
}

orba::MobjPtr send(orbat::Transport *transport, qint64 id, const Call &call, int timeoutMs,
                   int *status, QByteArray *lastLine)
{
    const QByteArray line = requestLine(id, call);
    *lastLine = line;
    orba::MobjPtr reply = roundTrip(transport, id, line, timeoutMs, status);
    if (*status <= TService::StatusNoLink && *status >= TService::StatusError) {
        orba::FLog(logTag('E'), QStringLiteral("./log/%1"), QStringLiteral("tservice"), QStringLiteral("log"))
            << QString::fromLatin1(call.op) << " " << call.method << " failed: " << *status << " "
            << reply->r(QStringLiteral("error.message"))->getString();
    }
    return reply;
}

} // namespace

orba::MobjPtr TService::execCommand(QObject *sender, const QString &name, orba::ModuleObject *param)
{
    Q_UNUSED(sender)
    Call call{"exec", name, QString(), false, paramsOf(param)};
    return send(d->transport, ++d->nextId, call, timeout(name), &d->lastStatus, &d->lastLine);
}

int TService::execCommandAt(QObject *sender, const QString &name, orba::ModuleObject *node)
{
    Call call{"exec", name, QString(), false, paramsOf(node)};
    orba::MobjPtr reply = send(d->transport, ++d->nextId, call, timeout(name), &d->lastStatus, &d->lastLine);
    if (d->lastStatus >= 0 && node && !node->isEmpty()) {
        node->clear(sender, true);
        moveChildren(sender, reply.get(), node);
    }
    return d->lastStatus;
}

bool TService::command(QObject *sender, const QString &name, orba::ModuleObject *param)
{
    Q_UNUSED(sender)
    Call call{"exec", name, QString(), false, paramsOf(param)};
    d->lastLine = requestLine(++d->nextId, call);
    const bool sent = d->transport && d->transport->isConnected()
        && d->lastLine.size() <= orbat::Transport::maxLineBytes() && d->transport->post(d->lastLine);
    d->lastStatus = sent ? 0 : StatusNoLink;
    return sent;
}

orba::MobjPtr TService::get(QObject *sender, const QString &name)
{
    Q_UNUSED(sender)
    Call call{"get", name, QString(), false, QByteArray()};
    orba::MobjPtr reply = send(d->transport, ++d->nextId, call, timeout(name), &d->lastStatus, &d->lastLine);
    if (d->lastStatus < 0 || !reply->hasCmobj(QStringLiteral("data")))
        return orba::MobjPtr(new orba::ModuleObject(QStringLiteral("data")));
    return orba::MobjPtr(reply->take(nullptr, reply->c(QStringLiteral("data"))));
}

namespace {

int fillFromReply(QObject *sender, int status, orba::ModuleObject *reply, orba::ModuleObject *node)
{
    if (status < 0 || !node || node->isEmpty())
        return status;
    orba::ModuleObject *data = reply->c(QStringLiteral("data"));
    node->clear(sender, true);
    node->setValue(sender, data->value(), true);
    moveChildren(sender, data, node);
    return status;
}

} // namespace

int TService::getAt(QObject *sender, const QString &name, orba::ModuleObject *node, int unused)
{
    Q_UNUSED(unused)
    Call call{"get", name, QString(), false, QByteArray()};
    orba::MobjPtr reply = send(d->transport, ++d->nextId, call, timeout(name), &d->lastStatus, &d->lastLine);
    return fillFromReply(sender, d->lastStatus, reply.get(), node);
}

int TService::getAt(QObject *sender, const QString &name, const QString &key, orba::ModuleObject *node)
{
    Call call{"get", name, key, true, paramsOf(node)};
    orba::MobjPtr reply = send(d->transport, ++d->nextId, call, timeout(name), &d->lastStatus, &d->lastLine);
    return fillFromReply(sender, d->lastStatus, reply.get(), node);
}

int TService::set(QObject *sender, const QString &name, orba::ModuleObject *node)
{
    Q_UNUSED(sender)
    Call call{"set", name, QString(), false, paramsOf(node)};
    send(d->transport, ++d->nextId, call, timeout(name), &d->lastStatus, &d->lastLine);
    return d->lastStatus;
}

int TService::watch(QObject *sender, const QString &name, bool on)
{
    Q_UNUSED(sender)
    Call call{"watch", name, QString(), false, on ? QByteArrayLiteral("true") : QByteArrayLiteral("false")};
    send(d->transport, ++d->nextId, call, timeout(name), &d->lastStatus, &d->lastLine);
    return d->lastStatus;
}

orba::ModuleObject *TService::watchNode(const QString &name)
{
    QPointer<orba::ModuleObject> &cached = d->watchNodes[name];
    if (cached) {
        // Still in the global tree? Tests reset it, and a node taken out is no longer watched.
        orba::ModuleObject *top = cached;
        while (!top->pmobj()->isEmpty())
            top = top->pmobj();
        if (top == orba::ModuleManager::root())
            return cached;
    }
    orba::ModuleObject *node = orba::ModuleManager::root();
    QStringList segments = kWatchRoot.split(QLatin1Char('.'));
    for (const QString &segment : name.split(QLatin1Char('.'))) {
        if (!segment.isEmpty())
            segments.append(segment);
    }
    if (segments.size() == 2)
        segments.append(QStringLiteral("_"));
    for (const QString &segment : segments)
        node = node->c(segment, true);
    cached = node;
    return node;
}

int TService::lastStatus() const
{
    return d->lastStatus;
}

QByteArray TService::lastRequestLine() const
{
    return d->lastLine;
}
