#pragma once

#include "tpallet_export.h"

#include <QString>

// One line each in the module's file log ./log/tpallet.log (and on the console).
namespace tpallet {

TPALLET_EXPORT void logError(const QString &text);
TPALLET_EXPORT void logInfo(const QString &text);
TPALLET_EXPORT void logStartup(const QString &text);

} // namespace tpallet
