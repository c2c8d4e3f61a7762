#include "hostnodes.h"
#include "pendanttestutil.h"

#include <kx/kx.h>
#include <orba/moduleobject.h>

#include <tcore/managerhelper.h>

#include <QtTest>

#include <cmath>

class TestHostNodes : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void startValues_data();
    void startValues();
    void levelClamped_data();
    void levelClamped();
    void projectListsFromController();
    void projectListsWithoutController();
    void rememberedDirectories();
    void globalListsFromSettings();
    void globalListsSeededOnFreshPendant();
    void toolpageChoiceBecomesActiveToolset_data();
    void toolpageChoiceBecomesActiveToolset();
    void namedToolsetIsLeftAlone();
    void stationaryToolIsRefused();
    void toolOffsetMovesReportedPosture();
};

void TestHostNodes::init()
{
    resetHost();
}

void TestHostNodes::cleanup()
{
    tservice()->setTransport(nullptr);
}

void TestHostNodes::startValues_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("level") << "tcore.r.level" << QVariant(3);
    QTest::newRow("tool page tool") << "tormo.toolpage.tool" << QVariant("tool0");
    QTest::newRow("tool page wobj") << "tormo.toolpage.wobj" << QVariant("wobj0");
    QTest::newRow("tool page toolset empty") << "tormo.toolpage.toolset" << QVariant("");
    QTest::newRow("body toolset empty") << "tormo.body.toolset" << QVariant("");
    QTest::newRow("import dir empty") << "tormo.help.file_path.import" << QVariant("");
    QTest::newRow("export dir empty") << "tormo.help.file_path.export" << QVariant("");
}

void TestHostNodes::startValues()
{
    QFETCH(QString, path);
    QFETCH(QVariant, value);
    HostNodes nodes;
    nodes.create(3);
    orba::ModuleObject *node = orba::m(path);
    QVERIFY2(!node->isEmpty(), qPrintable(path));
    QCOMPARE(node->value().toString(), value.toString());
    // The toolset nodes are set, not null: the module publishes its toolset there.
    QVERIFY(!orba::m(QStringLiteral("tormo.toolpage.toolset"))->isNull());
    for (const char *list : {"tormo.project.tool.system_list", "tormo.project.tool._list",
                             "tormo.project.wobj.system_list", "tormo.project.wobj._list",
                             "tormo.setting.g_tool.g_tools", "tormo.setting.g_wobj.g_wobjs"})
        QVERIFY2(orba::m(QLatin1String(list))->hasValue() || !orba::m(QLatin1String(list))->isEmpty(), list);
}

void TestHostNodes::levelClamped_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<int>("stored");
    QTest::newRow("0") << 0 << 0;
    QTest::newRow("4") << 4 << 4;
    QTest::newRow("below") << -3 << 0;
    QTest::newRow("above") << 9 << 4;
}

void TestHostNodes::levelClamped()
{
    QFETCH(int, level);
    QFETCH(int, stored);
    HostNodes nodes;
    nodes.create(level);
    QCOMPARE(HostNodes::level(), stored);
    QCOMPARE(orba::m(QStringLiteral("tcore.r.level"))->value().userType(), int(QMetaType::Int));
}

void TestHostNodes::projectListsFromController()
{
    EmbeddedLink link;
    QVERIFY2(link.start(), qPrintable(link.error()));
    HostNodes nodes;
    nodes.create(3);
    QVERIFY(nodes.refreshProject());

    orba::ModuleObject *system = orba::m(QStringLiteral("tormo.project.tool.system_list"));
    orba::ModuleObject *project = orba::m(QStringLiteral("tormo.project.tool._list"));
    QCOMPARE(system->size(), 1);
    QCOMPARE(system->r(QStringLiteral("#0.name"))->getString(), QStringLiteral("tool0"));
    QVERIFY(project->size() >= 1);
    for (orba::ModuleObject *tool : project->cmobjs()) {
        QVERIFY(!tool->c(QStringLiteral("name"))->getString().isEmpty());
        QVERIFY(tool->c(QStringLiteral("name"))->getString() != QLatin1String("tool0"));
        QVERIFY(tool->hasRmobj(QStringLiteral("frame.pos.x")));
        QVERIFY(tool->hasRmobj(QStringLiteral("frame.ori.euler.c")));
        QVERIFY(tool->hasRmobj(QStringLiteral("load.mass")));
        QCOMPARE(tool->r(QStringLiteral("load.moment"))->size(), 3);
    }
    QCOMPARE(project->c(0)->name(), QStringLiteral("#0"));
    QCOMPARE(orba::m(QStringLiteral("tormo.project.wobj.system_list.#0.name"))->getString(), QStringLiteral("wobj0"));
    QVERIFY(orba::m(QStringLiteral("tormo.project.wobj._list"))->size() >= 1);

    // A second refresh replaces the lists, it does not append.
    const int count = project->size();
    QVERIFY(nodes.refreshProject());
    QCOMPARE(orba::m(QStringLiteral("tormo.project.tool._list"))->size(), count);
}

void TestHostNodes::projectListsWithoutController()
{
    HostNodes nodes;
    nodes.create(3);
    orba::ModuleObject *list = orba::m(QStringLiteral("tormo.project.tool._list"));
    list->set(nullptr, QStringLiteral("#0.name"), QStringLiteral("kept"));
    QVERIFY(!nodes.refreshProject());
    QCOMPARE(orba::m(QStringLiteral("tormo.project.tool._list.#0.name"))->getString(), QStringLiteral("kept"));
}

void TestHostNodes::rememberedDirectories()
{
    {
        HostNodes nodes;
        nodes.create(3);
        orba::m(QStringLiteral("tormo.help.file_path"))->set(nullptr, QStringLiteral("import"), QStringLiteral("/media/usb/"));
        orba::m(QStringLiteral("tormo.help.file_path"))->set(nullptr, QStringLiteral("export"), QStringLiteral("/tmp/out/"));
    }
    QCOMPARE(tcore::SettingManager::getStr(QStringLiteral("file_path/import")), QStringLiteral("/media/usb/"));
    orba::ModuleManager::resetRoot();
    HostNodes again;
    again.create(3);
    QCOMPARE(orba::m(QStringLiteral("tormo.help.file_path.import"))->getString(), QStringLiteral("/media/usb/"));
    QCOMPARE(orba::m(QStringLiteral("tormo.help.file_path.export"))->getString(), QStringLiteral("/tmp/out/"));
}

void TestHostNodes::globalListsFromSettings()
{
    tcore::SettingManager::setStr(QStringLiteral("global/tools"),
                                  QStringLiteral("[{\"name\":\"g_gripper\",\"robhold\":true}]"));
    HostNodes nodes;
    nodes.create(3);
    QCOMPARE(orba::m(QStringLiteral("tormo.setting.g_tool.g_tools"))->size(), 1);
    QCOMPARE(orba::m(QStringLiteral("tormo.setting.g_tool.g_tools.#0.name"))->getString(), QStringLiteral("g_gripper"));
    // Work objects were not in the settings: the pendant's default one is offered.
    QCOMPARE(orba::m(QStringLiteral("tormo.setting.g_wobj.g_wobjs"))->size(), 1);
    QCOMPARE(orba::m(QStringLiteral("tormo.setting.g_wobj.g_wobjs.#0.name"))->getString(), QStringLiteral("g_conveyor"));
}

void TestHostNodes::globalListsSeededOnFreshPendant()
{
    HostNodes nodes;
    nodes.create(3);
    orba::ModuleObject *tool = orba::m(QStringLiteral("tormo.setting.g_tool.g_tools.#0"));
    QCOMPARE(tool->r(QStringLiteral("name"))->getString(), QStringLiteral("g_hand"));
    QVERIFY(tool->r(QStringLiteral("robhold"))->getBool());
    QCOMPARE(tool->r(QStringLiteral("frame.pos.z"))->getDouble(), 120.0);
    QCOMPARE(tool->r(QStringLiteral("load.mass"))->getDouble(), 3.0);
    QCOMPARE(tool->r(QStringLiteral("load.moment"))->size(), 3);
    QCOMPARE(orba::m(QStringLiteral("tormo.setting.g_wobj.g_wobjs.#0.frame.pos.x"))->getDouble(), 500.0);
}

namespace {

orba::MobjPtr activeToolset()
{
    return tservice()->get(nullptr, QStringLiteral("sys.toolset"));
}

void compareNear(double actual, double expected)
{
    QVERIFY2(std::abs(actual - expected) < 1e-12, qPrintable(QStringLiteral("%1 != %2").arg(actual).arg(expected)));
}

} // namespace

void TestHostNodes::toolpageChoiceBecomesActiveToolset_data()
{
    QTest::addColumn<QString>("tool");
    QTest::addColumn<QString>("wobj");
    QTest::addColumn<QVector<double>>("expected"); // end xyz c, ref xyz c, mass, cog z, inertia x
    QTest::newRow("project gripper on table") << "gripper" << "table"
        << QVector<double>{0, 0, 0.2, 0, 0.6, -0.4, 0, M_PI / 2, 4.5, 0.09, 0.0009};
    QTest::newRow("project sucker on wobj0") << "sucker" << "wobj0"
        << QVector<double>{0, 0.05, 0.15, 0, 0, 0, 0, 0, 2.0, 0.07, 0.0006};
    QTest::newRow("global hand on global conveyor") << "g_hand" << "g_conveyor"
        << QVector<double>{0, 0, 0.12, 0, 0.5, 0.3, 0.1, 0, 3.0, 0.06, 0.0008};
}

void TestHostNodes::toolpageChoiceBecomesActiveToolset()
{
    QFETCH(QString, tool);
    QFETCH(QString, wobj);
    QFETCH(QVector<double>, expected);
    EmbeddedLink link;
    QVERIFY2(link.start(), qPrintable(link.error()));
    HostNodes nodes;
    nodes.create(3);
    QVERIFY(nodes.refreshProject());
    orba::m(QStringLiteral("tormo.toolpage.wobj"))->setValue(nullptr, wobj, true);
    orba::m(QStringLiteral("tormo.toolpage.tool"))->setValue(nullptr, tool, true);
    orba::MobjPtr active = activeToolset();
    QVERIFY(active);
    compareNear(active->r(QStringLiteral("end.trans.#0"))->getDouble(), expected[0]);
    compareNear(active->r(QStringLiteral("end.trans.#1"))->getDouble(), expected[1]);
    compareNear(active->r(QStringLiteral("end.trans.#2"))->getDouble(), expected[2]);
    compareNear(active->r(QStringLiteral("end.rot.#2"))->getDouble(), expected[3]);
    compareNear(active->r(QStringLiteral("ref.trans.#0"))->getDouble(), expected[4]);
    compareNear(active->r(QStringLiteral("ref.trans.#1"))->getDouble(), expected[5]);
    compareNear(active->r(QStringLiteral("ref.trans.#2"))->getDouble(), expected[6]);
    compareNear(active->r(QStringLiteral("ref.rot.#2"))->getDouble(), expected[7]);
    compareNear(active->r(QStringLiteral("load.mass"))->getDouble(), expected[8]);
    compareNear(active->r(QStringLiteral("load.cog.#2"))->getDouble(), expected[9]);
    compareNear(active->r(QStringLiteral("load.inertia.#0"))->getDouble(), expected[10]);
}

void TestHostNodes::namedToolsetIsLeftAlone()
{
    EmbeddedLink link;
    QVERIFY2(link.start(), qPrintable(link.error()));
    HostNodes nodes;
    nodes.create(3);
    QVERIFY(nodes.refreshProject());
    orba::m(QStringLiteral("tormo.toolpage.tool"))->setValue(nullptr, QStringLiteral("gripper"), true);
    // A module made its pallet's toolset active and named it: the tool page's choice waits.
    orba::m(QStringLiteral("tormo.toolpage.toolset"))->setValue(nullptr, QStringLiteral("tray1"), true);
    orba::m(QStringLiteral("tormo.toolpage.tool"))->setValue(nullptr, QStringLiteral("sucker"), true);
    compareNear(activeToolset()->r(QStringLiteral("end.trans.#2"))->getDouble(), 0.2);
    // "Use Project Tool/Wobj" brings the tool page's choice back.
    orba::m(QStringLiteral("tormo.toolpage.toolset"))->setValue(nullptr, QString(QLatin1String("")), true);
    compareNear(activeToolset()->r(QStringLiteral("end.trans.#2"))->getDouble(), 0.15);
}

void TestHostNodes::stationaryToolIsRefused()
{
    EmbeddedLink link;
    QVERIFY2(link.start(), qPrintable(link.error()));
    HostNodes nodes;
    nodes.create(3);
    QVERIFY(nodes.refreshProject());
    orba::m(QStringLiteral("tormo.toolpage.tool"))->setValue(nullptr, QStringLiteral("gripper"), true);
    tcore::ManagerHelper::instance()->clearLogHistory();
    orba::m(QStringLiteral("tormo.toolpage.tool"))->setValue(nullptr, QStringLiteral("glue_gun"), true);
    QVERIFY(!nodes.applyToolpage());
    compareNear(activeToolset()->r(QStringLiteral("end.trans.#2"))->getDouble(), 0.2);
    const QList<QVariantMap> log = tcore::ManagerHelper::instance()->logHistory();
    QVERIFY(!log.isEmpty());
    QCOMPARE(log.last().value(QStringLiteral("level")).toString(), QStringLiteral("warning"));
    QVERIFY(log.last().value(QStringLiteral("text")).toString().contains(QLatin1String("glue_gun")));
}

void TestHostNodes::toolOffsetMovesReportedPosture()
{
    EmbeddedLink link;
    QVERIFY2(link.start(), qPrintable(link.error()));
    HostNodes nodes;
    nodes.create(3);
    QVERIFY(nodes.refreshProject());
    QVERIFY(nodes.applyToolpage());
    orba::MobjPtr flange = tservice()->get(nullptr, QStringLiteral("sys.posture"));
    orba::m(QStringLiteral("tormo.toolpage.tool"))->setValue(nullptr, QStringLiteral("gripper"), true);
    orba::MobjPtr tcp = tservice()->get(nullptr, QStringLiteral("sys.posture"));
    double d2 = 0;
    for (int i = 0; i < 3; ++i) {
        const double d = tcp->r(QStringLiteral("trans.#%1").arg(i))->getDouble() - flange->r(QStringLiteral("trans.#%1").arg(i))->getDouble();
        d2 += d * d;
    }
    // The gripper's centre point lies 0.2 m beyond the flange.
    QVERIFY2(std::abs(std::sqrt(d2) - 0.2) < 1e-9, qPrintable(QString::number(std::sqrt(d2))));
}

QTEST_MAIN(TestHostNodes)
#include "tst_hostnodes.moc"
