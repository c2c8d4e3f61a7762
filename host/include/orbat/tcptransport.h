#pragma once

#include "orbat_export.h"
#include "transport.h"

#include <memory>

namespace orbat {

class TcpTransportPrivate;

/*
 * Client side of the wire protocol over TCP. request() writes the line and waits for the reply
 * with the socket's blocking waits (the GUI event loop is not re-entered). A ping every
 * pingIntervalMs() of idle keeps the link observed. A ping or request left unanswered (nothing
 * received since it was sent) for 3 x pingIntervalMs(), a closed socket or an oversized line
 * count as a disconnection. Silence while nothing was asked does not: the calling thread may be
 * busy for long (loops, synchronous commands) without the link being any less alive.
 * While disconnected it reconnects with a back-off from 200 ms doubling up to 5 s, emitting
 * connected() on every successful (re)connection.
 */
class ORBAT_EXPORT TcpTransport : public Transport
{
    Q_OBJECT

public:
    TcpTransport(const QString &host, quint16 port, QObject *parent = nullptr);
    ~TcpTransport() override;

    void setPingInterval(int ms);
    int pingIntervalMs() const;

    bool isConnected() const override;
    void open() override;
    void close() override;
    std::optional<QByteArray> request(qint64 id, const QByteArray &line, int timeoutMs) override;
    bool post(const QByteArray &line) override;
    QString peerName() const override;

private:
    std::unique_ptr<TcpTransportPrivate> d;
};

} // namespace orbat
