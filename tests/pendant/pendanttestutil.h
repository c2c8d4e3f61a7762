#pragma once

#include <controller/controller.h>
#include <orba/modulemanager.h>
#include <orbat/controllermanager.h>
#include <orbat/inprocesstransport.h>
#include <orbat/tservice.h>
#include <tcore/managerhelper.h>
#include <tcore/settingmanager.h>

#include <QElapsedTimer>
#include <QCoreApplication>
#include <QTemporaryDir>

#include <memory>

// The embedded controller simulator on a fresh data directory, attached to the command service.
class EmbeddedLink
{
public:
    EmbeddedLink() = default;
    ~EmbeddedLink() { stop(); }

    bool start()
    {
        if (!m_dir.isValid())
            return false;
        rc::Controller::Options options;
        options.dataDir = m_dir.path();
        m_controller = std::make_unique<rc::EmbeddedController>(options);
        if (!m_controller->start(&m_error))
            return false;
        m_transport = std::make_unique<orbat::InProcessTransport>(m_controller->endpoint());
        tservice()->setTransport(m_transport.get());
        m_transport->open();
        return waitConnected(true);
    }

    void stop()
    {
        if (m_transport && tservice()->transport() == m_transport.get())
            tservice()->setTransport(nullptr);
        m_transport.reset();
        m_controller.reset();
    }

    static bool waitConnected(bool up, int ms = 5000)
    {
        QElapsedTimer timer;
        timer.start();
        while (tservice()->controllerManager()->isConnected() != up && timer.elapsed() < ms)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
        return tservice()->controllerManager()->isConnected() == up;
    }

    QString error() const { return m_error; }
    QString dataDir() const { return m_dir.path(); }
    orbat::InProcessTransport *transport() const { return m_transport.get(); }
    rc::EmbeddedController *controller() const { return m_controller.get(); }

private:
    QTemporaryDir m_dir;
    QString m_error;
    std::unique_ptr<rc::EmbeddedController> m_controller;
    std::unique_ptr<orbat::InProcessTransport> m_transport;
};

// Every test starts from an empty tree, an empty log and in-memory English settings.
inline void resetHost()
{
    orba::ModuleManager::resetRoot();
    tcore::ManagerHelper::instance()->clearLogHistory();
    tcore::ManagerHelper::instance()->setMsgTestMode(true);
    tcore::SettingManager::instance()->setStorage(QString());
    tcore::SettingManager::instance()->clear();
    tcore::SettingManager::setStr(QStringLiteral("language"), QStringLiteral("en"));
}
