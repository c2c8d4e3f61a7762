#include "robotmodel.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace rc {

namespace {

Eigen::Isometry3d dhTransform(const DhRow &row, double q)
{
    const double theta = q + row.offset;
    const double ct = std::cos(theta), st = std::sin(theta);
    const double ca = std::cos(row.alpha), sa = std::sin(row.alpha);
    Eigen::Matrix4d m;
    m << ct, -st * ca, st * sa, row.a * ct,
         st, ct * ca, -ct * sa, row.a * st,
         0.0, sa, ca, row.d,
         0.0, 0.0, 0.0, 1.0;
    Eigen::Isometry3d t;
    t.matrix() = m;
    return t;
}

double wrapPi(double a)
{
    a = std::remainder(a, 2.0 * M_PI);
    if (a <= -M_PI)
        a += 2.0 * M_PI;
    return a;
}

// Clamps values that left [-1, 1] by rounding only; a real overshoot stays and fails acos().
bool clampUnit(double *v)
{
    constexpr double eps = 1e-10;
    if (*v > 1.0 + eps || *v < -1.0 - eps)
        return false;
    *v = std::clamp(*v, -1.0, 1.0);
    return true;
}

} // namespace

RobotModel RobotModel::defaultArm()
{
    RobotModel m;
    m.name = QStringLiteral("cobot-1300");
    m.dh[0] = {0.0, 0.1273, M_PI / 2, 0.0};
    m.dh[1] = {-0.612, 0.0, 0.0, 0.0};
    m.dh[2] = {-0.5723, 0.0, 0.0, 0.0};
    m.dh[3] = {0.0, 0.163941, M_PI / 2, 0.0};
    m.dh[4] = {0.0, 0.1157, -M_PI / 2, 0.0};
    m.dh[5] = {0.0, 0.0922, 0.0, 0.0};
    // The elbow cannot fold through itself; the other axes turn one revolution each way.
    m.lower << -2 * M_PI, -2 * M_PI, -M_PI, -2 * M_PI, -2 * M_PI, -2 * M_PI;
    m.upper << 2 * M_PI, 2 * M_PI, M_PI, 2 * M_PI, 2 * M_PI, 2 * M_PI;
    m.maxSpeed << 2.0, 2.0, M_PI, M_PI, M_PI, M_PI;
    m.home << 0.0, -M_PI / 2, M_PI / 2, -M_PI / 2, -M_PI / 2, 0.0;
    return m;
}

double RobotModel::reach() const
{
    return std::abs(dh[1].a) + std::abs(dh[2].a) + std::abs(dh[4].d) + std::abs(dh[5].d);
}

bool RobotModel::withinLimits(const Joints &q, double tolerance) const
{
    return firstJointOutside(q, tolerance) < 0;
}

int RobotModel::firstJointOutside(const Joints &q, double tolerance) const
{
    for (int i = 0; i < 6; ++i) {
        if (!std::isfinite(q[i]) || q[i] < lower[i] - tolerance || q[i] > upper[i] + tolerance)
            return i;
    }
    return -1;
}

Eigen::Isometry3d RobotModel::forward(const Joints &q) const
{
    Eigen::Isometry3d t = Eigen::Isometry3d::Identity();
    for (int i = 0; i < 6; ++i)
        t = t * dhTransform(dh[i], q[i]);
    return t;
}

Eigen::Vector3d RobotModel::wristCentre(const Eigen::Isometry3d &flange) const
{
    return flange * Eigen::Vector3d(0.0, 0.0, -dh[5].d);
}

/*
 * Frame 1 sees axes 2..4 as parallel z axes, so with q1 fixed the orientation splits into
 * R16 = Rz(q2+q3+q4) * Ry(-q5) * Rz(q6) and the position of frame 4 in frame 1 is a planar
 * two-link problem.
 */
int RobotModel::inverse(const Eigen::Isometry3d &flange, std::array<Joints, 8> *solutions, double q6Hint) const
{
    const double a2 = dh[1].a, a3 = dh[2].a, d4 = dh[3].d;
    int count = 0;
    const Eigen::Vector3d p05 = wristCentre(flange);
    const double r = std::hypot(p05.x(), p05.y());
    if (r < 1e-12)
        return 0;
    double cphi = d4 / r;
    if (!clampUnit(&cphi))
        return 0;
    const double psi = std::atan2(p05.y(), p05.x());
    const double phi = std::acos(cphi);
    const double q1s[2] = {psi + phi + M_PI / 2, psi - phi + M_PI / 2};

    for (double q1 : q1s) {
        const Eigen::Isometry3d t01 = dhTransform(dh[0], q1 - dh[0].offset);
        const Eigen::Isometry3d t16 = t01.inverse() * flange;
        const Eigen::Matrix3d r16 = t16.linear();
        double c5 = r16(2, 2);
        if (!clampUnit(&c5))
            continue;
        const double q5a = std::acos(c5);
        for (double q5 : {q5a, -q5a}) {
            const double s5 = std::sin(q5);
            double q6;
            if (std::abs(s5) < 1e-9)
                q6 = q6Hint;
            else
                q6 = std::atan2(-r16(2, 1) / s5, r16(2, 0) / s5);
            const Eigen::Matrix3d rz234 = r16 * Eigen::AngleAxisd(-q6, Eigen::Vector3d::UnitZ()).toRotationMatrix()
                                          * Eigen::AngleAxisd(q5, Eigen::Vector3d::UnitY()).toRotationMatrix();
            const double q234 = std::atan2(rz234(1, 0), rz234(0, 0));

            const Eigen::Isometry3d t45 = dhTransform(dh[4], q5 - dh[4].offset);
            const Eigen::Isometry3d t56 = dhTransform(dh[5], q6 - dh[5].offset);
            const Eigen::Isometry3d t14 = t16 * (t45 * t56).inverse();
            // Frame 4's origin in frame 1: (a2 c2 + a3 c23, a2 s2 + a3 s23, d4).
            const double x = t14.translation().x();
            const double y = t14.translation().y();
            double c3 = (x * x + y * y - a2 * a2 - a3 * a3) / (2.0 * a2 * a3);
            if (!clampUnit(&c3))
                continue;
            const double q3a = std::acos(c3);
            for (double q3 : {q3a, -q3a}) {
                const double s3 = std::sin(q3);
                const double q2 = std::atan2(y, x) - std::atan2(a3 * s3, a2 + a3 * c3);
                const double q4 = q234 - q2 - q3;
                Joints q;
                q << q1, q2, q3, q4, q5, q6;
                for (int i = 0; i < 6; ++i)
                    q[i] = wrapPi(q[i] - dh[i].offset);
                (*solutions)[count++] = q;
                if (std::abs(s3) < 1e-12)
                    break; // both elbow branches coincide
            }
        }
        if (std::abs(phi) < 1e-12)
            break; // both shoulder branches coincide
    }
    return count;
}

double RobotModel::wristMeasure(const Joints &q) const
{
    return std::abs(std::sin(q[4] + dh[4].offset));
}

double RobotModel::elbowMeasure(const Joints &q) const
{
    return std::abs(std::sin(q[2] + dh[2].offset));
}

double RobotModel::shoulderMeasure(const Eigen::Isometry3d &flange) const
{
    const Eigen::Vector3d p05 = wristCentre(flange);
    return std::abs(std::hypot(p05.x(), p05.y()) - std::abs(dh[3].d));
}

Joints unwrapNear(const RobotModel &model, const Joints &solution, const Joints &reference, bool keepInLimits)
{
    Joints out = solution;
    for (int i = 0; i < 6; ++i) {
        const double base = solution[i];
        const double k = std::round((reference[i] - base) / (2.0 * M_PI));
        double best = base + k * 2.0 * M_PI;
        if (keepInLimits && (best < model.lower[i] || best > model.upper[i])) {
            double bestDist = std::numeric_limits<double>::infinity();
            for (int n = -3; n <= 3; ++n) {
                const double v = base + (k + n) * 2.0 * M_PI;
                if (v < model.lower[i] - 1e-12 || v > model.upper[i] + 1e-12)
                    continue;
                const double dist = std::abs(v - reference[i]);
                if (dist < bestDist) {
                    bestDist = dist;
                    best = v;
                }
            }
        }
        out[i] = best;
    }
    return out;
}

} // namespace rc
