#pragma once

#include "orbacore_export.h"

#include <QString>

// Joins name parts with "." into one registry key or version text: mName("tpallet", "pallet.page")
// is "tpallet.pallet.page"; mName("1", "1", "22") is "1.1.22". Empty parts are kept.
ORBACORE_EXPORT QString mName(const QString &a, const QString &b);
ORBACORE_EXPORT QString mName(const QString &a, const QString &b, const QString &c);

// The host's version number for a key, from orba::versionManager(). With sum false: the number
// registered under exactly `key` (0 when none). With sum true: the sum of the numbers registered
// under `key` and under every key beginning with `key` + "." (a module's component versions).
ORBACORE_EXPORT int ver(const QString &key, bool sum);
