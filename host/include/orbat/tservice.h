#pragma once

#include "orbat_export.h"

#include <orba/moduleobject.h>

#include <QHash>
#include <QObject>
#include <QString>

#include <memory>

namespace orbat {
class Transport;
class ControllerManager;
}

/*
 * The controller command service. Every call is synchronous on the calling (GUI) thread and has a
 * deadline: timeout(name) ms, defaultTimeoutMs() unless set per command. Status convention of
 * replies: 0 success, negative failure; the transport-level failures are
 *   StatusNoLink (-1000)   no transport, or not connected
 *   StatusTimeout (-1001)  no reply within the deadline
 *   StatusBadReply (-1002) the reply line is not a well-formed reply
 *   StatusError (-1003)    the controller answered with an error object (unknown command, bad params)
 * A reply node's own value is the status (int) and its child "data" the payload.
 *
 * The sender argument is the object on whose behalf a call is made; it is passed on to the tree
 * writes the call makes (execCommandAt, getAt), so listeners can recognise their own changes.
 */
class ORBAT_EXPORT TService : public QObject
{
    Q_OBJECT

public:
    enum : int {
        StatusNoLink = -1000,
        StatusTimeout = -1001,
        StatusBadReply = -1002,
        StatusError = -1003,
    };

    static TService *instance();

    // The service does not own the transport; pass null to detach.
    void setTransport(orbat::Transport *transport);
    orbat::Transport *transport() const;
    orbat::ControllerManager *controllerManager() const;

    void setDefaultTimeout(int ms);
    int defaultTimeoutMs() const;
    void setTimeout(const QString &name, int ms);
    int timeout(const QString &name) const;

    // Sends command `name` with `param` (may be null); the reply node (never null; free-standing,
    // owned by the caller): value = status, child "data" = payload.
    orba::MobjPtr execCommand(QObject *sender, const QString &name, orba::ModuleObject *param = nullptr);
    // Sends `node` as parameter; on success the reply's children (its "data") replace the node's
    // children. Returns the status. On failure the node is unchanged.
    int execCommandAt(QObject *sender, const QString &name, orba::ModuleObject *node);
    // Fire and forget: true when the request was handed to a connected transport.
    bool command(QObject *sender, const QString &name, orba::ModuleObject *param = nullptr);

    // Reads a controller value: the reply's "data" as a free-standing node (value and children);
    // an empty node (isNull()) on failure.
    orba::MobjPtr get(QObject *sender, const QString &name);
    // Reads a controller value into `node`: the node's value and children are replaced by the
    // reply's "data" (the last argument is unused and kept for the host's signature). Status.
    int getAt(QObject *sender, const QString &name, orba::ModuleObject *node, int unused = 0);
    // The same, for keyed values ("data.var" with the variable's name); `node` is also sent as
    // parameter, so its fields (e.g. "type") reach the controller.
    int getAt(QObject *sender, const QString &name, const QString &key, orba::ModuleObject *node);
    // Writes a controller value. Returns the status.
    int set(QObject *sender, const QString &name, orba::ModuleObject *node);

    // Subscribes to (on) or unsubscribes from a watched controller value. Status.
    int watch(QObject *sender, const QString &name, bool on);
    // The host node that mirrors a watched value: every event for `name` sets the node's value to
    // the event's data as a QVariant (QVariantMap for objects) and always notifies, even when the
    // data repeats. Owned by the service; lives under the global node "tservice.watch".
    orba::ModuleObject *watchNode(const QString &name);

    // Test hook: the status of the last call and the last request line sent.
    int lastStatus() const;
    QByteArray lastRequestLine() const;

signals:
    void watchEvent(const QString &name, const QVariant &data);

private:
    TService();
    ~TService() override;
    struct Private;
    std::unique_ptr<Private> d;
};

ORBAT_EXPORT TService *tservice();
