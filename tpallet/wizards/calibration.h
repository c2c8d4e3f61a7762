#pragma once

#include "module/tpallet_export.h"

#include <QStringList>

#include <array>

namespace tpallet {

using Vec3 = std::array<double, 3>;

// The pallet frame and size computed from the taught corners, in the pallet's own terms:
// rotation as Euler angles A, B, C (rotation = Rz(C)·Ry(B)·Rx(A)), origin at P1, and the spans
// and skews of the corner model (metres).
struct PalletCalibration
{
    Vec3 rot{};
    Vec3 trans{};
    Vec3 x{};
    Vec3 y{};
    Vec3 z{};
    double xSpan = 0.0;
    double ySpan = 0.0;
    double xOffset13 = 0.0;
    double xOffset24 = 0.0;
    double yOffset34 = 0.0;
};

// The frame whose z axis is the mean normal of the triangles P1 P2 P3 and P1 P2 P4, x along
// P1 -> P2. Without P4 the pallet is taken as the parallelogram P4 = P2 + P3 - P1. C is kept in
// 0..pi; when it is folded, the sign goes into B.
TPALLET_EXPORT PalletCalibration calibratePallet(const Vec3 &p1, const Vec3 &p2, const Vec3 &p3, const Vec3 &p4,
                                                 bool useP4);

// Labels ("P1 & P2", ...) of the corner pairs closer than 10 mm, in checking order.
TPALLET_EXPORT QStringList closeCornerPairs(const Vec3 &p1, const Vec3 &p2, const Vec3 &p3, const Vec3 &p4, bool useP4);

} // namespace tpallet
