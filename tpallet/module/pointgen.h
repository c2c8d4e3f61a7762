#pragma once

#include "tpallet_export.h"

class QObject;

namespace orba {
class ModuleObject;
}

namespace tpallet {

// Places above this count are refused by generation (the dialogs keep pallets at 1200); it only
// protects the tree from corrupt imports asking for millions of nodes.
constexpr long long kMaxGeneratedPlaces = 100000;

// The (x, y) grid over the calibrated quadrilateral, in the pallet frame, into "calibrate.points".
TPALLET_EXPORT void generateBasePoints(orba::ModuleObject *pallet, QObject *sender);
// The base grid, then every place in placing order with its wobj, approach and retract pose,
// into "points".
TPALLET_EXPORT void generatePoints1(orba::ModuleObject *pallet, QObject *sender);
// Creates the identity way points "wobj", "approach", "retract" that are missing.
TPALLET_EXPORT void initWayPointNode(orba::ModuleObject *pallet);
// Regenerates the places, notes it in the configuration log and stores the pallet on the
// controller.
TPALLET_EXPORT void genPointsAndSaveToRC(orba::ModuleObject *pallet);

} // namespace tpallet
