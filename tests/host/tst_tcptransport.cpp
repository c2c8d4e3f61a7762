#include <orbat/controllermanager.h>
#include <orbat/tcptransport.h>
#include <orbat/tservice.h>

#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <QElapsedTimer>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSignalSpy>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <QtTest>

#include <atomic>

namespace {

// A line server in its own thread (the client blocks its thread while it waits for replies).
class LineServer : public QObject
{
    Q_OBJECT

public:
    std::atomic<bool> silent{false};
    std::atomic<int> pings{0};
    std::atomic<int> accepted{0};
    // Replies (not pongs) wait this long, as a controller busy with a long check would.
    std::atomic<int> delayMs{0};

    quint16 start()
    {
        m_server = new QTcpServer(this);
        connect(m_server, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket *s = m_server->nextPendingConnection()) {
                ++accepted;
                connect(s, &QTcpSocket::readyRead, this, [this, s] { serve(s); });
                connect(s, &QTcpSocket::disconnected, s, &QObject::deleteLater);
            }
        });
        m_server->listen(QHostAddress::LocalHost, m_port);
        m_port = m_server->serverPort();
        return m_port;
    }
    void stop()
    {
        dropClients();
        delete m_server;
        m_server = nullptr;
    }
    void dropClients()
    {
        for (QTcpSocket *s : findChildren<QTcpSocket *>())
            s->abort();
    }
    void sendToClients(const QByteArray &bytes)
    {
        for (QTcpSocket *s : findChildren<QTcpSocket *>())
            s->write(bytes);
    }

private:
    void serve(QTcpSocket *s)
    {
        while (s->canReadLine()) {
            const QByteArray line = s->readLine();
            const QJsonObject req = QJsonDocument::fromJson(line).object();
            if (req.value("op").toString() == "ping")
                ++pings;
            if (silent)
                continue;
            const QString method = req.value("method").toString();
            const QByteArray id = QByteArray::number(req.value("id").toInt());
            QByteArray data = "null";
            if (method == "tservice.proto.command")
                data = "[\"echo\",\"sys.id\"]";
            else if (method == "sys.id")
                data = "\"tcp-rc\"";
            else if (method == "echo")
                data = QJsonDocument(QJsonObject{{"v", req.value("params")}}).toJson(QJsonDocument::Compact);
            if (method == "close") {
                s->abort();
                return;
            }
            if (method == "event")
                s->write("{\"event\":\"sys.power\",\"data\":\"off\"}\n");
            if (method == "bulk") {
                // Events before and after a large reply, all in one write.
                const QJsonObject p = req.value("params").toObject();
                QByteArray out;
                int n = 0;
                for (int i = 0; i < p.value("before").toInt(); ++i)
                    out += "{\"event\":\"bulk.ev\",\"data\":" + QByteArray::number(n++) + "}\n";
                out += "{\"id\":" + id + ",\"result\":{\"status\":0,\"data\":\"" + QByteArray(p.value("size").toInt(), 'z')
                    + "\"}}\n";
                for (int i = 0; i < p.value("after").toInt(); ++i)
                    out += "{\"event\":\"bulk.ev\",\"data\":" + QByteArray::number(n++) + "}\n";
                out += p.value("tail").toString().toUtf8();
                s->write(out);
                continue;
            }
            if (delayMs > 0 && req.value("op").toString() != "ping")
                QThread::msleep(ulong(delayMs.load()));
            s->write("{\"id\":" + id + ",\"result\":{\"status\":0,\"data\":" + data + "}}\n");
        }
    }

    QTcpServer *m_server = nullptr;
    quint16 m_port = 0;
};

} // namespace

class TestTcpTransport : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void connectsAndAnswers();
    void silentServerHitsDeadline();
    void peerClosingMidRequest();
    void reconnectsAfterServerDrop();
    void connectsOnceServerAppears();
    void oversizedLineDropsLink();
    void lineAtCapIsAccepted();
    void eventsReachWatchNode();
    void largeReplyAmongEvents_data();
    void largeReplyAmongEvents();
    void pingsWhenIdle();
    void deadLinkIsDropped();
    void busyThreadKeepsLink_data();
    void busyThreadKeepsLink();
    void slowSynchronousCommandsKeepLink();
    void deadLinkAfterBusyThreadIsDropped();
    void unansweredRequestDropsLink();

private:
    void run(const std::function<void(LineServer *)> &f)
    {
        QMetaObject::invokeMethod(m_server, [this, f] { f(m_server); }, Qt::BlockingQueuedConnection);
    }
    void connectTransport();

    QThread m_thread;
    LineServer *m_server = nullptr;
    quint16 m_port = 0;
    orbat::TcpTransport *m_transport = nullptr;
};

void TestTcpTransport::init()
{
    orba::ModuleManager::resetRoot();
    tservice()->setDefaultTimeout(1000);
    m_server = new LineServer;
    m_server->moveToThread(&m_thread);
    m_thread.start();
    run([this](LineServer *s) { m_port = s->start(); });
    QVERIFY(m_port != 0);
    m_transport = new orbat::TcpTransport("127.0.0.1", m_port);
    tservice()->setTransport(m_transport);
}

void TestTcpTransport::cleanup()
{
    tservice()->setTransport(nullptr);
    delete m_transport;
    m_transport = nullptr;
    run([](LineServer *s) {
        s->stop();
        delete s;
    });
    m_server = nullptr;
    m_thread.quit();
    m_thread.wait();
    tservice()->setDefaultTimeout(3000);
    orba::ModuleManager::resetRoot();
}

void TestTcpTransport::connectTransport()
{
    QSignalSpy up(tservice()->controllerManager(), &orbat::ControllerManager::rcConnected);
    m_transport->open();
    QTRY_COMPARE(up.count(), 1);
}

void TestTcpTransport::connectsAndAnswers()
{
    connectTransport();
    QCOMPARE(m_transport->peerName(), QString("127.0.0.1:%1").arg(m_port));
    QCOMPARE(orba::m("tservice.proto.command.#0")->getString(), QString("echo"));
    QCOMPARE(orba::m("tcore.r.id")->getString(), QString("tcp-rc"));
    orba::ModuleObject param("param");
    param.setValue(nullptr, 42);
    for (int i = 0; i < 10; ++i) {
        orba::MobjPtr reply = tservice()->execCommand(this, "echo", &param);
        QCOMPARE(reply->getInt(-1), 0);
        QCOMPARE(reply->r("data.v")->getInt(), 42);
    }
}

void TestTcpTransport::silentServerHitsDeadline()
{
    connectTransport();
    m_server->silent = true;
    tservice()->setTimeout("echo", 300);
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(tservice()->execCommand(this, "echo")->getInt(), int(TService::StatusTimeout));
    const qint64 elapsed = clock.elapsed();
    tservice()->setTimeout("echo", 1000);
    QVERIFY2(elapsed >= 250 && elapsed < 300 + 2000, QByteArray::number(elapsed));
}

void TestTcpTransport::peerClosingMidRequest()
{
    connectTransport();
    tservice()->setTimeout("close", 5000);
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(tservice()->execCommand(this, "close")->getInt(), int(TService::StatusNoLink));
    QVERIFY2(clock.elapsed() < 2000, QByteArray::number(clock.elapsed()));
}

void TestTcpTransport::reconnectsAfterServerDrop()
{
    connectTransport();
    QSignalSpy up(tservice()->controllerManager(), &orbat::ControllerManager::rcConnected);
    QSignalSpy down(tservice()->controllerManager(), &orbat::ControllerManager::rcDisconnected);
    run([](LineServer *s) { s->dropClients(); });
    QTRY_COMPARE(down.count(), 1);
    QTRY_COMPARE(up.count(), 1);
    QCOMPARE(tservice()->execCommand(this, "echo")->getInt(-1), 0);
    QCOMPARE(m_server->accepted.load(), 2);
}

void TestTcpTransport::connectsOnceServerAppears()
{
    run([](LineServer *s) { s->stop(); });
    QSignalSpy up(tservice()->controllerManager(), &orbat::ControllerManager::rcConnected);
    m_transport->open();
    QTest::qWait(300);
    QCOMPARE(up.count(), 0);
    QCOMPARE(tservice()->execCommand(this, "echo")->getInt(), int(TService::StatusNoLink));
    run([](LineServer *s) { s->start(); });
    QTRY_COMPARE_WITH_TIMEOUT(up.count(), 1, 8000);
}

void TestTcpTransport::oversizedLineDropsLink()
{
    connectTransport();
    QSignalSpy down(m_transport, &orbat::Transport::disconnected);
    // One byte over the cap, newline included in the send: the line is refused whole.
    QByteArray flood(orbat::Transport::maxLineBytes() + 1, 'x');
    flood.append('\n');
    run([flood](LineServer *s) { s->sendToClients(flood); });
    QTRY_COMPARE_WITH_TIMEOUT(down.count(), 1, 20000);
}

// An event line of exactly the cap (the longest legitimate line is a whole pallet list) arrives.
void TestTcpTransport::lineAtCapIsAccepted()
{
    connectTransport();
    orba::ModuleObject *node = tservice()->watchNode("big.value");
    QSignalSpy changed(node, &orba::ModuleObject::changed);
    QSignalSpy down(m_transport, &orbat::Transport::disconnected);
    const QByteArray head = "{\"event\":\"big.value\",\"data\":\"";
    const QByteArray tail = "\"}";
    QByteArray line = head;
    line.append(QByteArray(orbat::Transport::maxLineBytes() - head.size() - tail.size(), 'y'));
    line.append(tail);
    QCOMPARE(line.size(), orbat::Transport::maxLineBytes());
    line.append('\n');
    run([line](LineServer *s) { s->sendToClients(line); });
    QTRY_COMPARE_WITH_TIMEOUT(changed.count(), 1, 20000);
    QCOMPARE(node->getString().size(), orbat::Transport::maxLineBytes() - head.size() - tail.size());
    QCOMPARE(down.count(), 0);
    QVERIFY(m_transport->isConnected());
    QCOMPARE(tservice()->execCommand(this, "sys.id")->getInt(-1), 0);
}

void TestTcpTransport::eventsReachWatchNode()
{
    connectTransport();
    orba::ModuleObject *node = tservice()->watchNode("sys.power");
    QSignalSpy changed(node, &orba::ModuleObject::changed);
    QCOMPARE(tservice()->execCommand(this, "event")->getInt(-1), 0);
    QTRY_COMPARE(changed.count(), 1);
    QCOMPARE(node->getString(), QString("off"));
    run([](LineServer *s) { s->sendToClients("{\"event\":\"sys.power\",\"data\":\"off\"}\n"); });
    QTRY_COMPARE(changed.count(), 2);
}

void TestTcpTransport::largeReplyAmongEvents_data()
{
    QTest::addColumn<int>("size");
    QTest::addColumn<int>("before");
    QTest::addColumn<int>("after");
    QTest::addColumn<QString>("tail");
    QTest::newRow("alone") << 3000000 << 0 << 0 << QString();
    QTest::newRow("events before") << 3000000 << 3 << 0 << QString();
    QTest::newRow("events after") << 3000000 << 0 << 3 << QString();
    QTest::newRow("both, and half a line") << 3000000 << 2 << 2 << QString("{\"event\":\"bulk.ev\",");
    QTest::newRow("small reply, events after") << 10 << 0 << 5 << QString();
}

void TestTcpTransport::largeReplyAmongEvents()
{
    QFETCH(int, size);
    QFETCH(int, before);
    QFETCH(int, after);
    QFETCH(QString, tail);
    connectTransport();
    orba::ModuleObject *node = tservice()->watchNode("bulk.ev");
    QSignalSpy changed(node, &orba::ModuleObject::changed);
    orba::ModuleObject param("param");
    param.set(nullptr, "size", size);
    param.set(nullptr, "before", before);
    param.set(nullptr, "after", after);
    param.set(nullptr, "tail", tail);
    // Twice: the buffer left by the first big line serves the second.
    const int rounds = tail.isEmpty() ? 2 : 1;
    for (int round = 0; round < rounds; ++round) {
        orba::MobjPtr reply = tservice()->execCommand(this, "bulk", &param);
        QCOMPARE(reply->getInt(-1), 0);
        QCOMPARE(reply->r("data")->getString(), QString(size, QChar('z')));
        QTRY_COMPARE(changed.count(), (before + after) * (round + 1));
        QCOMPARE(node->getInt(-1), before + after - 1);
    }
    if (!tail.isEmpty()) {
        // The half line left over is completed by what comes next.
        run([](LineServer *s) { s->sendToClients("\"data\":-5}\n"); });
        QTRY_COMPARE(node->getInt(0), -5);
    }
    QVERIFY(m_transport->isConnected());
    QCOMPARE(tservice()->execCommand(this, "sys.id")->getInt(-1), 0);
}

void TestTcpTransport::pingsWhenIdle()
{
    m_transport->setPingInterval(100);
    QCOMPARE(m_transport->pingIntervalMs(), 100);
    connectTransport();
    QTRY_VERIFY(m_server->pings.load() >= 2);
    QVERIFY(m_transport->isConnected());
}

void TestTcpTransport::deadLinkIsDropped()
{
    m_transport->setPingInterval(100);
    connectTransport();
    QSignalSpy down(m_transport, &orbat::Transport::disconnected);
    m_server->silent = true;
    QTRY_VERIFY(down.count() >= 1);
}

// The GUI thread may be busy for longer than the liveness limit (a long loop, a synchronous
// command): the silence of a peer that was asked nothing proves nothing, and answers that
// arrived meanwhile are still unread in the socket.
void TestTcpTransport::busyThreadKeepsLink_data()
{
    QTest::addColumn<bool>("pingBefore");
    QTest::newRow("nothing asked before") << false;
    QTest::newRow("ping answered while busy") << true;
}

void TestTcpTransport::busyThreadKeepsLink()
{
    QFETCH(bool, pingBefore);
    m_transport->setPingInterval(100);
    connectTransport();
    QSignalSpy down(m_transport, &orbat::Transport::disconnected);
    if (pingBefore) {
        // Let a ping go out, then block before its pong is read.
        const int pings = m_server->pings.load();
        QTRY_VERIFY_WITH_TIMEOUT(m_server->pings.load() > pings, 2000);
    }
    for (int round = 0; round < 3; ++round) {
        QThread::msleep(700);
        QElapsedTimer free;
        free.start();
        while (free.elapsed() < 150)
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    }
    QCOMPARE(down.count(), 0);
    QVERIFY(m_transport->isConnected());
    QCOMPARE(tservice()->execCommand(this, "echo")->getInt(-1), 0);
    QCOMPARE(m_server->accepted.load(), 1);
}

// A long run of synchronous commands, each slower than a ping interval, with the event loop
// pumped in between as the module's check does.
void TestTcpTransport::slowSynchronousCommandsKeepLink()
{
    m_transport->setPingInterval(100);
    connectTransport();
    QSignalSpy down(m_transport, &orbat::Transport::disconnected);
    m_server->delayMs = 120;
    QElapsedTimer clock;
    clock.start();
    int sent = 0;
    while (clock.elapsed() < 1500) {
        QCOMPARE(tservice()->execCommand(this, "echo")->getInt(-1), 0);
        ++sent;
        if (sent % 4 == 0)
            QCoreApplication::processEvents();
    }
    m_server->delayMs = 0;
    QTest::qWait(400);
    QCOMPARE(down.count(), 0);
    QCOMPARE(m_server->accepted.load(), 1);
}

// Being tolerant of a busy thread must not keep a dead peer: once the loop runs again, an
// unanswered ping still drops the link.
void TestTcpTransport::deadLinkAfterBusyThreadIsDropped()
{
    m_transport->setPingInterval(100);
    connectTransport();
    QSignalSpy down(m_transport, &orbat::Transport::disconnected);
    m_server->silent = true;
    QThread::msleep(700);
    QTRY_VERIFY_WITH_TIMEOUT(down.count() >= 1, 3000);
}

// A request that timed out is an unanswered probe like a ping.
void TestTcpTransport::unansweredRequestDropsLink()
{
    m_transport->setPingInterval(100);
    connectTransport();
    QSignalSpy down(m_transport, &orbat::Transport::disconnected);
    m_server->silent = true;
    tservice()->setTimeout("echo", 400);
    QCOMPARE(tservice()->execCommand(this, "echo")->getInt(), int(TService::StatusTimeout));
    tservice()->setTimeout("echo", 1000);
    QTRY_VERIFY_WITH_TIMEOUT(down.count() >= 1, 3000);
}

QTEST_GUILESS_MAIN(TestTcpTransport)
#include "tst_tcptransport.moc"
