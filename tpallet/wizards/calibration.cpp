#include "calibration.h"

#include <cmath>

namespace tpallet {

namespace {

constexpr double kPi = 3.141592653589793;

Vec3 sub(const Vec3 &a, const Vec3 &b)
{
    return {a[0] - b[0], a[1] - b[1], a[2] - b[2]};
}

Vec3 add(const Vec3 &a, const Vec3 &b)
{
    return {a[0] + b[0], a[1] + b[1], a[2] + b[2]};
}

Vec3 cross(const Vec3 &a, const Vec3 &b)
{
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

double dot(const Vec3 &a, const Vec3 &b)
{
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
}

// A zero vector stays as it is rather than becoming NaN.
Vec3 normalised(const Vec3 &v)
{
    const double squared = dot(v, v);
    if (!(squared > 0.0))
        return v;
    const double length = std::sqrt(squared);
    return {v[0] / length, v[1] / length, v[2] / length};
}

double distance(const Vec3 &a, const Vec3 &b)
{
    const Vec3 d = sub(a, b);
    return std::sqrt(d[0] * d[0] + d[1] * d[1] + d[2] * d[2]);
}

} // namespace

PalletCalibration calibratePallet(const Vec3 &p1, const Vec3 &p2, const Vec3 &p3, const Vec3 &p4In, bool useP4)
{
    const Vec3 p4 = useP4 ? p4In : sub(add(p2, p3), p1);
    const Vec3 e = sub(p2, p1);
    const Vec3 f = sub(p3, p1);
    const Vec3 g = sub(p4, p1);

    const Vec3 n1 = normalised(cross(e, f));
    const Vec3 n2 = normalised(cross(e, g));
    Vec3 z = add(n1, n2);
    Vec3 y = cross(z, e);
    const Vec3 x = normalised(e);
    y = normalised(y);
    z = normalised(z);

    PalletCalibration result;
    result.x = x;
    result.y = y;
    result.z = z;
    // The axes are the columns of the rotation; angles are read back explicitly.
    double c = std::atan2(x[1], x[0]);
    double h = std::sqrt(z[2] * z[2] + y[2] * y[2]);
    if (c < 0.0) {
        c += kPi;
        h = -h;
    }
    const double b = std::atan2(-x[2], h);
    const double sc = std::sin(c);
    const double cc = std::cos(c);
    const double a = std::atan2(sc * z[0] - cc * z[1], cc * y[1] - sc * y[0]);
    result.rot = {a, b, c};
    result.trans = p1;

    result.xSpan = dot(x, sub(p2, p1));
    result.ySpan = dot(y, sub(p3, p1));
    result.xOffset13 = dot(x, sub(p3, p1));
    result.xOffset24 = dot(x, sub(p4, p2));
    result.yOffset34 = dot(y, sub(p4, p3));
    return result;
}

QStringList closeCornerPairs(const Vec3 &p1, const Vec3 &p2, const Vec3 &p3, const Vec3 &p4, bool useP4)
{
    struct Pair
    {
        const Vec3 *a;
        const Vec3 *b;
        const char *label;
    };
    QList<Pair> pairs{{&p1, &p2, "P1 & P2"}, {&p1, &p3, "P1 & P3"}, {&p2, &p3, "P2 & P3"}};
    if (useP4)
        pairs << Pair{&p1, &p4, "P1 & P4"} << Pair{&p2, &p4, "P2 & P4"} << Pair{&p3, &p4, "P3 & P4"};
    QStringList close;
    for (const Pair &pair : pairs) {
        if (distance(*pair.a, *pair.b) < 0.01)
            close << QLatin1String(pair.label);
    }
    return close;
}

} // namespace tpallet
