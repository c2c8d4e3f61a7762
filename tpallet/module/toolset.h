#pragma once

#include "tpallet_export.h"

namespace orba {
class ModuleObject;
}

namespace tpallet {

// Zero every number of a toolset ("end", "ref", "load"), a tool ("end", "load") or a point
// ("trans", "rot", "near"); all-zero Euler angles are the identity rotation.
TPALLET_EXPORT void identityToolsetNode(orba::ModuleObject *toolset);
TPALLET_EXPORT void identityToolNode(orba::ModuleObject *tool);
TPALLET_EXPORT void identityPointNode(orba::ModuleObject *point);

// Makes a pallet's toolset the controller's active one ("sys.toolset") and publishes the pallet's
// name as the host's current toolset. The resets act on the copy sent, never on the pallet.
TPALLET_EXPORT bool switchToToolset(orba::ModuleObject *toolset, bool resetRef, bool resetEnd);

} // namespace tpallet
