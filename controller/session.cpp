#include "session.h"

#include "controller.h"
#include "controllerprivate.h"
#include "protocol.h"
#include "rawjson.h"

#include <orba/json.h>
#include <orba/moduleobject.h>

#include <orbat/transport.h>

#include <climits>

namespace rc {

namespace {

// Node budgets per request: a pallet of 1200 places is about 62,500 nodes; the whole list
// written at once may take what the parser allows at all; everything else is small.
constexpr qint64 kSmallRequestNodes = 4096;
constexpr qint64 kPalletRequestNodes = 256 * 1024;

qint64 nodeBudget(const QString &op, const QString &method)
{
    if (method == QLatin1String("tray.add_one") || method == QLatin1String("tray.set.one"))
        return kPalletRequestNodes;
    if (op == QLatin1String("set") && method == QLatin1String("tray.data"))
        return orba::json::maxJsonNodes();
    return kSmallRequestNodes;
}

// Whether the request's pallet will be stored as received (see rawParamsWithIndex()): a method
// that stores pallets, with params as an object that can be spliced.
bool keepsRawPallet(const rawjson::RequestHead &head)
{
    return (head.method == QLatin1String("tray.add_one") || head.method == QLatin1String("tray.set.one"))
        && head.op == QLatin1String("exec") && head.params.isValid() && head.paramsObject.ok && head.paramsObject.compact;
}

// The "id" echoed in a reply: an integer or a string, null otherwise.
QByteArray idText(const orba::ModuleObject *idNode)
{
    qint64 n;
    QString s;
    if (protocol::readInt(idNode, &n))
        return QByteArray::number(n);
    if (protocol::readString(idNode, &s))
        return protocol::toJson(s);
    return "null";
}

// The "id" of a line that was not parsed as a whole.
QByteArray headId(const QByteArray &line, const rawjson::RequestHead &head)
{
    if (!head.id.isValid() || head.id.size() > 256)
        return "null";
    orba::ModuleObject node;
    if (!orba::json::read(nullptr, &node, line.mid(head.id.begin, head.id.size()), nullptr, 4))
        return "null";
    return idText(&node);
}

} // namespace

Session::Session(Controller *controller) : m_controller(controller)
{
    m_heard.start();
}

Session::~Session()
{
    if (m_controller && m_registered)
        m_controller->d_func()->sessionClosed(this);
}

QByteArray Session::rawParams() const
{
    return m_params.isValid() ? m_line.mid(m_params.begin, m_params.size()) : QByteArray();
}

QByteArray Session::rawParamsWithIndex(int index) const
{
    if (!m_params.isValid())
        return QByteArray();
    return rawjson::withIndex(m_line, m_params, index, m_paramsObject, m_paramsIndex);
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

void Session::clientOpened()
{
    if (!m_closed)
        return;
    m_closed = false;
    m_heard.restart();
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

    // The method decides how big a tree the request may build: look at it before parsing, so
    // that a short line of empty containers cannot make millions of nodes.
    const rawjson::RequestHead head = rawjson::scanRequest(line);
    const qint64 budget = nodeBudget(head.op, head.method);
    orba::ModuleObject request(QStringLiteral("request"));
    QString parseError;
    // A pallet that will be stored as the text it came in needs only its top members as nodes
    // (its name); the rest is checked and counted as always but not built, which is most of
    // the cost of a megabyte of pallet.
    const int levels = keepsRawPallet(head) ? 2 : INT_MAX;
    if (!orba::json::readLevels(nullptr, &request, line, levels, &parseError, budget)) {
        if (parseError.endsWith(QStringLiteral("more than %1 nodes").arg(budget))) {
            emit sendLine(protocol::resultLine(
                headId(line, head),
                Reply::error(InvalidRequest, QStringLiteral("request too large: \"%1\" takes at most %2 JSON nodes, got \"%3\"")
                                                 .arg(rawjson::excerpt(head.method))
                                                 .arg(budget)
                                                 .arg(rawjson::excerpt(line)))));
            return;
        }
        emit sendLine(protocol::resultLine("null", Reply::error(ParseError, QStringLiteral("parse error: %1").arg(parseError))));
        return;
    }
    QByteArray id = "null";
    if (request.cmobjCount() == 0 || request.isArray()) {
        emit sendLine(protocol::resultLine(id, Reply::error(InvalidRequest, QStringLiteral("request must be an object"))));
        return;
    }
    orba::ModuleObject *idNode = request.c(QStringLiteral("id"));
    if (!idNode->isEmpty())
        id = idText(idNode);
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

    // Handlers that keep a pallet store its text as received (see rawParams()).
    if (!params->isEmpty() && head.params.isValid()) {
        m_line = line;
        m_params = head.params;
        m_paramsObject = head.paramsObject;
        m_paramsIndex = head.paramsIndex;
    }
    QPointer<Session> self(this);
    const Reply reply = d->handle(this, op, method, params->isEmpty() ? nullptr : params, key);
    if (!self)
        return;
    m_line.clear();
    m_params = rawjson::Span();
    m_paramsObject = rawjson::ObjectInfo();
    m_paramsIndex = rawjson::Span();
    if (m_closed)
        return;
    if (m_piecewise)
        emit sendPieces(protocol::resultPieces(id, reply));
    else
        emit sendLine(protocol::resultLine(id, reply));
}

} // namespace rc
