#include "toolset.h"

#include "modulelog.h"

#include <kx/kx.h>
#include <orba/moduleobject.h>
#include <orbat/tservice.h>

namespace tpallet {

namespace {

void zero(orba::ModuleObject *node, const QString &path)
{
    node->set(nullptr, path, 0.0, true);
}

} // namespace

void identityToolsetNode(orba::ModuleObject *toolset)
{
    if (!toolset)
        return;
    for (int i = 0; i < 3; ++i) {
        zero(toolset, QStringLiteral("end.trans.#%1").arg(i));
        zero(toolset, QStringLiteral("end.rot.#%1").arg(i));
        zero(toolset, QStringLiteral("ref.trans.#%1").arg(i));
        zero(toolset, QStringLiteral("ref.rot.#%1").arg(i));
        zero(toolset, QStringLiteral("load.cog.#%1").arg(i));
        zero(toolset, QStringLiteral("load.inertia.#%1").arg(i));
    }
    zero(toolset, QStringLiteral("load.mass"));
}

void identityToolNode(orba::ModuleObject *tool)
{
    if (!tool)
        return;
    for (int i = 0; i < 3; ++i) {
        zero(tool, QStringLiteral("end.trans.#%1").arg(i));
        zero(tool, QStringLiteral("end.rot.#%1").arg(i));
        zero(tool, QStringLiteral("load.cog.#%1").arg(i));
        zero(tool, QStringLiteral("load.inertia.#%1").arg(i));
    }
    zero(tool, QStringLiteral("load.mass"));
}

void identityPointNode(orba::ModuleObject *point)
{
    if (!point)
        return;
    for (int i = 0; i < 3; ++i) {
        zero(point, QStringLiteral("trans.#%1").arg(i));
        zero(point, QStringLiteral("rot.#%1").arg(i));
    }
    for (int i = 0; i < 6; ++i)
        zero(point, QStringLiteral("near.#%1").arg(i));
}

bool switchToToolset(orba::ModuleObject *toolset, bool resetRef, bool resetEnd)
{
    if (!toolset || toolset->isNull()) {
        logError(QStringLiteral("invalid toolset"));
        return false;
    }

    orba::ModuleObject copy(QStringLiteral("temp_toolset"));
    copy.copyFrom(nullptr, toolset, true, false);

    // toolset -> "calibrate" -> pallet
    const QString palletName = toolset->p(1)->c(QStringLiteral("name"))->getString(QString());
    copy.set(nullptr, QStringLiteral("name"), palletName, true);

    if (resetRef) {
        for (int i = 0; i < 3; ++i) {
            copy.set(nullptr, QStringLiteral("ref.trans.#%1").arg(i), 0, true);
            copy.set(nullptr, QStringLiteral("ref.rot.#%1").arg(i), 0, true);
        }
    }
    if (resetEnd) {
        for (int i = 0; i < 3; ++i) {
            copy.set(nullptr, QStringLiteral("end.trans.#%1").arg(i), 0, true);
            copy.set(nullptr, QStringLiteral("end.rot.#%1").arg(i), 0, true);
        }
    }

    const int reply = tservice()->set(nullptr, QStringLiteral("sys.toolset"), &copy);
    if (reply < 0) {
        logError(QStringLiteral("set toolset failed"));
        return false;
    }

    orba::ModuleObject *toolPage = orba::m(QStringLiteral("tormo.toolpage.toolset"));
    if (!toolPage->isNull())
        toolPage->setValue(nullptr, palletName, true);
    else
        kx::globalNode(QStringLiteral("tormo.body.toolset"))->setValue(nullptr, palletName, true);
    logInfo(QStringLiteral("set toolset success"));
    return true;
}

} // namespace tpallet
