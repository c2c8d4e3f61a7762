#include "controller.h"

#include "controllerprivate.h"
#include "rawjson.h"
#include "session.h"

#include <orba/moduleobject.h>

#include <QThread>

namespace rc {

ControllerPrivate::ControllerPrivate(Controller *qq, const Controller::Options &opts)
    : q(qq), options(opts), model(RobotModel::defaultArm())
{
    joints = model.home;
    tickTimer = new QTimer(q);
    tickTimer->setTimerType(Qt::PreciseTimer);
    tickTimer->setInterval(10);
    QObject::connect(tickTimer, &QTimer::timeout, q, [this] { tick(); });
    // Posture events are coalesced to at most one per 100 ms.
    postureTimer = new QTimer(q);
    postureTimer->setSingleShot(true);
    postureTimer->setInterval(100);
    QObject::connect(postureTimer, &QTimer::timeout, q, [this] {
        if (!postureDirty || !isWatched(QStringLiteral("sys.posture")))
            return;
        postureDirty = false;
        publish(QStringLiteral("sys.posture"), protocol::toJson(protocol::poseVariant(currentPose())));
        postureTimer->start();
    });
    Pose home = Pose::fromFrame(solver().tcp(model.home));
    home.near = model.home;
    home.hasNear = true;
    variables.insert(QStringLiteral("home"), home);
    registerCommands();
}

ControllerPrivate::~ControllerPrivate() = default;

void ControllerPrivate::add(const QString &op, const QString &method, Handler h)
{
    handlers.insert(op + QLatin1Char(' ') + method, std::move(h));
    if (!commands.contains(method))
        commands.append(method);
}

void ControllerPrivate::registerCommands()
{
    registerTrayCommands();
    registerSysCommands();
    registerMotionCommands();
    registerSimCommands();
}

QStringList ControllerPrivate::commandNames() const
{
    return commands;
}

Reply ControllerPrivate::handle(Session *session, const QString &op, const QString &method,
                                orba::ModuleObject *params, const QString &key)
{
    if (op == QLatin1String("ping"))
        return Reply::ok(QVariant(QStringLiteral("pong")));
    if (op == QLatin1String("watch")) {
        static const QStringList watchable = {QStringLiteral("move.last_error_with_setting"),
                                              QStringLiteral("sys.power"), QStringLiteral("sys.posture")};
        if (!watchable.contains(method))
            return Reply::error(MethodNotFound, QStringLiteral("\"%1\" cannot be watched").arg(rawjson::excerpt(method)));
        bool on = true;
        if (params && !protocol::readBool(params, &on))
            return Reply::error(InvalidParams, QStringLiteral("watch takes true or false"));
        session->setWatched(method, on);
        // A new watcher gets the current value at once; errors are only sent when they happen.
        if (on && method == QLatin1String("sys.power"))
            session->deliver(protocol::eventLine(method, protocol::toJson(power ? QStringLiteral("on") : QStringLiteral("off"))));
        else if (on && method == QLatin1String("sys.posture"))
            session->deliver(protocol::eventLine(method, protocol::toJson(protocol::poseVariant(currentPose()))));
        return Reply::ok();
    }
    const auto it = handlers.constFind(op + QLatin1Char(' ') + method);
    if (it == handlers.constEnd()) {
        if (commands.contains(method))
            return Reply::error(MethodNotFound, QStringLiteral("\"%1\" does not support op \"%2\"").arg(method, rawjson::excerpt(op)));
        return Reply::error(MethodNotFound, QStringLiteral("unknown command \"%1\"").arg(rawjson::excerpt(method)));
    }
    return it.value()(session, params, key);
}

void ControllerPrivate::sessionOpened(Session *s)
{
    sessions.append(QPointer<Session>(s));
}

void ControllerPrivate::sessionClosed(Session *s)
{
    // Whatever the connection started stops with it; nothing resumes on its own.
    if (active.kind != Move::None && active.ownerSet && (active.owner == s || active.owner.isNull()))
        stopMotion();
    if (armed.ownerSet && armed.owner == s)
        armed = Move();
    sessions.removeAll(QPointer<Session>(s));
    sessions.removeAll(QPointer<Session>());
}

void ControllerPrivate::publish(const QString &name, const QByteArray &data)
{
    const QByteArray line = protocol::eventLine(name, data);
    const auto list = sessions;
    for (const QPointer<Session> &s : list) {
        if (s && s->watches(name))
            s->deliver(line);
    }
}

Pose ControllerPrivate::currentPose() const
{
    Pose p = Pose::fromFrame(solver().tcp(joints));
    p.near = joints;
    p.hasNear = true;
    return p;
}

void ControllerPrivate::setJoints(const Joints &q)
{
    if (q == joints)
        return;
    joints = q;
    postureChanged();
}

bool ControllerPrivate::isWatched(const QString &name) const
{
    for (const QPointer<Session> &s : sessions) {
        if (s && s->watches(name))
            return true;
    }
    return false;
}

void ControllerPrivate::postureChanged()
{
    if (!isWatched(QStringLiteral("sys.posture")))
        return;
    postureDirty = true;
    if (!postureTimer->isActive()) {
        postureDirty = false;
        publish(QStringLiteral("sys.posture"), protocol::toJson(protocol::poseVariant(currentPose())));
        postureTimer->start();
    }
}

void ControllerPrivate::setPower(bool on)
{
    if (on == power)
        return;
    power = on;
    if (!on && isMoving())
        failMotion(MovePowerOff, QStringLiteral("power"), QStringLiteral("the robot is powered off"));
    publish(QStringLiteral("sys.power"), protocol::toJson(on ? QStringLiteral("on") : QStringLiteral("off")));
}

Controller::Controller(const Options &options, QObject *parent)
    : QObject(parent), d(std::make_unique<ControllerPrivate>(this, options))
{
}

Controller::~Controller()
{
    d->tickTimer->stop();
    d->postureTimer->stop();
}

bool Controller::open(QString *error)
{
    if (d->opened)
        return true;
    if (!d->store.open(d->options.dataDir, error, &renumberedPallet))
        return false;
    d->opened = true;
    return true;
}

orbat::LineEndpoint *Controller::createSession()
{
    auto *s = new Session(this);
    if (s->thread() != thread())
        s->moveToThread(thread());
    return s;
}

EmbeddedController::EmbeddedController(const Controller::Options &options, QObject *parent)
    : QObject(parent), m_options(options)
{
}

EmbeddedController::~EmbeddedController()
{
    if (!m_thread)
        return;
    if (m_controller) {
        // Both die in the worker thread: the store's database connection belongs to it.
        Controller *controller = m_controller;
        QMetaObject::invokeMethod(
            controller,
            [this, controller] {
                delete m_workerEndpoint;
                m_workerEndpoint = nullptr;
                controller->deleteLater();
            },
            Qt::BlockingQueuedConnection);
        m_controller = nullptr;
        m_endpoint = nullptr;
    }
    m_thread->quit();
    m_thread->wait();
    delete m_thread;
}

bool EmbeddedController::start(QString *error)
{
    if (m_controller)
        return m_endpoint != nullptr;
    bool ok = false;
    launch(true, &ok, error);
    return ok;
}

void EmbeddedController::startAsync()
{
    if (m_controller)
        return;
    launch(false, nullptr, nullptr);
}

void EmbeddedController::launch(bool wait, bool *okOut, QString *errorOut)
{
    if (!m_thread) {
        m_thread = new QThread;
        m_thread->setObjectName(QStringLiteral("rc-controller"));
        m_thread->start();
    }
    auto *controller = new Controller(m_options);
    controller->moveToThread(m_thread);
    // Held from now on, so that the destructor deletes it in its thread even while it opens: the
    // deletion is queued behind the opening.
    m_controller = controller;
    auto open = [this, controller, wait, okOut, errorOut] {
        QString reason;
        const bool ok = controller->open(&reason);
        orbat::LineEndpoint *endpoint = ok ? controller->createSession() : nullptr;
        m_workerEndpoint = endpoint;
        if (wait) {
            *okOut = ok;
            if (errorOut)
                *errorOut = reason;
            m_endpoint = endpoint;
            return;
        }
        // Back in the owner's thread; an owner destroyed meanwhile drops the posted call.
        QMetaObject::invokeMethod(
            this,
            [this, endpoint, ok, reason] {
                m_endpoint = endpoint;
                emit started(ok, reason);
            },
            Qt::QueuedConnection);
    };
    QMetaObject::invokeMethod(controller, open, wait ? Qt::BlockingQueuedConnection : Qt::QueuedConnection);
}

orbat::LineEndpoint *EmbeddedController::endpoint() const
{
    return m_endpoint;
}

} // namespace rc
