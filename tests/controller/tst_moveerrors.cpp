#include "rctestclient.h"
#include "rcsimserver.h"

#include <orba/modulemanager.h>

#include <QElapsedTimer>
#include <QHostAddress>
#include <QTcpSocket>
#include <QtTest>

#include <cmath>

// Every refused or failed move is published as "move.last_error_with_setting" (the pendant starts
// motion without waiting for replies), and motion never outlives its client.
namespace {

const QByteArray kTool = "\"rot\":[3.141592653589793,0,0],\"near\":[0,-1.5707963267948966,1.5707963267948966,"
                         "-1.5707963267948966,-1.5707963267948966,0]";

QJsonArray trans(RcTestClient &c)
{
    return RcTestClient::data(c.call("get", "sys.posture")).toObject().value("trans").toArray();
}

QJsonArray near(RcTestClient &c)
{
    return RcTestClient::data(c.call("get", "sys.posture")).toObject().value("near").toArray();
}

// A straight move dz below the current pose, keeping the orientation.
QByteArray moveDown(RcTestClient &c, double dz, const QJsonValue &speed)
{
    QJsonObject p = RcTestClient::data(c.call("get", "sys.posture")).toObject();
    QJsonArray t = p.value("trans").toArray();
    t[2] = t.at(2).toDouble() - dz;
    p["trans"] = t;
    QJsonObject params{{"point", p}, {"traj", QJsonObject{{"speed", speed}}}};
    return QJsonDocument(params).toJson(QJsonDocument::Compact);
}

QList<QJsonObject> errorEvents(RcTestClient &c)
{
    c.collectEvents();
    return c.takeEvents("move.last_error_with_setting");
}

QList<QJsonObject> waitErrorEvents(RcTestClient &c, int ms = 3000)
{
    QElapsedTimer clock;
    clock.start();
    QList<QJsonObject> events = errorEvents(c);
    while (events.isEmpty() && clock.elapsed() < ms) {
        QTest::qWait(10);
        events = errorEvents(c);
    }
    return events;
}

} // namespace

class TestMoveErrors : public QObject
{
    Q_OBJECT

private slots:
    void init() { orba::ModuleManager::resetRoot(); }

    void refusalsArePublished_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QByteArray>("params");
        QTest::addColumn<QString>("prepare");
        QTest::addColumn<int>("error");
        QTest::addColumn<QString>("id");
        QTest::addColumn<int>("replyError");  // error reply code, 0 for a result
        QTest::addColumn<int>("replyStatus"); // status of a result
        const QByteArray down = "{\"point\":{\"trans\":[-0.688,-0.164,0.5]," + kTool + "},\"traj.speed\":%1}";
        QTest::newRow("move without parameters") << "move.l" << QByteArray() << "" << 14 << "point" << -32602 << 0;
        QTest::newRow("move without point") << "move.l" << QByteArray("{\"traj.speed\":0.1}") << "" << 14 << "point" << -32602 << 0;
        QTest::newRow("point with two coordinates")
            << "move.l" << QByteArray("{\"point\":{\"trans\":[1,2],\"rot\":[0,0,0]},\"traj.speed\":0.1}") << "" << 14 << "point"
            << -32602 << 0;
        QTest::newRow("joint target with text") << "move.j" << QByteArray("{\"point\":[0,0,\"x\",0,0,0],\"traj.speed\":0.1}") << ""
                                                << 14 << "point" << -32602 << 0;
        QTest::newRow("joint target of five axes") << "move.j" << QByteArray("{\"point\":[0,0,0,0,0],\"traj.speed\":0.1}") << ""
                                                   << 14 << "point" << -32602 << 0;
        QTest::newRow("speed 0") << "move.l" << QByteArray(down).replace("%1", "0") << "" << 13 << "speed" << -32602 << 0;
        QTest::newRow("speed 0.0") << "move.j" << QByteArray("{\"point\":[0,-1.5,1.5,-1.5,-1.5,0],\"traj.speed\":0.0}") << ""
                                   << 13 << "speed" << -32602 << 0;
        QTest::newRow("negative speed") << "move.l" << QByteArray(down).replace("%1", "-0.1") << "" << 13 << "speed" << -32602 << 0;
        QTest::newRow("speed as text") << "move.l" << QByteArray(down).replace("%1", "\"fast\"") << "" << 13 << "speed" << -32602 << 0;
        QTest::newRow("no motion armed") << "move.opr.enough" << QByteArray() << "" << 11 << "armed" << 0 << -1;
        QTest::newRow("power off when armed") << "move.l" << QByteArray(down).replace("%1", "0.1") << "power off" << 10 << "power"
                                              << 0 << -1;
        QTest::newRow("unreachable target") << "move.l"
                                             << QByteArray("{\"point\":{\"trans\":[2.5,0,0.3]," + kTool + "},\"traj.speed\":0.1}")
                                             << "" << 1 << "unreachable" << 0 << -1;
        QTest::newRow("joint beyond its limits") << "move.j" << QByteArray("{\"point\":[0,0,4,0,0,0],\"traj.speed\":0.1}") << "" << 2
                                                 << "limit" << 0 << -1;
    }
    void refusalsArePublished()
    {
        QFETCH(QString, method);
        QFETCH(QByteArray, params);
        QFETCH(QString, prepare);
        QFETCH(int, error);
        QFETCH(QString, id);
        QFETCH(int, replyError);
        QFETCH(int, replyStatus);
        RcTestClient c;
        QCOMPARE(RcTestClient::status(c.call("watch", "move.last_error_with_setting", "true")), 0);
        if (prepare == QLatin1String("power off"))
            QCOMPARE(RcTestClient::status(c.call("exec", "sim.power", "false")), 0);
        const QJsonArray before = trans(c);
        const QJsonObject reply = c.call("exec", method, params);
        if (replyError != 0)
            QCOMPARE(RcTestClient::errorCode(reply), replyError);
        else
            QCOMPARE(RcTestClient::status(reply), replyStatus);
        const QList<QJsonObject> events = errorEvents(c);
        QCOMPARE(events.size(), 1);
        const QJsonObject data = events.first().value("data").toObject();
        QCOMPARE(data.value("error").toInt(), error);
        QCOMPARE(data.value("data").toObject().value("id").toString(), id);
        const QString msg = data.value("data").toObject().value("msg").toString();
        QVERIFY(!msg.isEmpty());
        // The reply says the same as the event.
        if (replyError != 0)
            QCOMPARE(reply.value("error").toObject().value("message").toString(), msg);
        else
            QCOMPARE(RcTestClient::data(reply).toObject().value("msg").toString(), msg);
        // Nothing moves, and a start afterwards does not either.
        c.call("exec", "move.opr.enough");
        QTest::qWait(50);
        QCOMPARE(trans(c), before);
    }

    void startAfterRefusedArmIsReportedOnce()
    {
        RcTestClient c;
        QCOMPARE(RcTestClient::status(c.call("watch", "move.last_error_with_setting", "true")), 0);
        QCOMPARE(RcTestClient::status(c.call("exec", "move.reset")), 0);
        QCOMPARE(RcTestClient::status(c.call("exec", "move.l", "{\"point\":{\"trans\":[2.5,0,0.3]," + kTool + "},\"traj.speed\":0.1}")), -1);
        const QJsonObject start = c.call("exec", "move.opr.enough");
        QCOMPARE(RcTestClient::status(start), -1);
        QCOMPARE(RcTestClient::data(start).toObject().value("msg").toString(), QStringLiteral("no motion armed: target out of reach"));
        // One refused move, one report.
        QCOMPARE(errorEvents(c).size(), 1);
        // A later start with nothing armed is a mistake of its own.
        QCOMPARE(RcTestClient::status(c.call("exec", "move.opr.enough")), -1);
        const QList<QJsonObject> events = errorEvents(c);
        QCOMPARE(events.size(), 1);
        QCOMPARE(events.first().value("data").toObject().value("data").toObject().value("id").toString(), QStringLiteral("armed"));
        // A reset forgets the refusal as well.
        QCOMPARE(RcTestClient::status(c.call("exec", "move.l", "{\"point\":{\"trans\":[2.5,0,0.3]," + kTool + "},\"traj.speed\":0.1}")), -1);
        QCOMPARE(RcTestClient::status(c.call("exec", "move.reset")), 0);
        QCOMPARE(RcTestClient::status(c.call("exec", "move.opr.enough")), -1);
        QCOMPARE(errorEvents(c).size(), 2);
    }

    void failuresWhileMovingArePublished_data()
    {
        QTest::addColumn<QString>("kind");
        QTest::addColumn<int>("error");
        QTest::addColumn<QString>("id");
        QTest::newRow("power off") << "power" << 10 << "power";
        QTest::newRow("singularity on the way") << "singular" << 6 << "singular";
    }
    void failuresWhileMovingArePublished()
    {
        QFETCH(QString, kind);
        QFETCH(int, error);
        QFETCH(QString, id);
        RcTestClient c;
        QCOMPARE(RcTestClient::status(c.call("watch", "move.last_error_with_setting", "true")), 0);
        if (kind == QLatin1String("power")) {
            QCOMPARE(RcTestClient::status(c.call("exec", "move.l", moveDown(c, 0.2, 0.1))), 0);
            QCOMPARE(RcTestClient::status(c.call("exec", "move.opr.enough")), 0);
            QTest::qWait(60);
            QCOMPARE(RcTestClient::status(c.call("exec", "sim.power", "false")), 0);
        } else {
            QCOMPARE(RcTestClient::status(c.call("exec", "sim.posture.set",
                                                 "{\"joints\":[0,-1.5707963267948966,1.5707963267948966,-1.5707963267948966,"
                                                 "-1.5707963267948966,0]}")),
                     0);
            QCOMPARE(RcTestClient::status(c.call("exec", "move.l", "{\"point\":{\"trans\":[0.6,-0.164,0.647]," + kTool + "},\"traj.speed\":2.0}")), 0);
            QCOMPARE(RcTestClient::status(c.call("exec", "move.opr.enough")), 0);
        }
        const QList<QJsonObject> events = waitErrorEvents(c);
        QCOMPARE(events.size(), 1);
        const QJsonObject data = events.first().value("data").toObject();
        QVERIFY(data.value("error").toInt() != 0);
        if (kind == QLatin1String("power"))
            QCOMPARE(data.value("error").toInt(), error);
        QCOMPARE(data.value("data").toObject().value("id").toString(), id);
        const QJsonArray rest = trans(c);
        QTest::qWait(60);
        QCOMPARE(trans(c), rest);
    }

    void jointTargetIgnoresExternalAxis()
    {
        RcTestClient c;
        QJsonArray target = near(c);
        target[0] = target.at(0).toDouble() + 0.1;
        QJsonArray withSeventh = target;
        withSeventh.append(0.75);
        const QJsonObject params{{"point", withSeventh}, {"traj.speed", 1.0}};
        QCOMPARE(RcTestClient::status(c.call("exec", "move.j", QJsonDocument(params).toJson(QJsonDocument::Compact))), 0);
        QCOMPARE(RcTestClient::status(c.call("exec", "move.opr.enough")), 0);
        QTRY_VERIFY_WITH_TIMEOUT(near(c) == target, 3000);
    }

    void silentClientIsStopped()
    {
        RcTestClient c;
        QCOMPARE(RcTestClient::status(c.call("watch", "move.last_error_with_setting", "true")), 0);
        // Another connection watches; its traffic does not keep the mover's motion alive.
        std::unique_ptr<orbat::LineEndpoint> observer(c.controller->createSession());
        QByteArray lastReply;
        connect(observer.get(), &orbat::LineEndpoint::sendLine, observer.get(), [&lastReply](const QByteArray &l) { lastReply = l; });
        qint64 id = 0;
        const auto observe = [&]() {
            observer->receiveLine("{\"id\":" + QByteArray::number(++id) + ",\"op\":\"get\",\"method\":\"sys.posture\"}");
            return QJsonDocument::fromJson(lastReply).object().value("result").toObject().value("data").toObject().value("trans").toArray();
        };
        const double z0 = observe().at(2).toDouble();
        QCOMPARE(RcTestClient::status(c.call("exec", "move.l", moveDown(c, 0.3, 0.1))), 0);
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(RcTestClient::status(c.call("exec", "move.opr.enough")), 0);
        // The mover goes silent (a hung pendant, a cut cable that closes nothing).
        // Stopped: three looks in a row (ticks are 10 ms) see the same posture.
        QJsonArray previous = observe();
        qint64 stoppedAt = -1, stillSince = -1;
        int still = 0;
        while (clock.elapsed() < 4000 && stoppedAt < 0) {
            QTest::qWait(20);
            const QJsonArray now = observe();
            if (now == previous && std::abs(now.at(2).toDouble() - z0) > 0.01) {
                if (still++ == 0)
                    stillSince = clock.elapsed();
                if (still == 3)
                    stoppedAt = stillSince;
            } else {
                still = 0;
            }
            previous = now;
        }
        qInfo("silent client stopped after %lld ms, %.1f mm into a 300 mm move", stoppedAt,
              (z0 - previous.at(2).toDouble()) * 1000);
        QVERIFY2(stoppedAt >= 900 && stoppedAt <= 2000, qPrintable(QString::number(stoppedAt)));
        QVERIFY(z0 - previous.at(2).toDouble() < 0.25);
        const QList<QJsonObject> events = errorEvents(c);
        QCOMPARE(events.size(), 1);
        QCOMPARE(events.first().value("data").toObject().value("error").toInt(), 12);
        QCOMPARE(events.first().value("data").toObject().value("data").toObject().value("id").toString(), QStringLiteral("deadman"));
        // Nothing resumes when the client speaks again.
        const QJsonArray rest = trans(c);
        QTest::qWait(100);
        QCOMPARE(trans(c), rest);
    }

    void talkingClientKeepsMoving()
    {
        RcTestClient c;
        const double z0 = trans(c).at(2).toDouble();
        QCOMPARE(RcTestClient::status(c.call("exec", "move.l", moveDown(c, 0.15, 0.1))), 0);
        QCOMPARE(RcTestClient::status(c.call("exec", "move.opr.enough")), 0);
        // A posture poll every 200 ms, as the move dialog does: the move runs to its end (1.5 s).
        QElapsedTimer clock;
        clock.start();
        double z = z0;
        while (clock.elapsed() < 4000 && std::abs(z - (z0 - 0.15)) > 1e-9) {
            QTest::qWait(200);
            z = trans(c).at(2).toDouble();
        }
        QVERIFY2(std::abs(z - (z0 - 0.15)) < 1e-9, qPrintable(QString::number(z)));
        QVERIFY(clock.elapsed() > 1300);
    }

    void droppedTcpClientStopsMotion()
    {
        RcTestClient c;
        rc::RcsimServer server(c.controller.get());
        QString error;
        QVERIFY2(server.listen(QHostAddress::LocalHost, 0, &error), qPrintable(error));
        QTcpSocket socket;
        socket.connectToHost(QHostAddress::LocalHost, server.port());
        QVERIFY(socket.waitForConnected(3000));
        QTest::qWait(20); // the server accepts in the event loop
        const QByteArray move = moveDown(c, 0.2, 0.1);
        socket.write("{\"id\":1,\"op\":\"exec\",\"method\":\"move.l\",\"params\":" + move + "}\n");
        socket.write("{\"id\":2,\"op\":\"exec\",\"method\":\"move.opr.enough\"}\n");
        socket.flush();
        const double z0 = trans(c).at(2).toDouble();
        QTRY_VERIFY_WITH_TIMEOUT(z0 - trans(c).at(2).toDouble() > 0.005, 3000);
        socket.abort();
        // The server sees the end of the connection in its event loop.
        QTest::qWait(50);
        const QJsonArray stopped = trans(c);
        QTest::qWait(300);
        QCOMPARE(trans(c), stopped);
        QVERIFY(z0 - stopped.at(2).toDouble() < 0.1);
    }
};

QTEST_GUILESS_MAIN(TestMoveErrors)
#include "tst_moveerrors.moc"
