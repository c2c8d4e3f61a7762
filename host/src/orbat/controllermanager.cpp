#include <orbat/controllermanager.h>

#include <orbat/transport.h>
#include <orbat/tservice.h>

#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

namespace orbat {

namespace {

orba::ModuleObject *globalNode(const QString &path)
{
    orba::ModuleObject *node = orba::ModuleManager::root();
    for (const QString &segment : path.split(QLatin1Char('.')))
        node = node->c(segment, true);
    return node;
}

} // namespace

ControllerManager::ControllerManager(QObject *parent) : QObject(parent) {}

ControllerManager::~ControllerManager() = default;

bool ControllerManager::isConnected() const
{
    return m_connected;
}

QStringList ControllerManager::commands() const
{
    return m_commands;
}

bool ControllerManager::supports(const QString &command) const
{
    return m_commands.contains(command);
}

void ControllerManager::follow(Transport *transport)
{
    if (m_transport)
        m_transport->disconnect(this);
    m_transport = transport;
    if (transport) {
        connect(transport, &Transport::connected, this, &ControllerManager::onConnected);
        connect(transport, &Transport::disconnected, this, &ControllerManager::onDisconnected);
        connect(transport, &QObject::destroyed, this, [this, transport] {
            if (m_transport != transport)
                return;
            m_transport = nullptr;
            onDisconnected();
        });
    }
    // A link that is already up is taken as it is; the handshake runs on its next connection.
    if (transport && transport->isConnected()) {
        m_connected = true;
        globalNode(QStringLiteral("tcore.r.connected"))->setValue(this, true);
    } else {
        onDisconnected();
    }
}

void ControllerManager::onConnected()
{
    if (!m_transport || !m_transport->isConnected())
        return;
    TService *service = tservice();
    if (service->transport() != m_transport)
        return;

    orba::MobjPtr list = service->get(this, QStringLiteral("tservice.proto.command"));
    const int listStatus = service->lastStatus();
    QStringList commands;
    const QList<orba::ModuleObject *> items = list->cmobjs();
    for (int i = 0; i < items.size(); ++i) {
        const orba::ModuleObject *item = items.at(i);
        if (item->name() == QStringLiteral("#%1").arg(i) && item->value().userType() == QMetaType::QString)
            commands.append(item->getString());
    }
    m_commands = commands;
    orba::ModuleObject *published = globalNode(QStringLiteral("tservice.proto.command"));
    published->clear(this, true);
    for (int i = 0; i < commands.size(); ++i)
        published->append(this, QStringLiteral("#%1").arg(i))->setValue(this, commands.at(i));

    // A controller that did not even answer the list will not answer the identity either.
    if (listStatus != TService::StatusTimeout && listStatus != TService::StatusNoLink) {
        orba::MobjPtr id = service->get(this, QStringLiteral("sys.id"));
        if (service->lastStatus() >= 0 && id->hasValue() && id->cmobjCount() == 0)
            globalNode(QStringLiteral("tcore.r.id"))->setValue(this, id->getString());
    }

    // The link may have dropped during the handshake; its disconnected() is on its way.
    if (!m_transport || !m_transport->isConnected())
        return;
    m_connected = true;
    globalNode(QStringLiteral("tcore.r.connected"))->setValue(this, true);
    emit rcConnected();
}

void ControllerManager::onDisconnected()
{
    const bool was = m_connected;
    m_connected = false;
    globalNode(QStringLiteral("tcore.r.connected"))->setValue(this, false);
    if (was)
        emit rcDisconnected();
}

} // namespace orbat
