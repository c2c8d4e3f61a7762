#include "controllerprivate.h"
#include "rawjson.h"
#include "session.h"

#include <orba/moduleobject.h>

#include <QHostInfo>

namespace rc {

namespace {

bool readFrame(orba::ModuleObject *n, Eigen::Isometry3d *frame)
{
    Eigen::Vector3d t, r;
    if (!n || n->isEmpty() || !protocol::readVector3(n->c(QStringLiteral("trans")), &t)
        || !protocol::readVector3(n->c(QStringLiteral("rot")), &r))
        return false;
    *frame = frameFromPose(t, r);
    return true;
}

QVariantMap frameVariant(const Eigen::Isometry3d &f)
{
    const Pose p = Pose::fromFrame(f);
    return {{QStringLiteral("trans"), protocol::toList(p.trans)}, {QStringLiteral("rot"), protocol::toList(p.rot)}};
}

QVariantMap mmFrame(double x, double y, double z, double a, double b, double c)
{
    return {{QStringLiteral("pos"), QVariantMap{{QStringLiteral("x"), x}, {QStringLiteral("y"), y}, {QStringLiteral("z"), z}}},
            {QStringLiteral("ori"), QVariantMap{{QStringLiteral("euler"),
                                                 QVariantMap{{QStringLiteral("a"), a}, {QStringLiteral("b"), b}, {QStringLiteral("c"), c}}}}}};
}

QVariantMap toolRecord(const QString &name, bool robhold, const QVariantMap &frame, double mass, double cx, double cy,
                       double cz, double ix, double iy, double iz)
{
    return {{QStringLiteral("name"), name},
            {QStringLiteral("robhold"), robhold},
            {QStringLiteral("frame"), frame},
            {QStringLiteral("load"),
             QVariantMap{{QStringLiteral("mass"), mass},
                         {QStringLiteral("pose"), QVariantMap{{QStringLiteral("pos"), QVariantMap{{QStringLiteral("x"), cx},
                                                                                                  {QStringLiteral("y"), cy},
                                                                                                  {QStringLiteral("z"), cz}}}}},
                         {QStringLiteral("moment"), QVariantList{ix, iy, iz}}}}};
}

// The simulated project: tools and work objects a robot program would declare.
QVariantList projectTools()
{
    return {toolRecord(QStringLiteral("tool0"), true, mmFrame(0, 0, 0, 0, 0, 0), 0.0, 0, 0, 0, 0, 0, 0),
            // Moments stay within what the pendant's tool page can show (1000 kg.mm²).
            toolRecord(QStringLiteral("gripper"), true, mmFrame(0, 0, 200.0, 0, 0, 0), 4.5, 0, 0, 90.0, 900.0, 900.0,
                       400.0),
            toolRecord(QStringLiteral("sucker"), true, mmFrame(0, 50.0, 150.0, 0, 0, 0), 2.0, 0, 20.0, 70.0, 600.0,
                       600.0, 250.0),
            toolRecord(QStringLiteral("glue_gun"), false, mmFrame(400.0, 0, 300.0, 0, 90.0, 0), 0.0, 0, 0, 0, 0, 0, 0)};
}

QVariantList projectWobjs()
{
    return {QVariantMap{{QStringLiteral("name"), QStringLiteral("wobj0")}, {QStringLiteral("robhold"), false},
                        {QStringLiteral("frame"), mmFrame(0, 0, 0, 0, 0, 0)}},
            QVariantMap{{QStringLiteral("name"), QStringLiteral("table")}, {QStringLiteral("robhold"), false},
                        {QStringLiteral("frame"), mmFrame(600.0, -400.0, 0.0, 0, 0, 90.0)}}};
}

} // namespace

void ControllerPrivate::registerSysCommands()
{
    add(QStringLiteral("get"), QStringLiteral("tservice.proto.command"), [this](Session *, orba::ModuleObject *, const QString &) {
        return Reply::ok(QVariant(commandNames()));
    });
    add(QStringLiteral("get"), QStringLiteral("sys.id"), [](Session *, orba::ModuleObject *, const QString &) {
        return Reply::ok(QVariant(QStringLiteral("rcsim-%1").arg(QHostInfo::localHostName())));
    });
    add(QStringLiteral("get"), QStringLiteral("sys.power"), [this](Session *, orba::ModuleObject *, const QString &) {
        return Reply::ok(QVariant(power ? QStringLiteral("on") : QStringLiteral("off")));
    });
    add(QStringLiteral("set"), QStringLiteral("sys.power"), [this](Session *, orba::ModuleObject *params, const QString &) {
        QString v;
        if (!protocol::readString(params, &v) || (v != QLatin1String("on") && v != QLatin1String("off")))
            return Reply::error(InvalidParams, QStringLiteral("\"sys.power\" takes \"on\" or \"off\""));
        setPower(v == QLatin1String("on"));
        return Reply::ok();
    });
    add(QStringLiteral("get"), QStringLiteral("sys.posture"), [this](Session *, orba::ModuleObject *, const QString &) {
        return Reply::ok(QVariant(protocol::poseVariant(currentPose())));
    });
    add(QStringLiteral("set"), QStringLiteral("sys.toolset"), [this](Session *, orba::ModuleObject *params, const QString &) {
        Toolset t;
        if (!params || params->isEmpty() || params->isArray())
            return Reply::failed(QStringLiteral("toolset missing"));
        if (!readFrame(params->c(QStringLiteral("end")), &t.end))
            return Reply::failed(QStringLiteral("toolset \"end\" needs \"trans\" and \"rot\" of 3 numbers"));
        if (!readFrame(params->c(QStringLiteral("ref")), &t.ref))
            return Reply::failed(QStringLiteral("toolset \"ref\" needs \"trans\" and \"rot\" of 3 numbers"));
        orba::ModuleObject *load = params->c(QStringLiteral("load"));
        if (!protocol::readNumber(load->c(QStringLiteral("mass")), &t.mass) || t.mass < 0.0
            || !protocol::readVector3(load->c(QStringLiteral("cog")), &t.cog)
            || !protocol::readVector3(load->c(QStringLiteral("inertia")), &t.inertia))
            return Reply::failed(QStringLiteral("toolset \"load\" needs \"mass\" >= 0, \"cog\" and \"inertia\" of 3 numbers"));
        orba::ModuleObject *name = params->c(QStringLiteral("name"));
        if (!name->isEmpty() && !protocol::readString(name, &t.name))
            return Reply::failed(QStringLiteral("toolset \"name\" must be a string"));
        toolset = t;
        postureChanged();
        return Reply::ok();
    });
    add(QStringLiteral("get"), QStringLiteral("sys.toolset"), [this](Session *, orba::ModuleObject *, const QString &) {
        return Reply::ok(QVariant(QVariantMap{
            {QStringLiteral("name"), toolset.name},
            {QStringLiteral("end"), frameVariant(toolset.end)},
            {QStringLiteral("ref"), frameVariant(toolset.ref)},
            {QStringLiteral("load"), QVariantMap{{QStringLiteral("mass"), toolset.mass},
                                                 {QStringLiteral("cog"), protocol::toList(toolset.cog)},
                                                 {QStringLiteral("inertia"), protocol::toList(toolset.inertia)}}}}));
    });
    add(QStringLiteral("get"), QStringLiteral("data.var"), [this](Session *, orba::ModuleObject *params, const QString &key) {
        if (params && !params->isEmpty()) {
            QString type;
            orba::ModuleObject *t = params->c(QStringLiteral("type"));
            if (!t->isEmpty() && (!protocol::readString(t, &type)
                                  || (type != QLatin1String("joint") && type != QLatin1String("cart"))))
                return Reply::error(InvalidParams, QStringLiteral("\"type\" is \"joint\" or \"cart\""));
        }
        const auto it = variables.constFind(key);
        if (it == variables.constEnd())
            return Reply::failed(QStringLiteral("no variable \"%1\"").arg(rawjson::excerpt(key)));
        return Reply::ok(QVariant(protocol::poseVariant(it.value())));
    });
}

void ControllerPrivate::registerSimCommands()
{
    add(QStringLiteral("exec"), QStringLiteral("sim.var.set"), [this](Session *, orba::ModuleObject *params, const QString &) {
        QString name;
        if (!params || params->isEmpty() || !protocol::readString(params->c(QStringLiteral("name")), &name) || name.isEmpty())
            return Reply::error(InvalidParams, QStringLiteral("\"sim.var.set\" takes {\"name\", \"value\"}"));
        orba::ModuleObject *value = params->c(QStringLiteral("value"));
        Pose p;
        Joints q;
        QString error;
        if (protocol::readJoints(value, &q)) {
            // A joint variable: its Cartesian side is the TCP of the active toolset.
            p = Pose::fromFrame(solver().tcp(q));
            p.near = q;
            p.hasNear = true;
        } else if (!protocol::readPose(value, &p, &error)) {
            return Reply::error(InvalidParams, error);
        }
        variables.insert(name, p);
        return Reply::ok();
    });
    add(QStringLiteral("exec"), QStringLiteral("sim.power"), [this](Session *, orba::ModuleObject *params, const QString &) {
        bool on;
        if (!protocol::readBool(params, &on))
            return Reply::error(InvalidParams, QStringLiteral("\"sim.power\" takes true or false"));
        setPower(on);
        return Reply::ok();
    });
    add(QStringLiteral("exec"), QStringLiteral("sim.posture.set"), [this](Session *, orba::ModuleObject *params, const QString &) {
        Joints q;
        if (!params || params->isEmpty() || !protocol::readJoints(params->c(QStringLiteral("joints")), &q))
            return Reply::error(InvalidParams, QStringLiteral("\"sim.posture.set\" takes {\"joints\": [6 numbers]}"));
        const int bad = model.firstJointOutside(q);
        if (bad >= 0)
            return Reply::failed(QStringLiteral("joint %1 out of its limits").arg(bad + 1));
        if (isMoving())
            return Reply::failed(QStringLiteral("the robot is moving"));
        setJoints(q);
        return Reply::ok();
    });
    add(QStringLiteral("get"), QStringLiteral("sim.tool.list"), [](Session *, orba::ModuleObject *, const QString &) {
        return Reply::ok(QVariant(projectTools()));
    });
    add(QStringLiteral("get"), QStringLiteral("sim.wobj.list"), [](Session *, orba::ModuleObject *, const QString &) {
        return Reply::ok(QVariant(projectWobjs()));
    });
    add(QStringLiteral("exec"), QStringLiteral("sim.jog"), [this](Session *, orba::ModuleObject *params, const QString &) {
        QString frame;
        qint64 axis;
        double delta;
        if (!params || params->isEmpty() || !protocol::readString(params->c(QStringLiteral("frame")), &frame)
            || !protocol::readInt(params->c(QStringLiteral("axis")), &axis)
            || !protocol::readNumber(params->c(QStringLiteral("delta")), &delta)
            || (frame != QLatin1String("joint") && frame != QLatin1String("base") && frame != QLatin1String("tool"))
            || axis < 0 || axis > 5)
            return Reply::error(InvalidParams,
                                QStringLiteral("\"sim.jog\" takes {\"frame\": joint|base|tool, \"axis\": 0..5, \"delta\"}"));
        if (!power)
            return Reply::failed(QStringLiteral("the robot is powered off"));
        if (isMoving())
            return Reply::failed(QStringLiteral("the robot is moving"));
        const SolveResult r = jogStep(frame, int(axis), delta);
        if (!r.ok())
            return Reply::failed(r.message);
        return Reply::ok(QVariant(protocol::poseVariant(currentPose())));
    });
}

} // namespace rc
