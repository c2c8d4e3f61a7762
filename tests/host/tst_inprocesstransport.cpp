#include <orbat/controllermanager.h>
#include <orbat/inprocesstransport.h>
#include <orbat/lineendpoint.h>
#include <orbat/tservice.h>

#include <orba/json.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QThread>
#include <QtTest>

#include <atomic>

namespace {

QByteArray j(const char *text)
{
    return QByteArray(text).replace('\'', '"');
}

// Answers protocol lines: "echo" returns its params, "silent" never answers, "event" sends an
// event before its reply, "garbage" answers with a broken line.
class TestEndpoint : public orbat::LineEndpoint
{
    Q_OBJECT

public:
    std::atomic<int> closedCount{0};
    std::atomic<int> requestCount{0};

    void receiveLine(const QByteArray &line) override
    {
        ++requestCount;
        const QJsonObject req = QJsonDocument::fromJson(line).object();
        const QByteArray id = QByteArray::number(req.value("id").toInt());
        const QString method = req.value("method").toString();
        const QByteArray params = req.contains("params")
            ? QJsonDocument::fromVariant(QVariantList{req.value("params").toVariant()}).toJson(QJsonDocument::Compact).mid(1).chopped(1)
            : QByteArray("null");
        if (method == "silent")
            return;
        if (method == "garbage") {
            emit sendLine("#garbage#");
            return;
        }
        if (method == "event")
            emit sendLine("{\"event\":\"move.last_error_with_setting\",\"data\":{\"error\":5}}");
        QByteArray data = params;
        if (method == "tservice.proto.command")
            data = j("['tray.data','sys.id']");
        else if (method == "sys.id")
            data = j("'embedded-rc'");
        emit sendLine("{\"id\":" + id + ",\"result\":{\"status\":0,\"data\":" + data + "}}");
    }
    void clientClosed() override { ++closedCount; }
    void clientOpened() override { ++openedCount; }
    std::atomic<int> openedCount{0};
};

} // namespace

class TestInProcessTransport : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void roundTrip_data();
    void roundTrip();
    void deadline_data();
    void deadline();
    void garbageReplyIsBad();
    void eventsReachWatchNode();
    void openAnnouncesConnection();
    void handshakeOnConnect();
    void endpointDestroyedDisconnects();
    void closeTellsEndpoint();
    void noEndpointIsNoLink();
    void reopenAfterClose_data();
    void reopenAfterClose();

private:
    void start(bool worker);

    TestEndpoint *m_endpoint = nullptr;
    QThread *m_thread = nullptr;
    orbat::InProcessTransport *m_transport = nullptr;
};

void TestInProcessTransport::init()
{
    orba::ModuleManager::resetRoot();
}

void TestInProcessTransport::cleanup()
{
    tservice()->setTransport(nullptr);
    delete m_transport;
    m_transport = nullptr;
    if (m_thread) {
        if (m_endpoint)
            QMetaObject::invokeMethod(m_endpoint, [ep = m_endpoint] { delete ep; }, Qt::BlockingQueuedConnection);
        m_thread->quit();
        m_thread->wait();
        delete m_thread;
        m_thread = nullptr;
    } else {
        delete m_endpoint;
    }
    m_endpoint = nullptr;
    tservice()->setDefaultTimeout(3000);
    orba::ModuleManager::resetRoot();
}

void TestInProcessTransport::start(bool worker)
{
    m_endpoint = new TestEndpoint;
    if (worker) {
        m_thread = new QThread;
        m_endpoint->moveToThread(m_thread);
        m_thread->start();
    }
    m_transport = new orbat::InProcessTransport(m_endpoint);
    tservice()->setTransport(m_transport);
    m_transport->open();
    QTRY_VERIFY(tservice()->controllerManager()->isConnected());
}

void TestInProcessTransport::roundTrip_data()
{
    QTest::addColumn<bool>("worker");
    QTest::newRow("same thread") << false;
    QTest::newRow("worker thread") << true;
}

void TestInProcessTransport::roundTrip()
{
    QFETCH(bool, worker);
    start(worker);
    orba::ModuleObject param("param");
    param.set(nullptr, "name", "p1");
    param.set(nullptr, "row", 4);
    for (int i = 0; i < 20; ++i) {
        param.set(nullptr, "row", i);
        orba::MobjPtr reply = tservice()->execCommand(this, "echo", &param);
        QCOMPARE(reply->getInt(-1), 0);
        QCOMPARE(reply->r("data.row")->getInt(), i);
        QCOMPARE(reply->r("data.name")->getString(), QString("p1"));
    }
    QCOMPARE(m_transport->peerName(), QString("embedded"));
}

void TestInProcessTransport::deadline_data()
{
    roundTrip_data();
}

void TestInProcessTransport::deadline()
{
    QFETCH(bool, worker);
    start(worker);
    tservice()->setTimeout("silent", 300);
    QElapsedTimer clock;
    clock.start();
    orba::MobjPtr reply = tservice()->execCommand(this, "silent");
    const qint64 elapsed = clock.elapsed();
    QCOMPARE(reply->getInt(), int(TService::StatusTimeout));
    QVERIFY2(elapsed < 300 + 2000, QByteArray::number(elapsed));
    if (worker)
        QVERIFY2(elapsed >= 250, QByteArray::number(elapsed));
    // A late reply never confuses the next request.
    QCOMPARE(tservice()->execCommand(this, "echo")->getInt(-1), 0);
}

void TestInProcessTransport::garbageReplyIsBad()
{
    start(true);
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(tservice()->execCommand(this, "garbage")->getInt(), int(TService::StatusBadReply));
    QVERIFY(clock.elapsed() < 2000);
}

void TestInProcessTransport::eventsReachWatchNode()
{
    start(true);
    orba::ModuleObject *node = tservice()->watchNode("move.last_error_with_setting");
    QSignalSpy changed(node, &orba::ModuleObject::changed);
    QCOMPARE(tservice()->execCommand(this, "event")->getInt(-1), 0);
    QTRY_COMPARE(changed.count(), 1);
    QCOMPARE(node->value().toMap().value("error").toInt(), 5);
    QCOMPARE(tservice()->execCommand(this, "event")->getInt(-1), 0);
    QTRY_COMPARE(changed.count(), 2);
}

void TestInProcessTransport::openAnnouncesConnection()
{
    m_endpoint = new TestEndpoint;
    m_transport = new orbat::InProcessTransport(m_endpoint);
    QSignalSpy up(m_transport, &orbat::Transport::connected);
    QVERIFY(!m_transport->isConnected());
    m_transport->open();
    QVERIFY(m_transport->isConnected());
    QCOMPARE(up.count(), 0); // queued
    QTRY_COMPARE(up.count(), 1);
    QCOMPARE(m_transport->endpoint(), static_cast<orbat::LineEndpoint *>(m_endpoint));
}

void TestInProcessTransport::handshakeOnConnect()
{
    start(true);
    QCOMPARE(orba::m("tservice.proto.command")->size(), 2);
    QCOMPARE(orba::m("tservice.proto.command.#0")->getString(), QString("tray.data"));
    QCOMPARE(orba::m("tcore.r.id")->getString(), QString("embedded-rc"));
    QCOMPARE(orba::m("tcore.r.connected")->getBool(), true);
}

void TestInProcessTransport::endpointDestroyedDisconnects()
{
    start(true);
    QSignalSpy down(tservice()->controllerManager(), &orbat::ControllerManager::rcDisconnected);
    QMetaObject::invokeMethod(m_endpoint, [ep = m_endpoint] { delete ep; }, Qt::BlockingQueuedConnection);
    m_endpoint = nullptr;
    QVERIFY(!m_transport->isConnected());
    QTRY_COMPARE(down.count(), 1);
    QCOMPARE(tservice()->execCommand(this, "echo")->getInt(), int(TService::StatusNoLink));
    QCOMPARE(orba::m("tcore.r.connected")->getBool(true), false);

    // A new endpoint brings the link back.
    QSignalSpy up(tservice()->controllerManager(), &orbat::ControllerManager::rcConnected);
    m_endpoint = new TestEndpoint;
    m_endpoint->moveToThread(m_thread);
    m_transport->attach(m_endpoint);
    QTRY_COMPARE(up.count(), 1);
    QCOMPARE(tservice()->execCommand(this, "echo")->getInt(-1), 0);
}

void TestInProcessTransport::closeTellsEndpoint()
{
    start(true);
    QSignalSpy down(m_transport, &orbat::Transport::disconnected);
    m_transport->close();
    QTRY_COMPARE(m_endpoint->closedCount.load(), 1);
    QTRY_COMPARE(down.count(), 1);
    QCOMPARE(tservice()->execCommand(this, "echo")->getInt(), int(TService::StatusNoLink));
}

void TestInProcessTransport::noEndpointIsNoLink()
{
    m_transport = new orbat::InProcessTransport;
    tservice()->setTransport(m_transport);
    m_transport->open();
    QVERIFY(!m_transport->isConnected());
    QVERIFY(!m_transport->post("{}"));
    QCOMPARE(tservice()->execCommand(this, "echo")->getInt(), int(TService::StatusNoLink));
}

void TestInProcessTransport::reopenAfterClose_data()
{
    QTest::addColumn<bool>("threaded");
    QTest::newRow("same thread") << false;
    QTest::newRow("worker thread") << true;
}

// The pendant closes and opens its link again (a reconnect from the status bar): the endpoint
// serves the new connection.
void TestInProcessTransport::reopenAfterClose()
{
    QFETCH(bool, threaded);
    start(threaded);
    QSignalSpy up(m_transport, &orbat::Transport::connected);
    m_transport->close();
    QTRY_COMPARE(m_endpoint->closedCount.load(), 1);
    QCOMPARE(m_endpoint->openedCount.load(), 0);
    m_transport->open();
    QTRY_COMPARE(m_endpoint->openedCount.load(), 1);
    QTRY_VERIFY(up.count() >= 1);
    QVERIFY(m_transport->isConnected());
    QCOMPARE(tservice()->execCommand(this, "echo")->getInt(-1), 0);
    // Opening an open link tells the endpoint nothing.
    m_transport->open();
    QTest::qWait(20);
    QCOMPARE(m_endpoint->openedCount.load(), 1);
}

QTEST_GUILESS_MAIN(TestInProcessTransport)
#include "tst_inprocesstransport.moc"
