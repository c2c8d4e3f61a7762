#include "frames.h"

#include <cmath>

namespace rc {

Eigen::Matrix3d rotationFromEuler(const Eigen::Vector3d &abc)
{
    return (Eigen::AngleAxisd(abc[2], Eigen::Vector3d::UnitZ()) * Eigen::AngleAxisd(abc[1], Eigen::Vector3d::UnitY())
            * Eigen::AngleAxisd(abc[0], Eigen::Vector3d::UnitX()))
        .toRotationMatrix();
}

Eigen::Vector3d eulerFromRotation(const Eigen::Matrix3d &r)
{
    const double cb = std::hypot(r(0, 0), r(1, 0));
    const double b = std::atan2(-r(2, 0), cb);
    double a, c;
    if (cb > 1e-12) {
        a = std::atan2(r(2, 1), r(2, 2));
        c = std::atan2(r(1, 0), r(0, 0));
    } else {
        // Gimbal lock: only A - C (or A + C) is defined; with C = 0, R = Ry(B) Rx(A).
        c = 0.0;
        a = std::atan2(-r(1, 2), r(1, 1));
    }
    return {a, b, c};
}

Eigen::Isometry3d frameFromPose(const Eigen::Vector3d &trans, const Eigen::Vector3d &abc)
{
    Eigen::Isometry3d f = Eigen::Isometry3d::Identity();
    f.linear() = rotationFromEuler(abc);
    f.translation() = trans;
    return f;
}

Pose Pose::fromFrame(const Eigen::Isometry3d &f)
{
    Pose p;
    p.trans = f.translation();
    p.rot = eulerFromRotation(f.linear());
    return p;
}

double rotationDistance(const Eigen::Matrix3d &a, const Eigen::Matrix3d &b)
{
    return Eigen::Quaterniond(a).angularDistance(Eigen::Quaterniond(b));
}

} // namespace rc
