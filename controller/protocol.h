#pragma once

#include "frames.h"

#include <QByteArray>
#include <QString>
#include <QVariant>
#include <QVector>

namespace orba {
class ModuleObject;
}

namespace rc {

// Error codes of error replies (JSON-RPC numbering).
enum ProtocolError {
    ParseError = -32700,
    InvalidRequest = -32600,
    MethodNotFound = -32601,
    InvalidParams = -32602,
    InternalError = -32603,
};

// The outcome of one command: a result with status and data, or an error reply.
struct Reply
{
    bool isError = false;
    int status = 0;
    QByteArray data = "null"; // JSON text of "data"
    // When not empty, "data" is these texts one after the other instead. A reply made of stored
    // texts (a pallet, the whole list) then goes out without being copied into one buffer.
    QVector<QByteArray> parts;
    int code = 0;
    QString message;

    static Reply ok(const QByteArray &data = "null") { Reply r; r.data = data; return r; }
    static Reply okParts(QVector<QByteArray> parts) { Reply r; r.parts = std::move(parts); return r; }
    static Reply ok(const QVariant &data);
    // Negative status with {"msg": text}.
    static Reply failed(const QString &text, int status = -1);
    static Reply error(int code, const QString &message);
};

namespace protocol {

QByteArray resultLine(const QByteArray &id, const Reply &reply);
// The same line in pieces that, joined, give resultLine(); large parts are shared, not copied.
QVector<QByteArray> resultPieces(const QByteArray &id, const Reply &reply);
QByteArray eventLine(const QString &name, const QByteArray &data);
QByteArray toJson(const QVariant &v);

// Strict readers: a leaf with a finite number (int or double), an integer, a string, a bool.
bool readNumber(const orba::ModuleObject *n, double *out);
bool readInt(const orba::ModuleObject *n, qint64 *out);
bool readString(const orba::ModuleObject *n, QString *out);
bool readBool(const orba::ModuleObject *n, bool *out);
// An array of exactly `count` numbers.
bool readNumbers(const orba::ModuleObject *n, int count, double *out);
// A pose {"trans":[3], "rot":[3], "near":[6]}; "near" may be missing.
bool readPose(const orba::ModuleObject *n, Pose *pose, QString *error);
bool readVector3(const orba::ModuleObject *n, Eigen::Vector3d *out);
bool readJoints(const orba::ModuleObject *n, Joints *out);

QVariantList toList(const Eigen::Vector3d &v);
QVariantList toList(const Joints &q);
QVariantMap poseVariant(const Pose &p);

} // namespace protocol
} // namespace rc
