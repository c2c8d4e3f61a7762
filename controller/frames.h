#pragma once

#include "robotmodel.h"

#include <Eigen/Geometry>

namespace rc {

// Rotation Rz(C) * Ry(B) * Rx(A) from the angles (A, B, C), radians.
Eigen::Matrix3d rotationFromEuler(const Eigen::Vector3d &abc);
// Angles (A, B, C) of a rotation, B in [-pi/2, pi/2]; at B = +-pi/2 C is taken as 0.
Eigen::Vector3d eulerFromRotation(const Eigen::Matrix3d &r);

Eigen::Isometry3d frameFromPose(const Eigen::Vector3d &trans, const Eigen::Vector3d &abc);

// A Cartesian pose as the protocol carries it: metres, radians, joint hint.
struct Pose
{
    Eigen::Vector3d trans = Eigen::Vector3d::Zero();
    Eigen::Vector3d rot = Eigen::Vector3d::Zero();
    Joints near = Joints::Zero();
    bool hasNear = false;

    Eigen::Isometry3d frame() const { return frameFromPose(trans, rot); }
    static Pose fromFrame(const Eigen::Isometry3d &f);
};

// The active tool frame, reference frame and payload.
struct Toolset
{
    QString name;
    Eigen::Isometry3d end = Eigen::Isometry3d::Identity();
    Eigen::Isometry3d ref = Eigen::Isometry3d::Identity();
    double mass = 0.0;
    Eigen::Vector3d cog = Eigen::Vector3d::Zero();
    Eigen::Vector3d inertia = Eigen::Vector3d::Zero();

    // TCP in the reference frame for a flange pose in the base frame, and back.
    Eigen::Isometry3d tcpFromFlange(const Eigen::Isometry3d &flange) const { return ref.inverse() * flange * end; }
    Eigen::Isometry3d flangeFromTcp(const Eigen::Isometry3d &tcp) const { return ref * tcp * end.inverse(); }
};

// Angle between two rotations, radians.
double rotationDistance(const Eigen::Matrix3d &a, const Eigen::Matrix3d &b);

} // namespace rc
