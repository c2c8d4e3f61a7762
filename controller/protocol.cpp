#include "protocol.h"

#include <orba/json.h>
#include <orba/moduleobject.h>

#include <cmath>
#include <limits>

namespace rc {

Reply Reply::ok(const QVariant &data)
{
    Reply r;
    r.data = protocol::toJson(data);
    return r;
}

Reply Reply::failed(const QString &text, int status)
{
    Reply r;
    r.status = status;
    r.data = protocol::toJson(QVariantMap{{QStringLiteral("msg"), text}});
    return r;
}

Reply Reply::error(int code, const QString &message)
{
    Reply r;
    r.isError = true;
    r.code = code;
    r.message = message;
    return r;
}

namespace protocol {

QByteArray toJson(const QVariant &v)
{
    return orba::json::fromVariant(v, true);
}

QVector<QByteArray> resultPieces(const QByteArray &id, const Reply &reply)
{
    QByteArray head = "{\"id\":";
    head += id.isEmpty() ? QByteArray("null") : id;
    if (reply.isError) {
        head += ",\"error\":{\"code\":";
        head += QByteArray::number(reply.code);
        head += ",\"message\":";
        head += toJson(reply.message);
        head += "}}";
        return {head};
    }
    head += ",\"result\":{\"status\":";
    head += QByteArray::number(reply.status);
    head += ",\"data\":";
    QVector<QByteArray> pieces;
    pieces.reserve(reply.parts.size() + 3);
    pieces += head;
    qint64 partBytes = 0;
    for (const QByteArray &part : reply.parts)
        partBytes += part.size();
    if (!reply.parts.isEmpty() && partBytes > 0)
        pieces += reply.parts;
    else
        pieces += reply.data.isEmpty() ? QByteArray("null") : reply.data;
    pieces += QByteArray("}}");
    return pieces;
}

QByteArray resultLine(const QByteArray &id, const Reply &reply)
{
    const QVector<QByteArray> pieces = resultPieces(id, reply);
    if (pieces.size() == 1)
        return pieces.first();
    qint64 size = 0;
    for (const QByteArray &piece : pieces)
        size += piece.size();
    QByteArray line;
    line.reserve(int(qMin<qint64>(size, std::numeric_limits<int>::max() - 32)));
    for (const QByteArray &piece : pieces)
        line += piece;
    return line;
}

QByteArray eventLine(const QString &name, const QByteArray &data)
{
    QByteArray line = "{\"event\":";
    line += toJson(name);
    line += ",\"data\":";
    line += data.isEmpty() ? QByteArray("null") : data;
    line += '}';
    return line;
}

namespace {

bool isLeaf(const orba::ModuleObject *n)
{
    return n && !n->isEmpty() && n->cmobjCount() == 0 && n->hasValue();
}

} // namespace

bool readNumber(const orba::ModuleObject *n, double *out)
{
    if (!isLeaf(n))
        return false;
    const QVariant v = n->value();
    switch (v.userType()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Double:
    case QMetaType::Float:
        break;
    default:
        return false;
    }
    const double d = v.toDouble();
    if (!std::isfinite(d))
        return false;
    *out = d;
    return true;
}

bool readInt(const orba::ModuleObject *n, qint64 *out)
{
    if (!isLeaf(n))
        return false;
    const QVariant v = n->value();
    switch (v.userType()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
        *out = v.toLongLong();
        return true;
    case QMetaType::Double: {
        // An integral double ("2.0") is accepted as that integer.
        const double d = v.toDouble();
        if (std::isfinite(d) && d == std::floor(d) && std::abs(d) < 9e15) {
            *out = qint64(d);
            return true;
        }
        return false;
    }
    default:
        return false;
    }
}

bool readString(const orba::ModuleObject *n, QString *out)
{
    if (!isLeaf(n) || n->value().userType() != QMetaType::QString)
        return false;
    *out = n->value().toString();
    return true;
}

bool readBool(const orba::ModuleObject *n, bool *out)
{
    if (!isLeaf(n) || n->value().userType() != QMetaType::Bool)
        return false;
    *out = n->value().toBool();
    return true;
}

bool readNumbers(const orba::ModuleObject *n, int count, double *out)
{
    if (!n || n->isEmpty() || n->cmobjCount() != count || !n->isArray())
        return false;
    for (int i = 0; i < count; ++i) {
        if (!readNumber(n->c(i), out + i))
            return false;
    }
    return true;
}

bool readVector3(const orba::ModuleObject *n, Eigen::Vector3d *out)
{
    double v[3];
    if (!readNumbers(n, 3, v))
        return false;
    *out = Eigen::Vector3d(v[0], v[1], v[2]);
    return true;
}

bool readJoints(const orba::ModuleObject *n, Joints *out)
{
    double v[6];
    if (!readNumbers(n, 6, v))
        return false;
    for (int i = 0; i < 6; ++i)
        (*out)[i] = v[i];
    return true;
}

bool readPose(const orba::ModuleObject *n, Pose *pose, QString *error)
{
    if (!n || n->isEmpty()) {
        *error = QStringLiteral("pose missing");
        return false;
    }
    orba::ModuleObject *node = const_cast<orba::ModuleObject *>(n);
    if (!readVector3(node->c(QStringLiteral("trans")), &pose->trans)) {
        *error = QStringLiteral("pose \"trans\" must be 3 numbers");
        return false;
    }
    if (!readVector3(node->c(QStringLiteral("rot")), &pose->rot)) {
        *error = QStringLiteral("pose \"rot\" must be 3 numbers");
        return false;
    }
    const orba::ModuleObject *near = node->c(QStringLiteral("near"));
    pose->hasNear = false;
    pose->near = Joints::Zero();
    if (!near->isEmpty() && !near->isNull()) {
        // Extra axes (an external seventh axis) are ignored; fewer than six is malformed.
        if (!near->isArray() || near->cmobjCount() < 6) {
            *error = QStringLiteral("pose \"near\" must be 6 numbers");
            return false;
        }
        for (int i = 0; i < 6; ++i) {
            if (!readNumber(near->c(i), &pose->near[i])) {
                *error = QStringLiteral("pose \"near\" must be 6 numbers");
                return false;
            }
        }
        pose->hasNear = true;
    }
    return true;
}

QVariantList toList(const Eigen::Vector3d &v)
{
    return {v[0], v[1], v[2]};
}

QVariantList toList(const Joints &q)
{
    QVariantList l;
    for (int i = 0; i < 6; ++i)
        l << q[i];
    return l;
}

QVariantMap poseVariant(const Pose &p)
{
    return {{QStringLiteral("trans"), toList(p.trans)},
            {QStringLiteral("rot"), toList(p.rot)},
            {QStringLiteral("near"), toList(p.near)}};
}

} // namespace protocol
} // namespace rc
