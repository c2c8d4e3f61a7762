#include "armsolver.h"

#include <orba/modulemanager.h>

#include <QtTest>

using namespace rc;

namespace {

Pose poseAt(const ArmSolver &s, const Joints &q)
{
    Pose p = Pose::fromFrame(s.tcp(q));
    p.near = q;
    p.hasNear = true;
    return p;
}

Pose pose(double x, double y, double z, double a, double b, double c, const Joints &near)
{
    Pose p;
    p.trans = {x, y, z};
    p.rot = {a, b, c};
    p.near = near;
    p.hasNear = true;
    return p;
}

} // namespace

class TestArmSolver : public QObject
{
    Q_OBJECT

private slots:
    void init() { orba::ModuleManager::resetRoot(); }

    void lineCheck_data()
    {
        QTest::addColumn<int>("kind");
        QTest::addColumn<QList<int>>("codes");
        QTest::addColumn<QString>("reason");
        QTest::newRow("100 mm approach above the pallet") << 0 << QList<int>{SolveResult::Ok} << QString();
        QTest::newRow("out of reach") << 1 << QList<int>{SolveResult::Unreachable, SolveResult::ElbowSingularity}
                                      << QString("sample");
        QTest::newRow("through the base axis") << 2 << QList<int>{SolveResult::ShoulderSingularity}
                                               << QString("shoulder");
        QTest::newRow("across the joint 6 limit") << 3 << QList<int>{SolveResult::JointLimit} << QString("joint 6");
        QTest::newRow("through the wrist singularity") << 4 << QList<int>{SolveResult::WristSingularity}
                                                       << QString("wrist");
        QTest::newRow("turning within the limits") << 5 << QList<int>{SolveResult::Ok} << QString();
    }
    void lineCheck()
    {
        QFETCH(int, kind);
        QFETCH(QList<int>, codes);
        QFETCH(QString, reason);
        const RobotModel m = RobotModel::defaultArm();
        const ArmSolver s(m, Toolset());
        Pose p0, p1;
        switch (kind) {
        case 0:
            p0 = pose(-0.688, -0.164, 0.40, M_PI, 0, M_PI / 2, m.home);
            p1 = pose(-0.688, -0.164, 0.50, M_PI, 0, M_PI / 2, m.home);
            break;
        case 1:
            p0 = pose(-0.688, -0.164, 0.40, M_PI, 0, 0, m.home);
            p1 = pose(-1.688, -0.164, 0.40, M_PI, 0, 0, m.home);
            break;
        case 2:
            p0 = pose(-0.5, -0.164, 0.40, M_PI, 0, 0, m.home);
            p1 = pose(0.5, -0.164, 0.40, M_PI, 0, 0, m.home);
            break;
        case 3:
        case 5: {
            Joints q = m.home;
            q[5] = 2 * M_PI - 0.1;
            p0 = poseAt(s, q);
            q[5] += kind == 3 ? 0.3 : -0.3;
            p1 = poseAt(s, q);
            break;
        }
        case 4: {
            Joints q = m.home;
            q[4] = -0.3;
            p0 = poseAt(s, q);
            q[4] = 0.3;
            p1 = poseAt(s, q);
            break;
        }
        }
        const SolveResult r = s.checkLine(p0, p1);
        QVERIFY2(codes.contains(r.code), qPrintable(QString("%1: %2").arg(r.code).arg(r.message)));
        if (!reason.isEmpty())
            QVERIFY2(r.message.contains(reason), qPrintable(r.message));
        if (r.ok())
            QVERIFY((s.tcp(r.q).translation() - p1.trans).norm() < 1e-9);
        else
            QVERIFY(r.sample >= 0);
    }

    void sampling_data()
    {
        QTest::addColumn<double>("dist");
        QTest::addColumn<double>("angle");
        QTest::addColumn<int>("steps");
        QTest::newRow("100 mm") << 0.1 << 0.0 << 50;
        QTest::newRow("90 degrees") << 0.0 << M_PI / 2 << 90;
        QTest::newRow("both, angle dominates") << 0.01 << 0.5 << 29;
        QTest::newRow("same pose") << 0.0 << 0.0 << 1;
    }
    void sampling()
    {
        QFETCH(double, dist);
        QFETCH(double, angle);
        QFETCH(int, steps);
        const Eigen::Isometry3d a = frameFromPose({0.1, 0.2, 0.3}, {0, 0, 0});
        Eigen::Isometry3d b = a;
        b.translation().x() += dist;
        b.linear() = Eigen::AngleAxisd(angle, Eigen::Vector3d::UnitY()).toRotationMatrix();
        QCOMPARE(ArmSolver::stepsBetween(a, b), steps);
        const Eigen::Isometry3d mid = ArmSolver::interpolate(a, b, 0.5);
        QVERIFY(std::abs(mid.translation().x() - (0.1 + dist / 2)) < 1e-12);
        QVERIFY(std::abs(rotationDistance(mid.linear(), a.linear()) - angle / 2) < 1e-9);
    }

    void nearestPicksTheTaughtConfiguration()
    {
        const RobotModel m = RobotModel::defaultArm();
        const ArmSolver s(m, Toolset());
        Joints q;
        q << 0.4, -1.1, 1.3, -1.8, -1.5, 0.2;
        const SolveResult r = s.solveNearest(s.tcp(q), q);
        QVERIFY(r.ok());
        QVERIFY((r.q - q).norm() < 1e-8);
        // The elbow-down branch is chosen when it is the hint.
        std::array<Joints, 8> sols;
        const int n = m.inverse(m.forward(q), &sols, q[5]);
        for (int i = 0; i < n; ++i) {
            if (!m.withinLimits(sols[i]))
                continue;
            const SolveResult other = s.solveNearest(s.tcp(q), sols[i]);
            QVERIFY(other.ok());
            QVERIFY((other.q - sols[i]).norm() < 1e-8);
        }
    }
};

QTEST_GUILESS_MAIN(TestArmSolver)
#include "tst_armsolver.moc"
