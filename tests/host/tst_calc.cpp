#include <kx/calc.h>
#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

#include <Eigen/Geometry>

#include <QRandomGenerator>
#include <QtTest>

#include <cmath>

using orba::ModuleObject;

Q_DECLARE_METATYPE(Eigen::Vector3d)

namespace {

void setPose(ModuleObject *pose, double x, double y, double z, double a, double b, double c)
{
    const double v[6] = {x, y, z, a, b, c};
    for (int i = 0; i < 3; ++i) {
        pose->set(nullptr, QStringLiteral("trans.#%1").arg(i), v[i]);
        pose->set(nullptr, QStringLiteral("rot.#%1").arg(i), v[i + 3]);
    }
}

void setPoint(ModuleObject *pose, const Eigen::Vector3d &p)
{
    setPose(pose, p.x(), p.y(), p.z(), 0.0, 0.0, 0.0);
}

Eigen::Vector3d transOf(const ModuleObject *pose)
{
    const ModuleObject *t = pose->r(QStringLiteral("trans"));
    return Eigen::Vector3d(t->c(0)->getDouble(), t->c(1)->getDouble(), t->c(2)->getDouble());
}

// Reference rotation built independently of the library: Rz(c) * Ry(b) * Rx(a).
Eigen::Quaterniond quatFromAngles(double a, double b, double c)
{
    return Eigen::AngleAxisd(c, Eigen::Vector3d::UnitZ()) * Eigen::AngleAxisd(b, Eigen::Vector3d::UnitY())
        * Eigen::AngleAxisd(a, Eigen::Vector3d::UnitX());
}

Eigen::Quaterniond quatOfRot(const ModuleObject *rot)
{
    return quatFromAngles(rot->c(0)->getDouble(), rot->c(1)->getDouble(), rot->c(2)->getDouble());
}

// Angle of the rotation that takes one orientation to the other.
double angleBetween(const Eigen::Quaterniond &p, const Eigen::Quaterniond &q)
{
    const double dot = std::min(1.0, std::abs(p.normalized().dot(q.normalized())));
    return 2.0 * std::acos(dot);
}

const double kTol = 1e-9;

} // namespace

class TestCalc : public QObject
{
    Q_OBJECT

private slots:
    void init() { orba::ModuleManager::resetRoot(); }
    void cleanup() { orba::ModuleManager::resetRoot(); }

    void calibrateOXY_data();
    void calibrateOXY();
    void calibrateOXYRejectsDegeneratePoints_data();
    void calibrateOXYRejectsDegeneratePoints();
    void inverseTimesFrameIsIdentity_data();
    void inverseTimesFrameIsIdentity();
    void transformFrameComposes();
    void transformFrameRoundTripThroughInverse();
    void transformFrameAllowsAliasedResult();
    void resultKeepsNear();
    void rot2QuaternionKnownValues_data();
    void rot2QuaternionKnownValues();
    void quaternionRoundTripRandom();
    void anglesComeBackInRange();
    void gimbalLock_data();
    void gimbalLock();
    void quaternion2RotNormalises_data();
    void quaternion2RotNormalises();
};

void TestCalc::calibrateOXY_data()
{
    QTest::addColumn<Eigen::Vector3d>("origin");
    QTest::addColumn<Eigen::Vector3d>("xPoint");
    QTest::addColumn<Eigen::Vector3d>("yPoint");
    QTest::addColumn<double>("a");
    QTest::addColumn<double>("b");
    QTest::addColumn<double>("c");

    QTest::newRow("base axes") << Eigen::Vector3d(0, 0, 0) << Eigen::Vector3d(1, 0, 0) << Eigen::Vector3d(0, 1, 0)
                               << 0.0 << 0.0 << 0.0;
    QTest::newRow("y point off the y axis") << Eigen::Vector3d(0, 0, 0) << Eigen::Vector3d(2, 0, 0)
                                            << Eigen::Vector3d(1, 1, 0) << 0.0 << 0.0 << 0.0;
    QTest::newRow("turned 90 deg about z, shifted") << Eigen::Vector3d(1, 2, 3) << Eigen::Vector3d(1, 3, 3)
                                                    << Eigen::Vector3d(0, 2, 3) << 0.0 << 0.0 << M_PI / 2;
    QTest::newRow("stood up 90 deg about x") << Eigen::Vector3d(0, 0, 0) << Eigen::Vector3d(0.5, 0, 0)
                                             << Eigen::Vector3d(0, 0, 0.5) << M_PI / 2 << 0.0 << 0.0;
    QTest::newRow("tilted 90 deg about y") << Eigen::Vector3d(0.2, 0.2, 0.2) << Eigen::Vector3d(0.2, 0.2, -0.8)
                                           << Eigen::Vector3d(0.2, 1.2, 0.2) << 0.0 << M_PI / 2 << 0.0;
}

void TestCalc::calibrateOXY()
{
    QFETCH(Eigen::Vector3d, origin);
    QFETCH(Eigen::Vector3d, xPoint);
    QFETCH(Eigen::Vector3d, yPoint);
    QFETCH(double, a);
    QFETCH(double, b);
    QFETCH(double, c);

    ModuleObject o(QStringLiteral("o_point")), x(QStringLiteral("x_point")), y(QStringLiteral("y_point"));
    ModuleObject result(QStringLiteral("ref"));
    setPoint(&o, origin);
    setPoint(&x, xPoint);
    setPoint(&y, yPoint);

    QVERIFY(kx::calc::calibrateOXY(&o, &x, &y, &result));
    QVERIFY((transOf(&result) - origin).norm() < kTol);
    QVERIFY2(angleBetween(quatOfRot(result.r(QStringLiteral("rot"))), quatFromAngles(a, b, c)) < 1e-9,
             result.exportToJson().constData());

    // The frame's x axis points at xPoint.
    const Eigen::Vector3d xAxis = quatOfRot(result.r(QStringLiteral("rot"))) * Eigen::Vector3d::UnitX();
    QVERIFY((xAxis - (xPoint - origin).normalized()).norm() < kTol);
}

void TestCalc::calibrateOXYRejectsDegeneratePoints_data()
{
    QTest::addColumn<Eigen::Vector3d>("xPoint");
    QTest::addColumn<Eigen::Vector3d>("yPoint");
    QTest::newRow("x point on origin") << Eigen::Vector3d(0, 0, 0) << Eigen::Vector3d(0, 1, 0);
    QTest::newRow("y point on origin") << Eigen::Vector3d(1, 0, 0) << Eigen::Vector3d(0, 0, 0);
    QTest::newRow("collinear same side") << Eigen::Vector3d(1, 0, 0) << Eigen::Vector3d(2, 0, 0);
    QTest::newRow("collinear opposite side") << Eigen::Vector3d(1, 1, 1) << Eigen::Vector3d(-3, -3, -3);
}

void TestCalc::calibrateOXYRejectsDegeneratePoints()
{
    QFETCH(Eigen::Vector3d, xPoint);
    QFETCH(Eigen::Vector3d, yPoint);
    ModuleObject o, x, y, result;
    setPoint(&o, Eigen::Vector3d::Zero());
    setPoint(&x, xPoint);
    setPoint(&y, yPoint);
    setPose(&result, 9, 8, 7, 0.1, 0.2, 0.3);
    const QByteArray before = result.exportToJson();

    QVERIFY(!kx::calc::calibrateOXY(&o, &x, &y, &result));
    QCOMPARE(result.exportToJson(), before);
}

void TestCalc::inverseTimesFrameIsIdentity_data()
{
    QTest::addColumn<QVector<double>>("pose");
    QTest::newRow("identity") << QVector<double>{0, 0, 0, 0, 0, 0};
    QTest::newRow("translation only") << QVector<double>{0.4, -0.2, 1.1, 0, 0, 0};
    QTest::newRow("general") << QVector<double>{0.35, 0.12, -0.4, 0.3, -0.7, 2.1};
    QTest::newRow("near gimbal lock") << QVector<double>{-1.0, 2.0, 0.5, 1.0, M_PI / 2 - 1e-7, -2.5};
    QTest::newRow("c at pi") << QVector<double>{0.1, 0.1, 0.1, 0, 0, M_PI};
}

void TestCalc::inverseTimesFrameIsIdentity()
{
    QFETCH(QVector<double>, pose);
    ModuleObject frame, inverse, product;
    setPose(&frame, pose[0], pose[1], pose[2], pose[3], pose[4], pose[5]);

    kx::calc::inverseFrame(&frame, &inverse);
    kx::calc::transformFrame(&inverse, &frame, &product);
    QVERIFY(transOf(&product).norm() < kTol);
    QVERIFY(angleBetween(quatOfRot(product.r(QStringLiteral("rot"))), Eigen::Quaterniond::Identity()) < 1e-7);

    kx::calc::transformFrame(&frame, &inverse, &product);
    QVERIFY(transOf(&product).norm() < kTol);
    QVERIFY(angleBetween(quatOfRot(product.r(QStringLiteral("rot"))), Eigen::Quaterniond::Identity()) < 1e-7);
}

void TestCalc::transformFrameComposes()
{
    // Frame at (1, 0, 0) turned 90 deg about z; a pose 1 m along the frame's x lands at (1, 1, 0).
    ModuleObject frame, pose, result;
    setPose(&frame, 1, 0, 0, 0, 0, M_PI / 2);
    setPose(&pose, 1, 0, 0, 0, 0, 0);
    kx::calc::transformFrame(&frame, &pose, &result);
    QVERIFY((transOf(&result) - Eigen::Vector3d(1, 1, 0)).norm() < kTol);
    QVERIFY(angleBetween(quatOfRot(result.r(QStringLiteral("rot"))), quatFromAngles(0, 0, M_PI / 2)) < kTol);

    // A pose turned about its own x inside a frame tilted about y: rotations multiply frame first.
    setPose(&frame, 0, 0, 0.5, 0, M_PI / 2, 0);
    setPose(&pose, 0, 0, 1, M_PI / 2, 0, 0);
    kx::calc::transformFrame(&frame, &pose, &result);
    // Ry(90) takes (0, 0, 1) to (1, 0, 0).
    QVERIFY((transOf(&result) - Eigen::Vector3d(1, 0, 0.5)).norm() < kTol);
    const Eigen::Quaterniond expected = quatFromAngles(0, M_PI / 2, 0) * quatFromAngles(M_PI / 2, 0, 0);
    QVERIFY(angleBetween(quatOfRot(result.r(QStringLiteral("rot"))), expected) < 1e-9);
}

void TestCalc::transformFrameRoundTripThroughInverse()
{
    ModuleObject frame, pose, inverse, inFrame, back;
    setPose(&frame, 0.8, -0.3, 0.25, 0.2, 0.4, -1.3);
    setPose(&pose, 0.5, 0.6, 0.1, -2.0, 0.3, 0.9);
    kx::calc::inverseFrame(&frame, &inverse);
    kx::calc::transformFrame(&inverse, &pose, &inFrame);
    kx::calc::transformFrame(&frame, &inFrame, &back);
    QVERIFY((transOf(&back) - transOf(&pose)).norm() < kTol);
    QVERIFY(angleBetween(quatOfRot(back.r(QStringLiteral("rot"))), quatOfRot(pose.r(QStringLiteral("rot")))) < 1e-7);
}

void TestCalc::transformFrameAllowsAliasedResult()
{
    ModuleObject frame, pose;
    setPose(&frame, 1, 0, 0, 0, 0, M_PI / 2);
    setPose(&pose, 1, 0, 0, 0, 0, 0);
    kx::calc::transformFrame(&frame, &pose, &pose);
    QVERIFY((transOf(&pose) - Eigen::Vector3d(1, 1, 0)).norm() < kTol);
}

void TestCalc::resultKeepsNear()
{
    ModuleObject frame, result;
    setPose(&frame, 0.1, 0.2, 0.3, 0.1, 0.2, 0.3);
    for (int i = 0; i < 6; ++i)
        result.set(nullptr, QStringLiteral("near.#%1").arg(i), 0.5 * i);
    kx::calc::inverseFrame(&frame, &result);
    QCOMPARE(result.r(QStringLiteral("near"))->size(), 6);
    QCOMPARE(result.r(QStringLiteral("near.#4"))->getDouble(), 2.0);
    QCOMPARE(result.r(QStringLiteral("rot"))->size(), 3);
    QCOMPARE(result.r(QStringLiteral("trans"))->size(), 3);
}

void TestCalc::rot2QuaternionKnownValues_data()
{
    QTest::addColumn<QVector<double>>("angles");
    QTest::addColumn<QVector<double>>("quat");
    const double h = std::sqrt(0.5);
    QTest::newRow("zero") << QVector<double>{0, 0, 0} << QVector<double>{1, 0, 0, 0};
    QTest::newRow("90 deg about z") << QVector<double>{0, 0, M_PI / 2} << QVector<double>{h, 0, 0, h};
    QTest::newRow("90 deg about y") << QVector<double>{0, M_PI / 2, 0} << QVector<double>{h, 0, h, 0};
    QTest::newRow("90 deg about x") << QVector<double>{M_PI / 2, 0, 0} << QVector<double>{h, h, 0, 0};
    // Half a turn the other way round is the same rotation; w stays non-negative.
    QTest::newRow("-180 deg about z") << QVector<double>{0, 0, -M_PI} << QVector<double>{0, 0, 0, 1};
}

void TestCalc::rot2QuaternionKnownValues()
{
    QFETCH(QVector<double>, angles);
    QFETCH(QVector<double>, quat);
    ModuleObject rot, q;
    for (int i = 0; i < 3; ++i)
        rot.set(nullptr, QStringLiteral("#%1").arg(i), angles[i]);
    kx::calc::rot2Quaternion(&rot, &q);
    QCOMPARE(q.size(), 4);
    for (int i = 0; i < 4; ++i)
        QVERIFY2(std::abs(std::abs(q.c(i)->getDouble()) - std::abs(quat[i])) < 1e-12, q.exportToJson().constData());
    QVERIFY(q.c(0)->getDouble() >= 0.0);
    const Eigen::Quaterniond got(q.c(0)->getDouble(), q.c(1)->getDouble(), q.c(2)->getDouble(), q.c(3)->getDouble());
    QVERIFY(angleBetween(got, Eigen::Quaterniond(quat[0], quat[1], quat[2], quat[3])) < 1e-9);
}

void TestCalc::quaternionRoundTripRandom()
{
    QRandomGenerator rng(20261121);
    for (int n = 0; n < 500; ++n) {
        const double a = (rng.generateDouble() * 2 - 1) * M_PI;
        const double b = (rng.generateDouble() * 2 - 1) * M_PI / 2;
        const double c = (rng.generateDouble() * 2 - 1) * M_PI;
        ModuleObject rot, q, back, q2;
        rot.set(nullptr, QStringLiteral("#0"), a);
        rot.set(nullptr, QStringLiteral("#1"), b);
        rot.set(nullptr, QStringLiteral("#2"), c);
        kx::calc::rot2Quaternion(&rot, &q);
        const Eigen::Quaterniond got(q.c(0)->getDouble(), q.c(1)->getDouble(), q.c(2)->getDouble(),
                                     q.c(3)->getDouble());
        QVERIFY(std::abs(got.norm() - 1.0) < 1e-12);
        QVERIFY(got.w() >= 0.0);
        QVERIFY(angleBetween(got, quatFromAngles(a, b, c)) < 1e-9);

        kx::calc::quaternion2Rot(&q, &back);
        QCOMPARE(back.size(), 3);
        QVERIFY(angleBetween(quatOfRot(&back), quatFromAngles(a, b, c)) < 1e-7);
        kx::calc::rot2Quaternion(&back, &q2);
        const Eigen::Quaterniond again(q2.c(0)->getDouble(), q2.c(1)->getDouble(), q2.c(2)->getDouble(),
                                       q2.c(3)->getDouble());
        QVERIFY(angleBetween(again, got) < 1e-7);
    }
}

void TestCalc::anglesComeBackInRange()
{
    QRandomGenerator rng(7);
    for (int n = 0; n < 300; ++n) {
        ModuleObject rot, q, back;
        // Angles far outside the canonical ranges still describe a rotation.
        for (int i = 0; i < 3; ++i)
            rot.set(nullptr, QStringLiteral("#%1").arg(i), (rng.generateDouble() * 2 - 1) * 4 * M_PI);
        kx::calc::rot2Quaternion(&rot, &q);
        kx::calc::quaternion2Rot(&q, &back);
        const double a = back.c(0)->getDouble(), b = back.c(1)->getDouble(), c = back.c(2)->getDouble();
        QVERIFY(a > -M_PI && a <= M_PI);
        QVERIFY(b >= -M_PI / 2 && b <= M_PI / 2);
        QVERIFY(c > -M_PI && c <= M_PI);
        QVERIFY(angleBetween(quatOfRot(&back), quatOfRot(&rot)) < 1e-7);
    }
}

void TestCalc::gimbalLock_data()
{
    QTest::addColumn<double>("a");
    QTest::addColumn<double>("b");
    QTest::addColumn<double>("c");
    QTest::newRow("B = +90 deg") << 0.3 << M_PI / 2 << 0.5;
    QTest::newRow("B = -90 deg") << -0.8 << -M_PI / 2 << 2.0;
    QTest::newRow("B = +90 deg, A only") << 1.2 << M_PI / 2 << 0.0;
}

void TestCalc::gimbalLock()
{
    QFETCH(double, a);
    QFETCH(double, b);
    QFETCH(double, c);
    ModuleObject rot, q, back;
    rot.set(nullptr, QStringLiteral("#0"), a);
    rot.set(nullptr, QStringLiteral("#1"), b);
    rot.set(nullptr, QStringLiteral("#2"), c);
    kx::calc::rot2Quaternion(&rot, &q);
    kx::calc::quaternion2Rot(&q, &back);
    QCOMPARE(back.c(0)->getDouble(), 0.0);
    QVERIFY(std::abs(back.c(1)->getDouble() - b) < 1e-7);
    QVERIFY(angleBetween(quatOfRot(&back), quatFromAngles(a, b, c)) < 1e-7);
}

void TestCalc::quaternion2RotNormalises_data()
{
    QTest::addColumn<QVector<double>>("quat");
    QTest::addColumn<QVector<double>>("angles");
    QTest::newRow("scaled identity") << QVector<double>{2, 0, 0, 0} << QVector<double>{0, 0, 0};
    QTest::newRow("zero quaternion is identity") << QVector<double>{0, 0, 0, 0} << QVector<double>{0, 0, 0};
    QTest::newRow("scaled 90 deg about z") << QVector<double>{3, 0, 0, 3} << QVector<double>{0, 0, M_PI / 2};
    QTest::newRow("negative w") << QVector<double>{-1, 0, 0, -1} << QVector<double>{0, 0, M_PI / 2};
}

void TestCalc::quaternion2RotNormalises()
{
    QFETCH(QVector<double>, quat);
    QFETCH(QVector<double>, angles);
    ModuleObject q, rot;
    for (int i = 0; i < 4; ++i)
        q.set(nullptr, QStringLiteral("#%1").arg(i), quat[i]);
    kx::calc::quaternion2Rot(&q, &rot);
    QVERIFY(angleBetween(quatOfRot(&rot), quatFromAngles(angles[0], angles[1], angles[2])) < 1e-9);
}

QTEST_GUILESS_MAIN(TestCalc)
#include "tst_calc.moc"
