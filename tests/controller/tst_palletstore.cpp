#include "rctestclient.h"

#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <orbat/transport.h>

#include <QProcess>
#include <QRandomGenerator>
#include <QTcpSocket>
#include <QtTest>

#include <csignal>
#include <map>

namespace {

struct Rcsim
{
    QProcess process;
    quint16 port = 0;

    bool start(const QString &dataDir, const QStringList &extra = {})
    {
        process.setProgram(QStringLiteral(RCSIM_PATH));
        process.setArguments(QStringList{"--listen", "127.0.0.1:0", "--data", dataDir} + extra);
        process.start();
        if (!process.waitForStarted(5000))
            return false;
        QByteArray out;
        while (!out.contains('\n')) {
            if (!process.waitForReadyRead(5000))
                return false;
            out += process.readAllStandardOutput();
        }
        const QByteArray line = out.left(out.indexOf('\n'));
        if (!line.startsWith("rcsim listening on 127.0.0.1:"))
            return false;
        port = quint16(line.mid(line.lastIndexOf(':') + 1).toUInt());
        return port != 0;
    }
    void kill()
    {
        ::kill(pid_t(process.processId()), SIGKILL);
        process.waitForFinished(5000);
    }
    ~Rcsim()
    {
        if (process.state() != QProcess::NotRunning)
            kill();
    }
};

// Blocking line client for the tests.
struct LineClient
{
    QTcpSocket socket;
    bool connect(quint16 port)
    {
        socket.connectToHost(QHostAddress::LocalHost, port);
        return socket.waitForConnected(3000);
    }
    bool send(const QByteArray &line) { return socket.write(line + '\n') == line.size() + 1; }
    QByteArray reply(int timeoutMs = 5000)
    {
        while (!socket.canReadLine()) {
            if (socket.state() != QAbstractSocket::ConnectedState || !socket.waitForReadyRead(timeoutMs))
                return socket.canReadLine() ? socket.readLine().trimmed() : QByteArray();
        }
        return socket.readLine().trimmed();
    }
};

QByteArray makePallet(const QString &name, int rev, int places, QRandomGenerator &gen)
{
    orba::ModuleObject p;
    p.set(nullptr, "name", name);
    p.set(nullptr, "rev", rev);
    for (int i = 0; i < places; ++i) {
        for (int j = 0; j < 3; ++j)
            p.set(nullptr, QString("points.#%1.wobj.trans.#%2").arg(i).arg(j), gen.generateDouble());
        for (int j = 0; j < 6; ++j)
            p.set(nullptr, QString("points.#%1.wobj.near.#%2").arg(i).arg(j), gen.generateDouble() * 3);
    }
    return p.exportToJson(true);
}

bool samePallet(const QByteArray &stored, const QByteArray &sent, int index)
{
    orba::ModuleObject a, b;
    if (!a.importFromJson(nullptr, stored) || !b.importFromJson(nullptr, sent))
        return false;
    b.set(nullptr, "index", index);
    return a.equals(&b);
}

} // namespace

class TestPalletStore : public QObject
{
    Q_OBJECT

private slots:
    void init() { orba::ModuleManager::resetRoot(); }

    void schemaAndPragmas()
    {
        QTemporaryDir dir;
        {
            RcTestClient c(false, dir.path());
            QVERIFY(c.opened);
            QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", "{\"name\":\"a\"}")), 0);
        }
        // The file is a WAL database with our schema version.
        QVERIFY(QFile::exists(dir.filePath("trays.sqlite")));
        {
            RcTestClient c(false, dir.path());
            QVERIFY(c.opened);
            QCOMPARE(RcTestClient::data(c.call("exec", "tray.query.list")).toArray().size(), 1);
        }
    }

    void killedWhileWriting_data()
    {
        QTest::addColumn<int>("seed");
        QTest::newRow("run 1") << 1;
        QTest::newRow("run 2") << 2;
    }
    void killedWhileWriting()
    {
        QFETCH(int, seed);
        QTemporaryDir dir;
        QRandomGenerator gen{quint32(seed)};
        // name -> acknowledged JSON, and the request that was in flight when the process died.
        std::map<QString, QByteArray> acked;
        QStringList order;
        int landed = 0;
        for (int round = 0; round < 4; ++round) {
            Rcsim sim;
            QVERIFY(sim.start(dir.path()));
            LineClient client;
            QVERIFY(client.connect(sim.port));
            const int writes = 3 + int(gen.bounded(10));
            QString pendingName;
            QByteArray pendingJson;
            bool pendingAdd = false;
            for (int i = 0; i <= writes; ++i) {
                const bool add = order.isEmpty() || gen.bounded(3) == 0;
                const QString name = add ? QString("p%1").arg(order.size()) : order.at(int(gen.bounded(order.size())));
                const QByteArray json = makePallet(name, round * 100 + i, 100 + int(gen.bounded(300)), gen);
                const QByteArray line = "{\"id\":" + QByteArray::number(i) + ",\"op\":\"exec\",\"method\":\""
                    + (add ? "tray.add_one" : "tray.set.one") + "\",\"params\":" + json + "}";
                QVERIFY(client.send(line));
                if (i == writes) {
                    // The last write is cut off at a random moment, reply unseen.
                    client.socket.flush();
                    QThread::usleep(gen.bounded(4000));
                    sim.kill();
                    pendingName = name;
                    pendingJson = json;
                    pendingAdd = add;
                    break;
                }
                const QJsonObject r = QJsonDocument::fromJson(client.reply()).object();
                QCOMPARE(RcTestClient::status(r), 0);
                acked[name] = json;
                if (add)
                    order << name;
            }
            // Reopen in-process and compare.
            RcTestClient c(false, dir.path());
            QVERIFY2(c.opened, qPrintable(c.openError));
            const QJsonArray list = RcTestClient::data(c.call("exec", "tray.query.list")).toArray();
            const bool pendingLanded = pendingAdd && list.size() == order.size() + 1;
            QVERIFY(list.size() == order.size() || pendingLanded);
            for (int i = 0; i < order.size(); ++i) {
                const QString &name = order.at(i);
                QCOMPARE(list.at(i).toObject().value("name").toString(), name);
                const QByteArray reply = c.send("{\"id\":1,\"op\":\"exec\",\"method\":\"tray.query.one\",\"params\":"
                                                + QByteArray::number(i) + "}");
                orba::ModuleObject r;
                QVERIFY(r.importFromJson(nullptr, reply));
                const QByteArray stored = r.r("result.data")->exportToJson(true);
                const bool old = samePallet(stored, acked[name], i);
                const bool updated = !pendingAdd && name == pendingName && samePallet(stored, pendingJson, i);
                QVERIFY2(old || updated, qPrintable(QString("round %1, pallet %2").arg(round).arg(name)));
                if (updated && !old) {
                    acked[name] = pendingJson;
                    ++landed;
                }
            }
            if (pendingLanded) {
                const QByteArray reply = c.send("{\"id\":1,\"op\":\"exec\",\"method\":\"tray.query.one\",\"params\":"
                                                + QByteArray::number(order.size()) + "}");
                orba::ModuleObject r;
                QVERIFY(r.importFromJson(nullptr, reply));
                QVERIFY(samePallet(r.r("result.data")->exportToJson(true), pendingJson, order.size()));
                acked[pendingName] = pendingJson;
                order << pendingName;
                ++landed;
            }
        }
        QVERIFY(order.size() >= 2);
        qInfo("writes in flight at the kill that had committed: %d of 4", landed);
    }

    void serverOverTcp()
    {
        QTemporaryDir dir;
        Rcsim sim;
        QVERIFY(sim.start(dir.path(), {"--legacy"}));
        LineClient client;
        QVERIFY(client.connect(sim.port));
        QVERIFY(client.send("{\"id\":1,\"op\":\"get\",\"method\":\"tservice.proto.command\"}"));
        const QByteArray caps = client.reply();
        QVERIFY(caps.contains("tray.data"));
        QVERIFY(!caps.contains("tray.query.one"));
        QVERIFY(client.send("\x01\x02 not json"));
        QVERIFY(client.reply().contains("-32700"));
        QVERIFY(client.send("{\"id\":2,\"op\":\"ping\"}"));
        QVERIFY(client.reply().contains("\"id\":2"));

        // A line past the cap drops the connection; the server lives on.
        QByteArray huge(orbat::Transport::maxLineBytes() + 16, 'x');
        client.socket.write(huge);
        QElapsedTimer t;
        t.start();
        while (client.socket.state() == QAbstractSocket::ConnectedState && t.elapsed() < 10000) {
            client.socket.waitForBytesWritten(100);
            client.socket.waitForReadyRead(100);
        }
        QVERIFY(client.socket.state() != QAbstractSocket::ConnectedState);
        LineClient again;
        QVERIFY(again.connect(sim.port));
        QVERIFY(again.send("{\"id\":3,\"op\":\"get\",\"method\":\"sys.power\"}"));
        QVERIFY(again.reply().contains("\"on\""));
        QCOMPARE(sim.process.state(), QProcess::Running);
    }

    void motionStopsWhenTheClientDrops()
    {
        QTemporaryDir dir;
        Rcsim sim;
        QVERIFY(sim.start(dir.path()));
        LineClient mover;
        QVERIFY(mover.connect(sim.port));
        QVERIFY(mover.send("{\"id\":1,\"op\":\"exec\",\"method\":\"sim.jog.start\",\"params\":{\"frame\":\"joint\",\"axis\":0,\"speed\":0.5}}"));
        QVERIFY(mover.reply().contains("\"status\":0"));
        QThread::msleep(100);
        mover.socket.abort();
        QThread::msleep(100);
        LineClient observer;
        QVERIFY(observer.connect(sim.port));
        QVERIFY(observer.send("{\"id\":1,\"op\":\"get\",\"method\":\"sys.posture\"}"));
        const QByteArray a = observer.reply();
        QThread::msleep(150);
        QVERIFY(observer.send("{\"id\":1,\"op\":\"get\",\"method\":\"sys.posture\"}"));
        QCOMPARE(observer.reply(), a);
    }
};

QTEST_GUILESS_MAIN(TestPalletStore)
#include "tst_palletstore.moc"
