#include <orba/creatormanager.h>
#include <orba/modulemanager.h>
#include <orba/names.h>

#include <QtTest>

class TestRegistry : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void registAndCreate();
    void reRegistReplaces();
    void creatorWithArguments();
    void singletonsAreStable();
    void mNameJoins_data();
    void mNameJoins();
    void verLooksUpAndSums_data();
    void verLooksUpAndSums();
};

void TestRegistry::init()
{
    orba::ModuleManager::resetRoot();
    auto *v = orba::versionManager();
    v->regist("tpallet", [] { return 1; });
    v->regist(mName("tpallet", "pallet.page"), [] { return 3; });
    v->regist(mName("tpallet", "imexport"), [] { return 4; });
    v->regist("tpalletx.other", [] { return 100; });
    v->regist("tpal", [] { return 50; });
}

void TestRegistry::cleanup()
{
    for (const QString &k : orba::versionManager()->keys())
        orba::versionManager()->unregist(k);
    for (const QString &k : orba::pluginManager()->keys())
        orba::pluginManager()->unregist(k);
}

void TestRegistry::registAndCreate()
{
    auto *plugins = orba::pluginManager();
    QVERIFY(!plugins->has("tpallet"));
    QCOMPARE(plugins->create("tpallet"), 0);
    plugins->regist("tpallet", [] { return 12; });
    plugins->regist("alpha", [] { return 1; });
    QVERIFY(plugins->has("tpallet"));
    QCOMPARE(plugins->create("tpallet"), 12);
    QCOMPARE(plugins->keys(), (QStringList{"alpha", "tpallet"}));
    QVERIFY(plugins->unregist("alpha"));
    QVERIFY(!plugins->unregist("alpha"));
    QCOMPARE(plugins->keys(), QStringList{"tpallet"});
}

void TestRegistry::reRegistReplaces()
{
    orba::IntCreatorManager m;
    m.regist("k", [] { return 1; });
    m.regist("k", [] { return 2; });
    QCOMPARE(m.create("k"), 2);
    QCOMPARE(m.keys().size(), 1);
}

void TestRegistry::creatorWithArguments()
{
    orba::CreatorManager<QString, QString(int, const QString &)> m;
    m.regist("rep", [](int n, const QString &s) { return s.repeated(n); });
    QCOMPARE(m.create("rep", 3, "ab"), QStringLiteral("ababab"));
    QCOMPARE(m.create("none", 3, "ab"), QString());
}

void TestRegistry::singletonsAreStable()
{
    QCOMPARE(orba::pluginManager(), orba::pluginManager());
    QCOMPARE(orba::versionManager(), orba::versionManager());
    QVERIFY(static_cast<void *>(orba::pluginManager()) != static_cast<void *>(orba::versionManager()));
}

void TestRegistry::mNameJoins_data()
{
    QTest::addColumn<QStringList>("parts");
    QTest::addColumn<QString>("joined");
    QTest::newRow("module and component") << QStringList{"tpallet", "pallet.page"} << "tpallet.pallet.page";
    QTest::newRow("version text") << QStringList{"1", "1", "22"} << "1.1.22";
    QTest::newRow("empty part kept") << QStringList{"a", ""} << "a.";
    QTest::newRow("empty middle kept") << QStringList{"1", "", "3"} << "1..3";
}

void TestRegistry::mNameJoins()
{
    QFETCH(QStringList, parts);
    QFETCH(QString, joined);
    if (parts.size() == 2)
        QCOMPARE(mName(parts.at(0), parts.at(1)), joined);
    else
        QCOMPARE(mName(parts.at(0), parts.at(1), parts.at(2)), joined);
}

void TestRegistry::verLooksUpAndSums_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<bool>("sum");
    QTest::addColumn<int>("expected");
    QTest::newRow("exact key") << "tpallet" << false << 1;
    QTest::newRow("sum of module and components") << "tpallet" << true << 8;
    QTest::newRow("component exact") << "tpallet.pallet.page" << false << 3;
    QTest::newRow("component sum") << "tpallet.pallet" << true << 3;
    QTest::newRow("unknown exact") << "none" << false << 0;
    QTest::newRow("unknown sum") << "none" << true << 0;
}

void TestRegistry::verLooksUpAndSums()
{
    QFETCH(QString, key);
    QFETCH(bool, sum);
    QFETCH(int, expected);
    QCOMPARE(ver(key, sum), expected);
}

QTEST_GUILESS_MAIN(TestRegistry)
#include "tst_registry.moc"
