#include <orbat/tcptransport.h>
#include <orbat/linebuffer.h>

#include "lineinfo.h"

#include <QElapsedTimer>
#include <QMetaObject>
#include <QPointer>
#include <QTcpSocket>
#include <QTimer>

namespace orbat {

namespace {
constexpr int kFirstBackoffMs = 200;
constexpr int kMaxBackoffMs = 5000;
constexpr int kConnectTimeoutMs = 5000;
} // namespace

class TcpTransportPrivate
{
public:
    explicit TcpTransportPrivate(TcpTransport *q) : q(q) {}

    bool linkUp() const { return up && socket->state() == QAbstractSocket::ConnectedState; }

    void connectNow()
    {
        if (!wantOpen || socket->state() != QAbstractSocket::UnconnectedState)
            return;
        rx.clear();
        socket->connectToHost(host, port);
        connectGuard.start(kConnectTimeoutMs);
    }

    void onConnected()
    {
        connectGuard.stop();
        up = true;
        backoffMs = kFirstBackoffMs;
        probe.invalidate();
        lastTx.start();
        ping.start(pingMs);
        postAnnounce(true);
    }

    void onUnconnected()
    {
        connectGuard.stop();
        ping.stop();
        rx.clear();
        if (up) {
            up = false;
            postAnnounce(false);
        }
        if (wantOpen && !reconnect.isActive()) {
            reconnect.start(backoffMs);
            backoffMs = qMin(backoffMs * 2, kMaxBackoffMs);
        }
    }

    // Drops the link; reconnection follows through onUnconnected().
    void drop()
    {
        socket->abort();
        if (socket->state() == QAbstractSocket::UnconnectedState && up)
            onUnconnected();
    }

    // Something that the peer must answer went out (a ping or a request).
    void noteProbe()
    {
        if (!probe.isValid())
            probe.start();
    }

    bool probeOverdue() const { return probe.isValid() && probe.elapsed() > 3 * qint64(pingMs); }

    // Liveness: the peer is dead when a ping or request has gone unanswered (nothing at all
    // received since it was sent) for 3 ping intervals. Silence alone is no evidence: while the
    // thread is busy (a long loop, synchronous commands) no ping goes out and the peer has nothing
    // to answer, and what it did answer may still sit unread in the socket.
    void onPing()
    {
        if (!linkUp())
            return;
        if (probeOverdue()) {
            pullPending();
            if (!linkUp())
                return;
            if (probeOverdue()) {
                drop();
                return;
            }
        }
        if (lastTx.elapsed() >= pingMs) {
            QByteArray line = "{\"id\":" + QByteArray::number(--pingId) + ",\"op\":\"ping\",\"method\":\"ping\"}\n";
            socket->write(line);
            lastTx.start();
            noteProbe();
        }
    }

    // Reads what has arrived without waiting: the socket's buffer is filled from the event loop,
    // which a busy thread has not run.
    void pullPending()
    {
        if (socket->bytesAvailable() <= 0)
            socket->waitForReadyRead(0);
        if (linkUp())
            readIncoming();
    }

    void postAnnounce(bool isUp)
    {
        QMetaObject::invokeMethod(q, [this, isUp] { announce(isUp); }, Qt::QueuedConnection);
    }
    void announce(bool isUp)
    {
        if (isUp) {
            if (announced || !linkUp())
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

    // Reads what the socket has and handles every complete line: the awaited reply is stored in
    // `reply`, events are re-emitted from the event loop, anything else is dropped. Returns false
    // when the link was dropped for an oversized line.
    bool readIncoming()
    {
        if (socket->bytesAvailable() <= 0)
            return true;
        probe.invalidate();
        while (rx.pull(socket, qint64(Transport::maxLineBytes()) + 2) > 0) {
            QByteArray line;
            while (rx.takeLine(&line)) {
                if (line.size() > Transport::maxLineBytes()) {
                    drop();
                    return false;
                }
                if (!line.trimmed().isEmpty())
                    handleLine(line);
            }
            if (rx.pendingBytes() > Transport::maxLineBytes()) {
                drop();
                return false;
            }
        }
        return true;
    }

    void handleLine(const QByteArray &line)
    {
        const detail::LineInfo info = detail::classifyLine(line);
        if (info.kind == detail::LineInfo::Event) {
            QPointer<TcpTransport> self(q);
            QMetaObject::invokeMethod(q, [self, line] {
                if (self)
                    emit self->eventLine(line);
            }, Qt::QueuedConnection);
            return;
        }
        // An unidentifiable line while a request waits is taken as its (bad) reply.
        if (awaiting && !reply && (info.kind == detail::LineInfo::Unknown || info.id == awaitedId))
            reply = line;
    }

    TcpTransport *q;
    QString host;
    quint16 port = 0;
    QTcpSocket *socket = nullptr;
    QTimer reconnect;
    QTimer connectGuard;
    QTimer ping;
    // Since the oldest ping or request sent after the last received byte; invalid when none.
    QElapsedTimer probe;
    QElapsedTimer lastTx;
    LineBuffer rx;
    int pingMs = 2000;
    int backoffMs = kFirstBackoffMs;
    qint64 pingId = 0;
    bool wantOpen = false;
    bool up = false;
    bool announced = false;
    bool awaiting = false;
    qint64 awaitedId = 0;
    std::optional<QByteArray> reply;
};

TcpTransport::TcpTransport(const QString &host, quint16 port, QObject *parent)
    : Transport(parent), d(new TcpTransportPrivate(this))
{
    d->host = host;
    d->port = port;
    d->socket = new QTcpSocket(this);
    d->socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
    d->reconnect.setSingleShot(true);
    d->connectGuard.setSingleShot(true);

    connect(d->socket, &QTcpSocket::connected, this, [this] { d->onConnected(); });
    connect(d->socket, &QAbstractSocket::stateChanged, this, [this](QAbstractSocket::SocketState state) {
        if (state == QAbstractSocket::UnconnectedState)
            d->onUnconnected();
    });
    connect(d->socket, &QIODevice::readyRead, this, [this] {
        // During request() the waiting loop reads; this only runs from the event loop.
        if (!d->awaiting)
            d->readIncoming();
    });
    connect(&d->reconnect, &QTimer::timeout, this, [this] { d->connectNow(); });
    connect(&d->connectGuard, &QTimer::timeout, this, [this] {
        if (d->socket->state() != QAbstractSocket::ConnectedState)
            d->socket->abort();
    });
    connect(&d->ping, &QTimer::timeout, this, [this] { d->onPing(); });
}

TcpTransport::~TcpTransport()
{
    d->wantOpen = false;
    d->socket->disconnect(this);
    d->socket->abort();
}

void TcpTransport::setPingInterval(int ms)
{
    d->pingMs = qMax(10, ms);
    if (d->ping.isActive())
        d->ping.start(d->pingMs);
}

int TcpTransport::pingIntervalMs() const
{
    return d->pingMs;
}

bool TcpTransport::isConnected() const
{
    return d->linkUp();
}

void TcpTransport::open()
{
    d->wantOpen = true;
    d->backoffMs = kFirstBackoffMs;
    d->connectNow();
}

void TcpTransport::close()
{
    d->wantOpen = false;
    d->reconnect.stop();
    d->socket->abort();
}

std::optional<QByteArray> TcpTransport::request(qint64 id, const QByteArray &line, int timeoutMs)
{
    if (!d->linkUp())
        return std::nullopt;
    QElapsedTimer clock;
    clock.start();
    const auto remaining = [&] { return int(qMax<qint64>(0, timeoutMs - clock.elapsed())); };

    // Lines already waiting belong to earlier traffic: dispatch them first.
    d->readIncoming();
    if (!d->linkUp())
        return std::nullopt;

    d->awaiting = true;
    d->awaitedId = id;
    d->reply.reset();
    QByteArray out = line;
    out.append('\n');
    if (d->socket->write(out) != out.size()) {
        d->awaiting = false;
        d->drop();
        return std::nullopt;
    }
    d->lastTx.start();
    d->noteProbe();

    while (!d->reply) {
        // waitForBytesWritten() may already have pulled the reply into the socket's buffer.
        if (d->socket->bytesAvailable() > 0) {
            if (!d->readIncoming())
                break;
            continue;
        }
        const int left = remaining();
        if (left <= 0 || !d->linkUp())
            break;
        if (d->socket->bytesToWrite() > 0) {
            d->socket->waitForBytesWritten(left);
        } else {
            d->socket->waitForReadyRead(left);
        }
    }
    d->awaiting = false;
    // Bytes that came with the reply (events, pongs) are handled without waiting for readyRead.
    if (d->linkUp() && d->socket->bytesAvailable() > 0)
        QMetaObject::invokeMethod(this, [this] { d->readIncoming(); }, Qt::QueuedConnection);
    std::optional<QByteArray> result;
    result.swap(d->reply);
    return result;
}

bool TcpTransport::post(const QByteArray &line)
{
    if (!d->linkUp())
        return false;
    QByteArray out = line;
    out.append('\n');
    if (d->socket->write(out) != out.size())
        return false;
    d->lastTx.start();
    return true;
}

QString TcpTransport::peerName() const
{
    return QStringLiteral("%1:%2").arg(d->host).arg(d->port);
}

} // namespace orbat
