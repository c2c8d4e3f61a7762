#pragma once

#include "orbat_export.h"

#include <QObject>
#include <QStringList>

namespace orbat {

class Transport;

/*
 * Follows the link state of the service's transport. On every (re)connection it asks the
 * controller for its command list ("tservice.proto.command", op "get"), publishes it as the array
 * of strings under the global node "tservice.proto.command", marks "tcore.r.connected" true and
 * then emits rcConnected(). On a disconnection it marks "tcore.r.connected" false and emits
 * rcDisconnected(). It also mirrors the controller identity into "tcore.r.id" ("sys.id", when the
 * controller answers it).
 */
class ORBAT_EXPORT ControllerManager : public QObject
{
    Q_OBJECT

public:
    explicit ControllerManager(QObject *parent = nullptr);
    ~ControllerManager() override;

    bool isConnected() const;
    QStringList commands() const;
    bool supports(const QString &command) const;

    // Called by the service when its transport changes.
    void follow(Transport *transport);

signals:
    void rcConnected();
    void rcDisconnected();

private:
    void onConnected();
    void onDisconnected();
    Transport *m_transport = nullptr;
    bool m_connected = false;
    QStringList m_commands;
};

} // namespace orbat
