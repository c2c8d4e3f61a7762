#pragma once

#include "orbacore_export.h"
#include "moduleobject.h"

#include <QString>

namespace orba {

/*
 * Tree-wide services: the process-wide root, the shared empty node, and the XML file form.
 *
 * XML form: one element per node, <node name=".." type="int|double|bool|string|null">, the value
 * in the element text (doubles written with 17 significant digits, so they read back bit for bit;
 * "-0.0", "inf", "-inf", "nan" are spelled out), children as nested elements in order. The file's
 * root element is the node given to writeToXmlFile.
 *
 * readFromXmlFile replaces the target's value and children with the file's root element. It
 * rejects (returning false, target untouched, lastError() saying why): unreadable files, files
 * over maxXmlBytes(), malformed or truncated XML, any DTD (so no entity expansion), nesting deeper
 * than maxDepth(), unknown types and values that do not parse as their type.
 */
class ORBACORE_EXPORT ModuleManager
{
public:
    static ModuleObject *root();
    static ModuleObject *emptyMobj();

    static bool readFromXmlFile(QObject *sender, ModuleObject *node, const QString &filePath);
    static bool writeToXmlFile(const QString &filePath, const ModuleObject *node, bool indent = true,
                               bool atomic = true);
    static QByteArray toXml(const ModuleObject *node, bool indent = true);
    static bool fromXml(QObject *sender, ModuleObject *node, const QByteArray &xml, QString *error = nullptr);

    // Why the last read or write on this thread failed ("" after a success).
    static QString lastError();

    // Above the largest file the pendant writes: a list of 100 pallets of 1200 places each is
    // about 420 MB in the indented form (4.1 MB a pallet, 17-digit doubles).
    static constexpr qint64 maxXmlBytes() { return 512 * 1024 * 1024; }
    static constexpr int maxDepth() { return 256; }

    // Drops every child of the root (tests start from a fresh tree).
    static void resetRoot();
};

} // namespace orba
