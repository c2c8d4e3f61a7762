#include <kx/calc.h>

#include <orba/moduleobject.h>

#include <Eigen/Geometry>

#include <cmath>

namespace kx {
namespace calc {

namespace {

using Vec3 = Eigen::Vector3d;
using Mat3 = Eigen::Matrix3d;

struct Frame
{
    Mat3 rot = Mat3::Identity();
    Vec3 trans = Vec3::Zero();
};

Vec3 readVec3(const orba::ModuleObject *node)
{
    return Vec3(node->c(0)->getDouble(), node->c(1)->getDouble(), node->c(2)->getDouble());
}

Mat3 eulerToMatrix(double a, double b, double c)
{
    return (Eigen::AngleAxisd(c, Vec3::UnitZ()) * Eigen::AngleAxisd(b, Vec3::UnitY())
            * Eigen::AngleAxisd(a, Vec3::UnitX()))
        .toRotationMatrix();
}

// atan2 gives [-pi, pi]; the angles live in (-pi, pi].
double wrap(double angle)
{
    return angle <= -M_PI ? angle + 2.0 * M_PI : angle;
}

// Inverse of eulerToMatrix with B in [-pi/2, pi/2]; at B = +-pi/2 only A + C or A - C is
// defined, so A is fixed to 0 and C carries the whole turn.
Vec3 matrixToEuler(const Mat3 &r)
{
    const double cosB = std::hypot(r(0, 0), r(1, 0));
    const double b = std::atan2(-r(2, 0), cosB);
    double a = 0.0;
    double c = 0.0;
    if (cosB > 1e-10) {
        a = std::atan2(r(2, 1), r(2, 2));
        c = std::atan2(r(1, 0), r(0, 0));
    } else {
        c = std::atan2(-r(0, 1), r(1, 1));
    }
    return Vec3(wrap(a), b, wrap(c));
}

Frame readFrame(const orba::ModuleObject *pose)
{
    Frame f;
    const Vec3 angles = readVec3(pose->r(QStringLiteral("rot")));
    f.rot = eulerToMatrix(angles.x(), angles.y(), angles.z());
    f.trans = readVec3(pose->r(QStringLiteral("trans")));
    return f;
}

void writeVec3(orba::ModuleObject *node, const QString &path, const Vec3 &v)
{
    for (int i = 0; i < 3; ++i)
        node->set(nullptr, QStringLiteral("%1.#%2").arg(path).arg(i), QVariant(double(v[i])));
}

void writeFrame(orba::ModuleObject *result, const Frame &f)
{
    writeVec3(result, QStringLiteral("trans"), f.trans);
    writeVec3(result, QStringLiteral("rot"), matrixToEuler(f.rot));
}

} // namespace

bool calibrateOXY(const orba::ModuleObject *origin, const orba::ModuleObject *xPoint,
                  const orba::ModuleObject *yPoint, orba::ModuleObject *result)
{
    if (!origin || !xPoint || !yPoint || !result)
        return false;
    const Vec3 o = readVec3(origin->r(QStringLiteral("trans")));
    const Vec3 ex = readVec3(xPoint->r(QStringLiteral("trans"))) - o;
    const Vec3 ey = readVec3(yPoint->r(QStringLiteral("trans"))) - o;
    const double lx = ex.norm();
    const double ly = ey.norm();
    if (!std::isfinite(lx) || !std::isfinite(ly) || lx < 1e-9 || ly < 1e-9)
        return false;
    Vec3 z = ex.cross(ey);
    // Sine of the angle between the two edges: below this the points are collinear.
    if (!(z.norm() > 1e-9 * lx * ly))
        return false;
    const Vec3 x = ex / lx;
    z.normalize();
    const Vec3 y = z.cross(x);

    Frame f;
    f.rot.col(0) = x;
    f.rot.col(1) = y;
    f.rot.col(2) = z;
    f.trans = o;
    writeFrame(result, f);
    return true;
}

void inverseFrame(const orba::ModuleObject *frame, orba::ModuleObject *result)
{
    if (!frame || !result)
        return;
    const Frame f = readFrame(frame);
    Frame inv;
    inv.rot = f.rot.transpose();
    inv.trans = -(inv.rot * f.trans);
    writeFrame(result, inv);
}

void transformFrame(const orba::ModuleObject *frame, const orba::ModuleObject *pose, orba::ModuleObject *result)
{
    if (!frame || !pose || !result)
        return;
    // Both inputs are read before anything is written: result may be one of them.
    const Frame f = readFrame(frame);
    const Frame p = readFrame(pose);
    Frame out;
    out.rot = f.rot * p.rot;
    out.trans = f.rot * p.trans + f.trans;
    writeFrame(result, out);
}

void rot2Quaternion(const orba::ModuleObject *rot, orba::ModuleObject *quat)
{
    if (!rot || !quat)
        return;
    const Vec3 angles = readVec3(rot);
    Eigen::Quaterniond q(eulerToMatrix(angles.x(), angles.y(), angles.z()));
    q.normalize();
    if (q.w() < 0.0)
        q.coeffs() = -q.coeffs();
    const double values[4] = {q.w(), q.x(), q.y(), q.z()};
    for (int i = 0; i < 4; ++i)
        quat->set(nullptr, QStringLiteral("#%1").arg(i), QVariant(values[i]));
}

void quaternion2Rot(const orba::ModuleObject *quat, orba::ModuleObject *rot)
{
    if (!quat || !rot)
        return;
    Eigen::Quaterniond q(quat->c(0)->getDouble(), quat->c(1)->getDouble(), quat->c(2)->getDouble(),
                         quat->c(3)->getDouble());
    const double n = q.norm();
    // A zero (or broken) quaternion carries no rotation: take the identity.
    if (!std::isfinite(n) || n < 1e-12)
        q = Eigen::Quaterniond::Identity();
    else
        q.coeffs() /= n;
    const Vec3 angles = matrixToEuler(q.toRotationMatrix());
    for (int i = 0; i < 3; ++i)
        rot->set(nullptr, QStringLiteral("#%1").arg(i), QVariant(angles[i]));
}

} // namespace calc
} // namespace kx
