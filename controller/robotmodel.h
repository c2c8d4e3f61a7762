#pragma once

#include <Eigen/Geometry>

#include <QString>

#include <array>

namespace rc {

using Joints = Eigen::Matrix<double, 6, 1>;

// One row of a standard Denavit-Hartenberg table: Rz(theta) Tz(d) Tx(a) Rx(alpha).
struct DhRow
{
    double a = 0.0;
    double d = 0.0;
    double alpha = 0.0;
    double offset = 0.0; // added to the joint value to get theta
};

/*
 * A six-axis arm whose wrist axes 5 and 6 and the three parallel axes 2..4 allow the closed-form
 * solution below (the usual collaborative-arm geometry: alpha = 90, 0, 0, 90, -90, 0 degrees,
 * a1 = a4 = a5 = a6 = 0). A value type: copy it, change the numbers, hand it to a Controller.
 */
struct RobotModel
{
    QString name;
    std::array<DhRow, 6> dh{};
    Joints lower = Joints::Constant(-2.0 * M_PI);
    Joints upper = Joints::Constant(2.0 * M_PI);
    Joints maxSpeed = Joints::Constant(M_PI); // rad/s
    Joints home = Joints::Zero();

    // 1.3 m reach collaborative arm (published DH numbers of that class of robot).
    static RobotModel defaultArm();

    double reach() const;
    bool withinLimits(const Joints &q, double tolerance = 1e-9) const;
    // Index of the first joint outside its limits, or -1.
    int firstJointOutside(const Joints &q, double tolerance = 1e-9) const;

    // Flange in the base frame.
    Eigen::Isometry3d forward(const Joints &q) const;
    // Every closed-form solution for the flange pose (up to 8), joint values in (-pi, pi], before
    // limits are applied. q6Hint is used for joint 6 where the wrist is singular.
    int inverse(const Eigen::Isometry3d &flange, std::array<Joints, 8> *solutions, double q6Hint = 0.0) const;

    // Wrist centre (origin of frame 5) for a flange pose.
    Eigen::Vector3d wristCentre(const Eigen::Isometry3d &flange) const;

    // Singularity measures: each goes to zero at its singularity.
    double wristMeasure(const Joints &q) const;                      // |sin q5|
    double elbowMeasure(const Joints &q) const;                      // |sin q3|
    double shoulderMeasure(const Eigen::Isometry3d &flange) const;   // metres from the singular cylinder
};

// Chooses, for every joint, the value equivalent modulo 2*pi that is nearest to `reference`;
// with keepInLimits the nearest one within the limits (if any) instead.
Joints unwrapNear(const RobotModel &model, const Joints &solution, const Joints &reference, bool keepInLimits);

} // namespace rc
