#include "palletfixture.h"
#include "pendanttestutil.h"

#include "module/toolset.h"
#include "wizards/toolwizard.h"
#include "wizards/toolwizard2.h"

#include <kx/calc.h>
#include <kx/kx.h>

#include <QComboBox>
#include <QDoubleSpinBox>
#include <QLabel>
#include <QListView>
#include <QPointer>
#include <QPushButton>
#include <QRadioButton>
#include <QRandomGenerator>
#include <QStackedWidget>
#include <QtTest>

#include <Eigen/Geometry>

#include <cmath>

namespace {

constexpr double kPi = 3.141592653589793;

// A tool record as the host publishes it: millimetres, degrees, kg.mm².
QByteArray toolJson(const QString &name, bool robhold, double z, double c = 0.0, double mass = 1.0)
{
    return QStringLiteral("{\"name\":\"%1\",\"robhold\":%2,"
                          "\"frame\":{\"pos\":{\"x\":10.0,\"y\":-20.0,\"z\":%3},\"ori\":{\"euler\":{\"a\":0.0,\"b\":90.0,\"c\":%4}}},"
                          "\"load\":{\"mass\":%5,\"pose\":{\"pos\":{\"x\":1.0,\"y\":2.0,\"z\":30.0}},"
                          "\"moment\":[100.0,200.0,300.0]}}")
        .arg(name, robhold ? QStringLiteral("true") : QStringLiteral("false"))
        .arg(z)
        .arg(c)
        .arg(mass)
        .toUtf8();
}

void setList(const QString &path, const QList<QByteArray> &records)
{
    QByteArray json("[");
    for (int i = 0; i < records.size(); ++i)
        json += (i ? "," : "") + records.at(i);
    json += "]";
    QVERIFY(kx::globalNode(path)->importFromJson(nullptr, json));
}

Eigen::Matrix3d rotation(double a, double b, double c)
{
    return (Eigen::AngleAxisd(c, Eigen::Vector3d::UnitZ()) * Eigen::AngleAxisd(b, Eigen::Vector3d::UnitY())
            * Eigen::AngleAxisd(a, Eigen::Vector3d::UnitX()))
        .toRotationMatrix();
}

double angleBetween(const Eigen::Matrix3d &r1, const Eigen::Matrix3d &r2)
{
    return Eigen::Quaterniond(r1).angularDistance(Eigen::Quaterniond(r2));
}

} // namespace

class TestToolWizard : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void formWidgets_data();
    void formWidgets();
    void offersTool0ThenRobotHeldTools_data();
    void offersTool0ThenRobotHeldTools();
    void nodeShownInPageUnits();
    void importTool0KeepsReference();
    void importDeclinedChangesNothing();
    void importConvertsRecord();
    void staleRobotHeldTextStillImports();
    void vanishedToolIsInvalid();
    void sameNameFirstInListOrderWins();
    void eulerQuaternionRoundTrips();
    void quaternionNotationStoresQuaternion();
    void outOfRangeIsClippedAndStoredClipped();
    void levelRules_data();
    void levelRules();
    void tryNextWritesPageAndSaves();
    void simulatorToolImportsExactlyAndBecomesActive();

private:
    ToolStep *open(bool second);
    QDoubleSpinBox *spin(const char *name) { return m_step->findChild<QDoubleSpinBox *>(QLatin1String(name)); }
    QRadioButton *radio(const char *name) { return m_step->findChild<QRadioButton *>(QLatin1String(name)); }
    QComboBox *combo() { return m_step->findChild<QComboBox *>(QStringLiteral("cmbTool")); }
    void import(const QString &name, bool confirm = true);
    orba::ModuleObject *toolset() { return m_pallet->r(QStringLiteral("calibrate.toolset")); }

    PalletFixture m_fx;
    orba::ModuleObject *m_pallet = nullptr;
    QPointer<ToolStep> m_step;
};

void TestToolWizard::init()
{
    m_fx.setUp();
    m_fx.transport()->setReply(QStringLiteral("tray.set.one"), 0);
    m_fx.connectController();
    orba::m()->set(nullptr, QStringLiteral("tcore.r.level"), 3, true);
    m_pallet = PalletFixture::addLocalPallet(QStringLiteral("tray0"), 2, 2);
    tpallet::identityToolsetNode(m_pallet->c(QStringLiteral("calibrate"))->c(QStringLiteral("toolset"), true));
    setList(QStringLiteral("tormo.project.tool._list"),
            {toolJson("gripper", true, 200.0), toolJson("glue", false, 300.0), toolJson("dup", true, 111.0),
             toolJson("sucker", true, 150.0)});
    setList(QStringLiteral("tormo.setting.g_tool.g_tools"), {toolJson("g_hand", true, 120.0), toolJson("dup", true, 222.0)});
}

void TestToolWizard::cleanup()
{
    delete m_step.data();
    m_fx.tearDown();
}

ToolStep *TestToolWizard::open(bool second)
{
    if (second)
        m_step = new ToolWizard2(m_pallet, nullptr);
    else
        m_step = new ToolWizard(m_pallet, nullptr);
    m_step->resize(1156, 600);
    m_step->show();
    return m_step;
}

void TestToolWizard::import(const QString &name, bool confirm)
{
    combo()->setCurrentText(name);
    QCOMPARE(combo()->currentText(), name);
    tcore::ManagerHelper::instance()->queueMsgAnswer(confirm);
    QTest::mouseClick(m_step->findChild<QPushButton *>(QStringLiteral("btnImport")), Qt::LeftButton);
}

void TestToolWizard::formWidgets_data()
{
    QTest::addColumn<bool>("second");
    QTest::newRow("ToolWizard") << false;
    QTest::newRow("ToolWizard2") << true;
}

void TestToolWizard::formWidgets()
{
    QFETCH(bool, second);
    open(second);
    const QStringList spins{"dspnX", "dspnY", "dspnZ", "dspnA", "dspnB", "dspnC", "dspnQ1", "dspnQ2", "dspnQ3", "dspnQ4",
                            "dspnMass", "dspnCogX", "dspnCogY", "dspnCogZ", "dspnInertiaX", "dspnInertiaY", "dspnInertiaZ"};
    for (const QString &name : spins) {
        auto *box = m_step->findChild<QDoubleSpinBox *>(name);
        QVERIFY2(box, qPrintable(name));
        QCOMPARE(box->decimals(), 9);
        QCOMPARE(box->minimum(), -1000.0);
        QCOMPARE(box->maximum(), 1000.0);
        QVERIFY2(m_step->findChild<QLabel *>(QStringLiteral("lbl") + name.mid(4)), qPrintable(name));
    }
    QVERIFY(radio("rdbEuler")->isChecked());
    QCOMPARE(radio("rdbEuler")->text(), QStringLiteral("Euler"));
    QCOMPARE(radio("rdbQuat")->text(), QStringLiteral("Quaternion"));
    auto *stack = m_step->findChild<QStackedWidget *>(QStringLiteral("stackedWidget"));
    QCOMPARE(stack->currentWidget()->objectName(), QStringLiteral("pageEuler"));
    QCOMPARE(m_step->findChild<QPushButton *>(QStringLiteral("btnImport"))->text(), QStringLiteral("Import"));
    QVERIFY(qobject_cast<QListView *>(combo()->view()));
    QCOMPARE(m_step->findChild<QLabel *>(QStringLiteral("lblVlTool"))->text(), QStringLiteral("VL Tool"));
    const QString hint = m_step->findChild<QLabel *>(QStringLiteral("lblHint"))->text();
    QVERIFY(hint.contains(QLatin1String("1.You can edit the tool manually or import it from the VL project.")));
    QVERIFY(hint.contains(QLatin1String("2.Only robot holding tool is supported to import.")));
    QCOMPARE(m_step->findChild<QWidget *>(QStringLiteral("grbTranslate"))->property("title").toString(), QStringLiteral("Translate"));
    QCOMPARE(m_step->findChild<QWidget *>(QStringLiteral("grbRotation"))->property("title").toString(), QStringLiteral("Rotation"));
    // The page fits the configuration dialog's step area on the 1280 x 800 panel.
    QVERIFY2(m_step->minimumSizeHint().width() <= 1156, qPrintable(QString::number(m_step->minimumSizeHint().width())));
    QVERIFY2(m_step->minimumSizeHint().height() <= 600, qPrintable(QString::number(m_step->minimumSizeHint().height())));
    // The second form puts the load first.
    QWidget *load = m_step->findChild<QWidget *>(QStringLiteral("grbLoad"));
    QWidget *translate = m_step->findChild<QWidget *>(QStringLiteral("grbTranslate"));
    QCOMPARE(load->x() < translate->x(), second);
}

void TestToolWizard::offersTool0ThenRobotHeldTools_data()
{
    QTest::addColumn<bool>("second");
    QTest::addColumn<QStringList>("offered");
    QTest::newRow("project tools only") << false << QStringList{"tool0", "gripper", "dup", "sucker"};
    QTest::newRow("project then global tools") << true << QStringList{"tool0", "gripper", "dup", "sucker", "g_hand", "dup"};
}

void TestToolWizard::offersTool0ThenRobotHeldTools()
{
    QFETCH(bool, second);
    QFETCH(QStringList, offered);
    open(second);
    QStringList items;
    for (int i = 0; i < combo()->count(); ++i)
        items << combo()->itemText(i);
    QCOMPARE(items, offered);
}

void TestToolWizard::nodeShownInPageUnits()
{
    orba::ModuleObject *ts = toolset();
    ts->set(nullptr, QStringLiteral("end.trans.#0"), 0.1);
    ts->set(nullptr, QStringLiteral("end.trans.#1"), -0.25);
    ts->set(nullptr, QStringLiteral("end.trans.#2"), 0.3);
    ts->set(nullptr, QStringLiteral("end.rot.#0"), kPi / 2);
    ts->set(nullptr, QStringLiteral("end.rot.#1"), 0.0);
    ts->set(nullptr, QStringLiteral("end.rot.#2"), -kPi / 4);
    ts->set(nullptr, QStringLiteral("load.mass"), 5.5);
    ts->set(nullptr, QStringLiteral("load.cog.#2"), 0.08);
    ts->set(nullptr, QStringLiteral("load.inertia.#0"), 0.0002);
    open(true);
    QCOMPARE(spin("dspnX")->value(), 100.0);
    QCOMPARE(spin("dspnY")->value(), -250.0);
    QCOMPARE(spin("dspnZ")->value(), 300.0);
    QCOMPARE(spin("dspnA")->value(), 90.0);
    QCOMPARE(spin("dspnC")->value(), -45.0);
    QCOMPARE(spin("dspnMass")->value(), 5.5);
    QCOMPARE(spin("dspnCogZ")->value(), 80.0);
    QCOMPARE(spin("dspnInertiaX")->value(), 200.0);
    orba::ModuleObject quat(QStringLiteral("quat"));
    kx::calc::rot2Quaternion(ts->c(QStringLiteral("end"))->c(QStringLiteral("rot")), &quat);
    const char *q[4] = {"dspnQ1", "dspnQ2", "dspnQ3", "dspnQ4"};
    for (int i = 0; i < 4; ++i)
        QVERIFY(std::abs(spin(q[i])->value() - quat.c(i)->getDouble()) < 1e-9);
    QCOMPARE(m_step->findChild<QLabel *>(QStringLiteral("lblX"))->text(), spin("dspnX")->text());
    QCOMPARE(m_step->findChild<QLabel *>(QStringLiteral("lblInertiaX"))->text(), spin("dspnInertiaX")->text());
    QCOMPARE(m_step->findChild<QLabel *>(QStringLiteral("lblQ1"))->text(), spin("dspnQ1")->text());
}

void TestToolWizard::importTool0KeepsReference()
{
    orba::ModuleObject *ts = toolset();
    ts->set(nullptr, QStringLiteral("ref.trans.#0"), 0.7);
    ts->set(nullptr, QStringLiteral("ref.rot.#2"), 1.2);
    ts->set(nullptr, QStringLiteral("end.trans.#2"), 0.2);
    ts->set(nullptr, QStringLiteral("load.mass"), 3.0);
    open(true);
    m_fx.transport()->clearRequests();
    import(QStringLiteral("tool0"));
    QCOMPARE(ts->r(QStringLiteral("end.trans.#2"))->getDouble(), 0.0);
    QCOMPARE(ts->r(QStringLiteral("load.mass"))->getDouble(), 0.0);
    QCOMPARE(ts->r(QStringLiteral("ref.trans.#0"))->getDouble(), 0.7);
    QCOMPARE(ts->r(QStringLiteral("ref.rot.#2"))->getDouble(), 1.2);
    QCOMPARE(spin("dspnZ")->value(), 0.0);
    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.set.one")).size(), 1);
    const auto asked = tcore::ManagerHelper::instance()->msgHistory();
    QCOMPARE(asked.last().kind, QStringLiteral("q"));
    QCOMPARE(asked.last().text, QStringLiteral("Tray tool will be replaced, are you sure to import?"));
}

void TestToolWizard::importDeclinedChangesNothing()
{
    open(true);
    orba::ModuleObject before(QStringLiteral("before"));
    before.copyFrom(nullptr, m_pallet, true, false);
    m_fx.transport()->clearRequests();
    import(QStringLiteral("gripper"), false);
    orba::ModuleObject after(QStringLiteral("before"));
    after.copyFrom(nullptr, m_pallet, true, false);
    QVERIFY(after.equals(&before));
    QVERIFY(m_fx.requestsOf(QStringLiteral("tray.set.one")).isEmpty());
    QCOMPARE(spin("dspnZ")->value(), 0.0);
}

void TestToolWizard::importConvertsRecord()
{
    open(true);
    m_fx.transport()->clearRequests();
    import(QStringLiteral("gripper"));
    orba::ModuleObject *ts = toolset();
    QCOMPARE(ts->r(QStringLiteral("end.trans.#0"))->getDouble(), 10.0 / 1000.0);
    QCOMPARE(ts->r(QStringLiteral("end.trans.#1"))->getDouble(), -20.0 / 1000.0);
    QCOMPARE(ts->r(QStringLiteral("end.trans.#2"))->getDouble(), 200.0 / 1000.0);
    QCOMPARE(ts->r(QStringLiteral("end.rot.#1"))->getDouble(), 90.0 / 180.0 * kPi);
    QCOMPARE(ts->r(QStringLiteral("load.mass"))->getDouble(), 1.0);
    QCOMPARE(ts->r(QStringLiteral("load.cog.#2"))->getDouble(), 30.0 / 1000.0);
    QCOMPARE(ts->r(QStringLiteral("load.inertia.#2"))->getDouble(), 300.0 / 1000000.0);
    QCOMPARE(spin("dspnZ")->value(), 200.0);
    QCOMPARE(spin("dspnB")->value(), 90.0);
    QCOMPARE(m_step->findChild<QLabel *>(QStringLiteral("lblZ"))->text(), spin("dspnZ")->text());
    const auto saves = m_fx.requestsOf(QStringLiteral("tray.set.one"));
    QCOMPARE(saves.size(), 1);
    QVERIFY(saves.at(0).params->equals(m_pallet));
}

void TestToolWizard::staleRobotHeldTextStillImports()
{
    open(true);
    QCOMPARE(combo()->findText(QStringLiteral("glue")), -1);
    // The host list changed after the page was built: the tool is no longer robot-held.
    orba::m(QStringLiteral("tormo.project.tool._list.#0"))->set(nullptr, QStringLiteral("robhold"), false);
    import(QStringLiteral("gripper"));
    QCOMPARE(toolset()->r(QStringLiteral("end.trans.#2"))->getDouble(), 0.2);
}

void TestToolWizard::vanishedToolIsInvalid()
{
    open(true);
    combo()->setCurrentText(QStringLiteral("sucker"));
    orba::ModuleObject *list = orba::m(QStringLiteral("tormo.project.tool._list"));
    list->remove(nullptr, list->c(3));
    orba::ModuleObject before(QStringLiteral("before"));
    before.copyFrom(nullptr, m_pallet, true, false);
    m_fx.transport()->clearRequests();
    tcore::ManagerHelper::instance()->clearLogHistory();
    import(QStringLiteral("sucker"));
    const QList<QVariantMap> log = tcore::ManagerHelper::instance()->logHistory();
    QCOMPARE(log.size(), 1);
    QCOMPARE(log.at(0).value(QStringLiteral("title")).toString(), QStringLiteral("Invalid tool: sucker"));
    QCOMPARE(log.at(0).value(QStringLiteral("level")).toString(), QStringLiteral("warning"));
    orba::ModuleObject after(QStringLiteral("before"));
    after.copyFrom(nullptr, m_pallet, true, false);
    QVERIFY(after.equals(&before));
    QVERIFY(m_fx.requestsOf(QStringLiteral("tray.set.one")).isEmpty());
}

void TestToolWizard::sameNameFirstInListOrderWins()
{
    open(true);
    combo()->setCurrentIndex(combo()->count() - 1);
    QCOMPARE(combo()->currentText(), QStringLiteral("dup"));
    tcore::ManagerHelper::instance()->queueMsgAnswer(true);
    QTest::mouseClick(m_step->findChild<QPushButton *>(QStringLiteral("btnImport")), Qt::LeftButton);
    // The project's "dup" (111 mm) comes before the global one (222 mm).
    QCOMPARE(toolset()->r(QStringLiteral("end.trans.#2"))->getDouble(), 0.111);
}

void TestToolWizard::eulerQuaternionRoundTrips()
{
    open(true);
    orba::ModuleObject before(QStringLiteral("before"));
    before.copyFrom(nullptr, m_pallet, true, false);
    QRandomGenerator random(20261123);
    double worst = 0.0;
    for (int i = 0; i < 1000; ++i) {
        const double a = random.bounded(360.0) - 180.0;
        const double b = random.bounded(180.0) - 90.0;
        const double c = random.bounded(360.0) - 180.0;
        spin("dspnA")->setValue(a);
        spin("dspnB")->setValue(b);
        spin("dspnC")->setValue(c);
        QTest::mouseClick(radio("rdbQuat"), Qt::LeftButton);
        QVERIFY(radio("rdbQuat")->isChecked());
        QTest::mouseClick(radio("rdbEuler"), Qt::LeftButton);
        const Eigen::Matrix3d shown = rotation(spin("dspnA")->value() * kPi / 180, spin("dspnB")->value() * kPi / 180,
                                               spin("dspnC")->value() * kPi / 180);
        worst = std::max(worst, angleBetween(shown, rotation(a * kPi / 180, b * kPi / 180, c * kPi / 180)));
    }
    // Nine decimals on the quaternion and the angles: far below a micro-radian.
    QVERIFY2(worst < 1e-6, qPrintable(QString::number(worst)));
    orba::ModuleObject after(QStringLiteral("before"));
    after.copyFrom(nullptr, m_pallet, true, false);
    QVERIFY(after.equals(&before));
}

void TestToolWizard::quaternionNotationStoresQuaternion()
{
    open(true);
    spin("dspnA")->setValue(10.0);
    QTest::mouseClick(radio("rdbQuat"), Qt::LeftButton);
    // 90 degrees about z as a quaternion; the hidden Euler boxes say something else.
    const double h = std::sqrt(0.5);
    spin("dspnQ1")->setValue(h);
    spin("dspnQ2")->setValue(0.0);
    spin("dspnQ3")->setValue(0.0);
    spin("dspnQ4")->setValue(h);
    spin("dspnA")->setValue(33.0);
    QVERIFY(m_step->tryNext());
    orba::ModuleObject *rot = toolset()->r(QStringLiteral("end.rot"));
    const Eigen::Matrix3d stored = rotation(rot->c(0)->getDouble(), rot->c(1)->getDouble(), rot->c(2)->getDouble());
    QVERIFY(angleBetween(stored, rotation(0, 0, kPi / 2)) < 1e-8);
}

void TestToolWizard::outOfRangeIsClippedAndStoredClipped()
{
    toolset()->set(nullptr, QStringLiteral("load.inertia.#1"), 0.002);
    toolset()->set(nullptr, QStringLiteral("end.trans.#0"), -1.5);
    open(true);
    QCOMPARE(spin("dspnInertiaY")->value(), 1000.0);
    QCOMPARE(spin("dspnX")->value(), -1000.0);
    QVERIFY(m_step->tryNext());
    QCOMPARE(toolset()->r(QStringLiteral("load.inertia.#1"))->getDouble(), 0.001);
    QCOMPARE(toolset()->r(QStringLiteral("end.trans.#0"))->getDouble(), -1.0);
}

void TestToolWizard::levelRules_data()
{
    QTest::addColumn<int>("level");
    QTest::addColumn<bool>("enabled");
    QTest::newRow("level 1") << 1 << false;
    QTest::newRow("level 2") << 2 << false;
    QTest::newRow("level 3") << 3 << true;
    QTest::newRow("level 4") << 4 << true;
}

void TestToolWizard::levelRules()
{
    QFETCH(int, level);
    QFETCH(bool, enabled);
    orba::m()->set(nullptr, QStringLiteral("tcore.r.level"), level, true);
    open(true);
    QCOMPARE(m_step->isEnabled(), enabled);
    QCOMPARE(m_step->findChild<QPushButton *>(QStringLiteral("btnImport"))->isEnabled(), enabled);
    delete m_step.data();
    // The earlier form has no level rule.
    open(false);
    QVERIFY(m_step->isEnabled());
}

void TestToolWizard::tryNextWritesPageAndSaves()
{
    open(true);
    QDoubleSpinBox *z = spin("dspnZ");
    z->setFocus();
    z->selectAll();
    QTest::keyClicks(z, QStringLiteral("125.5"));
    QCOMPARE(z->value(), 125.5);
    spin("dspnMass")->setValue(7.25);
    spin("dspnCogY")->setValue(-12.0);
    spin("dspnInertiaZ")->setValue(42.0);
    spin("dspnC")->setValue(30.0);
    m_fx.transport()->clearRequests();
    QVERIFY(m_step->tryNext());
    orba::ModuleObject *ts = toolset();
    QCOMPARE(ts->r(QStringLiteral("end.trans.#2"))->getDouble(), 125.5 / 1000.0);
    QCOMPARE(ts->r(QStringLiteral("end.rot.#2"))->getDouble(), 30.0 * kPi / 180.0);
    QCOMPARE(ts->r(QStringLiteral("load.mass"))->getDouble(), 7.25);
    QCOMPARE(ts->r(QStringLiteral("load.cog.#1"))->getDouble(), -12.0 / 1000.0);
    QCOMPARE(ts->r(QStringLiteral("load.inertia.#2"))->getDouble(), 42.0 / 1000000.0);
    const auto saves = m_fx.requestsOf(QStringLiteral("tray.set.one"));
    QCOMPARE(saves.size(), 1);
    QVERIFY(saves.at(0).params->equals(m_pallet));
}

// A tool of the simulated controller's project imports with its exact frame and load; once the
// calibration makes the pallet's toolset active, the controller reports positions at that tool.
void TestToolWizard::simulatorToolImportsExactlyAndBecomesActive()
{
    EmbeddedLink link;
    QVERIFY2(link.start(), qPrintable(link.error()));
    orba::MobjPtr tools = tservice()->get(nullptr, QStringLiteral("sim.tool.list"));
    QVERIFY(tools && tools->cmobjCount() >= 2);
    orba::ModuleObject *list = kx::globalNode(QStringLiteral("tormo.project.tool._list"));
    list->copyFrom(nullptr, tools.get(), true, false);

    open(true);
    import(QStringLiteral("sucker"));
    orba::ModuleObject *ts = toolset();
    QCOMPARE(ts->r(QStringLiteral("end.trans.#1"))->getDouble(), 50.0 / 1000.0);
    QCOMPARE(ts->r(QStringLiteral("end.trans.#2"))->getDouble(), 150.0 / 1000.0);
    QCOMPARE(ts->r(QStringLiteral("load.mass"))->getDouble(), 2.0);
    QCOMPARE(ts->r(QStringLiteral("load.cog.#1"))->getDouble(), 20.0 / 1000.0);
    QCOMPARE(ts->r(QStringLiteral("load.cog.#2"))->getDouble(), 70.0 / 1000.0);
    QCOMPARE(ts->r(QStringLiteral("load.inertia.#0"))->getDouble(), 600.0 / 1000000.0);
    QCOMPARE(ts->r(QStringLiteral("load.inertia.#2"))->getDouble(), 250.0 / 1000000.0);
    QVERIFY(m_step->tryNext());

    orba::MobjPtr flange = tservice()->get(nullptr, QStringLiteral("sys.posture"));
    // What the calibration step does on entry: the pallet's toolset with a reset reference.
    QVERIFY(tpallet::switchToToolset(ts, true, false));
    orba::MobjPtr active = tservice()->get(nullptr, QStringLiteral("sys.toolset"));
    QCOMPARE(active->r(QStringLiteral("name"))->getString(), QStringLiteral("tray0"));
    QVERIFY(std::abs(active->r(QStringLiteral("end.trans.#1"))->getDouble() - 0.05) < 1e-12);
    QVERIFY(std::abs(active->r(QStringLiteral("end.trans.#2"))->getDouble() - 0.15) < 1e-12);
    QCOMPARE(active->r(QStringLiteral("load.mass"))->getDouble(), 2.0);
    QVERIFY2(std::abs(active->r(QStringLiteral("load.inertia.#0"))->getDouble() - 0.0006) < 1e-15, active->exportToJson(true).constData());
    orba::MobjPtr tcp = tservice()->get(nullptr, QStringLiteral("sys.posture"));
    double d2 = 0.0;
    for (int i = 0; i < 3; ++i) {
        const double d = tcp->r(QStringLiteral("trans.#%1").arg(i))->getDouble() - flange->r(QStringLiteral("trans.#%1").arg(i))->getDouble();
        d2 += d * d;
    }
    QVERIFY2(std::abs(std::sqrt(d2) - std::hypot(0.05, 0.15)) < 1e-9, qPrintable(QString::number(std::sqrt(d2))));
    link.stop();
}

QTEST_MAIN(TestToolWizard)
#include "tst_toolwizard.moc"
