#pragma once

#include <tcore/tcore_export.h>

namespace orba {
class ModuleObject;
}

/*
 * Frame arithmetic on pose nodes ("trans" three metres, "rot" three radians). Euler convention:
 * rotation = Rz(C) * Ry(B) * Rx(A) with A, B, C = "rot.#0", "rot.#1", "rot.#2". Angles are read
 * back explicitly with B in [-pi/2, pi/2] (A and C in (-pi, pi]); at B = +-pi/2 A is set to 0.
 * Results are written with notification through set(); "near" of a result is left alone.
 * Quaternions are nodes with "#0".."#3" = w, x, y, z (unit, w >= 0).
 */
namespace kx {
namespace calc {

// Frame with origin `origin`, x axis towards xPoint, z = x cross (yPoint - origin), y = z cross x.
// False (result untouched) when the points are collinear or coincide.
TCORE_EXPORT bool calibrateOXY(const orba::ModuleObject *origin, const orba::ModuleObject *xPoint,
                               const orba::ModuleObject *yPoint, orba::ModuleObject *result);
// result = frame^-1
TCORE_EXPORT void inverseFrame(const orba::ModuleObject *frame, orba::ModuleObject *result);
// result = frame * pose (pose given in `frame` coordinates, result in the frame's parent
// coordinates); transformFrame(inverse(F), P) expresses P in F.
TCORE_EXPORT void transformFrame(const orba::ModuleObject *frame, const orba::ModuleObject *pose,
                                 orba::ModuleObject *result);
// "rot" node (three angles) -> quaternion node (four numbers), and back.
TCORE_EXPORT void rot2Quaternion(const orba::ModuleObject *rot, orba::ModuleObject *quat);
TCORE_EXPORT void quaternion2Rot(const orba::ModuleObject *quat, orba::ModuleObject *rot);

} // namespace calc
} // namespace kx
