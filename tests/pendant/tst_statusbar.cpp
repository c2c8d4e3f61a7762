#include "pendanttestutil.h"
#include "statusbar.h"

#include <kx/kx.h>
#include <orba/moduleobject.h>

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QtTest>

class TestStatusBar : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void levelComboWritesNode_data();
    void levelComboWritesNode();
    void levelNodeMovesCombo();
    void language_data();
    void language();
    void languageSettingMovesCombo();
    void disconnectedWithoutController();
    void powerSwitch();
    void linkLossAndReturn();
};

void TestStatusBar::init()
{
    resetHost();
    kx::globalNode(QStringLiteral("tcore.r.level"))->setValue(nullptr, 3);
}

void TestStatusBar::cleanup()
{
    tservice()->setTransport(nullptr);
}

void TestStatusBar::levelComboWritesNode_data()
{
    QTest::addColumn<int>("level");
    for (int level = 0; level <= 4; ++level)
        QTest::newRow(qPrintable(QStringLiteral("level %1").arg(level))) << level;
}

void TestStatusBar::levelComboWritesNode()
{
    QFETCH(int, level);
    StatusBar bar;
    auto *combo = bar.findChild<QComboBox *>(QStringLiteral("cmbLevel"));
    QVERIFY(combo);
    QCOMPARE(combo->currentData().toInt(), 3);
    if (level == 3)
        combo->setCurrentIndex(0);
    combo->setCurrentIndex(combo->findData(level));
    QCOMPARE(orba::m(QStringLiteral("tcore.r.level"))->getInt(-1), level);
}

void TestStatusBar::levelNodeMovesCombo()
{
    StatusBar bar;
    auto *combo = bar.findChild<QComboBox *>(QStringLiteral("cmbLevel"));
    orba::m(QStringLiteral("tcore.r.level"))->setValue(nullptr, 1);
    QCOMPARE(combo->currentData().toInt(), 1);
    // Following the node does not write it back.
    QCOMPARE(orba::m(QStringLiteral("tcore.r.level"))->getInt(), 1);
}

void TestStatusBar::language_data()
{
    QTest::addColumn<QString>("code");
    for (const char *code : {"cn", "jp", "kr", "ru", "en"})
        QTest::newRow(code) << QString::fromLatin1(code);
}

void TestStatusBar::language()
{
    QFETCH(QString, code);
    tcore::SettingManager::setStr(QStringLiteral("language"), QStringLiteral("ru"));
    StatusBar bar;
    auto *combo = bar.findChild<QComboBox *>(QStringLiteral("cmbLanguage"));
    QVERIFY(combo);
    QCOMPARE(combo->count(), 5);
    QCOMPARE(combo->currentData().toString(), QStringLiteral("ru"));
    QSignalSpy changed(tcore::SettingManager::instance(), &tcore::SettingManager::changed);
    combo->setCurrentIndex(combo->findData(code));
    QCOMPARE(tcore::SettingManager::getStr(QStringLiteral("language")), code);
    if (code != QLatin1String("ru"))
        QVERIFY(!changed.isEmpty());
}

void TestStatusBar::languageSettingMovesCombo()
{
    StatusBar bar;
    auto *combo = bar.findChild<QComboBox *>(QStringLiteral("cmbLanguage"));
    tcore::SettingManager::setStr(QStringLiteral("language"), QStringLiteral("jp"));
    QCOMPARE(combo->currentData().toString(), QStringLiteral("jp"));
}

void TestStatusBar::disconnectedWithoutController()
{
    StatusBar bar;
    auto *link = bar.findChild<QLabel *>(QStringLiteral("lblLink"));
    QVERIFY(link);
    QVERIFY(!bar.isLinkUp());
    QCOMPARE(link->property("linkUp").toBool(), false);
    auto *power = bar.findChild<QPushButton *>(QStringLiteral("btnPower"));
    QVERIFY(!power->isEnabled());
    QVERIFY(!bar.requestPower(true));
}

void TestStatusBar::powerSwitch()
{
    EmbeddedLink link;
    QVERIFY2(link.start(), qPrintable(link.error()));
    StatusBar bar;
    bar.show();
    QVERIFY(bar.isLinkUp());
    auto *power = bar.findChild<QPushButton *>(QStringLiteral("btnPower"));
    QVERIFY(power->isEnabled());
    const bool before = bar.isPowerOn();
    QTest::mouseClick(power, Qt::LeftButton);
    QCOMPARE(bar.isPowerOn(), !before);
    orba::MobjPtr state = tservice()->get(nullptr, QStringLiteral("sys.power"));
    QCOMPARE(state->getString(), before ? QStringLiteral("off") : QStringLiteral("on"));
    QCOMPARE(orba::m(QStringLiteral("tcore.r.power"))->getString(), state->getString());
    QCOMPARE(power->isChecked(), !before);
    QTest::mouseClick(power, Qt::LeftButton);
    QCOMPARE(bar.isPowerOn(), before);
    QCOMPARE(tservice()->get(nullptr, QStringLiteral("sys.power"))->getString(),
             before ? QStringLiteral("on") : QStringLiteral("off"));
}

void TestStatusBar::linkLossAndReturn()
{
    EmbeddedLink link;
    QVERIFY2(link.start(), qPrintable(link.error()));
    StatusBar bar;
    auto *label = bar.findChild<QLabel *>(QStringLiteral("lblLink"));
    QVERIFY(bar.isLinkUp());
    QCOMPARE(label->property("linkUp").toBool(), true);
    const QString upText = label->text();

    QSignalSpy changes(&bar, &StatusBar::linkChanged);
    link.transport()->attach(nullptr);
    QVERIFY(EmbeddedLink::waitConnected(false));
    QTRY_COMPARE(label->property("linkUp").toBool(), false);
    QVERIFY(label->text() != upText);
    QVERIFY(!bar.findChild<QPushButton *>(QStringLiteral("btnPower"))->isEnabled());

    link.transport()->attach(link.controller()->endpoint());
    link.transport()->open();
    QVERIFY(EmbeddedLink::waitConnected(true));
    QTRY_COMPARE(label->property("linkUp").toBool(), true);
    QCOMPARE(label->text(), upText);
    QCOMPARE(changes.count(), 2);
}

QTEST_MAIN(TestStatusBar)
#include "tst_statusbar.moc"
