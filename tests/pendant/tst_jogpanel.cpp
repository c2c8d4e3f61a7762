#include "jogpanel.h"
#include "pendanttestutil.h"

#include <orba/moduleobject.h>
#include <tcore/widgets.h>

#include <QComboBox>
#include <QLabel>
#include <QtTest>

#include <cmath>

namespace {

void setPower(bool on)
{
    orba::ModuleObject param(QStringLiteral("p"));
    param.setValue(nullptr, on ? QStringLiteral("on") : QStringLiteral("off"));
    QCOMPARE(tservice()->set(nullptr, QStringLiteral("sys.power"), &param), 0);
}

JogPanel::Posture controllerPosture()
{
    JogPanel::Posture p;
    orba::MobjPtr reply = tservice()->get(nullptr, QStringLiteral("sys.posture"));
    p.valid = tservice()->lastStatus() == 0;
    for (int i = 0; i < 3; ++i) {
        p.trans[i] = reply->r(QStringLiteral("trans.#%1").arg(i))->getDouble();
        p.rot[i] = reply->r(QStringLiteral("rot.#%1").arg(i))->getDouble();
    }
    for (int i = 0; i < 6; ++i)
        p.near[i] = reply->r(QStringLiteral("near.#%1").arg(i))->getDouble();
    return p;
}

void choose(JogPanel *panel, const char *combo, const QVariant &data)
{
    auto *box = panel->findChild<QComboBox *>(QLatin1String(combo));
    QVERIFY(box);
    const int index = data.type() == QVariant::Int ? data.toInt() : box->findData(data);
    QVERIFY(index >= 0);
    box->setCurrentIndex(index);
}

} // namespace

class TestJogPanel : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void axisNames_data();
    void axisNames();
    void steps_data();
    void steps();
    void cartesianStepMovesRobot_data();
    void cartesianStepMovesRobot();
    void jointStepMovesJoint_data();
    void jointStepMovesJoint();
    void refusedWhenPowerOff();
    void holdJogsUntilRelease();
    void pollsWhileVisible();
    void powerOffMessageLastsAsLongAsThePowerIsOff();
    void noControllerMessageClearsOnReconnection();
    void stepIntoWorkspaceEdgeSaysSo();
    void continuousJogIntoWorkspaceEdgeSaysSo();
    void describeRefusal_data();
    void describeRefusal();

private:
    std::unique_ptr<EmbeddedLink> m_link;
};

void TestJogPanel::init()
{
    resetHost();
    m_link = std::make_unique<EmbeddedLink>();
    QVERIFY2(m_link->start(), qPrintable(m_link->error()));
    setPower(true);
}

void TestJogPanel::cleanup()
{
    m_link.reset();
}

void TestJogPanel::axisNames_data()
{
    QTest::addColumn<QString>("frame");
    QTest::addColumn<QStringList>("names");
    QTest::newRow("joint") << "joint" << QStringList{"J1", "J2", "J3", "J4", "J5", "J6"};
    QTest::newRow("base") << "base" << QStringList{"X", "Y", "Z", "A", "B", "C"};
    QTest::newRow("tool") << "tool" << QStringList{"X", "Y", "Z", "A", "B", "C"};
}

void TestJogPanel::axisNames()
{
    QFETCH(QString, frame);
    QFETCH(QStringList, names);
    JogPanel panel;
    choose(&panel, "cmbJogFrame", frame);
    QCOMPARE(panel.frame(), frame);
    for (int axis = 0; axis < 6; ++axis)
        QCOMPARE(panel.findChild<QLabel *>(QStringLiteral("lblJogAxis%1").arg(axis))->text(), names.at(axis));
}

void TestJogPanel::steps_data()
{
    QTest::addColumn<QString>("frame");
    QTest::addColumn<int>("stepIndex");
    QTest::addColumn<int>("axis");
    QTest::addColumn<double>("step");
    const double deg = 3.141592653589793 / 180.0;
    QTest::newRow("base 1 mm on X") << "base" << 2 << 0 << 0.001;
    QTest::newRow("base 10 mm on Z") << "base" << 3 << 2 << 0.01;
    QTest::newRow("base 0.1 deg on A") << "base" << 1 << 3 << 0.1 * deg;
    QTest::newRow("tool 5 deg on C") << "tool" << 3 << 5 << 5.0 * deg;
    QTest::newRow("joint 1 deg on J1") << "joint" << 2 << 0 << 1.0 * deg;
    QTest::newRow("joint 5 deg on J3") << "joint" << 3 << 2 << 5.0 * deg;
    QTest::newRow("continuous has no step") << "base" << 0 << 0 << 0.0;
}

void TestJogPanel::steps()
{
    QFETCH(QString, frame);
    QFETCH(int, stepIndex);
    QFETCH(int, axis);
    QFETCH(double, step);
    JogPanel panel;
    choose(&panel, "cmbJogFrame", frame);
    choose(&panel, "cmbJogStep", stepIndex);
    QCOMPARE(panel.isContinuous(), stepIndex == 0);
    QCOMPARE(panel.stepFor(axis), step);
}

void TestJogPanel::cartesianStepMovesRobot_data()
{
    QTest::addColumn<int>("axis");
    QTest::addColumn<int>("direction");
    QTest::newRow("X plus") << 0 << 1;
    QTest::newRow("Y minus") << 1 << -1;
    QTest::newRow("Z plus") << 2 << 1;
}

void TestJogPanel::cartesianStepMovesRobot()
{
    QFETCH(int, axis);
    QFETCH(int, direction);
    JogPanel panel;
    panel.show();
    choose(&panel, "cmbJogFrame", QStringLiteral("base"));
    choose(&panel, "cmbJogStep", 3); // 10 mm
    const JogPanel::Posture before = controllerPosture();
    QVERIFY(before.valid);

    const QString button = direction > 0 ? QStringLiteral("btnJogPlus%1") : QStringLiteral("btnJogMinus%1");
    auto *b = panel.findChild<TouchButton *>(button.arg(axis));
    QVERIFY(b);
    QTest::mouseClick(b, Qt::LeftButton);

    const JogPanel::Posture after = controllerPosture();
    for (int i = 0; i < 3; ++i) {
        const double expected = before.trans[i] + (i == axis ? direction * 0.01 : 0.0);
        QVERIFY2(std::abs(after.trans[i] - expected) < 1e-6,
                 qPrintable(QStringLiteral("trans %1: %2 vs %3").arg(i).arg(after.trans[i]).arg(expected)));
    }
    // The panel shows what "sys.posture" says, in millimetres.
    QVERIFY(panel.posture().valid);
    const char *names[] = {"lblPosX", "lblPosY", "lblPosZ"};
    for (int i = 0; i < 3; ++i) {
        QCOMPARE(panel.posture().trans[i], after.trans[i]);
        const double shown = panel.findChild<QLabel *>(QLatin1String(names[i]))->text().toDouble();
        QVERIFY(std::abs(shown - after.trans[i] * 1000.0) <= 0.05);
    }
}

void TestJogPanel::jointStepMovesJoint_data()
{
    QTest::addColumn<int>("axis");
    QTest::newRow("J1") << 0;
    QTest::newRow("J4") << 3;
    QTest::newRow("J6") << 5;
}

void TestJogPanel::jointStepMovesJoint()
{
    QFETCH(int, axis);
    JogPanel panel;
    choose(&panel, "cmbJogFrame", QStringLiteral("joint"));
    choose(&panel, "cmbJogStep", 2); // 1 degree
    const JogPanel::Posture before = controllerPosture();
    QCOMPARE(panel.jogStep(axis, +1), 0);
    const JogPanel::Posture after = controllerPosture();
    const double deg = 3.141592653589793 / 180.0;
    for (int j = 0; j < 6; ++j)
        QVERIFY(std::abs(after.near[j] - before.near[j] - (j == axis ? deg : 0.0)) < 1e-9);
    const double shown = panel.findChild<QLabel *>(QStringLiteral("lblJoint%1").arg(axis + 1))->text().chopped(1).toDouble();
    QVERIFY(std::abs(shown - after.near[axis] / deg) <= 0.005);
}

void TestJogPanel::refusedWhenPowerOff()
{
    setPower(false);
    JogPanel panel;
    choose(&panel, "cmbJogFrame", QStringLiteral("base"));
    const JogPanel::Posture before = controllerPosture();
    QVERIFY(panel.jogStep(0, 1) < 0);
    QVERIFY(!panel.findChild<QLabel *>(QStringLiteral("lblJogStatus"))->text().isEmpty());
    const JogPanel::Posture after = controllerPosture();
    for (int i = 0; i < 3; ++i)
        QCOMPARE(after.trans[i], before.trans[i]);
}

void TestJogPanel::holdJogsUntilRelease()
{
    JogPanel panel;
    panel.show();
    choose(&panel, "cmbJogFrame", QStringLiteral("joint"));
    choose(&panel, "cmbJogStep", 0); // continuous
    choose(&panel, "cmbJogSpeed", 4); // 100 %
    const JogPanel::Posture before = controllerPosture();
    auto *plus = panel.findChild<TouchButton *>(QStringLiteral("btnJogPlus0"));
    QTest::mousePress(plus, Qt::LeftButton);
    QTest::qWait(300);
    QTest::mouseRelease(plus, Qt::LeftButton);
    const JogPanel::Posture stopped = controllerPosture();
    QVERIFY2(stopped.near[0] > before.near[0] + 0.01,
             qPrintable(QStringLiteral("%1 -> %2").arg(before.near[0]).arg(stopped.near[0])));
    // Released: nothing moves any more.
    QTest::qWait(150);
    QCOMPARE(controllerPosture().near[0], stopped.near[0]);
}

void TestJogPanel::pollsWhileVisible()
{
    JogPanel panel;
    QVERIFY(!panel.isPolling());
    panel.show();
    QVERIFY(panel.isPolling());
    // A move made elsewhere shows up through the poll.
    orba::ModuleObject param(QStringLiteral("jog"));
    param.set(nullptr, QStringLiteral("frame"), QStringLiteral("joint"));
    param.set(nullptr, QStringLiteral("axis"), 1);
    param.set(nullptr, QStringLiteral("delta"), -0.05);
    QCOMPARE(tservice()->execCommand(nullptr, QStringLiteral("sim.jog"), &param)->getInt(-1), 0);
    const double expected = controllerPosture().near[1];
    QTRY_COMPARE_WITH_TIMEOUT(panel.posture().near[1], expected, 2000);
    panel.hide();
    QVERIFY(!panel.isPolling());
    m_link->transport()->attach(nullptr);
    QVERIFY(EmbeddedLink::waitConnected(false));
    panel.show();
    QVERIFY(!panel.isPolling()); // nothing to poll without a controller
}

namespace {

QString statusOf(const JogPanel &panel)
{
    return panel.findChild<QLabel *>(QStringLiteral("lblJogStatus"))->text();
}

const QString PowerOff = QStringLiteral("The robot is powered off");
const QString NoController = QStringLiteral("No controller");
const QString Edge = QStringLiteral("Edge of the workspace: the robot cannot go further this way");

} // namespace

void TestJogPanel::powerOffMessageLastsAsLongAsThePowerIsOff()
{
    JogPanel panel;
    panel.show();
    QCOMPARE(statusOf(panel), QString());
    setPower(false);
    // Said before anyone presses a button, and still after a refused press.
    QTRY_COMPARE(statusOf(panel), PowerOff);
    QVERIFY(panel.jogStep(0, 1) < 0);
    QCOMPARE(statusOf(panel), PowerOff);
    setPower(true);
    QTRY_COMPARE(statusOf(panel), QString());
    QCOMPARE(panel.jogStep(0, 1), 0);
    QCOMPARE(statusOf(panel), QString());
}

void TestJogPanel::noControllerMessageClearsOnReconnection()
{
    JogPanel panel;
    panel.show();
    m_link->transport()->attach(nullptr);
    QVERIFY(EmbeddedLink::waitConnected(false));
    QTRY_COMPARE(statusOf(panel), NoController);
    QVERIFY(panel.jogStep(0, 1) < 0);
    QCOMPARE(statusOf(panel), NoController);

    m_link->transport()->attach(m_link->controller()->endpoint());
    m_link->transport()->open();
    QVERIFY(EmbeddedLink::waitConnected(true));
    QTRY_COMPARE(statusOf(panel), QString());
    QCOMPARE(panel.jogStep(0, 1), 0);
}

void TestJogPanel::stepIntoWorkspaceEdgeSaysSo()
{
    JogPanel panel;
    panel.show();
    choose(&panel, "cmbJogFrame", QStringLiteral("base"));
    choose(&panel, "cmbJogStep", 3); // 10 mm
    int status = 0;
    int steps = 0;
    while (status == 0 && steps < 300) {
        status = panel.jogStep(2, +1);
        ++steps;
    }
    QVERIFY2(status < 0, "the arm never reached the edge of its workspace");
    QCOMPARE(statusOf(panel), Edge);
    // Away from the edge, the message goes.
    QCOMPARE(panel.jogStep(2, -1), 0);
    QCOMPARE(statusOf(panel), QString());
}

void TestJogPanel::continuousJogIntoWorkspaceEdgeSaysSo()
{
    JogPanel panel;
    panel.show();
    choose(&panel, "cmbJogFrame", QStringLiteral("base"));
    choose(&panel, "cmbJogStep", 3); // 10 mm
    int steps = 0;
    while (panel.jogStep(2, +1) == 0 && steps < 300)
        ++steps;
    QCOMPARE(panel.jogStep(2, -1), 0);
    QCOMPARE(statusOf(panel), QString());
    const JogPanel::Posture before = controllerPosture();

    choose(&panel, "cmbJogStep", 0); // continuous
    choose(&panel, "cmbJogSpeed", 4); // 100 %
    auto *plus = panel.findChild<TouchButton *>(QStringLiteral("btnJogPlus2"));
    QTest::mousePress(plus, Qt::LeftButton);
    // The controller stops the jog at the edge; the operator, still pressing, is told why.
    QTRY_COMPARE_WITH_TIMEOUT(statusOf(panel), Edge, 3000);
    QTest::mouseRelease(plus, Qt::LeftButton);
    const JogPanel::Posture after = controllerPosture();
    QVERIFY(after.trans[2] >= before.trans[2]);
    // At most the 10 mm step back and the 10 mm that were refused before.
    QVERIFY2(after.trans[2] - before.trans[2] < 0.021, qPrintable(QString::number(after.trans[2] - before.trans[2])));
    // The message stays until a jog moves again.
    QTest::qWait(100);
    QCOMPARE(statusOf(panel), Edge);
    choose(&panel, "cmbJogStep", 2);
    QCOMPARE(panel.jogStep(2, -1), 0);
    QCOMPARE(statusOf(panel), QString());
}

void TestJogPanel::describeRefusal_data()
{
    QTest::addColumn<QString>("id");
    QTest::addColumn<QString>("message");
    QTest::addColumn<QString>("expected");
    QTest::newRow("edge by id") << "unreachable" << "" << Edge;
    QTest::newRow("edge by message") << "" << "position out of reach" << Edge;
    QTest::newRow("joint limit") << "" << "joint 3 out of its limits"
                                 << "Joint limit: the robot cannot go further this way";
    QTest::newRow("singularity") << "singular" << "wrist singularity (joint 5 near zero)"
                                 << "Singularity: the robot cannot go further this way";
    QTest::newRow("configuration jump") << "jump" << "configuration jump of 40.0 deg"
                                        << "The arm would change its configuration: jog the joints instead";
    QTest::newRow("power") << "" << "the robot is powered off" << PowerOff;
    QTest::newRow("moving") << "" << "the robot is moving" << "The robot is moving";
    QTest::newRow("no link") << "nolink" << "" << NoController;
    QTest::newRow("other") << "" << "something else" << "Refused: something else";
}

void TestJogPanel::describeRefusal()
{
    QFETCH(QString, id);
    QFETCH(QString, message);
    QFETCH(QString, expected);
    QCOMPARE(JogPanel::describeRefusal(id, message), expected);
}

QTEST_MAIN(TestJogPanel)
#include "tst_jogpanel.moc"
