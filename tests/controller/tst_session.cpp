#include "rctestclient.h"
#include "session.h"
#include "testpallets.h"

#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <orbat/inprocesstransport.h>
#include <orbat/transport.h>

#include <QElapsedTimer>
#include <QRandomGenerator>
#include <QtTest>

namespace {

QByteArray pallet(const QString &name, int places = 0)
{
    return testpallets::full(name, places);
}

QString poseJson(double x, double y, double z, double a, double b, double c)
{
    return QString("{\"trans\":[%1,%2,%3],\"rot\":[%4,%5,%6],\"near\":[0.0,-1.5707963267948966,1.5707963267948966,"
                   "-1.5707963267948966,-1.5707963267948966,0.0]}")
        .arg(x, 0, 'g', 17).arg(y, 0, 'g', 17).arg(z, 0, 'g', 17).arg(a, 0, 'g', 17).arg(b, 0, 'g', 17).arg(c, 0, 'g', 17);
}

// The "data" of a result line, byte for byte.
QByteArray rawData(const QByteArray &reply)
{
    const int at = reply.indexOf(",\"data\":");
    if (!reply.startsWith("{\"id\":") || at < 0 || !reply.endsWith("}}"))
        return QByteArray();
    return reply.mid(at + 8, reply.size() - at - 8 - 2);
}

using testpallets::serialisedForm;

QByteArray exec(const QByteArray &method, const QByteArray &params, int id = 1)
{
    return "{\"id\":" + QByteArray::number(id) + ",\"op\":\"exec\",\"method\":\"" + method + "\",\"params\":" + params + "}";
}

QStringList names(const QJsonValue &list)
{
    QStringList out;
    for (const QJsonValue &v : list.toArray())
        out << v.toObject().value("name").toString();
    return out;
}

} // namespace

class TestSession : public QObject
{
    Q_OBJECT

private slots:
    void init() { orba::ModuleManager::resetRoot(); }

    // A closed connection answers nothing; opened again it serves like a new one.
    void reopenedSessionServesAgain()
    {
        RcTestClient c;
        QVERIFY2(c.opened, qPrintable(c.openError));
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.query.list")), 0);
        c.session->clientClosed();
        QVERIFY(c.call("exec", "tray.query.list").isEmpty());
        c.session->clientOpened();
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.query.list")), 0);
        QCOMPARE(RcTestClient::status(c.call("set", "sys.power", "\"on\"")), 0);
        // A session that was never closed ignores the news.
        c.session->clientOpened();
        QCOMPARE(RcTestClient::data(c.call("get", "sys.power")).toString(), QString("on"));
    }

    void capabilities_data()
    {
        QTest::addColumn<bool>("legacy");
        QTest::newRow("current") << false;
        QTest::newRow("legacy") << true;
    }
    void capabilities()
    {
        QFETCH(bool, legacy);
        RcTestClient c(legacy);
        QVERIFY2(c.opened, qPrintable(c.openError));
        const QJsonObject r = c.call("get", "tservice.proto.command");
        QCOMPARE(RcTestClient::status(r), 0);
        QStringList cmds;
        for (const QJsonValue &v : RcTestClient::data(r).toArray())
            cmds << v.toString();
        for (const char *name : {"tray.query.list", "tray.data", "tray.add_one", "tray.del_one", "tray.set.one",
                                 "tray.set.name", "sys.power", "sys.posture", "sys.toolset", "data.var", "move.reset",
                                 "move.j", "move.l", "move.opr.enough", "move.stop", "move.l.check"})
            QVERIFY2(cmds.contains(name), name);
        QCOMPARE(cmds.contains("tray.query.one"), !legacy);
        const QJsonObject one = c.call("exec", "tray.query.one", "0");
        if (legacy)
            QCOMPARE(RcTestClient::errorCode(one), -32601);
        else
            QCOMPARE(RcTestClient::status(one), -1);
        QVERIFY(RcTestClient::data(c.call("get", "sys.id")).toString().startsWith("rcsim-"));
    }

    void storedPalletsCheckedWhole_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<int>("code");
        const QByteArray head = "{\"id\":3,\"op\":\"exec\",\"method\":\"tray.add_one\",\"params\":{\"name\":\"bad\",";
        QTest::newRow("duplicate key in a place") << head + "\"points\":[{\"wobj\":1,\"wobj\":2}]}}" << -32700;
        QTest::newRow("bad number in a pose") << head + "\"points\":[{\"wobj\":{\"trans\":[0,01,0]}}]}}" << -32700;
        QTest::newRow("unclosed array in a place") << head + "\"points\":[{\"wobj\":[0,0}]}}" << -32700;
        QByteArray many = head + "\"points\":[";
        for (int i = 0; i < 300000; ++i)
            many += i ? ",0" : "0";
        QTest::newRow("more nodes than a pallet has") << many + "]}}" << -32600;
        QByteArray setHead = head;
        setHead.replace("tray.add_one", "tray.set.one");
        setHead.replace("\"bad\"", "\"keep\"");
        QTest::newRow("replacement with a bad number deep down") << setHead + "\"points\":[[[1e]]]}}" << -32700;
    }
    // A pallet stored as its text is read whole all the same: nothing deep down slips through.
    void storedPalletsCheckedWhole()
    {
        QFETCH(QByteArray, line);
        QFETCH(int, code);
        RcTestClient c;
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", pallet("keep"))), 0);
        const QJsonObject before = RcTestClient::data(c.call("exec", "tray.query.one", "0")).toObject();
        const QJsonObject r = QJsonDocument::fromJson(c.send(line)).object();
        QCOMPARE(RcTestClient::errorCode(r), code);
        QCOMPARE(names(RcTestClient::data(c.call("exec", "tray.query.list"))), QStringList({"keep"}));
        QCOMPARE(RcTestClient::data(c.call("exec", "tray.query.one", "0")).toObject(), before);
    }

    // Text with white space cannot be stored as received: the pallet is read whole and written anew.
    void spacedPalletStoredWhole()
    {
        RcTestClient c;
        const QByteArray spaced = "{ \"name\" : \"spaced\", \"points\" : [ { \"wobj\" : { \"trans\" : [ 1, 2.5, -3 ] } } ] }";
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", spaced)), 0);
        QJsonObject expected = QJsonDocument::fromJson(spaced).object();
        expected.insert("index", 0);
        QCOMPARE(RcTestClient::data(c.call("exec", "tray.query.one", "0")).toObject(), expected);
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.set.one", QByteArray(spaced).replace("2.5", "7"))), 0);
        expected = QJsonDocument::fromJson(QByteArray(spaced).replace("2.5", "7")).object();
        expected.insert("index", 0);
        QCOMPARE(RcTestClient::data(c.call("exec", "tray.query.one", "0")).toObject(), expected);
    }

    void trayLifecycle()
    {
        RcTestClient c;
        QCOMPARE(RcTestClient::data(c.call("exec", "tray.add_one", pallet("a"))).toObject().value("size").toInt(), 1);
        QCOMPARE(RcTestClient::data(c.call("exec", "tray.add_one", pallet("b"))).toObject().value("size").toInt(), 2);
        QCOMPARE(RcTestClient::data(c.call("exec", "tray.add_one", pallet("c"))).toObject().value("size").toInt(), 3);
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", pallet("b"))), -1);
        QCOMPARE(names(RcTestClient::data(c.call("exec", "tray.query.list"))), QStringList({"a", "b", "c"}));

        const QJsonObject two = RcTestClient::data(c.call("exec", "tray.query.one", "2")).toObject();
        QCOMPARE(two.value("name").toString(), QString("c"));
        QCOMPARE(two.value("index").toInt(), 2);

        // Delete with a name that does not match the position: nothing happens.
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.del_one", "{\"index\":0,\"name\":\"b\"}")), -1);
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.del_one", "{\"index\":7,\"name\":\"b\"}")), -1);
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.del_one", "{\"index\":0,\"name\":\"a\"}")), 0);
        const QJsonArray all = RcTestClient::data(c.call("get", "tray.data")).toArray();
        QCOMPARE(all.size(), 2);
        QCOMPARE(all.at(0).toObject().value("name").toString(), QString("b"));
        QCOMPARE(all.at(0).toObject().value("index").toInt(), 0);
        QCOMPARE(all.at(1).toObject().value("index").toInt(), 1);

        // Rename at a position; the name must stay unique.
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.set.name", "{\"index\":1,\"name\":\"b\",\"desc\":\"x\"}")), -1);
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.set.name", "{\"index\":1,\"name\":\"d\",\"desc\":\"new\"}")), 0);
        const QJsonObject d = RcTestClient::data(c.call("exec", "tray.query.one", "1")).toObject();
        QCOMPARE(d.value("name").toString(), QString("d"));
        QCOMPARE(d.value("desc").toString(), QString("new"));
        QCOMPARE(d.value("pattern").toObject().value("row").toInt(), 1);

        // Whole replacement by name.
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.set.one", "{\"name\":\"d\",\"desc\":\"whole\"}")), 0);
        const QJsonObject d2 = RcTestClient::data(c.call("exec", "tray.query.one", "1")).toObject();
        QCOMPARE(d2.value("desc").toString(), QString("whole"));
        QVERIFY(!d2.contains("pattern"));
        QCOMPARE(d2.value("index").toInt(), 1);
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.set.one", "{\"name\":\"zz\"}")), -1);

        // Whole list write; an empty list travels as null.
        QCOMPARE(RcTestClient::status(c.call("set", "tray.data", "[" + pallet("x") + "," + pallet("y") + "]")), 0);
        QCOMPARE(names(RcTestClient::data(c.call("exec", "tray.query.list"))), QStringList({"x", "y"}));
        QCOMPARE(RcTestClient::errorCode(c.call("set", "tray.data", "[{\"desc\":1}]")), -32602);
        QCOMPARE(names(RcTestClient::data(c.call("exec", "tray.query.list"))), QStringList({"x", "y"}));
        QCOMPARE(RcTestClient::status(c.call("set", "tray.data", "null")), 0);
        QCOMPARE(RcTestClient::data(c.call("exec", "tray.query.list")).toArray().size(), 0);
    }

    void largePalletBitExact()
    {
        RcTestClient c;
        const QByteArray sent = pallet("big", 1200);
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", sent)), 0);
        // Reopen the store from disk, then compare node for node, doubles bit for bit.
        const QString dir = c.m_dir.path();
        c.session.reset();
        c.controller.reset();
        RcTestClient again(false, dir);
        QVERIFY(again.opened);
        const QByteArray reply = again.send("{\"id\":1,\"op\":\"exec\",\"method\":\"tray.query.one\",\"params\":0}");
        orba::ModuleObject got;
        QString error;
        QVERIFY2(got.importFromJson(nullptr, reply, &error), qPrintable(error));
        orba::ModuleObject expected;
        QVERIFY(expected.importFromJson(nullptr, sent));
        expected.set(nullptr, "index", 0);
        QVERIFY(got.r("result.data")->equals(&expected));
        QCOMPARE(got.r("result.data.points")->size(), 1200);
    }

    void powerPostureToolset()
    {
        RcTestClient c;
        QCOMPARE(RcTestClient::data(c.call("get", "sys.power")).toString(), QString("on"));
        QCOMPARE(RcTestClient::status(c.call("watch", "sys.power", "true")), 0);
        c.takeEvents("sys.power");
        QCOMPARE(RcTestClient::status(c.call("set", "sys.power", "\"off\"")), 0);
        QCOMPARE(RcTestClient::data(c.call("get", "sys.power")).toString(), QString("off"));
        const auto ev = c.takeEvents("sys.power");
        QCOMPARE(ev.size(), 1);
        QCOMPARE(ev.first().value("data").toString(), QString("off"));
        QCOMPARE(RcTestClient::errorCode(c.call("set", "sys.power", "\"maybe\"")), -32602);
        QCOMPARE(RcTestClient::status(c.call("exec", "sim.power", "true")), 0);
        QCOMPARE(RcTestClient::data(c.call("get", "sys.power")).toString(), QString("on"));

        const QJsonObject p0 = RcTestClient::data(c.call("get", "sys.posture")).toObject();
        QCOMPARE(p0.value("near").toArray().size(), 6);
        const double z0 = p0.value("trans").toArray().at(2).toDouble();

        // A 0.2 m tool pointing down and a reference frame 0.1 m up: the TCP reads 0.3 m lower.
        const QByteArray toolset = "{\"end\":{\"trans\":[0,0,0.2],\"rot\":[0,0,0]},\"ref\":{\"trans\":[0,0,0.1],"
                                   "\"rot\":[0,0,0]},\"load\":{\"mass\":2,\"cog\":[0,0,0.05],\"inertia\":[0,0,0]},\"name\":\"p\"}";
        QCOMPARE(RcTestClient::status(c.call("set", "sys.toolset", toolset)), 0);
        const QJsonObject p1 = RcTestClient::data(c.call("get", "sys.posture")).toObject();
        QVERIFY(std::abs(p1.value("trans").toArray().at(2).toDouble() - (z0 - 0.3)) < 1e-12);
        QCOMPARE(p1.value("near"), p0.value("near"));
    }

    void malformedToolset_data()
    {
        QTest::addColumn<QByteArray>("params");
        QTest::newRow("missing") << QByteArray("null");
        QTest::newRow("no end") << QByteArray("{\"ref\":{\"trans\":[0,0,0],\"rot\":[0,0,0]},\"load\":{\"mass\":0,\"cog\":[0,0,0],\"inertia\":[0,0,0]}}");
        QTest::newRow("short trans") << QByteArray("{\"end\":{\"trans\":[0,0],\"rot\":[0,0,0]},\"ref\":{\"trans\":[0,0,0],\"rot\":[0,0,0]},\"load\":{\"mass\":0,\"cog\":[0,0,0],\"inertia\":[0,0,0]}}");
        QTest::newRow("string number") << QByteArray("{\"end\":{\"trans\":[0,\"1\",0],\"rot\":[0,0,0]},\"ref\":{\"trans\":[0,0,0],\"rot\":[0,0,0]},\"load\":{\"mass\":0,\"cog\":[0,0,0],\"inertia\":[0,0,0]}}");
        QTest::newRow("negative mass") << QByteArray("{\"end\":{\"trans\":[0,0,0],\"rot\":[0,0,0]},\"ref\":{\"trans\":[0,0,0],\"rot\":[0,0,0]},\"load\":{\"mass\":-1,\"cog\":[0,0,0],\"inertia\":[0,0,0]}}");
        QTest::newRow("no load") << QByteArray("{\"end\":{\"trans\":[0,0,0],\"rot\":[0,0,0]},\"ref\":{\"trans\":[0,0,0],\"rot\":[0,0,0]}}");
    }
    void malformedToolset()
    {
        QFETCH(QByteArray, params);
        RcTestClient c;
        const QJsonObject before = RcTestClient::data(c.call("get", "sys.posture")).toObject();
        const QJsonObject r = c.call("set", "sys.toolset", params);
        QVERIFY(RcTestClient::status(r) < 0);
        QVERIFY(!RcTestClient::data(r).toObject().value("msg").toString().isEmpty());
        QCOMPARE(RcTestClient::data(c.call("get", "sys.posture")).toObject(), before);
    }

    void variables()
    {
        RcTestClient c;
        QCOMPARE(RcTestClient::status(c.call("get", "data.var", "{\"type\":\"cart\"}", "nowhere")), -1);
        QCOMPARE(RcTestClient::status(c.call("exec", "sim.var.set", "{\"name\":\"p10\",\"value\":" + poseJson(0.1, 0.5, 0.3, M_PI, 0, 0).toUtf8() + "}")), 0);
        const QJsonObject v = RcTestClient::data(c.call("get", "data.var", "{\"type\":\"joint\"}", "p10")).toObject();
        QCOMPARE(v.value("trans").toArray().at(1).toDouble(), 0.5);
        QCOMPARE(v.value("near").toArray().size(), 6);
        QCOMPARE(RcTestClient::status(c.call("get", "data.var", "{\"type\":\"cart\"}", "home")), 0);
        QCOMPARE(RcTestClient::errorCode(c.call("exec", "sim.var.set", "{\"name\":\"bad\",\"value\":[1,2]}")), -32602);
    }

    void projectLists()
    {
        RcTestClient c;
        const QJsonArray tools = RcTestClient::data(c.call("get", "sim.tool.list")).toArray();
        QVERIFY(tools.size() >= 3);
        QCOMPARE(tools.at(0).toObject().value("name").toString(), QString("tool0"));
        const QJsonObject gripper = tools.at(1).toObject();
        QCOMPARE(gripper.value("robhold").toBool(), true);
        QCOMPARE(gripper.value("frame").toObject().value("pos").toObject().value("z").toDouble(), 200.0);
        QVERIFY(gripper.value("frame").toObject().value("ori").toObject().value("euler").toObject().contains("c"));
        QCOMPARE(gripper.value("load").toObject().value("moment").toArray().size(), 3);
        QVERIFY(gripper.value("load").toObject().value("pose").toObject().value("pos").toObject().contains("x"));
        const QJsonArray wobjs = RcTestClient::data(c.call("get", "sim.wobj.list")).toArray();
        QCOMPARE(wobjs.at(0).toObject().value("name").toString(), QString("wobj0"));
        QCOMPARE(wobjs.size(), 2);
    }

    void jogAndPosture()
    {
        RcTestClient c;
        const QJsonObject p0 = RcTestClient::data(c.call("get", "sys.posture")).toObject();
        QCOMPARE(RcTestClient::status(c.call("exec", "sim.jog", "{\"frame\":\"base\",\"axis\":2,\"delta\":-0.05}")), 0);
        const QJsonObject p1 = RcTestClient::data(c.call("get", "sys.posture")).toObject();
        QVERIFY(std::abs(p1.value("trans").toArray().at(2).toDouble() - p0.value("trans").toArray().at(2).toDouble() + 0.05) < 1e-9);
        QVERIFY(std::abs(p1.value("trans").toArray().at(0).toDouble() - p0.value("trans").toArray().at(0).toDouble()) < 1e-9);
        QCOMPARE(RcTestClient::status(c.call("exec", "sim.jog", "{\"frame\":\"joint\",\"axis\":2,\"delta\":5.0}")), -1);
        QCOMPARE(RcTestClient::status(c.call("exec", "sim.jog", "{\"frame\":\"base\",\"axis\":0,\"delta\":-3.0}")), -1);
        QCOMPARE(RcTestClient::errorCode(c.call("exec", "sim.jog", "{\"frame\":\"moon\",\"axis\":0,\"delta\":1}")), -32602);
        QCOMPARE(RcTestClient::status(c.call("exec", "sim.posture.set", "{\"joints\":[0,-1.2,1.3,-1.5,-1.5,0.2]}")), 0);
        const QJsonArray near = RcTestClient::data(c.call("get", "sys.posture")).toObject().value("near").toArray();
        QCOMPARE(near.at(1).toDouble(), -1.2);
        QCOMPARE(RcTestClient::status(c.call("exec", "sim.posture.set", "{\"joints\":[0,0,4,0,0,0]}")), -1);
    }

    void lineCheckCommand_data()
    {
        QTest::addColumn<QString>("p0");
        QTest::addColumn<QString>("p1");
        QTest::addColumn<bool>("ok");
        QTest::newRow("approach") << poseJson(-0.688, -0.164, 0.4, M_PI, 0, M_PI / 2)
                                  << poseJson(-0.688, -0.164, 0.5, M_PI, 0, M_PI / 2) << true;
        QTest::newRow("out of reach") << poseJson(-0.688, -0.164, 0.4, M_PI, 0, 0)
                                      << poseJson(-1.8, -0.164, 0.4, M_PI, 0, 0) << false;
        QTest::newRow("base axis") << poseJson(-0.5, -0.164, 0.4, M_PI, 0, 0) << poseJson(0.5, -0.164, 0.4, M_PI, 0, 0)
                                   << false;
    }
    void lineCheckCommand()
    {
        QFETCH(QString, p0);
        QFETCH(QString, p1);
        QFETCH(bool, ok);
        RcTestClient c;
        const QJsonObject r = c.call("exec", "move.l.check", ("{\"point0\":" + p0 + ",\"point1\":" + p1 + "}").toUtf8());
        QCOMPARE(RcTestClient::status(r) == 0, ok);
        if (!ok)
            QVERIFY(RcTestClient::data(r).toObject().value("msg").toString().contains("sample"));
        QCOMPARE(RcTestClient::errorCode(c.call("exec", "move.l.check", "{\"point0\":" + p0.toUtf8() + "}")), -32602);
    }

    void badLines_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<int>("code");
        QTest::newRow("garbage") << QByteArray("hello") << -32700;
        QTest::newRow("truncated") << QByteArray("{\"id\":1,\"op\":\"get\"") << -32700;
        QTest::newRow("array") << QByteArray("[1,2,3]") << -32600;
        QTest::newRow("number") << QByteArray("42") << -32600;
        QTest::newRow("no method") << QByteArray("{\"id\":1,\"op\":\"get\"}") << -32600;
        QTest::newRow("no op") << QByteArray("{\"id\":1,\"method\":\"sys.power\"}") << -32600;
        QTest::newRow("method not string") << QByteArray("{\"id\":1,\"op\":\"get\",\"method\":7}") << -32600;
        QTest::newRow("unknown") << QByteArray("{\"id\":1,\"op\":\"exec\",\"method\":\"tray.fly\"}") << -32601;
        QTest::newRow("wrong op") << QByteArray("{\"id\":1,\"op\":\"set\",\"method\":\"tray.query.list\"}") << -32601;
        QTest::newRow("query one string") << QByteArray("{\"id\":1,\"op\":\"exec\",\"method\":\"tray.query.one\",\"params\":\"0\"}") << -32602;
        QTest::newRow("query one missing") << QByteArray("{\"id\":1,\"op\":\"exec\",\"method\":\"tray.query.one\"}") << -32602;
        QTest::newRow("add without name") << QByteArray("{\"id\":1,\"op\":\"exec\",\"method\":\"tray.add_one\",\"params\":{\"desc\":\"x\"}}") << -32602;
        QTest::newRow("add a number") << QByteArray("{\"id\":1,\"op\":\"exec\",\"method\":\"tray.add_one\",\"params\":5}") << -32602;
        QTest::newRow("del index string") << QByteArray("{\"id\":1,\"op\":\"exec\",\"method\":\"tray.del_one\",\"params\":{\"index\":\"0\",\"name\":\"a\"}}") << -32602;
        QTest::newRow("move without point") << QByteArray("{\"id\":1,\"op\":\"exec\",\"method\":\"move.l\",\"params\":{\"traj.speed\":0.1}}") << -32602;
        QTest::newRow("move negative speed") << QByteArray("{\"id\":1,\"op\":\"exec\",\"method\":\"move.j\",\"params\":{\"point\":[0,0,0,0,0,0],\"traj.speed\":-1}}") << -32602;
        QTest::newRow("watch unknown") << QByteArray("{\"id\":1,\"op\":\"watch\",\"method\":\"sys.secret\",\"params\":true}") << -32601;
        QTest::newRow("watch non bool") << QByteArray("{\"id\":1,\"op\":\"watch\",\"method\":\"sys.power\",\"params\":\"yes\"}") << -32602;
        QTest::newRow("too deep") << QByteArray(300, '[') << -32700;
    }
    void badLines()
    {
        QFETCH(QByteArray, line);
        QFETCH(int, code);
        RcTestClient c;
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", pallet("keep"))), 0);
        const QJsonObject r = QJsonDocument::fromJson(c.send(line)).object();
        QCOMPARE(RcTestClient::errorCode(r), code);
        QVERIFY(!r.value("error").toObject().value("message").toString().isEmpty());
        // Nothing changed in the store.
        QCOMPARE(names(RcTestClient::data(c.call("exec", "tray.query.list"))), QStringList({"keep"}));
    }

    void fuzz()
    {
        RcTestClient c;
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", pallet("keep"))), 0);
        QRandomGenerator gen(7);
        const QList<QByteArray> seeds = {
            "{\"id\":1,\"op\":\"exec\",\"method\":\"tray.del_one\",\"params\":{\"index\":0,\"name\":\"keep\"}}",
            "{\"id\":2,\"op\":\"set\",\"method\":\"tray.data\",\"params\":[]}",
            "{\"id\":3,\"op\":\"set\",\"method\":\"sys.toolset\",\"params\":{\"end\":{\"trans\":[0,0,0],\"rot\":[0,0,0]}}}",
            "{\"id\":4,\"op\":\"exec\",\"method\":\"move.l.check\",\"params\":{\"point0\":{\"trans\":[0,0,0],\"rot\":[0,0,0]}}}",
        };
        int replies = 0;
        for (int i = 0; i < 3000; ++i) {
            QByteArray line;
            if (i % 3 == 0) {
                line.resize(int(gen.bounded(200)));
                for (char &ch : line)
                    ch = char(gen.bounded(256));
            } else {
                line = seeds.at(int(gen.bounded(seeds.size())));
                // Mutate a few bytes but never into a valid delete of "keep" with a rename.
                for (int k = 0; k < 3; ++k)
                    line[int(gen.bounded(line.size()))] = char(gen.bounded(32, 127));
                if (line.contains("keep") && line.contains("del_one"))
                    line.replace("keep", "kee!");
                if (line.contains("tray.data"))
                    line.replace("tray.data", "tray.date");
            }
            line.replace('\n', ' ');
            const QByteArray reply = c.send(line);
            QVERIFY(!reply.isEmpty());
            const QJsonObject o = QJsonDocument::fromJson(reply).object();
            QVERIFY(o.contains("result") || o.contains("error"));
            ++replies;
        }
        QCOMPARE(replies, 3000);
        QCOMPARE(names(RcTestClient::data(c.call("exec", "tray.query.list"))), QStringList({"keep"}));
    }

    void oversizedLine()
    {
        RcTestClient c;
        QByteArray line = "{\"id\":1,\"op\":\"exec\",\"method\":\"tray.add_one\",\"params\":{\"name\":\"x\",\"desc\":\"";
        line += QByteArray(orbat::Transport::maxLineBytes(), 'a');
        line += "\"}}";
        const QJsonObject r = QJsonDocument::fromJson(c.send(line)).object();
        QCOMPARE(RcTestClient::errorCode(r), -32600);
        QCOMPARE(RcTestClient::data(c.call("exec", "tray.query.list")).toArray().size(), 0);
    }

    void embeddedThroughTransport()
    {
        QTemporaryDir dir;
        rc::Controller::Options o;
        o.dataDir = dir.path();
        auto embedded = std::make_unique<rc::EmbeddedController>(o);
        QString error;
        QVERIFY2(embedded->start(&error), qPrintable(error));
        QVERIFY(embedded->endpoint());
        QVERIFY(embedded->endpoint()->thread() != QThread::currentThread());
        orbat::InProcessTransport transport(embedded->endpoint());
        transport.open();
        const auto reply = transport.request(5, "{\"id\":5,\"op\":\"exec\",\"method\":\"tray.add_one\",\"params\":{\"name\":\"e\"}}", 3000);
        QVERIFY(reply.has_value());
        const QJsonObject o2 = QJsonDocument::fromJson(*reply).object();
        QCOMPARE(o2.value("id").toInt(), 5);
        QCOMPARE(RcTestClient::data(o2).toObject().value("size").toInt(), 1);
        transport.attach(nullptr);
        embedded.reset();
        // The store was written by the worker thread and closed cleanly.
        RcTestClient again(false, dir.path());
        QVERIFY(again.opened);
        QCOMPARE(names(RcTestClient::data(again.call("exec", "tray.query.list"))), QStringList({"e"}));
    }

    void storedTextIsTheSerialisedForm()
    {
        RcTestClient c;
        const QByteArray a = pallet("a", 60), b = pallet("b", 3), d = pallet("d");
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", a)), 0);
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", b)), 0);
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", d)), 0);
        QCOMPARE(rawData(c.send(exec("tray.query.one", "0"))), serialisedForm(a, 0));
        QCOMPARE(rawData(c.send(exec("tray.query.one", "2"))), serialisedForm(d, 2));
        // A replacement carrying a stale index gets the controller's.
        const QByteArray b2 = serialisedForm(pallet("b", 5), 9);
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.set.one", b2)), 0);
        QCOMPARE(rawData(c.send(exec("tray.query.one", "1"))), serialisedForm(b2, 1));
        // Renumbered after a removal.
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.del_one", "{\"index\":0,\"name\":\"a\"}")), 0);
        QCOMPARE(rawData(c.send(exec("tray.query.one", "0"))), serialisedForm(b2, 0));
        QCOMPARE(rawData(c.send(exec("tray.query.one", "1"))), serialisedForm(d, 1));
        // A request written with spaces is stored in the compact form.
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", "{ \"name\" : \"e\", \"rows\": [1, 2] }")), 0);
        QCOMPARE(rawData(c.send(exec("tray.query.one", "2"))), QByteArray("{\"name\":\"e\",\"rows\":[1,2],\"index\":2}"));
        // The whole list holds the same texts.
        QCOMPARE(rawData(c.send("{\"id\":1,\"op\":\"get\",\"method\":\"tray.data\"}")),
                 "[" + serialisedForm(b2, 0) + "," + serialisedForm(d, 1) + ",{\"name\":\"e\",\"rows\":[1,2],\"index\":2}]");
    }

    void nodeBudget_data()
    {
        QTest::addColumn<QByteArray>("line");
        QTest::addColumn<bool>("refused");
        // 15 MB of empty arrays: 5 million nodes for a command that takes none.
        QByteArray arrays = "[";
        arrays.reserve(15 * 1000 * 1000);
        while (arrays.size() < 15 * 1000 * 1000 - 4)
            arrays += "[],";
        arrays += "[]]";
        QTest::newRow("empty arrays for a list query") << exec("tray.query.list", arrays, 7) << true;
        QTest::newRow("empty arrays for an unknown command") << exec("tray.fly", arrays, 7) << true;
        QTest::newRow("empty arrays, no method") << ("{\"id\":7,\"params\":" + arrays + "}") << true;
        // 300,000 nodes are more than any one pallet has.
        QByteArray many = "{\"name\":\"many\",\"p\":[";
        for (int i = 0; i < 300000; ++i)
            many += i ? ",0" : "0";
        many += "]}";
        QTest::newRow("oversized pallet for tray.add_one") << exec("tray.add_one", many, 7) << true;
        QTest::newRow("oversized pallet for tray.set.one") << exec("tray.set.one", many, 7) << true;
        QTest::newRow("a 1200-place pallet") << exec("tray.add_one", pallet("big", 1200), 7) << false;
        // The whole list may carry several big pallets at once.
        QByteArray list = "[";
        const QByteArray big = pallet("big", 1200);
        for (int i = 0; i < 5; ++i) {
            QByteArray one = big;
            one.replace("\"name\":\"big\"", "\"name\":\"big" + QByteArray::number(i) + "\"");
            list += (i ? "," : "") + one;
        }
        list += "]";
        QTest::newRow("five big pallets in the whole list")
            << QByteArray("{\"id\":7,\"op\":\"set\",\"method\":\"tray.data\",\"params\":" + list + "}") << false;
    }
    void nodeBudget()
    {
        QFETCH(QByteArray, line);
        QFETCH(bool, refused);
        RcTestClient c;
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", pallet("keep"))), 0);
        QElapsedTimer t;
        t.start();
        const QByteArray reply = c.send(line);
        const qint64 ms = t.elapsed();
        const QJsonObject r = QJsonDocument::fromJson(reply).object();
        if (refused) {
            QCOMPARE(RcTestClient::errorCode(r), -32600);
            QCOMPARE(r.value("id").toInt(), 7);
            const QString message = r.value("error").toObject().value("message").toString();
            QVERIFY2(message.contains("request too large"), qPrintable(message));
            // The input is quoted, but only a short excerpt of it.
            QVERIFY2(message.size() < 220, qPrintable(message));
            QVERIFY2(message.contains("..."), qPrintable(message));
            // Refused before a big tree was built.
            QVERIFY2(ms < 2000, qPrintable(QString("%1 ms").arg(ms)));
            qInfo("refused a %d-byte request in %lld ms", int(line.size()), ms);
            QCOMPARE(names(RcTestClient::data(c.call("exec", "tray.query.list"))), QStringList({"keep"}));
        } else {
            QCOMPARE(RcTestClient::status(r), 0);
        }
        // The session goes on.
        QCOMPARE(RcTestClient::data(c.call("ping", "ping")).toString(), QString("pong"));
    }

    void errorsQuoteShortExcerpts_data()
    {
        QTest::addColumn<QByteArray>("line");
        const QByteArray longText(20000, 'q');
        QTest::newRow("unknown command") << ("{\"id\":1,\"op\":\"exec\",\"method\":\"" + longText + "\"}");
        QTest::newRow("unwatchable") << ("{\"id\":1,\"op\":\"watch\",\"method\":\"" + longText + "\",\"params\":true}");
        QTest::newRow("unknown variable") << ("{\"id\":1,\"op\":\"get\",\"method\":\"data.var\",\"key\":\"" + longText + "\"}");
        QTest::newRow("no such pallet") << exec("tray.set.one", "{\"name\":\"" + longText + "r\"}");
        QTest::newRow("existing name") << exec("tray.add_one", "{\"name\":\"" + longText + "\"}");
        QTest::newRow("wrong pallet to delete") << exec("tray.del_one", "{\"index\":5,\"name\":\"" + longText + "\"}");
        QTest::newRow("unstorable name") << exec("tray.add_one", "{\"name\":\"" + longText + "\\ud800\"}");
    }
    void errorsQuoteShortExcerpts()
    {
        QFETCH(QByteArray, line);
        RcTestClient c;
        QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", "{\"name\":\"" + QByteArray(20000, 'q') + "\"}")), 0);
        const QJsonObject r = QJsonDocument::fromJson(c.send(line)).object();
        QString message = r.value("error").toObject().value("message").toString();
        if (message.isEmpty())
            message = RcTestClient::data(r).toObject().value("msg").toString();
        QVERIFY2(!message.isEmpty(), qPrintable(QJsonDocument(r).toJson()));
        QVERIFY2(message.size() < 200, qPrintable(message));
        QVERIFY2(message.contains(QString(64, QChar('q')) + "..."), qPrintable(message));
    }

    // A link that writes replies in pieces (rcsim) sends exactly the line the in-process link gets.
    void replyPiecesJoinToTheSameLine_data()
    {
        QTest::addColumn<int>("pallets");
        QTest::addColumn<QByteArray>("request");
        QTest::newRow("whole list") << 3 << QByteArray("{\"id\":7,\"op\":\"get\",\"method\":\"tray.data\"}");
        QTest::newRow("empty list") << 0 << QByteArray("{\"id\":7,\"op\":\"get\",\"method\":\"tray.data\"}");
        QTest::newRow("one pallet") << 3 << exec("tray.query.one", "1", 7);
        QTest::newRow("no such pallet") << 3 << exec("tray.query.one", "9", 7);
        QTest::newRow("names") << 3 << QByteArray("{\"id\":\"s\",\"op\":\"exec\",\"method\":\"tray.query.list\"}");
        QTest::newRow("error reply") << 3 << QByteArray("{\"id\":7,\"op\":\"exec\"}");
        QTest::newRow("unparsable") << 0 << QByteArray("{\"id\":7,");
    }

    void replyPiecesJoinToTheSameLine()
    {
        QFETCH(int, pallets);
        QFETCH(QByteArray, request);
        RcTestClient c;
        QVERIFY2(c.opened, qPrintable(c.openError));
        for (int i = 0; i < pallets; ++i)
            QCOMPARE(RcTestClient::status(c.call("exec", "tray.add_one", pallet(QString("p%1").arg(i), 40 * i))), 0);
        const QByteArray line = c.send(request);
        QVERIFY(!line.isEmpty());

        std::unique_ptr<rc::Session> piecewise(static_cast<rc::Session *>(c.controller->createSession()));
        piecewise->setPiecewise(true);
        // Lines refused before they reach a command still come whole.
        QList<QVector<QByteArray>> replies;
        connect(piecewise.get(), &rc::Session::sendPieces, this, [&](const QVector<QByteArray> &p) { replies.append(p); });
        connect(piecewise.get(), &orbat::LineEndpoint::sendLine, this, [&](const QByteArray &l) { replies.append({l}); });
        piecewise->receiveLine(request);
        QCOMPARE(replies.size(), 1);
        QCOMPARE(replies.first().toList().join(), line);
        if (QByteArray(QTest::currentDataTag()) == "whole list") {
            // The stored texts travel as they are: one part per pallet plus the punctuation.
            QCOMPARE(replies.first().size(), 2 + 2 * pallets + 1);
        }
    }

    void unopenedStoreRefusesWrites()
    {
        QTemporaryDir dir;
        QFile blocker(dir.filePath("file"));
        QVERIFY(blocker.open(QIODevice::WriteOnly));
        blocker.close();
        rc::Controller::Options o;
        o.dataDir = dir.filePath("file/sub");
        rc::Controller controller(o);
        QString error;
        QVERIFY(!controller.open(&error));
        QVERIFY(!error.isEmpty());
    }
};

QTEST_GUILESS_MAIN(TestSession)
#include "tst_session.moc"
