#pragma once

#include "frames.h"
#include "robotmodel.h"

#include <QString>

namespace rc {

// Outcome of an inverse solve or of a path check. code 0 is success; the others name the failure.
struct SolveResult
{
    enum Code {
        Ok = 0,
        Unreachable = 1,
        JointLimit = 2,
        ConfigurationJump = 3,
        WristSingularity = 4,
        ElbowSingularity = 5,
        ShoulderSingularity = 6,
    };
    int code = Ok;
    QString id;      // short code for events ("unreachable", "limit", ...)
    QString message; // operator text
    int sample = -1; // failing sample of a path check
    Joints q = Joints::Zero();

    bool ok() const { return code == Ok; }
};

/*
 * Joint-space questions about TCP poses for one robot and one toolset: the solution nearest a
 * reference, singularity tests and the straight-line check that motion and "move.l.check" share.
 */
class ArmSolver
{
public:
    // Path sampling: no step longer than this, and no larger turn.
    static constexpr double sampleStep = 0.002;
    static constexpr double sampleAngle = M_PI / 180.0;
    // Largest joint change between neighbouring samples before it counts as a configuration jump.
    static constexpr double jumpLimit = 0.2;
    // Distances from the singularities below which a pose counts as singular.
    static constexpr double wristLimit = 0.035;    // |sin q5|
    static constexpr double elbowLimit = 0.035;    // |sin q3|
    static constexpr double shoulderLimit = 0.03; // metres

    ArmSolver(const RobotModel &model, const Toolset &toolset) : m_model(model), m_toolset(toolset) {}

    const RobotModel &model() const { return m_model; }
    const Toolset &toolset() const { return m_toolset; }

    Eigen::Isometry3d tcp(const Joints &q) const { return m_toolset.tcpFromFlange(m_model.forward(q)); }

    // Solution within limits nearest to reference (joint by joint, modulo a turn); for a start
    // pose or a joint-move target.
    SolveResult solveNearest(const Eigen::Isometry3d &tcp, const Joints &reference) const;
    // Continuation of a path from `previous`: the nearest solution without wrapping into limits;
    // fails on limits, configuration jumps and, when checkSingular, near-singular poses.
    SolveResult solveContinuous(const Eigen::Isometry3d &tcp, const Joints &previous, bool checkSingular) const;

    // Non-Ok when q (flange pose f) is near a singularity.
    SolveResult singularity(const Joints &q, const Eigen::Isometry3d &flange) const;

    // Number of steps for a straight line between two TCP poses.
    static int stepsBetween(const Eigen::Isometry3d &a, const Eigen::Isometry3d &b);
    // Pose at s in [0, 1] along the line: position lerp, orientation slerp.
    static Eigen::Isometry3d interpolate(const Eigen::Isometry3d &a, const Eigen::Isometry3d &b, double s);

    // Straight-line check from p0 to p1 (p0's "near" picks the start configuration).
    SolveResult checkLine(const Pose &p0, const Pose &p1) const;

private:
    RobotModel m_model;
    Toolset m_toolset;
};

} // namespace rc
