#pragma once

#include "orbat_export.h"

#include <QByteArray>
#include <QObject>

namespace orbat {

/*
 * The far end of an in-process link: something that answers protocol lines (the embedded
 * controller simulator implements one per connection). It may live in another thread; the
 * in-process transport only talks to it through this interface's slot and signals, queued across
 * threads.
 */
class ORBAT_EXPORT LineEndpoint : public QObject
{
    Q_OBJECT

public:
    explicit LineEndpoint(QObject *parent = nullptr);
    ~LineEndpoint() override;

public slots:
    // One request line from the client.
    virtual void receiveLine(const QByteArray &line) = 0;
    // The client went away: stop whatever the connection started (motion stops on disconnect).
    virtual void clientClosed() = 0;
    // The client came back after clientClosed(): serve it again as a new connection. An endpoint
    // that never serves a second connection keeps the default and stays closed.
    virtual void clientOpened() {}

signals:
    // A reply or event line to the client.
    void sendLine(const QByteArray &line);
};

} // namespace orbat
