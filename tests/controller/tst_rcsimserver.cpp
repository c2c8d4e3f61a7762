#include "rcsimclient.h"

#include <orba/modulemanager.h>

#include <orbat/transport.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QTemporaryDir>
#include <QtTest>

#include <memory>
#include <vector>

namespace {

bool isPong(const QByteArray &reply)
{
    return reply.contains("\"pong\"");
}

} // namespace

class TestRcsimServer : public QObject
{
    Q_OBJECT

private slots:
    void init() { orba::ModuleManager::resetRoot(); }

    void connectionsAreCapped()
    {
        QTemporaryDir dir;
        ServerThread server;
        QVERIFY2(server.start(dir.path(), [](rc::RcsimServer *s) { s->setMaxConnections(4); }), qPrintable(server.error));
        std::vector<std::unique_ptr<LineClient>> clients;
        for (int i = 0; i < 4; ++i) {
            clients.push_back(std::make_unique<LineClient>());
            QVERIFY(clients.back()->connect(server.port));
            QVERIFY(isPong(clients.back()->ping(i)));
        }
        // The next one is told and closed at once.
        LineClient extra;
        QVERIFY(extra.connect(server.port));
        const QByteArray notice = extra.reply(3000);
        QVERIFY2(notice.contains("too many connections"), notice.constData());
        QVERIFY(extra.waitClosed(3000));
        QVERIFY(server.drops().join('\n').contains("too many connections"));
        for (auto &c : clients)
            QVERIFY(isPong(c->ping()));
        // A place that frees up is taken by the next client.
        clients.front()->socket.disconnectFromHost();
        QTRY_COMPARE_WITH_TIMEOUT(server.connections(), 3, 3000);
        LineClient next;
        QVERIFY(next.connect(server.port));
        QVERIFY(isPong(next.ping()));
    }

    void idleClientsAreDropped()
    {
        QTemporaryDir dir;
        ServerThread server;
        QVERIFY2(server.start(dir.path(), [](rc::RcsimServer *s) { s->setIdleTimeoutMs(300); }), qPrintable(server.error));
        LineClient silent, halfLine, active;
        QVERIFY(silent.connect(server.port));
        QVERIFY(halfLine.connect(server.port));
        QVERIFY(active.connect(server.port));
        halfLine.socket.write("{\"id\":1,\"op\":\"pi");
        halfLine.socket.flush();
        QElapsedTimer t;
        t.start();
        while (t.elapsed() < 1000) {
            QVERIFY(isPong(active.ping()));
            QThread::msleep(50);
        }
        QVERIFY(silent.waitClosed(3000));
        QVERIFY(halfLine.waitClosed(3000));
        QCOMPARE(active.socket.state(), QAbstractSocket::ConnectedState);
        QVERIFY(isPong(active.ping()));
        QCOMPARE(server.drops().filter("silent").size(), 2);
        QCOMPARE(server.connections(), 1);
    }

    void unreadRepliesAreCapped()
    {
        QTemporaryDir dir;
        ServerThread server;
        QVERIFY2(server.start(dir.path(), [](rc::RcsimServer *s) { s->setMaxPendingBytes(256 * 1024); }),
                 qPrintable(server.error));
        LineClient writer;
        QVERIFY(writer.connect(server.port));
        QVERIFY(writer.send("{\"id\":1,\"op\":\"exec\",\"method\":\"tray.add_one\",\"params\":{\"name\":\"big\",\"desc\":\""
                            + QByteArray(100 * 1000, 'x') + "\"}}"));
        QVERIFY(writer.reply().contains("\"status\":0"));

        // 300 lists of 100 kB asked for and none read: far more than the cap once the kernel's
        // buffers are full.
        LineClient greedy;
        QVERIFY(greedy.connect(server.port));
        QByteArray requests;
        for (int i = 0; i < 300; ++i)
            requests += requestLine(i, "get", "tray.data");
        greedy.socket.write(requests);
        greedy.socket.flush();
        // No events here: the greedy client must not read.
        QElapsedTimer t;
        t.start();
        while (server.drops().filter("unread").isEmpty() && t.elapsed() < 10000)
            QThread::msleep(20);
        QVERIFY2(!server.drops().filter("unread").isEmpty(), qPrintable(server.drops().join('\n')));
        QVERIFY(greedy.waitClosed(3000));
        // The others are served as before.
        QVERIFY(isPong(writer.ping()));
        QCOMPARE(server.connections(), 1);
    }

    // Replies of many megabytes and small ones asked for in one go, by a client that reads only
    // later: all of them arrive whole and in the order asked, and others are served meanwhile.
    void largeRepliesKeepOrderAndBytes()
    {
        QTemporaryDir dir;
        ServerThread server;
        QVERIFY2(server.start(dir.path()), qPrintable(server.error));
        LineClient writer;
        QVERIFY(writer.connect(server.port));
        constexpr int kPallets = 12;
        for (int i = 0; i < kPallets; ++i) {
            QVERIFY(writer.send("{\"id\":1,\"op\":\"exec\",\"method\":\"tray.add_one\",\"params\":{\"name\":\"p" + QByteArray::number(i)
                                + "\",\"desc\":\"" + QByteArray(500 * 1000, char('a' + i)) + "\"}}"));
            QVERIFY(writer.reply().contains("\"status\":0"));
        }

        LineClient late;
        QVERIFY(late.connect(server.port));
        QByteArray requests;
        int id = 0;
        for (int round = 0; round < 3; ++round) {
            requests += requestLine(id++, "get", "tray.data");
            requests += requestLine(id++, "ping", "ping");
            requests += requestLine(id++, "exec", "tray.query.one", "5");
        }
        late.socket.write(requests);
        late.socket.flush();
        // Far more than the kernel holds is waiting for it now; the writer does not wait.
        QThread::msleep(300);
        QVERIFY(isPong(writer.ping()));

        QByteArray firstList;
        for (int n = 0; n < id; ++n) {
            const QByteArray reply = late.reply(10000);
            QVERIFY2(reply.startsWith("{\"id\":" + QByteArray::number(n) + ","), reply.left(80).constData());
            const QJsonObject o = QJsonDocument::fromJson(reply).object();
            QVERIFY2(!o.isEmpty(), "reply is not one JSON object");
            const QJsonValue data = o.value("result").toObject().value("data");
            switch (n % 3) {
            case 0: {
                const QJsonArray list = data.toArray();
                QCOMPARE(list.size(), kPallets);
                for (int i = 0; i < kPallets; ++i) {
                    QCOMPARE(list.at(i).toObject().value("name").toString(), QString("p%1").arg(i));
                    QCOMPARE(list.at(i).toObject().value("desc").toString(), QString(500 * 1000, QChar('a' + i)));
                }
                if (firstList.isEmpty())
                    firstList = reply.mid(reply.indexOf(','));
                QCOMPARE(reply.mid(reply.indexOf(',')), firstList);
                break;
            }
            case 1:
                QVERIFY(isPong(reply));
                break;
            default:
                QCOMPARE(data.toObject().value("name").toString(), QString("p5"));
                QCOMPARE(data.toObject().value("desc").toString().size(), 500 * 1000);
            }
        }
        QVERIFY(isPong(late.ping(99)));
        QVERIFY(server.drops().isEmpty());
    }

    // A request line costs memory after its length, not after the longest line allowed: reading
    // lines with a limit of 256 MiB once reserved that much for each of them.
    void linesDoNotReserveTheLineCap()
    {
        QTemporaryDir dir;
        RcsimProcess sim;
        QVERIFY(sim.start(dir.path()));
        // The peak before any line was read (it never goes down).
        const qint64 before = sim.statusKiB("VmPeak:");
        QVERIFY(before > 0);
        LineClient client;
        QVERIFY(client.connect(sim.port));
        QByteArray lines;
        for (int i = 0; i < 200; ++i)
            lines += requestLine(i, "ping", "ping");
        client.socket.write(lines);
        for (int i = 0; i < 200; ++i)
            QVERIFY(isPong(client.reply()));
        const qint64 grown = sim.statusKiB("VmPeak:") - before;
        QVERIFY2(grown < orbat::Transport::maxLineBytes() / 1024 / 4, qPrintable(QString("peak grew %1 KiB").arg(grown)));
    }

    void acceptFailuresPauseInsteadOfSpinning()
    {
#ifdef __SANITIZE_ADDRESS__
        // With no descriptor left the sanitizers' runtime cannot work (the vptr check opens a
        // pipe to look at memory and takes every object it has not met yet for a bad one).
        QSKIP("runs out of file descriptors: plain build only");
#endif
        QTemporaryDir dir;
        RcsimProcess sim;
        // Few descriptors: the server runs out of them long before its connection cap.
        QVERIFY(sim.start(dir.path(), {}, "ulimit -n 40"));
        std::vector<std::unique_ptr<QTcpSocket>> sockets;
        for (int i = 0; i < 60; ++i) {
            sockets.push_back(std::make_unique<QTcpSocket>());
            sockets.back()->connectToHost(QHostAddress::LocalHost, sim.port);
        }
        // More clients than descriptors: those the server cannot take wait in the kernel's
        // backlog, or beyond it; what matters is that the server did run out and said so.
        for (auto &s : sockets) {
            if (s->state() != QAbstractSocket::ConnectedState)
                s->waitForConnected(3000);
        }
        sim.process.setReadChannel(QProcess::StandardError);
        QByteArray said;
        QElapsedTimer wait;
        wait.start();
        while (!said.contains("cannot accept") && wait.elapsed() < 10000) {
            sim.process.waitForReadyRead(100);
            said += sim.process.readAllStandardError();
        }
        QVERIFY2(said.contains("cannot accept"), said.constData());
        QThread::msleep(300);
        const long ticksPerSecond = sysconf(_SC_CLK_TCK);
        const qint64 before = sim.cpuTicks();
        QThread::msleep(1000);
        const qint64 used = sim.cpuTicks() - before;
        qInfo("rcsim out of descriptors used %lld of %ld ticks in a second", used, ticksPerSecond);
        QVERIFY2(used < ticksPerSecond / 4, qPrintable(QString("%1 ticks").arg(used)));

        // Once descriptors are free again, new clients are served.
        for (int i = 0; i < 40; ++i)
            sockets[size_t(i)]->abort();
        QElapsedTimer t;
        t.start();
        bool served = false;
        while (!served && t.elapsed() < 5000) {
            LineClient late;
            served = late.connect(sim.port) && isPong(late.ping(1, 1000));
        }
        if (!served)
            sim.process.waitForReadyRead(1000);
        QVERIFY2(served, sim.process.readAllStandardError().right(3000).constData());
        QCOMPARE(sim.process.state(), QProcess::Running);
        sim.kill();
        const QByteArray err = sim.process.readAllStandardError();
        QVERIFY2(err.contains("cannot accept"), err.constData());
    }

    void commandLineOptions()
    {
        QTemporaryDir dir;
        {
            RcsimProcess sim;
            QVERIFY(sim.start(dir.path(), {"--idle-timeout", "0.3", "--max-connections", "1"}));
            LineClient first;
            QVERIFY(first.connect(sim.port));
            QVERIFY(isPong(first.ping()));
            LineClient second;
            QVERIFY(second.connect(sim.port));
            QVERIFY(second.reply(3000).contains("too many connections"));
            // The first falls silent and is dropped.
            QVERIFY(first.waitClosed(3000));
        }
        for (const QStringList &bad : {QStringList{"--idle-timeout", "soon"}, QStringList{"--max-connections", "0"}}) {
            QProcess p;
            p.start(QStringLiteral(RCSIM_PATH), QStringList{"--listen", "127.0.0.1:0", "--data", dir.path()} + bad);
            QVERIFY(p.waitForFinished(5000));
            QCOMPARE(p.exitCode(), 2);
        }
    }
};

QTEST_GUILESS_MAIN(TestRcsimServer)
#include "tst_rcsimserver.moc"
