#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <QSignalSpy>
#include <QtTest>

#include <cmath>
#include <cstring>
#include <limits>
#include <memory>

using orba::ModuleManager;
using orba::ModuleObject;

namespace {

bool sameBits(double a, double b)
{
    return std::memcmp(&a, &b, sizeof a) == 0;
}

} // namespace

class TestModuleObject : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void setCreatesPath_data();
    void setCreatesPath();
    void setCreatesArrayElements();
    void setOwnValueWithEmptyPath();
    void lookupReturnsEmptyOnMiss_data();
    void lookupReturnsEmptyOnMiss();
    void emptyNodeGettersGiveDefaults();
    void emptyNodeIgnoresWrites();
    void getterConversions_data();
    void getterConversions();
    void changedCarriesSender_data();
    void changedCarriesSender();
    void noNotificationOnSameValue_data();
    void noNotificationOnSameValue();
    void notifyFalseIsSilent();
    void triggerNotifiesWithoutChange();
    void appendNotifies();
    void insertNotifiesAndReindexes();
    void takeNotifiesAndHandsOver();
    void removeNotifiesAndDestroys();
    void clearNotifiesOnce();
    void clearRecursiveNotifiesDescendants();
    void setCreatingPathNotifiesEachLevel();
    void deletingChildDetachesIt();
    void appendMovesFromFormerParent();
    void insertRefusesCycle();
    void deepCopyIsIndependent();
    void copyFromKeepsOwnName();
    void copyFromDescendant();
    void copyFromEmptyClears();
    void overlayFrom_data();
    void overlayFrom();
    void overlayFromNotifiesWithSender();
    void overlayFromCopiesIndependently();
    void overlayFromDescendantAndAncestor();
    void overlayFromNothingChangesNothing();
    void overlayDefaultLayoutWithRecord();
    void ancestorsAndIndex();
    void isNullAndIsEmpty_data();
    void isNullAndIsEmpty();
    void arrayLookupStaysCorrectAfterEdits();
    void largeArrayLookup();
    void duplicateNamesFirstWins();
    void renameUpdatesLookup();
    void childListsAndNames();
    void isArray_data();
    void isArray();
    void importFromVariant_data();
    void importFromVariant();
    void importFromVariantMerge();
    void exportToVariantRoundTrip();
    void equalsComparesDoublesBitwise();
    void globalLookupAndReset();
    void metatypeIsRegistered();
    void childrenDestroyedWithParent();

    // Children nobody was handed are kept compact: these check that this cannot be observed.
    void loadedTreeAnswersWithoutObjects();
    void pointerAccessMaterialisesLevels_data();
    void pointerAccessMaterialisesLevels();
    void pathWritesAfterPartialMaterialisation_data();
    void pathWritesAfterPartialMaterialisation();
    void pathWriteNotifiesHandedOutNode();
    void handedOutNodeNotifiesAfterLoad();
    void loadIntoWatchedNodeAnnouncesChildren();
    void mixedTreesCopyCompareAndSerialise();
    void copiesOfCompactTreesStayIndependent();
    void overlayOntoCompactTree();
    void takeInsertRemoveOnCompactParent();
    void clearOnCompactParent();
    void deletingParentWithCompactChildren();
    void duplicateNamesInCompactTree();
};

namespace {

// A small pallet as the controller sends it: named nodes, arrays, values on every level.
const char kPalletJson[] = R"({"name":"p1","points":[{"wobj":{"trans":[1.5,2.5,3.5],"rot":[0,0,0.5]}},)"
                           R"({"wobj":{"trans":[4.5,5.5,6.5],"rot":[0,0,1]}}],"pattern":{"row":2,"col":1}})";

bool loadPallet(ModuleObject *node)
{
    QString error;
    const bool ok = node->importFromJson(nullptr, QByteArray(kPalletJson), &error);
    if (!ok)
        qWarning("%s", qPrintable(error));
    return ok;
}

// The same tree built node by node, every node an object from the start.
void buildPallet(ModuleObject *node)
{
    node->set(nullptr, "name", QStringLiteral("p1"));
    node->set(nullptr, "points.#0.wobj.trans.#0", 1.5);
    node->set(nullptr, "points.#0.wobj.trans.#1", 2.5);
    node->set(nullptr, "points.#0.wobj.trans.#2", 3.5);
    node->set(nullptr, "points.#0.wobj.rot.#0", 0);
    node->set(nullptr, "points.#0.wobj.rot.#1", 0);
    node->set(nullptr, "points.#0.wobj.rot.#2", 0.5);
    node->set(nullptr, "points.#1.wobj.trans.#0", 4.5);
    node->set(nullptr, "points.#1.wobj.trans.#1", 5.5);
    node->set(nullptr, "points.#1.wobj.trans.#2", 6.5);
    node->set(nullptr, "points.#1.wobj.rot.#0", 0);
    node->set(nullptr, "points.#1.wobj.rot.#1", 0);
    node->set(nullptr, "points.#1.wobj.rot.#2", 1);
    node->set(nullptr, "pattern.row", 2);
    node->set(nullptr, "pattern.col", 1);
}

const QStringList kPalletNames{"name", "points", "points.#0", "points.#0.wobj", "points.#0.wobj.trans",
                               "points.#0.wobj.trans.#0", "points.#0.wobj.trans.#1", "points.#0.wobj.trans.#2",
                               "points.#0.wobj.rot", "points.#0.wobj.rot.#0", "points.#0.wobj.rot.#1",
                               "points.#0.wobj.rot.#2", "points.#1", "points.#1.wobj", "points.#1.wobj.trans",
                               "points.#1.wobj.trans.#0", "points.#1.wobj.trans.#1", "points.#1.wobj.trans.#2",
                               "points.#1.wobj.rot", "points.#1.wobj.rot.#0", "points.#1.wobj.rot.#1",
                               "points.#1.wobj.rot.#2", "pattern", "pattern.row", "pattern.col"};

} // namespace

void TestModuleObject::init()
{
    ModuleManager::resetRoot();
}

void TestModuleObject::cleanup()
{
    ModuleManager::resetRoot();
    QCOMPARE(orba::m()->cmobjCount(), 0);
}

void TestModuleObject::setCreatesPath_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QStringList>("createdNames");

    QTest::newRow("single name") << "a" << QStringList{"a"};
    QTest::newRow("three levels") << "a.b.c" << QStringList{"a", "a.b", "a.b.c"};
    QTest::newRow("array element") << "trans.#2"
                                   << QStringList{"trans", "trans.#0", "trans.#1", "trans.#2"};
    QTest::newRow("array inside array") << "points.#1.near.#0"
                                        << QStringList{"points", "points.#0", "points.#1", "points.#1.near",
                                                       "points.#1.near.#0"};
}

void TestModuleObject::setCreatesPath()
{
    QFETCH(QString, path);
    QFETCH(QStringList, createdNames);

    ModuleObject root;
    QCOMPARE(root.set(nullptr, path, 42), &root);
    QCOMPARE(root.cmobjNames(true), createdNames);
    QCOMPARE(root.r(path)->getInt(), 42);
    QVERIFY(root.hasRmobj(path));
}

void TestModuleObject::setCreatesArrayElements()
{
    ModuleObject root;
    root.set(nullptr, "trans.#2", 3.5);
    ModuleObject *trans = root.r("trans");
    QCOMPARE(trans->size(), 3);
    QVERIFY(trans->isArray());
    QVERIFY(trans->c(0)->isNull());
    QVERIFY(trans->c(1)->isNull());
    QCOMPARE(trans->c(2)->getDouble(), 3.5);

    // An existing element is reused, the array does not grow.
    root.set(nullptr, "trans.#1", 1.0);
    QCOMPARE(trans->size(), 3);
    QCOMPARE(trans->r("#1")->getDouble(), 1.0);
}

void TestModuleObject::setOwnValueWithEmptyPath()
{
    ModuleObject node("n");
    node.set(nullptr, QString(), QStringLiteral("v"));
    QCOMPARE(node.getString(), QStringLiteral("v"));
    QCOMPARE(node.cmobjCount(), 0);
    QCOMPARE(node.r(QString()), &node);
}

void TestModuleObject::lookupReturnsEmptyOnMiss_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing child") << "x";
    QTest::newRow("missing below existing") << "a.x";
    QTest::newRow("missing element") << "a.b.#9";
    QTest::newRow("trailing dot") << "a.";
    QTest::newRow("leading dot") << ".a";
}

void TestModuleObject::lookupReturnsEmptyOnMiss()
{
    QFETCH(QString, path);
    ModuleObject root;
    root.set(nullptr, "a.b.#0", 1);
    ModuleObject *node = root.r(path);
    QVERIFY(node);
    QVERIFY(node->isEmpty());
    QCOMPARE(node, ModuleManager::emptyMobj());
    QVERIFY(!root.hasRmobj(path));
}

void TestModuleObject::emptyNodeGettersGiveDefaults()
{
    ModuleObject *e = orba::m("no.such.node");
    QVERIFY(e->isEmpty());
    QCOMPARE(e->getInt(7), 7);
    QCOMPARE(e->getInt64(-9), qint64(-9));
    QCOMPARE(e->getDouble(2.5), 2.5);
    QCOMPARE(e->getBool(true), true);
    QCOMPARE(e->getString("def"), QStringLiteral("def"));
    QVERIFY(!e->hasValue());
    QVERIFY(e->c("x")->isEmpty());
    QVERIFY(e->c(0)->isEmpty());
    QVERIFY(e->p(0)->isEmpty());
    QVERIFY(e->r("a.b.c")->r("d")->isEmpty());
    QCOMPARE(e->r("a")->c(3)->getInt(11), 11);
    QCOMPARE(e->indexInPmobj(), -1);
}

void TestModuleObject::emptyNodeIgnoresWrites()
{
    ModuleObject *e = ModuleManager::emptyMobj();
    QSignalSpy changed(e, &ModuleObject::changed);
    QSignalSpy inserted(e, &ModuleObject::childInserted);

    QCOMPARE(e->set(this, "a.b", 1), e);
    QCOMPARE(e->setValue(this, 5), e);
    QCOMPARE(e->append(this, "child"), e);
    ModuleObject loose("loose");
    QCOMPARE(e->append(this, &loose), e);
    QCOMPARE(e->insert(this, 0, &loose), e);
    QVERIFY(loose.pmobj()->isEmpty());
    QCOMPARE(e->take(this, 0), nullptr);
    QVERIFY(!e->remove(this, 0));
    QCOMPARE(e->c("made", true), e);
    QVERIFY(!e->hasCmobj("made", true));
    e->setName("renamed");
    e->clear(this);
    ModuleObject source;
    source.set(nullptr, "x", 1);
    e->copyFrom(this, &source);
    e->importFromVariant(this, QVariantMap{{"k", 1}});
    e->importFromJson(this, "{\"k\":1}");
    e->trigger(this);

    QVERIFY(!e->hasValue());
    QCOMPARE(e->cmobjCount(), 0);
    QCOMPARE(e->name(), QString());
    QCOMPARE(changed.count(), 0);
    QCOMPARE(inserted.count(), 0);
}

void TestModuleObject::getterConversions_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("asInt");
    QTest::addColumn<double>("asDouble");
    QTest::addColumn<QString>("asString");

    QTest::newRow("int") << QVariant(12) << 12 << 12.0 << "12";
    QTest::newRow("double") << QVariant(2.5) << 3 << 2.5 << "2.5";
    QTest::newRow("numeric string") << QVariant("7") << 7 << 7.0 << "7";
    QTest::newRow("text falls back") << QVariant("abc") << -1 << -1.0 << "abc";
    QTest::newRow("null falls back") << QVariant() << -1 << -1.0 << "fallback";
    QTest::newRow("bool") << QVariant(true) << 1 << 1.0 << "true";
}

void TestModuleObject::getterConversions()
{
    QFETCH(QVariant, value);
    QFETCH(int, asInt);
    QFETCH(double, asDouble);
    QFETCH(QString, asString);

    ModuleObject node;
    node.setValue(nullptr, value);
    QCOMPARE(node.getInt(-1), asInt);
    QCOMPARE(node.getDouble(-1.0), asDouble);
    QCOMPARE(node.getString("fallback"), asString);
}

void TestModuleObject::changedCarriesSender_data()
{
    QTest::addColumn<QVariant>("before");
    QTest::addColumn<QVariant>("after");

    QTest::newRow("null to int") << QVariant() << QVariant(5);
    QTest::newRow("int to other int") << QVariant(5) << QVariant(6);
    QTest::newRow("int to same number as double") << QVariant(1) << QVariant(1.0);
    QTest::newRow("zero to negative zero") << QVariant(0.0) << QVariant(-0.0);
    QTest::newRow("string to string") << QVariant("a") << QVariant("b");
    QTest::newRow("bool to int") << QVariant(true) << QVariant(1);
    QTest::newRow("value to null") << QVariant(3) << QVariant();
}

void TestModuleObject::changedCarriesSender()
{
    QFETCH(QVariant, before);
    QFETCH(QVariant, after);

    ModuleObject root;
    root.set(nullptr, "p.x", before, false);
    ModuleObject *x = root.r("p.x");
    QSignalSpy spy(x, &ModuleObject::changed);
    root.set(this, "p.x", after);

    QCOMPARE(spy.count(), 1);
    const QList<QVariant> args = spy.takeFirst();
    QCOMPARE(args.at(0).value<QVariant>().userType(), after.userType());
    QCOMPARE(args.at(1).value<QVariant>().userType(), before.userType());
    QCOMPARE(args.at(0).value<QVariant>(), after);
    QCOMPARE(args.at(1).value<QVariant>(), before);
    QCOMPARE(args.at(2).value<QObject *>(), this);
    if (after.userType() == QMetaType::Double)
        QVERIFY(sameBits(x->getDouble(), after.toDouble()));
}

void TestModuleObject::noNotificationOnSameValue_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<QVariant>("again");

    QTest::newRow("int") << QVariant(4) << QVariant(4);
    QTest::newRow("int given as qint64") << QVariant(4) << QVariant(qint64(4));
    QTest::newRow("double") << QVariant(0.1) << QVariant(0.1);
    QTest::newRow("negative zero") << QVariant(-0.0) << QVariant(-0.0);
    QTest::newRow("nan") << QVariant(std::numeric_limits<double>::quiet_NaN())
                         << QVariant(std::numeric_limits<double>::quiet_NaN());
    QTest::newRow("string") << QVariant("text") << QVariant(QStringLiteral("text"));
    QTest::newRow("bool") << QVariant(false) << QVariant(false);
    QTest::newRow("null") << QVariant() << QVariant();
}

void TestModuleObject::noNotificationOnSameValue()
{
    QFETCH(QVariant, value);
    QFETCH(QVariant, again);

    ModuleObject node;
    node.setValue(nullptr, value, false);
    QSignalSpy spy(&node, &ModuleObject::changed);
    node.setValue(this, again);
    node.set(this, QString(), again);
    QCOMPARE(spy.count(), 0);
}

void TestModuleObject::notifyFalseIsSilent()
{
    ModuleObject root;
    QSignalSpy inserted(&root, &ModuleObject::childInserted);
    root.set(this, "a", 1, false);
    QCOMPARE(inserted.count(), 0);
    QSignalSpy changed(root.r("a"), &ModuleObject::changed);
    root.set(this, "a", 2, false);
    QCOMPARE(changed.count(), 0);
    QCOMPARE(root.r("a")->getInt(), 2);
}

void TestModuleObject::triggerNotifiesWithoutChange()
{
    ModuleObject node;
    node.setValue(nullptr, 9);
    QSignalSpy spy(&node, &ModuleObject::changed);
    node.trigger(this);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).value<QVariant>(), QVariant(9));
    QCOMPARE(spy.at(0).at(1).value<QVariant>(), QVariant(9));
    QCOMPARE(spy.at(0).at(2).value<QObject *>(), this);
    QCOMPARE(node.getInt(), 9);

    ModuleObject valueless;
    QSignalSpy spy2(&valueless, &ModuleObject::changed);
    valueless.trigger();
    QCOMPARE(spy2.count(), 1);
    QCOMPARE(spy2.at(0).at(2).value<QObject *>(), nullptr);
}

void TestModuleObject::appendNotifies()
{
    ModuleObject root;
    QSignalSpy spy(&root, &ModuleObject::childInserted);
    ModuleObject *a = root.append(this, "a");
    ModuleObject *b = root.append(this, "b");
    QCOMPARE(spy.count(), 2);
    QCOMPARE(spy.at(1).at(0).value<ModuleObject *>(), b);
    QCOMPARE(spy.at(1).at(1).toInt(), 1);
    QCOMPARE(spy.at(1).at(2).value<QObject *>(), this);
    QCOMPARE(a->pmobj(), &root);
    QCOMPARE(root.c("b"), b);
}

void TestModuleObject::insertNotifiesAndReindexes()
{
    ModuleObject root;
    ModuleObject *a = root.append(nullptr, "a");
    ModuleObject *b = root.append(nullptr, "b");
    QSignalSpy spy(&root, &ModuleObject::childInserted);
    auto *front = new ModuleObject("front");
    QCOMPARE(root.insert(this, 0, front), front);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(1).toInt(), 0);
    QCOMPARE(root.cmobjNames(), (QStringList{"front", "a", "b"}));
    QCOMPARE(front->indexInPmobj(), 0);
    QCOMPARE(a->indexInPmobj(), 1);
    QCOMPARE(b->indexInPmobj(), 2);

    auto *tail = new ModuleObject("tail");
    root.insert(this, 99, tail);
    QCOMPARE(tail->indexInPmobj(), 3);
    auto *head = new ModuleObject("head");
    root.insert(this, -5, head);
    QCOMPARE(head->indexInPmobj(), 0);
}

void TestModuleObject::takeNotifiesAndHandsOver()
{
    ModuleObject root;
    root.append(nullptr, "a");
    ModuleObject *b = root.append(nullptr, "b");
    ModuleObject *c = root.append(nullptr, "c");
    QSignalSpy spy(&root, &ModuleObject::childRemoved);

    std::unique_ptr<ModuleObject> taken(root.take(this, b));
    QCOMPARE(taken.get(), b);
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.at(0).at(0).toString(), QStringLiteral("b"));
    QCOMPARE(spy.at(0).at(1).toInt(), 1);
    QCOMPARE(spy.at(0).at(2).value<QObject *>(), this);
    QVERIFY(b->pmobj()->isEmpty());
    QCOMPARE(b->indexInPmobj(), -1);
    QCOMPARE(c->indexInPmobj(), 1);
    QVERIFY(root.c("b")->isEmpty());

    QCOMPARE(root.take(this, b), nullptr);
    QCOMPARE(root.take(this, 7), nullptr);
    std::unique_ptr<ModuleObject> first(root.take(this, 0));
    QCOMPARE(first->name(), QStringLiteral("a"));
    QCOMPARE(root.cmobjNames(), QStringList{"c"});
}

void TestModuleObject::removeNotifiesAndDestroys()
{
    ModuleObject root;
    ModuleObject *a = root.append(nullptr, "a");
    root.append(nullptr, "b");
    QSignalSpy removed(&root, &ModuleObject::childRemoved);
    QSignalSpy destroyed(a, &QObject::destroyed);
    QVERIFY(root.remove(this, a));
    QCOMPARE(removed.count(), 1);
    QCOMPARE(removed.at(0).at(0).toString(), QStringLiteral("a"));
    QCOMPARE(removed.at(0).at(2).value<QObject *>(), this);
    QCOMPARE(destroyed.count(), 1);
    QVERIFY(root.remove(this, 0));
    QCOMPARE(root.cmobjCount(), 0);
    QVERIFY(!root.remove(this, 0));
    ModuleObject stranger;
    QVERIFY(!root.remove(this, &stranger));
}

void TestModuleObject::clearNotifiesOnce()
{
    ModuleObject root;
    root.set(nullptr, "a.b", 1);
    root.set(nullptr, "c", 2);
    root.setValue(nullptr, "kept");
    QSignalSpy cleared(&root, &ModuleObject::cleared);
    QSignalSpy destroyed(root.c("a"), &QObject::destroyed);
    root.clear(this);
    QCOMPARE(cleared.count(), 1);
    QCOMPARE(cleared.at(0).at(0).value<QObject *>(), this);
    QCOMPARE(destroyed.count(), 1);
    QCOMPARE(root.cmobjCount(), 0);
    QCOMPARE(root.getString(), QStringLiteral("kept"));

    root.clear(this);
    QCOMPARE(cleared.count(), 1);

    root.set(nullptr, "x", 1);
    root.clear(this, false);
    QCOMPARE(cleared.count(), 1);
    QCOMPARE(root.cmobjCount(), 0);
}

void TestModuleObject::clearRecursiveNotifiesDescendants()
{
    ModuleObject root;
    root.set(nullptr, "a.b.c", 1);
    QSignalSpy top(&root, &ModuleObject::cleared);
    QSignalSpy mid(root.r("a"), &ModuleObject::cleared);
    QSignalSpy low(root.r("a.b"), &ModuleObject::cleared);
    root.clear(this, true, true);
    QCOMPARE(top.count(), 1);
    QCOMPARE(mid.count(), 1);
    QCOMPARE(low.count(), 1);
    QCOMPARE(low.at(0).at(0).value<QObject *>(), this);
}

void TestModuleObject::setCreatingPathNotifiesEachLevel()
{
    ModuleObject root;
    root.set(nullptr, "a", QVariant());
    QSignalSpy rootSpy(&root, &ModuleObject::childInserted);
    QSignalSpy aSpy(root.r("a"), &ModuleObject::childInserted);
    root.set(this, "a.#1.x", 1);
    QCOMPARE(rootSpy.count(), 0);
    QCOMPARE(aSpy.count(), 2);
    QCOMPARE(aSpy.at(0).at(0).value<ModuleObject *>()->name(), QStringLiteral("#0"));
    QCOMPARE(aSpy.at(1).at(0).value<ModuleObject *>()->name(), QStringLiteral("#1"));
    QCOMPARE(aSpy.at(1).at(2).value<QObject *>(), this);
}

void TestModuleObject::deletingChildDetachesIt()
{
    ModuleObject root;
    ModuleObject *a = root.append(nullptr, "a");
    ModuleObject *b = root.append(nullptr, "b");
    QSignalSpy removed(&root, &ModuleObject::childRemoved);
    delete a;
    QCOMPARE(removed.count(), 1);
    QCOMPARE(removed.at(0).at(0).toString(), QStringLiteral("a"));
    QCOMPARE(root.cmobjCount(), 1);
    QCOMPARE(root.c(0), b);
    QCOMPARE(b->indexInPmobj(), 0);
}

void TestModuleObject::appendMovesFromFormerParent()
{
    ModuleObject from;
    ModuleObject to;
    ModuleObject *moved = from.append(nullptr, "m");
    moved->setValue(nullptr, 3);
    QSignalSpy removed(&from, &ModuleObject::childRemoved);
    QSignalSpy inserted(&to, &ModuleObject::childInserted);
    QCOMPARE(to.append(this, moved), moved);
    QCOMPARE(removed.count(), 1);
    QCOMPARE(inserted.count(), 1);
    QCOMPARE(from.cmobjCount(), 0);
    QCOMPARE(moved->pmobj(), &to);
    QCOMPARE(to.r("m")->getInt(), 3);

    // Moving within the same parent puts the node at the end.
    to.append(nullptr, "n");
    to.append(this, moved);
    QCOMPARE(to.cmobjNames(), (QStringList{"n", "m"}));
}

void TestModuleObject::insertRefusesCycle()
{
    ModuleObject root;
    ModuleObject *a = root.append(nullptr, "a");
    ModuleObject *b = a->append(nullptr, "b");
    QVERIFY(b->append(this, a)->isEmpty());
    QVERIFY(a->append(this, a)->isEmpty());
    QCOMPARE(a->pmobj(), &root);
    QCOMPARE(b->pmobj(), a);
}

void TestModuleObject::deepCopyIsIndependent()
{
    ModuleObject source("src");
    source.set(nullptr, "pose.trans.#0", 1.5);
    source.set(nullptr, "pose.trans.#1", -0.0);
    source.set(nullptr, "name", "P1");
    source.setValue(nullptr, 7);

    ModuleObject copy("copy");
    QSignalSpy inserted(&copy, &ModuleObject::childInserted);
    QSignalSpy changed(&copy, &ModuleObject::changed);
    copy.copyFrom(this, &source);
    QVERIFY(copy.equals(&source));
    QCOMPARE(inserted.count(), 2);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(2).value<QObject *>(), this);
    QVERIFY(sameBits(copy.r("pose.trans.#1")->getDouble(), -0.0));

    source.set(nullptr, "pose.trans.#0", 99.0);
    source.r("name")->setValue(nullptr, "changed");
    source.append(nullptr, "extra");
    QCOMPARE(copy.r("pose.trans.#0")->getDouble(), 1.5);
    QCOMPARE(copy.r("name")->getString(), QStringLiteral("P1"));
    QVERIFY(!copy.hasCmobj("extra"));
    QVERIFY(!copy.equals(&source));
    QVERIFY(copy.r("pose") != source.r("pose"));
}

void TestModuleObject::copyFromKeepsOwnName()
{
    ModuleObject source("src");
    source.set(nullptr, "x", 1);
    ModuleObject target("target");
    target.copyFrom(nullptr, &source);
    QCOMPARE(target.name(), QStringLiteral("target"));
    target.copyFrom(nullptr, &source, true, true);
    QCOMPARE(target.name(), QStringLiteral("src"));
}

void TestModuleObject::copyFromDescendant()
{
    ModuleObject root;
    root.set(nullptr, "inner.value", 5);
    root.set(nullptr, "other", 1);
    root.copyFrom(nullptr, root.r("inner"));
    QCOMPARE(root.cmobjNames(), QStringList{"value"});
    QCOMPARE(root.r("value")->getInt(), 5);
}

void TestModuleObject::copyFromEmptyClears()
{
    ModuleObject node;
    node.set(nullptr, "a.b", 1);
    node.setValue(nullptr, 2);
    node.copyFrom(nullptr, ModuleManager::emptyMobj());
    QVERIFY(node.isNull());
    node.set(nullptr, "c", 1);
    node.copyFrom(nullptr, nullptr);
    QVERIFY(node.isNull());
}

void TestModuleObject::overlayFrom_data()
{
    QTest::addColumn<QByteArray>("target");
    QTest::addColumn<QByteArray>("source");
    QTest::addColumn<QByteArray>("expected");

    QTest::newRow("source value wins") << QByteArray(R"({"a":1,"b":2})") << QByteArray(R"({"b":3})")
                                       << QByteArray(R"({"a":1,"b":3})");
    QTest::newRow("keys only in source go last, in source order")
        << QByteArray(R"({"a":1,"b":2})") << QByteArray(R"({"z":9,"b":3,"c":4})")
        << QByteArray(R"({"a":1,"b":3,"z":9,"c":4})");
    QTest::newRow("nested objects merge") << QByteArray(R"({"p":{"x":1,"y":2},"q":true})")
                                          << QByteArray(R"({"p":{"y":5,"w":6}})")
                                          << QByteArray(R"({"p":{"x":1,"y":5,"w":6},"q":true})");
    QTest::newRow("null in source keeps the value") << QByteArray(R"({"a":1,"b":"x"})")
                                                    << QByteArray(R"({"a":null})")
                                                    << QByteArray(R"({"a":1,"b":"x"})");
    QTest::newRow("value type follows source") << QByteArray(R"({"a":1})") << QByteArray(R"({"a":1.0})")
                                               << QByteArray(R"({"a":1.0})");
    QTest::newRow("array replaces a longer array") << QByteArray(R"({"t":[1,2,3]})")
                                                   << QByteArray(R"({"t":[7,8]})")
                                                   << QByteArray(R"({"t":[7,8]})");
    QTest::newRow("array fills an empty layout entry") << QByteArray(R"({"points":null,"n":0})")
                                                       << QByteArray(R"({"points":[[1,2],[3,4]]})")
                                                       << QByteArray(R"({"points":[[1,2],[3,4]],"n":0})");
    QTest::newRow("empty array in source keeps the target's") << QByteArray(R"({"t":[1,2]})")
                                                              << QByteArray(R"({"t":null})")
                                                              << QByteArray(R"({"t":[1,2]})");
    QTest::newRow("object over a leaf keeps its value") << QByteArray(R"({"w":5})")
                                                        << QByteArray(R"({"w":{"x":1}})")
                                                        << QByteArray(R"({"w":{"@value":5,"x":1}})");
    QTest::newRow("leaf over an object sets its value") << QByteArray(R"({"w":{"x":1}})")
                                                        << QByteArray(R"({"w":"v"})")
                                                        << QByteArray(R"({"w":{"@value":"v","x":1}})");
    QTest::newRow("own value of the node") << QByteArray(R"({"@value":1,"a":1})")
                                           << QByteArray(R"({"@value":"top"})")
                                           << QByteArray(R"({"@value":"top","a":1})");
}

void TestModuleObject::overlayFrom()
{
    QFETCH(QByteArray, target);
    QFETCH(QByteArray, source);
    QFETCH(QByteArray, expected);

    ModuleObject t("target");
    QVERIFY(t.importFromJson(nullptr, target));
    ModuleObject s("source");
    QVERIFY(s.importFromJson(nullptr, source));
    ModuleObject want;
    QVERIFY(want.importFromJson(nullptr, expected));
    const QByteArray sourceBefore = s.exportToJson(true);

    t.overlayFrom(nullptr, &s);
    QVERIFY2(t.equals(&want), t.exportToJson(true).constData());
    QCOMPARE(t.name(), QStringLiteral("target"));
    QCOMPARE(s.exportToJson(true), sourceBefore);
}

void TestModuleObject::overlayFromNotifiesWithSender()
{
    ModuleObject target;
    target.set(nullptr, "a", 1);
    target.set(nullptr, "b", 2);
    ModuleObject source;
    source.set(nullptr, "b", 3);
    source.set(nullptr, "c.d", 4);
    QSignalSpy inserted(&target, &ModuleObject::childInserted);
    QSignalSpy changedB(target.r("b"), &ModuleObject::changed);
    QSignalSpy changedA(target.r("a"), &ModuleObject::changed);

    target.overlayFrom(this, &source, true);
    QCOMPARE(inserted.count(), 1);
    QCOMPARE(inserted.at(0).at(0).value<ModuleObject *>(), target.r("c"));
    QCOMPARE(inserted.at(0).at(1).toInt(), 2);
    QCOMPARE(inserted.at(0).at(2).value<QObject *>(), this);
    QCOMPARE(changedB.count(), 1);
    QCOMPARE(changedB.at(0).at(0).toInt(), 3);
    QCOMPARE(changedB.at(0).at(2).value<QObject *>(), this);
    QCOMPARE(changedA.count(), 0);

    // Silent when asked.
    ModuleObject quiet;
    quiet.set(nullptr, "b", 1);
    QSignalSpy quietInserted(&quiet, &ModuleObject::childInserted);
    QSignalSpy quietChanged(quiet.r("b"), &ModuleObject::changed);
    quiet.overlayFrom(this, &source, false);
    QCOMPARE(quietInserted.count(), 0);
    QCOMPARE(quietChanged.count(), 0);
    QCOMPARE(quiet.r("c.d")->getInt(), 4);
}

void TestModuleObject::overlayFromCopiesIndependently()
{
    ModuleObject source;
    source.set(nullptr, "pose.trans.#0", -0.0);
    source.set(nullptr, "pose.trans.#1", 0.1 + 0.2);
    ModuleObject target;
    target.set(nullptr, "pose.rot.#0", 1.0);
    target.overlayFrom(nullptr, &source);
    QVERIFY(sameBits(target.r("pose.trans.#0")->getDouble(), -0.0));
    QVERIFY(sameBits(target.r("pose.trans.#1")->getDouble(), 0.1 + 0.2));
    QVERIFY(target.r("pose.trans") != source.r("pose.trans"));
    source.set(nullptr, "pose.trans.#1", 5.0);
    source.append(nullptr, "later");
    QVERIFY(sameBits(target.r("pose.trans.#1")->getDouble(), 0.1 + 0.2));
    QVERIFY(!target.hasCmobj("later"));
    QCOMPARE(target.r("pose")->cmobjNames(), (QStringList{"rot", "trans"}));
}

void TestModuleObject::overlayFromDescendantAndAncestor()
{
    ModuleObject root;
    root.set(nullptr, "a", 1);
    root.set(nullptr, "sub.a", 2);
    root.set(nullptr, "sub.b", 3);
    // A descendant laid over its ancestor.
    root.overlayFrom(nullptr, root.r("sub"));
    QCOMPARE(root.r("a")->getInt(), 2);
    QCOMPARE(root.r("b")->getInt(), 3);
    QCOMPARE(root.r("sub.a")->getInt(), 2);
    QCOMPARE(root.cmobjNames(), (QStringList{"a", "sub", "b"}));

    // An ancestor laid over its descendant: the copy is taken before anything changes.
    ModuleObject tree;
    tree.set(nullptr, "x", 1);
    tree.set(nullptr, "inner.y", 2);
    ModuleObject *inner = tree.r("inner");
    inner->overlayFrom(nullptr, &tree);
    QCOMPARE(inner->r("x")->getInt(), 1);
    QCOMPARE(inner->r("y")->getInt(), 2);
    QCOMPARE(inner->r("inner.y")->getInt(), 2);
    QVERIFY(inner->r("inner.inner")->isEmpty());

    // Overlaying itself is a no-op.
    const QByteArray before = tree.exportToJson(true);
    tree.overlayFrom(nullptr, &tree);
    QCOMPARE(tree.exportToJson(true), before);
}

void TestModuleObject::overlayFromNothingChangesNothing()
{
    ModuleObject target;
    target.set(nullptr, "a", 1);
    target.setValue(nullptr, 7);
    const QByteArray before = target.exportToJson(true);
    QSignalSpy changed(&target, &ModuleObject::changed);
    QSignalSpy inserted(&target, &ModuleObject::childInserted);
    QSignalSpy cleared(&target, &ModuleObject::cleared);
    target.overlayFrom(this, nullptr);
    target.overlayFrom(this, ModuleManager::emptyMobj());
    ModuleObject null;
    target.overlayFrom(this, &null);
    QCOMPARE(target.exportToJson(true), before);
    QCOMPARE(changed.count() + inserted.count() + cleared.count(), 0);

    // The empty node ignores overlays.
    ModuleObject source;
    source.set(nullptr, "k", 1);
    ModuleManager::emptyMobj()->overlayFrom(this, &source);
    QCOMPARE(ModuleManager::emptyMobj()->cmobjCount(), 0);
}

void TestModuleObject::overlayDefaultLayoutWithRecord()
{
    // The use it was made for: a record written over its layout with defaults, so that every key
    // of the layout is present, in the layout's order, with the record's values.
    ModuleObject layout;
    QVERIFY(layout.importFromJson(nullptr, R"({"pattern":{"origin":0,"s_type":false,"row":1,"col":1,"exchange":false,
        "rank_v":false},"calibrate":{"toolset":null,"use_p4":true,"points":null},"waypoint":null,"points":null})"));
    ModuleObject record;
    QVERIFY(record.importFromJson(nullptr, R"({"name":"a","pattern":{"col":30,"row":40},
        "calibrate":{"x_span":1.25,"use_p4":false,"points":[[[0.0,0.0],[0.5,0.0]]]},
        "points":[{"wobj":{"trans":[0.1,0.2,0.3]}}]})"));
    ModuleObject out("temp");
    out.copyFrom(nullptr, &layout);
    out.overlayFrom(nullptr, &record);
    QCOMPARE(out.cmobjNames(), (QStringList{"pattern", "calibrate", "waypoint", "points", "name"}));
    QCOMPARE(out.r("pattern")->cmobjNames(),
             (QStringList{"origin", "s_type", "row", "col", "exchange", "rank_v"}));
    QCOMPARE(out.r("pattern.row")->getInt(), 40);
    QCOMPARE(out.r("pattern.col")->getInt(), 30);
    QCOMPARE(out.r("pattern.s_type")->value(), QVariant(false));
    QCOMPARE(out.r("calibrate")->cmobjNames(), (QStringList{"toolset", "use_p4", "points", "x_span"}));
    QCOMPARE(out.r("calibrate.use_p4")->getBool(true), false);
    QCOMPARE(out.r("calibrate.points.#0.#1.#0")->getDouble(), 0.5);
    QCOMPARE(out.r("points.#0.wobj.trans.#2")->getDouble(), 0.3);
    QVERIFY(out.r("waypoint")->isNull());
}

void TestModuleObject::ancestorsAndIndex()
{
    ModuleObject root("root");
    root.set(nullptr, "pallet.toolset.tool", 1);
    ModuleObject *tool = root.r("pallet.toolset.tool");
    QCOMPARE(tool->p(0), root.r("pallet.toolset"));
    QCOMPARE(tool->pmobj(), root.r("pallet.toolset"));
    QCOMPARE(tool->p(1), root.r("pallet"));
    QCOMPARE(tool->p(2), &root);
    QVERIFY(tool->p(3)->isEmpty());
    QVERIFY(tool->p(10)->isEmpty());
    QCOMPARE(root.r("pallet")->indexInPmobj(), 0);
    QCOMPARE(root.indexInPmobj(), -1);
    root.set(nullptr, "b", 1);
    QCOMPARE(root.r("b")->indexInPmobj(), 1);
}

void TestModuleObject::isNullAndIsEmpty_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<bool>("isNull");
    QTest::addColumn<bool>("isEmpty");

    QTest::newRow("never filled") << "blank" << true << false;
    QTest::newRow("with value") << "valued" << false << false;
    QTest::newRow("with children only") << "parent" << false << false;
    QTest::newRow("empty string value") << "emptytext" << false << false;
    QTest::newRow("missing node") << "missing" << true << true;
}

void TestModuleObject::isNullAndIsEmpty()
{
    QFETCH(QString, path);
    QFETCH(bool, isNull);
    QFETCH(bool, isEmpty);

    ModuleObject root;
    root.append(nullptr, "blank");
    root.set(nullptr, "valued", 0);
    root.set(nullptr, "parent.child", QVariant());
    root.set(nullptr, "emptytext", QString(""));
    QCOMPARE(root.r(path)->isNull(), isNull);
    QCOMPARE(root.r(path)->isEmpty(), isEmpty);
}

void TestModuleObject::arrayLookupStaysCorrectAfterEdits()
{
    ModuleObject arr;
    for (int i = 0; i < 20; ++i)
        arr.set(nullptr, QStringLiteral("#%1").arg(i), i);
    QVERIFY(arr.remove(nullptr, 3));
    // "#4" now sits at position 3: it must still be found by its name, and "#3" not at all.
    QCOMPARE(arr.r("#4")->getInt(), 4);
    QVERIFY(arr.r("#3")->isEmpty());
    QCOMPARE(arr.r("#19")->getInt(), 19);
    QVERIFY(!arr.isArray());

    auto *odd = new ModuleObject("#3");
    odd->setValue(nullptr, 333);
    arr.insert(nullptr, 0, odd);
    QCOMPARE(arr.r("#3")->getInt(), 333);
    QCOMPARE(arr.r("#0")->getInt(), 0);
}

void TestModuleObject::largeArrayLookup()
{
    ModuleObject root;
    for (int i = 0; i < 1200; ++i)
        root.set(nullptr, QStringLiteral("points.#%1.wobj.trans.#0").arg(i), double(i));
    ModuleObject *points = root.r("points");
    QCOMPARE(points->size(), 1200);
    QVERIFY(points->isArray());
    for (int i = 0; i < 1200; i += 37)
        QCOMPARE(root.r(QStringLiteral("points.#%1.wobj.trans.#0").arg(i))->getDouble(), double(i));
    QCOMPARE(points->c(1199)->indexInPmobj(), 1199);
    QVERIFY(root.r("points.#1200")->isEmpty());
}

void TestModuleObject::duplicateNamesFirstWins()
{
    ModuleObject root;
    for (int i = 0; i < 12; ++i)
        root.append(nullptr, QStringLiteral("n%1").arg(i))->setValue(nullptr, i);
    root.append(nullptr, "n3")->setValue(nullptr, 100);
    QCOMPARE(root.r("n3")->getInt(), 3);
    QVERIFY(root.remove(nullptr, 3));
    QCOMPARE(root.r("n3")->getInt(), 100);
}

void TestModuleObject::renameUpdatesLookup()
{
    ModuleObject root;
    for (int i = 0; i < 12; ++i)
        root.append(nullptr, QStringLiteral("n%1").arg(i));
    ModuleObject *n5 = root.r("n5");
    n5->setName("five");
    QVERIFY(root.r("n5")->isEmpty());
    QCOMPARE(root.r("five"), n5);
}

void TestModuleObject::childListsAndNames()
{
    ModuleObject root;
    root.set(nullptr, "a.x", 1);
    root.set(nullptr, "b", 2);
    QCOMPARE(root.cmobjNames(), (QStringList{"a", "b"}));
    QCOMPARE(root.cmobjNames(true), (QStringList{"a", "a.x", "b"}));
    const QList<ModuleObject *> all = root.cmobjs(true);
    QCOMPARE(all.size(), 3);
    QCOMPARE(all.at(1), root.r("a.x"));
    QCOMPARE(root.cmobjs().size(), 2);
    QCOMPARE(root.cmobjCount(), 2);
    QCOMPARE(root.cmobj(1), root.r("b"));
    QCOMPARE(root.cmobj("a"), root.r("a"));
    QVERIFY(root.hasCmobj("a"));
    QVERIFY(!root.hasCmobj("z"));
    QVERIFY(root.hasCmobj("z", true));
    QCOMPARE(root.cmobjCount(), 3);
    QCOMPARE(root.c("w", true)->name(), QStringLiteral("w"));
    QCOMPARE(root.rmobj("a.x")->getInt(), 1);
}

void TestModuleObject::isArray_data()
{
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<bool>("isArray");
    QTest::newRow("dense") << QStringList{"#0", "#1", "#2"} << true;
    QTest::newRow("gap") << QStringList{"#0", "#2"} << false;
    QTest::newRow("wrong order") << QStringList{"#1", "#0"} << false;
    QTest::newRow("named") << QStringList{"#0", "x"} << false;
    QTest::newRow("leading zero") << QStringList{"#00"} << false;
    QTest::newRow("no children") << QStringList{} << false;
}

void TestModuleObject::isArray()
{
    QFETCH(QStringList, names);
    QFETCH(bool, isArray);
    ModuleObject node;
    for (const QString &n : names)
        node.append(nullptr, n);
    QCOMPARE(node.isArray(), isArray);
}

void TestModuleObject::importFromVariant_data()
{
    QTest::addColumn<QVariant>("input");
    QTest::addColumn<QStringList>("names");
    QTest::addColumn<QVariant>("ownValue");

    QTest::newRow("map") << QVariant(QVariantMap{{"b", 1}, {"a", QVariantList{1.5, 2.5}}})
                         << QStringList{"a", "a.#0", "a.#1", "b"} << QVariant();
    QTest::newRow("list") << QVariant(QVariantList{"x", QVariantMap{{"k", true}}})
                          << QStringList{"#0", "#1", "#1.k"} << QVariant();
    QTest::newRow("scalar") << QVariant(3.25) << QStringList{} << QVariant(3.25);
    QTest::newRow("map with value") << QVariant(QVariantMap{{"@value", 4}, {"c", 1}}) << QStringList{"c"}
                                    << QVariant(4);
}

void TestModuleObject::importFromVariant()
{
    QFETCH(QVariant, input);
    QFETCH(QStringList, names);
    QFETCH(QVariant, ownValue);

    ModuleObject node;
    node.set(nullptr, "old", 1);
    QSignalSpy cleared(&node, &ModuleObject::cleared);
    node.importFromVariant(this, input);
    QCOMPARE(cleared.count(), 1);
    QCOMPARE(node.cmobjNames(true), names);
    QCOMPARE(node.value(), ownValue);
}

void TestModuleObject::importFromVariantMerge()
{
    ModuleObject node;
    node.set(nullptr, "keep", 1);
    node.set(nullptr, "b", 1);
    node.setValue(nullptr, "own");
    node.importFromVariant(this, QVariantMap{{"b", 2}, {"c", 3}, {"@value", "new"}}, true, false, true);
    QCOMPARE(node.cmobjNames(), (QStringList{"keep", "b", "c"}));
    QCOMPARE(node.r("b")->getInt(), 2);
    QCOMPARE(node.getString(), QStringLiteral("own"));
}

void TestModuleObject::exportToVariantRoundTrip()
{
    ModuleObject node;
    node.set(nullptr, "trans.#0", 1.0);
    node.set(nullptr, "trans.#1", 2);
    node.set(nullptr, "name", "n");
    const QVariant v = node.exportToVariant();
    QCOMPARE(v.userType(), int(QMetaType::QVariantMap));
    QCOMPARE(v.toMap().value("trans").userType(), int(QMetaType::QVariantList));
    ModuleObject back;
    back.importFromVariant(nullptr, v);
    QCOMPARE(back.r("trans.#0")->value().userType(), int(QMetaType::Double));
    QCOMPARE(back.r("trans.#1")->value().userType(), int(QMetaType::Int));
    QCOMPARE(back.r("name")->getString(), QStringLiteral("n"));
}

void TestModuleObject::equalsComparesDoublesBitwise()
{
    ModuleObject a;
    ModuleObject b;
    a.set(nullptr, "x", 0.0);
    b.set(nullptr, "x", -0.0);
    QVERIFY(!a.equals(&b));
    b.set(nullptr, "x", 0.0);
    QVERIFY(a.equals(&b));
    b.set(nullptr, "x", 0);
    QVERIFY(!a.equals(&b));
    QVERIFY(!a.equals(nullptr));
}

void TestModuleObject::globalLookupAndReset()
{
    QCOMPARE(orba::m(), ModuleManager::root());
    orba::m()->set(nullptr, "tpallet.pallets.#0.name", "first");
    QCOMPARE(orba::m("tpallet.pallets.#0.name")->getString(), QStringLiteral("first"));
    ModuleObject other;
    other.set(nullptr, "tpallet.x", 1);
    QCOMPARE(orba::m("tpallet.x", &other)->getInt(), 1);
    QVERIFY(orba::m("tpallet.x")->isEmpty());
    QPointer<ModuleObject> pallets = orba::m("tpallet.pallets");
    ModuleManager::resetRoot();
    QVERIFY(pallets.isNull());
    QVERIFY(orba::m("tpallet")->isEmpty());
}

void TestModuleObject::metatypeIsRegistered()
{
    QVERIFY(QMetaType::type("orba::ModuleObject*") != QMetaType::UnknownType);
    ModuleObject node;
    const QVariant v = QVariant::fromValue(&node);
    QCOMPARE(v.value<ModuleObject *>(), &node);
}

void TestModuleObject::childrenDestroyedWithParent()
{
    auto *parent = new ModuleObject("p");
    ModuleObject *child = parent->append(nullptr, "c");
    ModuleObject *grandChild = child->append(nullptr, "g");
    QSignalSpy childGone(child, &QObject::destroyed);
    QSignalSpy grandGone(grandChild, &QObject::destroyed);
    delete parent;
    QCOMPARE(childGone.count(), 1);
    QCOMPARE(grandGone.count(), 1);
}

void TestModuleObject::loadedTreeAnswersWithoutObjects()
{
    ModuleObject built("pallet");
    buildPallet(&built);
    ModuleObject pallet("pallet");
    const qint64 before = ModuleObject::liveObjects();
    QVERIFY(loadPallet(&pallet));
    QCOMPARE(ModuleObject::liveObjects(), before);

    // Whole-tree reads work on the compact form.
    QCOMPARE(pallet.cmobjCount(), 3);
    QCOMPARE(pallet.size(), 3);
    QVERIFY(!pallet.isArray());
    QVERIFY(!pallet.isNull());
    QVERIFY(!pallet.hasValue());
    QCOMPARE(pallet.cmobjNames(false), (QStringList{"name", "points", "pattern"}));
    QCOMPARE(pallet.cmobjNames(true), kPalletNames);
    QCOMPARE(pallet.exportToJson(true), QByteArray(kPalletJson));
    QCOMPARE(pallet.exportToJson(true), built.exportToJson(true));
    QCOMPARE(pallet.exportToVariant(), built.exportToVariant());
    QCOMPARE(ModuleManager::toXml(&pallet, true), ModuleManager::toXml(&built, true));
    QVERIFY(pallet.equals(&built));
    QVERIFY(built.equals(&pallet));
    ModuleObject copy;
    copy.copyFrom(nullptr, &pallet);
    QVERIFY(copy.equals(&pallet));
    QCOMPARE(ModuleObject::liveObjects(), before + 1);

    // Reading values hands out pointers: only then do objects appear, one level at a time.
    QCOMPARE(pallet.r("points.#1.wobj.trans.#2")->getDouble(), 6.5);
    QCOMPARE(ModuleObject::liveObjects(), before + 1 + 3 + 2 + 1 + 2 + 3);
    QCOMPARE(pallet.cmobjNames(true), kPalletNames);
    QVERIFY(pallet.equals(&built));
}

void TestModuleObject::pointerAccessMaterialisesLevels_data()
{
    QTest::addColumn<QString>("access");
    QTest::addColumn<QString>("expectedName");
    QTest::addColumn<int>("expectedIndex");
    QTest::addColumn<int>("newObjects");

    QTest::newRow("c(name)") << "c(name)" << "pattern" << 2 << 3;
    QTest::newRow("c(index)") << "c(index)" << "points" << 1 << 3;
    QTest::newRow("r(path)") << "r(path)" << "#1" << 1 << 3 + 2 + 1 + 2 + 3;
    QTest::newRow("cmobjs()") << "cmobjs()" << "name" << 0 << 3;
    QTest::newRow("cmobjs(recursive)") << "cmobjs(recursive)" << "name" << 0 << 25;
    QTest::newRow("hasCmobj") << "hasCmobj" << "points" << 1 << 3;
    QTest::newRow("c(name, create)") << "c(name, create)" << "extra" << 3 << 4;
    QTest::newRow("append") << "append" << "extra" << 3 << 4;
    QTest::newRow("take") << "take" << "points" << 1 << 3;
}

void TestModuleObject::pointerAccessMaterialisesLevels()
{
    QFETCH(QString, access);
    QFETCH(QString, expectedName);
    QFETCH(int, expectedIndex);
    QFETCH(int, newObjects);

    ModuleObject pallet("pallet");
    QVERIFY(loadPallet(&pallet));
    const qint64 before = ModuleObject::liveObjects();
    ModuleObject *got = nullptr;
    std::unique_ptr<ModuleObject> taken;
    if (access == QLatin1String("c(name)")) {
        got = pallet.c("pattern");
    } else if (access == QLatin1String("c(index)")) {
        got = pallet.c(1);
    } else if (access == QLatin1String("r(path)")) {
        got = pallet.r("points.#1.wobj.trans.#2")->p(2);
        QCOMPARE(pallet.r("points.#1.wobj.trans.#2")->getDouble(), 6.5);
    } else if (access == QLatin1String("cmobjs()")) {
        const QList<ModuleObject *> children = pallet.cmobjs();
        QCOMPARE(children.size(), 3);
        got = children.first();
    } else if (access == QLatin1String("cmobjs(recursive)")) {
        const QList<ModuleObject *> all = pallet.cmobjs(true);
        QCOMPARE(all.size(), kPalletNames.size());
        for (int i = 0; i < all.size(); ++i)
            QCOMPARE(all.at(i), pallet.r(kPalletNames.at(i)));
        got = all.first();
    } else if (access == QLatin1String("hasCmobj")) {
        QVERIFY(pallet.hasCmobj("points"));
        got = pallet.c(1);
    } else if (access == QLatin1String("c(name, create)")) {
        got = pallet.c("extra", true);
    } else if (access == QLatin1String("append")) {
        got = pallet.append(nullptr, "extra");
    } else if (access == QLatin1String("take")) {
        taken.reset(pallet.take(nullptr, 1));
        QVERIFY(taken);
        QCOMPARE(taken->p(0), ModuleManager::emptyMobj());
        QCOMPARE(taken->indexInPmobj(), -1);
        QCOMPARE(taken->r("#0.wobj.rot.#2")->getDouble(), 0.5);
        QCOMPARE(pallet.cmobjNames(false), (QStringList{"name", "pattern"}));
        QCOMPARE(pallet.c(1)->indexInPmobj(), 1);
        QCOMPARE(taken->name(), expectedName);
        return;
    }
    QVERIFY(got);
    QVERIFY(!got->isEmpty());
    QCOMPARE(got->name(), expectedName);
    QCOMPARE(got->indexInPmobj(), expectedIndex);
    QCOMPARE(ModuleObject::liveObjects() - before, qint64(newObjects));
    // Handed-out nodes are real children: parent pointers and lookups agree.
    if (got->p(0) == &pallet)
        QCOMPARE(pallet.c(expectedIndex), got);
    else
        QCOMPARE(got->p(0), pallet.c("points"));
    // Asking again hands out the same objects.
    QCOMPARE(ModuleObject::liveObjects() - before, qint64(newObjects));
}

void TestModuleObject::pathWritesAfterPartialMaterialisation_data()
{
    QTest::addColumn<QString>("handOut");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QVariant>("value");

    QTest::newRow("nothing handed out, existing value") << "" << "points.#1.wobj.trans.#0" << QVariant(9.25);
    QTest::newRow("nothing handed out, new element") << "" << "points.#1.wobj.near.#3" << QVariant(7);
    QTest::newRow("nothing handed out, new place") << "" << "points.#4.wobj.trans.#0" << QVariant(1.0);
    QTest::newRow("sibling handed out") << "points.#0.wobj" << "points.#1.wobj.rot.#2" << QVariant(2.0);
    QTest::newRow("parent handed out") << "points.#1" << "points.#1.wobj.trans.#1" << QVariant(-1.5);
    QTest::newRow("target handed out") << "points.#1.wobj.trans.#1" << "points.#1.wobj.trans.#1"
                                      << QVariant(QStringLiteral("x"));
    QTest::newRow("new child of a compact node") << "points" << "points.#0.wobj.extra" << QVariant(true);
    QTest::newRow("uncanonical value type") << "points.#0" << "points.#1.wobj.trans.#2" << QVariant(qint64(5));
    QTest::newRow("empty segment") << "" << "pattern..x" << QVariant(1);
}

void TestModuleObject::pathWritesAfterPartialMaterialisation()
{
    QFETCH(QString, handOut);
    QFETCH(QString, path);
    QFETCH(QVariant, value);

    // Whatever is an object or not, a write lands where it lands in a tree of objects.
    ModuleObject compact("pallet");
    QVERIFY(loadPallet(&compact));
    ModuleObject objects("pallet");
    buildPallet(&objects);
    if (!handOut.isEmpty())
        QVERIFY(!compact.r(handOut)->isEmpty());
    compact.set(nullptr, path, value);
    objects.set(nullptr, path, value);
    QVERIFY(compact.equals(&objects));
    QCOMPARE(compact.exportToJson(), objects.exportToJson());
    QCOMPARE(compact.cmobjNames(true), objects.cmobjNames(true));
    QCOMPARE(compact.r(path)->value(), objects.r(path)->value());
}

void TestModuleObject::pathWriteNotifiesHandedOutNode()
{
    ModuleObject pallet("pallet");
    QVERIFY(loadPallet(&pallet));
    QObject sender;
    ModuleObject *element = pallet.r("points.#0.wobj.trans.#1");
    QSignalSpy changed(element, &ModuleObject::changed);
    ModuleObject *wobj = pallet.r("points.#1.wobj");
    QSignalSpy inserted(wobj, &ModuleObject::childInserted);

    pallet.set(&sender, "points.#0.wobj.trans.#1", 8.0);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0), QVariant(8.0));
    QCOMPARE(changed.at(0).at(1), QVariant(2.5));
    QCOMPARE(changed.at(0).at(2).value<QObject *>(), &sender);
    QCOMPARE(pallet.r("points.#0.wobj.trans.#1"), element);

    // The same value again is no change.
    pallet.set(&sender, "points.#0.wobj.trans.#1", 8.0);
    QCOMPARE(changed.count(), 1);

    // A new child of a handed-out node is announced; writes below unseen nodes are not.
    pallet.set(&sender, "points.#1.wobj.rot.#0", 3.0);
    QCOMPARE(inserted.count(), 0);
    pallet.set(&sender, "points.#1.wobj.near.#1", 3.0);
    QCOMPARE(inserted.count(), 1);
    QCOMPARE(inserted.at(0).at(0).value<ModuleObject *>(), wobj->c("near"));
    QCOMPARE(inserted.at(0).at(1).toInt(), 2);
    QCOMPARE(inserted.at(0).at(2).value<QObject *>(), &sender);
    QCOMPARE(pallet.r("points.#1.wobj.near")->cmobjNames(), (QStringList{"#0", "#1"}));
    QCOMPARE(pallet.r("points.#1.wobj.rot.#0")->getDouble(), 3.0);
}

void TestModuleObject::handedOutNodeNotifiesAfterLoad()
{
    ModuleObject pallet("pallet");
    QVERIFY(loadPallet(&pallet));
    QObject sender;
    ModuleObject *row = pallet.r("pattern.row");
    QSignalSpy changed(row, &ModuleObject::changed);
    row->setValue(&sender, 5);
    QCOMPARE(changed.count(), 1);
    QCOMPARE(changed.at(0).at(0), QVariant(5));
    QCOMPARE(changed.at(0).at(1), QVariant(2));
    row->setValue(&sender, 5);
    QCOMPARE(changed.count(), 1);
    row->trigger(&sender);
    QCOMPARE(changed.count(), 2);

    ModuleObject *points = pallet.c("points");
    QSignalSpy inserted(points, &ModuleObject::childInserted);
    QSignalSpy removed(points, &ModuleObject::childRemoved);
    QSignalSpy cleared(points, &ModuleObject::cleared);
    ModuleObject *added = points->append(&sender, "#2");
    QCOMPARE(inserted.count(), 1);
    QCOMPARE(inserted.at(0).at(0).value<ModuleObject *>(), added);
    QCOMPARE(inserted.at(0).at(1).toInt(), 2);
    QVERIFY(points->remove(&sender, 0));
    QCOMPARE(removed.count(), 1);
    QCOMPARE(removed.at(0).at(0).toString(), QStringLiteral("#0"));
    QCOMPARE(removed.at(0).at(1).toInt(), 0);
    points->clear(&sender);
    QCOMPARE(cleared.count(), 1);
    QCOMPARE(points->cmobjCount(), 0);
}

void TestModuleObject::loadIntoWatchedNodeAnnouncesChildren()
{
    ModuleObject pallet("pallet");
    QObject sender;
    QList<ModuleObject *> announced;
    QList<int> counts;
    connect(&pallet, &ModuleObject::childInserted, &pallet, [&](ModuleObject *child, int index, QObject *) {
        announced.append(child);
        counts.append(pallet.cmobjCount());
        QCOMPARE(child->indexInPmobj(), index);
        QCOMPARE(child->p(0), &pallet);
    });
    QVERIFY(pallet.importFromJson(&sender, QByteArray(kPalletJson)));
    QCOMPARE(announced.size(), 3);
    // Each child is announced as it arrives, as when they are appended one by one.
    QCOMPARE(counts, (QList<int>{1, 2, 3}));
    QCOMPARE(announced.at(1), pallet.c("points"));
    QCOMPARE(announced.at(1)->r("#1.wobj.trans.#0")->getDouble(), 4.5);

    // Copying into a watched node announces its children too, an unwatched node stays quiet.
    ModuleObject watched("copy");
    QSignalSpy inserted(&watched, &ModuleObject::childInserted);
    QSignalSpy watchedCleared(&watched, &ModuleObject::cleared);
    watched.copyFrom(&sender, &pallet);
    QCOMPARE(inserted.count(), 3);
    QCOMPARE(watchedCleared.count(), 0);
    watched.copyFrom(&sender, &pallet);
    QCOMPARE(inserted.count(), 6);
    QCOMPARE(watchedCleared.count(), 1);
    QVERIFY(watched.equals(&pallet));
}

void TestModuleObject::mixedTreesCopyCompareAndSerialise()
{
    ModuleObject built("pallet");
    buildPallet(&built);
    ModuleObject mixed("pallet");
    QVERIFY(loadPallet(&mixed));
    QCOMPARE(mixed.r("points.#0.wobj.trans.#2")->getDouble(), 3.5);
    QCOMPARE(mixed.r("pattern")->cmobjCount(), 2);

    QVERIFY(mixed.equals(&built));
    QVERIFY(built.equals(&mixed));
    QCOMPARE(mixed.exportToJson(false), built.exportToJson(false));
    QCOMPARE(ModuleManager::toXml(&mixed, false), ModuleManager::toXml(&built, false));

    ModuleObject copy("copy");
    copy.copyFrom(nullptr, &mixed);
    QCOMPARE(copy.name(), QStringLiteral("copy"));
    QVERIFY(copy.equals(&built));
    QCOMPARE(copy.exportToJson(), built.exportToJson());

    // A copy read back from its own JSON and XML text is the same tree.
    ModuleObject fromJson;
    QVERIFY(fromJson.importFromJson(nullptr, copy.exportToJson()));
    QVERIFY(fromJson.equals(&built));
    ModuleObject fromXml;
    QVERIFY(ModuleManager::fromXml(nullptr, &fromXml, ModuleManager::toXml(&mixed, true)));
    QVERIFY(fromXml.equals(&built));

    // A difference deep in a compact part is seen from either side.
    built.set(nullptr, "points.#1.wobj.rot.#2", 1.0000000000000002);
    QVERIFY(!mixed.equals(&built));
    QVERIFY(!built.equals(&mixed));
    QVERIFY(!copy.equals(&built));
    QVERIFY(copy.equals(&mixed));

    // Variants carry the same content.
    ModuleObject viaVariant;
    viaVariant.importFromVariant(nullptr, QVariant::fromValue(&mixed));
    QVERIFY(viaVariant.equals(&mixed));
    QCOMPARE(viaVariant.exportToVariant(), mixed.exportToVariant());
}

void TestModuleObject::copiesOfCompactTreesStayIndependent()
{
    ModuleObject original("pallet");
    QVERIFY(loadPallet(&original));
    const QByteArray text = original.exportToJson();
    ModuleObject first;
    ModuleObject second;
    first.copyFrom(nullptr, &original);
    second.copyFrom(nullptr, &first);

    first.set(nullptr, "points.#0.wobj.trans.#0", 100.0);
    second.r("points.#1.wobj.rot")->set(nullptr, "#1", 200.0);
    original.c("points")->remove(nullptr, 0);
    QCOMPARE(first.r("points.#0.wobj.trans.#0")->getDouble(), 100.0);
    QCOMPARE(first.r("points.#1.wobj.rot.#1")->getDouble(), 0.0);
    QCOMPARE(second.r("points.#0.wobj.trans.#0")->getDouble(), 1.5);
    QCOMPARE(second.r("points.#1.wobj.rot.#1")->getDouble(), 200.0);
    QCOMPARE(original.r("points")->cmobjCount(), 1);

    ModuleObject fresh;
    QVERIFY(fresh.importFromJson(nullptr, text));
    QCOMPARE(fresh.r("points")->cmobjCount(), 2);
    first.copyFrom(nullptr, &fresh);
    QVERIFY(first.equals(&fresh));
    QVERIFY(!first.equals(&second));

    // A copy of a subtree into itself.
    first.copyFrom(nullptr, first.r("points.#1"));
    QCOMPARE(first.cmobjNames(false), QStringList{"wobj"});
    QCOMPARE(first.r("wobj.trans.#2")->getDouble(), 6.5);
}

void TestModuleObject::overlayOntoCompactTree()
{
    // A layout with defaults, read from text (compact), overlaid with a record.
    ModuleObject layout("pallet");
    QVERIFY(layout.importFromJson(nullptr, R"({"name":"","desc":"-","pattern":{"row":1,"col":1,"s_type":false},)"
                                           R"("points":[{"a":1},{"a":2}]})"));
    ModuleObject record;
    QVERIFY(record.importFromJson(nullptr, R"({"pattern":{"col":4,"extra":1},"name":"p","points":[{"b":3}],"new":5})"));
    ModuleObject objects("pallet");
    QVERIFY(objects.importFromJson(nullptr, layout.exportToJson()));
    objects.cmobjs(true);
    QVERIFY(objects.equals(&layout));

    QObject sender;
    ModuleObject *pattern = layout.c("pattern");
    QSignalSpy patternInserted(pattern, &ModuleObject::childInserted);
    layout.overlayFrom(&sender, &record);
    objects.overlayFrom(&sender, &record);
    QVERIFY(layout.equals(&objects));
    QCOMPARE(layout.exportToJson(), objects.exportToJson());
    QCOMPARE(layout.cmobjNames(false), (QStringList{"name", "desc", "pattern", "points", "new"}));
    QCOMPARE(layout.r("pattern.col")->getInt(), 4);
    QCOMPARE(layout.r("pattern.row")->getInt(), 1);
    QCOMPARE(patternInserted.count(), 1);
    QCOMPARE(patternInserted.at(0).at(0).value<ModuleObject *>(), pattern->c("extra"));
    QCOMPARE(layout.r("points")->size(), 1);
    QCOMPARE(layout.r("points.#0.b")->getInt(), 3);
    QVERIFY(layout.r("points.#0.a")->isEmpty());
    QCOMPARE(record.exportToJson(), QByteArray(R"({"pattern":{"col":4,"extra":1},"name":"p","points":[{"b":3}],"new":5})"));
}

void TestModuleObject::takeInsertRemoveOnCompactParent()
{
    ModuleObject pallet("pallet");
    QVERIFY(loadPallet(&pallet));
    ModuleObject other("other");
    QVERIFY(loadPallet(&other));
    QObject sender;

    // A node that is not a child is refused without touching the parent.
    ModuleObject stranger;
    QCOMPARE(pallet.take(&sender, &stranger), nullptr);
    QVERIFY(!pallet.remove(&sender, &stranger));
    QCOMPARE(pallet.take(&sender, 3), nullptr);
    QVERIFY(!pallet.remove(&sender, -1));
    QCOMPARE(pallet.cmobjCount(), 3);

    // Insert at the front of a compact parent: positions and names follow.
    ModuleObject *moved = other.r("points.#1");
    QSignalSpy otherRemoved(other.c("points"), &ModuleObject::childRemoved);
    QCOMPARE(pallet.insert(&sender, 0, moved), moved);
    QCOMPARE(otherRemoved.count(), 1);
    QCOMPARE(moved->p(0), &pallet);
    QCOMPARE(pallet.cmobjNames(false), (QStringList{"#1", "name", "points", "pattern"}));
    for (int i = 0; i < pallet.cmobjCount(); ++i)
        QCOMPARE(pallet.c(i)->indexInPmobj(), i);
    QCOMPARE(pallet.r("#1.wobj.trans.#0")->getDouble(), 4.5);
    QCOMPARE(other.r("points")->cmobjCount(), 1);

    // Take and remove by position on a parent whose children are still compact.
    ModuleObject *points = pallet.c("points");
    QSignalSpy removed(points, &ModuleObject::childRemoved);
    std::unique_ptr<ModuleObject> first(points->take(&sender, 0));
    QVERIFY(first);
    QCOMPARE(removed.count(), 1);
    QCOMPARE(first->r("wobj.rot.#2")->getDouble(), 0.5);
    QCOMPARE(points->c(0)->r("wobj.trans.#2")->getDouble(), 6.5);
    QCOMPARE(points->c(0)->indexInPmobj(), 0);
    ModuleObject *pattern = pallet.c("pattern");
    QVERIFY(pattern->remove(&sender, 1));
    QCOMPARE(pattern->cmobjNames(), QStringList{"row"});

    // The taken node goes back in, compact subtree and all.
    QCOMPARE(points->append(&sender, first.get()), first.get());
    ModuleObject *back = first.release();
    QCOMPARE(back->indexInPmobj(), 1);
    QCOMPARE(points->c(1)->r("wobj.rot.#2")->getDouble(), 0.5);
    // A fresh child appended to a compact node lands after the existing ones.
    ModuleObject *wobj = pallet.r("points.#0.wobj");
    QCOMPARE(wobj->append(&sender, "near")->indexInPmobj(), 2);
    QCOMPARE(wobj->cmobjNames(), (QStringList{"trans", "rot", "near"}));
}

void TestModuleObject::clearOnCompactParent()
{
    ModuleObject pallet("pallet");
    QVERIFY(loadPallet(&pallet));
    QObject sender;
    ModuleObject *points = pallet.c("points");
    ModuleObject *pattern = pallet.c("pattern");
    QSignalSpy palletCleared(&pallet, &ModuleObject::cleared);
    QSignalSpy pointsCleared(points, &ModuleObject::cleared);
    QSignalSpy patternCleared(pattern, &ModuleObject::cleared);
    QPointer<ModuleObject> guard(points);
    const qint64 before = ModuleObject::liveObjects();
    pallet.clear(&sender, true, true);
    QCOMPARE(palletCleared.count(), 1);
    QCOMPARE(pointsCleared.count(), 1);
    QCOMPARE(patternCleared.count(), 1);
    QVERIFY(guard.isNull());
    QCOMPARE(ModuleObject::liveObjects(), before - 3);
    QVERIFY(pallet.isNull());
    QCOMPARE(pallet.cmobjCount(), 0);

    // Clearing a compact node that was never opened, and an empty one.
    QVERIFY(loadPallet(&pallet));
    pallet.clear(&sender);
    QCOMPARE(palletCleared.count(), 2);
    pallet.clear(&sender);
    QCOMPARE(palletCleared.count(), 2);
    QVERIFY(pallet.r("points")->isEmpty());
}

void TestModuleObject::deletingParentWithCompactChildren()
{
    const qint64 before = ModuleObject::liveObjects();
    auto *pallet = new ModuleObject("pallet");
    QVERIFY(loadPallet(pallet));
    QPointer<ModuleObject> place = pallet->r("points.#1");
    QPointer<ModuleObject> row = pallet->r("pattern.row");
    QSignalSpy placeGone(place.data(), &QObject::destroyed);
    delete pallet;
    QVERIFY(place.isNull());
    QVERIFY(row.isNull());
    QCOMPARE(placeGone.count(), 1);
    QCOMPARE(ModuleObject::liveObjects(), before);

    // A taken node with compact children outlives its former parent.
    auto *parent = new ModuleObject("parent");
    QVERIFY(loadPallet(parent));
    std::unique_ptr<ModuleObject> taken(parent->take(nullptr, 1));
    delete parent;
    QCOMPARE(taken->r("#0.wobj.trans.#1")->getDouble(), 2.5);
    QCOMPARE(taken->p(0), ModuleManager::emptyMobj());
}

void TestModuleObject::duplicateNamesInCompactTree()
{
    // Built node by node (the readers refuse duplicate keys); a copy keeps its children compact.
    ModuleObject objects;
    objects.append(nullptr, "a")->setValue(nullptr, 1);
    objects.append(nullptr, "b")->set(nullptr, "x", 1);
    objects.append(nullptr, "a")->setValue(nullptr, 2);
    objects.append(nullptr, "#0")->setValue(nullptr, 3);
    ModuleObject compact;
    const qint64 before = ModuleObject::liveObjects();
    compact.copyFrom(nullptr, &objects);
    QCOMPARE(ModuleObject::liveObjects(), before);

    compact.set(nullptr, "a", 10);
    objects.set(nullptr, "a", 10);
    compact.set(nullptr, "b.x", 5);
    objects.set(nullptr, "b.x", 5);
    QCOMPARE(ModuleObject::liveObjects(), before);
    QVERIFY(compact.equals(&objects));
    QCOMPARE(compact.c(0)->getInt(), 10);
    QCOMPARE(compact.c(2)->getInt(), 2);
    QCOMPARE(compact.r("#0")->getInt(), 3);
    QCOMPARE(compact.cmobjNames(true), (QStringList{"a", "b", "b.x", "a", "#0"}));
}

QTEST_GUILESS_MAIN(TestModuleObject)
#include "tst_moduleobject.moc"
