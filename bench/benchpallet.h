#pragma once

#include "module/pointgen.h"
#include "pages/newpalletdialog.h"

#include <orba/modulemanager.h>
#include <orba/moduleobject.h>

// A full pallet as an operator leaves it: 40 x 30 places, calibrated, way points taught, every
// place generated. Appended to `pallets` with the default pallet's layout; n makes it distinct.
inline orba::ModuleObject *appendFullPallet(orba::ModuleObject *pallets, const QString &name, int n, bool sType,
                                            int index = -1)
{
    orba::ModuleObject *pallet = pallets->append(nullptr, QStringLiteral("#%1").arg(pallets->cmobjCount()));
    pallet->copyFrom(nullptr, orba::m(QStringLiteral("tpallet.default")), true, false);
    pallet->set(nullptr, QStringLiteral("name"), name, true);
    pallet->set(nullptr, QStringLiteral("desc"), QStringLiteral("benchmark"), true);
    if (index >= 0)
        pallet->set(nullptr, QStringLiteral("index"), index, true);
    pallet->set(nullptr, QStringLiteral("pattern.row"), 40, true);
    pallet->set(nullptr, QStringLiteral("pattern.col"), 30, true);
    pallet->set(nullptr, QStringLiteral("pattern.s_type"), sType, true);
    NewPalletDialog::initPallet(pallet);
    pallet->set(nullptr, QStringLiteral("calibrate.x_span"), 1.2 + n * 1e-3, true);
    pallet->set(nullptr, QStringLiteral("calibrate.y_span"), 0.8, true);
    for (const char *key : {"wobj", "approach", "retract"}) {
        orba::ModuleObject *pose = pallet->r(QStringLiteral("waypoint.%1").arg(QLatin1String(key)));
        for (int k = 0; k < 3; ++k) {
            pose->set(nullptr, QStringLiteral("trans.#%1").arg(k), 0.3 + k / 3.0 + n * 1e-9, true);
            pose->set(nullptr, QStringLiteral("rot.#%1").arg(k), 3.141592653589793 / (k + 2), true);
        }
        for (int k = 0; k < 6; ++k)
            pose->set(nullptr, QStringLiteral("near.#%1").arg(k), -0.1 * k - 1e-17, true);
    }
    tpallet::generatePoints1(pallet, nullptr);
    return pallet;
}
