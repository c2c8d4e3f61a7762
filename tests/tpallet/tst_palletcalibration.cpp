#include "palletfixture.h"
#include "pendanttestutil.h"
#include "simcell.h"

#include "dialogs/movetodialog.h"
#include "module/pointgen.h"
#include "module/toolset.h"
#include "pages/palletsetdialog.h"

#include <kx/kx.h>
#include <orbat/tcptransport.h>
#include <tcore/widgets.h>

#include <QDoubleSpinBox>
#include <QLabel>
#include <QPointer>
#include <QProcess>
#include <QPushButton>
#include <QStackedWidget>
#include <QtTest>

#include <Eigen/Geometry>

#include <cmath>
#include <memory>

// The whole chain on the simulated robot: a pallet stands at a known pose in the cell; the robot
// is put on its corners and over its first place, the operator's buttons teach and calibrate,
// and the stored places must be where the pallet's places really are.
namespace {

constexpr double kToolLength = 0.12;
constexpr double kPlaceHeight = 0.08;
constexpr double kApproachHeight = 0.18;
constexpr double kRetractSide = 0.03;

const SimCellPallet kCell;

} // namespace

class TestPalletCalibration : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();
    void taughtPalletMatchesCell_data();
    void taughtPalletMatchesCell();

private:
    bool putRobotAt(const Eigen::Isometry3d &tcp);
    template<typename T>
    T *child(const QString &name)
    {
        T *found = m_dialog->findChild<T *>(name);
        if (!found)
            qFatal("widget %s missing", qPrintable(name));
        return found;
    }
    void click(const QString &name) { QTest::mouseClick(child<QPushButton>(name), Qt::LeftButton); }
    void moveThroughDialogTo(orba::ModuleObject *place);

    PalletFixture m_fx;
    QPointer<PalletSetDialog> m_dialog;
    rc::Joints m_joints = rc::Joints::Zero();
};

void TestPalletCalibration::init()
{
    m_fx.setUp();

    orba::m()->set(nullptr, QStringLiteral("tcore.r.level"), 3, true);
    kx::globalNode(QStringLiteral("tormo.toolpage.toolset"))->setValue(nullptr, QString(QLatin1String("")), true);
    m_joints = rc::RobotModel::defaultArm().home;
}

void TestPalletCalibration::cleanup()
{
    delete m_dialog.data();
    m_fx.tearDown();
}

// Puts the simulated arm where its tool (the pallet's tool, no reference frame) is at `tcp`.
bool TestPalletCalibration::putRobotAt(const Eigen::Isometry3d &tcp)
{
    return putSimRobotAt(tcp, kToolLength, &m_joints);
}

void TestPalletCalibration::moveThroughDialogTo(orba::ModuleObject *place)
{
    QWidget grand;
    auto *parent = new QWidget(&grand);
    auto *from = new QWidget(parent);
    QPointer<MoveToDialog> dialog = tpallet::moveToPoint(place, from);
    QVERIFY(dialog);
    dialog->setParent(nullptr);
    dialog->show();
    QTest::mouseClick(dialog->findChild<QPushButton *>(QStringLiteral("btnConfirm")), Qt::LeftButton);
    QCOMPARE(dialog->findChild<QStackedWidget *>(QStringLiteral("stackedWidget"))->currentWidget()->objectName(),
             QStringLiteral("pgMonitor"));
    auto *hold = dialog->findChild<TouchButton *>(QStringLiteral("btnMove"));
    QTest::mousePress(hold, Qt::LeftButton);
    QCoreApplication::processEvents();
    QVERIFY(dialog->isMoving());
    const Eigen::Vector3d target = vectorOf(place->r(QStringLiteral("trans")));
    auto reached = [&target] {
        orba::MobjPtr posture = tservice()->get(nullptr, QStringLiteral("sys.posture"));
        return (vectorOf(posture->r(QStringLiteral("trans"))) - target).norm();
    };
    QTRY_VERIFY_WITH_TIMEOUT(reached() < 1e-6, 15000);
    QTest::mouseRelease(hold, Qt::LeftButton);
    QCoreApplication::processEvents();
    QVERIFY(!dialog->isMoving());
    delete dialog.data();
}

void TestPalletCalibration::taughtPalletMatchesCell_data()
{
    QTest::addColumn<bool>("overTcp");
    QTest::newRow("embedded controller") << false;
    QTest::newRow("rcsim over TCP") << true;
}

void TestPalletCalibration::taughtPalletMatchesCell()
{
    QFETCH(bool, overTcp);
    EmbeddedLink embedded;
    RcsimLink tcp;
    QVERIFY(overTcp ? tcp.start() : embedded.start());
    orba::ModuleObject on(QStringLiteral("on"));
    on.setValue(nullptr, true);
    QCOMPARE(tservice()->execCommand(nullptr, QStringLiteral("sim.power"), &on)->getInt(-1), 0);

    // A 3 x 4 pallet added as the page would.
    orba::ModuleObject *pallet = PalletFixture::addLocalPallet(QStringLiteral("cell"), 3, 4);
    tpallet::identityToolsetNode(pallet->c(QStringLiteral("calibrate"))->c(QStringLiteral("toolset"), true));
    tpallet::initWayPointNode(pallet);
    tpallet::generatePoints1(pallet, nullptr);
    orba::MobjPtr added = tservice()->execCommand(nullptr, QStringLiteral("tray.add_one"), pallet);
    QVERIFY2(added->r(QStringLiteral("data.size"))->getInt() == 1, added->exportToJson(true).constData());

    m_dialog = new PalletSetDialog(pallet, nullptr, 0);
    m_dialog->resize(1180, 720);
    m_dialog->show();
    click(QStringLiteral("btnNext"));

    // Tool: a 120 mm tool along the flange's z axis.
    QCOMPARE(m_dialog->currentStep(), 1);
    child<QDoubleSpinBox>(QStringLiteral("dspnZ"))->setValue(kToolLength * 1000.0);
    click(QStringLiteral("btnNext"));

    // Calibration: the robot on each corner, then "Accquire".
    QCOMPARE(m_dialog->currentStep(), 2);
    const SimCellPallet &cell = kCell;
    for (int i = 0; i < 4; ++i) {
        QVERIFY(putRobotAt(cell.toolAt(cell.corner(i))));
        click(QStringLiteral("btnAccquireP%1").arg(i + 1));
    }
    tcore::ManagerHelper::instance()->clearMsgHistory();
    click(QStringLiteral("btnCalibrate"));
    QVERIFY(tcore::ManagerHelper::instance()->msgHistory().isEmpty());
    click(QStringLiteral("btnNext"));

    // Way points over the first place, taught in the pallet frame now active on the controller.
    QCOMPARE(m_dialog->currentStep(), 3);
    QVERIFY(putRobotAt(cell.toolAt(cell.p1 + kApproachHeight * cell.n)));
    click(QStringLiteral("btnAccquireApproach"));
    QVERIFY(putRobotAt(cell.toolAt(cell.p1 + kPlaceHeight * cell.n)));
    click(QStringLiteral("btnAccquireWobj"));
    QVERIFY(putRobotAt(cell.toolAt(cell.p1 + kApproachHeight * cell.n - kRetractSide * cell.y)));
    click(QStringLiteral("btnAccquireRetract"));
    click(QStringLiteral("btnNext"));
    QCOMPARE(m_dialog->currentStep(), 4);
    click(QStringLiteral("btnNext"));
    QTRY_VERIFY(!m_dialog);

    // The stored pallet, read back from the controller.
    orba::ModuleObject param(QStringLiteral("param"));
    param.setValue(nullptr, 0);
    QCOMPARE(tservice()->execCommandAt(nullptr, QStringLiteral("tray.query.one"), &param), 0);
    orba::ModuleObject *stored = param.c(QStringLiteral("data"));
    orba::ModuleObject *ref = stored->r(QStringLiteral("calibrate.toolset.ref"));
    const Eigen::Matrix3d frame = eulerRotation(ref->r(QStringLiteral("rot.#0"))->getDouble(), ref->r(QStringLiteral("rot.#1"))->getDouble(),
                                        ref->r(QStringLiteral("rot.#2"))->getDouble());
    const Eigen::Vector3d origin = vectorOf(ref->r(QStringLiteral("trans")));
    QVERIFY((origin - cell.p1).norm() < 1e-9);
    QVERIFY(Eigen::Quaterniond(frame).angularDistance(Eigen::Quaterniond(cell.rot)) < 1e-9);

    orba::ModuleObject *points = stored->r(QStringLiteral("points"));
    QCOMPARE(points->size(), 12);
    // Each place lands on a distinct place of the real pallet: 3 places along P1->P2, 4 along P1->P3.
    QVector<bool> used(12, false);
    for (int k = 0; k < 12; ++k) {
        orba::ModuleObject *place = points->c(k);
        const Eigen::Vector3d wobj = frame * vectorOf(place->r(QStringLiteral("wobj.trans"))) + origin;
        int match = -1;
        double best = 1.0;
        for (int i = 0; i < 3; ++i) {
            for (int j = 0; j < 4; ++j) {
                const double d = (wobj - (cell.grid(i / 2.0, j / 3.0) + kPlaceHeight * cell.n)).norm();
                if (d < best) {
                    best = d;
                    match = i * 4 + j;
                }
            }
        }
        QVERIFY2(best < 1e-6, qPrintable(QStringLiteral("place %1 is %2 m off").arg(k).arg(best)));
        QVERIFY2(!used[match], qPrintable(QStringLiteral("place %1 repeats another").arg(k)));
        used[match] = true;
        const Eigen::Vector3d onPallet = wobj - kPlaceHeight * cell.n;
        const Eigen::Vector3d approach = frame * vectorOf(place->r(QStringLiteral("approach.trans"))) + origin;
        const Eigen::Vector3d retract = frame * vectorOf(place->r(QStringLiteral("retract.trans"))) + origin;
        QVERIFY((approach - (onPallet + kApproachHeight * cell.n)).norm() < 1e-6);
        QVERIFY((retract - (onPallet + kApproachHeight * cell.n - kRetractSide * cell.y)).norm() < 1e-6);
    }
    QVERIFY(((frame * vectorOf(points->r(QStringLiteral("#0.wobj.trans"))) + origin) - (cell.p1 + kPlaceHeight * cell.n)).norm() < 1e-6);

    // The robot, driven by the operator's hold-to-run button, ends on the stored places.
    orba::ModuleObject *working = tpallet::palletsNode()->c(0);
    for (int k : {0, 11, 5})
        moveThroughDialogTo(working->r(QStringLiteral("points.#%1.wobj").arg(k)));
}

QTEST_MAIN(TestPalletCalibration)
#include "tst_palletcalibration.moc"
