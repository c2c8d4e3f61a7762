#include "moduleloader.h"
#include "pendanttestutil.h"

#include <dwel/bfactory.h>
#include <dwel/bmodule.h>
#include <dwel/centerwidget.h>
#include <orba/moduleobject.h>

#include <QFile>
#include <QSignalSpy>
#include <QtTest>


class TestModuleLoader : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void candidateFilesSkipSymlinkDuplicates();
    void loadsTestModule();
    void lifecycleOrder();
    void reloadReusesRegistrations();
    void failures_data();
    void failures();
    void missingDirectory();
    void missingFactoryKey();
};

void TestModuleLoader::init()
{
    resetHost();
}

void TestModuleLoader::candidateFilesSkipSymlinkDuplicates()
{
    QStringList skipped;
    const QStringList files = ModuleLoader::candidateFiles(QStringLiteral(PENDANT_TEST_MODULE_DIR), &skipped);
    // libpendanttest.so -> .so.1 -> .so.1.0.0: one real file.
    QCOMPARE(files.size(), 1);
    QVERIFY(files.first().endsWith(QStringLiteral("libpendanttest.so.1.0.0")));
    QCOMPARE(skipped.size(), 2);
}

void TestModuleLoader::loadsTestModule()
{
    ModuleLoader loader;
    QSignalSpy failures(&loader, &ModuleLoader::failure);
    const QStringList keys = loader.loadLibraries(QStringLiteral(PENDANT_TEST_MODULE_DIR));
    QCOMPARE(keys, QStringList{QStringLiteral("pendanttest")});
    QVERIFY(bfactory()->has(QStringLiteral("pendanttest")));
    QCOMPARE(failures.count(), 0);
    QCOMPARE(loader.libraries().size(), 1);
    QCOMPARE(loader.libraries().first().keys, keys);

    QObject parent;
    const QList<dwel::BModule *> modules = loader.createModules(keys, &parent);
    QCOMPARE(modules.size(), 1);
    QCOMPARE(modules.first()->parent(), &parent);
    QCOMPARE(modules.first()->name(), QStringLiteral("pendanttest"));
    QCOMPARE(loader.keyOf(modules.first()), QStringLiteral("pendanttest"));
    QCOMPARE(recordedOrder(), QStringList{QStringLiteral("create")});
    loader.detachModules();
    QVERIFY(loader.modules().isEmpty());
}

void TestModuleLoader::lifecycleOrder()
{
    ModuleLoader loader;
    QObject parent;
    loader.createModules(loader.loadLibraries(QStringLiteral(PENDANT_TEST_MODULE_DIR)), &parent);
    loader.initModules();
    // The navigation entry exists after init(), the page after setup().
    orba::ModuleObject *entry = orba::m(QStringLiteral("tnav.pages.#0"));
    QCOMPARE(entry->c(QStringLiteral("title"))->getString(), QStringLiteral("Test Page"));
    QCOMPARE(entry->c(QStringLiteral("parent"))->getString(), QStringLiteral("robot.pack"));
    QCOMPARE(entry->c(QStringLiteral("nav"))->getString(), QStringLiteral("pendanttest.page"));
    QVERIFY(!dwel::CenterWidget::instance()->hasPage(QStringLiteral("pendanttest.page")));
    loader.setupModules();
    QVERIFY(dwel::CenterWidget::instance()->hasPage(QStringLiteral("pendanttest.page")));
    loader.renderModules();
    loader.detachModules();
    QCOMPARE(recordedOrder(), (QStringList{"create", "init", "afterInit", "setup", "afterSetup", "render",
                                           "afterRender", "beforeDetach", "detach"}));
    // The module deletes its page; the container forgets it.
    QVERIFY(!dwel::CenterWidget::instance()->hasPage(QStringLiteral("pendanttest.page")));
}

void TestModuleLoader::reloadReusesRegistrations()
{
    // A library already in the process does not register again; the loader still knows its keys.
    ModuleLoader first;
    QCOMPARE(first.loadLibraries(QStringLiteral(PENDANT_TEST_MODULE_DIR)), QStringList{"pendanttest"});
    ModuleLoader second;
    QSignalSpy failures(&second, &ModuleLoader::failure);
    QCOMPARE(second.loadLibraries(QStringLiteral(PENDANT_TEST_MODULE_DIR)), QStringList{"pendanttest"});
    QCOMPARE(failures.count(), 0);
}

void TestModuleLoader::failures_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QByteArray>("content");
    QTest::addColumn<QString>("linkTo");
    QTest::addColumn<QString>("expected");

    QTest::newRow("garbage file") << "libgarbage.so.1" << QByteArray("not an ELF file\n") << QString()
                                  << "libgarbage.so.1";
    QTest::newRow("empty file") << "libempty.so" << QByteArray() << QString() << "libempty.so";
    QTest::newRow("library without factory")
        << "libpendantnofactory.so.1" << QByteArray() << QStringLiteral(PENDANT_NOFACTORY_DIR "/libpendantnofactory.so.1")
        << "no module factory registered";
}

void TestModuleLoader::failures()
{
    QFETCH(QString, fileName);
    QFETCH(QByteArray, content);
    QFETCH(QString, linkTo);
    QFETCH(QString, expected);

    QTemporaryDir dir;
    QVERIFY(dir.isValid());
    const QString path = dir.filePath(fileName);
    if (linkTo.isEmpty()) {
        QFile f(path);
        QVERIFY(f.open(QIODevice::WriteOnly));
        f.write(content);
    } else {
        QVERIFY(QFile::link(linkTo, path));
    }
    // A file that is not a library by name is never tried.
    QFile other(dir.filePath(QStringLiteral("readme.txt")));
    QVERIFY(other.open(QIODevice::WriteOnly));

    ModuleLoader loader;
    QSignalSpy failures(&loader, &ModuleLoader::failure);
    QVERIFY(loader.loadLibraries(dir.path()).isEmpty());
    QCOMPARE(failures.count(), 1);
    const QString what = failures.first().at(0).toString();
    const QString why = failures.first().at(1).toString();
    QVERIFY2((what + ' ' + why).contains(expected), qPrintable(what + ' ' + why));
    QVERIFY(!why.isEmpty());
    QCOMPARE(loader.libraries().size(), 1);
    QVERIFY(!loader.libraries().first().error.isEmpty());
}

void TestModuleLoader::missingDirectory()
{
    ModuleLoader loader;
    QSignalSpy failures(&loader, &ModuleLoader::failure);
    QVERIFY(loader.loadLibraries(QStringLiteral("/nonexistent/modules")).isEmpty());
    QCOMPARE(failures.count(), 1);
    QVERIFY(loader.loadLibraries(QString()).isEmpty());
    QCOMPARE(failures.count(), 1);
}

void TestModuleLoader::missingFactoryKey()
{
    ModuleLoader loader;
    QSignalSpy failures(&loader, &ModuleLoader::failure);
    QObject parent;
    QVERIFY(loader.createModules({QStringLiteral("no.such.module")}, &parent).isEmpty());
    QCOMPARE(failures.count(), 1);
    QCOMPARE(failures.first().at(1).toString(), QStringLiteral("missing factory"));

    bfactory()->regist(QStringLiteral("null.module"), [](QObject *) -> dwel::BModule * { return nullptr; });
    bfactory()->regist(QStringLiteral("throwing.module"),
                       [](QObject *) -> dwel::BModule * { throw std::runtime_error("template missing"); });
    QVERIFY(loader.createModules({QStringLiteral("null.module"), QStringLiteral("throwing.module")}, &parent).isEmpty());
    QCOMPARE(failures.count(), 3);
    QVERIFY(failures.at(2).at(1).toString().contains(QStringLiteral("template missing")));
    bfactory()->unregist(QStringLiteral("null.module"));
    bfactory()->unregist(QStringLiteral("throwing.module"));
}

QTEST_MAIN(TestModuleLoader)
#include "tst_moduleloader.moc"
