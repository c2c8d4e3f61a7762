#pragma once

#include <controller/controller.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <orbat/controllermanager.h>
#include <orbat/inprocesstransport.h>
#include <orbat/tcptransport.h>
#include <orbat/tservice.h>
#include <tcore/managerhelper.h>
#include <tcore/settingmanager.h>

#include <QElapsedTimer>
#include <QCoreApplication>
#include <QProcess>
#include <QRegularExpression>
#include <QStringList>
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

// The lifecycle steps the test module recorded in "pendanttest.order", in order.
inline QStringList recordedOrder()
{
    QStringList steps;
    for (orba::ModuleObject *n : orba::m(QStringLiteral("pendanttest.order"))->cmobjs())
        steps.append(n->getString());
    return steps;
}

#ifdef RCSIM_BIN
// Starts rcsim on 127.0.0.1:port (0: any free port) with a data directory; the bound port, or 0.
inline quint16 startRcsim(QProcess *process, const QString &dataDir, quint16 port = 0)
{
    process->start(QStringLiteral(RCSIM_BIN), {QStringLiteral("--listen"), QStringLiteral("127.0.0.1:%1").arg(port),
                                               QStringLiteral("--data"), dataDir});
    if (!process->waitForStarted(5000))
        return 0;
    QElapsedTimer timer;
    timer.start();
    QByteArray out;
    while (!out.contains('\n') && timer.elapsed() < 5000) {
        process->waitForReadyRead(100);
        out += process->readAllStandardOutput();
    }
    const QRegularExpressionMatch m =
        QRegularExpression(QStringLiteral("listening on [^:]+:(\\d+)")).match(QString::fromLatin1(out));
    return m.hasMatch() ? quint16(m.captured(1).toUInt()) : 0;
}

// rcsim on a free loopback port with a data directory of its own, attached to the command service
// over TCP.
class RcsimLink
{
public:
    RcsimLink() = default;
    ~RcsimLink() { stop(); }

    bool start()
    {
        m_port = startRcsim(&m_rcsim, m_dir.path());
        if (m_port == 0)
            return false;
        m_transport = std::make_unique<orbat::TcpTransport>(QStringLiteral("127.0.0.1"), m_port);
        tservice()->setTransport(m_transport.get());
        m_transport->open();
        return EmbeddedLink::waitConnected(true, 10000);
    }

    void stop()
    {
        if (m_transport && tservice()->transport() == m_transport.get())
            tservice()->setTransport(nullptr);
        m_transport.reset();
        if (m_rcsim.state() != QProcess::NotRunning) {
            m_rcsim.kill();
            m_rcsim.waitForFinished(5000);
        }
    }

    orbat::TcpTransport *transport() const { return m_transport.get(); }
    QString dataDir() const { return m_dir.path(); }
    quint16 port() const { return m_port; }

private:
    QTemporaryDir m_dir;
    QProcess m_rcsim;
    std::unique_ptr<orbat::TcpTransport> m_transport;
    quint16 m_port = 0;
};
#endif
