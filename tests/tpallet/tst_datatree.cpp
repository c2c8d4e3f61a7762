#include "palletfixture.h"

#include "module/tpallet.h"
#include "pages/newpalletdialog.h"

#include <QtTest>

class TstDataTree : public QObject
{
    Q_OBJECT

private slots:
    void init() { m_fx.setUp(); }
    void cleanup() { m_fx.tearDown(); }

    void templateCreatesTheThreeRootNodes();
    void defaultPalletHasTemplateDefaults_data();
    void defaultPalletHasTemplateDefaults();
    void defaultPalletLeavesTaughtFieldsAbsent_data();
    void defaultPalletLeavesTaughtFieldsAbsent();
    void triggersAreValueless_data();
    void triggersAreValueless();
    void triggerNotifiesListeners();
    void hasPalletComparesExactly_data();
    void hasPalletComparesExactly();
    void hasPalletOnEmptyList();
    void getPalletOfBlankNameReturnsEmptyWithoutScanning();
    void getPalletDoesNotTrimTheComparedName();
    void getPalletFirstMatchWins();
    void getPalletMissReturnsTheEmptyNode();
    void initPalletAddsMissingRetractOnly();
    void initPalletKeepsToolsetWithReference();
    void initPalletMakesIdentityToolsetFromTemplate();

private:
    PalletFixture m_fx;
};

void TstDataTree::templateCreatesTheThreeRootNodes()
{
    QCOMPARE(tpallet::palletsNode(), orba::m(QStringLiteral("tpallet.pallets")));
    QCOMPARE(tpallet::triggerNode(), orba::m(QStringLiteral("tpallet.trigger")));
    QVERIFY(!tpallet::palletsNode()->isEmpty());
    QVERIFY(!tpallet::triggerNode()->isEmpty());
    QVERIFY(!orba::m(QStringLiteral("tpallet.default"))->isEmpty());
    QCOMPARE(tpallet::palletsNode()->size(), 0);
    QCOMPARE(orba::m(QStringLiteral("tpallet.default"))->cmobjNames(),
             (QStringList{"pattern", "calibrate", "waypoint", "points"}));
}

void TstDataTree::defaultPalletHasTemplateDefaults_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QVariant>("value");
    QTest::newRow("pattern.origin") << "pattern.origin" << QVariant(0);
    QTest::newRow("pattern.s_type") << "pattern.s_type" << QVariant(false);
    QTest::newRow("pattern.row") << "pattern.row" << QVariant(1);
    QTest::newRow("pattern.col") << "pattern.col" << QVariant(1);
    QTest::newRow("pattern.exchange") << "pattern.exchange" << QVariant(false);
    QTest::newRow("pattern.rank_v") << "pattern.rank_v" << QVariant(false);
    QTest::newRow("calibrate.use_p4") << "calibrate.use_p4" << QVariant(true);
}

void TstDataTree::defaultPalletHasTemplateDefaults()
{
    QFETCH(QString, path);
    QFETCH(QVariant, value);
    orba::ModuleObject *node = orba::m(QStringLiteral("tpallet.default"))->r(path);
    QVERIFY2(!node->isEmpty(), qPrintable(path));
    QVERIFY(node->hasValue());
    if (value.type() == QVariant::Bool) {
        QCOMPARE(node->value().type(), QVariant::Bool);
        QCOMPARE(node->getBool(!value.toBool()), value.toBool());
    } else {
        QVERIFY(node->value().canConvert<int>());
        QVERIFY(node->value().type() != QVariant::Double);
        QCOMPARE(node->getInt(-99), value.toInt());
    }
}

void TstDataTree::defaultPalletLeavesTaughtFieldsAbsent_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("present");
    QTest::newRow("name absent") << "name" << false;
    QTest::newRow("desc absent") << "desc" << false;
    QTest::newRow("index absent") << "index" << false;
    QTest::newRow("calibrate.p1 absent") << "calibrate.p1" << false;
    QTest::newRow("calibrate.x_span absent") << "calibrate.x_span" << false;
    QTest::newRow("calibrate.toolset null") << "calibrate.toolset" << true;
    QTest::newRow("calibrate.points empty") << "calibrate.points" << true;
    QTest::newRow("waypoint null") << "waypoint" << true;
    QTest::newRow("points empty") << "points" << true;
}

void TstDataTree::defaultPalletLeavesTaughtFieldsAbsent()
{
    QFETCH(QString, path);
    QFETCH(bool, present);
    orba::ModuleObject *def = orba::m(QStringLiteral("tpallet.default"));
    QCOMPARE(def->hasRmobj(path), present);
    orba::ModuleObject *node = def->r(path);
    // Present or not, nothing is filled: reads give the defaults.
    QVERIFY(node->isNull());
    QCOMPARE(node->cmobjCount(), 0);
    QCOMPARE(node->getString(), QString());
    QCOMPARE(node->getDouble(0.0), 0.0);
}

void TstDataTree::triggersAreValueless_data()
{
    QTest::addColumn<QString>("name");
    QTest::newRow("refresh_table") << "refresh_table";
    QTest::newRow("save_to_rc") << "save_to_rc";
    QTest::newRow("load_from_rc") << "load_from_rc";
}

void TstDataTree::triggersAreValueless()
{
    QFETCH(QString, name);
    QVERIFY(tpallet::triggerNode()->hasCmobj(name, false));
    QVERIFY(tpallet::triggerNode()->c(name, false)->isNull());
    QCOMPARE(tpallet::triggerNode()->cmobjCount(), 3);
}

void TstDataTree::triggerNotifiesListeners()
{
    orba::ModuleObject *refresh = tpallet::triggerNode()->c(QStringLiteral("refresh_table"), false);
    QSignalSpy spy(refresh, &orba::ModuleObject::changed);
    refresh->trigger(nullptr);
    QCOMPARE(spy.count(), 1);
    QVERIFY(refresh->isNull());
}

void TstDataTree::hasPalletComparesExactly_data()
{
    QTest::addColumn<QString>("query");
    QTest::addColumn<bool>("found");
    QTest::newRow("exact") << "tray1" << true;
    QTest::newRow("second pallet") << "Box_2" << true;
    QTest::newRow("other case") << "TRAY1" << false;
    QTest::newRow("leading blank") << " tray1" << false;
    QTest::newRow("trailing blank") << "tray1 " << false;
    QTest::newRow("prefix") << "tray" << false;
    QTest::newRow("empty") << "" << false;
}

void TstDataTree::hasPalletComparesExactly()
{
    QFETCH(QString, query);
    QFETCH(bool, found);
    PalletFixture::addLocalPallet(QStringLiteral("tray1"), 2, 2);
    PalletFixture::addLocalPallet(QStringLiteral("Box_2"), 1, 1);
    QCOMPARE(tpallet::hasPallet(query), found);
}

void TstDataTree::hasPalletOnEmptyList()
{
    QCOMPARE(tpallet::palletsNode()->size(), 0);
    QVERIFY(!tpallet::hasPallet(QStringLiteral("tray1")));
    QVERIFY(!tpallet::hasPallet(QString()));
}

void TstDataTree::getPalletOfBlankNameReturnsEmptyWithoutScanning()
{
    // Even a pallet literally named with blanks is not found: a blank query never scans.
    PalletFixture::addLocalPallet(QStringLiteral("   "), 1, 1);
    QVERIFY(tpallet::hasPallet(QStringLiteral("   ")));
    orba::ModuleObject *found = tpallet::getPallet(QStringLiteral("   "));
    QCOMPARE(found, orba::ModuleManager::emptyMobj());
    QVERIFY(found->isEmpty());
    QCOMPARE(tpallet::getPallet(QString()), orba::ModuleManager::emptyMobj());
}

void TstDataTree::getPalletDoesNotTrimTheComparedName()
{
    orba::ModuleObject *a = PalletFixture::addLocalPallet(QStringLiteral("a"), 1, 1);
    QVERIFY(tpallet::getPallet(QStringLiteral(" a"))->isEmpty());
    QVERIFY(tpallet::getPallet(QStringLiteral("a "))->isEmpty());
    QCOMPARE(tpallet::getPallet(QStringLiteral("a")), a);
}

void TstDataTree::getPalletFirstMatchWins()
{
    PalletFixture::addLocalPallet(QStringLiteral("x"), 1, 1);
    orba::ModuleObject *first = PalletFixture::addLocalPallet(QStringLiteral("dup"), 2, 2);
    PalletFixture::addLocalPallet(QStringLiteral("dup"), 3, 3);
    QCOMPARE(tpallet::getPallet(QStringLiteral("dup")), first);
    QCOMPARE(tpallet::getPallet(QStringLiteral("dup"))->indexInPmobj(), 1);
}

void TstDataTree::getPalletMissReturnsTheEmptyNode()
{
    PalletFixture::addLocalPallet(QStringLiteral("a"), 1, 1);
    orba::ModuleObject *missing = tpallet::getPallet(QStringLiteral("b"));
    QVERIFY(missing->isEmpty());
    // Chained reads on a miss are safe and give defaults.
    QCOMPARE(missing->r(QStringLiteral("pattern.row"))->getInt(7), 7);
}

void TstDataTree::initPalletAddsMissingRetractOnly()
{
    orba::ModuleObject *source = PalletFixture::addLocalPallet(QStringLiteral("src"), 2, 2);
    source->set(nullptr, QStringLiteral("waypoint.wobj.trans.#0"), 0.25, true);
    source->set(nullptr, QStringLiteral("waypoint.approach.trans.#2"), 0.5, true);
    QVERIFY(!source->r(QStringLiteral("waypoint"))->hasCmobj(QStringLiteral("retract"), false));

    orba::ModuleObject clone(QStringLiteral("clone"));
    clone.copyFrom(nullptr, source, true, false);
    NewPalletDialog::initPallet(&clone);

    orba::ModuleObject *waypoint = clone.r(QStringLiteral("waypoint"));
    QCOMPARE(waypoint->cmobjNames(), (QStringList{"wobj", "approach", "retract"}));
    QCOMPARE(waypoint->r(QStringLiteral("wobj.trans.#0"))->getDouble(), 0.25);
    QCOMPARE(waypoint->r(QStringLiteral("approach.trans.#2"))->getDouble(), 0.5);
    // The added retract is the identity pose.
    orba::ModuleObject *retract = waypoint->c(QStringLiteral("retract"), false);
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(retract->r(QStringLiteral("trans.#%1").arg(i))->getDouble(-1.0), 0.0);
        QCOMPARE(retract->r(QStringLiteral("rot.#%1").arg(i))->getDouble(-1.0), 0.0);
    }
}

void TstDataTree::initPalletKeepsToolsetWithReference()
{
    orba::ModuleObject *pallet = PalletFixture::addLocalPallet(QStringLiteral("p"), 1, 1);
    orba::ModuleObject *toolset = pallet->r(QStringLiteral("calibrate.toolset"));
    toolset->set(nullptr, QStringLiteral("ref.trans.#0"), 0.1, true);
    toolset->set(nullptr, QStringLiteral("ref.trans.#1"), 0.2, true);
    toolset->set(nullptr, QStringLiteral("ref.trans.#2"), 0.3, true);
    toolset->set(nullptr, QStringLiteral("end.trans.#2"), 0.15, true);
    orba::ModuleObject before(QStringLiteral("toolset"));
    before.copyFrom(nullptr, toolset, true, false);

    NewPalletDialog::initPallet(pallet);
    QVERIFY(pallet->r(QStringLiteral("calibrate.toolset"))->equals(&before));
}

void TstDataTree::initPalletMakesIdentityToolsetFromTemplate()
{
    orba::ModuleObject *pallet = PalletFixture::addLocalPallet(QStringLiteral("p"), 1, 1);
    QVERIFY(pallet->r(QStringLiteral("calibrate.toolset"))->isNull());
    NewPalletDialog::initPallet(pallet);
    orba::ModuleObject *toolset = pallet->r(QStringLiteral("calibrate.toolset"));
    QVERIFY(!toolset->c(QStringLiteral("ref"), false)->isNull());
    QVERIFY(!toolset->c(QStringLiteral("end"), false)->isNull());
    QCOMPARE(pallet->r(QStringLiteral("waypoint"))->cmobjNames(), (QStringList{"wobj", "approach", "retract"}));
    // One place for a 1 x 1 pallet.
    QCOMPARE(pallet->r(QStringLiteral("points"))->size(), 1);
}

QTEST_MAIN(TstDataTree)
#include "tst_datatree.moc"
