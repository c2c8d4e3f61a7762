#include "hostnodes.h"
#include "mainwindow.h"
#include "moduleloader.h"
#include "navigationview.h"
#include "pendanttestutil.h"
#include "shell.h"
#include "statusbar.h"

#include <dwel/bmodule.h>
#include <dwel/centerwidget.h>
#include <kx/kx.h>
#include <orba/moduleobject.h>

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QtTest>

#include <cmath>

namespace {

bool logHas(const QString &level, const QString &titlePart)
{
    for (const QVariantMap &e : tcore::ManagerHelper::instance()->logHistory()) {
        if (e.value(QStringLiteral("level")).toString() == level
            && e.value(QStringLiteral("title")).toString().contains(titlePart))
            return true;
    }
    return false;
}

} // namespace

class TestShell : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void startsWithoutModuleDirectory();
    void startsWithoutController();
    void windowDoesNotWaitForTheStore();
    void unopenableStoreIsReported();
    void loadsTestModule();
    void pageOption_data();
    void pageOption();
    void levelReachesHostNode_data();
    void levelReachesHostNode();
    void languageReloadsModuleTranslations();
    void projectListsOnConnect();
    void linkLossAndReturn();
    void tcpLinkLossAndReturn();
    void jogFromTheWindow();

private:
    ShellOptions options(const QString &modules = QStringLiteral(PENDANT_TEST_MODULE_DIR));
    std::unique_ptr<QTemporaryDir> m_data;
};

void TestShell::init()
{
    resetHost();
    m_data = std::make_unique<QTemporaryDir>();
    QVERIFY(m_data->isValid());
}

void TestShell::cleanup()
{
    QCOMPARE(tservice()->transport(), nullptr); // the shell detached its link
    m_data.reset();
}

ShellOptions TestShell::options(const QString &modules)
{
    ShellOptions o;
    o.modulesDir = modules;
    o.dataDir = m_data->filePath(QStringLiteral("controller"));
    return o;
}

void TestShell::startsWithoutModuleDirectory()
{
    Shell shell(options(m_data->filePath(QStringLiteral("no-modules"))));
    shell.start();
    QVERIFY(shell.window());
    shell.window()->show();
    QVERIFY(EmbeddedLink::waitConnected(true));
    QVERIFY(shell.loader()->modules().isEmpty());
    QCOMPARE(shell.window()->currentPage(), NavigationView::homePage());
    QVERIFY(logHas(QStringLiteral("warning"), QStringLiteral("No module directory")));
    QCOMPARE(HostNodes::level(), 3);
    QVERIFY(shell.window()->statusBar()->isLinkUp());
    QVERIFY(QDir(m_data->filePath(QStringLiteral("controller"))).exists());
}

void TestShell::startsWithoutController()
{
    ShellOptions o = options();
    o.noController = true;
    Shell shell(o);
    shell.start();
    QVERIFY(!shell.transport());
    QVERIFY(!shell.window()->statusBar()->isLinkUp());
    // Modules still load and show their pages.
    QCOMPARE(shell.loader()->modules().size(), 1);
    QVERIFY(shell.window()->showPage(QStringLiteral("pendanttest.page")));
}

void TestShell::windowDoesNotWaitForTheStore()
{
    Shell shell(options());
    shell.start();
    // The store opens in the controller's thread; the link comes up through the event loop only.
    QVERIFY(shell.transport());
    QVERIFY(!shell.transport()->isConnected());
    shell.window()->show();
    QVERIFY(QTest::qWaitForWindowExposed(shell.window()));
    QVERIFY(EmbeddedLink::waitConnected(true));
    QVERIFY(shell.failures().isEmpty());
}

void TestShell::unopenableStoreIsReported()
{
    // A plain file where the data directory should be: the store cannot open.
    ShellOptions o = options();
    QFile blocker(o.dataDir);
    QVERIFY(blocker.open(QIODevice::WriteOnly));
    blocker.close();
    Shell shell(o);
    shell.start();
    shell.window()->show();
    QTRY_VERIFY(logHas(QStringLiteral("error"), QStringLiteral("Controller not started")));
    QCOMPARE(shell.failures().size(), 1);
    QVERIFY(!shell.window()->statusBar()->isLinkUp());
    QVERIFY(!EmbeddedLink::waitConnected(true, 300));
}

void TestShell::loadsTestModule()
{
    {
        Shell shell(options());
        shell.start();
        shell.window()->show();
        QVERIFY(QTest::qWaitForWindowExposed(shell.window()));
        QVERIFY(EmbeddedLink::waitConnected(true));

        QCOMPARE(recordedOrder(),
                 (QStringList{"create", "init", "afterInit", "setup", "afterSetup", "render", "afterRender"}));
        QCOMPARE(shell.loader()->modules().size(), 1);
        QCOMPARE(shell.loader()->modules().first()->parent(), &shell);
        QVERIFY(shell.failures().isEmpty());
        QVERIFY(logHas(QStringLiteral("info"), QStringLiteral("Module loaded")));
        // The link opens after the modules exist, so they see the first connection.
        QTRY_VERIFY(orba::m(QStringLiteral("pendanttest.connected"))->getInt(0) >= 1);

        NavigationView *nav = shell.window()->navigation();
        QCOMPARE(nav->pathOfPage(QStringLiteral("pendanttest.page")), QStringLiteral("Robot > Pack > Test Page"));
        QTreeWidgetItem *item = nav->itemForPage(QStringLiteral("pendanttest.page"));
        QVERIFY(item);
        QTest::mouseClick(nav->viewport(), Qt::LeftButton, {}, nav->visualItemRect(item).center());
        QCOMPARE(shell.window()->currentPage(), QStringLiteral("pendanttest.page"));
        QCOMPARE(shell.window()->centerWidget()->currentWidget()->objectName(), QStringLiteral("pendantTestPage"));
        QVERIFY(shell.window()->centerWidget()->currentWidget()->isVisible());
        QCOMPARE(shell.window()->findChild<QLabel *>(QStringLiteral("lblPageTitle"))->text(),
                 QStringLiteral("Robot > Pack > Test Page"));
    }
    QCOMPARE(recordedOrder().mid(7), (QStringList{"beforeDetach", "detach"}));
}

void TestShell::pageOption_data()
{
    QTest::addColumn<QString>("page");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<bool>("warned");
    QTest::newRow("no option: first module page") << "" << "pendanttest.page" << false;
    QTest::newRow("navigation name") << "pendanttest.page" << "pendanttest.page" << false;
    QTest::newRow("module key") << "pendanttest" << "pendanttest.page" << false;
    QTest::newRow("title") << "Test Page" << "pendanttest.page" << false;
    QTest::newRow("unknown page") << "no.such.page" << "pendant.home" << true;
}

void TestShell::pageOption()
{
    QFETCH(QString, page);
    QFETCH(QString, shown);
    QFETCH(bool, warned);
    ShellOptions o = options();
    o.page = page;
    Shell shell(o);
    shell.start();
    QCOMPARE(shell.window()->currentPage(), shown);
    QCOMPARE(logHas(QStringLiteral("warning"), QStringLiteral("Page not found")), warned);
}

void TestShell::levelReachesHostNode_data()
{
    QTest::addColumn<int>("startLevel");
    QTest::addColumn<int>("chosen");
    QTest::newRow("start 0, choose 4") << 0 << 4;
    QTest::newRow("start 3, choose 2") << 3 << 2;
    QTest::newRow("start 4, choose 1") << 4 << 1;
}

void TestShell::levelReachesHostNode()
{
    QFETCH(int, startLevel);
    QFETCH(int, chosen);
    ShellOptions o = options();
    o.level = startLevel;
    Shell shell(o);
    shell.start();
    QCOMPARE(orba::m(QStringLiteral("tcore.r.level"))->getInt(-1), startLevel);
    auto *combo = shell.window()->findChild<QComboBox *>(QStringLiteral("cmbLevel"));
    QCOMPARE(combo->currentData().toInt(), startLevel);
    combo->setCurrentIndex(combo->findData(chosen));
    QCOMPARE(orba::m(QStringLiteral("tcore.r.level"))->getInt(-1), chosen);
}

void TestShell::languageReloadsModuleTranslations()
{
    ShellOptions o = options();
    o.language = QStringLiteral("cn");
    Shell shell(o);
    shell.start();
    QCOMPARE(tcore::SettingManager::getStr(QStringLiteral("language")), QStringLiteral("cn"));
    // The module's translation was installed before it announced its page.
    QCOMPARE(orba::m(QStringLiteral("tnav.pages.#0.title"))->getString(), QStringLiteral("测试页"));
    QCOMPARE(shell.window()->navigation()->findPage(QStringLiteral("测试页")), QStringLiteral("pendanttest.page"));

    auto *combo = shell.window()->findChild<QComboBox *>(QStringLiteral("cmbLanguage"));
    QCOMPARE(combo->currentData().toString(), QStringLiteral("cn"));
    combo->setCurrentIndex(combo->findData(QStringLiteral("en")));
    QCOMPARE(tcore::SettingManager::getStr(QStringLiteral("language")), QStringLiteral("en"));
    QCOMPARE(QCoreApplication::translate("PendantTestModule", "Test Page"), QStringLiteral("Test Page"));
    combo->setCurrentIndex(combo->findData(QStringLiteral("cn")));
    QCOMPARE(QCoreApplication::translate("PendantTestModule", "Test Page"), QStringLiteral("测试页"));
    combo->setCurrentIndex(combo->findData(QStringLiteral("en")));
}

void TestShell::projectListsOnConnect()
{
    Shell shell(options());
    shell.start();
    QVERIFY(EmbeddedLink::waitConnected(true));
    QTRY_VERIFY(orba::m(QStringLiteral("tormo.project.tool._list"))->size() > 0);
    QCOMPARE(orba::m(QStringLiteral("tormo.project.tool.system_list.#0.name"))->getString(), QStringLiteral("tool0"));
    QVERIFY(orba::m(QStringLiteral("tormo.project.wobj._list"))->size() > 0);
    QCOMPARE(orba::m(QStringLiteral("tormo.toolpage.tool"))->getString(), QStringLiteral("tool0"));
    QVERIFY(!orba::m(QStringLiteral("tcore.r.id"))->getString().isEmpty());
}

void TestShell::linkLossAndReturn()
{
    Shell shell(options());
    shell.start();
    shell.window()->show();
    QVERIFY(EmbeddedLink::waitConnected(true));
    auto *label = shell.window()->findChild<QLabel *>(QStringLiteral("lblLink"));
    QTRY_COMPARE(label->property("linkUp").toBool(), true);
    const int connections = orba::m(QStringLiteral("pendanttest.connected"))->getInt(0);

    auto *transport = qobject_cast<orbat::InProcessTransport *>(shell.transport());
    QVERIFY(transport);
    transport->attach(nullptr);
    QVERIFY(EmbeddedLink::waitConnected(false));
    QTRY_COMPARE(label->property("linkUp").toBool(), false);
    QVERIFY(shell.window()->findChild<QLabel *>(QStringLiteral("lblHome"))->text().contains(QStringLiteral("not connected")));

    transport->attach(shell.embeddedController()->endpoint());
    transport->open();
    QVERIFY(EmbeddedLink::waitConnected(true));
    QTRY_COMPARE(label->property("linkUp").toBool(), true);
    // Modules are told about the new connection (the pallet page reloads on it).
    QTRY_COMPARE(orba::m(QStringLiteral("pendanttest.connected"))->getInt(0), connections + 1);
}


void TestShell::tcpLinkLossAndReturn()
{
    QProcess rcsim;
    const QString rcData = m_data->filePath(QStringLiteral("rcsim"));
    const quint16 port = startRcsim(&rcsim, rcData, 0);
    QVERIFY2(port != 0, rcsim.readAllStandardError().constData());

    ShellOptions o = options();
    o.rcHost = QStringLiteral("127.0.0.1");
    o.rcPort = port;
    Shell shell(o);
    shell.start();
    QVERIFY(!shell.embeddedController());
    auto *label = shell.window()->findChild<QLabel *>(QStringLiteral("lblLink"));
    QVERIFY(EmbeddedLink::waitConnected(true, 10000));
    QTRY_COMPARE(label->property("linkUp").toBool(), true);
    QVERIFY(label->text().contains(QString::number(port)));
    QTRY_VERIFY(orba::m(QStringLiteral("tormo.project.tool._list"))->size() > 0);

    rcsim.kill();
    rcsim.waitForFinished(5000);
    QVERIFY(EmbeddedLink::waitConnected(false, 10000));
    QTRY_COMPARE(label->property("linkUp").toBool(), false);
    QVERIFY(logHas(QStringLiteral("warning"), QStringLiteral("Controller disconnected")));

    // The transport reconnects by itself once a controller listens again.
    QProcess again;
    QCOMPARE(startRcsim(&again, rcData, port), port);
    QVERIFY(EmbeddedLink::waitConnected(true, 15000));
    QTRY_COMPARE(label->property("linkUp").toBool(), true);
    again.kill();
    again.waitForFinished(5000);
}

void TestShell::jogFromTheWindow()
{
    Shell shell(options());
    shell.start();
    shell.window()->show();
    QVERIFY(QTest::qWaitForWindowExposed(shell.window()));
    QVERIFY(EmbeddedLink::waitConnected(true));
    StatusBar *bar = shell.window()->statusBar();
    if (!bar->isPowerOn())
        QTest::mouseClick(bar->findChild<QPushButton *>(QStringLiteral("btnPower")), Qt::LeftButton);
    QVERIFY(bar->isPowerOn());

    auto *frame = shell.window()->findChild<QComboBox *>(QStringLiteral("cmbJogFrame"));
    frame->setCurrentIndex(frame->findData(QStringLiteral("base")));
    shell.window()->findChild<QComboBox *>(QStringLiteral("cmbJogStep"))->setCurrentIndex(3);
    const double z0 = tservice()->get(nullptr, QStringLiteral("sys.posture"))->r(QStringLiteral("trans.#2"))->getDouble();
    QTest::mouseClick(shell.window()->findChild<QPushButton *>(QStringLiteral("btnJogPlus2")), Qt::LeftButton);
    const double z1 = tservice()->get(nullptr, QStringLiteral("sys.posture"))->r(QStringLiteral("trans.#2"))->getDouble();
    QVERIFY2(std::abs(z1 - z0 - 0.01) < 1e-6, qPrintable(QStringLiteral("%1 -> %2").arg(z0).arg(z1)));
    QTRY_COMPARE(shell.window()->findChild<QLabel *>(QStringLiteral("lblPosZ"))->text(), QString::number(z1 * 1000.0, 'f', 1));
}

QTEST_MAIN(TestShell)
#include "tst_shell.moc"
