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
 * "-0.0", "inf", "-inf", "nan", "-nan" are spelled out), children as nested elements in order. The
 * file's root element is the node given to writeToXmlFile. A name or string value with characters
 * XML 1.0 cannot carry (control characters, U+FFFE, U+FFFF, lone surrogates) is written as the
 * base64 of its UTF-16 (little-endian) code units, marked by name-encoding="utf16-base64" for a
 * name and encoding="utf16-base64" for a value, so every name and value reads back exactly.
 *
 * readFromXmlFile replaces the target's value and children with the file's root element. It
 * rejects (returning false, target untouched, lastError() saying why): unreadable files, files
 * over maxXmlBytes(), malformed or truncated XML, any DTD (so no entity expansion), nesting deeper
 * than maxDepth(), more nodes than json::maxJsonNodes() (the same budget as the JSON reader),
 * elements with more than a few attributes, unknown types and encodings, and values that do not
 * parse as their type. Messages quote at most a short excerpt of the input.
 *
 * writeToXmlFile refuses (false, lastError() saying why, the file at filePath untouched) a tree
 * that would not read back: nested deeper than maxDepth(), over the node budget, a value of a type
 * the form has not, or a text over maxXmlBytes(). I/O errors are reported too; the atomic form
 * then keeps the previous file, the in-place form may leave a partial one.
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
    // The same with a budget of nodes (the root included) other than json::maxJsonNodes().
    static bool fromXml(QObject *sender, ModuleObject *node, const QByteArray &xml, QString *error,
                        qint64 maxNodes);

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
