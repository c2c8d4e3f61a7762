#include "rctestclient.h"

#include <orba/modulemanager.h>

#include <QElapsedTimer>
#include <QtTest>

namespace {

QJsonArray trans(RcTestClient &c)
{
    return RcTestClient::data(c.call("get", "sys.posture")).toObject().value("trans").toArray();
}

QJsonArray near(RcTestClient &c)
{
    return RcTestClient::data(c.call("get", "sys.posture")).toObject().value("near").toArray();
}

// Target of a straight move dz below the current pose, keeping the orientation.
QByteArray moveDown(RcTestClient &c, double dz, double speed)
{
    QJsonObject p = RcTestClient::data(c.call("get", "sys.posture")).toObject();
    QJsonArray t = p.value("trans").toArray();
    t[2] = t.at(2).toDouble() - dz;
    p["trans"] = t;
    QJsonObject params{{"point", p}, {"traj", QJsonObject{{"speed", speed}}}};
    return QJsonDocument(params).toJson(QJsonDocument::Compact);
}

} // namespace

class TestMotion : public QObject
{
    Q_OBJECT

private slots:
    void init() { orba::ModuleManager::resetRoot(); }

    void linearAtCommandedSpeed_data()
    {
        QTest::addColumn<double>("dz");
        QTest::addColumn<double>("speed");
        QTest::newRow("100 mm at 0.2 m/s") << 0.1 << 0.2;
        QTest::newRow("150 mm at 0.5 m/s") << 0.15 << 0.5;
    }
    void linearAtCommandedSpeed()
    {
        QFETCH(double, dz);
        QFETCH(double, speed);
        RcTestClient c;
        const double z0 = trans(c).at(2).toDouble();
        QCOMPARE(RcTestClient::status(c.call("exec", "move.reset")), 0);
        QCOMPARE(RcTestClient::status(c.call("exec", "move.l", moveDown(c, dz, speed))), 0);
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(RcTestClient::status(c.call("exec", "move.opr.enough")), 0);
        double maxDrift = 0.0;
        double z = z0;
        while (clock.elapsed() < 5000 && std::abs(z - (z0 - dz)) > 1e-9) {
            QTest::qWait(5);
            const QJsonArray t = trans(c);
            z = t.at(2).toDouble();
            maxDrift = std::max(maxDrift, std::abs(t.at(0).toDouble() + 0.688));
        }
        const double expected = dz / speed;
        const double took = clock.elapsed() / 1000.0;
        QVERIFY2(std::abs(z - (z0 - dz)) < 1e-9, qPrintable(QString::number(z)));
        QVERIFY2(took > expected * 0.9 && took < expected + 0.5, qPrintable(QString("%1 s for %2 s").arg(took).arg(expected)));
        QVERIFY2(maxDrift < 1e-6, "a straight move stays on its line");
    }

    void jointMoveTiming()
    {
        RcTestClient c;
        const QJsonArray q0 = near(c);
        QJsonArray target = q0;
        target[0] = q0.at(0).toDouble() + 0.3;
        target[5] = q0.at(5).toDouble() - 0.15;
        // 0.6 m/s gives 0.6 rad/s on the joint that moves most: 0.5 s.
        const QJsonObject params{{"point", target}, {"traj.speed", 0.6}};
        QCOMPARE(RcTestClient::status(c.call("exec", "move.j", QJsonDocument(params).toJson(QJsonDocument::Compact))), 0);
        QElapsedTimer clock;
        clock.start();
        QCOMPARE(RcTestClient::status(c.call("exec", "move.opr.enough")), 0);
        QTRY_VERIFY_WITH_TIMEOUT(near(c) == target, 3000);
        const double took = clock.elapsed() / 1000.0;
        QVERIFY2(took > 0.45 && took < 1.0, qPrintable(QString::number(took)));
    }

    void stopWithinOneTick()
    {
        RcTestClient c;
        QCOMPARE(RcTestClient::status(c.call("exec", "move.l", moveDown(c, 0.2, 0.1))), 0);
        QCOMPARE(RcTestClient::status(c.call("exec", "move.opr.enough")), 0);
        QTest::qWait(150);
        const QJsonArray moving = trans(c);
        QCOMPARE(RcTestClient::status(c.call("exec", "move.stop")), 0);
        const QJsonArray stopped = trans(c);
        QVERIFY(std::abs(stopped.at(2).toDouble() - moving.at(2).toDouble()) < 0.002);
        QTest::qWait(150);
        QCOMPARE(trans(c), stopped);
        // Nothing resumes without a new start.
        QCOMPARE(RcTestClient::status(c.call("exec", "move.opr.enough")), -1);
        QTest::qWait(50);
        QCOMPARE(trans(c), stopped);
    }

    void stopOnDisconnect()
    {
        RcTestClient c;
        std::unique_ptr<orbat::LineEndpoint> other(c.controller->createSession());
        QList<QByteArray> otherLines;
        connect(other.get(), &orbat::LineEndpoint::sendLine, other.get(),
                [&otherLines](const QByteArray &l) { otherLines.append(l); });
        const QByteArray move = moveDown(c, 0.2, 0.1);
        other->receiveLine("{\"id\":1,\"op\":\"exec\",\"method\":\"move.l\",\"params\":" + move + "}");
        other->receiveLine("{\"id\":2,\"op\":\"exec\",\"method\":\"move.opr.enough\"}");
        QCOMPARE(otherLines.size(), 2);
        QVERIFY(otherLines.at(1).contains("\"status\":0"));
        QTest::qWait(100);
        const QJsonArray before = trans(c);
        other->clientClosed();
        const QJsonArray at = trans(c);
        QVERIFY(std::abs(at.at(2).toDouble() - before.at(2).toDouble()) < 0.002);
        QTest::qWait(150);
        QCOMPARE(trans(c), at);

        // A connection closing does not stop a motion it did not start.
        std::unique_ptr<orbat::LineEndpoint> third(c.controller->createSession());
        third->receiveLine("{\"id\":1,\"op\":\"ping\"}");
        QCOMPARE(RcTestClient::status(c.call("exec", "move.l", moveDown(c, 0.05, 0.25))), 0);
        QCOMPARE(RcTestClient::status(c.call("exec", "move.opr.enough")), 0);
        third.reset();
        QTRY_VERIFY_WITH_TIMEOUT(std::abs(trans(c).at(2).toDouble() - (at.at(2).toDouble() - 0.05)) < 1e-9, 3000);
    }

    void errorsArePublished_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QString>("id");
        QTest::newRow("unreachable target") << 0 << "unreachable";
        QTest::newRow("joint target beyond limits") << 1 << "limit";
        QTest::newRow("power off before the start") << 2 << "power";
        QTest::newRow("power off while moving") << 3 << "power";
        QTest::newRow("singularity on the way") << 4 << "singular";
    }
    void errorsArePublished()
    {
        QFETCH(int, kind);
        QFETCH(QString, id);
        RcTestClient c;
        QCOMPARE(RcTestClient::status(c.call("watch", "move.last_error_with_setting", "true")), 0);
        const QByteArray tool = "\"rot\":[3.141592653589793,0,0],\"near\":[0,-1.5707963267948966,1.5707963267948966,"
                                "-1.5707963267948966,-1.5707963267948966,0]";
        switch (kind) {
        case 0:
            QCOMPARE(RcTestClient::status(c.call("exec", "move.l", "{\"point\":{\"trans\":[2.5,0,0.3]," + tool + "},\"traj.speed\":0.1}")), -1);
            break;
        case 1:
            QCOMPARE(RcTestClient::status(c.call("exec", "move.j", "{\"point\":[0,0,4,0,0,0],\"traj.speed\":0.1}")), -1);
            break;
        case 2:
            QCOMPARE(RcTestClient::status(c.call("exec", "move.l", moveDown(c, 0.05, 0.1))), 0);
            QCOMPARE(RcTestClient::status(c.call("set", "sys.power", "\"off\"")), 0);
            QCOMPARE(RcTestClient::status(c.call("exec", "move.opr.enough")), -1);
            break;
        case 3:
            QCOMPARE(RcTestClient::status(c.call("exec", "move.l", moveDown(c, 0.2, 0.1))), 0);
            QCOMPARE(RcTestClient::status(c.call("exec", "move.opr.enough")), 0);
            QTest::qWait(60);
            QCOMPARE(RcTestClient::status(c.call("exec", "sim.power", "false")), 0);
            break;
        case 4:
            // Straight across the base axis at speed; the check stops the arm before the axis.
            QCOMPARE(RcTestClient::status(c.call("exec", "sim.posture.set", "{\"joints\":[0,-1.5707963267948966,1.5707963267948966,-1.5707963267948966,-1.5707963267948966,0]}")), 0);
            QCOMPARE(RcTestClient::status(c.call("exec", "move.l", "{\"point\":{\"trans\":[0.6,-0.164,0.647]," + tool + "},\"traj.speed\":2.0}")), 0);
            QCOMPARE(RcTestClient::status(c.call("exec", "move.opr.enough")), 0);
            break;
        }
        QElapsedTimer wait;
        wait.start();
        for (c.collectEvents(); c.events.isEmpty() && wait.elapsed() < 3000; c.collectEvents())
            QTest::qWait(10);
        const QList<QJsonObject> ev = c.takeEvents("move.last_error_with_setting");
        QCOMPARE(ev.size(), 1);
        const QJsonObject data = ev.first().value("data").toObject();
        QVERIFY(data.value("error").toInt() != 0);
        QCOMPARE(data.value("data").toObject().value("id").toString(), id);
        QVERIFY(!data.value("data").toObject().value("msg").toString().isEmpty());
        // The arm is at rest afterwards.
        const QJsonArray rest = trans(c);
        QTest::qWait(60);
        QCOMPARE(trans(c), rest);
        // Unwatched sessions get nothing.
        QCOMPARE(RcTestClient::status(c.call("watch", "move.last_error_with_setting", "false")), 0);
        QCOMPARE(RcTestClient::status(c.call("exec", "move.j", "{\"point\":[0,0,4,0,0,0],\"traj.speed\":0.1}")), -1);
        c.collectEvents();
        QVERIFY(c.takeEvents("move.last_error_with_setting").isEmpty());
    }

    void postureEventsAreThrottled()
    {
        RcTestClient c;
        QCOMPARE(RcTestClient::status(c.call("watch", "sys.posture", "true")), 0);
        c.takeEvents("sys.posture");
        QCOMPARE(RcTestClient::status(c.call("exec", "sim.jog.start", "{\"frame\":\"joint\",\"axis\":0,\"speed\":0.5}")), 0);
        QElapsedTimer clock;
        clock.start();
        QTest::qWait(600);
        QCOMPARE(RcTestClient::status(c.call("exec", "sim.jog.stop")), 0);
        const qint64 ms = clock.elapsed();
        QTest::qWait(250);
        c.collectEvents();
        const QList<QJsonObject> ev = c.takeEvents("sys.posture");
        QVERIFY2(ev.size() >= 3 && ev.size() <= ms / 100 + 3, qPrintable(QString::number(ev.size())));
        // The last event carries the final posture.
        QCOMPARE(ev.last().value("data").toObject().value("near").toArray(), near(c));
    }
};

QTEST_GUILESS_MAIN(TestMotion)
#include "tst_motion.moc"
