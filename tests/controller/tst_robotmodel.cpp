#include "frames.h"
#include "robotmodel.h"

#include <orba/modulemanager.h>

#include <QtTest>

#include <random>

using namespace rc;

class TestRobotModel : public QObject
{
    Q_OBJECT

private slots:
    void init() { orba::ModuleManager::resetRoot(); }

    void homePointsDown()
    {
        const RobotModel m = RobotModel::defaultArm();
        const Eigen::Isometry3d f = m.forward(m.home);
        QVERIFY(f.linear().col(2).isApprox(Eigen::Vector3d(0, 0, -1), 1e-12));
        QVERIFY(std::abs(f.translation().x() + 0.688) < 1e-9);
        QVERIFY(m.reach() > 1.25 && m.reach() < 1.45);
    }

    void inverseRoundTrip_data()
    {
        QTest::addColumn<int>("seed");
        QTest::newRow("seed 1") << 1;
        QTest::newRow("seed 2") << 2;
        QTest::newRow("seed 3") << 3;
    }
    void inverseRoundTrip()
    {
        QFETCH(int, seed);
        const RobotModel m = RobotModel::defaultArm();
        std::mt19937 gen(seed);
        std::uniform_real_distribution<double> u(-M_PI, M_PI);
        int checked = 0;
        for (int k = 0; k < 1000; ++k) {
            Joints q;
            for (int i = 0; i < 6; ++i)
                q[i] = u(gen);
            if (std::abs(std::sin(q[4])) < 1e-3 || std::abs(std::sin(q[2])) < 1e-3)
                continue; // singular: the joint values are not unique there
            const Eigen::Isometry3d f = m.forward(q);
            std::array<Joints, 8> sols;
            const int n = m.inverse(f, &sols, q[5]);
            QVERIFY2(n >= 1 && n <= 8, qPrintable(QString::number(n)));
            bool foundOriginal = false;
            for (int i = 0; i < n; ++i) {
                const Eigen::Isometry3d g = m.forward(sols[i]);
                QVERIFY((g.translation() - f.translation()).norm() < 1e-9);
                QVERIFY(rotationDistance(g.linear(), f.linear()) < 1e-9);
                for (int j = 0; j < 6; ++j)
                    QVERIFY(sols[i][j] > -M_PI - 1e-12 && sols[i][j] <= M_PI + 1e-12);
                const Joints back = unwrapNear(m, sols[i], q, false);
                if ((back - q).norm() < 1e-7)
                    foundOriginal = true;
            }
            QVERIFY(foundOriginal);
            ++checked;
        }
        QVERIFY(checked > 950);
    }

    void regularPoseHasEightSolutions()
    {
        const RobotModel m = RobotModel::defaultArm();
        Joints q;
        q << 0.3, -1.2, 1.4, -1.6, -1.4, 0.5;
        std::array<Joints, 8> sols;
        QCOMPARE(m.inverse(m.forward(q), &sols, 0.0), 8);
    }

    void unreachablePoseHasNone()
    {
        const RobotModel m = RobotModel::defaultArm();
        std::array<Joints, 8> sols;
        QCOMPARE(m.inverse(frameFromPose({2.0, 0.5, 0.3}, {M_PI, 0, 0}), &sols, 0.0), 0);
        // Inside the cylinder around the base axis the shoulder offset cannot be placed.
        QCOMPARE(m.inverse(frameFromPose({0.0, 0.0, 0.6}, {0, 0, 0}), &sols, 0.0), 0);
    }

    void limits_data()
    {
        QTest::addColumn<int>("joint");
        QTest::addColumn<double>("value");
        QTest::addColumn<bool>("inside");
        QTest::newRow("elbow at +pi") << 2 << M_PI << true;
        QTest::newRow("elbow beyond +pi") << 2 << M_PI + 0.01 << false;
        QTest::newRow("base at -2pi") << 0 << -2 * M_PI << true;
        QTest::newRow("wrist 3 beyond 2pi") << 5 << 2 * M_PI + 0.01 << false;
        QTest::newRow("nan") << 1 << std::nan("") << false;
    }
    void limits()
    {
        QFETCH(int, joint);
        QFETCH(double, value);
        QFETCH(bool, inside);
        const RobotModel m = RobotModel::defaultArm();
        Joints q = m.home;
        q[joint] = value;
        QCOMPARE(m.withinLimits(q), inside);
        QCOMPARE(m.firstJointOutside(q), inside ? -1 : joint);
    }

    void unwrapKeepsInLimits()
    {
        const RobotModel m = RobotModel::defaultArm();
        Joints sol = Joints::Zero();
        sol[5] = -0.5;
        Joints ref = Joints::Zero();
        ref[5] = 5.5; // nearest equivalent -0.5 + 2pi is within limits
        QVERIFY(std::abs(unwrapNear(m, sol, ref, true)[5] - (-0.5 + 2 * M_PI)) < 1e-12);
        ref[5] = 12.0; // -0.5 + 4pi is outside: the nearest inside is -0.5 + 2pi
        QVERIFY(std::abs(unwrapNear(m, sol, ref, true)[5] - (-0.5 + 2 * M_PI)) < 1e-12);
        QVERIFY(std::abs(unwrapNear(m, sol, ref, false)[5] - (-0.5 + 4 * M_PI)) < 1e-12);
    }

    void eulerConvention_data()
    {
        QTest::addColumn<double>("a");
        QTest::addColumn<double>("b");
        QTest::addColumn<double>("c");
        QTest::newRow("general") << 0.3 << -0.4 << 1.2;
        QTest::newRow("tool down") << M_PI << 0.0 << 0.5;
        QTest::newRow("gimbal +90") << 0.7 << M_PI / 2 << 0.0;
        QTest::newRow("gimbal -90") << -0.2 << -M_PI / 2 << 0.4;
    }
    void eulerConvention()
    {
        QFETCH(double, a);
        QFETCH(double, b);
        QFETCH(double, c);
        const Eigen::Matrix3d r = rotationFromEuler({a, b, c});
        const Eigen::Matrix3d expected = (Eigen::AngleAxisd(c, Eigen::Vector3d::UnitZ())
                                          * Eigen::AngleAxisd(b, Eigen::Vector3d::UnitY())
                                          * Eigen::AngleAxisd(a, Eigen::Vector3d::UnitX()))
                                             .toRotationMatrix();
        QVERIFY(r.isApprox(expected, 1e-12));
        const Eigen::Vector3d back = eulerFromRotation(r);
        QVERIFY(rotationDistance(rotationFromEuler(back), r) < 1e-9);
        QVERIFY(back[1] >= -M_PI / 2 - 1e-12 && back[1] <= M_PI / 2 + 1e-12);
    }

    void toolsetFrames()
    {
        Toolset t;
        t.end = frameFromPose({0, 0, 0.2}, {0, 0, 0});
        t.ref = frameFromPose({0.5, -0.2, 0.1}, {0, 0, M_PI / 2});
        const RobotModel m = RobotModel::defaultArm();
        const Eigen::Isometry3d flange = m.forward(m.home);
        const Eigen::Isometry3d tcp = t.tcpFromFlange(flange);
        QVERIFY(t.flangeFromTcp(tcp).isApprox(flange, 1e-12));
        // The tool points down from the flange: the TCP is 0.2 m lower in the base frame.
        const Eigen::Vector3d tcpBase = (t.ref * tcp).translation();
        QVERIFY(std::abs(tcpBase.z() - (flange.translation().z() - 0.2)) < 1e-12);
    }
};

QTEST_GUILESS_MAIN(TestRobotModel)
#include "tst_robotmodel.moc"
