#include "toolset.h"

#include <kx/kx.h>
#include <orba/log.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <orbat/scriptedtransport.h>
#include <orbat/tservice.h>

#include <QtTest>

#include <memory>

namespace {

// Every leaf below `node`, as a path relative to it, in tree order.
void collectLeaves(orba::ModuleObject *node, const QString &prefix, QList<QPair<QString, orba::ModuleObject *>> &out)
{
    for (orba::ModuleObject *child : node->cmobjs(false)) {
        const QString path = prefix.isEmpty() ? child->name() : prefix + QLatin1Char('.') + child->name();
        if (child->cmobjCount() == 0)
            out << qMakePair(path, child);
        else
            collectLeaves(child, path, out);
    }
}

void fillToolset(orba::ModuleObject *toolset, double base)
{
    for (int i = 0; i < 3; ++i) {
        toolset->set(nullptr, QStringLiteral("end.trans.#%1").arg(i), base + i, true);
        toolset->set(nullptr, QStringLiteral("end.rot.#%1").arg(i), base + 10 + i, true);
        toolset->set(nullptr, QStringLiteral("ref.trans.#%1").arg(i), base + 20 + i, true);
        toolset->set(nullptr, QStringLiteral("ref.rot.#%1").arg(i), base + 30 + i, true);
        toolset->set(nullptr, QStringLiteral("load.cog.#%1").arg(i), base + 40 + i, true);
        toolset->set(nullptr, QStringLiteral("load.inertia.#%1").arg(i), base + 50 + i, true);
    }
    toolset->set(nullptr, QStringLiteral("load.mass"), base + 60, true);
}

QStringList toolsetWriteOrder()
{
    QStringList order;
    for (int i = 0; i < 3; ++i) {
        for (const char *path : {"end.trans", "end.rot", "ref.trans", "ref.rot", "load.cog", "load.inertia"})
            order << QStringLiteral("%1.#%2").arg(QLatin1String(path)).arg(i);
    }
    order << QStringLiteral("load.mass");
    return order;
}

} // namespace

class TestToolset : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void identityToolsetWritesEveryNumberInOrder();
    void identityToolsetBuildsLayoutFromNothing();
    void identityToolLeavesReferenceFrame();
    void identityToolWriteOrder();
    void identityPointWriteOrder();
    void identityPointBuildsLayoutFromNothing();
    void identityIgnoresNull();
    void nullToolsetSendsNothing();
    void missingToolsetSendsNothing();
    void sendsCopyWithPalletName();
    void resetRefZeroesCopyOnly();
    void resetEndZeroesCopyOnly();
    void replyStatusDecides_data();
    void replyStatusDecides();
    void failureLeavesHostNodesAlone();
    void toolPageNodePreferred();
    void bodyNodeWhenToolPageMissing();
    void toolsetOutsidePalletSendsEmptyName();
    void noControllerFails();

private:
    orba::ModuleObject *makePallet(const QString &name);
    QStringList messages(const QString &tagPrefix) const;

    std::unique_ptr<orbat::ScriptedTransport> m_transport;
    QList<orba::LogLine> m_logLines;
};

void TestToolset::initTestCase()
{
    orba::setConsoleLogEnabled(false);
}

void TestToolset::init()
{
    orba::ModuleManager::resetRoot();
    m_logLines.clear();
    m_transport = std::make_unique<orbat::ScriptedTransport>();
    tservice()->setTransport(m_transport.get());
    m_transport->setConnected(true);
    m_transport->clearRequests();
    orba::setLogHook([this](const orba::LogLine &line) { m_logLines << line; });
}

void TestToolset::cleanup()
{
    orba::setLogHook(nullptr);
    tservice()->setTransport(nullptr);
    m_transport.reset();
    orba::ModuleManager::resetRoot();
}

orba::ModuleObject *TestToolset::makePallet(const QString &name)
{
    orba::ModuleObject *pallet = kx::globalNode(QStringLiteral("tpallet.pallets"))->append(nullptr, QStringLiteral("#0"));
    pallet->set(nullptr, QStringLiteral("name"), name, true);
    fillToolset(pallet->append(nullptr, QStringLiteral("calibrate"))->append(nullptr, QStringLiteral("toolset")), 1.0);
    return pallet;
}

QStringList TestToolset::messages(const QString &tagPrefix) const
{
    QStringList out;
    for (const orba::LogLine &line : m_logLines) {
        if (line.tag.startsWith(tagPrefix))
            out << line.message;
    }
    return out;
}

void TestToolset::identityToolsetWritesEveryNumberInOrder()
{
    orba::ModuleObject *toolset = orba::m()->append(nullptr, QStringLiteral("toolset"));
    fillToolset(toolset, 5.0);
    toolset->set(nullptr, QStringLiteral("name"), QStringLiteral("kept"), true);

    QList<QPair<QString, orba::ModuleObject *>> leaves;
    collectLeaves(toolset, QString(), leaves);
    QStringList written;
    for (const auto &leaf : leaves) {
        const QString path = leaf.first;
        connect(leaf.second, &orba::ModuleObject::changed, this,
                [&written, path](const QVariant &, const QVariant &, QObject *) { written << path; });
    }

    tpallet::identityToolsetNode(toolset);
    QCOMPARE(written, toolsetWriteOrder());
    for (const auto &leaf : leaves) {
        if (leaf.first == QLatin1String("name"))
            continue;
        QCOMPARE(leaf.second->value(), QVariant(0.0));
    }
    QCOMPARE(toolset->c(QStringLiteral("name"))->getString(), QStringLiteral("kept"));
}

void TestToolset::identityToolsetBuildsLayoutFromNothing()
{
    orba::ModuleObject *toolset = orba::m()->append(nullptr, QStringLiteral("toolset"));
    tpallet::identityToolsetNode(toolset);
    QCOMPARE(toolset->cmobjNames(), (QStringList{"end", "ref", "load"}));
    QCOMPARE(toolset->c(QStringLiteral("end"))->cmobjNames(), (QStringList{"trans", "rot"}));
    QCOMPARE(toolset->c(QStringLiteral("load"))->cmobjNames(), (QStringList{"cog", "inertia", "mass"}));
    QList<QPair<QString, orba::ModuleObject *>> leaves;
    collectLeaves(toolset, QString(), leaves);
    QCOMPARE(leaves.size(), 19);
    for (const auto &leaf : leaves)
        QCOMPARE(leaf.second->value().userType(), int(QMetaType::Double));
}

void TestToolset::identityToolLeavesReferenceFrame()
{
    orba::ModuleObject *tool = orba::m()->append(nullptr, QStringLiteral("tool"));
    fillToolset(tool, 2.0);
    tpallet::identityToolNode(tool);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(tool->r(QStringLiteral("ref.trans.#%1").arg(i))->getDouble(), 2.0 + 20 + i);
        QCOMPARE(tool->r(QStringLiteral("ref.rot.#%1").arg(i))->getDouble(), 2.0 + 30 + i);
        QCOMPARE(tool->r(QStringLiteral("end.trans.#%1").arg(i))->value(), QVariant(0.0));
        QCOMPARE(tool->r(QStringLiteral("load.inertia.#%1").arg(i))->value(), QVariant(0.0));
    }
    QCOMPARE(tool->r(QStringLiteral("load.mass"))->value(), QVariant(0.0));

    orba::ModuleObject *bare = orba::m()->append(nullptr, QStringLiteral("bare"));
    tpallet::identityToolNode(bare);
    QVERIFY(!bare->hasCmobj(QStringLiteral("ref")));
}

void TestToolset::identityToolWriteOrder()
{
    orba::ModuleObject *tool = orba::m()->append(nullptr, QStringLiteral("tool"));
    fillToolset(tool, 3.0);
    QList<QPair<QString, orba::ModuleObject *>> leaves;
    collectLeaves(tool, QString(), leaves);
    QStringList written;
    for (const auto &leaf : leaves) {
        const QString path = leaf.first;
        connect(leaf.second, &orba::ModuleObject::changed, this,
                [&written, path](const QVariant &, const QVariant &, QObject *) { written << path; });
    }
    tpallet::identityToolNode(tool);
    QStringList want;
    for (int i = 0; i < 3; ++i) {
        for (const char *path : {"end.trans", "end.rot", "load.cog", "load.inertia"})
            want << QStringLiteral("%1.#%2").arg(QLatin1String(path)).arg(i);
    }
    want << QStringLiteral("load.mass");
    QCOMPARE(written, want);
}

void TestToolset::identityPointWriteOrder()
{
    orba::ModuleObject *point = orba::m()->append(nullptr, QStringLiteral("point"));
    for (int i = 0; i < 3; ++i) {
        point->set(nullptr, QStringLiteral("trans.#%1").arg(i), 1.0 + i, true);
        point->set(nullptr, QStringLiteral("rot.#%1").arg(i), 2.0 + i, true);
    }
    for (int i = 0; i < 6; ++i)
        point->set(nullptr, QStringLiteral("near.#%1").arg(i), 3.0 + i, true);
    QList<QPair<QString, orba::ModuleObject *>> leaves;
    collectLeaves(point, QString(), leaves);
    QStringList written;
    for (const auto &leaf : leaves) {
        const QString path = leaf.first;
        connect(leaf.second, &orba::ModuleObject::changed, this,
                [&written, path](const QVariant &, const QVariant &, QObject *) { written << path; });
    }
    tpallet::identityPointNode(point);
    QCOMPARE(written, (QStringList{"trans.#0", "rot.#0", "trans.#1", "rot.#1", "trans.#2", "rot.#2", "near.#0",
                                   "near.#1", "near.#2", "near.#3", "near.#4", "near.#5"}));
}

void TestToolset::identityPointBuildsLayoutFromNothing()
{
    orba::ModuleObject *point = orba::m()->append(nullptr, QStringLiteral("point"));
    tpallet::identityPointNode(point);
    QCOMPARE(point->cmobjNames(), (QStringList{"trans", "rot", "near"}));
    QCOMPARE(point->c(QStringLiteral("trans"))->size(), 3);
    QCOMPARE(point->c(QStringLiteral("rot"))->size(), 3);
    QCOMPARE(point->c(QStringLiteral("near"))->size(), 6);
    QCOMPARE(point->r(QStringLiteral("near.#5"))->value(), QVariant(0.0));
}

void TestToolset::identityIgnoresNull()
{
    tpallet::identityToolsetNode(nullptr);
    tpallet::identityToolNode(nullptr);
    tpallet::identityPointNode(nullptr);
    tpallet::identityPointNode(orba::ModuleManager::emptyMobj());
    QVERIFY(orba::ModuleManager::emptyMobj()->isNull());
}

void TestToolset::nullToolsetSendsNothing()
{
    orba::ModuleObject *pallet = makePallet(QStringLiteral("tray0"));
    orba::ModuleObject *calibrate = pallet->c(QStringLiteral("calibrate"));
    calibrate->remove(nullptr, calibrate->c(QStringLiteral("toolset")));
    orba::ModuleObject *toolset = calibrate->append(nullptr, QStringLiteral("toolset")); // as in the template
    QVERIFY(toolset->isNull());

    QVERIFY(!tpallet::switchToToolset(toolset, false, false));
    QVERIFY(m_transport->requests().isEmpty());
    QCOMPARE(messages(QStringLiteral("[E|")), QStringList{QStringLiteral("invalid toolset")});
    QCOMPARE(m_logLines.first().colour, QStringLiteral("\033[31m"));
    QVERIFY(m_logLines.first().filePath.endsWith(QStringLiteral("log/tpallet.log")));
    QVERIFY(kx::globalNode(QStringLiteral("tormo.body.toolset"))->isNull());
}

void TestToolset::missingToolsetSendsNothing()
{
    QVERIFY(!tpallet::switchToToolset(nullptr, true, true));
    QVERIFY(!tpallet::switchToToolset(orba::ModuleManager::emptyMobj(), true, true));
    QVERIFY(m_transport->requests().isEmpty());
    QCOMPARE(messages(QStringLiteral("[E|")), (QStringList{"invalid toolset", "invalid toolset"}));
}

void TestToolset::sendsCopyWithPalletName()
{
    orba::ModuleObject *pallet = makePallet(QStringLiteral("tray7"));
    orba::ModuleObject *toolset = pallet->r(QStringLiteral("calibrate.toolset"));
    orba::ModuleObject stored(QStringLiteral("stored"));
    stored.copyFrom(nullptr, toolset, true, false);

    QVERIFY(tpallet::switchToToolset(toolset, false, false));
    const QList<orbat::ScriptedTransport::Request> requests = m_transport->requests();
    QCOMPARE(requests.size(), 1);
    QCOMPARE(requests[0].op, QStringLiteral("set"));
    QCOMPARE(requests[0].method, QStringLiteral("sys.toolset"));
    orba::ModuleObject *sent = requests[0].params.get();
    QVERIFY(sent);
    QCOMPARE(sent->cmobjNames(), (QStringList{"end", "ref", "load", "name"}));
    QCOMPARE(sent->c(QStringLiteral("name"))->getString(), QStringLiteral("tray7"));
    for (const char *part : {"end", "ref", "load"})
        QVERIFY(sent->c(QLatin1String(part))->equals(toolset->c(QLatin1String(part))));
    // Only the copy carries the name.
    QVERIFY(toolset->equals(&stored));
    QVERIFY(!toolset->hasCmobj(QStringLiteral("name")));
}

void TestToolset::resetRefZeroesCopyOnly()
{
    orba::ModuleObject *pallet = makePallet(QStringLiteral("tray0"));
    orba::ModuleObject *toolset = pallet->r(QStringLiteral("calibrate.toolset"));
    orba::ModuleObject stored(QStringLiteral("stored"));
    stored.copyFrom(nullptr, toolset, true, false);

    QVERIFY(tpallet::switchToToolset(toolset, true, false));
    orba::ModuleObject *sent = m_transport->requests().value(0).params.get();
    QVERIFY(sent);
    for (int i = 0; i < 3; ++i) {
        // Written as the integer 0, not 0.0.
        QCOMPARE(sent->r(QStringLiteral("ref.trans.#%1").arg(i))->value(), QVariant(0));
        QCOMPARE(sent->r(QStringLiteral("ref.rot.#%1").arg(i))->value(), QVariant(0));
        QCOMPARE(sent->r(QStringLiteral("ref.trans.#%1").arg(i))->value().userType(), int(QMetaType::Int));
        QCOMPARE(sent->r(QStringLiteral("end.trans.#%1").arg(i))->getDouble(), 1.0 + i);
    }
    QVERIFY(sent->c(QStringLiteral("load"))->equals(toolset->c(QStringLiteral("load"))));
    QVERIFY(toolset->equals(&stored));
    QCOMPARE(toolset->r(QStringLiteral("ref.trans.#0"))->getDouble(), 21.0);
}

void TestToolset::resetEndZeroesCopyOnly()
{
    orba::ModuleObject *pallet = makePallet(QStringLiteral("tray0"));
    orba::ModuleObject *toolset = pallet->r(QStringLiteral("calibrate.toolset"));
    orba::ModuleObject stored(QStringLiteral("stored"));
    stored.copyFrom(nullptr, toolset, true, false);

    QVERIFY(tpallet::switchToToolset(toolset, false, true));
    orba::ModuleObject *sent = m_transport->requests().value(0).params.get();
    QVERIFY(sent);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(sent->r(QStringLiteral("end.trans.#%1").arg(i))->value(), QVariant(0));
        QCOMPARE(sent->r(QStringLiteral("end.rot.#%1").arg(i))->value(), QVariant(0));
        QCOMPARE(sent->r(QStringLiteral("ref.rot.#%1").arg(i))->getDouble(), 31.0 + i);
    }
    QCOMPARE(sent->r(QStringLiteral("load.mass"))->getDouble(), 61.0);
    QVERIFY(toolset->equals(&stored));
}

void TestToolset::replyStatusDecides_data()
{
    QTest::addColumn<int>("status");
    QTest::addColumn<bool>("accepted");
    QTest::newRow("zero is success") << 0 << true;
    QTest::newRow("positive is success") << 3 << true;
    QTest::newRow("minus one fails") << -1 << false;
    QTest::newRow("large negative fails") << -42 << false;
}

void TestToolset::replyStatusDecides()
{
    QFETCH(int, status);
    QFETCH(bool, accepted);
    m_transport->setReply(QStringLiteral("sys.toolset"), status);
    orba::ModuleObject *pallet = makePallet(QStringLiteral("tray3"));
    kx::globalNode(QStringLiteral("tormo.toolpage.toolset"))->setValue(nullptr, QStringLiteral("previous"), true);

    QCOMPARE(tpallet::switchToToolset(pallet->r(QStringLiteral("calibrate.toolset")), false, false), accepted);
    QCOMPARE(m_transport->methods(), QStringList{QStringLiteral("sys.toolset")});
    if (accepted) {
        QCOMPARE(messages(QStringLiteral("[I|")), QStringList{QStringLiteral("set toolset success")});
        QVERIFY(messages(QStringLiteral("[E|")).isEmpty());
        const orba::LogLine line = m_logLines.last();
        QCOMPARE(line.colour, QStringLiteral("\033[36m"));
        QVERIFY(QRegularExpression(QStringLiteral("^\\[I\\|\\d\\d/\\d\\d \\d\\d:\\d\\d:\\d\\d\\.\\d\\d\\d\\]$"))
                    .match(line.tag)
                    .hasMatch());
        QCOMPARE(orba::m(QStringLiteral("tormo.toolpage.toolset"))->getString(), QStringLiteral("tray3"));
    } else {
        QCOMPARE(messages(QStringLiteral("[E|")), QStringList{QStringLiteral("set toolset failed")});
        QVERIFY(messages(QStringLiteral("[I|")).isEmpty());
        QCOMPARE(orba::m(QStringLiteral("tormo.toolpage.toolset"))->getString(), QStringLiteral("previous"));
    }
}

void TestToolset::failureLeavesHostNodesAlone()
{
    m_transport->setReply(QStringLiteral("sys.toolset"), -5);
    orba::ModuleObject *pallet = makePallet(QStringLiteral("tray0"));
    QVERIFY(!tpallet::switchToToolset(pallet->r(QStringLiteral("calibrate.toolset")), true, true));
    QVERIFY(orba::m(QStringLiteral("tormo.toolpage.toolset"))->isNull());
    QVERIFY(orba::m(QStringLiteral("tormo.body.toolset"))->isNull());
}

void TestToolset::toolPageNodePreferred()
{
    kx::globalNode(QStringLiteral("tormo.toolpage.toolset"))->setValue(nullptr, QStringLiteral("tool0"), true);
    kx::globalNode(QStringLiteral("tormo.body.toolset"))->setValue(nullptr, QStringLiteral("body0"), true);
    orba::ModuleObject *pallet = makePallet(QStringLiteral("trayA"));
    QVERIFY(tpallet::switchToToolset(pallet->r(QStringLiteral("calibrate.toolset")), false, false));
    QCOMPARE(orba::m(QStringLiteral("tormo.toolpage.toolset"))->getString(), QStringLiteral("trayA"));
    QCOMPARE(orba::m(QStringLiteral("tormo.body.toolset"))->getString(), QStringLiteral("body0"));
}

void TestToolset::bodyNodeWhenToolPageMissing()
{
    orba::ModuleObject *pallet = makePallet(QStringLiteral("trayB"));
    QVERIFY(tpallet::switchToToolset(pallet->r(QStringLiteral("calibrate.toolset")), false, false));
    QCOMPARE(orba::m(QStringLiteral("tormo.body.toolset"))->getString(), QStringLiteral("trayB"));
    QVERIFY(orba::m(QStringLiteral("tormo.toolpage.toolset"))->isNull());
}

void TestToolset::toolsetOutsidePalletSendsEmptyName()
{
    orba::ModuleObject loose(QStringLiteral("toolset"));
    fillToolset(&loose, 0.5);
    QVERIFY(tpallet::switchToToolset(&loose, false, false));
    orba::ModuleObject *sent = m_transport->requests().value(0).params.get();
    QVERIFY(sent);
    QVERIFY(sent->hasCmobj(QStringLiteral("name")));
    QCOMPARE(sent->c(QStringLiteral("name"))->getString(QStringLiteral("missing")), QString());
    QVERIFY(!loose.hasCmobj(QStringLiteral("name")));
}

void TestToolset::noControllerFails()
{
    tservice()->setTransport(nullptr);
    orba::ModuleObject *pallet = makePallet(QStringLiteral("tray0"));
    QVERIFY(!tpallet::switchToToolset(pallet->r(QStringLiteral("calibrate.toolset")), false, false));
    // The service logs the missing link itself; the module adds its own line.
    QCOMPARE(messages(QStringLiteral("[E|")).count(QStringLiteral("set toolset failed")), 1);
    QVERIFY(messages(QStringLiteral("[I|")).isEmpty());
    QVERIFY(orba::m(QStringLiteral("tormo.body.toolset"))->isNull());
}

QTEST_MAIN(TestToolset)
#include "tst_toolset.moc"
