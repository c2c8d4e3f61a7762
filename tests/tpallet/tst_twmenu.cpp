#include "pages/twmenu.h"

#include <tcore/thememanager.h>

#include <QGridLayout>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QScroller>
#include <QSignalSpy>
#include <QtTest>

class TestTWMenu : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void formHasScrollColumn();
    void buttonsFollowItemsOnShow_data();
    void buttonsFollowItemsOnShow();
    void choosingCurrentOnlyCloses();
    void choosingOtherEmitsAndCloses();
    void emptyListShowsEmptyMenu();
    void noAnchorShowsNothing();
    void showsBelowAnchorAtThemeWidth_data();
    void showsBelowAnchorAtThemeWidth();
    void fiftyEntriesScroll();
    void reshowRebuildsButtons();

private:
    QPushButton *itemButton(const QString &text) const;

    QWidget *m_window = nullptr;
    QPushButton *m_anchor = nullptr;
    tpallet::TWMenu *m_menu = nullptr;
};

void TestTWMenu::init()
{
    m_window = new QWidget;
    m_window->resize(600, 600);
    m_anchor = new QPushButton(QStringLiteral("tool0"), m_window);
    m_anchor->setGeometry(40, 30, 120, 48);
    m_window->show();
    QVERIFY(QTest::qWaitForWindowExposed(m_window));
    m_menu = new tpallet::TWMenu(m_window);
}

void TestTWMenu::cleanup()
{
    delete m_window;
    m_window = nullptr;
    tcore::ThemeManager::instance()->setScale(1.0);
}

QPushButton *TestTWMenu::itemButton(const QString &text) const
{
    for (QPushButton *b : m_menu->findChildren<QPushButton *>()) {
        if (b->text() == text)
            return b;
    }
    return nullptr;
}

void TestTWMenu::formHasScrollColumn()
{
    QCOMPARE(m_menu->objectName(), QStringLiteral("TWMenu"));
    QCOMPARE(m_menu->windowTitle(), QStringLiteral("Form"));
    auto *area = m_menu->findChild<QScrollArea *>(QStringLiteral("scrollArea"));
    QVERIFY(area);
    QCOMPARE(area->frameShape(), QFrame::NoFrame);
    QCOMPARE(area->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QCOMPARE(area->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    QWidget *content = m_menu->findChild<QWidget *>(QStringLiteral("wgtContent"));
    QVERIFY(content);
    auto *grid = qobject_cast<QGridLayout *>(content->layout());
    QVERIFY(grid);
    QCOMPARE(grid->spacing(), 0);
    QCOMPARE(grid->contentsMargins(), QMargins(0, 0, 0, 0));
    QCOMPARE(grid->columnStretch(0), 1);
    QVERIFY(QScroller::hasScroller(area->viewport()));
}

void TestTWMenu::buttonsFollowItemsOnShow_data()
{
    QTest::addColumn<QStringList>("items");
    QTest::newRow("one") << QStringList{"tool0"};
    QTest::newRow("three") << QStringList{"tool0", "gripper", "sucker"};
}

void TestTWMenu::buttonsFollowItemsOnShow()
{
    QFETCH(QStringList, items);
    m_menu->setParams(items, QStringLiteral("tool0"), 120);
    m_menu->showBesideWidget(m_anchor);
    QTRY_VERIFY(m_menu->isVisible());
    const QList<QPushButton *> buttons = m_menu->findChildren<QPushButton *>();
    QCOMPARE(buttons.size(), items.size());
    for (int i = 0; i < items.size(); ++i) {
        auto *b = m_menu->findChild<QPushButton *>(QStringLiteral("btnItem%1").arg(i));
        QVERIFY(b);
        QCOMPARE(b->text(), items.at(i));
        QVERIFY(b->height() >= 36);
        QCOMPARE(b->width(), m_menu->width());
    }
}

void TestTWMenu::choosingCurrentOnlyCloses()
{
    m_menu->setParams({"tool0", "gripper"}, QStringLiteral("tool0"), 120);
    QSignalSpy selected(m_menu, &tpallet::TWMenu::selected);
    m_menu->showBesideWidget(m_anchor);
    QTRY_VERIFY(m_menu->isVisible());
    QTest::mouseClick(itemButton(QStringLiteral("tool0")), Qt::LeftButton);
    QCOMPARE(selected.count(), 0);
    QTRY_VERIFY(!m_menu->isVisible());
}

void TestTWMenu::choosingOtherEmitsAndCloses()
{
    m_menu->setParams({"tool0", "gripper"}, QStringLiteral("tool0"), 120);
    QSignalSpy selected(m_menu, &tpallet::TWMenu::selected);
    m_menu->showBesideWidget(m_anchor);
    QTRY_VERIFY(m_menu->isVisible());
    QTest::mouseClick(itemButton(QStringLiteral("gripper")), Qt::LeftButton);
    QCOMPARE(selected.count(), 1);
    QCOMPARE(selected.at(0).at(0).toString(), QStringLiteral("gripper"));
    QTRY_VERIFY(!m_menu->isVisible());
}

void TestTWMenu::emptyListShowsEmptyMenu()
{
    m_menu->setParams({}, QString(), 120);
    m_menu->showBesideWidget(m_anchor);
    QTRY_VERIFY(m_menu->isVisible());
    QVERIFY(m_menu->findChildren<QPushButton *>().isEmpty());
}

void TestTWMenu::noAnchorShowsNothing()
{
    m_menu->setParams({"tool0"}, QString(), 120);
    m_menu->showBesideWidget(nullptr);
    QTest::qWait(20);
    QVERIFY(!m_menu->isVisible());
    QVERIFY(m_menu->findChildren<QPushButton *>().isEmpty());
}

void TestTWMenu::showsBelowAnchorAtThemeWidth_data()
{
    QTest::addColumn<double>("scale");
    QTest::addColumn<int>("width");
    QTest::newRow("tools at 1.0") << 1.0 << 120;
    QTest::newRow("toolset at 1.0") << 1.0 << 180;
    QTest::newRow("tools at 1.5") << 1.5 << 120;
}

void TestTWMenu::showsBelowAnchorAtThemeWidth()
{
    QFETCH(double, scale);
    QFETCH(int, width);
    tcore::ThemeManager::instance()->setScale(scale);
    m_menu->setParams({"a", "b"}, QString(), width);
    m_menu->showBesideWidget(m_anchor);
    QTRY_VERIFY(m_menu->isVisible());
    QCOMPARE(m_menu->width(), tcore::ThemeManager::getSize(width));
    const QPoint corner = m_anchor->mapToGlobal(QPoint(0, m_anchor->height()));
    QCOMPARE(m_menu->pos(), corner + QPoint(0, tcore::ThemeManager::getSize(1)));
}

void TestTWMenu::fiftyEntriesScroll()
{
    QStringList items;
    for (int i = 0; i < 50; ++i)
        items << QStringLiteral("tool%1").arg(i);
    m_menu->setParams(items, QStringLiteral("tool0"), 120);
    m_menu->showBesideWidget(m_anchor);
    QTRY_VERIFY(m_menu->isVisible());
    QCOMPARE(m_menu->findChildren<QPushButton *>().size(), 50);
    auto *area = m_menu->findChild<QScrollArea *>(QStringLiteral("scrollArea"));
    QVERIFY(m_menu->height() < 50 * 36);
    QTRY_VERIFY(area->verticalScrollBar()->maximum() > 0);
    // Dragging with a finger scrolls: the scroller moves the content.
    QScroller *scroller = QScroller::scroller(area->viewport());
    scroller->scrollTo(QPointF(0, 400), 0);
    QTRY_VERIFY(area->verticalScrollBar()->value() > 0);
    // The last entry is reachable and still chooses.
    QSignalSpy selected(m_menu, &tpallet::TWMenu::selected);
    area->ensureWidgetVisible(itemButton(QStringLiteral("tool49")));
    QTest::mouseClick(itemButton(QStringLiteral("tool49")), Qt::LeftButton);
    QCOMPARE(selected.count(), 1);
    QCOMPARE(selected.at(0).at(0).toString(), QStringLiteral("tool49"));
}

void TestTWMenu::reshowRebuildsButtons()
{
    m_menu->setParams({"a", "b", "c"}, QString(), 120);
    m_menu->showBesideWidget(m_anchor);
    QTRY_VERIFY(m_menu->isVisible());
    m_menu->close();
    m_menu->setParams({"x"}, QString(), 120);
    m_menu->showBesideWidget(m_anchor);
    QTRY_VERIFY(m_menu->isVisible());
    QTRY_COMPARE(m_menu->findChildren<QPushButton *>().size(), 1);
    QVERIFY(itemButton(QStringLiteral("x")));
}

QTEST_MAIN(TestTWMenu)
#include "tst_twmenu.moc"
