#include "navigationview.h"
#include "pendanttestutil.h"

#include <dwel/bmodule.h>
#include <kx/kx.h>
#include <orba/moduleobject.h>

#include <QSignalSpy>
#include <QtTest>

namespace {

class DummyModule : public dwel::BModule
{
public:
    QString name() const override { return QStringLiteral("dummy"); }
};

// "Title|parent|nav|position" per entry.
void registerEntries(dwel::BModule *module, const QStringList &entries)
{
    for (const QString &line : entries) {
        const QStringList f = line.split('|');
        orba::ModuleObject *entry = kx::tnav::registerPage(module, f.at(0), f.at(1), QString(), f.at(3).toInt());
        if (!f.at(2).isEmpty())
            entry->set(module, QStringLiteral("nav"), f.at(2));
    }
}

QStringList flatten(QTreeWidget *tree)
{
    QStringList rows;
    QTreeWidgetItemIterator it(tree);
    for (; *it; ++it) {
        QString indent;
        for (QTreeWidgetItem *p = (*it)->parent(); p; p = p->parent())
            indent += QStringLiteral("  ");
        rows.append(indent + (*it)->text(0));
    }
    return rows;
}

} // namespace

class TestNavigationView : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void grouping_data();
    void grouping();
    void pathAndLookup();
    void clickRequestsPage();
    void followsLateRegistration();
};

void TestNavigationView::init()
{
    resetHost();
}

void TestNavigationView::grouping_data()
{
    QTest::addColumn<QStringList>("entries");
    QTest::addColumn<QStringList>("tree");

    QTest::newRow("no entries") << QStringList{} << QStringList{"Home"};
    QTest::newRow("one page under robot.pack")
        << QStringList{"Tray|robot.pack|tpallet.page|-1"} << QStringList{"Home", "Robot", "  Pack", "    Tray"};
    QTest::newRow("two pages share their group")
        << QStringList{"Tray|robot.pack|a|-1", "Glue|robot.pack|b|-1"}
        << QStringList{"Home", "Robot", "  Pack", "    Tray", "    Glue"};
    QTest::newRow("position orders, -1 goes last")
        << QStringList{"Last|robot|a|-1", "Second|robot|b|2", "First|robot|c|1"}
        << QStringList{"Home", "Robot", "  First", "  Second", "  Last"};
    QTest::newRow("separate groups")
        << QStringList{"Tray|robot.pack|a|-1", "Io|setting|b|-1"}
        << QStringList{"Home", "Robot", "  Pack", "    Tray", "Setting", "  Io"};
    QTest::newRow("entry without parent is top level")
        << QStringList{"Alone||a|-1"} << QStringList{"Home", "Alone"};
}

void TestNavigationView::grouping()
{
    QFETCH(QStringList, entries);
    QFETCH(QStringList, tree);
    DummyModule module;
    registerEntries(&module, entries);
    NavigationView view;
    QCOMPARE(flatten(&view), tree);
}

void TestNavigationView::pathAndLookup()
{
    DummyModule module;
    registerEntries(&module, {QStringLiteral("Tray|robot.pack|tpallet.page|-1")});
    NavigationView view;
    QCOMPARE(view.pathOfPage(QStringLiteral("tpallet.page")), QStringLiteral("Robot > Pack > Tray"));
    QCOMPARE(view.findPage(QStringLiteral("tray")), QStringLiteral("tpallet.page"));
    QCOMPARE(view.findPage(QStringLiteral("tpallet.page")), QStringLiteral("tpallet.page"));
    QCOMPARE(view.findPage(QStringLiteral("dummy")), QStringLiteral("tpallet.page")); // by module key
    QVERIFY(view.findPage(QStringLiteral("Pack")).isEmpty()); // groups are not pages
    QCOMPARE(view.pages(), QStringList{QStringLiteral("tpallet.page")});
    QVERIFY(view.itemForPage(QStringLiteral("nothing")) == nullptr);
    view.selectPage(QStringLiteral("tpallet.page"));
    QCOMPARE(view.currentItem()->text(0), QStringLiteral("Tray"));
}

void TestNavigationView::clickRequestsPage()
{
    DummyModule module;
    registerEntries(&module, {QStringLiteral("Tray|robot.pack|tpallet.page|-1")});
    NavigationView view;
    view.resize(220, 400);
    view.show();
    QVERIFY(QTest::qWaitForWindowExposed(&view));
    QSignalSpy spy(&view, &NavigationView::pageRequested);
    QTreeWidgetItem *item = view.itemForPage(QStringLiteral("tpallet.page"));
    QVERIFY(item);
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualItemRect(item).center());
    QCOMPARE(spy.count(), 1);
    QCOMPARE(spy.first().at(0).toString(), QStringLiteral("tpallet.page"));
    // A group is not a page.
    QTest::mouseClick(view.viewport(), Qt::LeftButton, {}, view.visualItemRect(item->parent()).center());
    QCOMPARE(spy.count(), 1);
}

void TestNavigationView::followsLateRegistration()
{
    NavigationView view;
    DummyModule module;
    orba::ModuleObject *entry = kx::tnav::registerPage(&module, QStringLiteral("Tray"), QStringLiteral("robot.pack"),
                                                       QString(), -1);
    QTRY_VERIFY(view.findPage(QStringLiteral("Tray")).isEmpty() && view.topLevelItemCount() == 2);
    // The module names its page after registering: the entry becomes choosable.
    entry->set(&module, QStringLiteral("nav"), QStringLiteral("tpallet.page"));
    QTRY_COMPARE(view.findPage(QStringLiteral("Tray")), QStringLiteral("tpallet.page"));
}

QTEST_MAIN(TestNavigationView)
#include "tst_navigationview.moc"
