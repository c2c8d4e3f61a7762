#include "armsolver.h"

#include <cmath>
#include <limits>

namespace rc {

namespace {

SolveResult failure(int code, const QString &id, const QString &message)
{
    SolveResult r;
    r.code = code;
    r.id = id;
    r.message = message;
    return r;
}

} // namespace

SolveResult ArmSolver::solveNearest(const Eigen::Isometry3d &tcp, const Joints &reference) const
{
    std::array<Joints, 8> sols;
    const Eigen::Isometry3d flange = m_toolset.flangeFromTcp(tcp);
    const int n = m_model.inverse(flange, &sols, reference[5]);
    if (n == 0)
        return failure(SolveResult::Unreachable, QStringLiteral("unreachable"), QStringLiteral("target out of reach"));
    double best = std::numeric_limits<double>::infinity();
    SolveResult r;
    int outside = -1;
    for (int i = 0; i < n; ++i) {
        const Joints q = unwrapNear(m_model, sols[i], reference, true);
        const int bad = m_model.firstJointOutside(q);
        if (bad >= 0) {
            outside = bad;
            continue;
        }
        const double d = (q - reference).squaredNorm();
        if (d < best) {
            best = d;
            r.q = q;
        }
    }
    if (!std::isfinite(best))
        return failure(SolveResult::JointLimit, QStringLiteral("limit"),
                       QStringLiteral("joint %1 out of its limits").arg(outside + 1));
    return r;
}

SolveResult ArmSolver::solveContinuous(const Eigen::Isometry3d &tcp, const Joints &previous, bool checkSingular) const
{
    std::array<Joints, 8> sols;
    const Eigen::Isometry3d flange = m_toolset.flangeFromTcp(tcp);
    const int n = m_model.inverse(flange, &sols, previous[5]);
    if (n == 0)
        return failure(SolveResult::Unreachable, QStringLiteral("unreachable"), QStringLiteral("position out of reach"));
    double best = std::numeric_limits<double>::infinity();
    Joints q = previous;
    for (int i = 0; i < n; ++i) {
        const Joints c = unwrapNear(m_model, sols[i], previous, false);
        const double d = (c - previous).cwiseAbs().maxCoeff();
        if (d < best) {
            best = d;
            q = c;
        }
    }
    if (checkSingular) {
        SolveResult s = singularity(q, flange);
        if (!s.ok())
            return s;
    }
    if (best > jumpLimit) {
        SolveResult r = failure(SolveResult::ConfigurationJump, QStringLiteral("jump"),
                                QStringLiteral("configuration jump of %1 deg").arg(best * 180.0 / M_PI, 0, 'f', 1));
        r.q = q;
        return r;
    }
    const int bad = m_model.firstJointOutside(q);
    if (bad >= 0) {
        SolveResult r = failure(SolveResult::JointLimit, QStringLiteral("limit"),
                                QStringLiteral("joint %1 out of its limits").arg(bad + 1));
        r.q = q;
        return r;
    }
    SolveResult r;
    r.q = q;
    return r;
}

SolveResult ArmSolver::singularity(const Joints &q, const Eigen::Isometry3d &flange) const
{
    if (m_model.wristMeasure(q) < wristLimit)
        return failure(SolveResult::WristSingularity, QStringLiteral("singular"),
                       QStringLiteral("wrist singularity (joint 5 near zero)"));
    if (m_model.elbowMeasure(q) < elbowLimit)
        return failure(SolveResult::ElbowSingularity, QStringLiteral("singular"),
                       QStringLiteral("elbow singularity (arm stretched)"));
    if (m_model.shoulderMeasure(flange) < shoulderLimit)
        return failure(SolveResult::ShoulderSingularity, QStringLiteral("singular"),
                       QStringLiteral("shoulder singularity (wrist centre near the base axis)"));
    return SolveResult();
}

int ArmSolver::stepsBetween(const Eigen::Isometry3d &a, const Eigen::Isometry3d &b)
{
    const double dist = (b.translation() - a.translation()).norm();
    const double angle = rotationDistance(a.linear(), b.linear());
    const double n = std::max(std::ceil(dist / sampleStep), std::ceil(angle / sampleAngle));
    if (!std::isfinite(n))
        return 1;
    return std::max(1, int(std::min(n, 1e7)));
}

Eigen::Isometry3d ArmSolver::interpolate(const Eigen::Isometry3d &a, const Eigen::Isometry3d &b, double s)
{
    Eigen::Isometry3d f = Eigen::Isometry3d::Identity();
    f.translation() = a.translation() + s * (b.translation() - a.translation());
    f.linear() = Eigen::Quaterniond(a.linear()).slerp(s, Eigen::Quaterniond(b.linear())).toRotationMatrix();
    return f;
}

SolveResult ArmSolver::checkLine(const Pose &p0, const Pose &p1) const
{
    const Eigen::Isometry3d a = p0.frame();
    const Eigen::Isometry3d b = p1.frame();
    SolveResult start = solveNearest(a, p0.near);
    if (!start.ok()) {
        start.sample = 0;
        start.message = QStringLiteral("sample 0: %1").arg(start.message);
        return start;
    }
    SolveResult s = singularity(start.q, m_toolset.flangeFromTcp(a));
    if (!s.ok()) {
        s.sample = 0;
        s.message = QStringLiteral("sample 0: %1").arg(s.message);
        return s;
    }
    const int n = stepsBetween(a, b);
    Joints q = start.q;
    for (int i = 1; i <= n; ++i) {
        SolveResult r = solveContinuous(interpolate(a, b, double(i) / n), q, true);
        if (!r.ok()) {
            r.sample = i;
            r.message = QStringLiteral("sample %1 of %2: %3").arg(i).arg(n).arg(r.message);
            return r;
        }
        q = r.q;
    }
    SolveResult ok;
    ok.q = q;
    ok.sample = n;
    return ok;
}

} // namespace rc
