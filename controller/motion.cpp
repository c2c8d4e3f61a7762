#include "controllerprivate.h"
#include "session.h"

#include <orba/moduleobject.h>

#include <cmath>

namespace rc {

namespace {

// Joint speed of J moves and turning speed of L moves per m/s of "traj.speed".
constexpr double radPerMetre = 1.0;
constexpr double defaultSpeed = 0.25; // m/s when a move gives none
constexpr double maxTcpSpeed = 7.0;   // m/s
// A move whose client has sent nothing for this long is stopped: a pendant that hangs or a link
// that is cut without closing must not leave the arm running. The move dialog polls the posture
// every 200 ms while it moves.
constexpr qint64 deadmanMs = 1000;

QByteArray errorEvent(int error, const QString &id, const QString &message)
{
    return protocol::toJson(QVariantMap{
        {QStringLiteral("error"), error},
        {QStringLiteral("data"), QVariantMap{{QStringLiteral("id"), id}, {QStringLiteral("msg"), message}}}});
}

bool readSpeed(orba::ModuleObject *params, double *speed, bool *present)
{
    // The pendant builds "traj.speed" through a dotted path, i.e. {"traj": {"speed": v}}; a flat
    // key is accepted as well.
    orba::ModuleObject *n = params->c(QStringLiteral("traj.speed"));
    if (n->isEmpty())
        n = params->r(QStringLiteral("traj.speed"));
    *present = !n->isEmpty();
    if (!*present)
        return true;
    return protocol::readNumber(n, speed) && *speed > 0.0;
}

// A joint target: six joint values; values of extra (external) axes are ignored, as in "near".
bool readJointTarget(const orba::ModuleObject *n, Joints *out)
{
    if (!n || n->isEmpty() || !n->isArray() || n->cmobjCount() < 6 || n->cmobjCount() > 12)
        return false;
    for (int i = 0; i < n->cmobjCount(); ++i) {
        double v;
        if (!protocol::readNumber(n->c(i), &v))
            return false;
        if (i < 6)
            (*out)[i] = v;
    }
    return true;
}

} // namespace

void ControllerPrivate::failMotion(int error, const QString &id, const QString &message)
{
    stopMotion();
    publish(QStringLiteral("move.last_error_with_setting"), errorEvent(error, id, message));
}

void ControllerPrivate::stopMotion()
{
    active = Move();
    tickTimer->stop();
}

void ControllerPrivate::refuseMove(Session *owner, int error, const QString &id, const QString &message)
{
    armed = Move();
    refusedOwner = owner;
    refusedMessage = message;
    publish(QStringLiteral("move.last_error_with_setting"), errorEvent(error, id, message));
}

Reply ControllerPrivate::armMove(Session *owner, Move::Kind kind, orba::ModuleObject *params)
{
    // Every refusal is also published: the pendant starts motion without waiting for replies,
    // so the event is the only way the operator learns why the robot does not move.
    const QString what = kind == Move::Joint ? QStringLiteral("move.j") : QStringLiteral("move.l");
    if (!params || params->isEmpty() || params->isArray()) {
        const QString msg = QStringLiteral("\"%1\" takes {\"point\", \"traj.speed\"}").arg(what);
        refuseMove(owner, MoveBadPoint, QStringLiteral("point"), msg);
        return Reply::error(InvalidParams, msg);
    }
    double speed = defaultSpeed;
    bool hasSpeed = false;
    if (!readSpeed(params, &speed, &hasSpeed)) {
        const QString msg = QStringLiteral("\"traj.speed\" must be a positive number");
        refuseMove(owner, MoveBadSpeed, QStringLiteral("speed"), msg);
        return Reply::error(InvalidParams, msg);
    }
    speed = std::min(speed, maxTcpSpeed);

    orba::ModuleObject *point = params->c(QStringLiteral("point"));
    Move m;
    m.kind = kind;
    m.speed = speed;
    m.toolset = toolset;
    const ArmSolver s = solver();
    Joints q;
    if (readJointTarget(point, &q)) {
        const int bad = model.firstJointOutside(q);
        if (bad >= 0) {
            const QString msg = QStringLiteral("target joint %1 out of its limits").arg(bad + 1);
            refuseMove(owner, SolveResult::JointLimit, QStringLiteral("limit"), msg);
            return Reply::failed(msg);
        }
        m.targetJoints = q;
        m.targetTcp = s.tcp(q);
    } else {
        Pose p;
        QString error;
        if (!protocol::readPose(point, &p, &error)) {
            const QString msg = QStringLiteral("\"point\": %1").arg(error);
            refuseMove(owner, MoveBadPoint, QStringLiteral("point"), msg);
            return Reply::error(InvalidParams, msg);
        }
        m.targetTcp = p.frame();
        const SolveResult r = s.solveNearest(m.targetTcp, kind == Move::Joint && p.hasNear ? p.near : joints);
        if (!r.ok()) {
            refuseMove(owner, r.code, r.id, r.message);
            return Reply::failed(r.message);
        }
        m.targetJoints = r.q;
    }
    if (!power) {
        const QString msg = QStringLiteral("the robot is powered off");
        refuseMove(owner, MovePowerOff, QStringLiteral("power"), msg);
        return Reply::failed(msg);
    }
    m.owner = owner;
    m.ownerSet = true;
    armed = m;
    refusedOwner = nullptr;
    refusedMessage.clear();
    return Reply::ok();
}

Reply ControllerPrivate::startArmed(Session *owner)
{
    if (armed.kind == Move::None) {
        // The refusal of the arm that should have come first was reported already.
        if (!refusedOwner.isNull() && refusedOwner == owner) {
            const QString msg = QStringLiteral("no motion armed: %1").arg(refusedMessage);
            refusedOwner = nullptr;
            refusedMessage.clear();
            return Reply::failed(msg);
        }
        const QString msg = QStringLiteral("no motion armed");
        publish(QStringLiteral("move.last_error_with_setting"), errorEvent(MoveNotArmed, QStringLiteral("armed"), msg));
        return Reply::failed(msg);
    }
    if (!power) {
        armed = Move();
        const QString msg = QStringLiteral("the robot is powered off");
        publish(QStringLiteral("move.last_error_with_setting"), errorEvent(MovePowerOff, QStringLiteral("power"), msg));
        return Reply::failed(msg);
    }
    stopMotion();
    Move m = armed;
    armed = Move();
    m.owner = owner;
    m.ownerSet = true;
    m.startJoints = joints;
    if (m.kind == Move::Joint) {
        double duration = 0.0;
        for (int i = 0; i < 6; ++i) {
            const double v = std::min(m.speed * radPerMetre, model.maxSpeed[i]);
            duration = std::max(duration, std::abs(m.targetJoints[i] - joints[i]) / v);
        }
        m.duration = duration;
    } else {
        const ArmSolver s(model, m.toolset);
        m.startTcp = s.tcp(joints);
        const double dist = (m.targetTcp.translation() - m.startTcp.translation()).norm();
        const double angle = rotationDistance(m.startTcp.linear(), m.targetTcp.linear());
        m.duration = std::max(dist / m.speed, angle / std::min(m.speed * radPerMetre, M_PI));
    }
    active = m;
    moveClock.start();
    lastTickNs = 0;
    tickTimer->start();
    tick();
    return Reply::ok();
}

SolveResult ControllerPrivate::followLine(const ArmSolver &s, const Eigen::Isometry3d &from, const Eigen::Isometry3d &to,
                                          const Joints &q) const
{
    const int n = ArmSolver::stepsBetween(from, to);
    SolveResult r;
    r.q = q;
    for (int i = 1; i <= n; ++i) {
        SolveResult next = s.solveContinuous(ArmSolver::interpolate(from, to, double(i) / n), r.q, true);
        if (!next.ok()) {
            next.q = r.q;
            return next;
        }
        r.q = next.q;
    }
    return r;
}

void ControllerPrivate::tick()
{
    if (active.kind == Move::None) {
        tickTimer->stop();
        return;
    }
    if (!power) {
        failMotion(MovePowerOff, QStringLiteral("power"), QStringLiteral("the robot is powered off"));
        return;
    }
    if ((active.kind == Move::Joint || active.kind == Move::Linear) && active.owner
        && active.owner->msSinceHeard() > deadmanMs) {
        failMotion(MoveStopped, QStringLiteral("deadman"),
                   QStringLiteral("no word from the client for %1 ms: motion stopped").arg(deadmanMs));
        return;
    }
    const qint64 now = moveClock.nsecsElapsed();
    const double t = now / 1e9;
    const double dt = (now - lastTickNs) / 1e9;
    lastTickNs = now;
    switch (active.kind) {
    case Move::Joint: {
        const double s = active.duration > 0.0 ? std::min(1.0, t / active.duration) : 1.0;
        setJoints(s >= 1.0 ? active.targetJoints : Joints(active.startJoints + s * (active.targetJoints - active.startJoints)));
        if (s >= 1.0)
            stopMotion();
        break;
    }
    case Move::Linear: {
        const double s = active.duration > 0.0 ? std::min(1.0, t / active.duration) : 1.0;
        const ArmSolver solver(model, active.toolset);
        const Eigen::Isometry3d from = ArmSolver::interpolate(active.startTcp, active.targetTcp, active.reached);
        const Eigen::Isometry3d to = ArmSolver::interpolate(active.startTcp, active.targetTcp, s);
        const SolveResult r = followLine(solver, from, to, joints);
        setJoints(r.q);
        if (!r.ok()) {
            failMotion(r.code, r.id, r.message);
            return;
        }
        active.reached = s;
        if (s >= 1.0)
            stopMotion();
        break;
    }
    case Move::Jog: {
        const SolveResult r = jogStep(active.frame, active.axis, active.speed * dt);
        if (!r.ok())
            failMotion(r.code, r.id, r.message);
        break;
    }
    case Move::None:
        break;
    }
}

SolveResult ControllerPrivate::jogStep(const QString &frame, int axis, double delta)
{
    SolveResult r;
    if (frame == QLatin1String("joint")) {
        Joints q = joints;
        q[axis] += delta;
        if (model.firstJointOutside(q) >= 0) {
            r.code = SolveResult::JointLimit;
            r.id = QStringLiteral("limit");
            r.message = QStringLiteral("joint %1 out of its limits").arg(axis + 1);
            return r;
        }
        setJoints(q);
        r.q = q;
        return r;
    }
    const ArmSolver s = solver();
    const Eigen::Isometry3d tcpRef = s.tcp(joints);
    const Eigen::Isometry3d tcpBase = toolset.ref * tcpRef;
    Eigen::Isometry3d moved = tcpBase;
    const Eigen::Vector3d unit = Eigen::Vector3d::Unit(axis % 3);
    if (frame == QLatin1String("base")) {
        if (axis < 3)
            moved.translation() += delta * unit;
        else
            moved.linear() = Eigen::AngleAxisd(delta, unit).toRotationMatrix() * tcpBase.linear();
    } else {
        Eigen::Isometry3d step = Eigen::Isometry3d::Identity();
        if (axis < 3)
            step.translation() = delta * unit;
        else
            step.linear() = Eigen::AngleAxisd(delta, unit).toRotationMatrix();
        moved = tcpBase * step;
    }
    r = followLine(s, tcpRef, toolset.ref.inverse() * moved, joints);
    if (r.ok())
        setJoints(r.q);
    return r;
}

void ControllerPrivate::registerMotionCommands()
{
    add(QStringLiteral("exec"), QStringLiteral("move.reset"), [this](Session *, orba::ModuleObject *, const QString &) {
        stopMotion();
        armed = Move();
        refusedOwner = nullptr;
        refusedMessage.clear();
        return Reply::ok();
    });
    add(QStringLiteral("exec"), QStringLiteral("move.j"), [this](Session *s, orba::ModuleObject *params, const QString &) {
        return armMove(s, Move::Joint, params);
    });
    add(QStringLiteral("exec"), QStringLiteral("move.l"), [this](Session *s, orba::ModuleObject *params, const QString &) {
        return armMove(s, Move::Linear, params);
    });
    add(QStringLiteral("exec"), QStringLiteral("move.opr.enough"), [this](Session *s, orba::ModuleObject *, const QString &) {
        return startArmed(s);
    });
    add(QStringLiteral("exec"), QStringLiteral("move.stop"), [this](Session *, orba::ModuleObject *, const QString &) {
        stopMotion();
        return Reply::ok();
    });
    add(QStringLiteral("exec"), QStringLiteral("move.l.check"), [this](Session *, orba::ModuleObject *params, const QString &) {
        Pose p0, p1;
        QString error;
        if (!params || params->isEmpty())
            return Reply::error(InvalidParams, QStringLiteral("\"move.l.check\" takes {\"point0\", \"point1\"}"));
        if (!protocol::readPose(params->c(QStringLiteral("point0")), &p0, &error))
            return Reply::error(InvalidParams, QStringLiteral("\"point0\": %1").arg(error));
        if (!protocol::readPose(params->c(QStringLiteral("point1")), &p1, &error))
            return Reply::error(InvalidParams, QStringLiteral("\"point1\": %1").arg(error));
        if (!p0.hasNear)
            p0.near = joints;
        const SolveResult r = solver().checkLine(p0, p1);
        if (r.ok())
            return Reply::ok();
        Reply reply;
        reply.status = r.code;
        reply.data = protocol::toJson(QVariantMap{{QStringLiteral("id"), r.id},
                                                  {QStringLiteral("msg"), r.message},
                                                  {QStringLiteral("sample"), r.sample}});
        return reply;
    });
    add(QStringLiteral("exec"), QStringLiteral("sim.jog.start"), [this](Session *s, orba::ModuleObject *params, const QString &) {
        QString frame;
        qint64 axis;
        double speed;
        if (!params || params->isEmpty() || !protocol::readString(params->c(QStringLiteral("frame")), &frame)
            || !protocol::readInt(params->c(QStringLiteral("axis")), &axis)
            || !protocol::readNumber(params->c(QStringLiteral("speed")), &speed)
            || (frame != QLatin1String("joint") && frame != QLatin1String("base") && frame != QLatin1String("tool"))
            || axis < 0 || axis > 5 || std::abs(speed) > 2.0)
            return Reply::error(InvalidParams, QStringLiteral(
                "\"sim.jog.start\" takes {\"frame\": joint|base|tool, \"axis\": 0..5, \"speed\": at most 2 m/s or rad/s}"));
        if (!power)
            return Reply::failed(QStringLiteral("the robot is powered off"));
        stopMotion();
        Move m;
        m.kind = Move::Jog;
        m.frame = frame;
        m.axis = int(axis);
        m.speed = speed;
        m.owner = s;
        m.ownerSet = true;
        active = m;
        moveClock.start();
        lastTickNs = 0;
        tickTimer->start();
        return Reply::ok();
    });
    add(QStringLiteral("exec"), QStringLiteral("sim.jog.stop"), [this](Session *, orba::ModuleObject *, const QString &) {
        if (active.kind == Move::Jog)
            stopMotion();
        return Reply::ok();
    });
}

} // namespace rc
