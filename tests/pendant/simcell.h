#pragma once

#include <controller/armsolver.h>
#include <controller/robotmodel.h>
#include <orba/moduleobject.h>
#include <orbat/tservice.h>

#include <Eigen/Geometry>

#include <cmath>

/*
 * A pallet standing in the simulated cell, for tests that teach it with the robot: tilted a few
 * degrees and skewed (P4 pushed along P1->P3, a trapezoid), its corners on a 0.01 mm grid so that
 * the pendant's editors (two decimals in millimetres) show them exactly. Positions in metres in
 * the robot's base frame.
 */
struct SimCellPallet
{
    Eigen::Vector3d p1 = Eigen::Vector3d(450.0, -250.0, 100.0) / 1000.0;
    Eigen::Vector3d p2 = Eigen::Vector3d(848.0, -215.0, 107.0) / 1000.0;
    Eigen::Vector3d p3 = Eigen::Vector3d(420.0, 95.0, 112.0) / 1000.0;
    Eigen::Vector3d p4 = Eigen::Vector3d(815.0, 164.5, 120.2) / 1000.0;
    Eigen::Vector3d x, y, n;
    Eigen::Matrix3d rot;

    SimCellPallet()
    {
        x = (p2 - p1).normalized();
        n = (p2 - p1).cross(p3 - p1).normalized();
        y = n.cross(x);
        rot.col(0) = x;
        rot.col(1) = y;
        rot.col(2) = n;
    }
    Eigen::Vector3d corner(int i) const { return i == 0 ? p1 : i == 1 ? p2 : i == 2 ? p3 : p4; }
    // The tool pointing straight down onto the pallet, its centre point at `position`.
    Eigen::Isometry3d toolAt(const Eigen::Vector3d &position) const
    {
        Eigen::Isometry3d pose = Eigen::Isometry3d::Identity();
        pose.linear() = rot * Eigen::AngleAxisd(M_PI, Eigen::Vector3d::UnitX()).toRotationMatrix();
        pose.translation() = position;
        return pose;
    }
    // The point of the pallet's surface at (u, v) of the quadrilateral P1 P2 P4 P3.
    Eigen::Vector3d grid(double u, double v) const
    {
        return (1 - u) * (1 - v) * p1 + u * (1 - v) * p2 + (1 - u) * v * p3 + u * v * p4;
    }
};

// Puts the simulated arm (the simulator's own default arm) where a tool `toolZ` metres along the
// flange's z axis has its centre point at `tcp` in the base frame; `joints` is the start of the
// search and receives the solution. False when there is none or the simulator refuses.
inline bool putSimRobotAt(const Eigen::Isometry3d &tcp, double toolZ, rc::Joints *joints)
{
    rc::Toolset toolset;
    toolset.end.translation() = Eigen::Vector3d(0.0, 0.0, toolZ);
    const rc::ArmSolver solver(rc::RobotModel::defaultArm(), toolset);
    const rc::SolveResult solution = solver.solveNearest(tcp, *joints);
    if (!solution.ok())
        return false;
    *joints = solution.q;
    orba::ModuleObject param(QStringLiteral("param"));
    for (int i = 0; i < 6; ++i)
        param.set(nullptr, QStringLiteral("joints.#%1").arg(i), (*joints)[i]);
    return tservice()->execCommand(nullptr, QStringLiteral("sim.posture.set"), &param)->getInt(-1) == 0;
}

// Rotation of Euler angles A, B, C (Rz(C)·Ry(B)·Rx(A)).
inline Eigen::Matrix3d eulerRotation(double a, double b, double c)
{
    return (Eigen::AngleAxisd(c, Eigen::Vector3d::UnitZ()) * Eigen::AngleAxisd(b, Eigen::Vector3d::UnitY())
            * Eigen::AngleAxisd(a, Eigen::Vector3d::UnitX()))
        .toRotationMatrix();
}

// A three-element array node as a vector.
inline Eigen::Vector3d vectorOf(const orba::ModuleObject *node)
{
    return Eigen::Vector3d(node->c(0)->getDouble(), node->c(1)->getDouble(), node->c(2)->getDouble());
}
