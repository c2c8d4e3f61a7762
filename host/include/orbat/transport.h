#pragma once

#include "orbat_export.h"

#include <QByteArray>
#include <QObject>
#include <QString>

#include <optional>

namespace orbat {

/*
 * The link to a controller. Everything is one line of compact JSON (no newline inside):
 *   request  {"id": N, "op": "exec"|"get"|"set"|"watch"|"ping", "method": "<command>", "params": <node>,
 *             "key": "<text>"}        ("key" only for getAt with a key; "params" may be absent)
 *   reply    {"id": N, "result": {"status": <int>, "data": <node>}}   or
 *            {"id": N, "error": {"code": <negative int>, "message": "<text>"}}
 *   event    {"event": "<watched name>", "data": <node>}
 * <node> is the lossless JSON form of orba::json. Lines longer than maxLineBytes() are a protocol
 * violation: the receiving side drops the connection.
 *
 * request() is synchronous: it must return within timeoutMs whatever the peer does. Lines that are
 * not the awaited reply (events, late replies of timed-out requests) must not be lost: events are
 * re-emitted through eventLine() from the event loop, late replies are dropped.
 */
class ORBAT_EXPORT Transport : public QObject
{
    Q_OBJECT

public:
    explicit Transport(QObject *parent = nullptr);
    ~Transport() override;

    // Above the longest legitimate line, the whole pallet list of 100 pallets of 1200 places in one
    // "tray.data" reply or write (about 105 MB).
    static constexpr int maxLineBytes() { return 256 * 1024 * 1024; }

    virtual bool isConnected() const = 0;
    // Starts connecting (or reconnecting); connected() follows when the link is up.
    virtual void open() = 0;
    virtual void close() = 0;

    // Sends `line` (a request with this id) and waits for the reply line with the same id.
    // Empty optional on deadline, disconnection or send failure.
    virtual std::optional<QByteArray> request(qint64 id, const QByteArray &line, int timeoutMs) = 0;
    // Sends without waiting for the reply (the reply, if any, is dropped when it arrives).
    virtual bool post(const QByteArray &line) = 0;

    // Human-readable description of the peer ("embedded", "127.0.0.1:7878", "scripted").
    virtual QString peerName() const = 0;

signals:
    void connected();
    void disconnected();
    void eventLine(const QByteArray &line);
};

} // namespace orbat
