#include <orbat/inprocesstransport.h>
#include <orbat/lineendpoint.h>

#include "lineinfo.h"

#include <QMetaObject>
#include <QThread>

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace orbat {

/*
 * State shared with the endpoint's thread. Lines from the endpoint arrive through a direct
 * connection, so they are handled in whatever thread the endpoint emits from; everything they
 * touch is guarded by the mutex, and the transport is only reached through posted calls while
 * `owner` is set (the destructor clears it under the same mutex).
 */
struct InProcessLink
{
    std::mutex mutex;
    std::condition_variable cv;
    InProcessTransport *owner = nullptr;
    LineEndpoint *endpoint = nullptr;
    bool awaiting = false;
    qint64 awaitedId = 0;
    std::optional<QByteArray> inbox;
    bool dropped = false;
};

class InProcessTransportPrivate
{
public:
    explicit InProcessTransportPrivate(InProcessTransport *q) : q(q) {}

    // Link changes are announced from the event loop, in order, so that listeners never run
    // inside attach()/close() or inside the endpoint's thread.
    void postAnnounce(bool up)
    {
        QMetaObject::invokeMethod(q, [this, up] { announce(up); }, Qt::QueuedConnection);
    }
    void announce(bool up)
    {
        if (up) {
            if (announced || !q->isConnected())
                return;
            announced = true;
            emit q->connected();
        } else {
            if (!announced)
                return;
            announced = false;
            emit q->disconnected();
        }
    }
    void closeEndpoint()
    {
        std::unique_lock<std::mutex> lock(link->mutex);
        LineEndpoint *ep = link->endpoint;
        link->cv.notify_all();
        if (!ep)
            return;
        closedEndpoint = ep;
        if (ep->thread() == QThread::currentThread()) {
            lock.unlock();
            ep->clientClosed();
        } else {
            QMetaObject::invokeMethod(ep, [ep] { ep->clientClosed(); }, Qt::QueuedConnection);
        }
    }
    // Opening again after close(): the endpoint closed its side, so it is told the client is back
    // (queued like requests, so it is reopened before the first one arrives).
    void reopenEndpoint()
    {
        std::unique_lock<std::mutex> lock(link->mutex);
        LineEndpoint *ep = link->endpoint;
        if (!ep || ep != closedEndpoint)
            return;
        closedEndpoint.clear();
        if (ep->thread() == QThread::currentThread()) {
            lock.unlock();
            ep->clientOpened();
        } else {
            QMetaObject::invokeMethod(ep, [ep] { ep->clientOpened(); }, Qt::QueuedConnection);
        }
    }

    InProcessTransport *q;
    std::shared_ptr<InProcessLink> link = std::make_shared<InProcessLink>();
    QList<QMetaObject::Connection> connections;
    bool open = false;
    bool announced = false;
    QPointer<LineEndpoint> closedEndpoint;
};

namespace {

void lineFromEndpoint(const std::shared_ptr<InProcessLink> &link, const QByteArray &line)
{
    const detail::LineInfo info = detail::classifyLine(line);
    std::lock_guard<std::mutex> lock(link->mutex);
    if (info.kind == detail::LineInfo::Event) {
        if (InProcessTransport *owner = link->owner)
            QMetaObject::invokeMethod(owner, [owner, line] { emit owner->eventLine(line); }, Qt::QueuedConnection);
        return;
    }
    // An unidentifiable line while a request waits is taken as its (bad) reply, so the caller
    // learns of the garbage at once instead of at its deadline. Late replies are dropped.
    if (link->awaiting && !link->inbox
        && (info.kind == detail::LineInfo::Unknown || info.id == link->awaitedId)) {
        link->inbox = line;
        link->cv.notify_all();
    }
}

} // namespace

InProcessTransport::InProcessTransport(LineEndpoint *endpoint, QObject *parent)
    : Transport(parent), d(new InProcessTransportPrivate(this))
{
    d->link->owner = this;
    attach(endpoint);
}

InProcessTransport::~InProcessTransport()
{
    for (const auto &c : d->connections)
        disconnect(c);
    if (d->open)
        d->closeEndpoint();
    std::lock_guard<std::mutex> lock(d->link->mutex);
    d->link->owner = nullptr;
    d->link->endpoint = nullptr;
}

void InProcessTransport::attach(LineEndpoint *endpoint)
{
    for (const auto &c : d->connections)
        disconnect(c);
    d->connections.clear();
    bool wasUp = false;
    {
        std::lock_guard<std::mutex> lock(d->link->mutex);
        wasUp = d->link->endpoint != nullptr && d->open;
        d->link->endpoint = endpoint;
        d->link->dropped = endpoint == nullptr;
        d->link->cv.notify_all();
    }
    if (wasUp)
        d->postAnnounce(false);
    if (!endpoint)
        return;

    std::shared_ptr<InProcessLink> link = d->link;
    d->connections.append(connect(
        endpoint, &LineEndpoint::sendLine, this, [link](const QByteArray &line) { lineFromEndpoint(link, line); },
        Qt::DirectConnection));
    // destroyed() is emitted in the thread that deletes the endpoint.
    d->connections.append(connect(
        endpoint, &QObject::destroyed, this,
        [link, endpoint] {
            std::lock_guard<std::mutex> lock(link->mutex);
            if (link->endpoint != endpoint)
                return;
            link->endpoint = nullptr;
            link->dropped = true;
            link->cv.notify_all();
            if (InProcessTransport *owner = link->owner)
                QMetaObject::invokeMethod(owner, [owner] { owner->d->announce(false); }, Qt::QueuedConnection);
        },
        Qt::DirectConnection));
    if (d->open)
        d->postAnnounce(true);
}

LineEndpoint *InProcessTransport::endpoint() const
{
    std::lock_guard<std::mutex> lock(d->link->mutex);
    return d->link->endpoint;
}

bool InProcessTransport::isConnected() const
{
    if (!d->open)
        return false;
    std::lock_guard<std::mutex> lock(d->link->mutex);
    return d->link->endpoint != nullptr;
}

void InProcessTransport::open()
{
    if (d->open)
        return;
    d->open = true;
    d->reopenEndpoint();
    d->postAnnounce(true);
}

void InProcessTransport::close()
{
    if (!d->open)
        return;
    d->open = false;
    d->closeEndpoint();
    d->postAnnounce(false);
}

std::optional<QByteArray> InProcessTransport::request(qint64 id, const QByteArray &line, int timeoutMs)
{
    if (!d->open)
        return std::nullopt;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::milliseconds(qMax(0, timeoutMs));
    InProcessLink &link = *d->link;

    std::unique_lock<std::mutex> lock(link.mutex);
    LineEndpoint *ep = link.endpoint;
    if (!ep)
        return std::nullopt;
    // Requests do not nest; a leftover reply belongs to an earlier, abandoned request.
    link.awaiting = true;
    link.awaitedId = id;
    link.inbox.reset();

    if (ep->thread() == QThread::currentThread()) {
        // The endpoint answers during receiveLine(); its sendLine() takes the mutex.
        lock.unlock();
        ep->receiveLine(line);
        lock.lock();
    } else {
        QMetaObject::invokeMethod(ep, [ep, line] { ep->receiveLine(line); }, Qt::QueuedConnection);
        link.cv.wait_until(lock, deadline, [&link] { return link.inbox.has_value() || link.dropped; });
    }
    link.awaiting = false;
    std::optional<QByteArray> reply;
    reply.swap(link.inbox);
    return reply;
}

bool InProcessTransport::post(const QByteArray &line)
{
    if (!d->open)
        return false;
    std::unique_lock<std::mutex> lock(d->link->mutex);
    LineEndpoint *ep = d->link->endpoint;
    if (!ep)
        return false;
    if (ep->thread() == QThread::currentThread()) {
        // Direct, so that it reaches the endpoint before any later synchronous request.
        lock.unlock();
        ep->receiveLine(line);
    } else {
        QMetaObject::invokeMethod(ep, [ep, line] { ep->receiveLine(line); }, Qt::QueuedConnection);
    }
    return true;
}

QString InProcessTransport::peerName() const
{
    return QStringLiteral("embedded");
}

} // namespace orbat
