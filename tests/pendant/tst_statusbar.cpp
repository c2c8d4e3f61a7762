#include "pendanttestutil.h"
#include "statusbar.h"

#include <kx/kx.h>
#include <orba/moduleobject.h>
#include <orbat/tcptransport.h>

#include <QComboBox>
#include <QLabel>
#include <QPushButton>
#include <QSignalSpy>
#include <QTcpSocket>
#include <QtTest>

namespace {

// Lets queued replies and watched values arrive.
void settle(int ms = 150)
{
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < ms)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
}

QString controllerPower()
{
    return tservice()->get(nullptr, QStringLiteral("sys.power"))->getString();
}

QString labelFor(const QString &power)
{
    return power == QLatin1String("on") ? QStringLiteral("Power ON") : QStringLiteral("Power OFF");
}

// One exchange with rcsim on a connection of its own, as another pendant would.
bool sendToRcsim(quint16 port, const QByteArray &line)
{
    QTcpSocket socket;
    socket.connectToHost(QStringLiteral("127.0.0.1"), port);
    if (!socket.waitForConnected(3000))
        return false;
    socket.write(line + '\n');
    if (!socket.waitForBytesWritten(3000))
        return false;
    QByteArray reply;
    while (!reply.contains('\n') && socket.waitForReadyRead(3000))
        reply += socket.readAll();
    return reply.contains("\"status\":0");
}

} // namespace

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
    void powerLabelAfterEveryClick();
    void powerLabelFollowsOtherClients();
    void powerLabelAfterReconnection();
    void parsePower_data();
    void parsePower();
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

void TestStatusBar::powerLabelAfterEveryClick()
{
    EmbeddedLink link;
    QVERIFY2(link.start(), qPrintable(link.error()));
    StatusBar bar;
    bar.show();
    auto *power = bar.findChild<QPushButton *>(QStringLiteral("btnPower"));
    settle();
    // From the start state, whatever it is, then on and off again: the label is the controller's.
    QCOMPARE(power->text(), labelFor(controllerPower()));
    for (int click = 1; click <= 4; ++click) {
        QTest::mouseClick(power, Qt::LeftButton);
        const QString state = controllerPower();
        QCOMPARE(power->text(), labelFor(state));
        settle();
        QVERIFY2(power->text() == labelFor(state),
                 qPrintable(QStringLiteral("click %1: \"%2\" with the robot %3").arg(click).arg(power->text(), state)));
        QCOMPARE(power->isChecked(), state == QLatin1String("on"));
        QCOMPARE(bar.isPowerOn(), state == QLatin1String("on"));
        QCOMPARE(orba::m(QStringLiteral("tcore.r.power"))->getString(), state);
    }
}

void TestStatusBar::powerLabelFollowsOtherClients()
{
    EmbeddedLink link;
    QVERIFY2(link.start(), qPrintable(link.error()));
    StatusBar bar;
    auto *power = bar.findChild<QPushButton *>(QStringLiteral("btnPower"));
    for (const char *state : {"off", "on", "off"}) {
        orba::ModuleObject param(QStringLiteral("p"));
        param.setValue(nullptr, QString::fromLatin1(state));
        QCOMPARE(tservice()->set(nullptr, QStringLiteral("sys.power"), &param), 0);
        QTRY_COMPARE(power->text(), labelFor(QString::fromLatin1(state)));
    }
}

void TestStatusBar::powerLabelAfterReconnection()
{
    QTemporaryDir dir;
    QProcess rcsim;
    const quint16 port = startRcsim(&rcsim, dir.path());
    QVERIFY(port != 0);
    orbat::TcpTransport transport(QStringLiteral("127.0.0.1"), port);
    tservice()->setTransport(&transport);
    transport.open();
    QVERIFY(EmbeddedLink::waitConnected(true));
    StatusBar bar;
    auto *power = bar.findChild<QPushButton *>(QStringLiteral("btnPower"));
    QTRY_COMPARE(power->text(), QStringLiteral("Power ON"));

    // The link goes; meanwhile someone else switches the robot off.
    transport.close();
    QVERIFY(EmbeddedLink::waitConnected(false));
    QTRY_COMPARE(power->text(), QStringLiteral("Power ?"));
    QVERIFY(!power->isEnabled());
    QVERIFY(sendToRcsim(port, R"({"id":1,"op":"exec","method":"sim.power","params":false})"));

    transport.open();
    QVERIFY(EmbeddedLink::waitConnected(true));
    QTRY_COMPARE(power->text(), QStringLiteral("Power OFF"));
    QVERIFY(power->isEnabled());
    QVERIFY(!power->isChecked());

    // And on again while connected, from the other side.
    QVERIFY(sendToRcsim(port, R"({"id":2,"op":"exec","method":"sim.power","params":true})"));
    QTRY_COMPARE(power->text(), QStringLiteral("Power ON"));

    tservice()->setTransport(nullptr);
    transport.close();
    rcsim.terminate();
    QVERIFY(rcsim.waitForFinished(5000));
}

void TestStatusBar::parsePower_data()
{
    QTest::addColumn<QVariant>("value");
    QTest::addColumn<int>("expected");
    QTest::newRow("on") << QVariant(QStringLiteral("on")) << 1;
    QTest::newRow("off") << QVariant(QStringLiteral("off")) << 0;
    QTest::newRow("OFF upper case") << QVariant(QStringLiteral("OFF")) << 0;
    QTest::newRow("true") << QVariant(true) << 1;
    QTest::newRow("false") << QVariant(false) << 0;
    QTest::newRow("one") << QVariant(1) << 1;
    QTest::newRow("zero") << QVariant(0) << 0;
    QTest::newRow("garbage text") << QVariant(QStringLiteral("maybe")) << -1;
    QTest::newRow("null") << QVariant() << -1;
}

void TestStatusBar::parsePower()
{
    QFETCH(QVariant, value);
    QFETCH(int, expected);
    QCOMPARE(StatusBar::parsePower(value), expected);
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
