#include "rcsimserver.h"

#include "controller.h"
#include "protocol.h"
#include "session.h"

#include <orbat/linebuffer.h>
#include <orbat/lineendpoint.h>
#include <orbat/transport.h>

#include <QElapsedTimer>
#include <QPointer>
#include <QSocketNotifier>
#include <QTcpServer>
#include <QTcpSocket>
#include <QTimer>

#include <cerrno>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <sys/socket.h>
#include <unistd.h>

namespace rc {

namespace {

QString peerOf(const QTcpSocket *socket)
{
    const QHostAddress a = socket->peerAddress();
    const QString host = a.protocol() == QAbstractSocket::IPv6Protocol ? QStringLiteral("[%1]").arg(a.toString()) : a.toString();
    return QStringLiteral("%1:%2").arg(host).arg(socket->peerPort());
}

} // namespace

// One client: its socket, its session and the bookkeeping that keeps it from holding the thread.
class RcsimConnection : public QObject
{
public:
    RcsimConnection(RcsimServer *server, QTcpSocket *socket)
        : QObject(server), m_server(server), m_socket(socket), m_peer(peerOf(socket))
    {
        socket->setParent(this);
        socket->setSocketOption(QAbstractSocket::LowDelayOption, 1);
        // Room for one line of the largest size and its end; beyond that the socket stops
        // reading from the kernel instead of buffering without limit.
        socket->setReadBufferSize(qint64(orbat::Transport::maxLineBytes()) + 2);
        m_session = static_cast<Session *>(server->m_controller->createSession());
        m_session->setParent(this);

        m_idle = new QTimer(this);
        m_idle->setSingleShot(true);
        connect(m_idle, &QTimer::timeout, this, [this] {
            drop(QStringLiteral("silent for %1 ms").arg(m_server->idleTimeoutMs()));
        });
        heard();

        connect(m_session, &orbat::LineEndpoint::sendLine, this, [this](const QByteArray &line) { send({line}); });
        m_session->setPiecewise(true);
        connect(m_session, &Session::sendPieces, this, [this](const QVector<QByteArray> &pieces) { send(pieces); });
        connect(socket, &QTcpSocket::readyRead, this, [this] {
            heard();
            if (!m_pumpQueued)
                pump();
        });
        connect(socket, &QTcpSocket::bytesWritten, this, [this] {
            // The client takes its replies: that is no idleness, and a paused client may go on.
            heard();
            feed();
            if (m_paused && unsent() <= RcsimServer::kPauseAboveBytes) {
                m_paused = false;
                schedulePump();
            }
        });
        connect(socket, &QTcpSocket::disconnected, this, [this] { finish(); });
    }

    void drop(const QString &reason)
    {
        if (m_finished)
            return;
        emit m_server->clientDropped(m_peer, reason);
        m_socket->abort();
        finish();
    }

private:
    void heard()
    {
        if (m_server->idleTimeoutMs() > 0)
            m_idle->start(m_server->idleTimeoutMs());
    }

    bool live() const { return !m_finished && m_socket->state() == QAbstractSocket::ConnectedState; }

    void schedulePump()
    {
        if (m_pumpQueued || m_finished)
            return;
        m_pumpQueued = true;
        QMetaObject::invokeMethod(this, [this] { pump(); }, Qt::QueuedConnection);
    }

    // Handles the complete lines received, a bounded share at a time.
    void pump()
    {
        m_pumpQueued = false;
        QElapsedTimer turn;
        turn.start();
        int lines = 0;
        while (live()) {
            if (unsent() > RcsimServer::kPauseAboveBytes) {
                m_paused = true;
                return;
            }
            if (lines >= RcsimServer::kLinesPerTurn || turn.elapsed() >= RcsimServer::kTurnMs) {
                schedulePump();
                return;
            }
            // Lines are cut here rather than by QIODevice::readLine(), which reserves its whole
            // limit (256 MiB) for every line it reads.
            QByteArray line;
            if (!m_rx.takeLine(&line)) {
                // A line that has not ended within the cap never will be valid.
                if (m_rx.pendingBytes() > orbat::Transport::maxLineBytes()) {
                    drop(QStringLiteral("line longer than %1 bytes").arg(orbat::Transport::maxLineBytes()));
                    return;
                }
                if (m_rx.pull(m_socket, qint64(orbat::Transport::maxLineBytes()) + 2) <= 0)
                    return;
                continue;
            }
            if (line.size() > orbat::Transport::maxLineBytes()) {
                drop(QStringLiteral("line longer than %1 bytes").arg(orbat::Transport::maxLineBytes()));
                return;
            }
            if (line.trimmed().isEmpty())
                continue;
            ++lines;
            m_session->receiveLine(line);
        }
    }

    qint64 unsent() const { return m_socket->bytesToWrite() + m_queuedBytes; }

    // Replies wait here as the pieces they were made of (shared with the store, not copied) and
    // go to the socket, which copies what it is given, a slice at a time as the client takes
    // them: a hundred-megabyte list costs no turn more than one slice.
    void send(const QVector<QByteArray> &pieces)
    {
        if (!live())
            return;
        qint64 size = 1;
        for (const QByteArray &piece : pieces)
            size += piece.size();
        if (unsent() + size > m_server->maxPendingBytes()) {
            drop(QStringLiteral("more than %1 bytes of replies unread").arg(m_server->maxPendingBytes()));
            return;
        }
        for (const QByteArray &piece : pieces) {
            if (!piece.isEmpty())
                m_queue.push_back(piece);
        }
        m_queue.push_back(QByteArray(1, '\n'));
        m_queuedBytes += size;
        feed();
    }

    void feed()
    {
        while (!m_queue.empty() && m_socket->bytesToWrite() < RcsimServer::kFeedBytes && live()) {
            const QByteArray &front = m_queue.front();
            const qint64 n = qMin<qint64>(front.size() - m_frontOffset, RcsimServer::kFeedBytes - m_socket->bytesToWrite());
            m_socket->write(front.constData() + m_frontOffset, n);
            m_frontOffset += n;
            m_queuedBytes -= n;
            if (m_frontOffset == front.size()) {
                m_queue.pop_front();
                m_frontOffset = 0;
            }
        }
    }

    // The end of the connection, whoever ended it: the session stops what it started.
    void finish()
    {
        if (m_finished)
            return;
        m_finished = true;
        m_idle->stop();
        m_queue.clear();
        m_queuedBytes = 0;
        m_session->clientClosed();
        m_server->connectionGone(this);
        deleteLater();
    }

    RcsimServer *m_server;
    QTcpSocket *m_socket;
    Session *m_session = nullptr;
    QTimer *m_idle = nullptr;
    QString m_peer;
    orbat::LineBuffer m_rx;
    std::deque<QByteArray> m_queue;
    qint64 m_frontOffset = 0;
    qint64 m_queuedBytes = 0;
    bool m_pumpQueued = false;
    bool m_paused = false;
    bool m_finished = false;
};

RcsimServer::RcsimServer(Controller *controller, QObject *parent)
    : QObject(parent), m_controller(controller), m_server(new QTcpServer(this)), m_resumeAccepting(new QTimer(this))
{
    m_resumeAccepting->setSingleShot(true);
    m_resumeAccepting->setInterval(kAcceptRetryMs);
    connect(m_resumeAccepting, &QTimer::timeout, this, [this] {
        if (m_acceptNotifier)
            m_acceptNotifier->setEnabled(true);
    });
}

RcsimServer::~RcsimServer()
{
    delete m_acceptNotifier;
    // Sessions end before the controller they talk to may go.
    const auto connections = m_connections;
    for (RcsimConnection *c : connections)
        delete c;
}

bool RcsimServer::listen(const QHostAddress &address, quint16 port, QString *error)
{
    if (!m_server->listen(address, port)) {
        if (error)
            *error = m_server->errorString();
        return false;
    }
    // Connections are accepted here, not by QTcpServer: after its first "would block" it reports
    // every later failure as temporary, so out of file descriptors it neither pauses nor says
    // so, and the listening socket, readable all the time, spins the thread.
    m_server->pauseAccepting();
    m_acceptNotifier = new QSocketNotifier(int(m_server->socketDescriptor()), QSocketNotifier::Read, this);
    connect(m_acceptNotifier, &QSocketNotifier::activated, this, &RcsimServer::acceptConnections);
    return true;
}

QHostAddress RcsimServer::address() const
{
    return m_server->serverAddress();
}

quint16 RcsimServer::port() const
{
    return m_server->serverPort();
}

void RcsimServer::setMaxConnections(int count)
{
    m_maxConnections = qMax(1, count);
}

void RcsimServer::setIdleTimeoutMs(int ms)
{
    m_idleTimeoutMs = qMax(0, ms);
}

void RcsimServer::setMaxPendingBytes(qint64 bytes)
{
    m_maxPendingBytes = qMax<qint64>(1024, bytes);
}

void RcsimServer::acceptConnections()
{
    const int listener = int(m_server->socketDescriptor());
    // A bounded number per turn: the connected clients are served in between.
    for (int i = 0; i < kAcceptsPerTurn; ++i) {
        const int fd = ::accept(listener, nullptr, nullptr);
        if (fd < 0) {
            const int err = errno;
            if (err == EINTR || err == ECONNABORTED)
                continue;
            if (err == EAGAIN || err == EWOULDBLOCK)
                return;
            // Out of descriptors (or memory): the listening socket stays readable, so accepting
            // again at once would spin and never accepting again would lock everyone out.
            m_acceptNotifier->setEnabled(false);
            m_resumeAccepting->start();
            if (!m_acceptFailing) {
                m_acceptFailing = true;
                emit acceptPaused(QString::fromLocal8Bit(std::strerror(err)));
            }
            return;
        }
        ::fcntl(fd, F_SETFD, FD_CLOEXEC);
        m_acceptFailing = false;
        auto *socket = new QTcpSocket(this);
        if (!socket->setSocketDescriptor(fd)) {
            ::close(fd);
            delete socket;
            continue;
        }
        if (m_connections.size() >= m_maxConnections)
            refuse(socket);
        else
            m_connections.insert(new RcsimConnection(this, socket));
    }
}

void RcsimServer::refuse(QTcpSocket *socket)
{
    socket->setParent(this);
    const QString reason = QStringLiteral("too many connections (%1)").arg(m_maxConnections);
    emit clientDropped(peerOf(socket), reason);
    socket->write(protocol::resultLine("null", Reply::error(InternalError, reason)) + '\n');
    connect(socket, &QTcpSocket::disconnected, socket, &QObject::deleteLater);
    socket->disconnectFromHost();
    if (socket->state() == QAbstractSocket::UnconnectedState) {
        socket->deleteLater();
        return;
    }
    // A client that does not take the notice is not waited for.
    QTimer::singleShot(1000, socket, [socket] {
        socket->abort();
        socket->deleteLater();
    });
}

void RcsimServer::connectionGone(RcsimConnection *connection)
{
    m_connections.remove(connection);
}

} // namespace rc
