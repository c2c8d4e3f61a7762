#pragma once

#include "orbadwel_export.h"

#include <orba/creatormanager.h>

class QObject;

namespace dwel {
class BModule;
}

using BModuleFactory = orba::CreatorManager<dwel::BModule *, dwel::BModule *(QObject *)>;

// The host's module factory: creation functions keyed by module key.
ORBADWEL_EXPORT BModuleFactory *bfactory();
