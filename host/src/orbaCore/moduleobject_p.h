#pragma once

#include "orba/moduleobject.h"

#include <QStringView>

namespace orba {

// Internal access for the tree and its serialisers: builds trees without notifications and
// hands the result over to a target in one step.
class ModuleObjectPrivate
{
public:
    // Appends a new child to a free-standing tree under construction (no signals).
    static ModuleObject *appendRaw(ModuleObject *parent, const QString &name);
    static void setValueRaw(ModuleObject *node, const QVariant &value) { node->m_value = value; }
    // Replaces target's value and children with those of source (source is left without
    // children). Emits cleared / childInserted / changed on target with sender when notify.
    static void moveInto(QObject *sender, ModuleObject *target, ModuleObject *source, bool notify = true);
    static ModuleObject *find(const ModuleObject *node, QStringView name);
    static ModuleObject *clone(const ModuleObject *source);
    // Overlays source (a free-standing tree that is consumed: its children move or are deleted)
    // onto target; see ModuleObject::overlayFrom.
    static void overlay(QObject *sender, ModuleObject *target, ModuleObject *source, bool notify);
    static void fillFromVariant(ModuleObject *node, const QVariant &v);
    static void mergeVariant(QObject *sender, ModuleObject *node, const QVariant &v, bool notify, bool keepValue);
    // Canonical value types: invalid, int, qint64, double, bool, QString (others kept as given).
    static QVariant normalise(const QVariant &v);
    // Same type and same content; doubles compared bit for bit.
    static bool sameValue(const QVariant &a, const QVariant &b);
    static void markEmptySentinel(ModuleObject *node) { node->m_isEmptySentinel = true; }
};

// Shared "#i" name strings so that large arrays do not carry one allocation per name.
QString arrayName(int index);
// Index of a "#i" name, or -1.
int arrayIndexOf(const QChar *s, int len);

} // namespace orba
