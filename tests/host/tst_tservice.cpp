#include <orbat/controllermanager.h>
#include <orbat/scriptedtransport.h>
#include <orbat/tservice.h>

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

orba::MobjPtr nodeFromJson(const QByteArray &json, const QString &name = QStringLiteral("param"))
{
    orba::MobjPtr node(new orba::ModuleObject(name));
    if (!json.isEmpty())
        orba::json::read(nullptr, node.get(), json);
    return node;
}
} // namespace

class TestTService : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void callShapes_data();
    void callShapes();
    void idsIncrease();
    void replyParsing_data();
    void replyParsing();
    void errorReplyKeepsCodeAndMessage();
    void noTransportIsNoLink();
    void disconnectedIsNoLink();
    void silentCommandTimesOut();
    void defaultTimeouts();
    void execCommandAtFillsNode();
    void execCommandAtFailureLeavesNode();
    void getReturnsData();
    void getFailureIsNullNode();
    void getAtReplacesValueAndChildren();
    void getAtFailureLeavesNode();
    void getAtPassesSender();
    void getAtWithKeySendsNode();
    void setReturnsStatus();
    void commandIsFireAndForget();
    void watchEventsReachNode();
    void watchNodeSurvivesTreeReset();
    void malformedEventsAreIgnored();
    void connectPublishesCommands();
    void connectWithoutIdKeepsOldId();
    void disconnectMarksState();
    void controllerWithoutCommandList();

private:
    ScriptedTransport *m_transport = nullptr;
};

void TestTService::init()
{
    orba::ModuleManager::resetRoot();
    m_transport = new ScriptedTransport;
    tservice()->setTransport(m_transport);
}

void TestTService::cleanup()
{
    tservice()->setTransport(nullptr);
    delete m_transport;
    m_transport = nullptr;
    tservice()->setDefaultTimeout(3000);
    orba::ModuleManager::resetRoot();
}

void TestTService::callShapes_data()
{
    QTest::addColumn<QString>("call");
    QTest::addColumn<QByteArray>("param");
    QTest::addColumn<QString>("op");
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("key");
    QTest::addColumn<QByteArray>("paramsJson");

    QTest::newRow("execCommand without param") << "execCommand" << QByteArray() << "exec" << "tray.query.list" << ""
                                               << QByteArray("null");
    QTest::newRow("execCommand with object") << "execCommand" << j("{'index':2,'name':'p1'}") << "exec"
                                             << "tray.del_one" << "" << j("{'index':2,'name':'p1'}");
    QTest::newRow("execCommandAt with value") << "execCommandAt" << QByteArray("3") << "exec" << "tray.query.one"
                                              << "" << QByteArray("3");
    QTest::newRow("command") << "command" << j("{'traj.speed':1}") << "exec" << "move.opr.enough" << ""
                             << j("{'traj.speed':1}");
    QTest::newRow("get") << "get" << QByteArray() << "get" << "sys.power" << "" << QByteArray("null");
    QTest::newRow("getAt sends no params") << "getAt" << j("{'trans':[1,2,3]}") << "get" << "sys.posture" << ""
                                           << QByteArray("null");
    QTest::newRow("getAt with key") << "getAtKey" << j("{'type':'joint'}") << "get" << "data.var" << "p20"
                                    << j("{'type':'joint'}");
    QTest::newRow("set") << "set" << QByteArray("'on'").replace('\'', '"') << "set" << "sys.power" << ""
                         << QByteArray("\"on\"");
    QTest::newRow("watch on") << "watchOn" << QByteArray() << "watch" << "move.last_error_with_setting" << ""
                              << QByteArray("true");
    QTest::newRow("watch off") << "watchOff" << QByteArray() << "watch" << "move.last_error_with_setting" << ""
                               << QByteArray("false");
}

void TestTService::callShapes()
{
    QFETCH(QString, call);
    QFETCH(QByteArray, param);
    QFETCH(QString, op);
    QFETCH(QString, method);
    QFETCH(QString, key);
    QFETCH(QByteArray, paramsJson);

    orba::MobjPtr node = nodeFromJson(param);
    orba::ModuleObject *p = param.isEmpty() ? nullptr : node.get();
    TService *s = tservice();
    if (call == "execCommand")
        QCOMPARE(s->execCommand(this, method, p)->getInt(-1), 0);
    else if (call == "execCommandAt")
        QCOMPARE(s->execCommandAt(this, method, p), 0);
    else if (call == "command")
        QVERIFY(s->command(this, method, p));
    else if (call == "get")
        QVERIFY(s->get(this, method));
    else if (call == "getAt")
        QCOMPARE(s->getAt(this, method, p, 0), 0);
    else if (call == "getAtKey")
        QCOMPARE(s->getAt(this, method, key, p), 0);
    else if (call == "set")
        QCOMPARE(s->set(this, method, p), 0);
    else if (call == "watchOn")
        QCOMPARE(s->watch(this, method, true), 0);
    else if (call == "watchOff")
        QCOMPARE(s->watch(this, method, false), 0);

    const QList<ScriptedTransport::Request> requests = m_transport->requests();
    QCOMPARE(requests.size(), 1);
    QCOMPARE(requests.first().op, op);
    QCOMPARE(requests.first().method, method);
    QCOMPARE(requests.first().key, key);
    QCOMPARE(requests.first().paramsJson, paramsJson);

    // The wire line itself: fixed key order, params only when there is something to send.
    const QByteArray line = s->lastRequestLine();
    QVERIFY(!line.contains('\n'));
    QVERIFY(line.startsWith("{\"id\":"));
    QVERIFY(line.contains(",\"op\":\"" + op.toUtf8() + "\",\"method\":\"" + method.toUtf8() + "\""));
    QCOMPARE(line.contains("\"params\":"), paramsJson != "null");
    QCOMPARE(line.contains("\"key\":"), !key.isEmpty());
}

void TestTService::idsIncrease()
{
    qint64 last = 0;
    for (int i = 0; i < 3; ++i) {
        tservice()->execCommand(this, "tray.query.list");
        orba::ModuleObject parsed;
        QVERIFY(orba::json::read(nullptr, &parsed, tservice()->lastRequestLine()));
        const qint64 id = parsed.c("id")->getInt64();
        QVERIFY(id > last);
        last = id;
    }
}

void TestTService::replyParsing_data()
{
    QTest::addColumn<QByteArray>("line"); // %ID% is replaced with the request id
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("dataJson"); // empty = no "data" child

    QTest::newRow("success with data") << j("{'id':%ID%,'result':{'status':0,'data':{'size':3}}}") << 0 << j("{'size':3}");
    QTest::newRow("success without data") << j("{'id':%ID%,'result':{'status':0}}") << 0 << QByteArray();
    QTest::newRow("negative status") << j("{'id':%ID%,'result':{'status':-1,'data':{'msg':'no such tray'}}}") << -1
                                     << j("{'msg':'no such tray'}");
    QTest::newRow("positive status") << j("{'id':%ID%,'result':{'status':2,'data':'near singularity'}}") << 2
                                     << j("'near singularity'");
    QTest::newRow("array data") << j("{'id':%ID%,'result':{'status':0,'data':[1,2.5,'x']}}") << 0 << j("[1,2.5,'x']");
    QTest::newRow("error object") << j("{'id':%ID%,'error':{'code':-32601,'message':'unknown command'}}")
                                  << int(TService::StatusError) << QByteArray();
    QTest::newRow("error with null id") << j("{'id':null,'error':{'code':-32700,'message':'parse error'}}")
                                        << int(TService::StatusError) << QByteArray();
    QTest::newRow("garbage") << QByteArray("%$#garbage") << int(TService::StatusBadReply) << QByteArray();
    QTest::newRow("empty line") << QByteArray(" ") << int(TService::StatusBadReply) << QByteArray();
    QTest::newRow("truncated") << j("{'id':%ID%,'result':{'status':0,") << int(TService::StatusBadReply) << QByteArray();
    QTest::newRow("top-level array") << j("[1,2]") << int(TService::StatusBadReply) << QByteArray();
    QTest::newRow("top-level number") << QByteArray("5") << int(TService::StatusBadReply) << QByteArray();
    QTest::newRow("no result") << j("{'id':%ID%}") << int(TService::StatusBadReply) << QByteArray();
    QTest::newRow("result not object") << j("{'id':%ID%,'result':7}") << int(TService::StatusBadReply) << QByteArray();
    QTest::newRow("status missing") << j("{'id':%ID%,'result':{'data':1}}") << int(TService::StatusBadReply) << QByteArray();
    QTest::newRow("status string") << j("{'id':%ID%,'result':{'status':'0'}}") << int(TService::StatusBadReply) << QByteArray();
    QTest::newRow("status double") << j("{'id':%ID%,'result':{'status':0.0}}") << int(TService::StatusBadReply) << QByteArray();
    QTest::newRow("status bool") << j("{'id':%ID%,'result':{'status':true}}") << int(TService::StatusBadReply) << QByteArray();
    QTest::newRow("status huge") << j("{'id':%ID%,'result':{'status':99999999999}}") << int(TService::StatusBadReply) << QByteArray();
    QTest::newRow("wrong id") << j("{'id':123456789,'result':{'status':0}}") << int(TService::StatusBadReply) << QByteArray();
    QTest::newRow("string id") << j("{'id':'1','result':{'status':0}}") << int(TService::StatusBadReply) << QByteArray();
}

void TestTService::replyParsing()
{
    QFETCH(QByteArray, line);
    QFETCH(int, status);
    QFETCH(QByteArray, dataJson);

    // Raw lines go back as they are, so the line is given the id of the request it answers.
    tservice()->execCommand(this, "probe");
    orba::ModuleObject first;
    QVERIFY(orba::json::read(nullptr, &first, tservice()->lastRequestLine()));
    const QByteArray nextId = QByteArray::number(first.c("id")->getInt64() + 1);
    m_transport->setHandler([line, nextId](const ScriptedTransport::Request &) {
        ScriptedTransport::Reply r;
        r.rawLine = QByteArray(line).replace("%ID%", nextId);
        return r;
    });

    orba::MobjPtr reply = tservice()->execCommand(this, "tray.query.list");
    QVERIFY(reply);
    QCOMPARE(reply->getInt(12345), status);
    QCOMPARE(tservice()->lastStatus(), status);
    QCOMPARE(reply->hasCmobj("data"), !dataJson.isEmpty());
    if (!dataJson.isEmpty())
        QCOMPARE(orba::json::write(reply->c("data")), dataJson);
    if (status == TService::StatusBadReply)
        QVERIFY(!reply->r("error.message")->getString().isEmpty());
}

void TestTService::errorReplyKeepsCodeAndMessage()
{
    ScriptedTransport::Reply r;
    r.errorCode = -32602;
    r.errorMessage = "bad params";
    m_transport->setReply("tray.set.name", r);
    orba::MobjPtr reply = tservice()->execCommand(this, "tray.set.name");
    QCOMPARE(reply->getInt(), int(TService::StatusError));
    QCOMPARE(reply->r("error.code")->getInt(), -32602);
    QCOMPARE(reply->r("error.message")->getString(), QString("bad params"));
    QVERIFY(!reply->hasCmobj("data"));
}

void TestTService::noTransportIsNoLink()
{
    tservice()->setTransport(nullptr);
    QCOMPARE(tservice()->execCommand(this, "tray.query.list")->getInt(), int(TService::StatusNoLink));
    QCOMPARE(tservice()->set(this, "sys.power", nullptr), int(TService::StatusNoLink));
    QVERIFY(!tservice()->command(this, "move.stop"));
    QVERIFY(tservice()->get(this, "sys.power")->isNull());
}

void TestTService::disconnectedIsNoLink()
{
    m_transport->setConnected(false);
    QCOMPARE(tservice()->execCommand(this, "tray.query.list")->getInt(), int(TService::StatusNoLink));
    QCOMPARE(tservice()->watch(this, "x", true), int(TService::StatusNoLink));
    QVERIFY(m_transport->requests().isEmpty());
}

void TestTService::silentCommandTimesOut()
{
    m_transport->setSilent("move.l.check");
    tservice()->setTimeout("move.l.check", 200);
    QElapsedTimer clock;
    clock.start();
    orba::MobjPtr reply = tservice()->execCommand(this, "move.l.check");
    const qint64 elapsed = clock.elapsed();
    tservice()->setTimeout("move.l.check", 10000);
    QCOMPARE(reply->getInt(), int(TService::StatusTimeout));
    QVERIFY(elapsed < 200 + 2000);
    // The link stays; the next command goes through.
    m_transport->setSilent("move.l.check", false);
    QCOMPARE(tservice()->execCommand(this, "move.l.check")->getInt(-1), 0);
}

void TestTService::defaultTimeouts()
{
    TService *s = tservice();
    QCOMPARE(s->defaultTimeoutMs(), 3000);
    QCOMPARE(s->timeout("sys.posture"), 3000);
    QCOMPARE(s->timeout("tray.data"), 15000);
    QCOMPARE(s->timeout("tray.set.one"), 10000);
    QCOMPARE(s->timeout("tray.add_one"), 10000);
    s->setDefaultTimeout(500);
    QCOMPARE(s->timeout("sys.posture"), 500);
    QCOMPARE(s->timeout("tray.data"), 15000);
}

void TestTService::execCommandAtFillsNode()
{
    m_transport->queueReply("tray.query.one", 0, j("{'name':'p1','row':3}"));
    orba::ModuleObject param("param");
    param.setValue(nullptr, 1);
    param.append(nullptr, "stale");
    QCOMPARE(tservice()->execCommandAt(this, "tray.query.one", &param), 0);
    QCOMPARE(param.getInt(), 1);
    QCOMPARE(param.cmobjNames(), QStringList{"data"});
    QCOMPARE(param.r("data.name")->getString(), QString("p1"));
    QCOMPARE(param.r("data.row")->getInt(), 3);
    QCOMPARE(m_transport->requests().first().paramsJson, j("{'@value':1,'stale':null}"));
}

void TestTService::execCommandAtFailureLeavesNode()
{
    m_transport->queueReply("tray.query.one", -1, j("{'msg':'out of range'}"));
    orba::ModuleObject param("param");
    param.setValue(nullptr, 9);
    param.set(nullptr, "keep", true);
    QCOMPARE(tservice()->execCommandAt(this, "tray.query.one", &param), -1);
    QCOMPARE(param.cmobjNames(), QStringList{"keep"});
    QCOMPARE(param.getInt(), 9);

    m_transport->setSilent("tray.query.one");
    tservice()->setTimeout("tray.query.one", 50);
    QCOMPARE(tservice()->execCommandAt(this, "tray.query.one", &param), int(TService::StatusTimeout));
    tservice()->setTimeout("tray.query.one", 3000);
    QCOMPARE(param.cmobjNames(), QStringList{"keep"});
}

void TestTService::getReturnsData()
{
    m_transport->queueReply("sys.power", 0, j("'on'"));
    orba::MobjPtr power = tservice()->get(this, "sys.power");
    QCOMPARE(power->getString(), QString("on"));
    QVERIFY(!power->pmobj() || power->pmobj()->isEmpty());

    m_transport->queueReply("sys.posture", 0, j("{'trans':[0.5,0,1],'rot':[0,0,0]}"));
    orba::MobjPtr pose = tservice()->get(this, "sys.posture");
    QCOMPARE(pose->cmobjNames(), (QStringList{"trans", "rot"}));
    QCOMPARE(pose->r("trans.#0")->getDouble(), 0.5);
}

void TestTService::getFailureIsNullNode()
{
    m_transport->queueReply("sys.power", -3, j("'on'"));
    orba::MobjPtr power = tservice()->get(this, "sys.power");
    QVERIFY(power);
    QVERIFY(power->isNull());
    QCOMPARE(tservice()->lastStatus(), -3);
}

void TestTService::getAtReplacesValueAndChildren()
{
    m_transport->queueReply("tray.data", 0, j("[{'name':'a'},{'name':'b'}]"));
    orba::ModuleObject *pallets = orba::m()->c("tpallet", true)->c("pallets", true);
    pallets->append(nullptr, "#0")->set(nullptr, "name", "old");
    pallets->setValue(nullptr, 5);
    QCOMPARE(tservice()->getAt(this, "tray.data", pallets, 0), 0);
    QCOMPARE(pallets->size(), 2);
    QVERIFY(!pallets->hasValue());
    QCOMPARE(pallets->r("#1.name")->getString(), QString("b"));
    QCOMPARE(orba::m("tpallet.pallets.#0.name")->getString(), QString("a"));

    m_transport->queueReply("sys.power", 0, j("'off'"));
    orba::ModuleObject power("power");
    power.append(nullptr, "x");
    QCOMPARE(tservice()->getAt(this, "sys.power", &power), 0);
    QCOMPARE(power.getString(), QString("off"));
    QCOMPARE(power.cmobjCount(), 0);
}

void TestTService::getAtFailureLeavesNode()
{
    ScriptedTransport::Reply garbage;
    garbage.rawLine = "{{{";
    m_transport->queueReply("sys.posture", garbage);
    orba::MobjPtr pose = nodeFromJson(j("{'trans':[1,2,3]}"), "p6");
    QCOMPARE(tservice()->getAt(this, "sys.posture", pose.get(), 0), int(TService::StatusBadReply));
    QCOMPARE(orba::json::write(pose.get()), j("{'trans':[1,2,3]}"));
}

void TestTService::getAtPassesSender()
{
    m_transport->queueReply("sys.power", 0, j("'on'"));
    orba::ModuleObject power("power");
    QObject *seen = nullptr;
    connect(&power, &orba::ModuleObject::changed, this,
            [&seen](const QVariant &, const QVariant &, QObject *sender) { seen = sender; });
    QCOMPARE(tservice()->getAt(this, "sys.power", &power), 0);
    QCOMPARE(seen, static_cast<QObject *>(this));
}

void TestTService::getAtWithKeySendsNode()
{
    m_transport->setHandler([](const ScriptedTransport::Request &r) {
        ScriptedTransport::Reply reply;
        if (r.key == "p20" && r.params && r.params->c("type")->getString() == "cart")
            reply.dataJson = j("{'trans':[0,0,0],'rot':[0,0,0],'near':[0,0,0,0,0,0]}");
        else
            reply.status = -1;
        return reply;
    });
    orba::MobjPtr posture = nodeFromJson(j("{'type':'cart'}"), "posture");
    QCOMPARE(tservice()->getAt(this, "data.var", "p20", posture.get()), 0);
    QCOMPARE(posture->cmobjNames(), (QStringList{"trans", "rot", "near"}));
    QCOMPARE(posture->r("near")->size(), 6);
}

void TestTService::setReturnsStatus()
{
    m_transport->queueReply("sys.toolset", -2);
    orba::MobjPtr toolset = nodeFromJson(j("{'end':{'trans':[0,0,0.1]}}"));
    QCOMPARE(tservice()->set(this, "sys.toolset", toolset.get()), -2);
    QCOMPARE(tservice()->set(this, "sys.toolset", toolset.get()), 0);
    QCOMPARE(m_transport->requests().at(1).paramsJson, orba::json::write(toolset.get()));
}

void TestTService::commandIsFireAndForget()
{
    m_transport->setSilent("move.opr.enough");
    QElapsedTimer clock;
    clock.start();
    QVERIFY(tservice()->command(this, "move.opr.enough"));
    QVERIFY(clock.elapsed() < 1000);
    QCOMPARE(m_transport->methods(), QStringList{"move.opr.enough"});
    m_transport->setConnected(false);
    QVERIFY(!tservice()->command(this, "move.opr.enough"));
}

void TestTService::watchEventsReachNode()
{
    const QString name = "move.last_error_with_setting";
    QCOMPARE(tservice()->watch(this, name, true), 0);
    orba::ModuleObject *node = tservice()->watchNode(name);
    QVERIFY(node && !node->isEmpty());
    QCOMPARE(tservice()->watchNode(name), node);
    QCOMPARE(orba::m("tservice.watch.move.last_error_with_setting"), node);

    QSignalSpy changed(node, &orba::ModuleObject::changed);
    QSignalSpy events(tservice(), &TService::watchEvent);
    const QByteArray data = j("{'error':7,'data':{'id':'E7','msg':'joint limit'}}");
    m_transport->emitEvent(name, data);
    QCOMPARE(changed.count(), 1);
    const QVariantMap map = node->value().toMap();
    QCOMPARE(map.value("error").toInt(), 7);
    QCOMPARE(map.value("data").toMap().value("msg").toString(), QString("joint limit"));

    // The same error again is still a notification.
    m_transport->emitEvent(name, data);
    QCOMPARE(changed.count(), 2);
    m_transport->emitEvent(name, j("{'error':0}"));
    QCOMPARE(changed.count(), 3);
    QCOMPARE(node->value().toMap().value("error").toInt(), 0);

    QCOMPARE(events.count(), 3);
    QCOMPARE(events.at(0).at(0).toString(), name);

    // Events of names nobody asked for still land under the watch root.
    m_transport->emitEvent("sys.power", j("'off'"));
    QCOMPARE(orba::m("tservice.watch.sys.power")->getString(), QString("off"));
}

void TestTService::watchNodeSurvivesTreeReset()
{
    orba::ModuleObject *before = tservice()->watchNode("a.b");
    QVERIFY(!before->isEmpty());
    orba::ModuleManager::resetRoot();
    orba::ModuleObject *after = tservice()->watchNode("a.b");
    QVERIFY(!after->isEmpty());
    QCOMPARE(orba::m("tservice.watch.a.b"), after);
    m_transport->emitEvent("a.b", "1");
    QCOMPARE(after->getInt(), 1);
}

void TestTService::malformedEventsAreIgnored()
{
    orba::ModuleObject *node = tservice()->watchNode("x");
    QSignalSpy changed(node, &orba::ModuleObject::changed);
    emit m_transport->eventLine("not json");
    emit m_transport->eventLine(j("{'event':3,'data':1}"));
    emit m_transport->eventLine(j("[1,2]"));
    emit m_transport->eventLine(QByteArray());
    QCOMPARE(changed.count(), 0);
    emit m_transport->eventLine(j("{'event':'x'}"));
    QCOMPARE(changed.count(), 1);
}

void TestTService::connectPublishesCommands()
{
    m_transport->setConnected(false);
    m_transport->setReply("tservice.proto.command", 0, j("['tray.query.list','tray.query.one','tray.data']"));
    m_transport->setReply("sys.id", 0, j("'rc-7'"));
    orbat::ControllerManager *manager = tservice()->controllerManager();
    QVERIFY(manager);
    QVERIFY(!manager->isConnected());
    QCOMPARE(orba::m("tcore.r.connected")->getBool(true), false);
    QSignalSpy connected(manager, &orbat::ControllerManager::rcConnected);

    m_transport->clearRequests();
    m_transport->setConnected(true);
    QCOMPARE(connected.count(), 1);
    QVERIFY(manager->isConnected());
    QCOMPARE(m_transport->methods(), (QStringList{"tservice.proto.command", "sys.id"}));
    QCOMPARE(m_transport->requests().first().op, QString("get"));
    orba::ModuleObject *list = orba::m("tservice.proto.command");
    QCOMPARE(list->size(), 3);
    QCOMPARE(list->c("#1")->getString(), QString("tray.query.one"));
    QVERIFY(manager->supports("tray.query.one"));
    QVERIFY(!manager->supports("tray.del_one"));
    QCOMPARE(manager->commands().size(), 3);
    QCOMPARE(orba::m("tcore.r.connected")->getBool(), true);
    QCOMPARE(orba::m("tcore.r.id")->getString(), QString("rc-7"));

    // A reconnection to a controller that knows fewer commands replaces the list.
    m_transport->setReply("tservice.proto.command", 0, j("['tray.data']"));
    m_transport->setConnected(false);
    m_transport->setConnected(true);
    QCOMPARE(connected.count(), 2);
    QCOMPARE(orba::m("tservice.proto.command")->size(), 1);
    QVERIFY(!manager->supports("tray.query.one"));
}

void TestTService::connectWithoutIdKeepsOldId()
{
    m_transport->setConnected(false);
    orba::m()->set(nullptr, "tcore.r.id", "previous");
    ScriptedTransport::Reply unknown;
    unknown.errorCode = -32601;
    unknown.errorMessage = "unknown";
    m_transport->setReply("sys.id", unknown);
    m_transport->setReply("tservice.proto.command", 0, j("['a',5,'b']"));
    QSignalSpy connected(tservice()->controllerManager(), &orbat::ControllerManager::rcConnected);
    m_transport->setConnected(true);
    QCOMPARE(connected.count(), 1);
    QCOMPARE(orba::m("tcore.r.id")->getString(), QString("previous"));
    // Entries that are not command names are left out.
    QCOMPARE(tservice()->controllerManager()->commands(), (QStringList{"a", "b"}));
    QCOMPARE(orba::m("tservice.proto.command.#1")->getString(), QString("b"));
}

void TestTService::disconnectMarksState()
{
    m_transport->setConnected(false);
    m_transport->setConnected(true);
    orbat::ControllerManager *manager = tservice()->controllerManager();
    QSignalSpy disconnected(manager, &orbat::ControllerManager::rcDisconnected);
    m_transport->setConnected(false);
    QCOMPARE(disconnected.count(), 1);
    QVERIFY(!manager->isConnected());
    QCOMPARE(orba::m("tcore.r.connected")->getBool(true), false);
    // Detaching a connected transport is a disconnection too.
    m_transport->setConnected(true);
    tservice()->setTransport(nullptr);
    QCOMPARE(disconnected.count(), 2);
}

void TestTService::controllerWithoutCommandList()
{
    m_transport->setConnected(false);
    orba::m()->set(nullptr, "tservice.proto.command.#0", "stale");
    m_transport->setSilent("tservice.proto.command");
    tservice()->setDefaultTimeout(100);
    QSignalSpy connected(tservice()->controllerManager(), &orbat::ControllerManager::rcConnected);
    m_transport->clearRequests();
    m_transport->setConnected(true);
    QCOMPARE(connected.count(), 1);
    QCOMPARE(orba::m("tservice.proto.command")->size(), 0);
    // No identity asked of a controller that did not answer the list.
    QCOMPARE(m_transport->methods(), QStringList{"tservice.proto.command"});
}

QTEST_GUILESS_MAIN(TestTService)
#include "tst_tservice.moc"
