#include <dwel/bfactory.h>
#include <dwel/bmodule.h>
#include <dwel/centerwidget.h>

#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <QLabel>
#include <QPointer>
#include <QtTest>

#include <functional>

namespace {

// Writes every lifecycle call it gets into a shared journal, then lets the base forward it.
class JournalModule : public dwel::BModule
{
public:
    JournalModule(const QString &tag, QStringList *journal, QObject *parent = nullptr)
        : dwel::BModule(parent), m_tag(tag), m_journal(journal)
    {
    }
    QString name() const override { return m_tag; }

#define JOURNAL(fn)                                                                                         \
    void fn() override                                                                                      \
    {                                                                                                       \
        m_journal->append(m_tag + QLatin1Char(':') + QLatin1String(#fn));                                   \
        dwel::BModule::fn();                                                                                \
    }
    JOURNAL(init)
    JOURNAL(afterInit)
    JOURNAL(setup)
    JOURNAL(afterSetup)
    JOURNAL(render)
    JOURNAL(afterRender)
    JOURNAL(idle)
    JOURNAL(afterIdle)
    JOURNAL(beforeDetach)
    JOURNAL(detach)
#undef JOURNAL

private:
    QString m_tag;
    QStringList *m_journal;
};

using Call = std::function<void(dwel::BModule *)>;

} // namespace

Q_DECLARE_METATYPE(Call)

class TestBModule : public QObject
{
    Q_OBJECT

private slots:
    void init() { orba::ModuleManager::resetRoot(); }
    void cleanup() { orba::ModuleManager::resetRoot(); }

    void factoryCreatesRegisteredModules();
    void lifecycleReachesSubmodulesInOrder_data();
    void lifecycleReachesSubmodulesInOrder();
    void submodulesAreOwned();
    void bindMobjJsonCreatesNodes();
    void bindMobjJsonReplaceResets();
    void bindMobjJsonWithoutReplaceKeepsContent();
    void bindMobjJsonRejectsBadFiles_data();
    void bindMobjJsonRejectsBadFiles();
    void centerWidgetAddsAndShowsPages();
    void centerWidgetForgetsDestroyedPages();
    void centerWidgetDeletedWithItsPages();
};

void TestBModule::factoryCreatesRegisteredModules()
{
    QCOMPARE(bfactory(), bfactory());
    QStringList journal;
    bfactory()->regist(QStringLiteral("tstmod"), [&journal](QObject *parent) -> dwel::BModule * {
        return new JournalModule(QStringLiteral("tstmod"), &journal, parent);
    });
    QVERIFY(bfactory()->has(QStringLiteral("tstmod")));
    QVERIFY(bfactory()->keys().contains(QStringLiteral("tstmod")));

    QObject owner;
    dwel::BModule *module = bfactory()->create(QStringLiteral("tstmod"), &owner);
    QVERIFY(module);
    QCOMPARE(module->parent(), &owner);
    QCOMPARE(module->name(), QStringLiteral("tstmod"));
    QCOMPARE(bfactory()->create(QStringLiteral("nosuchmodule"), &owner), nullptr);

    QVERIFY(bfactory()->unregist(QStringLiteral("tstmod")));
    QVERIFY(!bfactory()->has(QStringLiteral("tstmod")));
}

void TestBModule::lifecycleReachesSubmodulesInOrder_data()
{
    QTest::addColumn<Call>("call");
    QTest::addColumn<QString>("fn");
    QTest::newRow("init") << Call([](dwel::BModule *m) { m->init(); }) << "init";
    QTest::newRow("afterInit") << Call([](dwel::BModule *m) { m->afterInit(); }) << "afterInit";
    QTest::newRow("setup") << Call([](dwel::BModule *m) { m->setup(); }) << "setup";
    QTest::newRow("afterSetup") << Call([](dwel::BModule *m) { m->afterSetup(); }) << "afterSetup";
    QTest::newRow("render") << Call([](dwel::BModule *m) { m->render(); }) << "render";
    QTest::newRow("afterRender") << Call([](dwel::BModule *m) { m->afterRender(); }) << "afterRender";
    QTest::newRow("idle") << Call([](dwel::BModule *m) { m->idle(); }) << "idle";
    QTest::newRow("afterIdle") << Call([](dwel::BModule *m) { m->afterIdle(); }) << "afterIdle";
    QTest::newRow("beforeDetach") << Call([](dwel::BModule *m) { m->beforeDetach(); }) << "beforeDetach";
    QTest::newRow("detach") << Call([](dwel::BModule *m) { m->detach(); }) << "detach";
}

void TestBModule::lifecycleReachesSubmodulesInOrder()
{
    QFETCH(Call, call);
    QFETCH(QString, fn);
    QStringList journal;
    JournalModule top(QStringLiteral("top"), &journal);
    auto *b = new JournalModule(QStringLiteral("b"), &journal);
    auto *a = new JournalModule(QStringLiteral("a"), &journal);
    auto *inner = new JournalModule(QStringLiteral("inner"), &journal);
    top.addSubmodule(b);
    top.addSubmodule(a);
    b->addSubmodule(inner);
    top.addSubmodule(b); // adding twice keeps one entry

    call(&top);
    QCOMPARE(journal, (QStringList{QStringLiteral("top:") + fn, QStringLiteral("b:") + fn,
                                   QStringLiteral("inner:") + fn, QStringLiteral("a:") + fn}));
}

void TestBModule::submodulesAreOwned()
{
    QStringList journal;
    QPointer<dwel::BModule> sub;
    QPointer<dwel::BModule> gone;
    {
        JournalModule top(QStringLiteral("top"), &journal);
        sub = new JournalModule(QStringLiteral("sub"), &journal);
        gone = new JournalModule(QStringLiteral("gone"), &journal);
        top.addSubmodule(sub);
        top.addSubmodule(gone);
        QCOMPARE(sub->parent(), &top);
        delete gone.data();
        QCOMPARE(top.submodules(), (QList<dwel::BModule *>{sub.data()}));
        top.init();
        QCOMPARE(journal, (QStringList{QStringLiteral("top:init"), QStringLiteral("sub:init")}));
        QCOMPARE(top.wgt(), nullptr);
    }
    QVERIFY(sub.isNull());
}

void TestBModule::bindMobjJsonCreatesNodes()
{
    dwel::BModule module;
    QVERIFY(module.bindMobjJson(QStringLiteral("tstb"), QStringLiteral(":/tstb/template/tstb.json"), true));

    orba::ModuleObject *root = orba::m(QStringLiteral("tstb"));
    QVERIFY(!root->isEmpty());
    QCOMPARE(root->cmobjNames(), (QStringList{QStringLiteral("pallets"), QStringLiteral("default"),
                                              QStringLiteral("trigger")}));
    QVERIFY(orba::m(QStringLiteral("tstb.pallets"))->isNull());
    QCOMPARE(orba::m(QStringLiteral("tstb.pallets"))->size(), 0);
    QCOMPARE(orba::m(QStringLiteral("tstb.default.pattern.row"))->value(), QVariant(1));
    QCOMPARE(orba::m(QStringLiteral("tstb.default.pattern.s_type"))->value(), QVariant(false));
    QCOMPARE(orba::m(QStringLiteral("tstb.default.calibrate.use_p4"))->getBool(false), true);
    QCOMPARE(orba::m(QStringLiteral("tstb.default.ratio"))->getDouble(), 0.5);
    QCOMPARE(orba::m(QStringLiteral("tstb.default.pattern"))->cmobjNames(),
             (QStringList{QStringLiteral("origin"), QStringLiteral("s_type"), QStringLiteral("row"),
                          QStringLiteral("col")}));
    for (const QString &trigger : {QStringLiteral("refresh_table"), QStringLiteral("save_to_rc"),
                                   QStringLiteral("load_from_rc")}) {
        orba::ModuleObject *node = orba::m(QStringLiteral("tstb.trigger.") + trigger);
        QVERIFY2(!node->isEmpty(), qPrintable(trigger));
        QVERIFY(node->isNull());
    }
    QVERIFY(orba::m(QStringLiteral("tstb.default.calibrate.toolset"))->isNull());
    QVERIFY(!orba::m(QStringLiteral("tstb.default.calibrate.toolset"))->isEmpty());
}

void TestBModule::bindMobjJsonReplaceResets()
{
    dwel::BModule module;
    QVERIFY(module.bindMobjJson(QStringLiteral("tstb"), QStringLiteral(":/tstb/template/tstb.json"), true));
    orba::m()->set(nullptr, QStringLiteral("tstb.default.pattern.row"), 7);
    orba::m(QStringLiteral("tstb.pallets"))->append(nullptr, QStringLiteral("#0"));
    QVERIFY(module.bindMobjJson(QStringLiteral("tstb"), QStringLiteral(":/tstb/template/tstb.json"), true));
    QCOMPARE(orba::m(QStringLiteral("tstb.default.pattern.row"))->getInt(), 1);
    QCOMPARE(orba::m(QStringLiteral("tstb.pallets"))->size(), 0);
}

void TestBModule::bindMobjJsonWithoutReplaceKeepsContent()
{
    dwel::BModule module;
    orba::m()->set(nullptr, QStringLiteral("tstb.default.pattern.row"), 7);
    QVERIFY(module.bindMobjJson(QStringLiteral("tstb"), QStringLiteral(":/tstb/template/tstb.json"), false));
    QCOMPARE(orba::m(QStringLiteral("tstb.default.pattern.row"))->getInt(), 7);
    QCOMPARE(orba::m(QStringLiteral("tstb.default.pattern.col"))->getInt(), 1);
    QVERIFY(!orba::m(QStringLiteral("tstb.trigger.refresh_table"))->isEmpty());
}

void TestBModule::bindMobjJsonRejectsBadFiles_data()
{
    QTest::addColumn<QString>("path");
    QTest::newRow("missing file") << ":/tstb/template/nothing.json";
    QTest::newRow("truncated json") << ":/tstb/template/broken.json";
}

void TestBModule::bindMobjJsonRejectsBadFiles()
{
    QFETCH(QString, path);
    dwel::BModule module;
    orba::m()->set(nullptr, QStringLiteral("tstb.default.pattern.row"), 7);
    const QByteArray before = orba::m(QStringLiteral("tstb"))->exportToJson();
    QVERIFY(!module.bindMobjJson(QStringLiteral("tstb"), path, true));
    QCOMPARE(orba::m(QStringLiteral("tstb"))->exportToJson(), before);
}

void TestBModule::centerWidgetAddsAndShowsPages()
{
    dwel::BModule module;
    dwel::CenterWidget *center = instantiatedCenterWidget(&module);
    QVERIFY(center);
    QCOMPARE(center, dwel::CenterWidget::instance());

    QSignalSpy added(center, &dwel::CenterWidget::pageAdded);
    QSignalSpy shown(center, &dwel::CenterWidget::pageShown);
    auto *one = new QLabel(QStringLiteral("one"));
    auto *two = new QLabel(QStringLiteral("two"));
    QVERIFY(dwel::CenterWidget::addPage(&module, QStringLiteral("tst.one"), one));
    QVERIFY(dwel::CenterWidget::addPage(&module, QStringLiteral("tst.two"), two));
    QVERIFY(!dwel::CenterWidget::addPage(&module, QStringLiteral("tst.two"), new QLabel(center)));
    QVERIFY(!dwel::CenterWidget::addPage(&module, QString(), new QLabel(center)));
    QVERIFY(!dwel::CenterWidget::addPage(&module, QStringLiteral("tst.null"), nullptr));
    QCOMPARE(added.count(), 2);
    QVERIFY(center->hasPage(QStringLiteral("tst.one")));
    QCOMPARE(center->page(QStringLiteral("tst.two")), two);
    QCOMPARE(two->parentWidget(), center);

    QVERIFY(center->showPage(QStringLiteral("tst.two")));
    QCOMPARE(center->currentWidget(), two);
    QCOMPARE(center->currentPageName(), QStringLiteral("tst.two"));
    QCOMPARE(shown.count(), 1);
    QCOMPARE(shown.at(0).at(0).toString(), QStringLiteral("tst.two"));
    QVERIFY(!center->showPage(QStringLiteral("tst.none")));
    QCOMPARE(center->currentPageName(), QStringLiteral("tst.two"));
    delete one;
    delete two;
}

void TestBModule::centerWidgetForgetsDestroyedPages()
{
    dwel::BModule module;
    auto *page = new QLabel(QStringLiteral("page"));
    QVERIFY(dwel::CenterWidget::addPage(&module, QStringLiteral("tst.temp"), page));
    QVERIFY(dwel::CenterWidget::instance()->pageNames().contains(QStringLiteral("tst.temp")));
    delete page;
    QVERIFY(!dwel::CenterWidget::instance()->hasPage(QStringLiteral("tst.temp")));
    QCOMPARE(dwel::CenterWidget::instance()->page(QStringLiteral("tst.temp")), nullptr);
    // The name is free again.
    auto *again = new QLabel(QStringLiteral("again"));
    QVERIFY(dwel::CenterWidget::addPage(&module, QStringLiteral("tst.temp"), again));
    delete again;
}

void TestBModule::centerWidgetDeletedWithItsPages()
{
    QPointer<dwel::CenterWidget> shared = dwel::CenterWidget::instance();
    dwel::BModule module;
    QPointer<QLabel> listed = new QLabel(QStringLiteral("listed"));
    QVERIFY(dwel::CenterWidget::addPage(&module, QStringLiteral("tst.listed"), listed));
    // Its pages are children: they go with it, and their bookkeeping must not outlive it.
    delete shared.data();
    QVERIFY(listed.isNull());
    QVERIFY(dwel::CenterWidget::instance() != nullptr);
    QVERIFY(!dwel::CenterWidget::instance()->hasPage(QStringLiteral("tst.listed")));
}

QTEST_MAIN(TestBModule)
#include "tst_bmodule.moc"
