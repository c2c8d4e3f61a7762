#pragma once

#include <tcore/tcore_export.h>

#include <QColor>
#include <QPixmap>
#include <QString>
#include <QVector3D>

namespace dwel {
class BModule;
}
namespace orba {
class ModuleObject;
}

namespace kx {

// Resource path of a module's JSON template: ":/<module>/template/<name>.json".
TCORE_EXPORT QString templatePath(const QString &module, const QString &name);

// The global node at `key` (a dotted path from the root), created when missing.
TCORE_EXPORT orba::ModuleObject *globalNode(const QString &key);

namespace tnav {
/*
 * Adds a navigation entry: a new element of the global array "tnav.pages" with "title", "parent",
 * "icon", "module" (the module's name()) and "position". The module then sets "nav" to the name
 * of the page it adds to the page container. The shell lists the entries under their parent
 * ("robot.pack") and shows the page named by "nav". position -1 = after the others.
 */
TCORE_EXPORT orba::ModuleObject *registerPage(dwel::BModule *module, const QString &title, const QString &parent,
                                              const QString &icon, int position);
} // namespace tnav

namespace format {
template<typename T>
bool fromNode(const orba::ModuleObject *node, T &out);
// A three-element array node ("#0".."#2") as a vector; false (vector untouched) when the node
// does not have three elements.
template<>
TCORE_EXPORT bool fromNode<QVector3D>(const orba::ModuleObject *node, QVector3D &out);
} // namespace format

namespace ttheme {
// The pixmap with every opaque pixel recoloured to `colour` (alpha kept).
TCORE_EXPORT QPixmap pixmap(const QPixmap &source, const QColor &colour);
TCORE_EXPORT QPixmap pixmap(const QString &resource, const QColor &colour);
} // namespace ttheme

} // namespace kx
