#pragma once

#include "armsolver.h"
#include "controller.h"
#include "palletstore.h"
#include "protocol.h"

#include <QElapsedTimer>
#include <QHash>
#include <QList>
#include <QPointer>
#include <QTimer>

#include <functional>

namespace orba {
class ModuleObject;
}

namespace rc {

class Session;

// A stored pallet with its "index" set to `index` (after a removal moved it).
QByteArray renumberedPallet(const QByteArray &json, int index);

// Error numbers of "move.last_error_with_setting" beyond the path failures of SolveResult.
enum MoveError {
    MovePowerOff = 10,
    MoveNotArmed = 11,
    MoveStopped = 12,
    MoveBadSpeed = 13,
    MoveBadPoint = 14,
};

class ControllerPrivate
{
public:
    using Handler = std::function<Reply(Session *, orba::ModuleObject *params, const QString &key)>;

    ControllerPrivate(Controller *q, const Controller::Options &options);
    ~ControllerPrivate();

    Reply handle(Session *session, const QString &op, const QString &method, orba::ModuleObject *params,
                 const QString &key);
    QStringList commandNames() const;

    void sessionOpened(Session *s);
    void sessionClosed(Session *s);
    void publish(const QString &name, const QByteArray &data);
    bool isWatched(const QString &name) const;

    ArmSolver solver() const { return ArmSolver(model, toolset); }
    Pose currentPose() const;
    void setJoints(const Joints &q);
    // Publishes the posture to watchers now or, within 100 ms of the last event, when that ends.
    void postureChanged();
    void setPower(bool on);

    // Motion.
    struct Move
    {
        enum Kind { None, Joint, Linear, Jog } kind = None;
        Joints startJoints = Joints::Zero();
        Joints targetJoints = Joints::Zero();
        Eigen::Isometry3d startTcp = Eigen::Isometry3d::Identity();
        Eigen::Isometry3d targetTcp = Eigen::Isometry3d::Identity();
        Toolset toolset;
        double duration = 0.0; // s
        double reached = 0.0;  // fraction done (linear moves)
        // Jog
        QString frame;
        int axis = 0;
        double speed = 0.0;
        QPointer<Session> owner;
        bool ownerSet = false;
    };
    Reply armMove(Session *owner, Move::Kind kind, orba::ModuleObject *params);
    Reply startArmed(Session *owner);
    // Publishes a refused move as a "move.last_error_with_setting" event and remembers it, so
    // that the start which follows a refused arm is not reported a second time.
    void refuseMove(Session *owner, int error, const QString &id, const QString &message);
    void stopMotion();
    void tick();
    void failMotion(int error, const QString &id, const QString &message);
    // One jog step; on success the joints are set.
    SolveResult jogStep(const QString &frame, int axis, double delta);
    // Follows the straight TCP line from `from` to `to` in path-check steps, starting at q.
    SolveResult followLine(const ArmSolver &s, const Eigen::Isometry3d &from, const Eigen::Isometry3d &to,
                           const Joints &q) const;
    bool isMoving() const { return active.kind != Move::None; }

    void registerCommands();
    void registerTrayCommands();
    void registerSysCommands();
    void registerMotionCommands();
    void registerSimCommands();
    void add(const QString &op, const QString &method, Handler h);

    Controller *q;
    Controller::Options options;
    PalletStore store;
    bool opened = false;
    RobotModel model;
    Toolset toolset;
    Joints joints;
    bool power = true;
    QHash<QString, Pose> variables;

    QHash<QString, Handler> handlers; // "op method"
    QStringList commands;             // distinct method names in registration order
    QList<QPointer<Session>> sessions;

    Move armed;
    Move active;
    // The session whose last arm was refused (and reported), until its next start.
    QPointer<Session> refusedOwner;
    QString refusedMessage;
    // Children of q, so that they follow it into its thread.
    QTimer *tickTimer = nullptr;
    QElapsedTimer moveClock;
    qint64 lastTickNs = 0;
    QTimer *postureTimer = nullptr;
    bool postureDirty = false;
};

} // namespace rc
