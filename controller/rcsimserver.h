#pragma once

#include <QHostAddress>
#include <QObject>
#include <QSet>

class QSocketNotifier;
class QTcpServer;
class QTcpSocket;
class QTimer;

namespace rc {

class Controller;
class RcsimConnection;

/*
 * Serves the wire protocol over TCP: one session per connection, one JSON line per message.
 * Everything runs in one thread, so no client may hold it: each connection handles a bounded
 * share of its lines per turn and yields to the others, stops taking requests while its replies
 * pile up unsent, and is dropped when they exceed a cap, when it has been silent too long, or
 * when a line outgrows the protocol's limit.
 */
class RcsimServer : public QObject
{
    Q_OBJECT

public:
    // Clients served at once; the next one is told so and closed.
    static constexpr int kMaxConnections = 64;
    // A client that sent nothing (and took none of its pending replies) for this long is dropped.
    static constexpr int kIdleTimeoutMs = 120 * 1000;
    // Unsent replies a client may have; the largest legitimate reply, the whole pallet list of
    // 100 pallets of 1200 places, is about 105 MB.
    static constexpr qint64 kMaxPendingBytes = qint64(256) * 1024 * 1024;
    // Above this much unsent, a client's further requests wait until it has read its replies.
    static constexpr qint64 kPauseAboveBytes = qint64(4) * 1024 * 1024;
    // One connection's turn: at most this many lines or this long, then the others' turn.
    static constexpr int kLinesPerTurn = 64;
    // Replies are handed to a socket this much at a time as it drains.
    static constexpr qint64 kFeedBytes = qint64(1) * 1024 * 1024;
    static constexpr int kTurnMs = 5;
    // After an accept failure (out of file descriptors), accepting pauses this long.
    static constexpr int kAcceptRetryMs = 250;
    // Connections taken in one go before the connected clients get their turn.
    static constexpr int kAcceptsPerTurn = 16;

    explicit RcsimServer(Controller *controller, QObject *parent = nullptr);
    ~RcsimServer() override;

    bool listen(const QHostAddress &address, quint16 port, QString *error = nullptr);
    QHostAddress address() const;
    quint16 port() const;

    void setMaxConnections(int count);
    int maxConnections() const { return m_maxConnections; }
    // 0 turns the idle timeout off.
    void setIdleTimeoutMs(int ms);
    int idleTimeoutMs() const { return m_idleTimeoutMs; }
    void setMaxPendingBytes(qint64 bytes);
    qint64 maxPendingBytes() const { return m_maxPendingBytes; }

    int connectionCount() const { return m_connections.size(); }

signals:
    // A client was dropped or refused, with the reason (for the log).
    void clientDropped(const QString &peer, const QString &reason);
    // Accepting failed (typically out of file descriptors) and pauses for kAcceptRetryMs at a
    // time until it succeeds again; told once per such spell.
    void acceptPaused(const QString &reason);

private:
    friend class RcsimConnection;
    void acceptConnections();
    void refuse(QTcpSocket *socket);
    void connectionGone(RcsimConnection *connection);

    Controller *m_controller;
    QTcpServer *m_server;
    QSocketNotifier *m_acceptNotifier = nullptr;
    QTimer *m_resumeAccepting;
    bool m_acceptFailing = false;
    QSet<RcsimConnection *> m_connections;
    int m_maxConnections = kMaxConnections;
    int m_idleTimeoutMs = kIdleTimeoutMs;
    qint64 m_maxPendingBytes = kMaxPendingBytes;
};

} // namespace rc
