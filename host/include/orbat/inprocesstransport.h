#pragma once

#include "orbat_export.h"
#include "transport.h"

#include <QPointer>

#include <memory>

namespace orbat {

class LineEndpoint;
class InProcessTransportPrivate;

/*
 * Talks the wire protocol to a LineEndpoint in the same process. The endpoint may live in the
 * caller's thread (its reply then arrives during the call) or in a worker thread (the caller
 * waits on a condition variable up to the deadline, without running the event loop). The
 * transport does not own the endpoint; attach(nullptr) or the endpoint's destruction disconnects.
 */
class ORBAT_EXPORT InProcessTransport : public Transport
{
    Q_OBJECT

public:
    explicit InProcessTransport(LineEndpoint *endpoint = nullptr, QObject *parent = nullptr);
    ~InProcessTransport() override;

    void attach(LineEndpoint *endpoint);
    LineEndpoint *endpoint() const;

    bool isConnected() const override;
    void open() override;
    void close() override;
    std::optional<QByteArray> request(qint64 id, const QByteArray &line, int timeoutMs) override;
    bool post(const QByteArray &line) override;
    QString peerName() const override;

private:
    std::unique_ptr<InProcessTransportPrivate> d;
};

} // namespace orbat
