#include "hostnodes.h"
#include "pendanttestutil.h"

#include <kx/kx.h>
#include <orba/moduleobject.h>

#include <QtTest>

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
    QCOMPARE(orba::m(QStringLiteral("tormo.setting.g_wobj.g_wobjs"))->size(), 0);
}

QTEST_MAIN(TestHostNodes)
#include "tst_hostnodes.moc"
