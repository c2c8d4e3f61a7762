#include <orbat/scriptedtransport.h>

#include <orba/json.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <QElapsedTimer>
#include <QSignalSpy>
#include <QtTest>

using orbat::ScriptedTransport;

namespace {
// JSON written with single quotes, for readability.
QByteArray j(const char *text)
{
    return QByteArray(text).replace('\'', '"');
}
} // namespace

class TestScriptedTransport : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void recordsRequest_data();
    void recordsRequest();
    void replyPreference_data();
    void replyPreference();
    void handlerSeesRequest();
    void errorReplyLine();
    void rawLineIsSentAsIs();
    void silentWaitsOutDeadline();
    void postConsumesQueuedReply();
    void disconnectedRefusesRequests();
    void linkSignals();
    void emitEventLine();
    void clearRequests();

private:
    ScriptedTransport *m_transport = nullptr;
};

void TestScriptedTransport::init()
{
    orba::ModuleManager::resetRoot();
    m_transport = new ScriptedTransport;
}

void TestScriptedTransport::cleanup()
{
    delete m_transport;
    m_transport = nullptr;
    orba::ModuleManager::resetRoot();
}

void TestScriptedTransport::recordsRequest_data()
{
    QTest::addColumn<QByteArray>("line");
    QTest::addColumn<QString>("op");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("paramsJson");

    QTest::newRow("exec without params") << j("{'id':1,'op':'exec','method':'tray.query.list'}")
                                         << "exec" << "tray.query.list" << "" << QByteArray("null");
    QTest::newRow("exec with object") << j("{'id':2,'op':'exec','method':'tray.del_one','params':{'index':0,'name':'a'}}")
                                      << "exec" << "tray.del_one" << "" << j("{'index':0,'name':'a'}");
    QTest::newRow("get with key") << j("{'id':3,'op':'get','method':'data.var','params':{'type':'joint'},'key':'p10'}")
                                  << "get" << "data.var" << "p10" << j("{'type':'joint'}");
    QTest::newRow("watch flag") << j("{'id':4,'op':'watch','method':'move.last_error_with_setting','params':true}")
                                << "watch" << "move.last_error_with_setting" << "" << QByteArray("true");
    QTest::newRow("array params") << j("{'id':5,'op':'set','method':'tray.data','params':[1,'x',false]}")
                                  << "set" << "tray.data" << "" << j("[1,'x',false]");
    QTest::newRow("garbage line") << QByteArray("not json at all") << "" << "" << "" << QByteArray("null");
}

void TestScriptedTransport::recordsRequest()
{
    QFETCH(QByteArray, line);
    QFETCH(QString, op);
    QFETCH(QString, method);
    QFETCH(QString, key);
    QFETCH(QByteArray, paramsJson);

    QVERIFY(m_transport->request(7, line, 100).has_value());
    const QList<ScriptedTransport::Request> requests = m_transport->requests();
    QCOMPARE(requests.size(), 1);
    const ScriptedTransport::Request &r = requests.first();
    QCOMPARE(r.op, op);
    QCOMPARE(r.method, method);
    QCOMPARE(r.key, key);
    QCOMPARE(r.paramsJson, paramsJson);
    if (paramsJson == "null") {
        QVERIFY(!r.params);
    } else {
        QVERIFY(r.params);
        QCOMPARE(orba::json::write(r.params.get()), paramsJson);
    }
}

void TestScriptedTransport::replyPreference_data()
{
    QTest::addColumn<bool>("queued");
    QTest::addColumn<bool>("standing");
    QTest::addColumn<bool>("handler");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("queue first") << true << true << true << j("{'id':9,'result':{'status':1,'data':'q'}}");
    QTest::newRow("standing before handler") << false << true << true << j("{'id':9,'result':{'status':2,'data':'s'}}");
    QTest::newRow("handler") << false << false << true << j("{'id':9,'result':{'status':3,'data':'h'}}");
    QTest::newRow("default success") << false << false << false << j("{'id':9,'result':{'status':0}}");
}

void TestScriptedTransport::replyPreference()
{
    QFETCH(bool, queued);
    QFETCH(bool, standing);
    QFETCH(bool, handler);
    QFETCH(QByteArray, expected);

    if (queued)
        m_transport->queueReply("sys.power", 1, j("'q'"));
    if (standing)
        m_transport->setReply("sys.power", 2, j("'s'"));
    if (handler) {
        m_transport->setHandler([](const ScriptedTransport::Request &) {
            ScriptedTransport::Reply r;
            r.status = 3;
            r.dataJson = j("'h'");
            return r;
        });
    }
    const auto reply = m_transport->request(9, j("{'id':9,'op':'get','method':'sys.power'}"), 100);
    QVERIFY(reply.has_value());
    QCOMPARE(*reply, expected);
}

void TestScriptedTransport::handlerSeesRequest()
{
    QString seen;
    m_transport->setHandler([&seen](const ScriptedTransport::Request &r) {
        seen = r.method + "/" + r.params->getString();
        ScriptedTransport::Reply reply;
        reply.status = -4;
        return reply;
    });
    // The queue drains one per request, then the handler answers.
    m_transport->queueReply("sys.power", 0, j("'on'"));
    QCOMPARE(*m_transport->request(1, j("{'id':1,'op':'set','method':'sys.power','params':'off'}"), 100),
             j("{'id':1,'result':{'status':0,'data':'on'}}"));
    QVERIFY(seen.isEmpty());
    QCOMPARE(*m_transport->request(2, j("{'id':2,'op':'set','method':'sys.power','params':'off'}"), 100),
             j("{'id':2,'result':{'status':-4}}"));
    QCOMPARE(seen, QString("sys.power/off"));
}

void TestScriptedTransport::errorReplyLine()
{
    ScriptedTransport::Reply r;
    r.errorCode = -32601;
    r.errorMessage = "unknown \"command\"";
    m_transport->setReply("x.y", r);
    QCOMPARE(*m_transport->request(3, j("{'id':3,'op':'exec','method':'x.y'}"), 100),
             QByteArray("{\"id\":3,\"error\":{\"code\":-32601,\"message\":\"unknown \\\"command\\\"\"}}"));
}

void TestScriptedTransport::rawLineIsSentAsIs()
{
    ScriptedTransport::Reply r;
    r.rawLine = "}{ garbage";
    m_transport->queueReply("sys.posture", r);
    QCOMPARE(*m_transport->request(3, j("{'id':3,'op':'get','method':'sys.posture'}"), 100), QByteArray("}{ garbage"));
}

void TestScriptedTransport::silentWaitsOutDeadline()
{
    m_transport->setSilent("move.l.check");
    QElapsedTimer clock;
    clock.start();
    QVERIFY(!m_transport->request(1, j("{'id':1,'op':'exec','method':'move.l.check'}"), 150).has_value());
    QVERIFY(clock.elapsed() >= 140);
    QVERIFY(clock.elapsed() < 2000);
    QCOMPARE(m_transport->methods(), QStringList{"move.l.check"});

    m_transport->setSilent("move.l.check", false);
    QVERIFY(m_transport->request(2, j("{'id':2,'op':'exec','method':'move.l.check'}"), 150).has_value());
}

void TestScriptedTransport::postConsumesQueuedReply()
{
    m_transport->queueReply("move.opr.enough", -9);
    QVERIFY(m_transport->post(j("{'id':1,'op':'exec','method':'move.opr.enough'}")));
    QCOMPARE(*m_transport->request(2, j("{'id':2,'op':'exec','method':'move.opr.enough'}"), 100),
             j("{'id':2,'result':{'status':0}}"));
    QCOMPARE(m_transport->methods(), (QStringList{"move.opr.enough", "move.opr.enough"}));
}

void TestScriptedTransport::disconnectedRefusesRequests()
{
    m_transport->setConnected(false);
    QVERIFY(!m_transport->isConnected());
    QVERIFY(!m_transport->request(1, j("{'id':1,'op':'exec','method':'a'}"), 100).has_value());
    QVERIFY(!m_transport->post(j("{'id':2,'op':'exec','method':'a'}")));
    QVERIFY(m_transport->requests().isEmpty());
}

void TestScriptedTransport::linkSignals()
{
    QSignalSpy up(m_transport, &orbat::Transport::connected);
    QSignalSpy down(m_transport, &orbat::Transport::disconnected);
    QVERIFY(m_transport->isConnected());
    m_transport->setConnected(true);
    QCOMPARE(up.count(), 0);
    m_transport->close();
    QCOMPARE(down.count(), 1);
    m_transport->open();
    QCOMPARE(up.count(), 1);
    m_transport->setConnected(false);
    m_transport->setConnected(true);
    QCOMPARE(down.count(), 2);
    QCOMPARE(up.count(), 2);
    QCOMPARE(m_transport->peerName(), QString("scripted"));
}

void TestScriptedTransport::emitEventLine()
{
    QSignalSpy events(m_transport, &orbat::Transport::eventLine);
    m_transport->emitEvent("move.last_error_with_setting", j("{'error':3}"));
    m_transport->emitEvent("sys.power", QByteArray());
    QCOMPARE(events.count(), 2);
    QCOMPARE(events.at(0).at(0).toByteArray(), j("{'event':'move.last_error_with_setting','data':{'error':3}}"));
    QCOMPARE(events.at(1).at(0).toByteArray(), j("{'event':'sys.power','data':null}"));
}

void TestScriptedTransport::clearRequests()
{
    m_transport->request(1, j("{'id':1,'op':'exec','method':'a'}"), 100);
    m_transport->request(2, j("{'id':2,'op':'get','method':'b'}"), 100);
    QCOMPARE(m_transport->methods(), (QStringList{"a", "b"}));
    m_transport->clearRequests();
    QVERIFY(m_transport->requests().isEmpty());
    QVERIFY(m_transport->methods().isEmpty());
}

QTEST_GUILESS_MAIN(TestScriptedTransport)
#include "tst_scriptedtransport.moc"
