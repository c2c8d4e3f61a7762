#include <tcore/basepage.h>

#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <QWidget>
#include <QtTest>

#include <memory>

namespace {

class CountingPage : public tcore::BasePage
{
public:
    CountingPage() : tcore::BasePage(QStringLiteral("tstpage"), QStringLiteral("Tray")), m_widget(new QWidget) {}
    QWidget *wgt() override { return m_widget.get(); }
    void updateAvailability() override
    {
        ++updates;
        tcore::BasePage::updateAvailability();
    }
    int updates = 0;

private:
    std::unique_ptr<QWidget> m_widget;
};

void setNode(const QString &path, const QVariant &value)
{
    orba::m()->set(nullptr, path, value);
}

} // namespace

class TestBasePage : public QObject
{
    Q_OBJECT

private slots:
    void init() { orba::ModuleManager::resetRoot(); }
    void cleanup() { orba::ModuleManager::resetRoot(); }

    void keyAndTitle();
    void userLevelDefaultsToZero();
    void availability_data();
    void availability();
    void autoUpdateCallsOnceAndCreatesNodes();
    void autoUpdateFollowsChosenNodes_data();
    void autoUpdateFollowsChosenNodes();
    void autoUpdateAgainReplacesSubscriptions();
    void defaultUpdateEnablesWidget();
};

void TestBasePage::keyAndTitle()
{
    CountingPage page;
    QCOMPARE(page.key(), QStringLiteral("tstpage"));
    QCOMPARE(page.title(), QStringLiteral("Tray"));
}

void TestBasePage::userLevelDefaultsToZero()
{
    QCOMPARE(tcore::BasePage::userLevel(), 0);
    setNode(QStringLiteral("tcore.r.level"), 3);
    QCOMPARE(tcore::BasePage::userLevel(), 3);
}

void TestBasePage::availability_data()
{
    QTest::addColumn<QVariant>("connected");
    QTest::addColumn<QVariant>("level");
    QTest::addColumn<QVariant>("power");
    QTest::addColumn<bool>("requirePower");
    QTest::addColumn<bool>("state");
    QTest::addColumn<bool>("levelOk");
    QTest::addColumn<bool>("available");

    QTest::newRow("nothing known") << QVariant() << QVariant() << QVariant() << false << false << false << false;
    QTest::newRow("connected, level 0") << QVariant(true) << QVariant(0) << QVariant() << false << true << false << false;
    QTest::newRow("connected, level 1") << QVariant(true) << QVariant(1) << QVariant() << false << true << true << true;
    QTest::newRow("disconnected, level 3") << QVariant(false) << QVariant(3) << QVariant() << false << false << true << false;
    QTest::newRow("power needed, off") << QVariant(true) << QVariant(2) << QVariant(QStringLiteral("off")) << true
                                       << true << true << false;
    QTest::newRow("power needed, on") << QVariant(true) << QVariant(2) << QVariant(QStringLiteral("on")) << true
                                      << true << true << true;
    QTest::newRow("power off, not needed") << QVariant(true) << QVariant(2) << QVariant(QStringLiteral("off")) << false
                                           << true << true << true;
}

void TestBasePage::availability()
{
    QFETCH(QVariant, connected);
    QFETCH(QVariant, level);
    QFETCH(QVariant, power);
    QFETCH(bool, requirePower);
    QFETCH(bool, state);
    QFETCH(bool, levelOk);
    QFETCH(bool, available);
    if (connected.isValid())
        setNode(QStringLiteral("tcore.r.connected"), connected);
    if (level.isValid())
        setNode(QStringLiteral("tcore.r.level"), level);
    if (power.isValid())
        setNode(QStringLiteral("tcore.r.power"), power);

    CountingPage page;
    page.requirePower(requirePower);
    QCOMPARE(page.isStateAvailable(), state);
    QCOMPARE(page.isLevelAvailable(), levelOk);
    QVERIFY(page.isModeAvailable());
    QCOMPARE(page.isAvailable(), available);
}

void TestBasePage::autoUpdateCallsOnceAndCreatesNodes()
{
    CountingPage page;
    page.autoUpdate(true, true, true, true);
    QCOMPARE(page.updates, 1);
    for (const char *path : {"tcore.r.connected", "tcore.r.power", "tcore.r.level", "tcore.r.mode"})
        QVERIFY2(!orba::m(QLatin1String(path))->isEmpty(), path);
}

void TestBasePage::autoUpdateFollowsChosenNodes_data()
{
    QTest::addColumn<bool>("onState");
    QTest::addColumn<bool>("onPower");
    QTest::addColumn<bool>("onLevel");
    QTest::addColumn<bool>("onMode");
    QTest::addColumn<int>("expected"); // updates after one change of each of the four nodes

    QTest::newRow("all") << true << true << true << true << 1 + 4;
    QTest::newRow("state, power and level (the pallet page)") << true << true << true << false << 1 + 3;
    QTest::newRow("level only") << false << false << true << false << 1 + 1;
    QTest::newRow("none") << false << false << false << false << 1;
}

void TestBasePage::autoUpdateFollowsChosenNodes()
{
    QFETCH(bool, onState);
    QFETCH(bool, onPower);
    QFETCH(bool, onLevel);
    QFETCH(bool, onMode);
    QFETCH(int, expected);
    CountingPage page;
    page.autoUpdate(onState, onPower, onLevel, onMode);
    setNode(QStringLiteral("tcore.r.connected"), true);
    setNode(QStringLiteral("tcore.r.power"), QStringLiteral("on"));
    setNode(QStringLiteral("tcore.r.level"), 2);
    setNode(QStringLiteral("tcore.r.mode"), QStringLiteral("manual"));
    QCOMPARE(page.updates, expected);
}

void TestBasePage::autoUpdateAgainReplacesSubscriptions()
{
    CountingPage page;
    page.autoUpdate(true, true, true, true);
    page.autoUpdate(false, false, true, false);
    QCOMPARE(page.updates, 2);
    setNode(QStringLiteral("tcore.r.connected"), true);
    QCOMPARE(page.updates, 2);
    setNode(QStringLiteral("tcore.r.level"), 1);
    QCOMPARE(page.updates, 3);
}

void TestBasePage::defaultUpdateEnablesWidget()
{
    CountingPage page;
    page.autoUpdate(true, true, true, false);
    QVERIFY(!page.wgt()->isEnabled());
    setNode(QStringLiteral("tcore.r.connected"), true);
    QVERIFY(!page.wgt()->isEnabled());
    setNode(QStringLiteral("tcore.r.level"), 1);
    QVERIFY(page.wgt()->isEnabled());
    setNode(QStringLiteral("tcore.r.connected"), false);
    QVERIFY(!page.wgt()->isEnabled());
}

QTEST_MAIN(TestBasePage)
#include "tst_basepage.moc"
