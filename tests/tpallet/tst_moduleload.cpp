#include <dwel/bfactory.h>
#include <dwel/bmodule.h>
#include <dwel/centerwidget.h>
#include <orba/creatormanager.h>
#include <orba/log.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>
#include <orba/names.h>
#include <orbat/controllermanager.h>
#include <orbat/tservice.h>
#include <tcore/managerhelper.h>

#ifdef TPALLET_WITH_CONTROLLER
#include <controller.h>
#include <orbat/inprocesstransport.h>
#include <orbat/lineendpoint.h>
#else
#include <orbat/scriptedtransport.h>
#endif

#include <QFile>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>
#include <QtTest>

#include <dlfcn.h>

#include <memory>

// Loads the built libtpallet.so.1 the way the pendant does: dlopen, then the factory key.
class TstModuleLoad : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void loadingRegistersFactoryPluginAndVersions();
    void exportedEntryPoints();
    void moduleShowsControllerPalletsOnItsPage();

private:
    void storePallet(const QString &name, int row, int col);
    void connectController();
    QStringList tableNames(QTableWidget *table) const;

    void *m_handle = nullptr;
    std::unique_ptr<dwel::BModule> m_module;
    QTemporaryDir m_dataDir;
#ifdef TPALLET_WITH_CONTROLLER
    std::unique_ptr<rc::EmbeddedController> m_controller;
    std::unique_ptr<orbat::InProcessTransport> m_transport;
#else
    std::unique_ptr<orbat::ScriptedTransport> m_transport;
    QStringList m_scripted;
#endif
};

void TstModuleLoad::initTestCase()
{
    orba::setConsoleLogEnabled(false);
    QVERIFY(!bfactory()->has(QStringLiteral("tpallet")));
    QVERIFY2(QFile::exists(QStringLiteral(TPALLET_MODULE_FILE)), TPALLET_MODULE_FILE);
    // Never closed: Qt keeps the module's meta objects until the process ends.
    m_handle = dlopen(TPALLET_MODULE_FILE, RTLD_NOW | RTLD_LOCAL);
    QVERIFY2(m_handle, dlerror());
}

void TstModuleLoad::init()
{
    orba::ModuleManager::resetRoot();
    tcore::ManagerHelper::instance()->setMsgTestMode(true);
#ifndef TPALLET_WITH_CONTROLLER
    m_transport = std::make_unique<orbat::ScriptedTransport>();
    m_transport->setConnected(false);
    m_transport->setReply(QStringLiteral("tservice.proto.command"), 0,
                          "[\"tray.query.list\",\"tray.query.one\",\"tray.data\",\"tray.add_one\",\"tray.del_one\"]");
    tservice()->setTransport(m_transport.get());
#endif
}

void TstModuleLoad::cleanup()
{
    m_module.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    tservice()->setTransport(nullptr);
    m_transport.reset();
#ifdef TPALLET_WITH_CONTROLLER
    m_controller.reset();
#endif
    orba::ModuleManager::resetRoot();
}

#ifdef TPALLET_WITH_CONTROLLER
// A controller on the test's data folder, in its own thread, linked to the host's service.
void TstModuleLoad::connectController()
{
    tservice()->setTransport(nullptr);
    m_transport.reset();
    m_controller.reset();
    rc::Controller::Options options;
    options.dataDir = m_dataDir.path();
    m_controller = std::make_unique<rc::EmbeddedController>(options);
    QString error;
    QVERIFY2(m_controller->start(&error), qPrintable(error));
    m_transport = std::make_unique<orbat::InProcessTransport>(m_controller->endpoint());
    QSignalSpy connected(tcore::ManagerHelper::instance()->controllerManager(), &orbat::ControllerManager::rcConnected);
    tservice()->setTransport(m_transport.get());
    m_transport->open();
    QTRY_VERIFY_WITH_TIMEOUT(connected.count() >= 1, 5000);
}
#else
void TstModuleLoad::connectController()
{
    QSignalSpy connected(tcore::ManagerHelper::instance()->controllerManager(), &orbat::ControllerManager::rcConnected);
    m_transport->setConnected(false);
    m_transport->setConnected(true);
    QTRY_VERIFY_WITH_TIMEOUT(connected.count() >= 1, 5000);
}
#endif

void TstModuleLoad::storePallet(const QString &name, int row, int col)
{
#ifdef TPALLET_WITH_CONTROLLER
    orba::ModuleObject pallet(QStringLiteral("pallet"));
    pallet.set(nullptr, QStringLiteral("name"), name, true);
    pallet.set(nullptr, QStringLiteral("desc"), QStringLiteral("stored"), true);
    pallet.set(nullptr, QStringLiteral("pattern.origin"), 0, true);
    pallet.set(nullptr, QStringLiteral("pattern.row"), row, true);
    pallet.set(nullptr, QStringLiteral("pattern.col"), col, true);
    pallet.set(nullptr, QStringLiteral("calibrate.use_p4"), true, true);
    orba::MobjPtr reply = tservice()->execCommand(nullptr, QStringLiteral("tray.add_one"), &pallet);
    QCOMPARE(reply->getInt(-1), 0);
#else
    m_scripted << QStringLiteral("{\"name\":\"%1\",\"desc\":\"stored\",\"index\":%2,\"pattern\":{\"row\":%3,\"col\":%4}}")
                      .arg(name)
                      .arg(m_scripted.size())
                      .arg(row)
                      .arg(col);
    QStringList list;
    for (int i = 0; i < m_scripted.size(); ++i)
        list << QStringLiteral("{\"index\":%1}").arg(i);
    m_transport->setReply(QStringLiteral("tray.query.list"), 0, ("[" + list.join(QLatin1Char(',')) + "]").toUtf8());
    const QStringList pallets = m_scripted;
    m_transport->setHandler([pallets](const orbat::ScriptedTransport::Request &request) {
        orbat::ScriptedTransport::Reply reply;
        if (request.method == QLatin1String("tray.query.one") && request.params)
            reply.dataJson = pallets.value(request.params->getInt(-1)).toUtf8();
        return reply;
    });
#endif
}

QStringList TstModuleLoad::tableNames(QTableWidget *table) const
{
    QStringList names;
    for (int r = 0; r < table->rowCount(); ++r)
        names << (table->item(r, 0) ? table->item(r, 0)->text() : QString());
    return names;
}

void TstModuleLoad::loadingRegistersFactoryPluginAndVersions()
{
    QVERIFY(bfactory()->has(QStringLiteral("tpallet")));
    QCOMPARE(orba::pluginManager()->create(QStringLiteral("tpallet")), 11);
    QCOMPARE(orba::versionManager()->create(mName(QStringLiteral("tpallet"), QStringLiteral("pallet.page"))), 20);
    QCOMPARE(orba::versionManager()->create(mName(QStringLiteral("tpallet"), QStringLiteral("pallet.dialog.imexport"))), 1);
    QCOMPARE(orba::versionManager()->create(mName(QStringLiteral("tpallet"), QStringLiteral("wizard.pointadjust"))), 3);
    QVERIFY(QFile::exists(QStringLiteral(":/tpallet/template/tpallet.json")));
    QVERIFY(QFile::exists(QStringLiteral(":/tpallet/language/tpallet_ru.qm")));
}

void TstModuleLoad::exportedEntryPoints()
{
    // C++ entry points, found by their mangled names as a host would.
    using ApiFn = int (*)();
    auto api = reinterpret_cast<ApiFn>(dlsym(m_handle, "_ZN7tpallet3apiEv"));
    QVERIFY2(api, dlerror());
    QCOMPARE(api(), 1);
    using VersionFn = QString (*)();
    auto version = reinterpret_cast<VersionFn>(dlsym(m_handle, "_ZN7tpallet7versionEv"));
    QVERIFY2(version, dlerror());
    QCOMPARE(version(), QStringLiteral("1.1.22"));
    QVERIFY(dlsym(m_handle, "_ZN7tpallet12recordCfgLogERK7QStringb"));
}

void TstModuleLoad::moduleShowsControllerPalletsOnItsPage()
{
    // The controller's store already holds two pallets when the pendant starts.
    connectController();
    storePallet(QStringLiteral("boxes"), 4, 5);
    storePallet(QStringLiteral("cans"), 1, 1);

    QObject host;
    m_module.reset(bfactory()->create(QStringLiteral("tpallet"), &host));
    QVERIFY(m_module);
    m_module->setParent(nullptr);
    QCOMPARE(m_module->name(), QStringLiteral("tpallet"));
    QVERIFY(!orba::m(QStringLiteral("tpallet.default"))->isEmpty());

    m_module->init();
    m_module->setup();
    orba::m()->set(nullptr, QStringLiteral("tcore.r.level"), 3, true);

    dwel::CenterWidget *center = instantiatedCenterWidget(m_module.get());
    QVERIFY(center->hasPage(QStringLiteral("tpallet.page")));
    QWidget *page = center->page(QStringLiteral("tpallet.page"));
    QVERIFY(page);
    auto *table = page->findChild<QTableWidget *>(QStringLiteral("tableWidget"));
    QVERIFY(table);
    for (const char *name : {"btnImport", "btnExport", "btnAdd", "btnEdit", "btnCfg", "btnPointCheck", "btnDel"})
        QVERIFY2(page->findChild<QPushButton *>(QString::fromLatin1(name)), name);
    QCOMPARE(table->rowCount(), 0);

    connectController();
    QTRY_COMPARE_WITH_TIMEOUT(tableNames(table), (QStringList{"boxes", "cans"}), 5000);
    QCOMPARE(table->item(0, 1)->text(), QStringLiteral("20"));
    QCOMPARE(table->item(1, 1)->text(), QStringLiteral("1"));
    QCOMPARE(table->item(0, 4)->text(), QStringLiteral("stored"));
    QVERIFY(page->findChild<QPushButton *>(QStringLiteral("btnDel"))->isEnabled());

#ifdef TPALLET_WITH_CONTROLLER
    // Deleting through the page reaches the controller's store: the next start no longer has it.
    table->setCurrentCell(0, 0);
    tcore::ManagerHelper::instance()->queueMsgAnswer(true);
    QTest::mouseClick(page->findChild<QPushButton *>(QStringLiteral("btnDel")), Qt::LeftButton);
    QCOMPARE(tableNames(table), QStringList{"cans"});
    connectController();
    QTRY_COMPARE_WITH_TIMEOUT(tableNames(table), QStringList{"cans"}, 5000);
    QCOMPARE(orba::m(QStringLiteral("tpallet.pallets"))->c(0)->c(QStringLiteral("index"), false)->getInt(-1), 0);
#endif
}

QTEST_MAIN(TstModuleLoad)
#include "tst_moduleload.moc"
