#include "registration.h"

#include <orba/creatormanager.h>
#include <orba/names.h>

// Version numbers of the exchange dialog and the point adjust step; they move to those units
// once they exist.
namespace {

const tpallet::Registration s_imexport(
    [] { orba::versionManager()->regist(mName(QStringLiteral("tpallet"), QStringLiteral("pallet.dialog.imexport")), [] { return 1; }); },
    [] { orba::versionManager()->unregist(mName(QStringLiteral("tpallet"), QStringLiteral("pallet.dialog.imexport"))); });

const tpallet::Registration s_pointadjust(
    [] { orba::versionManager()->regist(mName(QStringLiteral("tpallet"), QStringLiteral("wizard.pointadjust")), [] { return 3; }); },
    [] { orba::versionManager()->unregist(mName(QStringLiteral("tpallet"), QStringLiteral("wizard.pointadjust"))); });

} // namespace
