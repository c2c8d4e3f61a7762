#include "palletfixture.h"

#include "dialogs/movetodialog.h"
#include "module/pointgen.h"
#include "module/posenode.h"
#include "module/toolset.h"
#include "wizards/calibratesetwizard.h"
#include "wizards/calibration.h"
#include "wizards/imagewidget.h"
#include "wizards/patternwizard.h"

#include <kx/globaluniqueptr.h>
#include <kx/kx.h>
#include <tcore/widgets.h>

#include <QDoubleSpinBox>
#include <QGroupBox>
#include <QPointer>
#include <QPushButton>
#include <QRandomGenerator>
#include <QtTest>

#include <Eigen/Geometry>

#include <cmath>

namespace {

constexpr double kPi = 3.141592653589793;

Eigen::Matrix3d eulerRotation(double a, double b, double c)
{
    return (Eigen::AngleAxisd(c, Eigen::Vector3d::UnitZ()) * Eigen::AngleAxisd(b, Eigen::Vector3d::UnitY())
            * Eigen::AngleAxisd(a, Eigen::Vector3d::UnitX()))
        .toRotationMatrix();
}

tpallet::Vec3 toVec(const Eigen::Vector3d &v)
{
    return {v.x(), v.y(), v.z()};
}

// A pallet as it stands in the cell: its frame (rotation, origin) and its shape in that frame.
struct TruePallet
{
    Eigen::Matrix3d rot;
    Eigen::Vector3d origin;
    double xSpan, ySpan, x13, x24, y34;

    Eigen::Vector3d corner(double x, double y) const { return rot * Eigen::Vector3d(x, y, 0.0) + origin; }
    Eigen::Vector3d p1() const { return corner(0.0, 0.0); }
    Eigen::Vector3d p2() const { return corner(xSpan, 0.0); }
    Eigen::Vector3d p3() const { return corner(x13, ySpan); }
    Eigen::Vector3d p4() const { return corner(xSpan + x24, ySpan + y34); }
};

void setTrans(orba::ModuleObject *point, double x, double y, double z)
{
    point->set(nullptr, QStringLiteral("trans.#0"), x);
    point->set(nullptr, QStringLiteral("trans.#1"), y);
    point->set(nullptr, QStringLiteral("trans.#2"), z);
}

} // namespace

class TestCalibrateSetWizard : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void cleanup();

    void frameFromFirstPrinciples_data();
    void frameFromFirstPrinciples();
    void withoutP4IsParallelogram();
    void tiltedCornersUseMeanNormal();
    void closePairsInOrder();

    void formShowsPointsAndFrame();
    void initParamCompletesPallet();
    void initParamKeepsTaughtToolset();
    void pointsTooCloseAsk();
    void exactlyTenMillimetresAsksNothing();
    void p4OffIsNeitherCheckedNorUsed();
    void decliningWritesNothing();
    void calibrateWritesFrameSpansAndSaves();
    void calibrateTurnsWayPointsToP1();
    void axisPictureFollowsPattern_data();
    void axisPictureFollowsPattern();
    void p4SwitchEnablesEditorsAndStores();
    void acquireReadsPosture();
    void moveOpensDialogOnEditedPoint();
    void entrySwitchesToolsetWithReferenceReset();
    void entrySwitchFailureIsLogged();
    void nextStoresBoxesAndSaves();
    void alternativeCalibrationThroughHost();

private:
    CalibrateSetWizard *open();
    QGroupBox *box(int i) { return m_step->findChild<QGroupBox *>(QStringLiteral("grbP%1").arg(i)); }
    QDoubleSpinBox *spin(const QString &name) { return m_step->findChild<QDoubleSpinBox *>(name); }
    void typePoint(int i, double x, double y, double z);
    void clickCalibrate() { QTest::mouseClick(m_step->findChild<QPushButton *>(QStringLiteral("btnCalibrate")), Qt::LeftButton); }
    QList<QVariantMap> log() const { return tcore::ManagerHelper::instance()->logHistory(); }

    PalletFixture m_fx;
    orba::ModuleObject *m_pallet = nullptr;
    QPointer<CalibrateSetWizard> m_step;
};

void TestCalibrateSetWizard::init()
{
    m_fx.setUp();
    m_fx.transport()->setReply(QStringLiteral("tray.set.one"), 0);
    m_fx.transport()->setReply(QStringLiteral("sys.toolset"), 0);
    m_fx.connectController();
    orba::m()->set(nullptr, QStringLiteral("tcore.r.level"), 3, true);
    kx::globalNode(QStringLiteral("tormo.toolpage.toolset"))->setValue(nullptr, QString(QLatin1String("")), true);
    m_pallet = PalletFixture::addLocalPallet(QStringLiteral("tray0"), 3, 4);
    tpallet::identityToolsetNode(m_pallet->c(QStringLiteral("calibrate"))->c(QStringLiteral("toolset"), true));
    tpallet::initWayPointNode(m_pallet);
    tpallet::generatePoints1(m_pallet, nullptr);
}

void TestCalibrateSetWizard::cleanup()
{
    delete m_step.data();
    m_fx.tearDown();
}

CalibrateSetWizard *TestCalibrateSetWizard::open()
{
    m_step = new CalibrateSetWizard(m_pallet, nullptr);
    m_step->resize(1156, 600);
    m_step->show();
    return m_step;
}

void TestCalibrateSetWizard::typePoint(int i, double x, double y, double z)
{
    const QString suffix = i == 1 ? QString() : QStringLiteral("_%1").arg(i);
    spin(QStringLiteral("dspnX") + suffix)->setValue(x);
    spin(QStringLiteral("dspnY") + suffix)->setValue(y);
    spin(QStringLiteral("dspnZ") + suffix)->setValue(z);
}

void TestCalibrateSetWizard::frameFromFirstPrinciples_data()
{
    QTest::addColumn<int>("seed");
    QTest::addColumn<QString>("shape");
    QTest::addColumn<bool>("useP4");
    const QStringList shapes{"rectangle", "parallelogram", "trapezoid"};
    for (int seed = 0; seed < 200; ++seed) {
        const QString shape = shapes.at(seed % 3);
        const bool useP4 = shape == QLatin1String("trapezoid") || seed % 2 == 0;
        QTest::newRow(qPrintable(QStringLiteral("%1 %2%3").arg(shape).arg(seed).arg(useP4 ? " with P4" : "")))
            << seed << shape << useP4;
    }
}

// The calibration recovers a pallet placed anywhere in any orientation: the frame's axes are the
// pallet's, its origin is P1, and the spans and skews are the pallet's own.
void TestCalibrateSetWizard::frameFromFirstPrinciples()
{
    QFETCH(int, seed);
    QFETCH(QString, shape);
    QFETCH(bool, useP4);
    QRandomGenerator random(quint32(seed) * 7919u + 17u);
    auto uniform = [&random](double lo, double hi) { return lo + (hi - lo) * random.generateDouble(); };

    TruePallet pallet;
    double b = uniform(-kPi / 2, kPi / 2);
    if (seed % 10 == 1)
        b = kPi / 2 - uniform(0.0, 1e-3); // close to the top of B's range
    if (seed % 10 == 2)
        b = -kPi / 2 + uniform(0.0, 1e-3);
    const double c = seed % 4 == 3 ? uniform(-kPi, -0.01) : uniform(-kPi, kPi); // often C < 0
    pallet.rot = eulerRotation(uniform(-kPi, kPi), b, c);
    pallet.origin = Eigen::Vector3d(uniform(-1.0, 1.0), uniform(-1.0, 1.0), uniform(-0.5, 0.5));
    pallet.xSpan = uniform(0.2, 1.5);
    pallet.ySpan = uniform(0.2, 1.5);
    pallet.x13 = shape == QLatin1String("rectangle") ? 0.0 : uniform(-0.2, 0.2);
    pallet.x24 = shape == QLatin1String("trapezoid") ? uniform(-0.2, 0.2) : pallet.x13;
    pallet.y34 = shape == QLatin1String("trapezoid") ? uniform(-0.1, 0.1) : 0.0;

    // Without P4 whatever P4 holds plays no part.
    const Eigen::Vector3d p4 = useP4 ? pallet.p4() : Eigen::Vector3d(9.0, -7.0, 3.0);
    const tpallet::PalletCalibration result =
        tpallet::calibratePallet(toVec(pallet.p1()), toVec(pallet.p2()), toVec(pallet.p3()), toVec(p4), useP4);

    const Eigen::Matrix3d found = eulerRotation(result.rot[0], result.rot[1], result.rot[2]);
    const double angle = Eigen::Quaterniond(found).angularDistance(Eigen::Quaterniond(pallet.rot));
    QVERIFY2(angle < 1e-9, qPrintable(QStringLiteral("rotation off by %1 rad").arg(angle)));
    QVERIFY(result.rot[2] >= 0.0 && result.rot[2] <= kPi);
    for (int i = 0; i < 3; ++i)
        QVERIFY(std::abs(result.trans[size_t(i)] - pallet.origin[i]) < 1e-12);
    QVERIFY(std::abs(result.xSpan - pallet.xSpan) < 1e-12);
    QVERIFY(std::abs(result.ySpan - pallet.ySpan) < 1e-12);
    QVERIFY(std::abs(result.xOffset13 - pallet.x13) < 1e-12);
    QVERIFY(std::abs(result.xOffset24 - (useP4 ? pallet.x24 : pallet.x13)) < 1e-12);
    QVERIFY(std::abs(result.yOffset34 - (useP4 ? pallet.y34 : 0.0)) < 1e-12);
}

void TestCalibrateSetWizard::withoutP4IsParallelogram()
{
    const tpallet::PalletCalibration r =
        tpallet::calibratePallet({0.1, 0.2, 0.3}, {0.9, 0.2, 0.3}, {0.15, 0.8, 0.3}, {5.0, 5.0, 5.0}, false);
    QVERIFY(std::abs(r.xOffset24 - r.xOffset13) < 1e-15);
    QVERIFY(std::abs(r.yOffset34) < 1e-15);
    QVERIFY(std::abs(r.xOffset13 - 0.05) < 1e-15);
}

// Four corners that are not in one plane: z is the mean of the two triangles' normals.
void TestCalibrateSetWizard::tiltedCornersUseMeanNormal()
{
    const Eigen::Vector3d p1(0, 0, 0), p2(1, 0, 0), p3(0, 1, 0), p4(1, 1, 0.2);
    const tpallet::PalletCalibration r = tpallet::calibratePallet(toVec(p1), toVec(p2), toVec(p3), toVec(p4), true);
    const Eigen::Vector3d n1 = Eigen::Vector3d(0, 0, 1);
    const Eigen::Vector3d n2 = Eigen::Vector3d(1, 0, 0).cross(Eigen::Vector3d(1, 1, 0.2)).normalized();
    const Eigen::Vector3d z = (n1 + n2).normalized();
    const Eigen::Matrix3d found = eulerRotation(r.rot[0], r.rot[1], r.rot[2]);
    QVERIFY((found.col(2) - z).norm() < 1e-12);
    QVERIFY((found.col(0) - Eigen::Vector3d(1, 0, 0)).norm() < 1e-12);
}

void TestCalibrateSetWizard::closePairsInOrder()
{
    const tpallet::Vec3 p1{0, 0, 0}, p2{0.005, 0, 0}, p3{0.003, 0.004, 0}, p4{0.5, 0.5, 0};
    QCOMPARE(tpallet::closeCornerPairs(p1, p2, p3, p4, true), (QStringList{"P1 & P2", "P1 & P3", "P2 & P3"}));
    const tpallet::Vec3 q4{0.004, 0.0, 0.0};
    QCOMPARE(tpallet::closeCornerPairs(p1, {1, 0, 0}, {0, 1, 0}, q4, true), (QStringList{"P1 & P4"}));
    QVERIFY(tpallet::closeCornerPairs(p1, {1, 0, 0}, {0, 1, 0}, q4, false).isEmpty());
}

void TestCalibrateSetWizard::formShowsPointsAndFrame()
{
    CalibrateSetWizard::initParamPointNode(m_pallet);
    setTrans(m_pallet->r(QStringLiteral("calibrate.p2")), 0.5, -0.25, 0.0005);
    m_pallet->set(nullptr, QStringLiteral("calibrate.p2.rot.#2"), kPi / 2);
    m_pallet->set(nullptr, QStringLiteral("calibrate.toolset.ref.trans.#1"), 0.125);
    open();
    QCOMPARE(spin(QStringLiteral("dspnX_2"))->value(), 500.0);
    QCOMPARE(spin(QStringLiteral("dspnY_2"))->value(), -250.0);
    QCOMPARE(spin(QStringLiteral("dspnZ_2"))->value(), 0.5);
    QCOMPARE(spin(QStringLiteral("dspnC_2"))->value(), 90.0);
    QCOMPARE(spin(QStringLiteral("dspnY_5"))->value(), 125.0);
    for (int i = 1; i <= 4; ++i) {
        QVERIFY(box(i));
        QCOMPARE(m_step->findChild<QPushButton *>(QStringLiteral("btnAccquireP%1").arg(i))->text(), QStringLiteral("Accquire"));
        QCOMPARE(m_step->findChild<QPushButton *>(QStringLiteral("btnMoveToP%1").arg(i))->text(), QStringLiteral("Move To"));
    }
    QCOMPARE(spin(QStringLiteral("dspnX"))->minimum(), -10000.0);
    QCOMPARE(spin(QStringLiteral("dspnX"))->maximum(), 10000.0);
}

void TestCalibrateSetWizard::initParamCompletesPallet()
{
    orba::ModuleObject pallet(QStringLiteral("p"));
    pallet.set(nullptr, QStringLiteral("name"), QStringLiteral("bare"));
    CalibrateSetWizard::initParamPointNode(&pallet);
    for (int i = 1; i <= 4; ++i) {
        orba::ModuleObject *p = pallet.r(QStringLiteral("calibrate.p%1").arg(i));
        QCOMPARE(p->r(QStringLiteral("trans"))->size(), 3);
        QCOMPARE(p->r(QStringLiteral("rot"))->size(), 3);
        QCOMPARE(p->r(QStringLiteral("near"))->size(), 6);
    }
    QCOMPARE(pallet.r(QStringLiteral("calibrate.toolset.ref.rot"))->size(), 3);
    QCOMPARE(pallet.r(QStringLiteral("calibrate.toolset.load.inertia"))->size(), 3);
}

void TestCalibrateSetWizard::initParamKeepsTaughtToolset()
{
    m_pallet->set(nullptr, QStringLiteral("calibrate.toolset.end.trans.#2"), 0.2);
    m_pallet->set(nullptr, QStringLiteral("calibrate.toolset.load.mass"), 4.5);
    m_pallet->r(QStringLiteral("calibrate.toolset.load"))->remove(nullptr, m_pallet->r(QStringLiteral("calibrate.toolset.load.cog")));
    CalibrateSetWizard::initParamPointNode(m_pallet);
    QCOMPARE(m_pallet->r(QStringLiteral("calibrate.toolset.end.trans.#2"))->getDouble(), 0.2);
    QCOMPARE(m_pallet->r(QStringLiteral("calibrate.toolset.load.mass"))->getDouble(), 4.5);
    QCOMPARE(m_pallet->r(QStringLiteral("calibrate.toolset.load.cog"))->size(), 3);
}

void TestCalibrateSetWizard::pointsTooCloseAsk()
{
    open();
    typePoint(1, 100, 100, 0);
    typePoint(2, 105, 100, 0);
    typePoint(3, 100, 600, 0);
    typePoint(4, 600, 600, 0);
    tcore::ManagerHelper::instance()->clearMsgHistory();
    tcore::ManagerHelper::instance()->queueMsgAnswer(false);
    clickCalibrate();
    const auto asked = tcore::ManagerHelper::instance()->msgHistory();
    QCOMPARE(asked.size(), 1);
    QCOMPARE(asked.at(0).kind, QStringLiteral("q"));
    QCOMPARE(asked.at(0).text, QStringLiteral("P1 & P2 is too close to each other, are you sure to calibrate?"));
    // Two close pairs are listed together.
    typePoint(3, 103, 104, 0);
    tcore::ManagerHelper::instance()->queueMsgAnswer(false);
    clickCalibrate();
    QCOMPARE(tcore::ManagerHelper::instance()->msgHistory().last().text,
             QStringLiteral("P1 & P2; P1 & P3; P2 & P3 is too close to each other, are you sure to calibrate?"));
}

void TestCalibrateSetWizard::exactlyTenMillimetresAsksNothing()
{
    open();
    typePoint(1, 0, 0, 0);
    typePoint(2, 10, 0, 0);
    typePoint(3, 0, 600, 0);
    typePoint(4, 600, 600, 0);
    tcore::ManagerHelper::instance()->clearMsgHistory();
    clickCalibrate();
    QVERIFY(tcore::ManagerHelper::instance()->msgHistory().isEmpty());
    QCOMPARE(m_pallet->r(QStringLiteral("calibrate.x_span"))->getDouble(), 0.01);
}

void TestCalibrateSetWizard::p4OffIsNeitherCheckedNorUsed()
{
    open();
    auto *sw = m_step->findChild<EnableButton *>(QStringLiteral("btnP4InUse"));
    QVERIFY(sw->getIsEnabled());
    QTest::mouseClick(sw, Qt::LeftButton);
    QVERIFY(!sw->getIsEnabled());
    typePoint(1, 100, 100, 0);
    typePoint(2, 500, 100, 0);
    typePoint(3, 100, 400, 0);
    // P4 on top of P1, and off the plane: neither asked about nor used.
    typePoint(4, 101, 100, 300);
    tcore::ManagerHelper::instance()->clearMsgHistory();
    clickCalibrate();
    QVERIFY(tcore::ManagerHelper::instance()->msgHistory().isEmpty());
    QVERIFY(std::abs(m_pallet->r(QStringLiteral("calibrate.x_offset_24"))->getDouble()) < 1e-15);
    QVERIFY(std::abs(m_pallet->r(QStringLiteral("calibrate.y_offset_34"))->getDouble()) < 1e-15);
    for (int i = 0; i < 3; ++i)
        QVERIFY(std::abs(m_pallet->r(QStringLiteral("calibrate.toolset.ref.rot.#%1").arg(i))->getDouble()) < 1e-15);
}

void TestCalibrateSetWizard::decliningWritesNothing()
{
    open();
    typePoint(1, 100, 100, 0);
    typePoint(2, 102, 100, 0);
    typePoint(3, 100, 600, 0);
    typePoint(4, 600, 600, 0);
    // The boxes are written back before the check, as the operator typed them.
    tpallet::groupSpinToPoint(m_pallet->r(QStringLiteral("calibrate.p1")), box(1));
    tpallet::groupSpinToPoint(m_pallet->r(QStringLiteral("calibrate.p2")), box(2));
    tpallet::groupSpinToPoint(m_pallet->r(QStringLiteral("calibrate.p3")), box(3));
    tpallet::groupSpinToPoint(m_pallet->r(QStringLiteral("calibrate.p4")), box(4));
    orba::ModuleObject before(QStringLiteral("copy"));
    before.copyFrom(nullptr, m_pallet, true, false);
    m_fx.transport()->clearRequests();
    tcore::ManagerHelper::instance()->queueMsgAnswer(false);
    clickCalibrate();
    orba::ModuleObject after(QStringLiteral("copy"));
    after.copyFrom(nullptr, m_pallet, true, false);
    QVERIFY(after.equals(&before));
    QVERIFY(m_fx.requestsOf(QStringLiteral("tray.set.one")).isEmpty());
    QCOMPARE(spin(QStringLiteral("dspnX_5"))->value(), 0.0);
}

void TestCalibrateSetWizard::calibrateWritesFrameSpansAndSaves()
{
    open();
    // A 400 x 300 mm pallet turned 90 degrees about z, origin at (500, 100, 20).
    typePoint(1, 500, 100, 20);
    typePoint(2, 500, 500, 20);
    typePoint(3, 200, 100, 20);
    typePoint(4, 200, 500, 20);
    m_fx.transport()->clearRequests();
    tcore::ManagerHelper::instance()->clearLogHistory();
    clickCalibrate();
    QVERIFY(std::abs(m_pallet->r(QStringLiteral("calibrate.x_span"))->getDouble() - 0.4) < 1e-12);
    QVERIFY(std::abs(m_pallet->r(QStringLiteral("calibrate.y_span"))->getDouble() - 0.3) < 1e-12);
    QCOMPARE(m_pallet->r(QStringLiteral("calibrate.toolset.ref.trans.#0"))->getDouble(), 0.5);
    QVERIFY(std::abs(m_pallet->r(QStringLiteral("calibrate.toolset.ref.rot.#2"))->getDouble() - kPi / 2) < 1e-12);
    QCOMPARE(spin(QStringLiteral("dspnX_5"))->value(), 500.0);
    QCOMPARE(spin(QStringLiteral("dspnC_5"))->value(), 90.0);
    // The places follow the new size at once, and the pallet is stored.
    QVERIFY(std::abs(m_pallet->r(QStringLiteral("points.#11.wobj.trans.#0"))->getDouble() - 0.4) < 1e-12);
    QVERIFY(std::abs(m_pallet->r(QStringLiteral("points.#11.wobj.trans.#1"))->getDouble() - 0.3) < 1e-12);
    const auto saves = m_fx.requestsOf(QStringLiteral("tray.set.one"));
    QCOMPARE(saves.size(), 1);
    QVERIFY(saves.at(0).params->equals(m_pallet));
    QCOMPARE(log().last().value(QStringLiteral("title")).toString(), QStringLiteral("The way points have regenerated!"));
}

void TestCalibrateSetWizard::calibrateTurnsWayPointsToP1()
{
    open();
    typePoint(1, 500, 100, 20);
    typePoint(2, 500, 500, 20);
    typePoint(3, 200, 100, 20);
    typePoint(4, 200, 500, 20);
    // P1 taught with the tool pointing down (A = 180 degrees).
    spin(QStringLiteral("dspnA"))->setValue(180.0);
    m_pallet->set(nullptr, QStringLiteral("waypoint.approach.trans.#2"), 0.1);
    clickCalibrate();
    // P1 seen from the pallet frame (turned 90 degrees about z): the same tool-down orientation.
    const Eigen::Matrix3d frame = eulerRotation(0, 0, kPi / 2);
    const Eigen::Matrix3d expected = frame.transpose() * eulerRotation(kPi, 0, 0);
    for (const char *name : {"wobj", "approach", "retract"}) {
        orba::ModuleObject *rot = m_pallet->r(QStringLiteral("waypoint.%1.rot").arg(QLatin1String(name)));
        QCOMPARE(rot->size(), 3);
        const Eigen::Matrix3d found = eulerRotation(rot->c(0)->getDouble(), rot->c(1)->getDouble(), rot->c(2)->getDouble());
        QVERIFY2(Eigen::Quaterniond(found).angularDistance(Eigen::Quaterniond(expected)) < 1e-9, name);
    }
    // Positions are left as taught.
    QCOMPARE(m_pallet->r(QStringLiteral("waypoint.approach.trans.#2"))->getDouble(), 0.1);
}

void TestCalibrateSetWizard::axisPictureFollowsPattern_data()
{
    QTest::addColumn<int>("origin");
    QTest::addColumn<bool>("sType");
    QTest::addColumn<bool>("rankV");
    QTest::addColumn<QString>("picture");
    QTest::newRow("origin 2, S-type, horizontal") << 2 << true << false << ":/tpallet/images/pallet/axis_s_h_2.png";
    QTest::newRow("origin 0, parallel, vertical") << 0 << false << true << ":/tpallet/images/pallet/axis_p_v_0.png";
}

void TestCalibrateSetWizard::axisPictureFollowsPattern()
{
    QFETCH(int, origin);
    QFETCH(bool, sType);
    QFETCH(bool, rankV);
    QFETCH(QString, picture);
    m_pallet->set(nullptr, QStringLiteral("pattern.origin"), origin);
    m_pallet->set(nullptr, QStringLiteral("pattern.s_type"), sType);
    m_pallet->set(nullptr, QStringLiteral("pattern.rank_v"), rankV);
    open();
    QCOMPARE(tpallet::axisImagePath(origin, sType, rankV), picture);
    const QImage shown = m_step->findChild<ImageWidget *>(QStringLiteral("wgtImage"))->pixmap().toImage();
    QVERIFY(!shown.isNull());
    QCOMPARE(shown, QImage(picture).convertToFormat(shown.format()));
}

void TestCalibrateSetWizard::p4SwitchEnablesEditorsAndStores()
{
    m_pallet->set(nullptr, QStringLiteral("calibrate.use_p4"), false);
    open();
    auto *sw = m_step->findChild<EnableButton *>(QStringLiteral("btnP4InUse"));
    QVERIFY(!sw->getIsEnabled());
    QVERIFY(!spin(QStringLiteral("dspnX_4"))->isEnabled());
    QVERIFY(!m_step->findChild<QPushButton *>(QStringLiteral("btnAccquireP4"))->isEnabled());
    QTest::mouseClick(sw, Qt::LeftButton);
    QVERIFY(spin(QStringLiteral("dspnX_4"))->isEnabled());
    QVERIFY(m_step->findChild<QPushButton *>(QStringLiteral("btnMoveToP4"))->isEnabled());
    QCOMPARE(m_pallet->r(QStringLiteral("calibrate.use_p4"))->getBool(), true);
}

void TestCalibrateSetWizard::acquireReadsPosture()
{
    m_fx.transport()->setReply(QStringLiteral("sys.posture"), 0,
                               "{\"trans\":[0.5,-0.25,0.125],\"rot\":[3.141592653589793,0.0,0.5],"
                               "\"near\":[0.1,0.2,0.3,0.4,0.5,0.6]}");
    open();
    QTest::mouseClick(m_step->findChild<QPushButton *>(QStringLiteral("btnAccquireP3")), Qt::LeftButton);
    orba::ModuleObject *p3 = m_pallet->r(QStringLiteral("calibrate.p3"));
    QCOMPARE(p3->r(QStringLiteral("trans.#0"))->getDouble(), 0.5);
    QCOMPARE(p3->r(QStringLiteral("near.#5"))->getDouble(), 0.6);
    QCOMPARE(spin(QStringLiteral("dspnX_3"))->value(), 500.0);
    QCOMPARE(spin(QStringLiteral("dspnA_3"))->value(), 180.0);
    QCOMPARE(m_fx.requestsOf(QStringLiteral("sys.posture")).size(), 1);
}

void TestCalibrateSetWizard::moveOpensDialogOnEditedPoint()
{
    open();
    QDoubleSpinBox *x = spin(QStringLiteral("dspnX_2"));
    x->setFocus();
    x->selectAll();
    QTest::keyClicks(x, QStringLiteral("321"));
    // The edit is not finished: the move button writes the box back first.
    QTest::mouseClick(m_step->findChild<QPushButton *>(QStringLiteral("btnMoveToP2")), Qt::LeftButton);
    QCOMPARE(m_pallet->r(QStringLiteral("calibrate.p2.trans.#0"))->getDouble(), 0.321);
    auto *dialog = qobject_cast<MoveToDialog *>(kx::uniqueObject(QStringLiteral("tpallet.move.dialog")));
    QVERIFY(dialog);
    QVERIFY(!dialog->isJoint());
    delete dialog;
}

void TestCalibrateSetWizard::entrySwitchesToolsetWithReferenceReset()
{
    m_pallet->set(nullptr, QStringLiteral("calibrate.toolset.ref.trans.#0"), 0.7);
    m_pallet->set(nullptr, QStringLiteral("calibrate.toolset.end.trans.#2"), 0.2);
    open();
    tcore::ManagerHelper::instance()->clearLogHistory();
    m_step->init(false);
    const auto sent = m_fx.requestsOf(QStringLiteral("sys.toolset"));
    QCOMPARE(sent.size(), 1);
    QCOMPARE(sent.at(0).params->r(QStringLiteral("ref.trans.#0"))->getDouble(), 0.0);
    QCOMPARE(sent.at(0).params->r(QStringLiteral("end.trans.#2"))->getDouble(), 0.2);
    QCOMPARE(m_pallet->r(QStringLiteral("calibrate.toolset.ref.trans.#0"))->getDouble(), 0.7);
    QCOMPARE(log().last().value(QStringLiteral("title")).toString(), QStringLiteral("Swithed to pallet wobj"));
    QCOMPARE(log().last().value(QStringLiteral("level")).toString(), QStringLiteral("warning"));
}

void TestCalibrateSetWizard::entrySwitchFailureIsLogged()
{
    m_fx.transport()->setReply(QStringLiteral("sys.toolset"), -1);
    open();
    tcore::ManagerHelper::instance()->clearLogHistory();
    m_step->init(false);
    QCOMPARE(log().last().value(QStringLiteral("title")).toString(), QStringLiteral("swith to pallet toolset failed"));
    QCOMPARE(log().last().value(QStringLiteral("level")).toString(), QStringLiteral("error"));
    QVERIFY(m_step->isEnabled());
}

void TestCalibrateSetWizard::nextStoresBoxesAndSaves()
{
    open();
    typePoint(4, 12, 34, 56);
    m_fx.transport()->clearRequests();
    QVERIFY(m_step->tryNext());
    QCOMPARE(m_pallet->r(QStringLiteral("calibrate.p4.trans.#1"))->getDouble(), 0.034);
    QCOMPARE(m_pallet->r(QStringLiteral("calibrate.use_p4"))->getBool(), true);
    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.set.one")).size(), 1);
    typePoint(4, 1, 2, 3);
    QVERIFY(m_step->tryConfirm());
    QCOMPARE(m_pallet->r(QStringLiteral("calibrate.p4.trans.#2"))->getDouble(), 0.003);
    QCOMPARE(m_fx.requestsOf(QStringLiteral("tray.set.one")).size(), 2);
}

void TestCalibrateSetWizard::alternativeCalibrationThroughHost()
{
    open();
    typePoint(1, 500, 100, 20);
    typePoint(2, 500, 500, 20);
    typePoint(3, 200, 100, 20);
    m_step->calibrateRef();
    QVERIFY(std::abs(m_pallet->r(QStringLiteral("calibrate.toolset.ref.rot.#2"))->getDouble() - kPi / 2) < 1e-12);
    QCOMPARE(m_pallet->r(QStringLiteral("calibrate.toolset.ref.trans.#1"))->getDouble(), 0.1);
    // It writes no spans.
    QCOMPARE(m_pallet->r(QStringLiteral("calibrate.x_span"))->getDouble(), 0.0);
}

QTEST_MAIN(TestCalibrateSetWizard)
#include "tst_calibratesetwizard.moc"
